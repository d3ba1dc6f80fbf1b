#include <atomic>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

namespace nyr::local {

namespace {

// Bumped by ForgetLocalOffsets; a cache entry of an older generation is stale.
std::atomic<unsigned> g_generation{1};

constexpr int64_t kHour = 3600;

struct HourOffset
{
    int64_t hour = 0;          // UTC hour since 1970 (floor)
    int64_t offset = 0;        // local reading minus the instant, in seconds
    unsigned generation = 0;   // 0: never filled
    bool uniform = false;      // the offset holds for the whole hour
};

bool OffsetAt(int64_t seconds, int64_t& offset)
{
    struct tm f {};
    if (!Breakdown(seconds, f))
        return false;
    // From the fields rather than tm_gmtoff, so that zones counting leap
    // seconds read as their clocks do.
    const int64_t local = cal::DaysFromCivil(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday) * 86400 + f.tm_hour * kHour +
                          f.tm_min * 60 + f.tm_sec;
    offset = local - seconds;
    return true;
}

int64_t FloorDiv(int64_t a, int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

}  // namespace

bool LocalSeconds(int64_t seconds, int64_t& local)
{
    thread_local HourOffset cache[1024];
    const unsigned generation = g_generation.load(std::memory_order_relaxed);
    const int64_t hour = FloorDiv(seconds, kHour);
    HourOffset& entry = cache[static_cast<uint64_t>(hour) % std::size(cache)];
    if (entry.generation != generation || entry.hour != hour) {
        // An hour with the same offset at its first and last second has no
        // change inside it: zones change at most once in a few weeks.
        int64_t first = 0, last = 0;
        const bool known = OffsetAt(hour * kHour, first) && OffsetAt(hour * kHour + kHour - 1, last);
        entry = HourOffset{hour, first, generation, known && first == last};
    }
    if (entry.uniform) {
        local = seconds + entry.offset;
        return true;
    }
    int64_t offset = 0;
    if (!OffsetAt(seconds, offset))
        return false;
    local = seconds + offset;
    return true;
}

void ForgetLocalOffsets()
{
    g_generation.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace nyr::local

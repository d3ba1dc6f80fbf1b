#include <atomic>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

namespace nyr::local {

namespace {

constexpr int64_t kDay = 86400;

// Bumped by ForgetLocalOffsets; a cache entry of another generation is stale.
std::atomic<uint64_t> g_generation{1};

// One cache entry in one 64-bit word, so that threads share the table
// without locks: each load sees a whole entry, old or new.
//   bits 63..41  UTC day since 1970 + 2^22       (years 1..9999 need 22 bits)
//   bits 40..23  offset in seconds + 2^17        (zone offsets stay within ±36 h)
//   bit  22      the offset holds for the whole day
//   bits 21..0   generation (low 22 bits; 0 marks an empty entry)
constexpr int kDayShift = 41, kOffsetShift = 23, kUniformBit = 22;
constexpr uint64_t kGenerationMask = (uint64_t{1} << 22) - 1;
constexpr int64_t kDayBias = int64_t{1} << 22, kOffsetBias = int64_t{1} << 17;

uint64_t Pack(int64_t day, int64_t offset, bool uniform, uint64_t generation)
{
    return static_cast<uint64_t>(day + kDayBias) << kDayShift | static_cast<uint64_t>(offset + kOffsetBias)
                                                                   << kOffsetShift |
           uint64_t{uniform} << kUniformBit | (generation & kGenerationMask);
}

// 4096 days (32 KiB): the span the partitions of a sort revisit.
std::atomic<uint64_t> g_cache[4096];

bool OffsetAt(int64_t seconds, int64_t& offset)
{
    struct tm f {};
    if (!Breakdown(seconds, f))
        return false;
    // From the fields rather than tm_gmtoff, so that zones counting leap
    // seconds read as their clocks do.
    const int64_t local = cal::DaysFromCivil(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday) * kDay +
                          f.tm_hour * int64_t{3600} + f.tm_min * 60 + f.tm_sec;
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
    const int64_t day = FloorDiv(seconds, kDay);
    if (day < -kDayBias || day >= kDayBias)
        return false;  // far outside years 1..9999: the breakdown fails there too
    const uint64_t generation = g_generation.load(std::memory_order_relaxed) & kGenerationMask;
    std::atomic<uint64_t>& slot = g_cache[static_cast<uint64_t>(day) % std::size(g_cache)];
    uint64_t entry = slot.load(std::memory_order_relaxed);
    if ((entry & kGenerationMask) != generation || static_cast<int64_t>(entry >> kDayShift) - kDayBias != day) {
        // A day with the same offset at its first and last second has no
        // change inside it: zones change at most once in a few weeks. On the
        // few days with a change, each instant is broken down.
        int64_t first = 0, last = 0;
        const bool known = OffsetAt(day * kDay, first) && OffsetAt(day * kDay + kDay - 1, last);
        const bool uniform = known && first == last && first > -kOffsetBias && first < kOffsetBias;
        entry = Pack(day, uniform ? first : 0, uniform, generation);
        slot.store(entry, std::memory_order_relaxed);
    }
    if (entry >> kUniformBit & 1) {
        local = seconds + (static_cast<int64_t>(entry >> kOffsetShift & ((uint64_t{1} << 18) - 1)) - kOffsetBias);
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
    // Skips the generation that reads as "empty" when the counter wraps.
    if (((g_generation.fetch_add(1, std::memory_order_relaxed) + 1) & kGenerationMask) == 0)
        g_generation.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace nyr::local

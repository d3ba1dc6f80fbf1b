#include <algorithm>
#include <atomic>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

namespace nyr::local {

namespace {

constexpr int64_t kDay = 86400;

// Bumped by ForgetLocalOffsets; a cache entry of another generation is stale.
std::atomic<uint64_t> g_generation{1};

// Both caches keep each entry in one 64-bit word, so that threads share them
// without locks: each load sees a whole entry, old or new. The first day and
// the offset sit at the same place in both:
//   bits 63..41  UTC day since 1970 + 2^22       (years 1..9999 need 22 bits)
//   bits 40..23  offset in seconds + 2^17        (zone offsets stay within ±36 h)
constexpr int kDayShift = 41, kOffsetShift = 23;
constexpr int64_t kDayBias = int64_t{1} << 22, kOffsetBias = int64_t{1} << 17;

uint64_t PackDayAndOffset(int64_t day, int64_t offset)
{
    return static_cast<uint64_t>(day + kDayBias) << kDayShift | static_cast<uint64_t>(offset + kOffsetBias)
                                                                   << kOffsetShift;
}

int64_t UnpackDay(uint64_t entry)
{
    return static_cast<int64_t>(entry >> kDayShift) - kDayBias;
}

int64_t UnpackOffset(uint64_t entry)
{
    return static_cast<int64_t>(entry >> kOffsetShift & ((uint64_t{1} << 18) - 1)) - kOffsetBias;
}

// The day table, 4096 days (32 KiB): the span the partitions of a sort
// revisit. Below the day and the offset:
//   bit  22      the offset holds for the whole day
//   bits 21..0   generation (low 22 bits; 0 marks an empty entry)
constexpr int kUniformBit = 22;
constexpr uint64_t kGenerationMask = (uint64_t{1} << 22) - 1;
std::atomic<uint64_t> g_days[4096];

// The run: consecutive whole days known to share one offset, so that two
// instants inside it order by their seconds with no table look-up. A sort
// compares instants near each other, and zones keep one offset for months,
// so the run mostly covers both. Below the first day and the offset:
//   bits 22..9   number of days - 1
//   bits 8..0    generation (low 9 bits; a run of another one is ignored)
constexpr int kRunDaysShift = 9;
constexpr int64_t kRunMaxDays = int64_t{1} << 14;
constexpr uint64_t kRunGenerationMask = (uint64_t{1} << 9) - 1;
// How far a run is grown to reach the days of a comparison, rather than
// started afresh there.
constexpr int64_t kRunReach = 62;
std::atomic<uint64_t> g_run{0};

// The day table's entry for `day`, filled in when missing.
uint64_t DayEntry(int64_t day, uint64_t generation)
{
    std::atomic<uint64_t>& slot = g_days[static_cast<uint64_t>(day) % std::size(g_days)];
    uint64_t entry = slot.load(std::memory_order_relaxed);
    if ((entry & kGenerationMask) != generation || UnpackDay(entry) != day) {
        // A day with the same offset at its first and last second has no
        // change inside it: zones change at most once in a few weeks. On the
        // few days with a change, each instant is broken down.
        int64_t first = 0, last = 0;
        const bool known = OffsetAt(day * kDay, first) && OffsetAt(day * kDay + kDay - 1, last);
        const bool uniform = known && first == last && first > -kOffsetBias && first < kOffsetBias;
        entry = PackDayAndOffset(day, uniform ? first : 0) | uint64_t{uniform} << kUniformBit |
                (generation & kGenerationMask);
        slot.store(entry, std::memory_order_relaxed);
    }
    return entry;
}

bool Uniform(uint64_t entry)
{
    return (entry >> kUniformBit & 1) != 0;
}

// The offset of the zone at `seconds`, which lies on UTC day `day`; false
// where the breakdown fails.
bool Offset(int64_t day, int64_t seconds, uint64_t generation, int64_t& offset)
{
    const uint64_t entry = DayEntry(day, generation);
    if (Uniform(entry)) {
        offset = UnpackOffset(entry);
        return true;
    }
    return OffsetAt(seconds, offset);
}

// Days [from, to] (to - from < kRunMaxDays) are all whole days of `offset`.
bool AllUniform(int64_t from, int64_t to, int64_t offset, uint64_t generation)
{
    for (int64_t day = from; day <= to; ++day) {
        const uint64_t entry = DayEntry(day, generation);
        if (!Uniform(entry) || UnpackOffset(entry) != offset)
            return false;
    }
    return true;
}

struct Run
{
    int64_t first = 0;
    int64_t days = 0;  // 0: none
    int64_t offset = 0;

    bool Covers(int64_t day) const { return static_cast<uint64_t>(day - first) < static_cast<uint64_t>(days); }
};

Run LoadRun(uint64_t generation)
{
    const uint64_t word = g_run.load(std::memory_order_relaxed);
    if (word == 0 || (word & kRunGenerationMask) != (generation & kRunGenerationMask))
        return {};
    return {UnpackDay(word), static_cast<int64_t>(word >> kRunDaysShift & (kRunMaxDays - 1)) + 1, UnpackOffset(word)};
}

// Makes the run cover days [from, to] of offset `offset` (all whole days of
// it, checked by the caller): the present run grows to reach them when it is
// near and keeps the offset all the way, else they start a new one.
void GrowRun(Run run, int64_t from, int64_t to, int64_t offset, uint64_t generation)
{
    if (run.days > 0 && run.offset == offset) {
        const int64_t last = run.first + run.days - 1;
        const int64_t first = std::min(run.first, from), end = std::max(last, to);
        const bool nearBelow = from < run.first && run.first - to <= kRunReach;
        const bool nearAbove = to > last && from - last <= kRunReach;
        if (end - first < kRunMaxDays && (nearBelow || nearAbove) &&
            (nearBelow ? AllUniform(to + 1, run.first - 1, offset, generation)
                       : AllUniform(last + 1, from - 1, offset, generation))) {
            from = first;
            to = end;
        }
    }
    g_run.store(PackDayAndOffset(from, offset) | static_cast<uint64_t>(to - from) << kRunDaysShift |
                    (generation & kRunGenerationMask),
                std::memory_order_relaxed);
}

int Sign2(int64_t d)
{
    // Without branches: which way this goes cannot be predicted.
    return static_cast<int>(d >= 2) - static_cast<int>(d <= -2);
}

}  // namespace

bool OffsetAt(int64_t seconds, int64_t& offset, struct tm* breakdown)
{
    struct tm f {};
    if (!Breakdown(seconds, f))
        return false;
    // From the fields rather than tm_gmtoff, so that zones counting leap
    // seconds read as their clocks do.
    const int64_t local = cal::DaysFromCivil(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday) * kDay +
                          f.tm_hour * int64_t{3600} + f.tm_min * 60 + f.tm_sec;
    offset = local - seconds;
    if (breakdown)
        *breakdown = f;
    return true;
}

int CompareLocalReadings(int64_t a, int64_t b)
{
    const int64_t dayA = nyr::cal::FloorDiv(a, kDay), dayB = nyr::cal::FloorDiv(b, kDay);
    if (dayA < -kDayBias || dayA >= kDayBias || dayB < -kDayBias || dayB >= kDayBias)
        return 0;  // far outside years 1..9999: the breakdown fails there too
    const uint64_t generation = g_generation.load(std::memory_order_relaxed) & kGenerationMask;
    const Run run = LoadRun(generation);
    if (run.Covers(dayA) && run.Covers(dayB))
        return Sign2(a - b);
    int64_t offsetA = 0, offsetB = 0;
    if (!Offset(dayA, a, generation, offsetA) || !Offset(dayB, b, generation, offsetB))
        return 0;
    const int64_t from = std::min(dayA, dayB), to = std::max(dayA, dayB);
    if (offsetA == offsetB && to - from <= kRunReach && AllUniform(from, to, offsetA, generation))
        GrowRun(run, from, to, offsetA, generation);
    return Sign2((a + offsetA) - (b + offsetB));
}

void ForgetLocalOffsets()
{
    // Skips the generation that reads as "empty" when the counter wraps.
    if (((g_generation.fetch_add(1, std::memory_order_relaxed) + 1) & kGenerationMask) == 0)
        g_generation.fetch_add(1, std::memory_order_relaxed);
    // Its generation bits are few: a run must not outlive them.
    g_run.store(0, std::memory_order_relaxed);
}

}  // namespace nyr::local

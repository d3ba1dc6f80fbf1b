#include "nyr/time/mjd_reader_p.h"

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

namespace nyr::time_detail {

namespace {

constexpr std::size_t kDays = std::size_t{1} << 16;
constexpr uint64_t kFilled = uint64_t{1} << 31, kUniform = uint64_t{1} << 30;
constexpr int64_t kDayBias = int64_t{1} << 31, kOffsetBias = int64_t{1} << 29;

uint64_t Entry(int64_t day, bool uniform, int64_t offset)
{
    return static_cast<uint64_t>(day + kDayBias) << 32 | kFilled | (uniform ? kUniform : 0) |
           static_cast<uint64_t>(uniform ? offset + kOffsetBias : 0);
}

}  // namespace

MjdReader::MjdReader() = default;

MjdReader::~MjdReader() = default;

double MjdReader::Mjd(const CNyrTime& time)
{
    const int64_t seconds = time.GetTime().GetTime();
    const int64_t day = cal::FloorDiv(seconds, cal::kSecondsPerDay);
    // Days outside these bounds lie far outside years 1..9999.
    if (day <= -kDayBias / 2 || day >= kDayBias / 2)
        return CNyrTimeHelper::GetMjd(time);
    if (m_days.empty())
        m_days.assign(kDays, 0);  // on the first time key, so sorts by numbers never pay for it
    uint64_t& entry = m_days[static_cast<uint64_t>(day) % kDays];
    if ((entry & kFilled) == 0 || static_cast<int64_t>(entry >> 32) - kDayBias != day) {
        // The same offset at the day's first and last second: no change in
        // between, as zones change at most once in a few weeks.
        int64_t first = 0, last = 0;
        const bool uniform = local::OffsetAt(day * cal::kSecondsPerDay, first) &&
                             local::OffsetAt(day * cal::kSecondsPerDay + cal::kSecondsPerDay - 1, last) &&
                             first == last && first > -kOffsetBias && first < kOffsetBias;
        entry = Entry(day, uniform, first);
    }
    if ((entry & kUniform) == 0)
        return CNyrTimeHelper::GetMjd(time);
    // The fields a breakdown gives, from the reading, and then the MJD as
    // CNyrTimeHelper::GetMjd computes it from them, operation for operation.
    const int64_t reading = seconds + static_cast<int64_t>(entry & (kUniform - 1)) - kOffsetBias;
    const cal::Civil date = cal::CivilFromDays(cal::FloorDiv(reading, cal::kSecondsPerDay));
    const auto second = static_cast<int>(cal::FloorMod(reading, cal::kSecondsPerDay));
    return CNyrTime::Mjd(static_cast<int>(date.year), date.month, date.day, second / 3600, second / 60 % 60,
                         second % 60) +
           time.GetFracSecond() / 86400.0;
}

}  // namespace nyr::time_detail

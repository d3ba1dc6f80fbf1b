#include "nyr/time/time_helper.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"
#include "nyr/time/strftime.h"
#include "nyr/time/time.h"
#include "nyr/time/time_p.h"

using namespace nyr::cal;

namespace {

constexpr int64_t kOleZeroFrom1970 = kMjdOf1970 - kMjdOfOleZero;  // 25569 days
constexpr int64_t kMicrosPerDay = kSecondsPerDay * 1000000;
// Counts beyond this many days (or seconds scaled to them) cannot name an
// instant of any kind; refusing them first keeps the arithmetic exact.
constexpr long kMaxCount = 1L << 40;

struct Reading
{
    int year, month, day, hour, minute, second;
};

constexpr Reading kRangeEarliest[] = {{100, 1, 1, 0, 0, 0}, {1601, 1, 1, 0, 0, 0}, {1970, 1, 2, 0, 0, 0}};
constexpr Reading kRangeLatest[] = {{9999, 12, 31, 0, 0, 0}, {9999, 12, 31, 0, 0, 0}, {2030, 1, 18, 23, 59, 59}};

int RangeRow(CNyrTimeHelper::eRangeType range)
{
    return range == CNyrTimeHelper::eRangeCOleDateTime ? 0 : range == CNyrTimeHelper::eRangeDateTimeCtrl ? 1 : 2;
}

// The local calendar fields of a point; all 0 when it cannot be broken down.
struct Parts
{
    long year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    auto Date() const { return std::tie(year, month, day); }
    auto Time() const { return std::tie(hour, minute, second); }
};

Parts PartsOf(const CTime& time)
{
    Parts p;
    struct tm f {};
    if (time.GetLocalTm(f))
        p = {f.tm_year + 1900L, f.tm_mon + 1L, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec};
    return p;
}

Parts PartsOf(const CNyrTime& time)
{
    return PartsOf(time.GetTime());
}

Parts PartsOf(const COleDateTime& time)
{
    return {time.GetYear(), time.GetMonth(), time.GetDay(), time.GetHour(), time.GetMinute(), time.GetSecond()};
}

bool AddElapsed(CTime& time, long count, int64_t unit)
{
    if (count > kMaxCount || count < -kMaxCount)
        return false;
    const int64_t result = time.GetTime() + count * unit;
    if (!nyr::time::InCTimeRange(result))
        return false;
    time = CTime(result);
    return true;
}

// Steps the local calendar by months and then days, keeping the time of day
// and, where the new day repeats it, the side of a repeated hour.
bool AddCalendar(CTime& time, long months, long days)
{
    if (months > kMaxCount || months < -kMaxCount || days > kMaxCount || days < -kMaxCount)
        return false;
    struct tm f {};
    if (!time.GetLocalTm(f))
        return false;
    const int64_t monthIndex = (f.tm_year + int64_t{1900}) * 12 + f.tm_mon + months;
    int64_t year = FloorDiv(monthIndex, 12);
    int month = static_cast<int>(FloorMod(monthIndex, 12)) + 1;
    if (year < nyr::local::kMinYear || year > nyr::local::kMaxYear)
        return false;
    const int day = std::min(f.tm_mday, DaysInMonth(year, month));
    const Civil c = CivilFromDays(DaysFromCivil(year, month, day) + days);
    int64_t result = 0;
    if (!nyr::local::MakeLocalLike(c.year, c.month, c.day, f.tm_hour, f.tm_min, f.tm_sec, time.GetTime(), result) ||
        !nyr::time::InCTimeRange(result))
        return false;
    time = CTime(result);
    return true;
}

double OleLinear(const Reading& r)
{
    return static_cast<double>(DaysFromCivil(r.year, r.month, r.day) + kOleZeroFrom1970) +
           (r.hour * 3600 + r.minute * 60 + r.second) / 86400.0;
}

// Moves a COleDateTime on its linear form, months first, then days.
bool AddOle(COleDateTime& time, CNyrTimeHelper::eRangeType range, long months, double days)
{
    if (time.GetStatus() != COleDateTime::valid || months > kMaxCount || months < -kMaxCount)
        return false;
    double linear = time.GetLinearDays();
    if (months != 0) {
        const double whole = std::floor(linear);
        const Civil c = CivilFromDays(static_cast<int64_t>(whole) - kOleZeroFrom1970);
        const int64_t monthIndex = c.year * 12 + (c.month - 1) + months;
        const int64_t year = FloorDiv(monthIndex, 12);
        const int month = static_cast<int>(FloorMod(monthIndex, 12)) + 1;
        if (year < 1 || year > 9999)
            return false;
        const int day = std::min(c.day, DaysInMonth(year, month));
        linear = static_cast<double>(DaysFromCivil(year, month, day) + kOleZeroFrom1970) + (linear - whole);
    }
    linear += days;
    const int row = RangeRow(range);
    if (!(linear >= OleLinear(kRangeEarliest[row]) && linear <= OleLinear(kRangeLatest[row])))
        return false;
    time.SetLinearDays(linear);
    return time.GetStatus() == COleDateTime::valid;
}

}  // namespace

// ---------------------------------------------------------------------------
// Internals shared with the other time sources

namespace nyr::time {

bool SplitDays(double days, bool towardZero, DaySplit& split)
{
    split = DaySplit{};
    if (!(std::fabs(days) <= 1099511627776.0))  // 2^40 days; also refuses NaN
        return false;
    const double whole = towardZero ? std::trunc(days) : std::floor(days);
    int64_t count = static_cast<int64_t>(whole);
    // The grid of the time of day: the microsecond, or the power of ten of
    // microseconds just above the resolution of `days` (a whole second at
    // MJD 100000 is only known to 1.3 us), so that whole seconds stay whole.
    const double resolution = std::fabs(days) * (86400e6 / 4503599627370496.0);  // |days| * 2^-52 in us
    int64_t grid = 1;
    while (static_cast<double>(grid) < resolution)
        grid *= 10;
    int64_t micros = std::llround((days - whole) * static_cast<double>(kMicrosPerDay) / static_cast<double>(grid)) * grid;
    if (micros >= kMicrosPerDay) {
        ++count;
        micros -= kMicrosPerDay;
    } else if (micros <= -kMicrosPerDay) {
        --count;
        micros += kMicrosPerDay;
    }
    split.days = count;
    split.seconds = micros / 1000000;
    split.fraction = static_cast<double>(micros % 1000000) / 1e6;
    return true;
}

bool CivilTm(int64_t days1970, int64_t secondOfDay, struct tm& fields)
{
    const Civil c = CivilFromDays(days1970);
    if (c.year < nyr::local::kMinYear || c.year > nyr::local::kMaxYear)
        return false;
    fields = {};
    fields.tm_year = static_cast<int>(c.year - 1900);
    fields.tm_mon = c.month - 1;
    fields.tm_mday = c.day;
    fields.tm_hour = static_cast<int>(secondOfDay / 3600);
    fields.tm_min = static_cast<int>(secondOfDay / 60 % 60);
    fields.tm_sec = static_cast<int>(secondOfDay % 60);
    fields.tm_wday = WeekdayFromDays(days1970);
    fields.tm_yday = DayOfYear(c.year, c.month, c.day);
    fields.tm_zone = "UTC";
    return true;
}

bool PlanRound(int flag, int minute, int second, double fraction, RoundStep& step)
{
    step = RoundStep{};
    switch (flag & ~128) {
    case CNyrTimeHelper::eRoundSecond:
        step.carry = fraction >= 0.5;
        step.delta = step.carry ? 1 : 0;
        return true;
    case CNyrTimeHelper::eRoundMinute:
        step.carry = second >= 30;
        step.delta = (step.carry ? 60 : 0) - second;
        return true;
    case CNyrTimeHelper::eRoundHour:
        step.carry = minute >= 30;
        step.delta = (step.carry ? 3600 : 0) - (minute * 60 + second);
        return true;
    case CNyrTimeHelper::eRoundThousandth:
    case CNyrTimeHelper::eRoundTenth:
    case CNyrTimeHelper::eRoundHundredth: {
        const int flagValue = flag & ~128;
        const double scale = flagValue == CNyrTimeHelper::eRoundThousandth ? 1000.0
                             : flagValue == CNyrTimeHelper::eRoundTenth    ? 10.0
                                                                           : 100.0;
        const double units = std::round(fraction * scale);
        step.carry = units >= scale;
        step.delta = step.carry ? 1 : 0;
        step.fraction = step.carry ? 0.0 : units / scale;
        return true;
    }
    default:
        return false;
    }
}

bool InCTimeRange(int64_t seconds)
{
    CTime earliest, latest;
    CNyrTimeHelper::GetPhysicalRange(earliest, latest, CNyrTimeHelper::eRangeCTime);
    return seconds >= earliest.GetTime() && seconds <= latest.GetTime();
}

namespace {

// Seconds past the last full minute (unit 60) or hour (3600) of the clock
// at an instant; false where it cannot be broken down.
bool PastFullUnit(int64_t seconds, int64_t unit, bool utc, int64_t& past)
{
    struct tm f {};
    if (!(utc ? nyr::local::BreakdownUtc(seconds, f) : nyr::local::Breakdown(seconds, f)))
        return false;
    past = (unit == 3600 ? f.tm_min * 60 : 0) + f.tm_sec;
    return true;
}

// Rounding to the minute or hour searches instants, not readings: the first
// instant after the point at which the clock shows a full minute (hour), or
// the last one at or before it. Stepping by the reading alone would land on
// :30 where a clock shift of 30 minutes lies in between (Lord Howe Island).
void RoundToFullUnit(CTime& time, double& fraction, int64_t unit, bool utc)
{
    int64_t past = 0;
    if (!PastFullUnit(time.GetTime(), unit, utc, past))
        return;
    const bool up = past >= unit / 2;
    int64_t result = time.GetTime();
    // Each step reaches the next full unit of the offset in force there; a
    // clock shift in between (zones shift at most a few times a year) moves
    // the search on once more.
    for (int step = 0; step < 4 && past != 0; ++step) {
        result += up ? unit - past : -past;
        if (!PastFullUnit(result, unit, utc, past))
            return;
    }
    if (past != 0 || (up && !InCTimeRange(result)))
        return;
    time = CTime(result);
    fraction = 0.0;
}

}  // namespace

void RoundPoint(CTime& time, double& fraction, int flag, bool utc)
{
    const int f = flag & ~128;
    if (f == CNyrTimeHelper::eRoundMinute || f == CNyrTimeHelper::eRoundHour) {
        RoundToFullUnit(time, fraction, f == CNyrTimeHelper::eRoundHour ? 3600 : 60, utc);
        return;
    }
    RoundStep step;
    if (!PlanRound(flag, 0, 0, fraction, step))
        return;
    const int64_t result = time.GetTime() + step.delta;
    if (step.carry && !InCTimeRange(result))
        return;
    time = CTime(result);
    fraction = step.fraction;
}

}  // namespace nyr::time

// ---------------------------------------------------------------------------
// MJD

double CNyrTimeHelper::GetMjd(const CNyrTime& time)
{
    struct tm f {};
    if (!time.GetTime().GetLocalTm(f))
        return 0.0;
    return CNyrTime::Mjd(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec) +
           time.GetFracSecond() / 86400.0;
}

double CNyrTimeHelper::GetMjd(const CTime& time)
{
    struct tm f {};
    if (!time.GetLocalTm(f))
        return 0.0;
    return CNyrTime::Mjd(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec);
}

double CNyrTimeHelper::GetMjd(const COleDateTime& time)
{
    if (time.GetStatus() != COleDateTime::valid)
        return 0.0;
    return static_cast<double>(kMjdOfOleZero) + time.GetLinearDays();
}

double CNyrTimeHelper::GetMjdUTC(const CNyrTime& time)
{
    return static_cast<double>(kMjdOf1970) +
           (static_cast<double>(time.GetTime().GetTime()) + time.GetFracSecond()) / 86400.0;
}

bool CNyrTimeHelper::Mjd2Ymd(double mjd, long& year, long& month, long& day, long& hour, long& minute, long& second,
                             double& fraction)
{
    year = month = day = hour = minute = second = 0;
    fraction = 0.0;
    nyr::time::DaySplit split;
    if (!nyr::time::SplitDays(mjd, false, split))
        return false;
    const Civil c = CivilFromDays(split.days - kMjdOf1970);
    year = static_cast<long>(c.year);
    month = c.month;
    day = c.day;
    hour = static_cast<long>(split.seconds / 3600);
    minute = static_cast<long>(split.seconds / 60 % 60);
    second = static_cast<long>(split.seconds % 60);
    fraction = split.fraction;
    return true;
}

bool CNyrTimeHelper::SetMjd(double mjd, CTime& time)
{
    long y, mo, d, h, mi, s;
    double fraction;
    int64_t seconds = 0;
    const bool ok = Mjd2Ymd(mjd, y, mo, d, h, mi, s, fraction) &&
                    nyr::local::MakeLocal(y, static_cast<int>(mo), static_cast<int>(d), static_cast<int>(h),
                                          static_cast<int>(mi), static_cast<int>(s), -1, seconds);
    time = CTime(ok ? seconds : 0);
    return ok;
}

bool CNyrTimeHelper::SetMjd(double mjd, CNyrTime& time)
{
    CTime whole;
    const bool ok = SetMjd(mjd, whole);
    time.SetTime(whole);
    nyr::time::DaySplit split;
    time.SetFracSecond(ok && nyr::time::SplitDays(mjd, false, split) ? split.fraction : 0.0);
    return ok;
}

bool CNyrTimeHelper::SetMjd(double mjd, COleDateTime& time)
{
    time.SetLinearDays(mjd - static_cast<double>(kMjdOfOleZero));
    return time.GetStatus() == COleDateTime::valid;
}

// ---------------------------------------------------------------------------
// Date-part and time-part tests

#define NYR_PART_TESTS(Type)                                                                                   \
    bool CNyrTimeHelper::DatePartLess(const Type& a, const Type& b) { return PartsOf(a).Date() < PartsOf(b).Date(); } \
    bool CNyrTimeHelper::DatePartEqual(const Type& a, const Type& b) { return PartsOf(a).Date() == PartsOf(b).Date(); } \
    /* The same test as TimePartGreater, intended. */                                                          \
    bool CNyrTimeHelper::DatePartGreater(const Type& a, const Type& b) { return PartsOf(a).Time() > PartsOf(b).Time(); } \
    bool CNyrTimeHelper::TimePartLess(const Type& a, const Type& b) { return PartsOf(a).Time() < PartsOf(b).Time(); } \
    bool CNyrTimeHelper::TimePartEqual(const Type& a, const Type& b) { return PartsOf(a).Time() == PartsOf(b).Time(); } \
    bool CNyrTimeHelper::TimePartGreater(const Type& a, const Type& b) { return PartsOf(a).Time() > PartsOf(b).Time(); }
NYR_PART_TESTS(CNyrTime)
NYR_PART_TESTS(CTime)
NYR_PART_TESTS(COleDateTime)
#undef NYR_PART_TESTS

// ---------------------------------------------------------------------------
// Calendar arithmetic

bool CNyrTimeHelper::AddSeconds(CTime& time, long count) { return AddElapsed(time, count, 1); }
bool CNyrTimeHelper::AddMinutes(CTime& time, long count) { return AddElapsed(time, count, 60); }
bool CNyrTimeHelper::AddHours(CTime& time, long count) { return AddElapsed(time, count, 3600); }
bool CNyrTimeHelper::AddDays(CTime& time, long count) { return AddCalendar(time, 0, count); }
bool CNyrTimeHelper::AddWeeks(CTime& time, long count)
{
    return count <= kMaxCount && count >= -kMaxCount && AddCalendar(time, 0, count * 7);
}
bool CNyrTimeHelper::AddMonths(CTime& time, long count) { return AddCalendar(time, count, 0); }
bool CNyrTimeHelper::AddYears(CTime& time, long count)
{
    return count <= kMaxCount && count >= -kMaxCount && AddCalendar(time, count * 12, 0);
}

#define NYR_ADD_ON_NYR_TIME(Name)                             \
    bool CNyrTimeHelper::Name(CNyrTime& time, long count)     \
    {                                                         \
        CTime whole = time.GetTime();                         \
        if (!Name(whole, count))                              \
            return false;                                     \
        time.SetTime(whole);                                  \
        return true;                                          \
    }
NYR_ADD_ON_NYR_TIME(AddSeconds)
NYR_ADD_ON_NYR_TIME(AddMinutes)
NYR_ADD_ON_NYR_TIME(AddHours)
NYR_ADD_ON_NYR_TIME(AddDays)
NYR_ADD_ON_NYR_TIME(AddWeeks)
NYR_ADD_ON_NYR_TIME(AddMonths)
NYR_ADD_ON_NYR_TIME(AddYears)
#undef NYR_ADD_ON_NYR_TIME

bool CNyrTimeHelper::AddSeconds(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, 0, static_cast<double>(count) / 86400.0);
}
bool CNyrTimeHelper::AddMinutes(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, 0, static_cast<double>(count) / 1440.0);
}
bool CNyrTimeHelper::AddHours(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, 0, static_cast<double>(count) / 24.0);
}
bool CNyrTimeHelper::AddDays(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, 0, static_cast<double>(count));
}
bool CNyrTimeHelper::AddWeeks(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, 0, 7.0 * static_cast<double>(count));
}
bool CNyrTimeHelper::AddMonths(COleDateTime& time, long count, eRangeType range)
{
    return AddOle(time, range, count, 0.0);
}
bool CNyrTimeHelper::AddYears(COleDateTime& time, long count, eRangeType range)
{
    return count <= kMaxCount && count >= -kMaxCount && AddOle(time, range, count * 12, 0.0);
}

// ---------------------------------------------------------------------------
// Ranges

void CNyrTimeHelper::GetPhysicalRange(CTime& earliest, CTime& latest, eRangeType range)
{
    const Reading& e = kRangeEarliest[RangeRow(range)];
    const Reading& l = kRangeLatest[RangeRow(range)];
    earliest = CTime(e.year, e.month, e.day, e.hour, e.minute, e.second);
    latest = CTime(l.year, l.month, l.day, l.hour, l.minute, l.second);
}

void CNyrTimeHelper::GetPhysicalRange(CNyrTime& earliest, CNyrTime& latest, eRangeType range)
{
    CTime e, l;
    GetPhysicalRange(e, l, range);
    earliest = e;
    latest = l;
}

void CNyrTimeHelper::GetPhysicalRange(double& earliestMjd, double& latestMjd, eRangeType range)
{
    const Reading& e = kRangeEarliest[RangeRow(range)];
    const Reading& l = kRangeLatest[RangeRow(range)];
    earliestMjd = CNyrTime::Mjd(e.year, e.month, e.day, e.hour, e.minute, e.second);
    latestMjd = CNyrTime::Mjd(l.year, l.month, l.day, l.hour, l.minute, l.second);
}

void CNyrTimeHelper::GetPhysicalRange(COleDateTime& earliest, COleDateTime& latest, eRangeType range)
{
    const Reading& e = kRangeEarliest[RangeRow(range)];
    const Reading& l = kRangeLatest[RangeRow(range)];
    earliest.SetDateTime(e.year, e.month, e.day, e.hour, e.minute, e.second);
    latest.SetDateTime(l.year, l.month, l.day, l.hour, l.minute, l.second);
}

void CNyrTimeHelper::GetPhysicalRange(SYSTEMTIME& earliest, SYSTEMTIME& latest, eRangeType range)
{
    auto fill = [](const Reading& r, SYSTEMTIME& st) {
        st.wYear = static_cast<uint16_t>(r.year);
        st.wMonth = static_cast<uint16_t>(r.month);
        st.wDayOfWeek = static_cast<uint16_t>(WeekdayFromDays(DaysFromCivil(r.year, r.month, r.day)));
        st.wDay = static_cast<uint16_t>(r.day);
        st.wHour = static_cast<uint16_t>(r.hour);
        st.wMinute = static_cast<uint16_t>(r.minute);
        st.wSecond = static_cast<uint16_t>(r.second);
        st.wMilliseconds = 0;
    };
    fill(kRangeEarliest[RangeRow(range)], earliest);
    fill(kRangeLatest[RangeRow(range)], latest);
}

// ---------------------------------------------------------------------------
// Rounding

double CNyrTimeHelper::Round(CTime& time, eRoundFlag flag)
{
    double fraction = 0.0;
    nyr::time::RoundPoint(time, fraction, flag, false);
    return GetMjd(time);
}

double CNyrTimeHelper::Round(CNyrTime& time, eRoundFlag flag)
{
    CTime whole = time.GetTime();
    double fraction = time.GetFracSecond();
    nyr::time::RoundPoint(whole, fraction, flag, false);
    time.SetTime(whole);
    time.SetFracSecond(fraction);
    return GetMjd(time);
}

double CNyrTimeHelper::Round(COleDateTime& time, eRoundFlag flag)
{
    nyr::time::DaySplit split;
    if (time.GetStatus() != COleDateTime::valid || !nyr::time::SplitDays(time.GetLinearDays(), false, split))
        return GetMjd(time);
    nyr::time::RoundStep step;
    if (!nyr::time::PlanRound(flag, static_cast<int>(split.seconds / 60 % 60), static_cast<int>(split.seconds % 60),
                              split.fraction, step))
        return GetMjd(time);
    const double linear = static_cast<double>(split.days) +
                          (static_cast<double>(split.seconds + step.delta) + step.fraction) / 86400.0;
    const int row = RangeRow(eRangeCOleDateTime);
    if (!step.carry || (linear >= OleLinear(kRangeEarliest[row]) && linear < OleLinear(kRangeLatest[row]) + 1.0))
        time.SetLinearDays(linear);
    return GetMjd(time);
}

// ---------------------------------------------------------------------------
// Text

std::string CNyrTimeHelper::Format(const COleDateTime& time, const std::string& pattern, eRoundFlag flag)
{
    if (time.GetStatus() == COleDateTime::invalid)
        return "Invalid DateTime";
    COleDateTime rounded = time;
    Round(rounded, flag);
    nyr::time::DaySplit split;
    struct tm fields {};
    if (rounded.GetStatus() != COleDateTime::valid || !nyr::time::SplitDays(rounded.GetLinearDays(), false, split) ||
        !nyr::time::CivilTm(split.days - kOleZeroFrom1970, split.seconds, fields))
        return {};
    char buffer[kNyrStrftimeBufferSize];
    return std::string(buffer, NyrStrftime(buffer, sizeof buffer, pattern.c_str(), fields));
}

#include "nyr/time/time_span.h"

#include <cfloat>
#include <cmath>
#include <cstdint>

#include "nyr/platform/calendar_p.h"
#include "nyr/time/time_p.h"

using nyr::cal::FloorDiv;
using nyr::cal::FloorMod;

namespace {

constexpr int64_t kLongestCTimeSpan = 2147483647;
constexpr int64_t kLongestCtrlSpan = 86399;

int64_t LongestSeconds(CNyrTimeSpanHelper::eRangeType range)
{
    return range == CNyrTimeSpanHelper::eRangeCOleDateTimeSpan ? INT64_MAX
           : range == CNyrTimeSpanHelper::eRangeTimeSpanCtrl   ? kLongestCtrlSpan
                                                               : kLongestCTimeSpan;
}

double LongestDays(CNyrTimeSpanHelper::eRangeType range)
{
    return range == CNyrTimeSpanHelper::eRangeCOleDateTimeSpan ? DBL_MAX
                                                               : static_cast<double>(LongestSeconds(range)) / 86400.0;
}

// a + count * unit seconds when the result stays within the CTimeSpan range.
bool MoveSeconds(CTimeSpan& span, long count, int64_t unit)
{
    int64_t delta = 0;
    int64_t result = 0;
    if (__builtin_mul_overflow(static_cast<int64_t>(count), unit, &delta) ||
        __builtin_add_overflow(span.GetTimeSpan(), delta, &result) || result < 0 || result > kLongestCTimeSpan)
        return false;
    span = result;
    return true;
}

bool MoveSeconds(CNyrTimeSpan& span, long count, int64_t unit)
{
    CTimeSpan whole = span.GetTimeSpan();
    if (!MoveSeconds(whole, count, unit))
        return false;
    span.SetTimeSpan(whole);
    return true;
}

bool MoveDays(COleDateTimeSpan& span, double days, CNyrTimeSpanHelper::eRangeType range)
{
    if (span.GetStatus() != COleDateTimeSpan::valid)
        return false;
    const double result = span.m_span + days;
    if (!(result >= 0.0 && result <= LongestDays(range)))  // also refuses NaN and infinity
        return false;
    span.m_span = result;
    return true;
}

// Whole seconds (toward the earlier second) and fraction of a day count.
bool SplitSeconds(double days, int64_t& seconds, double& fraction)
{
    nyr::time::DaySplit split;
    if (!nyr::time::SplitDays(days, false, split)) {
        seconds = 0;
        fraction = 0.0;
        return false;
    }
    seconds = split.days * 86400 + split.seconds;
    fraction = split.fraction;
    return true;
}

// Rounds whole seconds and fraction; a carry beyond `longest` is refused.
void RoundSeconds(int64_t& seconds, double& fraction, int flag, int64_t longest)
{
    nyr::time::RoundStep step;
    if (!nyr::time::PlanRound(flag, static_cast<int>(FloorMod(FloorDiv(seconds, 60), 60)),
                              static_cast<int>(FloorMod(seconds, 60)), fraction, step))
        return;
    if (step.carry && seconds > longest - step.delta)
        return;
    seconds += step.delta;
    fraction = step.fraction;
}

std::string FormatSeconds(int64_t seconds, const std::string& patternIn)
{
    std::string pattern = patternIn;
    const char* token = pattern.find("%h") != std::string::npos ? "%h"
                        : pattern.find("%H") != std::string::npos ? "%H"
                                                                  : nullptr;
    if (token)
        for (std::size_t at = pattern.find(token); at != std::string::npos; at = pattern.find(token, at + 3))
            pattern.replace(at, 2, "%%u");
    const CTimeSpan span(seconds);
    std::string text = span.Format(pattern);
    if (!token)
        return text;
    // Total hours, unless the text still shows "%D" (only a "%%D" in the
    // pattern leaves one): kept as it is.
    const int64_t hours = text.find("%D") != std::string::npos ? span.GetHours() : span.GetTotalHours();
    const std::string number = std::to_string(hours);
    for (std::size_t at = text.find("%u"); at != std::string::npos; at = text.find("%u", at + number.size()))
        text.replace(at, 2, number);
    return text;
}

}  // namespace

// ---------------------------------------------------------------------------
// CNyrTimeSpan

CNyrTimeSpan::CNyrTimeSpan(const CTimeSpan& span) : m_span(span) {}

CNyrTimeSpan::CNyrTimeSpan(long seconds) : m_span(seconds) {}

CNyrTimeSpan::CNyrTimeSpan(long days, int hours, int minutes, int seconds) : m_span(days, hours, minutes, seconds)
{
}

CNyrTimeSpan::CNyrTimeSpan(double days)
{
    Mjd(days);
}

CNyrTimeSpan::CNyrTimeSpan(int gpsWeek, const double& gpsSecondsOfWeek)
{
    SetGpsTimeSpan(gpsWeek, gpsSecondsOfWeek);
    m_fracSecond = 0.0;
}

void CNyrTimeSpan::SetFracSecond(double fraction)
{
    m_fracSecond = fraction >= 0.0 && fraction < 1.0 ? fraction : 0.0;
}

double CNyrTimeSpan::Mjd() const
{
    return CNyrTimeSpanHelper::GetMjd(*this);
}

void CNyrTimeSpan::Mjd(double days)
{
    CNyrTimeSpanHelper::SetMjd(days, *this);
}

void CNyrTimeSpan::SetGpsTimeSpan(int week, const double& secondsOfWeek)
{
    Mjd(7.0 * week + secondsOfWeek / 86400.0);
}

bool CNyrTimeSpan::GetGpsTimeSpan(int& week, double& secondsOfWeek) const
{
    const double days = Mjd();
    week = static_cast<int>(std::trunc(days / 7.0));
    secondsOfWeek = (days - 7.0 * week) * 86400.0;
    return true;
}

double CNyrTimeSpan::Round(int flag)
{
    return CNyrTimeSpanHelper::Round(*this, static_cast<CNyrTimeSpanHelper::eRoundFlag>(flag));
}

std::string CNyrTimeSpan::Format(const std::string& pattern, int round) const
{
    return CNyrTimeSpanHelper::Format(*this, pattern, static_cast<CNyrTimeSpanHelper::eRoundFlag>(round));
}

std::string CNyrTimeSpan::Format(NyrResourceHandle module, unsigned id, int round) const
{
    return Format(NyrLoadString(module, id), round);
}

// ---------------------------------------------------------------------------
// Day counts

double CNyrTimeSpanHelper::GetMjd(const CTimeSpan& span)
{
    return static_cast<double>(span.GetTimeSpan()) / 86400.0;
}

double CNyrTimeSpanHelper::GetMjd(const CNyrTimeSpan& span)
{
    return span.GetFracSecond() / 86400.0 + static_cast<double>(span.GetTimeSpan().GetTimeSpan()) / 86400.0;
}

double CNyrTimeSpanHelper::GetMjd(const COleDateTimeSpan& span)
{
    return span.GetStatus() == COleDateTimeSpan::valid ? span.m_span : 0.0;
}

bool CNyrTimeSpanHelper::SetMjd(double days, CTimeSpan& span)
{
    int64_t seconds = 0;
    double fraction = 0.0;
    const bool ok = SplitSeconds(days, seconds, fraction);
    span = seconds;
    return ok;
}

bool CNyrTimeSpanHelper::SetMjd(double days, CNyrTimeSpan& span)
{
    int64_t seconds = 0;
    double fraction = 0.0;
    const bool ok = SplitSeconds(days, seconds, fraction);
    span.SetTimeSpan(seconds);
    span.SetFracSecond(fraction);
    return ok;
}

bool CNyrTimeSpanHelper::SetMjd(double days, COleDateTimeSpan& span)
{
    span.m_span = std::isfinite(days) ? days : 0.0;
    span.m_status = std::isfinite(days) ? COleDateTimeSpan::valid : COleDateTimeSpan::invalid;
    return std::isfinite(days);
}

bool CNyrTimeSpanHelper::Mjd2Hms(double days, long& d, long& hours, long& minutes, long& seconds, double& fraction)
{
    nyr::time::DaySplit split;
    const bool ok = nyr::time::SplitDays(days, true, split);
    d = static_cast<long>(split.days);
    hours = static_cast<long>(split.seconds / 3600);
    minutes = static_cast<long>((split.seconds - 3600 * hours) / 60);
    seconds = static_cast<long>(split.seconds % 60);
    fraction = split.fraction;
    return ok;
}

// ---------------------------------------------------------------------------
// Rounding

double CNyrTimeSpanHelper::Round(CTimeSpan& span, eRoundFlag flag)
{
    int64_t seconds = span.GetTimeSpan();
    double fraction = 0.0;
    RoundSeconds(seconds, fraction, flag, kLongestCTimeSpan);
    span = seconds;
    return GetMjd(span);
}

double CNyrTimeSpanHelper::Round(CNyrTimeSpan& span, eRoundFlag flag)
{
    int64_t seconds = span.GetTimeSpan().GetTimeSpan();
    double fraction = span.GetFracSecond();
    RoundSeconds(seconds, fraction, flag, kLongestCTimeSpan);
    span.SetTimeSpan(seconds);
    span.SetFracSecond(fraction);
    return GetMjd(span);
}

double CNyrTimeSpanHelper::Round(COleDateTimeSpan& span, eRoundFlag flag)
{
    int64_t seconds = 0;
    double fraction = 0.0;
    if (span.GetStatus() != COleDateTimeSpan::valid || !SplitSeconds(span.m_span, seconds, fraction))
        return GetMjd(span);
    nyr::time::RoundStep step;
    if (nyr::time::PlanRound(flag, static_cast<int>(FloorMod(FloorDiv(seconds, 60), 60)),
                             static_cast<int>(FloorMod(seconds, 60)), fraction, step))
        span.m_span = (static_cast<double>(seconds + step.delta) + step.fraction) / 86400.0;
    return GetMjd(span);
}

// ---------------------------------------------------------------------------
// Range-checked arithmetic

bool CNyrTimeSpanHelper::AddTimeSpan(CTimeSpan& a, const CTimeSpan& b)
{
    return MoveSeconds(a, 1, b.GetTimeSpan());
}

bool CNyrTimeSpanHelper::AddTimeSpan(CNyrTimeSpan& a, const CNyrTimeSpan& b)
{
    return MoveSeconds(a, 1, b.GetTimeSpan().GetTimeSpan());
}

bool CNyrTimeSpanHelper::AddTimeSpan(COleDateTimeSpan& a, const COleDateTimeSpan& b, eRangeType range)
{
    return b.GetStatus() == COleDateTimeSpan::valid && MoveDays(a, b.m_span, range);
}

bool CNyrTimeSpanHelper::SubtractTimeSpan(CTimeSpan& a, const CTimeSpan& b)
{
    return MoveSeconds(a, -1, b.GetTimeSpan());
}

bool CNyrTimeSpanHelper::SubtractTimeSpan(CNyrTimeSpan& a, const CNyrTimeSpan& b)
{
    return MoveSeconds(a, -1, b.GetTimeSpan().GetTimeSpan());
}

bool CNyrTimeSpanHelper::SubtractTimeSpan(COleDateTimeSpan& a, const COleDateTimeSpan& b, eRangeType range)
{
    return b.GetStatus() == COleDateTimeSpan::valid && MoveDays(a, -b.m_span, range);
}

bool CNyrTimeSpanHelper::AddSeconds(CTimeSpan& span, long count) { return MoveSeconds(span, count, 1); }
bool CNyrTimeSpanHelper::AddMinutes(CTimeSpan& span, long count) { return MoveSeconds(span, count, 60); }
bool CNyrTimeSpanHelper::AddHours(CTimeSpan& span, long count) { return MoveSeconds(span, count, 3600); }
bool CNyrTimeSpanHelper::AddDays(CTimeSpan& span, long count) { return MoveSeconds(span, count, 86400); }
bool CNyrTimeSpanHelper::AddSeconds(CNyrTimeSpan& span, long count) { return MoveSeconds(span, count, 1); }
bool CNyrTimeSpanHelper::AddMinutes(CNyrTimeSpan& span, long count) { return MoveSeconds(span, count, 60); }
bool CNyrTimeSpanHelper::AddHours(CNyrTimeSpan& span, long count) { return MoveSeconds(span, count, 3600); }
bool CNyrTimeSpanHelper::AddDays(CNyrTimeSpan& span, long count) { return MoveSeconds(span, count, 86400); }

bool CNyrTimeSpanHelper::AddSeconds(COleDateTimeSpan& span, long count, eRangeType range)
{
    return MoveDays(span, static_cast<double>(count) / 86400.0, range);
}
bool CNyrTimeSpanHelper::AddMinutes(COleDateTimeSpan& span, long count, eRangeType range)
{
    return MoveDays(span, static_cast<double>(count) / 1440.0, range);
}
bool CNyrTimeSpanHelper::AddHours(COleDateTimeSpan& span, long count, eRangeType range)
{
    return MoveDays(span, static_cast<double>(count) / 24.0, range);
}
bool CNyrTimeSpanHelper::AddDays(COleDateTimeSpan& span, long count, eRangeType range)
{
    return MoveDays(span, static_cast<double>(count), range);
}

// ---------------------------------------------------------------------------
// Ranges

void CNyrTimeSpanHelper::GetPhysicalRange(CTimeSpan& shortest, CTimeSpan& longest, eRangeType range)
{
    shortest = 0;
    longest = LongestSeconds(range);
}

void CNyrTimeSpanHelper::GetPhysicalRange(CNyrTimeSpan& shortest, CNyrTimeSpan& longest, eRangeType range)
{
    shortest = CNyrTimeSpan();
    longest = CNyrTimeSpan(CTimeSpan(LongestSeconds(range)));
}

void CNyrTimeSpanHelper::GetPhysicalRange(double& shortest, double& longest, eRangeType range)
{
    GetPhysicalRangeMjd(shortest, longest, range);
    if (range != eRangeCOleDateTimeSpan && range != eRangeTimeSpanCtrl)
        longest = static_cast<double>(kLongestCTimeSpan);  // seconds, not days: intended
}

void CNyrTimeSpanHelper::GetPhysicalRange(COleDateTimeSpan& shortest, COleDateTimeSpan& longest, eRangeType range)
{
    double first = 0.0, last = 0.0;
    GetPhysicalRangeMjd(first, last, range);
    shortest = COleDateTimeSpan(first);
    longest = COleDateTimeSpan(last);
}

void CNyrTimeSpanHelper::GetPhysicalRangeMjd(double& shortest, double& longest, eRangeType range)
{
    shortest = 0.0;
    longest = LongestDays(range);
}

// ---------------------------------------------------------------------------
// Text

std::string CNyrTimeSpanHelper::Format(const CTimeSpan& span, const std::string& pattern, eRoundFlag flag)
{
    CTimeSpan rounded = span;
    Round(rounded, flag);
    return FormatSeconds(rounded.GetTimeSpan(), pattern);
}

std::string CNyrTimeSpanHelper::Format(const CNyrTimeSpan& span, const std::string& pattern, eRoundFlag flag)
{
    CNyrTimeSpan rounded = span;
    Round(rounded, flag);
    return FormatSeconds(rounded.GetTimeSpan().GetTimeSpan(), pattern);
}

std::string CNyrTimeSpanHelper::Format(const COleDateTimeSpan& span, const std::string& pattern, eRoundFlag flag)
{
    COleDateTimeSpan rounded = span;
    Round(rounded, flag);
    int64_t seconds = 0;
    double fraction = 0.0;
    if (rounded.GetStatus() != COleDateTimeSpan::valid || !SplitSeconds(rounded.m_span, seconds, fraction))
        return {};
    return FormatSeconds(seconds, pattern);
}

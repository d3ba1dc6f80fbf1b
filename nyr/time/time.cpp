#include "nyr/time/time.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"
#include "nyr/time/strftime.h"
#include "nyr/time/time_p.h"

using namespace nyr::cal;

namespace {

constexpr double kMjdOfGpsWeekZero = 44244.0;  // 1980-01-06
constexpr double kSecondsPerWeek = 604800.0;

// The system time zone and daylight offset in hours, computed once.
struct ZoneState
{
    bool known = false;
    double zone = 0.0;
    double daylight = 0.0;
};

ZoneState& StaticSystemZone()
{
    static ZoneState state;
    if (!state.known) {
        state.zone = CNyrTime::LocalTimeZone(state.daylight);
        state.known = true;
    }
    return state;
}

std::string Expand(const CTime& time, double fraction, const char* pattern, int round, bool utc)
{
    CTime rounded = time;
    nyr::time::RoundPoint(rounded, fraction, round, utc);
    struct tm fields {};
    if (!(utc ? rounded.GetGmtTm(fields) : rounded.GetLocalTm(fields)))
        return {};
    char buffer[kNyrStrftimeBufferSize];
    return std::string(buffer, NyrStrftime(buffer, sizeof buffer, pattern, fields));
}

// The pattern of a row, or of the current format, without a copy.
const char* PatternOf(CNyrTime::eTimeFormat format)
{
    const char* row = CNyrTime::TimeFormatPattern(format);
    return row ? row : nyr::time::CurrentPattern().c_str();
}

std::string DatePattern()
{
    std::string date;
    nyr::time::SplitPattern(nyr::time::CurrentPattern().c_str(), &date, nullptr);
    return date;
}

std::string TimePattern()
{
    std::string time;
    nyr::time::SplitPattern(nyr::time::CurrentPattern().c_str(), nullptr, &time);
    return time;
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction

CNyrTime::CNyrTime(const CTime& time) : m_time(time), m_fracSecond(0.0), m_timezone(SystemTimezone())
{
    nyr::time::EnsureFormatLoaded();
}

CNyrTime::CNyrTime() : CNyrTime(CTime::GetCurrentTime()) {}

CNyrTime::CNyrTime(int64_t seconds) : CNyrTime(CTime(seconds)) {}

CNyrTime::CNyrTime(int year, int month, int day, int hour, int minute, int second, int dst)
    : CNyrTime(CTime(year, month, day, hour, minute, second, dst))
{
}

CNyrTime::CNyrTime(uint16_t dosDate, uint16_t dosTime, int dst) : CNyrTime(CTime(dosDate, dosTime, dst)) {}

CNyrTime::CNyrTime(const SYSTEMTIME& systemTime, int dst) : CNyrTime(CTime(systemTime, dst)) {}

CNyrTime::CNyrTime(const FILETIME& fileTime, int dst) : CNyrTime(CTime(fileTime, dst)) {}

CNyrTime::CNyrTime(const std::string& text, const std::string& format) : CNyrTime(CTime())
{
    ScanTime(text, format);
}

CNyrTime::CNyrTime(int gpsWeek, double gpsSecondsOfWeek) : CNyrTime(CTime())
{
    SetGpsTime(gpsWeek, gpsSecondsOfWeek);
}

CNyrTime::CNyrTime(double mjd) : CNyrTime(CTime())
{
    Mjd(mjd);
}

CNyrTime& CNyrTime::operator=(const CTime& time)
{
    m_time = time;
    m_fracSecond = 0.0;
    return *this;
}

CNyrTime& CNyrTime::operator=(double mjd)
{
    Mjd(mjd);
    return *this;
}

void CNyrTime::SetFracSecond(double fraction)
{
    m_fracSecond = fraction >= 0.0 && fraction < 1.0 ? fraction : 0.0;
}

int CNyrTime::GetMilliSeconds() const
{
    return std::min(999, static_cast<int>(m_fracSecond * 1000.0));
}

// ---------------------------------------------------------------------------
// MJD

double CNyrTime::Mjd() const
{
    return CNyrTimeHelper::GetMjd(*this);
}

void CNyrTime::Mjd(double mjd)
{
    CNyrTimeHelper::SetMjd(mjd, *this);
}

double CNyrTime::MjdUTC() const
{
    struct tm fields {};
    if (!m_time.GetLocalTm(fields))
        return 0.0;
    return Mjd() + m_timezone / 24.0;
}

void CNyrTime::MjdUTC(double mjd)
{
    Mjd(mjd - m_timezone / 24.0);
}

double CNyrTime::Mjd(int year, int month, int day, int hour, int minute, double second, unsigned long& dayNumber,
                     double& dayFraction)
{
    dayFraction = minute / 24.0 / 60.0 + second / 24.0 / 3600.0 + hour / 24.0;
    long y = year;
    long m = month;
    if (m < 3) {
        y -= 1;
        m += 12;
    }
    const long b = y / 100;
    const long n = static_cast<long>(std::trunc(365.25 * static_cast<double>(y))) +
                   static_cast<long>(std::trunc(30.6001 * static_cast<double>(m + 1))) + b / 4 - b + day - 679004;
    dayNumber = static_cast<unsigned long>(n);
    return static_cast<double>(n) + dayFraction;
}

double CNyrTime::Mjd(int year, int month, int day, int hour, int minute, double second)
{
    unsigned long dayNumber = 0;
    double dayFraction = 0.0;
    return Mjd(year, month, day, hour, minute, second, dayNumber, dayFraction);
}

// ---------------------------------------------------------------------------
// GPS time

double CNyrTime::GpsTime(int week, double secondsOfWeek)
{
    return 7.0 * week + secondsOfWeek / 86400.0 + kMjdOfGpsWeekZero;
}

double CNyrTime::SetGpsTime(int week, double secondsOfWeek)
{
    Mjd(GpsTime(week, secondsOfWeek));
    return Mjd();
}

bool CNyrTime::GetGpsTime(int& week, double& secondsOfWeek) const
{
    const double days = Mjd() - kMjdOfGpsWeekZero;
    week = static_cast<int>(std::trunc(days / 7.0));  // toward zero, intended: a point before week 0 gives week 0
    secondsOfWeek = (days - 7.0 * week) * 86400.0;
    return week >= 0 && secondsOfWeek >= 0.0 && secondsOfWeek < kSecondsPerWeek;
}

// ---------------------------------------------------------------------------
// Time zone

double CNyrTime::LocalTimeZone(double& daylightHours)
{
    tzset();
    const time_t now = time(nullptr);
    struct tm fields {};
    daylightHours = localtime_r(&now, &fields) && fields.tm_isdst > 0 ? 1.0 : 0.0;
    const ldiv_t hours = ldiv(timezone, 3600);  // `timezone`: seconds west of UTC, standard time
    const ldiv_t minutes = ldiv(hours.rem, 60);
    const double value = std::labs(hours.quot) + std::labs(minutes.quot) / 60.0;
    // The sign follows the whole-hour quotient alone, intended: UTC+0:30
    // reads -0.5 and UTC itself -0.0.
    return hours.quot < 0 ? value : -value;
}

double CNyrTime::SystemTimezone(int withDaylight)
{
    const ZoneState& zone = StaticSystemZone();
    return withDaylight != 0 ? zone.zone + zone.daylight : zone.zone;
}

double CNyrTime::SystemDaylight()
{
    return StaticSystemZone().daylight;
}

double CNyrTime::SystemTimezoneMjd(int withDaylight)
{
    return SystemTimezone(withDaylight) / 24.0;
}

double CNyrTime::SystemDaylightMjd()
{
    return SystemDaylight() / 24.0;
}

void CNyrTime::RefreshSystemTimezone()
{
    ZoneState& zone = StaticSystemZone();
    zone.zone = LocalTimeZone(zone.daylight);
    nyr::local::ForgetLocalOffsets();
}

double CNyrTime::CurrentTime()
{
    return CNyrTime().Mjd();
}

double CNyrTime::CurrentTimeUTC()
{
    return static_cast<double>(kMjdOf1970) + static_cast<double>(time(nullptr)) / 86400.0;
}

// ---------------------------------------------------------------------------
// Text

std::string CNyrTime::Format(int round) const
{
    return Expand(m_time, m_fracSecond, nyr::time::CurrentPattern().c_str(), round, false);
}

std::string CNyrTime::Format(const std::string& pattern, int round) const
{
    return Expand(m_time, m_fracSecond, pattern.c_str(), round, false);
}

std::string CNyrTime::Format(eTimeFormat format, int round) const
{
    return Expand(m_time, m_fracSecond, PatternOf(format), round, false);
}

std::string CNyrTime::Format(NyrResourceHandle module, unsigned id, int round) const
{
    return Format(NyrLoadString(module, id), round);
}

std::string CNyrTime::FormatDate(int round) const
{
    return Format(DatePattern(), round);
}

std::string CNyrTime::FormatTime(int round) const
{
    return Format(TimePattern(), round);
}

std::string CNyrTime::FormatFracSec(int round) const
{
    CTime time = m_time;
    double fraction = m_fracSecond;
    nyr::time::RoundPoint(time, fraction, round, false);
    const int flag = round & ~128;
    const int digits = flag == CNyrTimeHelper::eRoundTenth ? 1 : flag == CNyrTimeHelper::eRoundHundredth ? 2 : 3;
    const int scale = digits == 1 ? 10 : digits == 2 ? 100 : 1000;
    // The small bias keeps 0.123 (stored as 0.12299999...) at 123.
    const int value = std::min(scale - 1, static_cast<int>(std::floor(fraction * scale + 1e-7)));
    char text[16];
    std::snprintf(text, sizeof text, ".%0*d", digits, std::max(0, value));
    return text;
}

std::string CNyrTime::FormatUTC(int round) const
{
    return Expand(m_time, m_fracSecond, nyr::time::CurrentPattern().c_str(), round, true);
}

std::string CNyrTime::FormatUTC(const std::string& pattern, int round) const
{
    return Expand(m_time, m_fracSecond, pattern.c_str(), round, true);
}

std::string CNyrTime::FormatUTC(eTimeFormat format, int round) const
{
    return Expand(m_time, m_fracSecond, PatternOf(format), round, true);
}

std::string CNyrTime::FormatDateUTC(int round) const
{
    return FormatUTC(DatePattern(), round);
}

std::string CNyrTime::FormatTimeUTC(int round) const
{
    return FormatUTC(TimePattern(), round);
}

std::string CNyrTime::FormatUTC(double mjd, const std::string& pattern, int round)
{
    nyr::time::DaySplit split;
    if (!nyr::time::SplitDays(mjd, false, split))
        return {};
    nyr::time::RoundStep step;
    if (nyr::time::PlanRound(round, static_cast<int>(split.seconds / 60 % 60), static_cast<int>(split.seconds % 60),
                             split.fraction, step))
        split.seconds += step.delta;
    struct tm fields {};
    if (!nyr::time::CivilTm(split.days - kMjdOf1970 + FloorDiv(split.seconds, kSecondsPerDay),
                            FloorMod(split.seconds, kSecondsPerDay), fields))
        return {};
    char buffer[kNyrStrftimeBufferSize];
    return std::string(buffer, NyrStrftime(buffer, sizeof buffer, pattern.c_str(), fields));
}

std::string CNyrTime::FormatDateUTC(double mjd, int round)
{
    return FormatUTC(mjd, DatePattern(), round);
}

std::string CNyrTime::FormatTimeUTC(double mjd, int round)
{
    return FormatUTC(mjd, TimePattern(), round);
}

// ---------------------------------------------------------------------------
// Rounding, file stamps, comparison

double CNyrTime::Round(int flag)
{
    return CNyrTimeHelper::Round(*this, static_cast<CNyrTimeHelper::eRoundFlag>(flag));
}

FILETIME CNyrTime::CduFilestamp() const
{
    constexpr int64_t kSecondsFrom1601 = kDaysFrom1601To1970 * kSecondsPerDay;
    constexpr int64_t kMaxSeconds = INT64_MAX / kTicksPerSecond - kSecondsFrom1601 - 1;
    const int64_t seconds = m_time.GetTime();
    if (seconds < -kSecondsFrom1601 || seconds > kMaxSeconds)
        return FILETIME{};
    const auto ticks = std::min<int64_t>(kTicksPerSecond - 1, std::llround(m_fracSecond * kTicksPerSecond));
    return NyrFileTimeFromTicks(static_cast<uint64_t>((seconds + kSecondsFrom1601) * kTicksPerSecond + ticks));
}

double CNyrTime::SetCduFilestamp(const FILETIME& stamp)
{
    const uint64_t ticks = NyrFileTimeTicks(stamp);
    if (ticks >= (uint64_t{1} << 63)) {
        m_time = CTime();
        m_fracSecond = 0.0;
        return 0.0;
    }
    m_time = CTime(static_cast<int64_t>(ticks / kTicksPerSecond) - kDaysFrom1601To1970 * kSecondsPerDay);
    m_fracSecond = static_cast<double>(ticks % kTicksPerSecond) / kTicksPerSecond;
    return Mjd();
}

bool CNyrTime::operator==(const CNyrTime& other) const
{
    return m_time == other.m_time && m_fracSecond == other.m_fracSecond;
}

bool CNyrTime::operator<(const CNyrTime& other) const
{
    return m_time < other.m_time || (m_time == other.m_time && m_fracSecond < other.m_fracSecond);
}

#include "nyr/platform/framework_time.h"

#include <cmath>
#include <cstdio>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

using namespace nyr::cal;

// ---------------------------------------------------------------------------
// Local time

namespace nyr::local {

namespace {

bool InYears(const struct tm& fields)
{
    const int64_t year = int64_t{fields.tm_year} + 1900;
    return year >= kMinYear && year <= kMaxYear;
}

}  // namespace

bool Breakdown(int64_t seconds, struct tm& fields)
{
    const time_t t = static_cast<time_t>(seconds);
    return localtime_r(&t, &fields) && InYears(fields);
}

bool BreakdownUtc(int64_t seconds, struct tm& fields)
{
    const time_t t = static_cast<time_t>(seconds);
    return gmtime_r(&t, &fields) && InYears(fields);
}

bool MakeLocal(int64_t year, int month, int day, int hour, int minute, int second, int dst, int64_t& seconds)
{
    if (!ValidFields(year, month, day, hour, minute, second, kMinYear, kMaxYear))
        return false;
    struct tm fields {};
    fields.tm_year = static_cast<int>(year - 1900);
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = dst < 0 ? -1 : (dst > 0 ? 1 : 0);
    fields.tm_wday = -1;  // mktime sets it on success only: -1 is its failure mark (a result of -1 is a real time)
    const time_t t = mktime(&fields);
    if (fields.tm_wday < 0)
        return false;
    seconds = t;
    return true;
}

bool MakeLocalLike(int64_t year, int month, int day, int hour, int minute, int second, int64_t like,
                   int64_t& seconds)
{
    if (!MakeLocal(year, month, day, hour, minute, second, -1, seconds))
        return false;
    struct tm likeFields {};
    int64_t likeOffset = 0;
    if (!OffsetAt(like, likeOffset, &likeFields))
        return true;
    // The instants that read so are the reading less an offset in force
    // near it; zones change their offset at most once in a few weeks.
    const int64_t reading = DaysFromCivil(year, month, day) * 86400 + hour * int64_t{3600} + minute * 60 + second;
    // The platform's choice comes first among equals.
    int64_t offsets[4] = {likeOffset, likeOffset, likeOffset, likeOffset};
    const int64_t near[3] = {seconds, seconds - 86400, seconds + 86400};
    for (int i = 0; i < 3; ++i)
        OffsetAt(near[i], offsets[i + 1]);
    int bestScore = -1;
    for (const int64_t offset : offsets) {
        const int64_t candidate = reading - offset;
        struct tm fields {};
        int64_t actual = 0;
        if (!OffsetAt(candidate, actual, &fields) || actual != offset)
            continue;  // does not read so: the offset is not in force there
        const int score = offset == likeOffset ? 2 : fields.tm_isdst == likeFields.tm_isdst ? 1 : 0;
        if (score > bestScore) {
            bestScore = score;
            seconds = candidate;
        }
    }
    return true;
}

}  // namespace nyr::local

// ---------------------------------------------------------------------------
// CTimeSpan

std::string CTimeSpan::Format(const std::string& pattern) const
{
    std::string out;
    out.reserve(pattern.size() + 16);
    char number[32];
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%' || i + 1 == pattern.size()) {
            out += pattern[i];
            continue;
        }
        const char letter = pattern[++i];
        switch (letter) {
        case 'D': std::snprintf(number, sizeof number, "%lld", static_cast<long long>(GetDays())); break;
        case 'H': std::snprintf(number, sizeof number, "%02d", GetHours()); break;
        case 'M': std::snprintf(number, sizeof number, "%02d", GetMinutes()); break;
        case 'S': std::snprintf(number, sizeof number, "%02d", GetSeconds()); break;
        case '%': std::snprintf(number, sizeof number, "%%"); break;
        default: std::snprintf(number, sizeof number, "%%%c", letter); break;
        }
        out += number;
    }
    return out;
}

// ---------------------------------------------------------------------------
// CTime

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int dst) noexcept
{
    if (!nyr::local::MakeLocal(year, month, day, hour, minute, second, dst, m_time))
        m_time = 0;
}

CTime::CTime(uint16_t dosDate, uint16_t dosTime, int dst) noexcept
{
    FILETIME local;
    SYSTEMTIME st;
    if (NyrDosDateTimeToFileTime(dosDate, dosTime, local) && NyrFileTimeToSystemTime(local, st))
        *this = CTime(st, dst);
}

CTime::CTime(const SYSTEMTIME& st, int dst) noexcept
    : CTime(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond, dst)
{
}

CTime::CTime(const FILETIME& fileTime, int dst) noexcept
{
    FILETIME local;
    SYSTEMTIME st;
    if (NyrFileTimeToLocalFileTime(fileTime, local) && NyrFileTimeToSystemTime(local, st))
        *this = CTime(st, dst);
}

CTime CTime::GetCurrentTime() noexcept
{
    return CTime(static_cast<int64_t>(time(nullptr)));
}

bool CTime::GetLocalTm(struct tm& fields) const noexcept
{
    return nyr::local::Breakdown(m_time, fields);
}

bool CTime::GetGmtTm(struct tm& fields) const noexcept
{
    return nyr::local::BreakdownUtc(m_time, fields);
}

namespace {

template <typename F>
int LocalField(int64_t seconds, F field)
{
    struct tm fields {};
    return nyr::local::Breakdown(seconds, fields) ? field(fields) : 0;
}

}  // namespace

int CTime::GetYear() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_year + 1900; }); }
int CTime::GetMonth() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_mon + 1; }); }
int CTime::GetDay() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_mday; }); }
int CTime::GetHour() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_hour; }); }
int CTime::GetMinute() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_min; }); }
int CTime::GetSecond() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_sec; }); }
int CTime::GetDayOfWeek() const noexcept { return LocalField(m_time, [](const tm& f) { return f.tm_wday + 1; }); }

bool CTime::GetAsSystemTime(SYSTEMTIME& st) const noexcept
{
    struct tm f {};
    if (!GetLocalTm(f))
        return false;
    st.wYear = static_cast<uint16_t>(f.tm_year + 1900);
    st.wMonth = static_cast<uint16_t>(f.tm_mon + 1);
    st.wDayOfWeek = static_cast<uint16_t>(f.tm_wday);
    st.wDay = static_cast<uint16_t>(f.tm_mday);
    st.wHour = static_cast<uint16_t>(f.tm_hour);
    st.wMinute = static_cast<uint16_t>(f.tm_min);
    st.wSecond = static_cast<uint16_t>(f.tm_sec);
    st.wMilliseconds = 0;
    return true;
}

// ---------------------------------------------------------------------------
// COleDateTimeSpan

namespace {

template <typename Status>
Status Worse(Status a, Status b)
{
    // invalid (1) beats null (2) beats valid (0)
    if (a == Status::invalid || b == Status::invalid)
        return Status::invalid;
    return a == Status::null || b == Status::null ? Status::null : Status::valid;
}

// The span in whole seconds rounded to nearest, saturated far outside any
// component's use.
int64_t RoundedSeconds(double days)
{
    const double seconds = std::round(days * 86400.0);
    if (!(std::fabs(seconds) < 9.0e18))
        return 0;
    return static_cast<int64_t>(seconds);
}

}  // namespace

COleDateTimeSpan::COleDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept
{
    SetDateTimeSpan(days, hours, minutes, seconds);
}

void COleDateTimeSpan::SetDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept
{
    m_span = days + hours / 24.0 + minutes / 1440.0 + seconds / 86400.0;
    m_status = valid;
}

long COleDateTimeSpan::GetDays() const noexcept
{
    return static_cast<long>(RoundedSeconds(m_span) / 86400);
}

int COleDateTimeSpan::GetHours() const noexcept
{
    return static_cast<int>(RoundedSeconds(m_span) / 3600 % 24);
}

int COleDateTimeSpan::GetMinutes() const noexcept
{
    return static_cast<int>(RoundedSeconds(m_span) / 60 % 60);
}

int COleDateTimeSpan::GetSeconds() const noexcept
{
    return static_cast<int>(RoundedSeconds(m_span) % 60);
}

COleDateTimeSpan COleDateTimeSpan::operator+(const COleDateTimeSpan& other) const noexcept
{
    COleDateTimeSpan result(m_span + other.m_span);
    result.m_status = Worse(m_status, other.m_status);
    return result;
}

COleDateTimeSpan COleDateTimeSpan::operator-(const COleDateTimeSpan& other) const noexcept
{
    COleDateTimeSpan result(m_span - other.m_span);
    result.m_status = Worse(m_status, other.m_status);
    return result;
}

bool COleDateTimeSpan::operator==(const COleDateTimeSpan& other) const noexcept
{
    return m_status == other.m_status && m_span == other.m_span;
}

// ---------------------------------------------------------------------------
// COleDateTime

namespace {

constexpr int64_t kOleZeroFrom1970 = kMjdOf1970 - kMjdOfOleZero;  // 25569 days

bool LinearInRange(double days)
{
    return days >= COleDateTime::kMinDate && days < 2958466.0;
}

}  // namespace

COleDateTime::COleDateTime(double date) noexcept : m_dt(date)
{
    if (!(std::isfinite(date) && LinearInRange(GetLinearDays())))
        m_status = invalid;
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept
{
    SetDateTime(year, month, day, hour, minute, second);
}

COleDateTime::COleDateTime(const SYSTEMTIME& st) noexcept
{
    if (SetDateTime(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond) == 0 && st.wMilliseconds <= 999)
        SetLinearDays(GetLinearDays() + st.wMilliseconds / 86400000.0);
    else
        m_status = invalid;
}

COleDateTime::COleDateTime(const FILETIME& fileTime) noexcept
{
    FILETIME local;
    SYSTEMTIME st;
    if (NyrFileTimeToLocalFileTime(fileTime, local) && NyrFileTimeToSystemTime(local, st))
        *this = COleDateTime(st);
    else
        m_status = invalid;
}

COleDateTime::COleDateTime(const CTime& time) noexcept
{
    struct tm f {};
    if (time.GetLocalTm(f))
        SetDateTime(f.tm_year + 1900, f.tm_mon + 1, f.tm_mday, f.tm_hour, f.tm_min, f.tm_sec);
    else
        m_status = invalid;
}

COleDateTime COleDateTime::GetCurrentTime() noexcept
{
    return COleDateTime(CTime::GetCurrentTime());
}

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept
{
    if (!ValidFields(year, month, day, hour, minute, second, 100, 9999)) {
        m_dt = 0.0;
        m_status = invalid;
        return 1;
    }
    SetLinearDays(static_cast<double>(DaysFromCivil(year, month, day) + kOleZeroFrom1970) +
                  (hour * 3600 + minute * 60 + second) / 86400.0);
    return 0;
}

int COleDateTime::SetDate(int year, int month, int day) noexcept
{
    return SetDateTime(year, month, day, 0, 0, 0);
}

int COleDateTime::SetTime(int hour, int minute, int second) noexcept
{
    return SetDateTime(1899, 12, 30, hour, minute, second);
}

double COleDateTime::GetLinearDays() const noexcept
{
    // The OLE encoding: before day 0 the whole part counts back while the
    // fraction counts forward, so -1.25 is 0.25 days after the start of day -1.
    return m_dt >= 0.0 ? m_dt : 2.0 * std::trunc(m_dt) - m_dt;
}

void COleDateTime::SetLinearDays(double days) noexcept
{
    if (!(std::isfinite(days) && LinearInRange(days))) {
        m_dt = 0.0;
        m_status = invalid;
        return;
    }
    const double whole = std::floor(days);
    m_dt = whole >= 0.0 ? days : whole - (days - whole);
    m_status = valid;
}

bool COleDateTime::Breakdown(Fields& f) const noexcept
{
    if (m_status != valid)
        return false;
    const double linear = GetLinearDays();
    if (!(std::isfinite(linear) && LinearInRange(linear)))
        return false;
    auto day = static_cast<int64_t>(std::floor(linear));
    auto second = static_cast<int64_t>(std::round((linear - static_cast<double>(day)) * 86400.0));
    if (second >= 86400) {
        ++day;
        second -= 86400;
    }
    const int64_t days1970 = day - kOleZeroFrom1970;
    const Civil c = CivilFromDays(days1970);
    f.year = c.year;
    f.month = c.month;
    f.day = c.day;
    f.hour = static_cast<int>(second / 3600);
    f.minute = static_cast<int>(second / 60 % 60);
    f.second = static_cast<int>(second % 60);
    f.dayOfWeek = WeekdayFromDays(days1970) + 1;
    f.dayOfYear = DayOfYear(c.year, c.month, c.day) + 1;
    return true;
}

#define NYR_OLE_FIELD(Name, member)              \
    int COleDateTime::Name() const noexcept      \
    {                                            \
        Fields f{};                              \
        return Breakdown(f) ? static_cast<int>(f.member) : -1; \
    }
NYR_OLE_FIELD(GetYear, year)
NYR_OLE_FIELD(GetMonth, month)
NYR_OLE_FIELD(GetDay, day)
NYR_OLE_FIELD(GetHour, hour)
NYR_OLE_FIELD(GetMinute, minute)
NYR_OLE_FIELD(GetSecond, second)
NYR_OLE_FIELD(GetDayOfWeek, dayOfWeek)
NYR_OLE_FIELD(GetDayOfYear, dayOfYear)
#undef NYR_OLE_FIELD

bool COleDateTime::GetAsSystemTime(SYSTEMTIME& st) const noexcept
{
    Fields f{};
    if (!Breakdown(f))
        return false;
    st.wYear = static_cast<uint16_t>(f.year);
    st.wMonth = static_cast<uint16_t>(f.month);
    st.wDayOfWeek = static_cast<uint16_t>(f.dayOfWeek - 1);
    st.wDay = static_cast<uint16_t>(f.day);
    st.wHour = static_cast<uint16_t>(f.hour);
    st.wMinute = static_cast<uint16_t>(f.minute);
    st.wSecond = static_cast<uint16_t>(f.second);
    st.wMilliseconds = 0;
    return true;
}

COleDateTime COleDateTime::operator+(const COleDateTimeSpan& span) const noexcept
{
    COleDateTime result;
    const auto status = Worse(static_cast<COleDateTimeSpan::DateTimeSpanStatus>(m_status), span.m_status);
    if (status != COleDateTimeSpan::valid) {
        result.m_status = static_cast<DateTimeStatus>(status);
        return result;
    }
    result.SetLinearDays(GetLinearDays() + span.m_span);
    return result;
}

COleDateTime COleDateTime::operator-(const COleDateTimeSpan& span) const noexcept
{
    COleDateTimeSpan negated(-span.m_span);
    negated.m_status = span.m_status;
    return *this + negated;
}

COleDateTimeSpan COleDateTime::operator-(const COleDateTime& other) const noexcept
{
    COleDateTimeSpan result(GetLinearDays() - other.GetLinearDays());
    result.m_status = Worse(static_cast<COleDateTimeSpan::DateTimeSpanStatus>(m_status),
                            static_cast<COleDateTimeSpan::DateTimeSpanStatus>(other.m_status));
    return result;
}

bool COleDateTime::operator==(const COleDateTime& other) const noexcept
{
    return m_status == other.m_status && GetLinearDays() == other.GetLinearDays();
}

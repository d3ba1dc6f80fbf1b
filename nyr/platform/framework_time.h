#pragma once

// The window framework's time value types as the time classes of the library
// use them:
//  - CTime: a 64-bit count of whole seconds since 1970-01-01 00:00:00 UTC,
//    broken down in local time (the process's TZ zone);
//  - CTimeSpan: a 64-bit count of seconds;
//  - COleDateTime: days since 1899-12-30 00:00 as a double (the OLE date),
//    with a status; local civil time without a zone;
//  - COleDateTimeSpan: days as a double, with a status.
// Calendar: proleptic Gregorian. Bad input never throws: a CTime built from
// fields that name no calendar instant holds 0; an OLE value out of range or
// from bad fields has the status invalid.

#include <compare>
#include <cstdint>
#include <ctime>
#include <string>

#include "nyr/platform/export.h"
#include "nyr/platform/system_time.h"

class NYR_EXPORT CTimeSpan
{
public:
    constexpr CTimeSpan() noexcept = default;
    constexpr CTimeSpan(int64_t seconds) noexcept : m_span(seconds) {}  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    constexpr CTimeSpan(long days, int hours, int minutes, int seconds) noexcept
        : m_span(((int64_t{days} * 24 + hours) * 60 + minutes) * 60 + seconds)
    {
    }

    constexpr int64_t GetTimeSpan() const noexcept { return m_span; }
    // Components of the span (truncated toward zero, so negative spans give
    // negative components): days, then hours 0..23, minutes and seconds 0..59.
    constexpr int64_t GetDays() const noexcept { return m_span / 86400; }
    constexpr int64_t GetTotalHours() const noexcept { return m_span / 3600; }
    constexpr int GetHours() const noexcept { return static_cast<int>(GetTotalHours() - GetDays() * 24); }
    constexpr int64_t GetTotalMinutes() const noexcept { return m_span / 60; }
    constexpr int GetMinutes() const noexcept { return static_cast<int>(GetTotalMinutes() - GetTotalHours() * 60); }
    constexpr int64_t GetTotalSeconds() const noexcept { return m_span; }
    constexpr int GetSeconds() const noexcept { return static_cast<int>(m_span - GetTotalMinutes() * 60); }

    // The span formatter: "%D" total days, "%H" hours 00..23, "%M" minutes
    // 00..59, "%S" seconds 00..59 (two digits each), "%%" a percent sign;
    // any other "%x" is copied as it stands.
    std::string Format(const std::string& pattern) const;

    constexpr CTimeSpan operator+(CTimeSpan other) const noexcept { return m_span + other.m_span; }
    constexpr CTimeSpan operator-(CTimeSpan other) const noexcept { return m_span - other.m_span; }
    constexpr CTimeSpan& operator+=(CTimeSpan other) noexcept { m_span += other.m_span; return *this; }
    constexpr CTimeSpan& operator-=(CTimeSpan other) noexcept { m_span -= other.m_span; return *this; }
    constexpr CTimeSpan operator-() const noexcept { return -m_span; }
    constexpr auto operator<=>(const CTimeSpan&) const noexcept = default;

private:
    int64_t m_span = 0;
};

class NYR_EXPORT CTime
{
public:
    constexpr CTime() noexcept = default;
    constexpr CTime(int64_t seconds) noexcept : m_time(seconds) {}  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    // A local calendar reading; `dst` < 0 unknown, 0 standard, > 0 daylight
    // saving time. Fields are checked (years 1..9999, the day against the
    // month, seconds 0..59); a reading that names no instant gives 0.
    CTime(int year, int month, int day, int hour, int minute, int second, int dst = -1) noexcept;
    // A local DOS stamp; 0 when the words name no instant.
    CTime(uint16_t dosDate, uint16_t dosTime, int dst = -1) noexcept;
    // A local SYSTEMTIME (milliseconds dropped); 0 when invalid.
    CTime(const SYSTEMTIME& systemTime, int dst = -1) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    // A UTC FILETIME: made a local file time, then a SYSTEMTIME, then as
    // above; 0 when a step fails.
    CTime(const FILETIME& fileTime, int dst = -1) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it

    static CTime GetCurrentTime() noexcept;

    constexpr int64_t GetTime() const noexcept { return m_time; }

    // Local and UTC breakdown; false outside the local years 1..9999.
    bool GetLocalTm(struct tm& fields) const noexcept;
    bool GetGmtTm(struct tm& fields) const noexcept;
    // Local fields; 0 when the point cannot be broken down. Day of week
    // 1 = Sunday .. 7 = Saturday.
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;
    int GetDayOfWeek() const noexcept;
    // Local fields; false (and `systemTime` untouched) when they do not fit.
    bool GetAsSystemTime(SYSTEMTIME& systemTime) const noexcept;

    constexpr CTimeSpan operator-(CTime other) const noexcept { return m_time - other.m_time; }
    constexpr CTime operator+(CTimeSpan span) const noexcept { return m_time + span.GetTimeSpan(); }
    constexpr CTime operator-(CTimeSpan span) const noexcept { return m_time - span.GetTimeSpan(); }
    constexpr CTime& operator+=(CTimeSpan span) noexcept { m_time += span.GetTimeSpan(); return *this; }
    constexpr CTime& operator-=(CTimeSpan span) noexcept { m_time -= span.GetTimeSpan(); return *this; }
    constexpr auto operator<=>(const CTime&) const noexcept = default;

private:
    int64_t m_time = 0;
};

class NYR_EXPORT COleDateTimeSpan
{
public:
    enum DateTimeSpanStatus { valid = 0, invalid = 1, null = 2 };

    constexpr COleDateTimeSpan() noexcept = default;
    constexpr COleDateTimeSpan(double days) noexcept : m_span(days) {}  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    COleDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept;

    DateTimeSpanStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeSpanStatus status) noexcept { m_status = status; }

    double GetTotalDays() const noexcept { return m_span; }
    double GetTotalHours() const noexcept { return m_span * 24; }
    double GetTotalMinutes() const noexcept { return m_span * 1440; }
    double GetTotalSeconds() const noexcept { return m_span * 86400; }
    // Components of the span rounded to the nearest second (truncated toward
    // zero, as for CTimeSpan).
    long GetDays() const noexcept;
    int GetHours() const noexcept;
    int GetMinutes() const noexcept;
    int GetSeconds() const noexcept;

    void SetDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept;

    // Arithmetic keeps the worse status (invalid over null over valid).
    COleDateTimeSpan operator+(const COleDateTimeSpan& other) const noexcept;
    COleDateTimeSpan operator-(const COleDateTimeSpan& other) const noexcept;
    COleDateTimeSpan& operator+=(const COleDateTimeSpan& other) noexcept { return *this = *this + other; }
    COleDateTimeSpan& operator-=(const COleDateTimeSpan& other) noexcept { return *this = *this - other; }
    // Equal when status and value are equal; ordered by value.
    bool operator==(const COleDateTimeSpan& other) const noexcept;
    bool operator<(const COleDateTimeSpan& other) const noexcept { return m_span < other.m_span; }
    bool operator>(const COleDateTimeSpan& other) const noexcept { return other < *this; }
    bool operator<=(const COleDateTimeSpan& other) const noexcept { return !(other < *this); }
    bool operator>=(const COleDateTimeSpan& other) const noexcept { return !(*this < other); }

    double m_span = 0.0;
    DateTimeSpanStatus m_status = valid;
};

class NYR_EXPORT COleDateTime
{
public:
    enum DateTimeStatus { valid = 0, invalid = 1, null = 2 };

    // The OLE range: 100-01-01 00:00:00 .. 9999-12-31 23:59:59.
    static constexpr double kMinDate = -657434.0;
    static constexpr double kMaxDate = 2958465.99999;

    constexpr COleDateTime() noexcept = default;
    // Days since 1899-12-30. Before that day the whole part counts days back
    // and the fraction still runs forward (-1.25 is 1899-12-29 06:00).
    // Invalid when outside the range or not finite.
    COleDateTime(double date) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;
    COleDateTime(const SYSTEMTIME& systemTime) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    // A UTC FILETIME as its local reading.
    COleDateTime(const FILETIME& fileTime) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it
    // A CTime as its local reading.
    COleDateTime(const CTime& time) noexcept;  // NOLINT(google-explicit-constructor): implicit as in the framework, whose callers rely on it

    static COleDateTime GetCurrentTime() noexcept;

    DateTimeStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeStatus status) noexcept { m_status = status; }

    // Return 0 on success, 1 (status invalid) when the fields are out of
    // range; a date alone is midnight, a time alone is on 1899-12-30.
    int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;
    int SetDate(int year, int month, int day) noexcept;
    int SetTime(int hour, int minute, int second) noexcept;

    // Fields rounded to the nearest second; -1 (error) unless valid.
    // Day of week 1 = Sunday .. 7 = Saturday; day of year 1..366.
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;
    int GetDayOfWeek() const noexcept;
    int GetDayOfYear() const noexcept;
    bool GetAsSystemTime(SYSTEMTIME& systemTime) const noexcept;

    // Days since 1899-12-30 on a straight line (-0.75 for 1899-12-29 06:00):
    // the form for ordering and arithmetic.
    double GetLinearDays() const noexcept;
    // Sets the value from that form; invalid when out of range.
    void SetLinearDays(double days) noexcept;

    // Arithmetic and comparison run on the linear form; a non-valid operand
    // makes a non-valid result. Comparisons order by value and ignore the
    // status; == needs the same status too.
    COleDateTime operator+(const COleDateTimeSpan& span) const noexcept;
    COleDateTime operator-(const COleDateTimeSpan& span) const noexcept;
    COleDateTime& operator+=(const COleDateTimeSpan& span) noexcept { return *this = *this + span; }
    COleDateTime& operator-=(const COleDateTimeSpan& span) noexcept { return *this = *this - span; }
    COleDateTimeSpan operator-(const COleDateTime& other) const noexcept;
    bool operator==(const COleDateTime& other) const noexcept;
    bool operator<(const COleDateTime& other) const noexcept { return GetLinearDays() < other.GetLinearDays(); }
    bool operator>(const COleDateTime& other) const noexcept { return other < *this; }
    bool operator<=(const COleDateTime& other) const noexcept { return !(other < *this); }
    bool operator>=(const COleDateTime& other) const noexcept { return !(*this < other); }

    double m_dt = 0.0;
    DateTimeStatus m_status = valid;

private:
    struct Fields
    {
        int64_t year;
        int month, day, hour, minute, second, dayOfWeek, dayOfYear;
    };
    bool Breakdown(Fields& fields) const noexcept;
};

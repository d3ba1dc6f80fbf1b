#pragma once

// The operating system's calendar records as the time types exchange them:
// SYSTEMTIME (broken-down fields), FILETIME (100-ns ticks since 1601-01-01
// 00:00:00 UTC, the file-system stamp) and the packed DOS date and time words
// of archive and FAT stamps. Calendar: proleptic Gregorian. Local time is the
// process's TZ zone (tzset), with the offset in force at the instant
// converted, not today's offset.

#include <cstdint>

#include "nyr/platform/export.h"

struct SYSTEMTIME
{
    uint16_t wYear = 0;          // 1601..30827
    uint16_t wMonth = 0;         // 1..12
    uint16_t wDayOfWeek = 0;     // 0 Sunday .. 6 Saturday (ignored on input)
    uint16_t wDay = 0;           // 1..31
    uint16_t wHour = 0;          // 0..23
    uint16_t wMinute = 0;        // 0..59
    uint16_t wSecond = 0;        // 0..59
    uint16_t wMilliseconds = 0;  // 0..999
};

struct FILETIME
{
    uint32_t dwLowDateTime = 0;
    uint32_t dwHighDateTime = 0;
};

// FILETIME as one 64-bit tick count and back.
constexpr uint64_t NyrFileTimeTicks(const FILETIME& ft)
{
    return (uint64_t{ft.dwHighDateTime} << 32) | ft.dwLowDateTime;
}
constexpr FILETIME NyrFileTimeFromTicks(uint64_t ticks)
{
    return FILETIME{static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)};
}

// The conversions return true on success and leave the output untouched on
// failure: a tick count of 2^63 or more, fields out of their ranges above
// (SystemTimeToFileTime checks the day against the month's length), a DOS
// date outside 1980-01-01..2107-12-31 or with a month or day of 0.

NYR_EXPORT bool NyrFileTimeToSystemTime(const FILETIME& fileTime, SYSTEMTIME& systemTime);
NYR_EXPORT bool NyrSystemTimeToFileTime(const SYSTEMTIME& systemTime, FILETIME& fileTime);
// UTC stamp to the same instant's local reading and back. The way back
// resolves a local time that occurs twice (end of daylight saving) as the
// platform's mktime does with an unknown daylight flag.
NYR_EXPORT bool NyrFileTimeToLocalFileTime(const FILETIME& fileTime, FILETIME& localFileTime);
NYR_EXPORT bool NyrLocalFileTimeToFileTime(const FILETIME& localFileTime, FILETIME& fileTime);

// DOS words: date = (year - 1980) << 9 | month << 5 | day;
// time = hour << 11 | minute << 5 | seconds / 2 (two-second resolution).
// The FILETIME on both sides is a local reading, as in archive stamps.
NYR_EXPORT bool NyrDosDateTimeToFileTime(uint16_t dosDate, uint16_t dosTime, FILETIME& localFileTime);
NYR_EXPORT bool NyrFileTimeToDosDateTime(const FILETIME& localFileTime, uint16_t& dosDate, uint16_t& dosTime);

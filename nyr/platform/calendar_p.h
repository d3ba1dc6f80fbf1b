#pragma once

// Proleptic Gregorian calendar arithmetic shared by the time types. Days are
// counted from 1970-01-01 (day 0); every function is exact over the whole
// int64 day range the callers pass (they keep years within +-10^9).

#include <cstdint>

namespace nyr::cal {

constexpr int64_t kSecondsPerDay = 86400;
// 1970-01-01 as a Modified Julian Date, and 1899-12-30 (the OLE date zero).
constexpr int64_t kMjdOf1970 = 40587;
constexpr int64_t kMjdOfOleZero = 15018;
// 1601-01-01 (the FILETIME zero) in days from 1970-01-01.
constexpr int64_t kDaysFrom1601To1970 = 134774;
constexpr int64_t kTicksPerSecond = 10000000;  // FILETIME ticks of 100 ns

constexpr bool IsLeapYear(int64_t y)
{
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

constexpr int DaysInMonth(int64_t y, int m)
{
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && IsLeapYear(y) ? 29 : kDays[m - 1];
}

// Floor division and its remainder (0 <= r < d for d > 0).
constexpr int64_t FloorDiv(int64_t a, int64_t d)
{
    return a / d - ((a % d != 0) && ((a % d < 0) != (d < 0)));
}
constexpr int64_t FloorMod(int64_t a, int64_t d)
{
    return a - FloorDiv(a, d) * d;
}

// Days from 1970-01-01 of y-m-d; m in 1..12, d in 1..31.
constexpr int64_t DaysFromCivil(int64_t y, int m, int d)
{
    y -= m <= 2;
    const int64_t era = FloorDiv(y, 400);
    const int64_t yoe = y - era * 400;                                   // [0, 399]
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;  // [0, 365]
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;           // [0, 146096]
    return era * 146097 + doe - 719468;
}

struct Civil
{
    int64_t year;
    int month;  // 1..12
    int day;    // 1..31
};

constexpr Civil CivilFromDays(int64_t z)
{
    z += 719468;
    const int64_t era = FloorDiv(z, 146097);
    const int64_t doe = z - era * 146097;                                  // [0, 146096]
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;  // [0, 399]
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);           // [0, 365]
    const int64_t mp = (5 * doy + 2) / 153;                                // [0, 11]
    const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    return {yoe + era * 400 + (m <= 2), m, d};
}

// 0 = Sunday.
constexpr int WeekdayFromDays(int64_t z)
{
    return static_cast<int>(FloorMod(z + 4, 7));
}

// 0-based day of the year.
constexpr int DayOfYear(int64_t y, int m, int d)
{
    return static_cast<int>(DaysFromCivil(y, m, d) - DaysFromCivil(y, 1, 1));
}

// Whether the fields name a real calendar instant (a leap second 60 is not one).
constexpr bool ValidFields(int64_t y, int m, int d, int h, int mi, int s, int64_t minYear, int64_t maxYear)
{
    return y >= minYear && y <= maxYear && m >= 1 && m <= 12 && d >= 1 && d <= DaysInMonth(y, m) && h >= 0 &&
           h <= 23 && mi >= 0 && mi <= 59 && s >= 0 && s <= 59;
}

}  // namespace nyr::cal

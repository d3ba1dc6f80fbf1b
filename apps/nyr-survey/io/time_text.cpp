#include "apps/nyr-survey/io/time_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "nyr/time/time.h"

namespace survey {

namespace {

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's
// days_from_civil).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int64_t& y, unsigned& m, unsigned& d)
{
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y = static_cast<int64_t>(yoe) + era * 400 + (m <= 2);
}

int DaysInMonth(int y, int m)
{
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return m == 2 && leap ? 29 : days[m - 1];
}

struct Fields
{
    int year = -1, month = -1, day = -1, hour = 0, minute = 0, second = 0;
    double fraction = 0.0;
    int pm = -1;  // -1: no AM/PM; 0 AM, 1 PM
};

bool FieldsValid(const Fields& f)
{
    return f.year >= 1 && f.year <= 9999 && f.month >= 1 && f.month <= 12 && f.day >= 1 &&
           f.day <= DaysInMonth(f.year, f.month) && f.hour >= 0 && f.hour <= 23 && f.minute >= 0 && f.minute <= 59 &&
           f.second >= 0 && f.second <= 59;
}

// A run of `min` to `max` digits at `pos`.
bool Digits(std::string_view s, std::size_t& pos, int min, int max, int& value)
{
    std::size_t n = 0;
    value = 0;
    while (pos + n < s.size() && n < static_cast<std::size_t>(max) && s[pos + n] >= '0' && s[pos + n] <= '9')
        value = value * 10 + (s[pos + n++] - '0');
    pos += n;
    return n >= static_cast<std::size_t>(min);
}

// ".ddd" after the seconds, if any.
bool Fraction(std::string_view s, std::size_t& pos, double& fraction)
{
    if (pos >= s.size() || s[pos] != '.')
        return true;
    const std::size_t start = pos++;
    while (pos < s.size() && s[pos] >= '0' && s[pos] <= '9')
        ++pos;
    if (pos == start + 1)
        return false;
    return std::from_chars(s.data() + start, s.data() + pos, fraction).ec == std::errc();
}

bool MakeLocal(const Fields& f, CNyrTime& time)
{
    if (!FieldsValid(f))
        return false;
    CNyrTime t(f.year, f.month, f.day, f.hour, f.minute, f.second, -1);
    if (t.GetTime().GetTime() == 0 && !(f.year == 1970 && f.month == 1 && f.day == 1))
        return false;
    t.SetFracSecond(f.fraction);
    time = t;
    return true;
}

bool MakeUtc(const Fields& f, int offsetMinutes, CNyrTime& time)
{
    if (!FieldsValid(f))
        return false;
    const int64_t seconds = DaysFromCivil(f.year, static_cast<unsigned>(f.month), static_cast<unsigned>(f.day)) * 86400 +
                            f.hour * 3600 + f.minute * 60 + f.second - int64_t{offsetMinutes} * 60;
    time = CNyrTime(seconds);
    time.SetFracSecond(f.fraction);
    return true;
}

bool MonthName(std::string_view s, std::size_t& pos, int& month)
{
    static const char* names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (pos + 3 > s.size())
        return false;
    for (int m = 0; m < 12; ++m)
        if (s.compare(pos, 3, names[m]) == 0) {
            month = m + 1;
            pos += 3;
            return true;
        }
    return false;
}

bool AmPm(std::string_view s, std::size_t& pos, int& pm)
{
    if (pos + 2 > s.size() || s[pos + 1] != 'M' || (s[pos] != 'A' && s[pos] != 'P'))
        return false;
    pm = s[pos] == 'P';
    pos += 2;
    return true;
}

// One conversion of a table pattern at `pos` of the text.
bool Conversion(char c, bool hash, std::string_view s, std::size_t& pos, Fields& f)
{
    const int min = hash ? 1 : 2;
    switch (c) {
    case 'd': return Digits(s, pos, min, 2, f.day);
    case 'm': return Digits(s, pos, 2, 2, f.month);
    case 'Y': return Digits(s, pos, 4, 4, f.year);
    case 'y':
        if (!Digits(s, pos, 2, 2, f.year))
            return false;
        f.year += f.year < 71 ? 2000 : 1900;
        return true;
    case 'H': return Digits(s, pos, min, 2, f.hour);
    case 'I': return Digits(s, pos, min, 2, f.hour) && f.hour >= 1 && f.hour <= 12;
    case 'M': return Digits(s, pos, 2, 2, f.minute);
    case 'S': return Digits(s, pos, 2, 2, f.second) && Fraction(s, pos, f.fraction);
    case 'p': return AmPm(s, pos, f.pm);
    case 'b': return MonthName(s, pos, f.month);
    default: return false;
    }
}

}  // namespace

std::string FormatIsoUtc(const CNyrTime& time)
{
    const int64_t seconds = time.GetTime().GetTime();
    const int64_t days = seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
    const int64_t secondOfDay = seconds - days * 86400;
    int64_t y = 0;
    unsigned m = 0, d = 0;
    CivilFromDays(days, y, m, d);
    if (y < 1 || y > 9999)
        return {};
    const int ms = time.GetMilliSeconds();
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(y), m, d,
                  static_cast<int>(secondOfDay / 3600), static_cast<int>(secondOfDay / 60 % 60),
                  static_cast<int>(secondOfDay % 60), ms);
    return buffer;
}

bool ParseIsoTime(std::string_view s, bool bareIsUtc, CNyrTime& time)
{
    Fields f;
    std::size_t pos = 0;
    if (!Digits(s, pos, 4, 4, f.year) || pos >= s.size() || s[pos++] != '-' || !Digits(s, pos, 2, 2, f.month) ||
        pos >= s.size() || s[pos++] != '-' || !Digits(s, pos, 2, 2, f.day) || pos >= s.size() ||
        (s[pos] != 'T' && s[pos] != ' ') || !Digits(s, ++pos, 2, 2, f.hour) || pos >= s.size() || s[pos++] != ':' ||
        !Digits(s, pos, 2, 2, f.minute))
        return false;
    if (pos < s.size() && s[pos] == ':' && (!Digits(s, ++pos, 2, 2, f.second) || !Fraction(s, pos, f.fraction)))
        return false;
    if (pos == s.size())
        return bareIsUtc ? MakeUtc(f, 0, time) : MakeLocal(f, time);
    if (s[pos] == 'Z')
        return pos + 1 == s.size() && MakeUtc(f, 0, time);
    if (s[pos] != '+' && s[pos] != '-')
        return false;
    const int sign = s[pos++] == '-' ? -1 : 1;
    int hours = 0, minutes = 0;
    if (!Digits(s, pos, 2, 2, hours) || pos >= s.size() || s[pos++] != ':' || !Digits(s, pos, 2, 2, minutes) ||
        pos != s.size() || hours > 14 || minutes > 59)
        return false;
    return MakeUtc(f, sign * (hours * 60 + minutes), time);
}

bool ParsePatternTime(std::string_view s, const char* pattern, CNyrTime& time)
{
    if (!pattern)
        return false;
    Fields f;
    std::size_t pos = 0;
    for (const char* p = pattern; *p; ++p) {
        if (*p != '%') {
            if (pos >= s.size() || s[pos++] != *p)
                return false;
            continue;
        }
        const bool hash = p[1] == '#';
        if (hash)
            ++p;
        if (!*++p || !Conversion(*p, hash, s, pos, f))
            return false;
    }
    if (pos != s.size())
        return false;
    if (f.pm >= 0) {
        if (f.hour < 1 || f.hour > 12)
            return false;
        f.hour = f.hour % 12 + (f.pm ? 12 : 0);
    }
    return MakeLocal(f, time);
}

bool ParseObservedTime(std::string_view text, CNyrTime& time)
{
    if (ParseIsoTime(text, false, time))
        return true;
    const int current = CNyrTime::CurrentTimeFormatIndex();
    if (ParsePatternTime(text, CNyrTime::TimeFormatPattern(current), time))
        return true;
    for (int row = 0; row < CNyrTime::eTimeFormatCount; ++row)
        if (row != current && ParsePatternTime(text, CNyrTime::TimeFormatPattern(row), time))
            return true;
    return false;
}

}  // namespace survey

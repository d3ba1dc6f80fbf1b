#include "nyrwidgets/input/time_text_p.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "nyr/platform/ascii_p.h"

namespace nyr::input {

namespace {

constexpr double kSecondInDays = 1.0 / 86400.0;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsAlpha(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// A cursor over the text; every read is bounded by it.
struct Scanner
{
    std::string_view text;
    std::size_t i = 0;

    bool AtEnd() const { return i >= text.size(); }
    char Peek() const { return AtEnd() ? '\0' : text[i]; }
    void SkipBlanks()
    {
        while (!AtEnd() && (text[i] == ' ' || text[i] == '\t'))
            ++i;
    }
    // 1 to `most` digits; false without one.
    bool Number(int most, long& value, int* count = nullptr)
    {
        int n = 0;
        long v = 0;
        while (n < most && !AtEnd() && IsDigit(text[i])) {
            v = v * 10 + (text[i++] - '0');
            ++n;
        }
        if (count)
            *count = n;
        value = v;
        return n > 0 && !IsDigit(Peek());
    }
    // ".ddd" when it is there (the point alone counts as none).
    bool Fraction(double& fraction)
    {
        if (Peek() != '.' || i + 1 >= text.size() || !IsDigit(text[i + 1]))
            return Peek() != '.';
        std::size_t end = i + 1;
        while (end < text.size() && IsDigit(text[end]) && end - i <= 9)
            ++end;
        std::from_chars(text.data() + i + 1, text.data() + end, fraction);
        fraction /= std::pow(10.0, static_cast<double>(end - i - 1));
        i = end;
        return !IsDigit(Peek());
    }
    std::string_view Word()
    {
        const std::size_t start = i;
        while (!AtEnd() && IsAlpha(text[i]))
            ++i;
        return text.substr(start, i - start);
    }
    bool Prefix(std::string_view word)
    {
        if (text.size() - i < word.size() || !nyr::ascii::EqualsNoCase(text.substr(i, word.size()), word))
            return false;
        i += word.size();
        return true;
    }
};

// The month of an English name or its three-letter form; 0 for none.
long MonthOfName(std::string_view word)
{
    static constexpr std::string_view kNames[] = {"January", "February", "March",     "April",
                                                  "May",     "June",     "July",      "August",
                                                  "September", "October", "November", "December"};
    for (long m = 0; m < 12; ++m)
        if (nyr::ascii::EqualsNoCase(word, kNames[m]) || nyr::ascii::EqualsNoCase(word, kNames[m].substr(0, 3)))
            return m + 1;
    return 0;
}

struct Fields
{
    long year = -1, month = -1, day = -1, hour = -1, minute = 0, second = 0;
    double fraction = 0.0;
    bool twelveHour = false;
    int marker = 0;  // 1 AM, 2 PM
};

// One conversion of the pattern; false when the text does not fit it.
bool ReadConversion(char letter, Scanner& s, Fields& f)
{
    int digits = 0;
    switch (letter) {
    case 'd': return s.Number(2, f.day);
    case 'm': return s.Number(2, f.month);
    case 'b':
        if (IsDigit(s.Peek()))
            return s.Number(2, f.month);
        f.month = MonthOfName(s.Word());
        return f.month != 0;
    case 'Y': return s.Number(4, f.year);
    case 'y':
        if (!s.Number(4, f.year, &digits))
            return false;
        if (digits <= 2)  // two digits: 70 is 2070, 71 is 1971, as the library reads them
            f.year += f.year < 71 ? 2000 : 1900;
        return true;
    case 'H': return s.Number(2, f.hour);
    case 'I': f.twelveHour = true; return s.Number(2, f.hour);
    case 'M': return s.Number(2, f.minute);
    case 'S': return s.Number(2, f.second) && s.Fraction(f.fraction);
    case 'p': {
        const std::string_view word = s.Word();
        const char first = word.empty() ? '\0' : nyr::ascii::ToLower(word[0]);
        const bool m = word.size() == 2 && nyr::ascii::ToLower(word[1]) == 'm';
        if ((first != 'a' && first != 'p') || !(word.size() == 1 || m))
            return false;
        f.marker = first == 'a' ? 1 : 2;
        return true;
    }
    default: return false;  // the format table uses no other conversion
    }
}

// Reads the text along the pattern; the text may stop before the pattern does.
bool ReadAlong(std::string_view text, const std::string& pattern, Fields& f)
{
    Scanner s{text};
    s.SkipBlanks();
    for (std::size_t p = 0; p < pattern.size();) {
        const char c = pattern[p];
        if (c == ' ') {
            s.SkipBlanks();
            ++p;
            continue;
        }
        if (s.AtEnd())
            break;
        if (c != '%' || (p + 1 < pattern.size() && pattern[p + 1] == '%')) {
            if (s.Peek() != c)
                return false;
            ++s.i;
            p += c == '%' ? 2 : 1;
            continue;
        }
        p += pattern.compare(p, 2, "%#") == 0 ? 2 : 1;
        if (p >= pattern.size() || !ReadConversion(pattern[p++], s, f))
            return false;
    }
    s.SkipBlanks();
    return s.AtEnd();
}

bool ResolveHour(Fields& f)
{
    if (f.hour < 0)
        f.hour = 0;
    if (f.twelveHour && f.marker != 0) {
        if (f.hour < 1 || f.hour > 12)
            return false;
        f.hour = f.hour % 12 + (f.marker == 2 ? 12 : 0);
    }
    return f.hour <= 23 && f.minute <= 59 && f.second <= 59;
}

}  // namespace

std::string PatternPart(const std::string& pattern, TimePart part)
{
    std::size_t hour = std::string::npos;
    for (const char* token : {"%H", "%I", "%#H", "%#I"})
        hour = std::min(hour, pattern.find(token));
    const std::size_t split = hour == std::string::npos ? pattern.size() : hour;
    if (part == TimePart::kTime)
        return pattern.substr(split);
    std::string date = part == TimePart::kDate ? pattern.substr(0, split) : pattern;
    if (part == TimePart::kDate)
        date.erase(date.find_last_not_of(' ') + 1);
    return date;
}

bool ReadTimeText(std::string_view text, const std::string& pattern, TimePart part, const CNyrTime& base,
                  CNyrTime& out)
{
    Fields f;
    if (!ReadAlong(text, PatternPart(pattern, part), f))
        return false;
    if (part == TimePart::kDateTime && (f.year < 0 || f.month < 0 || f.day < 0))
        return false;  // a date and time needs its whole date
    if (part != TimePart::kDateTime) {
        long y = 0, mo = 0, d = 0, h = 0, mi = 0, sec = 0;
        double fraction = 0.0;
        CNyrTimeHelper::Mjd2Ymd(base.Mjd(), y, mo, d, h, mi, sec, fraction);
        if (part == TimePart::kTime)
            f.year = y, f.month = mo, f.day = d;
        else
            f.hour = h, f.minute = mi, f.second = sec, f.fraction = base.GetFracSecond();
    }
    if (part == TimePart::kTime && f.hour < 0)
        return false;
    if (!ResolveHour(f) || f.year < 1 || f.year > 9999 || f.month < 1 || f.month > 12 || f.day < 1 || f.day > 31)
        return false;
    const int year = static_cast<int>(f.year), month = static_cast<int>(f.month), day = static_cast<int>(f.day);
    const int hour = static_cast<int>(f.hour), minute = static_cast<int>(f.minute);
    const int second = static_cast<int>(f.second);
    CNyrTime point(year, month, day, hour, minute, second);
    // A day the month does not have, or a reading the local clock skips,
    // gives another instant (or none): the reading must come back.
    if (std::fabs(point.Mjd() - CNyrTime::Mjd(year, month, day, hour, minute, second)) > kSecondInDays / 2)
        return false;
    point.SetFracSecond(f.fraction);
    out = point;
    return true;
}

bool ReadTimeNumber(std::string_view text, CNyrTime& out)
{
    Scanner s{text};
    s.SkipBlanks();
    double expected = 0.0;
    CNyrTime point(int64_t{0});
    if (s.Prefix("MJD")) {
        s.SkipBlanks();
        const std::string_view rest = text.substr(s.i);
        double mjd = 0.0;
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), mjd);
        if (error != std::errc() || !std::isfinite(mjd) || std::fabs(mjd) > 1e8)
            return false;
        s.i += static_cast<std::size_t>(end - rest.data());
        point.Mjd(mjd);
        expected = mjd;
    } else if (s.Prefix("GPS")) {
        long week = 0;
        s.SkipBlanks();
        if (!s.Number(6, week))
            return false;
        while (s.Peek() == ' ' || s.Peek() == ',' || s.Peek() == ':' || s.Peek() == '/')
            ++s.i;
        const std::string_view rest = text.substr(s.i);
        double seconds = -1.0;
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), seconds);
        if (error != std::errc() || !(seconds >= 0.0 && seconds < 604800.0))
            return false;
        s.i += static_cast<std::size_t>(end - rest.data());
        point.SetGpsTime(static_cast<int>(week), seconds);
        expected = CNyrTime::GpsTime(static_cast<int>(week), seconds);
    } else {
        return false;
    }
    s.SkipBlanks();
    // A day count that names no point of years 1..9999 does not come back.
    if (!s.AtEnd() || std::fabs(point.Mjd() - expected) > kSecondInDays / 1000)
        return false;
    out = point;
    return true;
}

bool ReadSpanText(std::string_view text, CNyrTimeSpan& out)
{
    Scanner s{text};
    s.SkipBlanks();
    long first = 0, days = 0, hours = 0, minutes = 0, seconds = 0;
    double fraction = 0.0;
    if (!s.Number(10, first))
        return false;
    if (s.Peek() == 'd' || s.Peek() == 'D') {
        ++s.i;
        days = first;
        s.SkipBlanks();
        if (!s.AtEnd() && !s.Number(10, hours))
            return false;
    } else if (s.Peek() == ' ' || s.Peek() == '\t') {
        s.SkipBlanks();
        days = s.AtEnd() ? 0 : first;
        hours = s.AtEnd() ? first : 0;
        if (!s.AtEnd() && !s.Number(10, hours))
            return false;
    } else {
        hours = first;
    }
    if (s.Peek() == ':') {
        ++s.i;
        if (!s.Number(2, minutes) || minutes > 59)
            return false;
        if (s.Peek() == ':') {
            ++s.i;
            if (!s.Number(2, seconds) || seconds > 59 || !s.Fraction(fraction))
                return false;
        }
    }
    s.SkipBlanks();
    const int64_t total = int64_t{days} * 86400 + int64_t{hours} * 3600 + minutes * 60 + seconds;
    if (!s.AtEnd() || total > 2147483647)
        return false;
    CNyrTimeSpan span(static_cast<long>(total));
    span.SetFracSecond(fraction);
    out = span;
    return true;
}

CNyrTimeHelper::eRoundFlag FractionRounding(int digits)
{
    switch (digits) {
    case 1: return CNyrTimeHelper::eRoundTenth;
    case 2: return CNyrTimeHelper::eRoundHundredth;
    case 3: return CNyrTimeHelper::eRoundThousandth;
    default: return CNyrTimeHelper::eRoundSecond;
    }
}

std::string WithFraction(const std::string& pattern, double fraction, int digits)
{
    if (digits <= 0)
        return pattern;
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, fraction, std::chars_format::fixed, digits);
    const std::string decimals(buffer + 1, error == std::errc() ? end : buffer + 1);  // ".250" of "0.250"
    std::string out;
    for (std::size_t p = 0; p < pattern.size(); ++p) {
        out += pattern[p];
        if (pattern[p] == '%' && p + 1 < pattern.size()) {
            out += pattern[++p];
            if (pattern[p] == 'S')
                out += decimals;
        }
    }
    return out;
}

}  // namespace nyr::input

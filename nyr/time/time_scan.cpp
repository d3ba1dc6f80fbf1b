// Reading a time point back from text with a pattern of the format table's
// kind. Every read is bounded by the text; numbers saturate; the AM/PM word
// keeps at most its first two characters.
#include <charconv>
#include <climits>
#include <cmath>
#include <string_view>

#include "nyr/platform/ascii_p.h"
#include "nyr/platform/local_time_p.h"
#include "nyr/time/time.h"
#include "nyr/time/time_span.h"

namespace {

enum class Read { kEnd, kNoMatch, kOk };

using nyr::ascii::IsDigit;
using nyr::ascii::IsSpace;

// Skips leading white space; kEnd when nothing else is left (a read that
// hits the end of the text).
bool SkipSpace(std::string_view text, std::size_t& i)
{
    while (i < text.size() && IsSpace(text[i]))
        ++i;
    return i < text.size();
}

// A decimal integer as "%ld" reads it, saturating at the limits of long.
Read ReadLong(std::string_view text, long& value)
{
    std::size_t i = 0;
    if (!SkipSpace(text, i))
        return Read::kEnd;
    const bool negative = text[i] == '-';
    if (text[i] == '-' || text[i] == '+')
        ++i;
    if (i == text.size() || !IsDigit(text[i]))
        return Read::kNoMatch;
    unsigned long magnitude = 0;
    const unsigned long limit = negative ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    for (; i < text.size() && IsDigit(text[i]); ++i)
        magnitude = magnitude > (limit - (text[i] - '0')) / 10 ? limit : magnitude * 10 + (text[i] - '0');
    value = negative ? static_cast<long>(0 - magnitude) : static_cast<long>(magnitude);
    return Read::kOk;
}

// A decimal floating number as "%lf" reads it, without the locale.
Read ReadDouble(std::string_view text, double& value)
{
    std::size_t i = 0;
    if (!SkipSpace(text, i))
        return Read::kEnd;
    if (text[i] == '+' && i + 1 < text.size() && text[i + 1] != '-')
        ++i;
    // Digits only: "inf" and "nan" are words here, not numbers.
    const std::size_t first = i + (i < text.size() && text[i] == '-');
    if (first == text.size() || !(IsDigit(text[first]) || text[first] == '.'))
        return Read::kNoMatch;
    const auto [end, error] = std::from_chars(text.data() + i, text.data() + text.size(), value);
    if (end == text.data() + i)
        return Read::kNoMatch;
    if (error == std::errc::result_out_of_range)
        value = HUGE_VAL;  // refused by the range checks below
    return Read::kOk;
}

// A word as "%s" reads it; only its first two characters are kept.
Read ReadMarker(std::string_view text, char marker[2])
{
    std::size_t i = 0;
    if (!SkipSpace(text, i))
        return Read::kEnd;
    for (int k = 0; k < 2 && i + k < text.size() && !IsSpace(text[i + k]); ++k)
        marker[k] = text[i + k];
    return Read::kOk;
}

bool IsFieldChar(char c)
{
    return IsDigit(c) || c == '.' || c == 'A' || c == 'P' || c == 'M';
}

// Drops the field at the start of the text and the separators after it.
std::string_view DropField(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && IsFieldChar(text[i]))
        ++i;
    while (i < text.size() && !IsFieldChar(text[i]))
        ++i;
    return text.substr(i);
}

int ToInt(long value)
{
    return value < INT_MIN ? INT_MIN : value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

// The fields a scan has read so far.
struct Fields
{
    long year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    double fraction = 0.0;
    char marker[2] = {' ', ' '};
    bool fourDigitYear = false;
};

// Reads the number (or AM/PM word) of conversion `letter` from the start of
// `text` into its field.
Read ReadConversion(char letter, std::string_view text, Fields& f)
{
    Read read = Read::kNoMatch;
    switch (letter) {
    case 'm': return ReadLong(text, f.month);
    case 'd':
    case 'j': return ReadLong(text, f.day);
    case 'H':
    case 'I': return ReadLong(text, f.hour);
    case 'M': return ReadLong(text, f.minute);
    case 'S': return ReadLong(text, f.second);
    case 'Y':
        read = ReadLong(text, f.year);
        if (read == Read::kOk)
            f.fourDigitYear = true;
        return read;
    case 's': {
        double seconds = 0.0;
        read = ReadDouble(text, seconds);
        if (read == Read::kOk) {
            const double whole = std::trunc(seconds);
            f.second = std::fabs(whole) < 1e9 ? static_cast<long>(whole) : LONG_MAX;
            f.fraction = std::fabs(whole) < 1e9 ? seconds - whole : 0.0;
        }
        return read;
    }
    case 'D': {
        double days = 0.0;
        read = ReadDouble(text, days);
        if (read == Read::kOk && !CNyrTimeSpanHelper::Mjd2Hms(days, f.day, f.hour, f.minute, f.second, f.fraction))
            f.day = LONG_MAX;  // refused by MakeLocal
        return read;
    }
    case 'p': return ReadMarker(text, f.marker);
    default:
        // "%y" and every other letter, "%#d" and "%b" included: a two-digit
        // year, intended.
        read = ReadLong(text, f.year);
        if (read == Read::kOk)
            f.fourDigitYear = false;
        return read;
    }
}

// The century of a two-digit year and the afternoon of a "PM" hour.
void Complete(Fields& f)
{
    if (!f.fourDigitYear && f.year < 71)  // a two-digit year: 70 is 2070, 71 is 1971
        f.year += 2000;
    else if (!f.fourDigitYear && f.year < LONG_MAX - 1900)
        f.year += 1900;
    if (f.marker[0] == 'P' && f.marker[1] == 'M' && f.hour < 12)
        f.hour += 12;  // an "AM" hour of 12 stays 12, intended
}

}  // namespace

double CNyrTime::ScanTime(const std::string& textIn, const std::string& patternIn)
{
    Fields f;
    std::string pattern = patternIn;
    std::string_view text = textIn;
    for (std::size_t percent = pattern.find('%'); percent != std::string::npos; percent = pattern.find('%')) {
        const char letter = percent + 1 < pattern.size() ? pattern[percent + 1] : '\0';
        // Blank the conversion out so that the next search finds the next one.
        pattern[percent] = ' ';
        if (percent + 1 < pattern.size())
            pattern[percent + 1] = ' ';
        if (ReadConversion(letter, text, f) == Read::kEnd)
            break;
        text = DropField(text);
    }
    Complete(f);

    int64_t seconds = 0;
    if (!(f.fraction >= 0.0 && f.fraction < 1.0) ||
        !nyr::local::MakeLocal(f.year, ToInt(f.month), ToInt(f.day), ToInt(f.hour), ToInt(f.minute),
                               ToInt(f.second), -1, seconds)) {
        m_time = CTime();
        m_fracSecond = 0.0;
        return 0.0;
    }
    m_time = CTime(seconds);
    m_fracSecond = f.fraction;
    return Mjd();
}

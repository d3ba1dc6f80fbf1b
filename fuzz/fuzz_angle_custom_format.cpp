// Custom angle formats (CNyrFormat::Format). Input: a first line
// "MILLIDEGREES OPTIONS" (the angle in 1/1000 degree (gon), within +-5e8, a
// number whose bits pick gon, latitude or longitude, symbols, trimming and
// the precision), then the format text up to its first NUL.
// Checked, beyond the absence of a crash:
//  - the text stays within three bytes per format byte, plus the
//    hemisphere letter of a latitude or longitude;
//  - a format without '%' comes back as it is (with the hemisphere);
//  - a format holding each of the three fields once, in order, and
//    otherwise no digit, '-', '.', '%' or hemisphere letter reads back
//    through the angle reader of its unit to the angle, within the
//    precision's last digit.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "nyr/values/format.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"

namespace {

constexpr double kDegree = 3.141592653589793 / 180;

int64_t ReadNumber(const std::string& text, std::size_t& i)
{
    const bool negative = i < text.size() && text[i] == '-';
    i += negative;
    int64_t value = 0;
    for (int digits = 0; i < text.size() && text[i] >= '0' && text[i] <= '9' && digits < 18; ++i, ++digits)
        value = value * 10 + (text[i] - '0');
    return negative ? -value : value;
}

// Cuts the first of the two spellings of a field out of the format; false
// when there is none, or it comes before the end of the field before it, or
// right after it without a symbol or literal text between (the digits of
// the two would run together).
bool CutField(std::string& format, std::size_t& end, bool& separated, const char* lower, const char* upper)
{
    std::size_t at = format.find(lower);
    const std::size_t capital = format.find(upper);
    const bool symbol = capital != std::string::npos && (at == std::string::npos || capital < at);
    if (symbol)
        at = capital;
    if (at == std::string::npos || at < end || (!separated && at == end))
        return false;
    format.erase(at, std::string(lower).size());
    end = at;
    separated = symbol;
    return true;
}

// Whether `format` is a round-trip format: the three fields once each, in
// order and apart, around literal text that the reader takes as separators.
bool ReadsBack(std::string format)
{
    std::size_t end = 0;
    bool separated = true;
    if (!CutField(format, end, separated, "%degOrG", "%DegOrG") ||
        !CutField(format, end, separated, "%minOrC", "%MinOrC") ||
        !CutField(format, end, separated, "%secOrCC", "%SecOrCC"))
        return false;
    return format.find_first_of("0123456789-.%SW") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::size_t i = 0;
    const double degrees = static_cast<double>(ReadNumber(input, i) % 500000000000) / 1000.0;
    while (i < input.size() && input[i] == ' ')
        ++i;
    const int64_t options = ReadNumber(input, i);
    const std::size_t split = input.find('\n');
    std::string format = split == std::string::npos ? std::string() : input.substr(split + 1);
    format = format.substr(0, format.find('\0'));

    const long unit = options & 1 ? NYR_UNIT_GON : NYR_UNIT_DMS;
    const int geo = static_cast<int>(options >> 1 & 3);
    const auto kind = static_cast<eNyrGeoKind>(geo == 3 ? NYR_GEO_NONE : geo);
    CNyrFormat f(unit, 0, 0, format.c_str());
    f.UseDmsSymbols(options >> 3 & 1);
    f.TrimTrailingZeros(options >> 4 & 1);
    f.Precision(static_cast<int>(options >> 5 & 15));
    const double radians = degrees * (unit == NYR_UNIT_GON ? 0.9 : 1.0) * kDegree;

    std::string text;
    if (!f.ConvertToString(radians, unit, text, kind, 0) || format.empty())
        return 0;  // whole units beyond an int, or the fixed layout
    const std::size_t hemisphere = kind == NYR_GEO_NONE ? 0 : 2;  // " N"
    if (text.size() > 3 * format.size() + hemisphere)
        __builtin_trap();
    if (format.find('%') == std::string::npos &&
        (text.compare(0, format.size(), format) != 0 || text.size() != format.size() + hemisphere))
        __builtin_trap();
    if (format.size() <= 200 && ReadsBack(format)) {
        CNyrUnitSettingsAngle settings;
        settings.Unit(unit);
        CNyrValueAngle angle(0.0, settings);
        if (angle.ConvertToStd(text.c_str(), unit) != NYR_VALUE_OK)
            __builtin_trap();
        const double second = (unit == NYR_UNIT_GON ? 0.9 / 10000 : 1.0 / 3600) * kDegree;
        const double tolerance = (0.5 * std::pow(10.0, -f.Precision()) + 1e-8) * second + 1e-14 * std::fabs(radians);
        if (!(std::fabs(angle.GetDouble() - radians) <= tolerance))
            __builtin_trap();
    }
    return 0;
}

#include <charconv>
#include <cmath>
#include <limits>

#include "nyr/values/text_number_p.h"

namespace nyr::values {

namespace {

constexpr int kMaxDecimals = 30;

}  // namespace

void AppendFixed(std::string& out, double number, int decimals)
{
    // 309 digits of the largest double, the point and the decimals.
    char buffer[1 + 309 + 1 + kMaxDecimals + 8];
    char* p = buffer;
    *p++ = std::signbit(number) ? '-' : ' ';
    if (decimals > kMaxDecimals)
        decimals = kMaxDecimals;
    const auto result = std::to_chars(p, buffer + sizeof buffer, std::fabs(number), std::chars_format::fixed,
                                      decimals < 0 ? 0 : decimals);
    out.append(buffer, result.ptr);
}

void AppendDecimalText(std::string& out, double number, int precision, bool trimTrailingZeros)
{
    const std::size_t start = out.size();
    AppendFixed(out, number, precision <= 0 ? 6 : precision);
    // A number that rounds to zero shows no sign: "-0.000000" would read back
    // as a negative zero, which the readers refuse.
    if (out[start] == '-' && out.find_first_of("123456789", start) == std::string::npos)
        out[start] = ' ';
    const std::size_t point = out.find('.', start);
    if (point == std::string::npos) {
        out += ".0";
        return;
    }
    if (trimTrailingZeros) {
        std::size_t end = out.size();
        while (end > point + 2 && out[end - 1] == '0')
            --end;
        out.resize(end);
    }
}

std::size_t ReadNumber(const char* text, double& value)
{
    const char* p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
        if (*p == '+' || *p == '-')  // from_chars would take a second '-'; strtod does not
            return 0;
    }
    const char* end = p;
    while (*end != '\0')
        ++end;
    double magnitude = 0;
    const auto result = std::from_chars(p, end, magnitude, std::chars_format::general);
    if (result.ptr == p)
        return 0;
    if (result.ec == std::errc::result_out_of_range)
        magnitude = std::numeric_limits<double>::quiet_NaN();
    value = negative ? -magnitude : magnitude;
    return static_cast<std::size_t>(result.ptr - text);
}

std::string ShortestText(double number)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, result.ptr);
}

}  // namespace nyr::values

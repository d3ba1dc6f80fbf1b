#include <locale.h>
#include <stdlib.h>

#include <charconv>
#include <cmath>

#include "nyr/platform/ascii_p.h"
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
    AppendFixed(out, number, precision <= 0 ? 6 : precision);
    const std::size_t point = out.rfind('.');
    if (point == std::string::npos) {
        out += ".0";
        return;
    }
    if (trimTrailingZeros)
        DropTrailingZeros(out, point);
}

void DropTrailingZeros(std::string& out, std::size_t point)
{
    std::size_t end = out.size();
    while (end > point + 2 && out[end - 1] == '0')
        --end;
    out.resize(end);
}

std::size_t ReadNumber(const char* text, double& value)
{
    // strtod follows LC_NUMERIC, which the host may have set to a locale
    // with a decimal comma; this reading does not.
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t{});
    char* end = nullptr;
    const double number = strtod_l(text, &end, c);
    if (end == text)
        return 0;
    value = number;
    return static_cast<std::size_t>(end - text);
}

std::string_view TrimWhiteSpace(const char* text)
{
    return nyr::ascii::Trimmed(text);
}

std::string ShortestText(double number)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, result.ptr);
}

}  // namespace nyr::values

#include "nyr/platform/string_format.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "nyr/platform/ascii_p.h"

std::string NyrFormatV(const char* format, va_list args)
{
    char small[256];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0)
        return format;
    if (static_cast<std::size_t>(needed) < sizeof small)
        return std::string(small, static_cast<std::size_t>(needed));
    try {
        std::string out(static_cast<std::size_t>(needed), '\0');
        std::vsnprintf(out.data(), out.size() + 1, format, args);
        return out;
    } catch (const std::bad_alloc&) {
        return format;
    }
}

std::string NyrFormat(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string out = NyrFormatV(format, args);
    va_end(args);
    return out;
}

namespace {

using nyr::ascii::IsDigit;

// Width or precision: digits or one "*".
void SkipCount(std::string_view text, std::size_t& i)
{
    if (i < text.size() && text[i] == '*') {
        ++i;
        return;
    }
    while (i < text.size() && IsDigit(text[i]))
        ++i;
}

// The length of the conversion starting at the "%" at `start`; 0 when none
// that the library knows starts there.
std::size_t ConversionLength(std::string_view text, std::size_t start)
{
    for (const std::string_view name : {"%MIN", "%MAX"})
        if (text.substr(start, name.size()) == name)
            return name.size();
    std::size_t i = start + 1;
    while (i < text.size() && std::strchr("-+ #0", text[i]) && text[i] != '\0')
        ++i;
    SkipCount(text, i);
    if (i < text.size() && text[i] == '.')
        SkipCount(text, ++i);
    for (const std::string_view length : {"hh", "h", "ll", "l", "L", "j", "z", "t"}) {
        if (text.substr(i, length.size()) == length) {
            i += length.size();
            break;
        }
    }
    if (i >= text.size() || text[i] == '\0' || !std::strchr("diouxXeEfFgGaAcsp", text[i]))
        return 0;
    return i + 1 - start;
}

}  // namespace

bool NyrFormatConversions(std::string_view format, std::vector<std::string>& conversions)
{
    conversions.clear();
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '\0')
            return false;
        if (format[i] != '%')
            continue;
        if (i + 1 < format.size() && format[i + 1] == '%') {
            ++i;
            continue;
        }
        const std::size_t length = ConversionLength(format, i);
        if (length == 0)
            return false;
        conversions.emplace_back(format.substr(i, length));
        i += length - 1;
    }
    return true;
}

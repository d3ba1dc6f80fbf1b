#include "nyr/platform/string_format.h"

#include <cstdio>
#include <cstring>

std::string NyrFormatV(const char* format, va_list args)
{
    char small[256];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0)
        return {};
    if (static_cast<std::size_t>(needed) < sizeof small)
        return std::string(small, static_cast<std::size_t>(needed));
    std::string out(static_cast<std::size_t>(needed), '\0');
    std::vsnprintf(out.data(), out.size() + 1, format, args);
    return out;
}

std::string NyrFormat(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string out = NyrFormatV(format, args);
    va_end(args);
    return out;
}

std::string NyrFormatConversions(const std::string& format)
{
    std::string out;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%')
            continue;
        if (++i < format.size() && format[i] == '%')
            continue;
        // flags, width, precision and length modifiers; '*' takes an argument
        while (i < format.size() && std::strchr("-+ #0123456789.*hlLqjzt", format[i])) {
            if (format[i] == '*')
                out += '*';
            ++i;
        }
        if (i < format.size())
            out += format[i];
    }
    return out;
}

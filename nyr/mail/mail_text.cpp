#include "nyr/mail/mail_text_p.h"

#include <cstdio>
#include <ctime>

namespace NyrMailText {

std::string HeaderValue(std::string_view text)
{
    std::string value(text);
    for (char& c : value)
        if (c == '\r' || c == '\n')
            c = ' ';
    return value;
}

bool HasControlCharacter(std::string_view text)
{
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F)
            return true;
    }
    return false;
}

std::string FileName(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

}  // namespace NyrMailText

namespace NyrMailText {

std::string CurrentDate()
{
    static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[40];
    std::snprintf(text, sizeof text, "%s, %02d %s %02d %02d:%02d:%02d GMT", kDays[utc.tm_wday], utc.tm_mday,
                  kMonths[utc.tm_mon], utc.tm_year % 100, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text;
}

}  // namespace NyrMailText

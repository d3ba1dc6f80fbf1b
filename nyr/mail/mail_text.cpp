#include "nyr/mail/mail_text_p.h"

#include "nyr/time/time.h"

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

bool IsMailAddress(std::string_view address)
{
    return !address.empty() && address.find_first_of(" \"<>") == std::string_view::npos &&
           !HasControlCharacter(address);
}

std::string PercentEncoded(std::string_view text, std::string_view keep)
{
    static const char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size() + text.size() / 2);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool unreserved = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                                (byte >= '0' && byte <= '9') || c == '-' || c == '.' || c == '_' || c == '~';
        if (unreserved || (byte != 0 && keep.find(c) != std::string_view::npos)) {
            out += c;
        } else {
            out += '%';
            out += kHex[byte >> 4];
            out += kHex[byte & 15];
        }
    }
    return out;
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
    // The time class's formatter has English names on every locale; "%y" on purpose.
    return CNyrTime::FormatUTC(CNyrTime::CurrentTimeUTC(), "%a, %d %b %y %H:%M:%S GMT");
}

}  // namespace NyrMailText

#include "nyr/mail/smtp_reply_p.h"

#include <cstdio>

namespace {

bool EqualNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const char x = a[i] >= 'a' && a[i] <= 'z' ? static_cast<char>(a[i] - 32) : a[i];
        const char y = b[i] >= 'a' && b[i] <= 'z' ? static_cast<char>(b[i] - 32) : b[i];
        if (x != y)
            return false;
    }
    return true;
}

// The next blank-separated word of `text` from `pos`, moving `pos` past it.
std::string_view NextWord(std::string_view text, std::size_t& pos)
{
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t'))
        ++pos;
    const std::size_t start = pos;
    while (pos < text.size() && text[pos] != ' ' && text[pos] != '\t')
        ++pos;
    return text.substr(start, pos - start);
}

}  // namespace

unsigned NyrSmtpReplyCode(std::string_view reply)
{
    char start[4] = {};
    reply.copy(start, 3);
    unsigned code = 0;
    if (std::sscanf(start, "%u", &code) != 1)
        return 0;
    return code;
}

std::size_t NyrSmtpReplyLength(std::string_view buffer)
{
    std::size_t lineStart = 0;
    for (;;) {
        const std::size_t end = buffer.find('\n', lineStart);
        if (end == std::string_view::npos)
            return 0;
        const bool continued = end - lineStart > 3 && buffer[lineStart + 3] == '-';
        lineStart = end + 1;
        if (!continued)
            return lineStart;
    }
}

CNyrSmtpExtensions NyrSmtpExtensions(std::string_view reply)
{
    CNyrSmtpExtensions found;
    std::size_t lineStart = 0;
    while (lineStart < reply.size()) {
        std::size_t end = reply.find('\n', lineStart);
        if (end == std::string_view::npos)
            end = reply.size();
        std::string_view line = reply.substr(lineStart, end - lineStart);
        lineStart = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.size() < 4)
            continue;
        line.remove_prefix(4);  // "250-" or "250 "
        std::size_t pos = 0;
        std::string_view keyword = NextWord(line, pos);
        std::string_view rest = line.substr(pos);
        if (keyword.size() > 5 && EqualNoCase(keyword.substr(0, 5), "AUTH=")) {
            rest = line.substr(5);
            keyword = "AUTH";
        }
        if (EqualNoCase(keyword, "STARTTLS")) {
            found.startTls = true;
        } else if (EqualNoCase(keyword, "AUTH")) {
            std::size_t at = 0;
            for (std::string_view word = NextWord(rest, at); !word.empty(); word = NextWord(rest, at)) {
                found.authPlain |= EqualNoCase(word, "PLAIN");
                found.authLogin |= EqualNoCase(word, "LOGIN");
            }
        }
    }
    return found;
}

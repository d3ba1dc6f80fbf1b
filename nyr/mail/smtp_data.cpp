#include "nyr/mail/smtp_data_p.h"

#include <cstring>

namespace {

// The first CR or LF of text[from, size), or size.
std::size_t NextLineBreak(const std::string& text, std::size_t from)
{
    const char* begin = text.data() + from;
    const std::size_t length = text.size() - from;
    const void* lf = std::memchr(begin, '\n', length);
    const std::size_t lfAt = lf ? static_cast<std::size_t>(static_cast<const char*>(lf) - begin) : length;
    const void* cr = std::memchr(begin, '\r', lfAt);
    return from + (cr ? static_cast<std::size_t>(static_cast<const char*>(cr) - begin) : lfAt);
}

}  // namespace

void NyrSmtpWireLines(std::string& text, bool stuff)
{
    // The result is built only from the first change on; a text that needs
    // none (the usual case) is scanned once and not copied.
    std::string out;
    bool changed = false;
    std::size_t copied = 0;  // text[0, copied) is in `out` once changed
    auto copyUpTo = [&](std::size_t end) {
        if (!changed) {
            out.reserve(text.size() + text.size() / 32 + 16);
            changed = true;
        }
        out.append(text, copied, end - copied);
        copied = end;
    };

    const std::size_t size = text.size();
    std::size_t line = 0;
    for (;;) {
        if (stuff && line < size && text[line] == '.') {
            copyUpTo(line);
            out += '.';
        }
        const std::size_t end = NextLineBreak(text, line);
        if (end == size)
            break;
        if (text[end] == '\r' && end + 1 < size && text[end + 1] == '\n') {
            line = end + 2;
            continue;
        }
        copyUpTo(end);  // a bare CR or LF
        out += "\r\n";
        copied = end + 1;
        line = end + 1;
    }
    if (changed) {
        copyUpTo(size);
        text.swap(out);
    }
}

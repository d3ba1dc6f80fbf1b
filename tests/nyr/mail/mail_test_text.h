#pragma once

// Text helpers of the mail tests, written independently of the library's
// own, so that expected values do not come from the code under test.

#include <string>

namespace nyr::test {

// Bytes from hex digits ("-" or "" for none).
inline std::string FromHex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t i = 0; hex != "-" && i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

// Every line end (CR LF, a bare CR, a bare LF) made CR LF, the way a reader
// of the message sees its lines.
inline std::string CrLfLines(const std::string& text)
{
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            lines += "\r\n";
            i += text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        } else {
            lines += text[i];
        }
    }
    return lines;
}

// `text` ending in CR LF: one is added when it does not.
inline std::string WithLineEnd(std::string text)
{
    if (text.size() < 2 || text.compare(text.size() - 2, 2, "\r\n") != 0)
        text += "\r\n";
    return text;
}

}  // namespace nyr::test

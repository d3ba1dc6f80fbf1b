// SMTP replies and message bodies from arbitrary bytes: the reply reader
// always makes progress within the buffer, and the body as sent holds no
// bare CR or LF, no line that would end the data early, and reads back as
// the text it came from.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_reply_p.h"

namespace {

struct Smtp : CNyrSmtp
{
    using CNyrSmtp::PrepareBody;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);

    std::string_view rest = input;
    while (const std::size_t length = NyrSmtpReplyLength(rest)) {
        if (length > rest.size() || rest[length - 1] != '\n')
            std::abort();
        NyrSmtpReplyCode(rest.substr(0, length));
        NyrSmtpExtensions(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    NyrSmtpExtensions(input);

    // The body as it goes on the wire: only CR LF line ends, and read back
    // line by line with one leading dot removed (what a server does) it is
    // the input with every line end made CR LF.
    std::string body = input;
    static Smtp smtp;
    smtp.PrepareBody(body);
    if (body.size() < 2 || body.compare(body.size() - 2, 2, "\r\n") != 0)
        std::abort();
    std::string read, lines;
    for (std::size_t at = 0; at < body.size();) {
        const std::size_t end = body.find("\r\n", at);
        const std::string line = body.substr(at, end - at);
        if (line.find_first_of("\r\n") != std::string::npos || line == ".")
            std::abort();
        read += (line.empty() || line[0] != '.' ? line : line.substr(1)) + "\r\n";
        at = end + 2;
    }
    for (std::size_t i = 0; i < input.size(); ++i) {
        const bool crlf = input[i] == '\r' && i + 1 < input.size() && input[i + 1] == '\n';
        lines += input[i] == '\r' || input[i] == '\n' ? "\r\n" : std::string(1, input[i]);
        i += crlf;
    }
    if (lines.size() < 2 || lines.compare(lines.size() - 2, 2, "\r\n") != 0)
        lines += "\r\n";
    if (read != lines)
        std::abort();
    return 0;
}

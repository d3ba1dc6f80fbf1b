// SMTP replies and message bodies from arbitrary bytes: the reply reader
// always makes progress within the buffer, and dot-stuffing leaves no line
// that would end the data early and matches its rule read literally.
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

    std::string body = input;
    static Smtp smtp;
    smtp.PrepareBody(body);
    if (body.size() < 2 || body.compare(body.size() - 2, 2, "\r\n") != 0)
        std::abort();
    if (body.compare(0, 3, ".\r\n") == 0 || body.find("\r\n.\r\n") != std::string::npos)
        std::abort();
    // The same as the rule read literally: replace from the start until no
    // lone-dot line is left.
    std::string expected = input;
    if (expected.size() < 2 || expected.compare(expected.size() - 2, 2, "\r\n") != 0)
        expected += "\r\n";
    if (expected.compare(0, 3, ".\r\n") == 0)
        expected.insert(0, 1, '.');
    for (std::size_t at; (at = expected.find("\r\n.\r\n")) != std::string::npos;)
        expected.replace(at, 5, "\r\n..\r\n");
    if (body != expected)
        std::abort();
    return 0;
}

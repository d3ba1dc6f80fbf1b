// Mail addresses and header texts from arbitrary bytes: parsing never fails,
// and no text can add a header line or leave a bare CR or LF in the header.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nyr/mail/mail_message_mime_container.h"

namespace {

struct Message : CNyrMailMessageMimeContainer
{
    using CNyrMailMessageMimeContainer::MailAddressFromString;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Pieces separated by 0x00: from, reply-to, To list, Cc list, Bcc list, subject.
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string pieces[6];
    for (std::size_t at = 0, i = 0; i < 6 && at <= input.size(); ++i) {
        const std::size_t end = std::min(input.find('\0', at), input.size());
        pieces[i] = input.substr(at, end - at);
        at = end + 1;
    }

    const auto parsed = Message::MailAddressFromString(pieces[0].c_str());
    if (parsed.address.find_first_of("<>") != std::string::npos)
        std::abort();

    Message m;
    m.From(pieces[0].c_str());
    m.ReplyTo(pieces[1].c_str());
    m.AddMultipleRecipients(pieces[2].c_str(), CNyrMailMessage::TO);
    m.AddMultipleRecipients(pieces[3].c_str(), CNyrMailMessage::CC);
    m.AddMultipleRecipients(pieces[4].c_str(), CNyrMailMessage::BCC);
    m.Subject(pieces[5].c_str());
    m.MailerName(pieces[5].c_str());
    m.AddMimePart(new CNyrMailMessageMimePartText(pieces[5].c_str()));
    m.AddMimePart(new CNyrMailMessageMimePartBinary(pieces[1].c_str()));

    // Every header line ends in CR LF, holds no other CR or LF, and starts
    // with one of the names written (or the tab of the boundary line).
    const std::string header = m.Header();
    static const char* const kNames[] = {"Date: ", "From: ", "Reply-To: ", "To: ", "Cc: ", "X-Mailer: ",
                                          "Subject: ", "MIME-Version: ", "Content-Type: ", "\tboundary="};
    for (std::size_t at = 0; at < header.size();) {
        const std::size_t end = header.find("\r\n", at);
        if (end == std::string::npos)
            std::abort();
        const std::string line = header.substr(at, end - at);
        if (line.find_first_of("\r\n") != std::string::npos)
            std::abort();
        bool known = false;
        for (const char* name : kNames)
            known |= line.rfind(name, 0) == 0;
        if (!known)
            std::abort();
        at = end + 2;
    }

    // Every stored recipient passed the check: no control character, no blank.
    std::string address, name;
    for (const auto kind : {CNyrMailMessage::TO, CNyrMailMessage::CC, CNyrMailMessage::BCC})
        for (unsigned i = 0; m.Recipient(address, name, i, kind); ++i)
            for (const unsigned char c : address + name)
                if (c < 0x20 || c == 0x7F)
                    std::abort();

    // The escaping reads back to the text (up to its first zero byte).
    const std::string text = pieces[5];
    const std::string escaped = NyrEncodeIso8859(text.c_str());
    std::string back;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        const auto c = static_cast<unsigned char>(escaped[i]);
        if (c > 0x99)
            std::abort();
        if (c == '=') {
            if (i + 2 >= escaped.size())
                std::abort();
            back += static_cast<char>(std::strtol(escaped.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            back += static_cast<char>(c);
        }
    }
    if (back != text)
        std::abort();
    return 0;
}

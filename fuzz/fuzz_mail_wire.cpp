// What leaves the library for another program, from arbitrary texts: the
// SMTP data stream of a composed message holds no bare CR or LF and no end
// of data but its own, and the fields handed to a mail client stay fields:
// as many as given, each decoding back to its text.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/mailto_p.h"
#include "nyr/mail/smtp.h"

namespace {

struct Smtp : CNyrSmtp
{
    using CNyrSmtp::PrepareBody;
    using CNyrSmtp::PrepareHeader;
};

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

std::string PercentDecoded(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

// The values of "name=value" fields separated by `separator`, decoded.
std::vector<std::string> Fields(const std::string& text, char separator)
{
    std::vector<std::string> values;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        const std::string field = text.substr(at, end - at);
        values.push_back(PercentDecoded(field.substr(field.find('=') + 1)));
        at = end + 1;
    }
    return values;
}

void CheckDataStream(const std::string pieces[8])
{
    CNyrMailMessageMimeContainer m;
    m.From(pieces[0].c_str());
    m.AddMultipleRecipients(pieces[1].c_str(), CNyrMailMessage::TO);
    m.Subject(pieces[2].c_str());
    m.MailerName(pieces[3].c_str());
    m.Body(pieces[4].c_str());
    m.Boundary(pieces[5]);
    m.PreMime(pieces[6]);
    if (!pieces[7].empty()) {
        m.AddMimePart(new CNyrMailMessageMimePartText(pieces[7].c_str()));
        m.AddMimePart(new CNyrMailMessageMimePartText(pieces[4].c_str()));
    }
    static Smtp smtp;
    std::string header = m.Header(), body = m.Body();
    smtp.PrepareHeader(header);
    smtp.PrepareBody(body);
    const std::string stream = header + "\r\n" + body + "\r\n.\r\n";
    for (std::size_t i = 0; i < stream.size(); ++i) {
        if (stream[i] == '\r')
            Check(i + 1 < stream.size() && stream[i + 1] == '\n');
        if (stream[i] == '\n')
            Check(i > 0 && stream[i - 1] == '\r');
    }
    Check(stream.find("\r\n.\r\n") == stream.size() - 5 && stream.compare(0, 2, ".\r") != 0);
}

void CheckHandOff(const std::string pieces[8])
{
    NyrHandOffMail mail;
    std::string recipient;
    if (NyrHandOffRecipient(pieces[0], pieces[1], recipient))
        mail.to = {recipient, recipient};
    if (NyrHandOffRecipient(pieces[2], "", recipient))
        mail.bcc = {recipient};
    mail.subject = pieces[3];
    mail.body = pieces[4];
    if (!pieces[5].empty() && pieces[5][0] == '/')
        mail.files = {pieces[5]};
    std::vector<std::string> expected;
    for (const auto* list : {&mail.to, &mail.cc, &mail.bcc})
        expected.insert(expected.end(), list->begin(), list->end());
    for (const auto* text : {&mail.subject, &mail.body})
        if (!text->empty())
            expected.push_back(*text);
    expected.insert(expected.end(), mail.files.begin(), mail.files.end());

    const std::string uri = NyrMailtoUri(mail, true);
    for (const char c : uri)
        Check(c > 0x20 && c < 0x7F && c != '"' && c != '\'' && c != '\\' && c != ',' && c != ';');
    Check(uri.compare(0, 8, "mailto:?") == 0);
    Check(Fields(uri.substr(8), '&') == (uri.size() > 8 ? expected : std::vector<std::string>{}));
    const std::string compose = NyrThunderbirdCompose(mail);
    Check(compose.find_first_of("'\"\\ ") == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Pieces separated by 0x00.
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string pieces[8];
    for (std::size_t at = 0, i = 0; i < 8 && at <= input.size(); ++i) {
        const std::size_t end = std::min(input.find('\0', at), input.size());
        pieces[i] = input.substr(at, end - at);
        at = end + 1;
    }
    CheckDataStream(pieces);
    CheckHandOff(pieces);
    return 0;
}

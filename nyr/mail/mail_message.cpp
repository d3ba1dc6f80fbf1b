#include "nyr/mail/mail_message.h"

#include <algorithm>
#include <utility>

#include "nyr/mail/mail_text_p.h"
#include "nyr/platform/ascii_p.h"

using NyrMailHelper::MAIL_ADDRESS;

namespace {

std::string& MailerNameDefaultValue()
{
    static std::string value = "NyrMail";
    return value;
}

}  // namespace

CNyrMailMessage::CNyrMailMessage() : m_mailerName(MailerNameDefaultValue()) {}
CNyrMailMessage::~CNyrMailMessage() = default;
CNyrMailMessage::CNyrMailMessage(const CNyrMailMessage&) = default;
CNyrMailMessage& CNyrMailMessage::operator=(const CNyrMailMessage&) = default;

std::vector<MAIL_ADDRESS>* CNyrMailMessage::List(eRecipientTypes kind)
{
    return const_cast<std::vector<MAIL_ADDRESS>*>(std::as_const(*this).List(kind));
}

const std::vector<MAIL_ADDRESS>* CNyrMailMessage::List(eRecipientTypes kind) const
{
    switch (kind) {
    case TO: return &m_to;
    case CC: return &m_cc;
    case BCC: return &m_bcc;
    }
    return nullptr;  // a kind cast from an integer out of range
}

int CNyrMailMessage::AddRecipient(const char* text, eRecipientTypes kind)
{
    auto* list = List(kind);
    if (!list)
        return 0;
    MAIL_ADDRESS address = MailAddressFromString(text);
    if (!CheckMailAddress(address) || !TransformMailAdress(address))
        return 0;
    list->push_back(std::move(address));
    return 1;
}

int CNyrMailMessage::AddMultipleRecipients(const char* text, eRecipientTypes kind)
{
    const std::string_view all = text ? text : "";
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = all.find(',', start);
        AddRecipient(std::string(all.substr(start, comma - start)).c_str(), kind);
        if (comma == std::string_view::npos)
            return 1;
        start = comma + 1;
    }
}

int CNyrMailMessage::DeleteRecipient(unsigned index, eRecipientTypes kind)
{
    auto* list = List(kind);
    if (!list || index >= list->size())
        return 0;
    list->erase(list->begin() + index);
    return 1;
}

int CNyrMailMessage::Recipient(std::string& address, std::string& name, unsigned index, eRecipientTypes kind) const
{
    const auto* list = List(kind);
    if (!list || index >= list->size())
        return 0;
    address = (*list)[index].address;
    name = (*list)[index].name;
    return 1;
}

unsigned CNyrMailMessage::GetNumRecipients() const
{
    return GetNumRecipientsTo() + GetNumRecipientsCc() + GetNumRecipientsBcc();
}

unsigned CNyrMailMessage::GetNumRecipientsTo() const
{
    return static_cast<unsigned>(m_to.size());
}

unsigned CNyrMailMessage::GetNumRecipientsCc() const
{
    return static_cast<unsigned>(m_cc.size());
}

unsigned CNyrMailMessage::GetNumRecipientsBcc() const
{
    return static_cast<unsigned>(m_bcc.size());
}

std::string CNyrMailMessage::MailerName() const
{
    return m_mailerName;
}

void CNyrMailMessage::MailerName(const char* name)
{
    m_mailerName = name ? name : "";
}

MAIL_ADDRESS CNyrMailMessage::From() const
{
    return m_from;
}

void CNyrMailMessage::From(const char* text)
{
    m_from = MailAddressFromString(text);
}

void CNyrMailMessage::From(const MAIL_ADDRESS& address)
{
    m_from = address;
}

MAIL_ADDRESS CNyrMailMessage::ReplyTo() const
{
    return m_replyTo;
}

void CNyrMailMessage::ReplyTo(const char* text)
{
    m_replyTo = MailAddressFromString(text);
}

void CNyrMailMessage::ReplyTo(const MAIL_ADDRESS& address)
{
    m_replyTo = address;
}

std::string CNyrMailMessage::Header() const
{
    using NyrMailText::HeaderValue;
    std::string header;
    header.reserve(256 + 64 * (m_to.size() + m_cc.size()));
    header += "Date: " + NyrMailText::CurrentDate() + "\r\n";
    header += "From: \"" + HeaderValue(m_from.name) + "\" <" + HeaderValue(m_from.address) + ">\r\n";
    if (!m_replyTo.address.empty())
        header += "Reply-To: \"" + HeaderValue(m_replyTo.name) + "\" <" + HeaderValue(m_replyTo.address) + ">\r\n";
    if (!m_to.empty()) {
        header += "To: ";
        for (std::size_t i = 0; i < m_to.size(); ++i) {
            if (i)
                header += ',';
            // The blank after the opening quote is intended (the From line has none).
            header += "\" " + HeaderValue(m_to[i].name) + "\" <" + HeaderValue(m_to[i].address) + ">";
        }
        header += "\r\n";
    }
    if (!m_cc.empty()) {
        header += "Cc: ";
        for (std::size_t i = 0; i < m_cc.size(); ++i) {
            if (i)
                header += ',';
            header += "<" + HeaderValue(m_cc[i].address) + ">";
        }
        header += "\r\n";
    }
    header += "X-Mailer: " + HeaderValue(m_mailerName) + "\r\n";
    header += "Subject: " + HeaderValue(m_subject) + "\r\n";
    return header;
}

std::string CNyrMailMessage::Subject() const
{
    return m_subject;
}

void CNyrMailMessage::Subject(const char* subject)
{
    m_subject = subject ? subject : "";
}

std::string CNyrMailMessage::Body() const
{
    return m_body;
}

void CNyrMailMessage::Body(const char* body)
{
    m_body = body ? body : "";
}

std::string CNyrMailMessage::MailerNameDefault()
{
    return MailerNameDefaultValue();
}

void CNyrMailMessage::MailerNameDefault(const char* name)
{
    MailerNameDefaultValue() = name ? name : "";
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the virtual takes the address by value, and so do its overrides
int CNyrMailMessage::CheckMailAddress(MAIL_ADDRESS address) const
{
    // Control characters are refused too, so that no address or name can
    // break a header line or an SMTP command.
    if (!NyrMailText::IsMailAddress(address.address) || address.name.find_first_of("\"@<>") != std::string::npos ||
        NyrMailText::HasControlCharacter(address.name))
        return 0;
    return 1;
}

int CNyrMailMessage::TransformMailAdress(MAIL_ADDRESS address) const
{
    std::erase_if(address.name, [](char c) { return c == '"' || c == '@' || c == '<' || c == '>'; });
    return 1;
}

MAIL_ADDRESS CNyrMailMessage::MailAddressFromString(const char* text)
{
    const std::string_view all = text ? text : "";
    MAIL_ADDRESS result;
    const std::size_t open = all.find_first_of("<>");
    if (open == std::string_view::npos) {
        result.address = all;
        return result;
    }
    result.name = nyr::ascii::Trimmed(all.substr(0, open));
    const std::string_view rest = all.substr(open + 1);
    result.address = rest.substr(0, rest.find_first_of("<>"));
    return result;
}

std::string NyrEncodeIso8859(const char* text)
{
    static const char kHex[] = "0123456789ABCDEF";
    std::string result;
    if (!text)
        return result;
    result.reserve(std::char_traits<char>::length(text));
    for (const char* p = text; *p; ++p) {
        const auto byte = static_cast<unsigned char>(*p);
        // 0x99, not 0x7F, is the threshold on purpose.
        if (byte > 0x99 || byte == '=') {
            result += '=';
            result += kHex[byte >> 4];
            result += kHex[byte & 0xF];
        } else {
            result += static_cast<char>(byte);
        }
    }
    return result;
}

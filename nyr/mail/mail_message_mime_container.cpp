#include "nyr/mail/mail_message_mime_container.h"

#include <algorithm>
#include <typeinfo>

#include "nyr/mail/mail_text_p.h"

namespace {

std::string& BoundaryDefaultValue()
{
    static std::string value = "_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf";
    return value;
}

// True when `text` holds `delimiter` at the start of a line: at its start or
// after a CR or LF (lax readers end lines at either).
bool HoldsDelimiter(std::string_view text, std::string_view delimiter)
{
    for (std::size_t at = text.find(delimiter); at != std::string_view::npos; at = text.find(delimiter, at + 1))
        if (at == 0 || text[at - 1] == '\r' || text[at - 1] == '\n')
            return true;
    return false;
}

}  // namespace

CNyrMailMessageMimeContainer::CNyrMailMessageMimeContainer() : m_boundary(BoundaryDefaultValue()) {}
CNyrMailMessageMimeContainer::~CNyrMailMessageMimeContainer() = default;

std::string CNyrMailMessageMimeContainer::Header() const
{
    std::string header = CNyrMailMessage::Header();
    if (m_parts.empty())
        return header;
    header += "MIME-Version: 1.0\r\n";
    if (m_parts.size() == 1)
        header += m_parts.front()->Header();
    else
        header += "Content-Type: multipart/mixed;\r\n\tboundary=" + WireBoundary() + "\r\n";
    return header;
}

std::string CNyrMailMessageMimeContainer::Body() const
{
    if (m_parts.empty())
        return CNyrMailMessage::Body();
    if (m_parts.size() == 1)
        return m_parts.front()->Body();

    // Each part's body is made once and appended: the largest attachment is
    // held twice at most (its body and the result). The capacity grows by
    // half at least, so many small parts do not copy the result over and over.
    const std::string separator = "\r\n--" + WireBoundary();
    std::string body = m_preMime;
    for (const auto& part : m_parts) {
        const std::string partHeader = part->Header();
        const std::string partBody = part->Body();
        const std::size_t need = body.size() + 2 * separator.size() + partHeader.size() + partBody.size() + 8 +
                                 m_postMime.size();
        if (need > body.capacity())
            body.reserve(std::max(need, body.capacity() + body.capacity() / 2));
        body += separator;
        body += "\r\n";
        body += partHeader;
        body += "\r\n";
        body += partBody;
    }
    body += separator;
    body += "--\r\n";
    body += m_postMime;
    return body;
}

std::string CNyrMailMessageMimeContainer::WireBoundary() const
{
    // The texts a receiver reads as lines before the closing delimiter. A
    // plain binary part's body is Base64, which holds no "-": only its
    // header is looked at, so large attachments are not encoded twice.
    std::vector<std::string> texts = {m_preMime};
    for (const auto& owned : m_parts) {
        const CNyrMailMessageMimePart& part = *owned;
        texts.push_back(part.Header());
        if (typeid(part) != typeid(CNyrMailMessageMimePartBinary))
            texts.push_back(part.Body());
    }
    const std::string base = NyrMailText::HeaderValue(m_boundary);
    std::string boundary = base;
    for (unsigned suffix = 1;; ++suffix) {
        const std::string delimiter = "--" + boundary;
        if (std::none_of(texts.begin(), texts.end(),
                         [&](const std::string& text) { return HoldsDelimiter(text, delimiter); }))
            return boundary;
        boundary = base + "_" + std::to_string(suffix);
    }
}

std::string CNyrMailMessageMimeContainer::Boundary() const
{
    return m_boundary;
}

void CNyrMailMessageMimeContainer::Boundary(const std::string& boundary)
{
    m_boundary = boundary;
}

int CNyrMailMessageMimeContainer::AddMimePart(CNyrMailMessageMimePart* part)
{
    if (!part)
        return 0;
    m_parts.emplace_back(part);
    return 1;
}

std::string CNyrMailMessageMimeContainer::PreMime() const
{
    return m_preMime;
}

void CNyrMailMessageMimeContainer::PreMime(const std::string& text)
{
    m_preMime = text;
}

std::string CNyrMailMessageMimeContainer::PostMime() const
{
    return m_postMime;
}

void CNyrMailMessageMimeContainer::PostMime(const std::string& text)
{
    m_postMime = text;
}

std::string CNyrMailMessageMimeContainer::BoundaryDefault()
{
    return BoundaryDefaultValue();
}

void CNyrMailMessageMimeContainer::BoundaryDefault(const std::string& boundary)
{
    BoundaryDefaultValue() = boundary;
}

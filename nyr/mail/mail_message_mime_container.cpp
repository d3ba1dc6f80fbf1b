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

// The part as a plain binary part (not a derived class): its body is the
// file's Base64, which holds no "-" and can be encoded straight into place.
const CNyrMailMessageMimePartBinary* PlainBinary(const CNyrMailMessageMimePart& part)
{
    return typeid(part) == typeid(CNyrMailMessageMimePartBinary)
               ? static_cast<const CNyrMailMessageMimePartBinary*>(&part)
               : nullptr;
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

    // Other parts' bodies are made first; plain binary parts are encoded
    // straight into the result, which is sized beforehand from their files,
    // so the largest attachment is held once.
    const std::string separator = "\r\n--" + WireBoundary();
    std::vector<std::string> headers, bodies;
    std::size_t need = m_preMime.size() + m_postMime.size() + separator.size() + 4;
    for (const auto& owned : m_parts) {
        const CNyrMailMessageMimePart& part = *owned;
        headers.push_back(part.Header());
        const auto* binary = PlainBinary(part);
        bodies.push_back(binary ? std::string() : part.Body());
        need += separator.size() + 4 + headers.back().size();
        need += binary ? binary->BodySizeBound() : bodies.back().size();
    }
    std::string body;
    body.reserve(need);
    body += m_preMime;
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        body += separator;
        body += "\r\n";
        body += headers[i];
        body += "\r\n";
        if (const auto* binary = PlainBinary(*m_parts[i]))
            binary->AppendBody(body);
        else
            body += bodies[i];
    }
    body += separator;
    body += "--\r\n";
    body += m_postMime;
    return body;
}

std::string CNyrMailMessageMimeContainer::WireBoundary() const
{
    // The texts a receiver reads as lines before the closing delimiter; a
    // plain binary part's Base64 is not encoded for this.
    std::vector<std::string> texts = {m_preMime};
    for (const auto& owned : m_parts) {
        texts.push_back(owned->Header());
        if (!PlainBinary(*owned))
            texts.push_back(owned->Body());
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

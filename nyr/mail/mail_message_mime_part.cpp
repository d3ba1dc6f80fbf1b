#include "nyr/mail/mail_message_mime_part.h"

#include "nyr/mail/mail_text_p.h"
#include "nyr/util/base64.h"

using NyrMailText::HeaderValue;

namespace {

struct TextDefaults
{
    std::string charset = "iso-8859-1";
    std::string contentType = "text/plain";
    std::string transferEncoding = "quoted-printable";
};

TextDefaults& TextDefault()
{
    static TextDefaults defaults;
    return defaults;
}

struct BinaryDefaults
{
    std::string contentType = "application/octet-stream";
    std::string disposition = "attachment";
    std::string transferEncoding = "Base64";
};

BinaryDefaults& BinaryDefault()
{
    static BinaryDefaults defaults;
    return defaults;
}

std::string OrEmpty(const char* text)
{
    return text ? text : "";
}

}  // namespace

CNyrMailMessageMimePart::~CNyrMailMessageMimePart() = default;

// --- text part ---

CNyrMailMessageMimePartText::CNyrMailMessageMimePartText(const char* text)
    : m_text(OrEmpty(text)),
      m_charset(TextDefault().charset),
      m_contentType(TextDefault().contentType),
      m_transferEncoding(TextDefault().transferEncoding)
{
}

CNyrMailMessageMimePartText::~CNyrMailMessageMimePartText() = default;

std::string CNyrMailMessageMimePartText::Body() const
{
    return m_text;  // unencoded on purpose: callers pass encoded text
}

std::string CNyrMailMessageMimePartText::Header() const
{
    return "Content-type: " + HeaderValue(m_contentType) + "; charset=\"" + HeaderValue(m_charset) + "\"\r\n" +
           "Content-transfer-encoding: " + HeaderValue(m_transferEncoding) + "\r\n";
}

std::string CNyrMailMessageMimePartText::ContentType() const
{
    return m_contentType;
}

std::string CNyrMailMessageMimePartText::Text() const
{
    return m_text;
}

void CNyrMailMessageMimePartText::Text(const char* text)
{
    m_text = OrEmpty(text);
}

std::string CNyrMailMessageMimePartText::Charset() const
{
    return m_charset;
}

void CNyrMailMessageMimePartText::Charset(const char* charset)
{
    m_charset = OrEmpty(charset);
}

void CNyrMailMessageMimePartText::ContentType(const char* type)
{
    m_contentType = OrEmpty(type);
}

std::string CNyrMailMessageMimePartText::ContentTransferEncoding() const
{
    return m_transferEncoding;
}

void CNyrMailMessageMimePartText::ContentTransferEncoding(const char* encoding)
{
    m_transferEncoding = OrEmpty(encoding);
}

std::string CNyrMailMessageMimePartText::CharsetDefault()
{
    return TextDefault().charset;
}

void CNyrMailMessageMimePartText::CharsetDefault(const char* charset)
{
    TextDefault().charset = OrEmpty(charset);
}

std::string CNyrMailMessageMimePartText::ContentTypeDefault()
{
    return TextDefault().contentType;
}

void CNyrMailMessageMimePartText::ContentTypeDefault(const char* type)
{
    TextDefault().contentType = OrEmpty(type);
}

std::string CNyrMailMessageMimePartText::ContentTransferEncodingDefault()
{
    return TextDefault().transferEncoding;
}

void CNyrMailMessageMimePartText::ContentTransferEncodingDefault(const char* encoding)
{
    TextDefault().transferEncoding = OrEmpty(encoding);
}

// --- binary part ---

CNyrMailMessageMimePartBinary::CNyrMailMessageMimePartBinary(const char* path)
    : m_path(OrEmpty(path)),
      m_contentType(BinaryDefault().contentType),
      m_disposition(BinaryDefault().disposition),
      m_transferEncoding(BinaryDefault().transferEncoding)
{
}

CNyrMailMessageMimePartBinary::~CNyrMailMessageMimePartBinary() = default;

std::string CNyrMailMessageMimePartBinary::Body() const
{
    // The header's encoding is not consulted: attachments always go as Base64.
    return NyrEncodeBase64(m_path);
}

std::string CNyrMailMessageMimePartBinary::Header() const
{
    const std::string file = HeaderValue(NyrMailText::FileName(m_path));
    return "Content-type: " + HeaderValue(m_contentType) + "; name=\"" + file + "\"\r\n" +
           "Content-Disposition: " + HeaderValue(m_disposition) + "; filename=\"" + file + "\"\r\n" +
           "Content-transfer-encoding: " + HeaderValue(m_transferEncoding) + "\r\n";
}

std::string CNyrMailMessageMimePartBinary::ContentType() const
{
    return m_contentType;
}

void CNyrMailMessageMimePartBinary::Filename(const char* path)
{
    m_path = OrEmpty(path);
}

std::string CNyrMailMessageMimePartBinary::Filename() const
{
    return m_path;
}

void CNyrMailMessageMimePartBinary::ContentType(const char* type)
{
    m_contentType = OrEmpty(type);
}

std::string CNyrMailMessageMimePartBinary::ContentDisposition() const
{
    return m_disposition;
}

void CNyrMailMessageMimePartBinary::ContentDisposition(const char* disposition)
{
    m_disposition = OrEmpty(disposition);
}

std::string CNyrMailMessageMimePartBinary::ContentTransferEncoding() const
{
    return m_transferEncoding;
}

void CNyrMailMessageMimePartBinary::ContentTransferEncoding(const char* encoding)
{
    m_transferEncoding = OrEmpty(encoding);
}

std::string CNyrMailMessageMimePartBinary::ContentTypeDefault()
{
    return BinaryDefault().contentType;
}

void CNyrMailMessageMimePartBinary::ContentTypeDefault(const char* type)
{
    BinaryDefault().contentType = OrEmpty(type);
}

std::string CNyrMailMessageMimePartBinary::ContentDispositionDefault()
{
    return BinaryDefault().disposition;
}

void CNyrMailMessageMimePartBinary::ContentDispositionDefault(const char* disposition)
{
    BinaryDefault().disposition = OrEmpty(disposition);
}

std::string CNyrMailMessageMimePartBinary::ContentTransferEncodingDefault()
{
    return BinaryDefault().transferEncoding;
}

void CNyrMailMessageMimePartBinary::ContentTransferEncodingDefault(const char* encoding)
{
    BinaryDefault().transferEncoding = OrEmpty(encoding);
}

#include "nyr/mail/mail_message_mime_part.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "nyr/mail/mail_text_p.h"
#include "nyr/platform/file_read.h"
#include "nyr/util/base64.h"
#include "nyr/util/base64_p.h"

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
    int standardBase64 = 0;
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

// Line length of attachment Base64 (RFC 2045: at most 76).
constexpr unsigned kBase64Line = 76;

// Reads a regular file in pieces, at most the size it had when opened (so a
// file that grows meanwhile ends there), handing each piece to `take`.
// Pieces are whole lines of Base64 input except the last. False when the
// file cannot be opened or read; `size` receives the size at opening first.
template <typename Take, typename Size>
bool ReadInPieces(const std::string& path, Size&& size, Take&& take)
{
    const int fd = NyrOpenRegularFile(path);
    struct stat info{};
    if (fd < 0 || fstat(fd, &info) != 0) {
        if (fd >= 0)
            close(fd);
        return false;
    }
    auto left = static_cast<std::size_t>(info.st_size);
    size(left);
    std::string piece(57 * 1024, '\0');  // 1,024 lines of 76 characters
    bool ok = true;
    while (ok && left > 0) {
        std::size_t have = 0;
        while (have < piece.size() && have < left) {
            const ssize_t n = read(fd, piece.data() + have, std::min(piece.size(), left) - have);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                ok = n == 0;
                left = have;  // the file shrank: what is there is all
                break;
            }
            have += static_cast<std::size_t>(n);
        }
        if (have > 0)
            take(reinterpret_cast<const unsigned char*>(piece.data()), have);
        left -= have;
    }
    close(fd);
    return ok;
}

// Appends the RFC 2045 Base64 of a whole file to `out`, encoded piece by
// piece into place; false, with `out` as it was, when the file is
// unreadable or too large for memory.
bool AppendStandardBase64OfFile(const std::string& path, std::string& out)
{
    const std::size_t start = out.size();
    try {
        bool first = true;
        const bool ok = ReadInPieces(
            path,
            [&](std::size_t size) {
                const std::size_t chars = (size + 2) / 3 * 4;
                out.reserve(start + chars + 2 * (chars / kBase64Line + 1));
            },
            [&](const unsigned char* data, std::size_t length) {
                if (!first)
                    out += "\r\n";
                first = false;
                NyrAppendStandardBase64(data, length, kBase64Line, out);
            });
        if (ok)
            return true;
    } catch (const std::bad_alloc&) {
    }
    out.resize(start);
    return false;
}

// The library's own Base64 of a whole file (read as above, then encoded at once).
std::string LegacyBase64OfFile(const std::string& path)
{
    std::string content;
    try {
        const bool ok = ReadInPieces(
            path, [&](std::size_t size) { content.reserve(size); },
            [&](const unsigned char* data, std::size_t length) {
                content.append(reinterpret_cast<const char*>(data), length);
            });
        if (!ok)
            return {};
    } catch (const std::bad_alloc&) {
        return {};
    }
    // A file read, even an empty one, encodes from a non-null buffer ("A===").
    return NyrEncodeBase64(reinterpret_cast<const unsigned char*>(content.data()), content.size(), kBase64Line);
}

// One parameter of a part header line: `attribute="value"` as an RFC 2045
// quoted string ('"' and '\' escaped, CR and LF as blanks). A value with
// bytes outside printable ASCII gets the RFC 2231 form in front of it,
// `attribute*=UTF-8''<percent-encoded>; `, which gives it exactly.
std::string Parameter(const char* attribute, std::string_view value)
{
    std::string quoted;
    for (const char c : HeaderValue(value)) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    const std::string parameter = std::string(attribute) + "=\"" + quoted + "\"";
    const bool plain = std::all_of(value.begin(), value.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
    // The exact form first: some readers that know both take the first.
    return plain ? parameter
                 : std::string(attribute) + "*=UTF-8''" + NyrMailText::PercentEncoded(value) + "; " + parameter;
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
      m_transferEncoding(BinaryDefault().transferEncoding),
      m_standardBase64(BinaryDefault().standardBase64)
{
}

CNyrMailMessageMimePartBinary::~CNyrMailMessageMimePartBinary() = default;

std::string CNyrMailMessageMimePartBinary::Body() const
{
    std::string body;
    AppendBody(body);
    return body;
}

void CNyrMailMessageMimePartBinary::AppendBody(std::string& out) const
{
    // The header's encoding is not consulted: attachments always go as Base64.
    if (m_standardBase64)
        AppendStandardBase64OfFile(m_path, out);
    else
        out += LegacyBase64OfFile(m_path);
}

std::size_t CNyrMailMessageMimePartBinary::BodySizeBound() const
{
    struct stat info{};
    if (stat(m_path.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        return 0;
    const std::size_t chars = (static_cast<std::size_t>(info.st_size) + 2) / 3 * 4 + 4;
    return chars + 2 * (chars / kBase64Line + 1);
}

std::string CNyrMailMessageMimePartBinary::Header() const
{
    const std::string file = NyrMailText::FileName(m_path);
    return "Content-type: " + HeaderValue(m_contentType) + "; " + Parameter("name", file) + "\r\n" +
           "Content-Disposition: " + HeaderValue(m_disposition) + "; " + Parameter("filename", file) + "\r\n" +
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

int CNyrMailMessageMimePartBinary::StandardBase64() const
{
    return m_standardBase64;
}

void CNyrMailMessageMimePartBinary::StandardBase64(int standard)
{
    m_standardBase64 = standard ? 1 : 0;
}

int CNyrMailMessageMimePartBinary::StandardBase64Default()
{
    return BinaryDefault().standardBase64;
}

void CNyrMailMessageMimePartBinary::StandardBase64Default(int standard)
{
    BinaryDefault().standardBase64 = standard ? 1 : 0;
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

#pragma once

#include <cstddef>
#include <string>

#include "nyr/platform/export.h"

// The parts a CNyrMailMessageMimeContainer carries. Part header lines end in
// "\r\n"; the container writes the blank line between a part's header and
// its body. The lower-case "Content-type" and "Content-transfer-encoding" of
// part headers (against "Content-Type" in the message header) are intended.
// CR and LF in the texts written into part header lines are written as blanks.

class NYR_EXPORT CNyrMailMessageMimePart
{
public:
    CNyrMailMessageMimePart() = default;
    virtual ~CNyrMailMessageMimePart();
    CNyrMailMessageMimePart(const CNyrMailMessageMimePart&) = default;
    CNyrMailMessageMimePart& operator=(const CNyrMailMessageMimePart&) = default;

    virtual std::string Body() const = 0;
    virtual std::string Header() const = 0;
    virtual std::string ContentType() const = 0;
};

// A text part. Header():
//   Content-type: <type>; charset="<charset>"
//   Content-transfer-encoding: <encoding>
// Body() is the text exactly as set: no transfer encoding is applied although
// the header announces one (intended); pass text already encoded, for
// example with NyrEncodeIso8859.
class NYR_EXPORT CNyrMailMessageMimePartText : public CNyrMailMessageMimePart
{
public:
    // Null reads as "". Charset, type and encoding start from the class-wide defaults.
    explicit CNyrMailMessageMimePartText(const char* text);
    ~CNyrMailMessageMimePartText() override;

    std::string Body() const override;
    std::string Header() const override;
    std::string ContentType() const override;
    virtual std::string Text() const;
    virtual void Text(const char* text);
    virtual std::string Charset() const;
    virtual void Charset(const char* charset);
    virtual void ContentType(const char* type);
    virtual std::string ContentTransferEncoding() const;
    virtual void ContentTransferEncoding(const char* encoding);

    // Defaults for later constructions: "iso-8859-1", "text/plain", "quoted-printable".
    static std::string CharsetDefault();
    static void CharsetDefault(const char* charset);
    static std::string ContentTypeDefault();
    static void ContentTypeDefault(const char* type);
    static std::string ContentTransferEncodingDefault();
    static void ContentTransferEncodingDefault(const char* encoding);

private:
    std::string m_text;
    std::string m_charset;
    std::string m_contentType;
    std::string m_transferEncoding;
};

// A file attachment, read when Body() is called. With file = base name and
// extension of the path, Header() is:
//   Content-type: <type>; name="<file>"
//   Content-Disposition: <disposition>; filename="<file>"
//   Content-transfer-encoding: <encoding>
// <file> is an RFC 2045 quoted string: '"' and '\' are escaped with a
// backslash (a"b.txt is written "a\"b.txt"). A name with bytes outside
// printable ASCII (UTF-8, control characters) gets the RFC 2231 form in
// front of the plain one, `name*=UTF-8''<percent-encoded>; name="..."` and
// `filename*=...; filename="..."`, which gives it exactly.
//
// Body() is the whole file in Base64 with lines of 76 characters whatever
// encoding the header names: the library's own form (NyrEncodeBase64) by
// default, standard RFC 2045 Base64 with StandardBase64(1), which strict
// decoders (Python's email package, mail filters) need. Only a regular file
// is read, up to the size it had when opened; anything else (missing,
// unreadable, a folder, a FIFO, a device, too large for memory) gives an
// empty body, the header is written all the same.
class NYR_EXPORT CNyrMailMessageMimePartBinary : public CNyrMailMessageMimePart
{
public:
    // `path` is the file's full path; null reads as "".
    explicit CNyrMailMessageMimePartBinary(const char* path);
    ~CNyrMailMessageMimePartBinary() override;

    std::string Body() const override;
    std::string Header() const override;
    std::string ContentType() const override;
    virtual void Filename(const char* path);
    virtual std::string Filename() const;
    virtual void ContentType(const char* type);
    virtual std::string ContentDisposition() const;
    virtual void ContentDisposition(const char* disposition);
    virtual std::string ContentTransferEncoding() const;
    virtual void ContentTransferEncoding(const char* encoding);
    // 1: Body() is standard RFC 2045 Base64; 0: the library's own form.
    int StandardBase64() const;
    void StandardBase64(int standard);

    // Defaults for later constructions: "application/octet-stream", "attachment", "Base64",
    // and 0 for StandardBase64 (the library's own form).
    static std::string ContentTypeDefault();
    static void ContentTypeDefault(const char* type);
    static std::string ContentDispositionDefault();
    static void ContentDispositionDefault(const char* disposition);
    static std::string ContentTransferEncodingDefault();
    static void ContentTransferEncodingDefault(const char* encoding);
    static int StandardBase64Default();
    static void StandardBase64Default(int standard);

private:
    friend class CNyrMailMessageMimeContainer;
    // Appends Body() to `out`; the standard form is encoded straight into
    // it, so a container holds a large attachment once.
    void AppendBody(std::string& out) const;
    // At least the size of Body(), from the file's size now (0 when unreadable).
    std::size_t BodySizeBound() const;

    std::string m_path;
    std::string m_contentType;
    std::string m_disposition;
    std::string m_transferEncoding;
    int m_standardBase64;
};

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/mail_message_mime_part.h"

// A MIME message: the plain message's header and recipients, carrying an
// ordered list of parts that it owns.
//
// Header(): no parts, the plain header; otherwise the plain header,
// "MIME-Version: 1.0", then with one part that part's header lines (a
// single-part message, no boundary), with two or more
//   Content-Type: multipart/mixed;
//   <tab>boundary=<boundary>                 unquoted, intended
// Body(): no parts, the plain body; one part, that part's body; two or more,
// the pre-MIME text, then per part "\r\n--<boundary>\r\n" + part header +
// "\r\n" + part body, then "\r\n--<boundary>--\r\n" and the post-MIME text.
// The plain body is not used once there are parts: reader text goes into a
// text part.
//
// When a part (its header or body) or the pre-MIME text holds the delimiter
// "--<boundary>" at the start of a line, which a receiver would take for the
// start of another part, the message is written with the first of
// "<boundary>_1", "<boundary>_2", ... that none holds; Boundary() still
// returns the boundary as set. Other messages keep the exact form above.
//
// Copying is not allowed (the parts are owned); the parts are deleted with
// the container.
class NYR_EXPORT CNyrMailMessageMimeContainer : public CNyrMailMessage
{
public:
    CNyrMailMessageMimeContainer();
    ~CNyrMailMessageMimeContainer() override;
    CNyrMailMessageMimeContainer(const CNyrMailMessageMimeContainer&) = delete;
    CNyrMailMessageMimeContainer& operator=(const CNyrMailMessageMimeContainer&) = delete;

    std::string Header() const override;
    std::string Body() const override;
    using CNyrMailMessage::Body;  // the setter stays reachable

    virtual std::string Boundary() const;
    // CR and LF in the boundary are written as blanks in the header line.
    virtual void Boundary(const std::string& boundary);
    // Appends `part` and takes it over (it is deleted with the container).
    // Returns 1, or 0 for a null part.
    virtual int AddMimePart(CNyrMailMessageMimePart* part);
    virtual std::string PreMime() const;
    virtual void PreMime(const std::string& text);
    virtual std::string PostMime() const;
    virtual void PostMime(const std::string& text);

    // The boundary of later constructions; initially
    // "_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf".
    static std::string BoundaryDefault();
    static void BoundaryDefault(const std::string& boundary);

private:
    // The boundary Header() and Body() write: Boundary(), or the first free suffixed form.
    std::string WireBoundary() const;

    std::vector<std::unique_ptr<CNyrMailMessageMimePart>> m_parts;
    std::string m_boundary;
    std::string m_preMime;
    std::string m_postMime;
};

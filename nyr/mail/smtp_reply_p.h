#pragma once

#include <cstddef>
#include <string_view>

#include "nyr/platform/export.h"

// Reading SMTP replies (RFC 5321 4.2). Exported for the tests and fuzz
// targets only; not an installed header.

// The reply code: the first three characters read as an unsigned decimal
// number with "%u" (so " 25" reads 25); 0 when they hold no number.
NYR_EXPORT unsigned NyrSmtpReplyCode(std::string_view reply);

// The length of the first complete reply at the start of `buffer`, its last
// line end included, or 0 while it is incomplete. Lines end in LF (CR LF, or
// a bare LF from lenient servers); a line whose fourth character is '-' is
// followed by more lines of the same reply.
NYR_EXPORT std::size_t NyrSmtpReplyLength(std::string_view buffer);

// What an EHLO reply offers of what the client can use. Keywords are matched
// without regard to case; "AUTH=" (an old form) counts as "AUTH".
struct CNyrSmtpExtensions
{
    bool startTls = false;
    bool authPlain = false;
    bool authLogin = false;
    bool pipelining = false;  // RFC 2920
};
NYR_EXPORT CNyrSmtpExtensions NyrSmtpExtensions(std::string_view ehloReply);

#pragma once

#include <string>
#include <string_view>

// Text helpers shared by the mail classes.
namespace NyrMailText {

// `text` with CR and LF written as blanks: a header value that cannot start a
// header line of its own.
std::string HeaderValue(std::string_view text);

// True when `text` holds an ASCII control character (0x00-0x1F or 0x7F).
bool HasControlCharacter(std::string_view text);

// True when `address` can stand between the angle brackets of a header line
// or an SMTP command: not empty, and none of blank, '"', '<', '>' or a
// control character.
bool IsMailAddress(std::string_view address);

// Each byte of `text` as "%XX" (upper-case hex) except the unreserved
// characters of RFC 3986 (letters, digits, "-._~") and those in `keep`.
std::string PercentEncoded(std::string_view text, std::string_view keep = {});

// The base name and extension of a POSIX path: what follows the last '/'.
std::string FileName(std::string_view path);

// The current UTC time as a mail Date value, "%a, %d %b %y %H:%M:%S GMT" with
// English names ("Tue, 05 Mar 24 14:03:09 GMT"). The two-digit year is intended.
std::string CurrentDate();

}  // namespace NyrMailText

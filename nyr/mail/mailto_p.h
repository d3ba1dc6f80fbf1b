#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nyr/platform/export.h"

// The mail CNyrMapiSendMail hands over, written in the syntax each mail
// client reads: a mailto URI (RFC 6068) for xdg-email and the clients it
// opens, and the -compose argument of Thunderbird-family clients. Every
// field is percent-encoded, so the client reads it as data whatever it holds.
// Exported for the tests only; not an installed header.

struct NyrHandOffMail
{
    std::vector<std::string> to, cc, bcc;  // recipient texts, see NyrHandOffRecipient
    std::string subject;                   // one line
    std::string body;                      // lines ended by CR LF
    std::vector<std::string> files;        // absolute paths
};

// The text of one recipient: the address, or "name <address>" with the name
// in double quotes when it holds one of ( ) [ ] : @ . ; a recipient without
// an address is its name, for the client to resolve. False when the name or
// address holds a character that a client's address-list syntax reads as
// structure, which could add a recipient or an option: a control character,
// '"', '\', ',', ';', '<' or '>', and in the address also a blank, '(' or ')'.
NYR_EXPORT bool NyrHandOffRecipient(std::string_view name, std::string_view address, std::string& text);

// "mailto:?to=A&to=B&cc=C&bcc=D&subject=S&body=T&attach=F" with the fields
// that are not empty, each value percent-encoded ("@" kept); attachments
// (as their paths) only `withFiles`.
NYR_EXPORT std::string NyrMailtoUri(const NyrHandOffMail& mail, bool withFiles);

// The argument after "-compose" for Thunderbird-family clients:
// "to=A,cc=C,bcc=D,subject=S,body=T,attachment=F" with the fields that are
// not empty, each value percent-encoded (unquoted values are decoded by the
// client), a list of recipients joined with ",", the attachments as file
// URLs joined with "," (each URL percent-encoded in itself, so a "," in a
// file name stays inside its URL).
NYR_EXPORT std::string NyrThunderbirdCompose(const NyrHandOffMail& mail);

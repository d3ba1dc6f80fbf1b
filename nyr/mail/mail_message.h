#pragma once

#include <string>
#include <vector>

#include "nyr/platform/export.h"

// Internet mail messages as 8-bit text (UTF-8 is the system code page) with
// "\r\n" line ends: the header block and body of a plain message. The MIME
// container and its parts are in mail_message_mime_container.h and
// mail_message_mime_part.h; CNyrSmtp sends what these produce.

namespace NyrMailHelper {

// One mail address: the display name (may be empty) and the address that
// goes between the angle brackets.
struct MAIL_ADDRESS
{
    std::string name;
    std::string address;
};

}  // namespace NyrMailHelper

// A plain message: sender, optional reply-to, three recipient lists, subject
// and body. Copying copies every field.
//
// Header() writes, each line ended by "\r\n" and in this order:
//   Date: <now in UTC, "%a, %d %b %y %H:%M:%S GMT", English names>
//   From: "<name>" <<address>>
//   Reply-To: "<name>" <<address>>            only when its address is set
//   To: " <name>" <<address>>,...             only with To recipients
//   Cc: <<address>>,...                       only with Cc recipients
//   X-Mailer: <mailer name>
//   Subject: <subject>                        unencoded
// The two-digit year, the blank before each To name (the From line has none)
// and the Cc entries without names are intended. Bcc recipients never appear.
// CR and LF in the texts written into header lines (names, the From and
// Reply-To addresses, subject, mailer name) are written as blanks, so no
// caller's text can start a header line of its own.
class NYR_EXPORT CNyrMailMessage
{
public:
    enum eRecipientTypes
    {
        TO = 0,
        CC = 1,
        BCC = 2,
    };

    CNyrMailMessage();
    virtual ~CNyrMailMessage();
    CNyrMailMessage(const CNyrMailMessage&);
    CNyrMailMessage& operator=(const CNyrMailMessage&);

    // Parses `text` with MailAddressFromString and appends it to the list of
    // `kind` when CheckMailAddress and then TransformMailAdress (on a copy)
    // both accept it. Returns 1 when added, 0 when refused or the kind is
    // unknown; a refusal leaves the lists unchanged. Null reads as "".
    virtual int AddRecipient(const char* text, eRecipientTypes kind);
    // Splits `text` at every "," and passes each piece, untrimmed and in
    // order, to AddRecipient. Returns 1 whatever the single results were
    // (intended: a caller checks the counts if it cares).
    virtual int AddMultipleRecipients(const char* text, eRecipientTypes kind);
    // Removes entry `index` of that list: 1, or 0 for a bad index or kind.
    virtual int DeleteRecipient(unsigned index, eRecipientTypes kind);
    // Copies out entry `index` of that list (address first): 1, or 0 for a
    // bad index or kind (the outputs are then untouched).
    virtual int Recipient(std::string& address, std::string& name, unsigned index, eRecipientTypes kind) const;
    // The sum of the three list sizes, and each size.
    virtual unsigned GetNumRecipients() const;
    virtual unsigned GetNumRecipientsTo() const;
    virtual unsigned GetNumRecipientsCc() const;
    virtual unsigned GetNumRecipientsBcc() const;

    virtual std::string MailerName() const;
    virtual void MailerName(const char* name);

    // The text forms parse with MailAddressFromString and store the result
    // without checking it; validating first is the caller's choice.
    virtual NyrMailHelper::MAIL_ADDRESS From() const;
    virtual void From(const char* text);
    virtual void From(const NyrMailHelper::MAIL_ADDRESS& address);
    virtual NyrMailHelper::MAIL_ADDRESS ReplyTo() const;
    virtual void ReplyTo(const char* text);
    virtual void ReplyTo(const NyrMailHelper::MAIL_ADDRESS& address);

    // The header block described above; reads the clock on every call.
    virtual std::string Header() const;
    virtual std::string Subject() const;
    virtual void Subject(const char* subject);
    // The body text exactly as set.
    virtual std::string Body() const;
    virtual void Body(const char* body);

    // The mailer name that later constructions start with; initially "NyrMail".
    static std::string MailerNameDefault();
    static void MailerNameDefault(const char* name);

protected:
    // 1 when the address is non-empty and holds none of blank, '"', '<', '>',
    // and the name none of '"', '@', '<', '>'; neither may hold a control
    // character (CR, LF, tab, ... DEL). 0 otherwise.
    virtual int CheckMailAddress(NyrMailHelper::MAIL_ADDRESS address) const;
    // A hook that sees a copy of every address about to be added; non-zero
    // accepts it. This class strips '"', '@', '<' and '>' from the copy's
    // name and accepts. The stored address stays as parsed. (The name keeps
    // its historical spelling.)
    virtual int TransformMailAdress(NyrMailHelper::MAIL_ADDRESS address) const;

    // Parses one address. Without '<' or '>' the whole text is the address
    // and the name is empty. Otherwise the text before the first of them,
    // trimmed of white space, is the name, and the text after it, cut at the
    // next '<' or '>', is the address (not trimmed). Null reads as "".
    static NyrMailHelper::MAIL_ADDRESS MailAddressFromString(const char* text);

private:
    std::vector<NyrMailHelper::MAIL_ADDRESS>* List(eRecipientTypes kind);
    const std::vector<NyrMailHelper::MAIL_ADDRESS>* List(eRecipientTypes kind) const;

    std::string m_mailerName;
    NyrMailHelper::MAIL_ADDRESS m_from;
    NyrMailHelper::MAIL_ADDRESS m_replyTo;
    std::string m_subject;
    std::string m_body;
    std::vector<NyrMailHelper::MAIL_ADDRESS> m_to, m_cc, m_bcc;  // in insertion order
};

// Quoted-printable style escaping: every byte above 0x99 and every '=' becomes
// "=" and two upper-case hex digits; all other bytes, CR, LF, tab and 0x80 to
// 0x99 included, are copied. The 0x99 threshold (not 0x7F) is intended, and
// no soft line breaks are inserted. Null or "" gives "".
NYR_EXPORT std::string NyrEncodeIso8859(const char* text);

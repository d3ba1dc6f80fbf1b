#pragma once

#include <string>
#include <vector>

#include "nyr/frame/text_ids.h"
#include "nyr/mail/mail_message.h"
#include "nyr/platform/export.h"

// Hands a mail (recipients, subject, text, attachments) to the user's own
// mail client, which may show its compose window, instead of sending it
// itself as CNyrSmtp does. The interface is Simple MAPI's; on Linux the
// mail client is reached through freedesktop's xdg-email command (settable),
// started with an argument vector (never a shell):
//
//   available            the command is found (a path, or a name on PATH)
//   InitializeMapiLib    "<command> --version" runs and exits with 0
//   SendMail             runs "<command> <mailto URI>" and waits for it
//   Logon, Logoff        nothing to do: succeed with session 0 once initialised
//
// The mailto URI is built here, not by xdg-email, and handed over as one
// argument: "mailto:?to=A&cc=C&bcc=D&subject=S&body=T&attach=F", every value
// percent-encoded (RFC 6068), so every field arrives byte for byte whatever
// it holds (\ ' " , & ? % # ; blanks, UTF-8). A recipient is its address, or
// "Name <address>" (the name quoted when it holds ( ) [ ] : @ .). The subject
// is one line (each line break becomes a blank); the text keeps its lines,
// with CR LF line ends. Attachments go as absolute paths.
//
// Thunderbird-family clients (thunderbird, icedove: xdg-email would pass them
// the fields through its shell) are started directly when the command is
// xdg-email: "<client> -compose to=...,subject=...,body=...,attachment=..."
// with every value percent-encoded and the attachments as file URLs.
//
// The user's mail client is $MAILER when set, else the program of the
// x-scheme-handler/mailto handler that xdg-mime reports (its desktop entry
// read up to 1 MiB, xdg-mime given 10 s). Attachments are handed over only
// when it is one of AttachmentClients(), which take them from the URI or the
// -compose argument; otherwise SendMail runs nothing and returns
// MAPI_E_ATTACHMENT_OPEN_FAILURE ("The specified attachment could not be
// opened."), since others drop them silently.
//
// Refused before anything runs: a recipient class other than To, Cc, Bcc
// (MAPI_E_BAD_RECIPTYPE); a recipient without address and name, or whose
// name or address holds a character a client's address list reads as
// structure, which could add a recipient or an option (MAPI_E_INVALID_RECIPS:
// a control character, " \ , ; < >, and in the address a blank, ( or )); an
// attachment that does not exist (MAPI_E_ATTACHMENT_NOT_FOUND) or is not a
// readable regular file (MAPI_E_ATTACHMENT_OPEN_FAILURE).
//
// Results: a mail too large for a command line (E2BIG, about 128 KiB of
// encoded text) is MAPI_E_TEXT_TOO_LARGE ("The text in the message was too
// large."); the command's exit status 0 is success, 2 (a file does not
// exist) MAPI_E_ATTACHMENT_NOT_FOUND, 5 (a file cannot be read)
// MAPI_E_ATTACHMENT_OPEN_FAILURE; an interrupted hand-off (the command, or
// the helper it ran, ended by SIGINT, SIGTERM or SIGHUP: exit status 128 + n
// or the signal itself) MAPI_USER_ABORT, the cancel; anything else
// MAPI_E_FAILURE, the unspecified failure.
class NYR_EXPORT CNyrMapiSendMail
{
public:
    using WindowHandle = void*;  // opaque; xdg-email has no parent window

    // Simple MAPI's records, with its field names. Fields this class does not
    // name stay zero.
    struct MapiRecipDesc
    {
        unsigned long ulReserved = 0;
        unsigned long ulRecipClass = 0;  // MAPI_TO, MAPI_CC, MAPI_BCC
        const char* lpszName = nullptr;
        const char* lpszAddress = nullptr;
        unsigned long ulEIDSize = 0;
        void* lpEntryID = nullptr;
    };
    struct MapiFileDesc
    {
        unsigned long ulReserved = 0;
        unsigned long flFlags = 0;
        unsigned long nPosition = 0;  // (unsigned long)-1: the client chooses
        const char* lpszPathName = nullptr;
        const char* lpszFileName = nullptr;
        void* lpFileType = nullptr;
    };
    struct MapiMessage
    {
        unsigned long ulReserved = 0;
        const char* lpszSubject = nullptr;
        const char* lpszNoteText = nullptr;
        const char* lpszMessageType = nullptr;
        const char* lpszDateReceived = nullptr;
        const char* lpszConversationID = nullptr;
        unsigned long flFlags = 0;
        MapiRecipDesc* lpOriginator = nullptr;
        unsigned long nRecipCount = 0;
        MapiRecipDesc* lpRecips = nullptr;
        unsigned long nFileCount = 0;
        MapiFileDesc* lpFiles = nullptr;
    };

    enum : unsigned long
    {
        MAPI_TO = 1,
        MAPI_CC = 2,
        MAPI_BCC = 3,
    };
    // Flags: ask for user interface.
    enum : unsigned long
    {
        MAPI_LOGON_UI = 0x1,
        MAPI_DIALOG = 0x8,
    };
    // Result codes (those this class returns; the error texts know more).
    enum : unsigned long
    {
        SUCCESS_SUCCESS = 0,
        MAPI_USER_ABORT = 1,
        MAPI_E_FAILURE = 2,
        MAPI_E_ATTACHMENT_NOT_FOUND = 11,
        MAPI_E_ATTACHMENT_OPEN_FAILURE = 12,
        MAPI_E_BAD_RECIPTYPE = 15,
        MAPI_E_TEXT_TOO_LARGE = 18,
        MAPI_E_INVALID_RECIPS = 25,
        // Returned by SendMail, Logon and Logoff before InitializeMapiLib
        // succeeded: the number of the text "One or more unspecified errors
        // occurred.", returned as a result code on purpose.
        NOT_INITIALIZED = NYR_IDS_MAPI_FAILURE,
    };

    // available = the command (CommandDefault()) is found. Nothing is run yet.
    CNyrMapiSendMail();
    ~CNyrMapiSendMail();
    CNyrMapiSendMail(const CNyrMapiSendMail&) = delete;
    CNyrMapiSendMail& operator=(const CNyrMapiSendMail&) = delete;

    // 1 when the command runs ("--version" exits with 0). Shows a message box
    // and returns 0 when it cannot be started or fails; 0 at once when not
    // available.
    int InitializeMapiLib();
    // Hands `message` over and waits until the command ends (the user may
    // take a while in the compose window). The current directory is the same
    // afterwards. MAPI_E_BAD_RECIPTYPE for a recipient class other than To,
    // Cc, Bcc; MAPI_E_INVALID_RECIPS for a recipient without address and name
    // or with a control character in them.
    unsigned long SendMail(unsigned long session, WindowHandle window, MapiMessage* message, unsigned long flags);
    unsigned long Logon(unsigned long uiParam, const char* profileName, const char* password, unsigned long flags,
                        unsigned long* session);
    unsigned long Logoff(unsigned long session, unsigned long uiParam, unsigned long flags);

    // Builds the message: recipients To, then Cc, then Bcc, each list in its
    // order (a null list adds none); one file record per attachment path with
    // position -1 and the file name of the path; then calls SendMail and
    // returns its result unchanged.
    unsigned long SendMailEx(WindowHandle window, const std::vector<NyrMailHelper::MAIL_ADDRESS>* to,
                             const std::vector<NyrMailHelper::MAIL_ADDRESS>* cc,
                             const std::vector<NyrMailHelper::MAIL_ADDRESS>* bcc, const char* subject,
                             const char* text, const std::vector<std::string>* attachments, unsigned long flags,
                             unsigned long session);
    // The whole hand-off: 0 silently when not available; initialises (a
    // failure makes the object unavailable for good); with MAPI_LOGON_UI or
    // MAPI_DIALOG in `flags` the application's main window is disabled while
    // the mail client runs (NyrEnableMainWindow), then enabled and activated.
    // Success and the user's cancel return 1; any other result shows its
    // text in a message box and returns 0.
    int Send(const std::vector<NyrMailHelper::MAIL_ADDRESS>* to, const std::vector<NyrMailHelper::MAIL_ADDRESS>* cc,
             const std::vector<NyrMailHelper::MAIL_ADDRESS>* bcc, const char* subject, const char* text,
             const std::vector<std::string>* attachments, unsigned long flags = 0, unsigned long session = 0);

    int Available() const;

    // The hand-off command of this object; setting it drops the
    // initialisation and looks the command up again.
    std::string Command() const;
    void Command(const std::string& command);
    // The command of later constructions; initially "xdg-email".
    static std::string CommandDefault();
    static void CommandDefault(const std::string& command);

    // Program names (matched as part of the client's file name) of mail
    // clients that take attachments from xdg-email. Initially "thunderbird",
    // "icedove", "evolution", "kmail".
    static std::vector<std::string> AttachmentClients();
    static void AttachmentClients(const std::vector<std::string>& programs);

    // The text of a result code, from the library's text table.
    static void GetMAPISendMailErrorString(unsigned long code, std::string& text);
    static void GetMAPILogonErrorString(unsigned long code, std::string& text);
    static void GetMAPILogoffErrorString(unsigned long code, std::string& text);

private:
    int m_available = 0;
    std::string m_command;
    std::string m_program;  // the command's full path once initialised; empty before
};

#include "nyr/mail/mapi_send_mail.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_client_p.h"
#include "nyr/mail/mail_text_p.h"
#include "nyr/mail/mailto_p.h"
#include "nyr/mail/smtp_data_p.h"
#include "nyr/platform/file_read.h"

using NyrMailClient::FindProgram;
using NyrMailHelper::MAIL_ADDRESS;

namespace {

std::string& CommandDefaultValue()
{
    static std::string value = "xdg-email";
    return value;
}

std::vector<std::string>& AttachmentClientList()
{
    static std::vector<std::string> programs = {"thunderbird", "icedove", "evolution", "kmail"};
    return programs;
}

// True when the file name of a client holds one of `programs`.
bool NamesOneOf(const std::string& client, const std::vector<std::string>& programs)
{
    for (const auto& name : programs)
        if (!client.empty() && !name.empty() && client.find(name) != std::string::npos)
            return true;
    return false;
}

// Mail clients that read a -compose argument. xdg-email would hand them the
// fields through a shell, which interprets backslashes and quotes.
bool IsThunderbirdFamily(const std::string& client)
{
    return NamesOneOf(client, {"thunderbird", "icedove"});
}

// The subject as one line: each line break (CR LF, CR or LF) a blank.
std::string SubjectLine(const char* subject)
{
    std::string lines = subject ? subject : "";
    NyrSmtpWireLines(lines, false);
    std::string line;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        line += lines[i] == '\r' ? ' ' : lines[i];
        i += lines[i] == '\r';  // the LF after it
    }
    return line;
}

// The note text with CR LF line ends (RFC 6068), as mail texts have them.
std::string BodyLines(const char* text)
{
    std::string lines = text ? text : "";
    NyrSmtpWireLines(lines, false);
    return lines;
}

unsigned long TakeRecipients(const CNyrMapiSendMail::MapiMessage& message, NyrHandOffMail& mail)
{
    std::vector<std::string>* lists[] = {nullptr, &mail.to, &mail.cc, &mail.bcc};
    for (unsigned long i = 0; i < message.nRecipCount; ++i) {
        const CNyrMapiSendMail::MapiRecipDesc& recipient = message.lpRecips[i];
        if (recipient.ulRecipClass < CNyrMapiSendMail::MAPI_TO || recipient.ulRecipClass > CNyrMapiSendMail::MAPI_BCC)
            return CNyrMapiSendMail::MAPI_E_BAD_RECIPTYPE;
        std::string text;
        if (!NyrHandOffRecipient(recipient.lpszName ? recipient.lpszName : "",
                                 recipient.lpszAddress ? recipient.lpszAddress : "", text))
            return CNyrMapiSendMail::MAPI_E_INVALID_RECIPS;
        lists[recipient.ulRecipClass]->push_back(text);
    }
    return CNyrMapiSendMail::SUCCESS_SUCCESS;
}

// Each attachment as its absolute path, links resolved: a missing file is
// MAPI_E_ATTACHMENT_NOT_FOUND, one that is not a readable regular file
// MAPI_E_ATTACHMENT_OPEN_FAILURE.
unsigned long TakeFiles(const CNyrMapiSendMail::MapiMessage& message, NyrHandOffMail& mail)
{
    for (unsigned long i = 0; i < message.nFileCount; ++i) {
        const char* path = message.lpFiles[i].lpszPathName;
        char* real = path && *path ? realpath(path, nullptr) : nullptr;
        if (!real)
            return !path || !*path || errno == ENOENT || errno == ENOTDIR
                       ? CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND
                       : CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE;
        mail.files.push_back(real);
        std::free(real);
        const int fd = NyrOpenRegularFile(mail.files.back());
        if (fd < 0)
            return CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE;
        close(fd);
    }
    return CNyrMapiSendMail::SUCCESS_SUCCESS;
}

unsigned long MapResult(const NyrMailClient::Process& run)
{
    if (run.spawnError == E2BIG)  // the text does not fit on a command line
        return CNyrMapiSendMail::MAPI_E_TEXT_TOO_LARGE;
    if (run.spawnError || !run.finished)
        return CNyrMapiSendMail::MAPI_E_FAILURE;
    auto interrupted = [](int signal) { return signal == SIGINT || signal == SIGTERM || signal == SIGHUP; };
    if (WIFSIGNALED(run.status))
        return interrupted(WTERMSIG(run.status)) ? CNyrMapiSendMail::MAPI_USER_ABORT
                                                 : CNyrMapiSendMail::MAPI_E_FAILURE;
    const int code = WIFEXITED(run.status) ? WEXITSTATUS(run.status) : -1;
    switch (code) {
    case 0: return CNyrMapiSendMail::SUCCESS_SUCCESS;
    case 2: return CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND;     // xdg-email: a file does not exist
    case 5: return CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE;  // xdg-email: a file cannot be read
    default: break;
    }
    if (code > 128 && interrupted(code - 128))  // xdg-email passes on the status of a helper ended by a signal
        return CNyrMapiSendMail::MAPI_USER_ABORT;
    return CNyrMapiSendMail::MAPI_E_FAILURE;
}

// Keeps the process's current directory across a call, as mail clients
// have been known to change it.
class CurrentDirectoryKeeper
{
public:
    CurrentDirectoryKeeper()
    {
        if (char* dir = getcwd(nullptr, 0)) {
            m_dir = dir;
            std::free(dir);
        }
    }
    ~CurrentDirectoryKeeper()
    {
        if (!m_dir.empty() && chdir(m_dir.c_str()) != 0) {
            // The folder went away meanwhile; nothing better to go back to.
        }
    }
    CurrentDirectoryKeeper(const CurrentDirectoryKeeper&) = delete;
    CurrentDirectoryKeeper& operator=(const CurrentDirectoryKeeper&) = delete;

private:
    std::string m_dir;
};

// Disables the application's main window for the lifetime of the object.
class MainWindowDisabler
{
public:
    MainWindowDisabler() { NyrEnableMainWindow(false); }
    ~MainWindowDisabler() { NyrEnableMainWindow(true); }
    MainWindowDisabler(const MainWindowDisabler&) = delete;
    MainWindowDisabler& operator=(const MainWindowDisabler&) = delete;
};

}  // namespace

CNyrMapiSendMail::CNyrMapiSendMail() : m_command(CommandDefaultValue())
{
    m_available = FindProgram(m_command).empty() ? 0 : 1;
}

CNyrMapiSendMail::~CNyrMapiSendMail() = default;

int CNyrMapiSendMail::Available() const
{
    return m_available;
}

std::string CNyrMapiSendMail::Command() const
{
    return m_command;
}

void CNyrMapiSendMail::Command(const std::string& command)
{
    m_command = command;
    m_program.clear();
    m_available = FindProgram(m_command).empty() ? 0 : 1;
}

std::string CNyrMapiSendMail::CommandDefault()
{
    return CommandDefaultValue();
}

void CNyrMapiSendMail::CommandDefault(const std::string& command)
{
    CommandDefaultValue() = command;
}

std::vector<std::string> CNyrMapiSendMail::AttachmentClients()
{
    return AttachmentClientList();
}

void CNyrMapiSendMail::AttachmentClients(const std::vector<std::string>& programs)
{
    AttachmentClientList() = programs;
}

int CNyrMapiSendMail::InitializeMapiLib()
{
    if (!m_available)
        return 0;
    if (!m_program.empty())
        return 1;
    const std::string program = FindProgram(m_command);
    NyrMailClient::Process check;
    check.spawnError = ENOENT;
    if (!program.empty())
        check = NyrMailClient::Run({program, "--version"}, true, true);
    if (check.spawnError) {
        NyrMessageBox(NyrLoadString(NYR_IDS_MAIL_CLIENT_NOT_STARTED), {}, NYR_MB_ICONERROR);
        return 0;
    }
    if (!check.finished || !WIFEXITED(check.status) || WEXITSTATUS(check.status) != 0) {
        NyrMessageBox(NyrLoadString(NYR_IDS_MAIL_CLIENT_HAND_OFF_BROKEN), {}, NYR_MB_ICONERROR);
        return 0;
    }
    m_program = program;
    return 1;
}

unsigned long CNyrMapiSendMail::SendMail(unsigned long, WindowHandle, MapiMessage* message, unsigned long)
{
    if (m_program.empty())
        return NOT_INITIALIZED;
    if (!message)
        return MAPI_E_FAILURE;
    CurrentDirectoryKeeper keepDirectory;

    NyrHandOffMail mail;
    if (const unsigned long refused = TakeRecipients(*message, mail))
        return refused;
    if (const unsigned long refused = TakeFiles(*message, mail))
        return refused;
    mail.subject = SubjectLine(message->lpszSubject);
    mail.body = BodyLines(message->lpszNoteText);

    const bool xdgEmail = NyrMailText::FileName(m_program) == "xdg-email";
    const std::string client = xdgEmail || !mail.files.empty() ? NyrMailClient::MailClientPath() : "";
    const std::string clientName = NyrMailText::FileName(client);
    std::vector<std::string> argv;
    if (xdgEmail && IsThunderbirdFamily(clientName)) {
        argv = {client, "-compose"};
        if (const std::string compose = NyrThunderbirdCompose(mail); !compose.empty())
            argv.push_back(compose);
    } else if (!mail.files.empty() && !NamesOneOf(clientName, AttachmentClientList())) {
        return MAPI_E_ATTACHMENT_OPEN_FAILURE;  // the client would drop them silently
    } else {
        argv = {m_program, NyrMailtoUri(mail, true)};
    }
    return MapResult(NyrMailClient::Run(argv, false, false));
}

unsigned long CNyrMapiSendMail::Logon(unsigned long, const char*, const char*, unsigned long, unsigned long* session)
{
    if (m_program.empty())
        return NOT_INITIALIZED;
    CurrentDirectoryKeeper keepDirectory;
    if (session)
        *session = 0;  // xdg-email needs no session
    return SUCCESS_SUCCESS;
}

unsigned long CNyrMapiSendMail::Logoff(unsigned long, unsigned long, unsigned long)
{
    return m_program.empty() ? NOT_INITIALIZED : SUCCESS_SUCCESS;
}

unsigned long CNyrMapiSendMail::SendMailEx(WindowHandle window, const std::vector<MAIL_ADDRESS>* to,
                                           const std::vector<MAIL_ADDRESS>* cc, const std::vector<MAIL_ADDRESS>* bcc,
                                           const char* subject, const char* text,
                                           const std::vector<std::string>* attachments, unsigned long flags,
                                           unsigned long session)
{
    std::vector<std::string> fileNames;  // kept alive until SendMail returns
    std::vector<MapiFileDesc> files;
    if (attachments) {
        fileNames.reserve(attachments->size());
        for (const auto& path : *attachments) {
            fileNames.push_back(NyrMailText::FileName(path));
            MapiFileDesc file;
            file.nPosition = static_cast<unsigned long>(-1);
            file.lpszPathName = path.c_str();
            file.lpszFileName = fileNames.back().c_str();
            files.push_back(file);
        }
    }
    std::vector<MapiRecipDesc> recipients;
    const std::pair<const std::vector<MAIL_ADDRESS>*, unsigned long> lists[] = {
        {to, MAPI_TO}, {cc, MAPI_CC}, {bcc, MAPI_BCC}};
    for (const auto& [list, recipientClass] : lists) {
        if (!list)
            continue;
        for (const auto& address : *list) {
            MapiRecipDesc recipient;
            recipient.ulRecipClass = recipientClass;
            recipient.lpszName = address.name.c_str();
            recipient.lpszAddress = address.address.c_str();
            recipients.push_back(recipient);
        }
    }
    MapiMessage message;
    message.lpszSubject = subject;
    message.lpszNoteText = text;
    if (!recipients.empty()) {
        message.nRecipCount = static_cast<unsigned long>(recipients.size());
        message.lpRecips = recipients.data();
    }
    if (attachments) {
        message.nFileCount = static_cast<unsigned long>(files.size());
        message.lpFiles = files.data();
    }
    return SendMail(session, window, &message, flags);
}

int CNyrMapiSendMail::Send(const std::vector<MAIL_ADDRESS>* to, const std::vector<MAIL_ADDRESS>* cc,
                           const std::vector<MAIL_ADDRESS>* bcc, const char* subject, const char* text,
                           const std::vector<std::string>* attachments, unsigned long flags, unsigned long session)
{
    if (!m_available)
        return 0;
    if (!InitializeMapiLib()) {
        m_available = 0;
        return 0;
    }
    unsigned long result;
    if (flags & (MAPI_LOGON_UI | MAPI_DIALOG)) {
        MainWindowDisabler disabled;
        result = SendMailEx(nullptr, to, cc, bcc, subject, text, attachments, flags, session);
    } else {
        result = SendMailEx(nullptr, to, cc, bcc, subject, text, attachments, flags, session);
    }
    // A cancel by the user is not a failure (intended).
    if (result == SUCCESS_SUCCESS || result == MAPI_USER_ABORT)
        return 1;
    std::string message;
    GetMAPISendMailErrorString(result, message);
    NyrMessageBox(message, {}, NYR_MB_ICONERROR);
    return 0;
}

void CNyrMapiSendMail::GetMAPISendMailErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 1: id = NYR_IDS_MAPI_USER_ABORT; break;
    case 3: id = NYR_IDS_MAPI_LOGIN_FAILURE; break;
    case 5: id = NYR_IDS_MAPI_INSUFFICIENT_MEMORY; break;
    case 9: id = NYR_IDS_MAPI_TOO_MANY_FILES; break;
    case 10: id = NYR_IDS_MAPI_TOO_MANY_RECIPIENTS; break;
    case 11: id = NYR_IDS_MAPI_ATTACHMENT_NOT_FOUND; break;
    case 12: id = NYR_IDS_MAPI_ATTACHMENT_OPEN_FAILURE; break;
    case 14: id = NYR_IDS_MAPI_UNKNOWN_RECIPIENT; break;
    case 15: id = NYR_IDS_MAPI_BAD_RECIPIENT_TYPE; break;
    case 18: id = NYR_IDS_MAPI_TEXT_TOO_LARGE; break;
    case 19: id = NYR_IDS_MAPI_INVALID_SESSION; break;
    case 21: id = NYR_IDS_MAPI_AMBIGUOUS_RECIPIENT; break;
    case 25: id = NYR_IDS_MAPI_INVALID_RECIPIENTS; break;
    default: id = NYR_IDS_MAPI_FAILURE; break;
    }
    text = NyrLoadString(id);
}

void CNyrMapiSendMail::GetMAPILogonErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 1: id = NYR_IDS_MAPI_USER_ABORT; break;
    case 3: id = NYR_IDS_MAPI_LOGIN_FAILURE; break;
    case 5: id = NYR_IDS_MAPI_INSUFFICIENT_MEMORY; break;
    case 8: id = NYR_IDS_MAPI_TOO_MANY_SESSIONS; break;
    default: id = NYR_IDS_MAPI_FAILURE; break;  // 2 included
    }
    text = NyrLoadString(id);
}

void CNyrMapiSendMail::GetMAPILogoffErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 5: id = NYR_IDS_MAPI_INSUFFICIENT_MEMORY; break;
    case 19: id = NYR_IDS_MAPI_INVALID_SESSION; break;
    default: id = NYR_IDS_MAPI_FAILURE; break;  // 2 included
    }
    text = NyrLoadString(id);
}

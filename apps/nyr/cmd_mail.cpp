// nyr mail compose | send | handoff: the mail classes at work.
#include <sys/stat.h>
#include <unistd.h>

#include <ostream>

#include "command.h"
#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/mapi_send_mail.h"
#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_data_p.h"
#include "nyr/platform/file_read.h"

namespace {

using namespace nyr::cli;

extern const Command kMail;

// Limits on the files the tool reads (documented in the usage text).
constexpr std::size_t kMaxBodyFile = 16u << 20;
constexpr std::size_t kMaxPasswordFile = 4096;
constexpr long long kMaxAttachment = 256ll << 20;

// The message classes' address rules, reachable from here.
struct Message : CNyrMailMessageMimeContainer
{
    using CNyrMailMessageMimeContainer::CheckMailAddress;
    using CNyrMailMessageMimeContainer::MailAddressFromString;
};

// Options shared by the three forms.
struct MailOptions
{
    std::optional<std::string> from, replyTo, subject, body, bodyFile, mailer;
    std::vector<std::string> to, cc, bcc, attach;
    bool legacyBase64 = false;
};

void TakeMailOptions(std::vector<std::string>& args, MailOptions& o, bool& missing)
{
    o.from = TakeOption(args, "--from", missing);
    o.replyTo = TakeOption(args, "--reply-to", missing);
    o.subject = TakeOption(args, "--subject", missing);
    o.body = TakeOption(args, "--body", missing);
    o.bodyFile = TakeOption(args, "--body-file", missing);
    o.mailer = TakeOption(args, "--mailer", missing);
    o.to = TakeOptions(args, "--to", missing);
    o.cc = TakeOptions(args, "--cc", missing);
    o.bcc = TakeOptions(args, "--bcc", missing);
    o.attach = TakeOptions(args, "--attach", missing);
    o.legacyBase64 = TakeFlag(args, "--legacy-base64");
}

// A whole regular file of at most `limit` bytes; otherwise "nyr mail FORM:
// cannot read PATH: REASON" on err and false.
bool ReadTextFile(const std::string& path, std::size_t limit, std::string& content, std::ostream& err,
                  const char* form)
{
    std::string error;
    if (NyrReadRegularFile(path, limit, content, &error))
        return true;
    err << "nyr mail " << form << ": cannot read " << error << "\n";
    return false;
}

// An attachment must be a readable regular file within the limit: the
// library would send anything else as an empty attachment, and the mail
// client would get a reason without the path.
bool CheckAttachment(const std::string& path, std::ostream& err, const char* form)
{
    std::string error;
    const int fd = NyrOpenRegularFile(path, &error);
    struct stat info{};
    if (fd >= 0 && fstat(fd, &info) == 0 && info.st_size > kMaxAttachment)
        error = path + ": larger than " + std::to_string(kMaxAttachment) + " bytes";
    if (fd >= 0)
        close(fd);
    if (error.empty())
        return true;
    err << "nyr mail " << form << ": cannot read " << error << "\n";
    return false;
}

// The body text from --body or --body-file with mail line ends; an exit
// status other than kSuccess when both are given, the required one is
// missing or the file is unreadable.
int BodyText(const MailOptions& o, bool required, std::string& body, std::ostream& err, const char* form)
{
    if (o.body && o.bodyFile)
        return UsageError(kMail, err, "--body and --body-file exclude each other");
    if (required && !o.body && !o.bodyFile)
        return UsageError(kMail, err, std::string(form) + " needs --body or --body-file");
    if (o.bodyFile && !ReadTextFile(*o.bodyFile, kMaxBodyFile, body, err, form))
        return kFailure;
    if (o.body)
        body = *o.body;
    NyrSmtpWireLines(body, false);  // mail text ends lines in "\r\n"; a command line or file has "\n"
    return kSuccess;
}

// Builds the MIME message: one UTF-8 text part, then the attachments.
int BuildMessage(const MailOptions& o, Message& m, std::ostream& err, const char* form)
{
    if (!o.from || !o.subject)
        return UsageError(kMail, err, std::string(form) + " needs --from and --subject");
    if (o.to.empty() && o.cc.empty() && o.bcc.empty())
        return UsageError(kMail, err, std::string(form) + " needs a recipient (--to, --cc or --bcc)");
    std::string body;
    if (const int status = BodyText(o, true, body, err, form); status != kSuccess)
        return status;

    for (const auto* text : {&*o.from, o.replyTo ? &*o.replyTo : nullptr}) {
        if (text && !m.CheckMailAddress(Message::MailAddressFromString(text->c_str()))) {
            err << "nyr mail " << form << ": not a valid mail address: " << *text << "\n";
            return kFailure;
        }
    }
    m.From(o.from->c_str());
    if (o.replyTo)
        m.ReplyTo(o.replyTo->c_str());
    const std::pair<const std::vector<std::string>*, CNyrMailMessage::eRecipientTypes> lists[] = {
        {&o.to, CNyrMailMessage::TO}, {&o.cc, CNyrMailMessage::CC}, {&o.bcc, CNyrMailMessage::BCC}};
    for (const auto& [list, kind] : lists) {
        for (const auto& address : *list) {
            if (!m.AddRecipient(address.c_str(), kind)) {
                err << "nyr mail " << form << ": not a valid mail address: " << address << "\n";
                return kFailure;
            }
        }
    }
    m.Subject(o.subject->c_str());
    if (o.mailer)
        m.MailerName(o.mailer->c_str());

    auto* text = new CNyrMailMessageMimePartText(NyrEncodeIso8859(body.c_str()).c_str());
    text->Charset("utf-8");  // the system code page
    m.AddMimePart(text);
    for (const auto& path : o.attach) {
        if (!CheckAttachment(path, err, form))
            return kFailure;
        auto* part = new CNyrMailMessageMimePartBinary(path.c_str());
        part->StandardBase64(o.legacyBase64 ? 0 : 1);
        m.AddMimePart(part);
    }
    return kSuccess;
}

// Every mail form takes options only: anything left over is a usage error.
int CheckAllTaken(const std::vector<std::string>& args, bool missing, std::ostream& err)
{
    if (missing)
        return UsageError(kMail, err, "an option is missing its value");
    if (const auto unknown = FirstUnknownOption(args); !unknown.empty())
        return UsageError(kMail, err, "unknown option " + unknown);
    if (!args.empty())
        return UsageError(kMail, err, "unexpected argument " + args[0]);
    return kSuccess;
}

int RunCompose(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    MailOptions o;
    TakeMailOptions(args, o, missing);
    if (const int status = CheckAllTaken(args, missing, err); status != kSuccess)
        return status;
    Message m;
    if (const int status = BuildMessage(o, m, err, "compose"); status != kSuccess)
        return status;
    out << m.Header() << "\r\n" << m.Body();
    return kSuccess;
}

int RunSend(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    bool missing = false;
    MailOptions o;
    TakeMailOptions(args, o, missing);
    const auto server = TakeOption(args, "--server", missing);
    const auto port = TakeOption(args, "--port", missing);
    const auto caFile = TakeOption(args, "--ca-file", missing);
    const auto user = TakeOption(args, "--user", missing);
    const auto passwordFile = TakeOption(args, "--password-file", missing);
    const auto timeout = TakeOption(args, "--timeout", missing);
    const bool startTls = TakeFlag(args, "--starttls");
    const bool tls = TakeFlag(args, "--tls");
    const bool pipelining = TakeFlag(args, "--pipelining");
    if (const int status = CheckAllTaken(args, missing, err); status != kSuccess)
        return status;
    if (!server)
        return UsageError(kMail, err, "send needs --server");
    if (startTls && tls)
        return UsageError(kMail, err, "--starttls and --tls exclude each other");
    if (user.has_value() != passwordFile.has_value())
        return UsageError(kMail, err, "--user and --password-file go together");
    long portNumber = tls ? 465 : startTls ? 587 : 25;
    if (port && (!ParseLong(*port, portNumber) || portNumber < 1 || portNumber > 65535))
        return UsageError(kMail, err, "not a port: " + *port);
    long seconds = 0;
    if (timeout && (!ParseLong(*timeout, seconds) || seconds < 1 || seconds > 3600))
        return UsageError(kMail, err, "--timeout takes 1 to 3600 seconds");

    Message m;
    if (const int status = BuildMessage(o, m, err, "send"); status != kSuccess)
        return status;
    CNyrSmtp smtp(*server, static_cast<unsigned>(portNumber));
    smtp.Security(tls ? CNyrSmtp::SECURITY_TLS : startTls ? CNyrSmtp::SECURITY_STARTTLS : CNyrSmtp::SECURITY_NONE);
    smtp.Pipelining(pipelining ? 1 : 0);
    if (caFile)
        smtp.TrustedCertificates(*caFile);
    if (user) {
        std::string password;
        if (!ReadTextFile(*passwordFile, kMaxPasswordFile, password, err, "send"))
            return kFailure;
        password = password.substr(0, password.find_first_of("\r\n"));  // the first line
        smtp.Credentials(*user, password);
    }
    if (timeout) {
        const unsigned ms = static_cast<unsigned>(seconds) * 1000;
        smtp.Timeouts({ms, ms, ms, ms, ms, ms});
    }
    const bool sent = smtp.Connect() && smtp.SendMailMessage(&m);
    const std::string problem = smtp.GetLastError();
    smtp.Disconnect();
    if (!sent) {
        err << "nyr mail send: " << problem << "\n";
        return kFailure;
    }
    if (problem != "OK")  // a refused recipient does not stop the message
        err << "nyr mail send: warning: " << problem << "\n";
    out << "sent to " << m.GetNumRecipients() << " recipient(s)\n";
    return kSuccess;
}

int RunHandOff(std::vector<std::string>& args, std::ostream&, std::ostream& err)
{
    bool missing = false;
    MailOptions o;
    TakeMailOptions(args, o, missing);
    const auto command = TakeOption(args, "--command", missing);
    const bool dialog = TakeFlag(args, "--dialog");
    if (const int status = CheckAllTaken(args, missing, err); status != kSuccess)
        return status;
    if (o.from || o.replyTo || o.mailer)
        return UsageError(kMail, err, "the mail client chooses the sender: no --from, --reply-to or --mailer");
    std::string body;
    if (const int status = BodyText(o, false, body, err, "handoff"); status != kSuccess)
        return status;
    for (const auto& path : o.attach)
        if (!CheckAttachment(path, err, "handoff"))
            return kFailure;

    std::vector<NyrMailHelper::MAIL_ADDRESS> lists[3];
    const std::vector<std::string>* given[3] = {&o.to, &o.cc, &o.bcc};
    for (int i = 0; i < 3; ++i)
        for (const auto& text : *given[i])
            lists[i].push_back(Message::MailAddressFromString(text.c_str()));

    CNyrMapiSendMail mapi;
    if (command)
        mapi.Command(*command);
    if (!mapi.Available()) {
        err << "nyr mail handoff: " << mapi.Command() << " was not found\n";
        return kFailure;
    }
    const int done = mapi.Send(&lists[0], &lists[1], &lists[2], o.subject ? o.subject->c_str() : "", body.c_str(),
                               o.attach.empty() ? nullptr : &o.attach, dialog ? CNyrMapiSendMail::MAPI_DIALOG : 0ul);
    return done ? kSuccess : kFailure;  // the reason went to the message box (standard error here)
}

int RunMail(std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.empty())
        return UsageError(kMail, err, "expected compose, send or handoff");
    const std::string form = args[0];
    args.erase(args.begin());
    if (form == "compose")
        return RunCompose(args, out, err);
    if (form == "send")
        return RunSend(args, out, err);
    if (form == "handoff")
        return RunHandOff(args, out, err);
    return UsageError(kMail, err, "unknown form " + form + " (compose, send or handoff)");
}

const Command kMail{
    "mail", "compose a MIME message, send it over SMTP, or hand it to the mail client",
    "Usage: nyr mail compose MESSAGE\n"
    "       nyr mail send --server HOST [--port P] [--starttls | --tls] [--ca-file PEM]\n"
    "                     [--user NAME --password-file FILE] [--timeout SECONDS]\n"
    "                     [--pipelining] MESSAGE\n"
    "       nyr mail handoff [--to A]... [--cc A]... [--bcc A]... [--subject S]\n"
    "                        [--body TEXT | --body-file FILE] [--attach FILE]...\n"
    "                        [--command CMD] [--dialog]\n\n"
    "MESSAGE: --from A --to A [--to A]... [--cc A]... [--bcc A]... [--reply-to A]\n"
    "         --subject S (--body TEXT | --body-file FILE) [--attach FILE]... [--mailer NAME]\n"
    "         [--legacy-base64]\n"
    "An address A is \"name <address>\" or a bare address. The body becomes a\n"
    "UTF-8 text part (every line end becomes \"\\r\\n\"); each --attach a part in\n"
    "standard Base64 (RFC 2045), or in the library's own form with --legacy-base64.\n"
    "Files are read only when they are regular files: --body-file up to 16 MiB,\n"
    "--password-file up to 4 KiB, each --attach up to 256 MiB.\n\n"
    "compose prints the message as it would be sent (header, blank line, body).\n"
    "send delivers it over SMTP: port 25, or 587 with --starttls, 465 with --tls;\n"
    "certificates are verified (--ca-file trusts more); the password is the\n"
    "first line of FILE and is sent over TLS only. --timeout replaces every\n"
    "time-out (defaults: RFC 5321, up to 10 minutes; each reply must be complete\n"
    "within its time-out). --pipelining sends the commands of the transaction\n"
    "together when the server offers PIPELINING (RFC 2920). A refused recipient\n"
    "does not stop the message: it is reported as a warning.\n"
    "handoff gives the mail to the user's mail client through xdg-email (or\n"
    "CMD); --dialog disables the application while the client runs.\n",
    RunMail};
NYR_REGISTER_COMMAND(kMail)

}  // namespace

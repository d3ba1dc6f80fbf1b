#include "nyr/mail/mapi_send_mail.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_text_p.h"

extern char** environ;

using NyrMailHelper::MAIL_ADDRESS;

namespace {

enum : unsigned
{
    kTextCannotStart = 26293,
    kTextNotWorking = 26294,
    kMessageBoxIconError = 0x10,
};

// Bounds on the helper programs run to check the command and find the mail
// client; the hand-off itself waits for as long as the user composes.
constexpr auto kHelperTimeout = std::chrono::seconds(10);
constexpr std::size_t kMaxHelperOutput = 64 * 1024;

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

bool IsExecutableFile(const std::string& path)
{
    struct stat info{};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

// The program a command names: a path as it is, a bare name looked up on PATH.
std::string FindProgram(const std::string& command)
{
    if (command.empty())
        return {};
    if (command.find('/') != std::string::npos)
        return IsExecutableFile(command) ? command : std::string();
    const char* path = std::getenv("PATH");
    std::string_view dirs = path && *path ? path : "/usr/local/bin:/usr/bin:/bin";
    for (;;) {
        const std::size_t colon = dirs.find(':');
        const std::string_view dir = dirs.substr(0, colon);  // an empty entry is the current folder
        const std::string candidate = std::string(dir.empty() ? std::string_view(".") : dir) + "/" + command;
        if (IsExecutableFile(candidate))
            return candidate;
        if (colon == std::string_view::npos)
            return {};
        dirs.remove_prefix(colon + 1);
    }
}

struct ProcessResult
{
    bool started = false;
    bool finished = false;  // false: killed after the time limit
    int status = 0;         // as waitpid reports it
    std::string out;        // standard output when captured
};

// Runs `argv` (argv[0] a full path) with standard input from /dev/null.
// `capture`: standard output is collected (up to kMaxHelperOutput) and
// standard error discarded; otherwise both are the caller's. A `limited` run
// is killed after kHelperTimeout.
ProcessResult Run(const std::vector<std::string>& argv, bool capture, bool limited)
{
    ProcessResult result;
    int pipeFds[2] = {-1, -1};
    if (capture && pipe2(pipeFds, O_CLOEXEC) != 0)
        return result;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (capture) {
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> args;
    for (const auto& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (capture)
        close(pipeFds[1]);
    if (spawned != 0) {
        if (capture)
            close(pipeFds[0]);
        return result;
    }
    result.started = true;

    const auto deadline = std::chrono::steady_clock::now() + kHelperTimeout;
    auto msLeft = [&] {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        return static_cast<int>(std::max<long long>(left.count(), 0));
    };
    if (capture) {
        pollfd p{pipeFds[0], POLLIN, 0};
        while (msLeft() > 0) {
            const int ready = poll(&p, 1, msLeft());
            if (ready < 0 && errno == EINTR)
                continue;
            if (ready <= 0)
                break;
            char buffer[4096];
            const ssize_t n = read(pipeFds[0], buffer, sizeof buffer);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            if (result.out.size() < kMaxHelperOutput)
                result.out.append(buffer, static_cast<std::size_t>(n));
        }
        close(pipeFds[0]);
    }
    for (;;) {
        const pid_t done = waitpid(pid, &result.status, limited ? WNOHANG : 0);
        if (done == pid) {
            result.finished = true;
            return result;
        }
        if (done < 0 && errno != EINTR)
            return result;  // reaped by someone else (a SIGCHLD handler of the host): status unknown
        if (limited && msLeft() == 0) {
            kill(pid, SIGKILL);
            while (waitpid(pid, &result.status, 0) < 0 && errno == EINTR) {
            }
            return result;
        }
        if (limited)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

std::string Trimmed(std::string text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// The program an Exec line of a desktop entry runs: its first word, unquoted.
std::string ExecProgram(const std::string& exec)
{
    std::string line = Trimmed(exec);
    if (!line.empty() && line[0] == '"') {
        const auto close = line.find('"', 1);
        return line.substr(1, close == std::string::npos ? std::string::npos : close - 1);
    }
    return line.substr(0, line.find_first_of(" \t"));
}

// The Exec value of the desktop entry `id`, looked up by the freedesktop
// desktop-entry rules: $XDG_DATA_HOME, then $XDG_DATA_DIRS, "applications/",
// with a "vendor-app.desktop" also found as "vendor/app.desktop".
std::string DesktopEntryExec(const std::string& id)
{
    const char* home = std::getenv("HOME");
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    const char* dataDirs = std::getenv("XDG_DATA_DIRS");
    std::string search = dataHome && *dataHome ? dataHome : std::string(home ? home : "") + "/.local/share";
    search += ":";
    search += dataDirs && *dataDirs ? dataDirs : "/usr/local/share:/usr/share";
    std::vector<std::string> names = {id};
    if (const auto dash = id.find('-'); dash != std::string::npos)
        names.push_back(id.substr(0, dash) + "/" + id.substr(dash + 1));
    std::string_view dirs = search;
    for (;;) {
        const std::size_t colon = dirs.find(':');
        const std::string dir(dirs.substr(0, colon));
        for (const auto& name : names) {
            std::ifstream file(dir + "/applications/" + name);
            std::string line;
            bool inEntry = false;
            while (file && std::getline(file, line)) {
                if (!line.empty() && line[0] == '[')
                    inEntry = Trimmed(line) == "[Desktop Entry]";
                else if (inEntry && line.compare(0, 5, "Exec=") == 0)
                    return line.substr(5);
            }
        }
        if (colon == std::string_view::npos)
            return {};
        dirs.remove_prefix(colon + 1);
    }
}

// The file name of the user's mail client as xdg-email finds it: $MAILER
// when set, else the mailto handler that xdg-mime reports. Empty when unknown.
std::string MailClientName()
{
    std::string program;
    if (const char* mailer = std::getenv("MAILER"); mailer && *mailer) {
        const std::string_view list = mailer;
        program = ExecProgram(std::string(list.substr(0, list.find(':'))));
    } else {
        const std::string xdgMime = FindProgram("xdg-mime");
        if (xdgMime.empty())
            return {};
        const ProcessResult query = Run({xdgMime, "query", "default", "x-scheme-handler/mailto"}, true, true);
        const std::string id = Trimmed(query.out);
        if (!query.finished || id.empty() || id.find('/') != std::string::npos)
            return {};
        program = ExecProgram(DesktopEntryExec(id));
    }
    std::string path = FindProgram(program);
    if (path.empty())
        return {};
    if (char* real = realpath(path.c_str(), nullptr)) {  // a link is named after its target, as xdg-email does
        path = real;
        std::free(real);
    }
    return NyrMailText::FileName(path);
}

bool TakesAttachments(const std::string& client)
{
    if (client.empty())
        return false;
    for (const auto& name : AttachmentClientList())
        if (!name.empty() && client.find(name) != std::string::npos)
            return true;
    return false;
}

// Mail text with "\r\n" line ends as xdg-email takes it: "\n" line ends.
std::string PlainLines(const char* text)
{
    std::string lines = text ? text : "";
    std::string::size_type at = 0;
    while ((at = lines.find("\r\n", at)) != std::string::npos)
        lines.erase(at, 1);
    return lines;
}

unsigned long MapExit(const ProcessResult& run)
{
    if (!run.started || !run.finished)
        return CNyrMapiSendMail::MAPI_E_FAILURE;
    auto interrupted = [](int signal) { return signal == SIGINT || signal == SIGTERM || signal == SIGHUP; };
    if (WIFSIGNALED(run.status))
        return interrupted(WTERMSIG(run.status)) ? CNyrMapiSendMail::MAPI_USER_ABORT
                                                 : CNyrMapiSendMail::MAPI_E_FAILURE;
    const int code = WIFEXITED(run.status) ? WEXITSTATUS(run.status) : -1;
    if (code == 0)
        return CNyrMapiSendMail::SUCCESS_SUCCESS;
    if (code == 2)  // xdg-email: a file does not exist
        return CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND;
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
    const ProcessResult check = program.empty() ? ProcessResult{} : Run({program, "--version"}, true, true);
    if (!check.started) {
        NyrMessageBox(NyrLoadString(kTextCannotStart), {}, kMessageBoxIconError);
        return 0;
    }
    if (!check.finished || !WIFEXITED(check.status) || WEXITSTATUS(check.status) != 0) {
        NyrMessageBox(NyrLoadString(kTextNotWorking), {}, kMessageBoxIconError);
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

    std::vector<std::string> argv = {m_program, "--utf8"};
    for (unsigned long i = 0; i < message->nRecipCount; ++i) {
        const MapiRecipDesc& recipient = message->lpRecips[i];
        static const char* const kOptions[] = {nullptr, "--to", "--cc", "--bcc"};
        if (recipient.ulRecipClass < MAPI_TO || recipient.ulRecipClass > MAPI_BCC)
            return MAPI_E_BAD_RECIPTYPE;
        // Without an address the client may resolve the name.
        const char* address = recipient.lpszAddress && *recipient.lpszAddress ? recipient.lpszAddress
                                                                                : recipient.lpszName;
        if (!address || !*address || NyrMailText::HasControlCharacter(address))
            return MAPI_E_INVALID_RECIPS;
        argv.insert(argv.end(), {kOptions[recipient.ulRecipClass], address});
    }
    if (const std::string subject = NyrMailText::HeaderValue(PlainLines(message->lpszSubject)); !subject.empty())
        argv.insert(argv.end(), {"--subject", subject});
    if (const std::string text = PlainLines(message->lpszNoteText); !text.empty())
        argv.insert(argv.end(), {"--body", text});
    if (message->nFileCount > 0) {
        if (!TakesAttachments(MailClientName()))
            return MAPI_E_ATTACHMENT_OPEN_FAILURE;
        for (unsigned long i = 0; i < message->nFileCount; ++i) {
            const char* path = message->lpFiles[i].lpszPathName;
            if (!path || !*path)
                return MAPI_E_ATTACHMENT_NOT_FOUND;
            argv.insert(argv.end(), {"--attach", path});
        }
    }
    return MapExit(Run(argv, false, false));
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
    NyrMessageBox(message, {}, kMessageBoxIconError);
    return 0;
}

void CNyrMapiSendMail::GetMAPISendMailErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 1: id = 26147; break;
    case 3: id = 26141; break;
    case 5: id = 26139; break;
    case 9: id = 26143; break;
    case 10: id = 26144; break;
    case 11: id = 26136; break;
    case 12: id = 26137; break;
    case 14: id = 26145; break;
    case 15: id = 26138; break;
    case 18: id = 26142; break;
    case 19: id = 26149; break;
    case 21: id = 26135; break;
    case 25: id = 26140; break;
    default: id = 26146; break;
    }
    text = NyrLoadString(id);
}

void CNyrMapiSendMail::GetMAPILogonErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 1: id = 26147; break;
    case 3: id = 26141; break;
    case 5: id = 26139; break;
    case 8: id = 26148; break;
    default: id = 26146; break;  // 2 included
    }
    text = NyrLoadString(id);
}

void CNyrMapiSendMail::GetMAPILogoffErrorString(unsigned long code, std::string& text)
{
    unsigned id;
    switch (code) {
    case 5: id = 26139; break;
    case 19: id = 26149; break;
    default: id = 26146; break;  // 2 included
    }
    text = NyrLoadString(id);
}

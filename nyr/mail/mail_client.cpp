#include "nyr/mail/mail_client_p.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "nyr/mail/mail_text_p.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/file_read.h"

extern char** environ;

namespace {

// Bounds on the helper programs run to find the mail client, and on the
// desktop files read.
constexpr auto kHelperTimeout = std::chrono::seconds(10);
constexpr std::size_t kMaxHelperOutput = 64 * 1024;
constexpr std::size_t kMaxDesktopFile = 1024 * 1024;

bool IsExecutableFile(const std::string& path)
{
    struct stat info{};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

// The string escapes of desktop entry values.
std::string Unescaped(std::string_view value)
{
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        switch (value[++i]) {
        case 's': out += ' '; break;
        case 'n': out += '\n'; break;
        case 't': out += '\t'; break;
        case 'r': out += '\r'; break;
        case '\\': out += '\\'; break;
        default:  // not a string escape: kept for the Exec quoting rules
            out += '\\';
            out += value[i];
        }
    }
    return out;
}

// Each element of a colon-separated list of folders, in order (an empty
// element as "."), until `visit` returns true.
template <typename Visit>
void ForEachFolder(std::string_view list, Visit&& visit)
{
    for (;;) {
        const std::size_t colon = list.find(':');
        const std::string_view folder = list.substr(0, colon);
        if (visit(std::string(folder.empty() ? std::string_view(".") : folder)) || colon == std::string_view::npos)
            return;
        list.remove_prefix(colon + 1);
    }
}

// The Exec value of the desktop entry `id`, looked up by the freedesktop
// rules: $XDG_DATA_HOME, then $XDG_DATA_DIRS, "applications/", with a
// "vendor-app.desktop" also found as "vendor/app.desktop".
std::string DesktopEntryExecOf(const std::string& id)
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
    std::string exec;
    ForEachFolder(search, [&](const std::string& folder) {
        const std::string applications = folder + "/applications/";
        for (const auto& name : names) {
            std::string text;
            if (NyrReadRegularFile(applications + name, kMaxDesktopFile, text)) {
                exec = NyrDesktopEntryExec(text);
                return true;
            }
        }
        return false;
    });
    return exec;
}

using Deadline = std::chrono::steady_clock::time_point;

// Milliseconds until `deadline`, 0 once it has passed.
int MillisecondsLeft(Deadline deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<long long>(left.count(), 0));
}

// Starts argv with standard input from /dev/null and, when `outFd` >= 0,
// standard output into it and standard error to /dev/null. The spawn's
// error number (0 on success).
int Spawn(const std::vector<std::string>& argv, int outFd, pid_t& pid)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (outFd >= 0) {
        posix_spawn_file_actions_adddup2(&actions, outFd, 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> args;
    for (const auto& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    const int error = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

// Reads `fd` until its end or the deadline, keeping what arrives until
// `out` holds kMaxHelperOutput bytes or more (the rest is read and dropped,
// so the helper never blocks on a full pipe); closes `fd`.
void ReadUntil(int fd, Deadline deadline, std::string& out)
{
    pollfd p{fd, POLLIN, 0};
    while (MillisecondsLeft(deadline) > 0) {
        const int ready = poll(&p, 1, MillisecondsLeft(deadline));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            break;
        char buffer[4096];
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        if (out.size() < kMaxHelperOutput)
            out.append(buffer, static_cast<std::size_t>(n));
    }
    close(fd);
}

// Reaps `pid` into `result`; when `limited`, kills it at the deadline.
void Reap(pid_t pid, bool limited, Deadline deadline, NyrMailClient::Process& result)
{
    for (;;) {
        const pid_t done = waitpid(pid, &result.status, limited ? WNOHANG : 0);
        if (done == pid) {
            result.finished = true;
            return;
        }
        if (done < 0 && errno != EINTR)
            return;  // reaped by someone else (a SIGCHLD handler of the host): status unknown
        if (limited && MillisecondsLeft(deadline) == 0) {
            kill(pid, SIGKILL);
            while (waitpid(pid, &result.status, 0) < 0 && errno == EINTR) {
            }
            return;
        }
        if (limited)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

}  // namespace

std::string NyrDesktopEntryExec(std::string_view text)
{
    bool inEntry = false, seenEntry = false;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (!line.empty() && line[0] == '[') {
            if (inEntry)
                return {};  // the group ended without an Exec key
            inEntry = !seenEntry && nyr::ascii::Trimmed(line) == "[Desktop Entry]";
            seenEntry = seenEntry || inEntry;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (inEntry && equals != std::string_view::npos && nyr::ascii::Trimmed(line.substr(0, equals)) == "Exec") {
            std::string_view value = line.substr(equals + 1);
            value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
            return Unescaped(value);
        }
    }
    return {};
}

std::string NyrExecProgram(std::string_view exec)
{
    const std::size_t start = exec.find_first_not_of(" \t");
    if (start == std::string_view::npos)
        return {};
    exec.remove_prefix(start);
    if (exec[0] != '"')
        return std::string(exec.substr(0, exec.find_first_of(" \t")));
    std::string program;
    for (std::size_t i = 1; i < exec.size(); ++i) {
        const char c = exec[i];
        if (c == '"')
            return program;
        if (c == '\\' && i + 1 < exec.size() && std::string_view("\"`$\\").find(exec[i + 1]) != std::string_view::npos)
            program += exec[++i];
        else
            program += c;
    }
    return {};  // the quote is not closed
}

std::string NyrMimeDefaultId(std::string_view output)
{
    const std::string_view id = nyr::ascii::Trimmed(output);
    const std::string_view suffix = ".desktop";
    if (id.size() <= suffix.size() || id.substr(id.size() - suffix.size()) != suffix ||
        id.find_first_of(" \t\r\n/") != std::string_view::npos)
        return {};
    return std::string(id);
}

namespace NyrMailClient {

std::string FindProgram(const std::string& command)
{
    if (command.empty())
        return {};
    if (command.find('/') != std::string::npos)
        return IsExecutableFile(command) ? command : std::string();
    const char* path = std::getenv("PATH");
    std::string found;
    ForEachFolder(path && *path ? path : "/usr/local/bin:/usr/bin:/bin", [&](const std::string& folder) {
        const std::string candidate = folder + "/" + command;
        if (IsExecutableFile(candidate))
            found = candidate;
        return !found.empty();
    });
    return found;
}

std::string MailClientPath()
{
    std::string program;
    if (const char* mailer = std::getenv("MAILER"); mailer && *mailer) {
        const std::string_view list = mailer;
        program = NyrExecProgram(list.substr(0, list.find(':')));
    } else {
        const std::string xdgMime = FindProgram("xdg-mime");
        if (xdgMime.empty())
            return {};
        const Process query = Run({xdgMime, "query", "default", "x-scheme-handler/mailto"}, true, true);
        const std::string id = NyrMimeDefaultId(query.out);
        if (!query.finished || id.empty())
            return {};
        program = NyrExecProgram(DesktopEntryExecOf(id));
    }
    std::string path = FindProgram(program);
    if (char* real = path.empty() ? nullptr : realpath(path.c_str(), nullptr)) {
        path = real;  // a link is named after its target, as xdg-email does
        std::free(real);
    }
    return path;
}

Process Run(const std::vector<std::string>& argv, bool capture, bool limited)
{
    Process result;
    int pipeFds[2] = {-1, -1};
    if (capture && pipe2(pipeFds, O_CLOEXEC) != 0) {
        result.spawnError = errno;
        return result;
    }
    pid_t pid = 0;
    result.spawnError = Spawn(argv, pipeFds[1], pid);
    if (capture)
        close(pipeFds[1]);
    if (result.spawnError != 0) {
        if (capture)
            close(pipeFds[0]);
        return result;
    }
    const Deadline deadline = std::chrono::steady_clock::now() + kHelperTimeout;
    if (capture)
        ReadUntil(pipeFds[0], deadline, result.out);
    Reap(pid, limited, deadline, result);
    return result;
}

}  // namespace NyrMailClient

// The nyr tool's argument parsing, in process: the input is a command line,
// its arguments separated by zero bytes. Besides crashes: every run ends with
// 0, 1 or 2; a usage error (2) prints nothing to standard output and a reason
// to standard error, so does a failure (1); nothing prints more than a limit.
//
// The tool runs in a folder of its own with HOME and XDG_CONFIG_HOME there
// and standard input empty. Arguments with "/" are skipped, so every file it
// writes stays in that folder, and so are the commands that reach out of the
// process (mail send, mail handoff).
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "command.h"

namespace {

std::string g_dir;
constexpr std::size_t kMaxArguments = 24;
constexpr std::size_t kMaxOutput = std::size_t{1} << 20;

// Leaves the folder empty for the next input.
void EmptyFolder()
{
    DIR* dir = opendir(g_dir.c_str());
    if (!dir)
        return;
    while (const dirent* e = readdir(dir))
        if (std::string(e->d_name) != "." && std::string(e->d_name) != "..")
            unlinkat(dirfd(dir), e->d_name, 0);
    closedir(dir);
}

bool Allowed(const std::vector<std::string>& args)
{
    for (const std::string& a : args)
        if (a.find('/') != std::string::npos || a.find("--command") != std::string::npos)
            return false;
    return !(args.size() >= 2 && args[0] == "mail" && (args[1] == "send" || args[1] == "handoff"));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    char pattern[] = "/tmp/nyr-fuzz-cli-XXXXXX";
    if (!mkdtemp(pattern) || chdir(pattern) != 0)
        abort();
    g_dir = pattern;
    setenv("HOME", pattern, 1);
    setenv("XDG_CONFIG_HOME", pattern, 1);
    setenv("TZ", "UTC", 1);
    const int null = open("/dev/null", O_RDONLY);
    dup2(null, STDIN_FILENO);
    close(null);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<std::string> args;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (std::size_t at = 0; at <= text.size() && args.size() < kMaxArguments;) {
        const std::size_t end = std::min(text.find('\0', at), text.size());
        args.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    if (!Allowed(args))
        return 0;
    std::ostringstream out, err;
    const int code = nyr::cli::Run(args, out, err);
    const std::string o = out.str(), e = err.str();
    if (code < 0 || code > 2)
        __builtin_trap();
    if (code != 0 && e.empty())
        __builtin_trap();  // a failure or usage error says why
    if (code == 2 && !o.empty())
        __builtin_trap();  // a usage error prints no result
    if (o.size() > kMaxOutput || e.size() > kMaxOutput)
        __builtin_trap();
    EmptyFolder();
    return 0;
}

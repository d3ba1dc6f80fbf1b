#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nyr/platform/export.h"

// Finding and running the user's mail client for CNyrMapiSendMail. The
// parsers are exported for the tests and fuzz targets only; not an installed
// header.

// The value of the first Exec key in the [Desktop Entry] group of a desktop
// file's text (blanks around "=" ignored), with the string escapes \s \n \t
// \r \\ of the Desktop Entry Specification resolved. Empty when there is none.
NYR_EXPORT std::string NyrDesktopEntryExec(std::string_view text);

// The program an Exec value runs: its first argument. A quoted argument
// ("...") stands for its content with \" \` \$ \\ each meaning the character
// after the backslash. Empty when there is no argument or a quote is not closed.
NYR_EXPORT std::string NyrExecProgram(std::string_view exec);

// The desktop file id in what `xdg-mime query default SCHEME` printed: the
// output without surrounding white space when that is one word ending in
// ".desktop" without '/'; empty otherwise.
NYR_EXPORT std::string NyrMimeDefaultId(std::string_view output);

namespace NyrMailClient {

// The full path of the program `command` names: a path as it is, a bare name
// looked up on PATH. Empty when it is not an executable regular file.
std::string FindProgram(const std::string& command);

// The full path (links resolved) of the user's mail client as xdg-email
// finds it: $MAILER when set (its first entry), else the Exec program of the
// x-scheme-handler/mailto handler that xdg-mime reports. Empty when unknown.
std::string MailClientPath();

struct Process
{
    int spawnError = 0;     // errno of a process that could not be started (E2BIG: arguments too long)
    bool finished = false;  // false: not started, or killed after the time limit
    int status = 0;         // as waitpid reports it
    std::string out;        // standard output when captured
};

// Runs `argv` (argv[0] a full path) with standard input from /dev/null.
// `capture`: standard output is collected (up to 64 KiB) and standard error
// discarded; otherwise both are the caller's. A `limited` run is killed
// after 10 s; an unlimited one is waited for (the user may take a while in
// the compose window).
Process Run(const std::vector<std::string>& argv, bool capture, bool limited);

}  // namespace NyrMailClient

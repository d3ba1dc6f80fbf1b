#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "nyr/platform/export.h"

// An application's log file. One line per message:
//
//   05/17/2024 14:03:07.125 WARNING [4711] Import: 3 points without height
//
// the time stamp in the library's time format (the row stored in the
// settings file, "CNyrTime" / "Time Format (###)", read when the file is
// opened, with milliseconds after the seconds), the level, the thread id and
// the message. A line never breaks: CR, LF, tab, other control characters
// and the backslash are written as "\r", "\n", "\t", "\xHH" and "\\"; a
// message is cut to kMaxMessage bytes.
//
// Each line goes to the file in one write(2) on a descriptor opened with
// O_APPEND, with no buffer in the process: the last line before a crash is
// in the file, and lines of several threads or processes never interleave.
//
// Size limit and rotation: a line that would take the file past the limit
// (the smaller of SetLimits' byte count and the process's RLIMIT_FSIZE)
// first rotates it: "app.log" becomes "app.log.1", "app.log.1" becomes
// "app.log.2" and so on; the oldest beyond `keep` is removed. A line larger
// than the limit on its own is lost.
//
// Failures never reach the application: a full disk, a file size limit, a
// missing or read-only folder lose the line and count it (LostLines); the
// next line that reaches the file is preceded by a WARNING line that says
// how many were lost and why. A line a full disk cut short is taken back,
// so the file never ends in half a line. A removed or renamed file (another
// program rotated it) is noticed and a new one created.
//
// Thread-safe: all members may be called from any thread.
class NYR_EXPORT CNyrLogFile
{
public:
    enum eLevel : int
    {
        eDebug = 0,
        eInfo = 1,
        eWarning = 2,
        eError = 3,
    };

    // Longest message written, in bytes before escaping; longer ones are cut
    // and end in "...".
    static constexpr std::size_t kMaxMessage = 16 * 1024;

    // No file until SetPath: lines are dropped without being counted.
    CNyrLogFile();
    explicit CNyrLogFile(const std::string& path);
    ~CNyrLogFile();
    CNyrLogFile(const CNyrLogFile&) = delete;
    CNyrLogFile& operator=(const CNyrLogFile&) = delete;

    // The process's log: DefaultPath() of the program's name
    // (program_invocation_short_name) until the host sets another path.
    static CNyrLogFile& Default();

    // $XDG_STATE_HOME/NAME/NAME.log ($HOME/.local/state when XDG_STATE_HOME
    // is unset or not absolute). Characters of `appName` other than
    // letters, digits, ".", "_" and "-" become "_"; an empty name is "nyr".
    static std::string DefaultPath(const std::string& appName);

    // Switches to `path` ("" for none); the missing folders are created
    // (mode 0700) and the file (mode 0600) at the next line.
    void SetPath(const std::string& path);
    std::string Path() const;

    // Lines below `minimum` are dropped. Default: eInfo.
    void SetLevel(eLevel minimum);
    eLevel Level() const;

    // Largest file in bytes (at least 4096; default 1 MiB) and the number of
    // rotated files kept (0 to 99; default 3; 0 removes the full file).
    void SetLimits(std::uint64_t maxBytes, int keep);

    // Writes one line. 1 when it reached the file, 0 when it was dropped
    // (level, no path) or lost.
    int Write(eLevel level, std::string_view message);
    int Debug(std::string_view message) { return Write(eDebug, message); }
    int Info(std::string_view message) { return Write(eInfo, message); }
    int Warning(std::string_view message) { return Write(eWarning, message); }
    int Error(std::string_view message) { return Write(eError, message); }

    // Lines lost since the path was set.
    std::uint64_t LostLines() const;

    // The message as the file shows it: escaped and cut as described above.
    static std::string EscapeMessage(std::string_view message);

    // "DEBUG", "INFO", "WARNING", "ERROR"; "LEVEL<n>" for other values.
    static std::string LevelName(int level);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

#include "nyr/app/log_file.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <mutex>

#include "nyr/app/log_sink_p.h"
#include "nyr/platform/system_error.h"
#include "nyr/platform/user_folders_p.h"
#include "nyr/time/strftime.h"
#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"

namespace {

// The row of the time-format table stored in the settings file, read the way
// CNyrTime loads it (absent, negative or beyond the table: row 0). The
// settings store may be read from any thread; CNyrTime's own current
// format may not, so the log does not use it.
std::string StoredTimePattern()
{
    const unsigned stored = CNyrProfileEntries::ReadNyrProfileInt(CNyrProfileEntries::TimeSection(),
                                                                  CNyrProfileEntries::TimeEntryFormatNumber(), -1);
    const char* pattern = CNyrTime::TimeFormatPattern(static_cast<int>(stored));
    return pattern ? pattern : CNyrTime::TimeFormatPattern(0);
}

// Now, in `pattern` with the milliseconds after the seconds.
std::string Stamp(const std::string& pattern)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm fields{};
    localtime_r(&now.tv_sec, &fields);
    char millis[24];
    std::snprintf(millis, sizeof millis, ".%03ld", now.tv_nsec / 1000000);
    std::string withMillis = pattern;
    if (const std::size_t seconds = withMillis.find("%S"); seconds != std::string::npos)
        withMillis.insert(seconds + 2, millis);
    return NyrStrftime(withMillis, fields);
}

}  // namespace

struct CNyrLogFile::Private
{
    std::mutex mutex;  // guards everything below but `level` and `lost`
    nyr::app::LogSink sink;
    std::string pattern;  // time format, read at each open of the file
    std::atomic<int> level{eInfo};
    std::atomic<std::uint64_t> lost{0};
    std::uint64_t unreported = 0;  // lost since the last line that reached the file
    int lastError = 0;

    std::string Line(int lineLevel, std::string_view message) const
    {
        std::string line = Stamp(pattern);
        line += ' ';
        line += LevelName(lineLevel);
        line += " [" + std::to_string(gettid()) + "] ";
        line += EscapeMessage(message);
        line += '\n';
        return line;
    }

    int Append(int lineLevel, std::string_view message)
    {
        int error = sink.Prepare();
        if (error == 0) {
            if (sink.TakeOpened())
                pattern = StoredTimePattern();
            if (unreported > 0) {
                const std::string note =
                    std::to_string(unreported) + " log lines lost: " + NyrSystemErrorText(lastError);
                if (sink.Append(Line(eWarning, note)) == 0)
                    unreported = 0;
            }
            error = sink.Append(Line(lineLevel, message));
        }
        if (error == 0)
            return 1;
        ++unreported;
        ++lost;
        lastError = error;
        return 0;
    }
};

CNyrLogFile::CNyrLogFile() : d(std::make_unique<Private>()) {}

CNyrLogFile::CNyrLogFile(const std::string& path) : CNyrLogFile()
{
    SetPath(path);
}

CNyrLogFile::~CNyrLogFile() = default;

CNyrLogFile& CNyrLogFile::Default()
{
    static CNyrLogFile log(DefaultPath(program_invocation_short_name));
    return log;
}

std::string CNyrLogFile::DefaultPath(const std::string& appName)
{
    const std::string name = nyr::platform::SafeFileName(appName);
    return nyr::platform::XdgFolder("XDG_STATE_HOME", "/.local/state") + "/" + name + "/" + name + ".log";
}

void CNyrLogFile::SetPath(const std::string& path)
{
    std::lock_guard lock(d->mutex);
    d->sink.SetPath(path);
    d->lost = 0;
    d->unreported = 0;
}

std::string CNyrLogFile::Path() const
{
    std::lock_guard lock(d->mutex);
    return d->sink.Path();
}

void CNyrLogFile::SetLevel(eLevel minimum)
{
    d->level = minimum;
}

CNyrLogFile::eLevel CNyrLogFile::Level() const
{
    return static_cast<eLevel>(d->level.load());
}

void CNyrLogFile::SetLimits(std::uint64_t maxBytes, int keep)
{
    std::lock_guard lock(d->mutex);
    d->sink.SetLimits(maxBytes, keep);
}

int CNyrLogFile::Write(eLevel level, std::string_view message)
{
    if (level < d->level.load(std::memory_order_relaxed))
        return 0;
    std::lock_guard lock(d->mutex);
    if (d->sink.Path().empty())
        return 0;
    return d->Append(level, message);
}

std::uint64_t CNyrLogFile::LostLines() const
{
    return d->lost.load();
}

std::string CNyrLogFile::EscapeMessage(std::string_view message)
{
    bool cut = false;
    if (message.size() > kMaxMessage) {
        std::size_t end = kMaxMessage;
        while (end > 0 && (static_cast<unsigned char>(message[end]) & 0xC0) == 0x80)
            --end;  // never half a UTF-8 sequence
        message = message.substr(0, end);
        cut = true;
    }
    std::string out;
    out.reserve(message.size() + 8);
    for (const char c : message) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", byte);
            out += hex;
        } else {
            out += c;
        }
    }
    if (cut)
        out += "...";
    return out;
}

std::string CNyrLogFile::LevelName(int level)
{
    switch (level) {
    case eDebug: return "DEBUG";
    case eInfo: return "INFO";
    case eWarning: return "WARNING";
    case eError: return "ERROR";
    default: return "LEVEL" + std::to_string(level);
    }
}

#pragma once

// The file operations under the settings store: bounded whole-file reads, the
// advisory lock taken with a time limit, the replacement of a file by rename
// and the removal of temporaries that killed writers left behind.

#include <sys/stat.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace nyr::detail {

// Larger files are not settings files: they read as absent and are never
// rewritten (rewriting would mean truncating what could not be read).
constexpr off_t kMaxProfileFileSize = off_t{64} << 20;

// Why an operation could not use a settings file. kNone covers success and a
// file that is simply absent (reads).
enum class ProfileProblem
{
    kNone,
    kLocked,      // another process held the lock longer than the wait allows
    kReadOnly,    // the file has no write permission bit
    kTooLarge,    // larger than kMaxProfileFileSize
    kNotRegular,  // a folder, FIFO, device, ...
    kRefused,     // a name or value that would break the file's lines
    kReadError,   // a system error while reading; see the errno value
    kWriteError,  // a system error while writing; see the errno value
};

struct ProfileStatus
{
    ProfileProblem problem = ProfileProblem::kNone;
    int error = 0;  // errno value for kReadError and kWriteError

    static ProfileStatus Ok() { return {}; }
    bool ok() const { return problem == ProfileProblem::kNone; }
};

// A file descriptor that closes itself.
class Fd
{
public:
    explicit Fd(int fd = -1) : m_fd(fd) {}
    ~Fd();
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }
    void reset(int fd = -1);

private:
    int m_fd;
};

// The whole file behind `fd` from its start; nullopt on a read error or when
// it holds more than kMaxProfileFileSize bytes (also when it grew past that
// since `sizeHint` was taken).
std::optional<std::string> ReadWholeFile(int fd, off_t sizeHint);

// Opens `path` for writing (creating it empty, mode 0666 less the umask, when
// missing) and takes the exclusive advisory lock on it, waiting at most
// `wait` for another holder. Writers replace the file by rename, so the lock
// taken may belong to a file that was replaced meanwhile: then it tries again
// on the new one, within the same wait. Fills `st` with the locked file's
// status. Refuses files without any write permission bit, even for root.
ProfileStatus OpenLocked(const std::string& path, std::chrono::milliseconds wait, Fd& fd, struct stat& st);

// Writes `text` to a new temporary file ".NAME.XXXXXX" beside `target` and
// renames it over `target`; the new file gets the mode (and, when allowed, the
// owner) of `old`. The rename is the commit: a crash or kill before it leaves
// the old file whole, after it the new one. Fills `written` with the new
// file's status, taken after the rename.
ProfileStatus ReplaceFile(const std::string& target, const struct stat& old, std::string_view text,
                          struct stat& written);

// Temporaries older than this are left over from writers killed between
// creating and renaming them.
constexpr std::chrono::seconds kStaleTemporaryAge{60};

// Removes the temporaries ".NAME.XXXXXX" of `target` last modified more than
// kStaleTemporaryAge ago. Call it holding the lock of `target`: a writer
// holds that lock from before it creates its temporary until after the
// rename, so a temporary seen under the lock belongs to no live writer.
void RemoveStaleTemporaries(const std::string& target);

// The folder of `path` ("." when it has none).
std::string FolderOf(const std::string& path);

}  // namespace nyr::detail

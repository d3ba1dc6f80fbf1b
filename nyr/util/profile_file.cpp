#include "nyr/util/profile_file_p.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <thread>

#include "nyr/platform/ascii_p.h"

namespace nyr::detail {

namespace {

ProfileStatus Problem(ProfileProblem problem, int error = 0)
{
    return {problem, error};
}

bool WriteAll(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t n = write(fd, data.data(), data.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

bool HasWriteBit(const struct stat& st)
{
    return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0;
}

// Takes the lock without blocking, polling until `deadline`: a blocking
// flock cannot be given a time limit, and a stopped holder (Ctrl+Z) would
// keep it for ever. Polls every 1 ms at first, backing off to 10 ms.
ProfileStatus LockBefore(int fd, std::chrono::steady_clock::time_point deadline)
{
    auto pause = std::chrono::milliseconds(1);
    for (;;) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0)
            return ProfileStatus::Ok();
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK)
            return Problem(ProfileProblem::kWriteError, errno);
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline)
            return Problem(ProfileProblem::kLocked);
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(pause, deadline - now));
        pause = std::min(pause * 2, std::chrono::milliseconds(10));
    }
}

// What an open for writing that failed with `error` means for the user.
ProfileStatus OpenFailure(const std::string& path, int error)
{
    struct stat st{};
    if (error == EACCES && stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && !HasWriteBit(st))
        return Problem(ProfileProblem::kReadOnly);
    return Problem(ProfileProblem::kWriteError, error);
}

std::string BaseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

// ".NAME.XXXXXX" as mkostemp makes it: six letters or digits.
bool IsTemporaryOf(std::string_view name, std::string_view base)
{
    if (name.size() != base.size() + 8 || name[0] != '.' || name.substr(1, base.size()) != base ||
        name[base.size() + 1] != '.')
        return false;
    return std::all_of(name.end() - 6, name.end(), [](char c) { return ascii::IsAlnum(c); });
}

}  // namespace

Fd::~Fd()
{
    reset();
}

void Fd::reset(int fd)
{
    if (m_fd >= 0)
        close(m_fd);
    m_fd = fd;
}

std::optional<std::string> ReadWholeFile(int fd, off_t sizeHint)
{
    if (sizeHint > kMaxProfileFileSize)
        return std::nullopt;
    std::string content(static_cast<size_t>(sizeHint), '\0');
    size_t have = 0;
    for (;;) {
        if (have == content.size()) {
            if (have > static_cast<size_t>(kMaxProfileFileSize))  // grew past the limit since fstat
                return std::nullopt;
            content.resize(have + 4096);
        }
        const ssize_t n = pread(fd, content.data() + have, content.size() - have, static_cast<off_t>(have));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return std::nullopt;
        if (n == 0)
            break;
        have += static_cast<size_t>(n);
    }
    content.resize(have);
    return content;
}

ProfileStatus OpenLocked(const std::string& path, std::chrono::milliseconds wait, Fd& fd, struct stat& st)
{
    const auto deadline = std::chrono::steady_clock::now() + wait;
    for (;;) {
        fd.reset(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
        if (fd.get() < 0)
            return OpenFailure(path, errno);
        if (fstat(fd.get(), &st) != 0)
            return Problem(ProfileProblem::kWriteError, errno);
        if (!S_ISREG(st.st_mode))
            return Problem(ProfileProblem::kNotRegular);
        // Root may open any file for writing; the platform refuses read-only
        // files to administrators too.
        if (!HasWriteBit(st))
            return Problem(ProfileProblem::kReadOnly);
        if (const ProfileStatus locked = LockBefore(fd.get(), deadline); !locked.ok())
            return locked;
        struct stat now{};
        if (fstat(fd.get(), &st) != 0)
            return Problem(ProfileProblem::kWriteError, errno);
        if (stat(path.c_str(), &now) == 0 && now.st_dev == st.st_dev && now.st_ino == st.st_ino)
            return st.st_size > kMaxProfileFileSize ? Problem(ProfileProblem::kTooLarge) : ProfileStatus::Ok();
        if (std::chrono::steady_clock::now() >= deadline)
            return Problem(ProfileProblem::kLocked);
    }
}

ProfileStatus ReplaceFile(const std::string& target, const struct stat& old, std::string_view text,
                          struct stat& written)
{
    std::string temp = FolderOf(target) + "/." + BaseName(target) + ".XXXXXX";
    const Fd out(mkostemp(temp.data(), O_CLOEXEC));
    if (out.get() < 0)
        return Problem(ProfileProblem::kWriteError, errno);
    // The new file keeps the old one's permissions (and owner, when we may).
    fchmod(out.get(), old.st_mode & 07777);
    if (old.st_uid != geteuid() || old.st_gid != getegid()) {
        if (fchown(out.get(), old.st_uid, old.st_gid) != 0) {
            // Not allowed: the file becomes ours, which is all we can do.
        }
    }
    if (!WriteAll(out.get(), text) || rename(temp.c_str(), target.c_str()) != 0) {
        const int error = errno;
        unlink(temp.c_str());
        return Problem(ProfileProblem::kWriteError, error);
    }
    // After the rename, which changes the inode's change time.
    if (fstat(out.get(), &written) != 0)
        written = {};
    return ProfileStatus::Ok();
}

void RemoveStaleTemporaries(const std::string& target)
{
    const std::string folder = FolderOf(target);
    DIR* dir = opendir(folder.c_str());
    if (!dir)
        return;
    const std::string base = BaseName(target);
    const time_t before = time(nullptr) - kStaleTemporaryAge.count();
    while (const dirent* e = readdir(dir)) {
        if (!IsTemporaryOf(e->d_name, base))
            continue;
        struct stat st{};
        if (fstatat(dirfd(dir), e->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(st.st_mode) &&
            st.st_mtime < before)
            unlinkat(dirfd(dir), e->d_name, 0);
    }
    closedir(dir);
}

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace nyr::detail

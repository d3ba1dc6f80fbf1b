#include "nyr/app/log_sink_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "nyr/platform/user_folders_p.h"

namespace nyr::app {

LogSink::~LogSink()
{
    Close();
}

void LogSink::Close()
{
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

void LogSink::SetPath(std::string path)
{
    Close();
    m_path = std::move(path);
}

void LogSink::SetLimits(std::uint64_t maxBytes, int keep)
{
    m_maxBytes = std::max<std::uint64_t>(maxBytes, 4096);
    m_keep = std::clamp(keep, 0, 99);
}

bool LogSink::TakeOpened()
{
    const bool opened = m_opened;
    m_opened = false;
    return opened;
}

int LogSink::Prepare()
{
    if (m_path.empty())
        return ENOENT;
    struct stat st{};
    if (m_fd >= 0) {
        // One stat a line: the file as the path names it now. Someone else's
        // rotation or a removal leaves us a file nobody reads any more.
        if (stat(m_path.c_str(), &st) == 0 && st.st_dev == m_dev && st.st_ino == m_ino) {
            m_size = static_cast<std::uint64_t>(st.st_size);
            return 0;
        }
        Close();
    }
    nyr::platform::CreateParentFolders(m_path);
    // O_NONBLOCK so that a FIFO at the path cannot block the open; only
    // regular files are written (rotating a device would rename it).
    const int fd = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
    if (fd < 0)
        return errno;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return EINVAL;
    }
    fcntl(fd, F_SETFL, O_WRONLY | O_APPEND);
    m_fd = fd;
    m_dev = st.st_dev;
    m_ino = st.st_ino;
    m_size = static_cast<std::uint64_t>(st.st_size);
    m_opened = true;
    return 0;
}

std::uint64_t LogSink::Limit() const
{
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        return std::min<std::uint64_t>(m_maxBytes, limit.rlim_cur);
    return m_maxBytes;
}

void LogSink::Rotate()
{
    // Processes sharing the file rotate it once: whoever gets the lock
    // second finds the path naming another file and only reopens.
    flock(m_fd, LOCK_EX);
    struct stat st{};
    if (stat(m_path.c_str(), &st) == 0 && st.st_dev == m_dev && st.st_ino == m_ino) {
        if (m_keep == 0) {
            unlink(m_path.c_str());
        } else {
            unlink((m_path + "." + std::to_string(m_keep)).c_str());
            for (int i = m_keep - 1; i >= 1; --i)
                rename((m_path + "." + std::to_string(i)).c_str(), (m_path + "." + std::to_string(i + 1)).c_str());
            rename(m_path.c_str(), (m_path + ".1").c_str());
        }
    }
    flock(m_fd, LOCK_UN);
    Close();
}

int LogSink::Append(std::string_view line)
{
    if (m_fd < 0)
        if (const int error = Prepare())
            return error;
    // Staying below RLIMIT_FSIZE matters beyond the limit itself: a write
    // past it raises SIGXFSZ, whose default action ends the process.
    const std::uint64_t limit = Limit();
    if (m_size > 0 && m_size + line.size() > limit) {
        Rotate();
        if (const int error = Prepare())
            return error;
    }
    if (m_size + line.size() > limit)
        return EFBIG;  // the line alone is too large, or the rotation failed
    return WriteWhole(line);
}

int LogSink::WriteWhole(std::string_view line)
{
    std::size_t written = 0;
    while (written < line.size()) {
        const ssize_t n = write(m_fd, line.data() + written, line.size() - written);
        if (n > 0) {
            written += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        const int error = n < 0 ? errno : ENOSPC;
        if (written > 0) {
            // O_APPEND left the offset just behind our part of the line.
            const off_t end = lseek(m_fd, 0, SEEK_CUR);
            if (end >= static_cast<off_t>(written) && ftruncate(m_fd, end - static_cast<off_t>(written)) != 0)
                Close();  // reopened at the next line
        }
        return error;
    }
    m_size += written;
    return 0;
}

}  // namespace nyr::app

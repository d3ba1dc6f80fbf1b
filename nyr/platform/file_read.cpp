#include "nyr/platform/file_read.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "nyr/platform/system_error.h"

namespace {

void SetError(std::string* error, const std::string& path, const std::string& reason)
{
    if (error)
        *error = path + ": " + reason;
}

}  // namespace

int NyrOpenRegularFile(const std::string& path, std::string* error)
{
    // O_NONBLOCK: opening a FIFO for reading would otherwise wait for a writer.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        SetError(error, path, NyrSystemErrorText(static_cast<unsigned long>(errno)));
        return -1;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        SetError(error, path, "not a regular file");
        return -1;
    }
    // Regular files ignore O_NONBLOCK, but clear it so the descriptor behaves
    // as any other for whoever reads it.
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

int NyrReadRegularFile(const std::string& path, std::size_t limit, std::string& content, std::string* error)
{
    content.clear();
    const int fd = NyrOpenRegularFile(path, error);
    if (fd < 0)
        return 0;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && static_cast<unsigned long long>(info.st_size) > limit) {
        // Refused before a byte is read: a file far beyond the limit would
        // otherwise cost the limit in memory and time first.
        ::close(fd);
        SetError(error, path, "larger than " + std::to_string(limit) + " bytes");
        return 0;
    }
    content.reserve(static_cast<std::size_t>(info.st_size));
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n == 0)
            break;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            const int code = errno;
            ::close(fd);
            content.clear();
            SetError(error, path, NyrSystemErrorText(static_cast<unsigned long>(code)));
            return 0;
        }
        if (static_cast<std::size_t>(n) > limit - content.size()) {
            // The size is checked as the bytes come: the file may grow while it is read.
            ::close(fd);
            content.clear();
            content.shrink_to_fit();
            SetError(error, path, "larger than " + std::to_string(limit) + " bytes");
            return 0;
        }
        content.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fd);
    return 1;
}

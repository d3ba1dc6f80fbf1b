#include "nyr/platform/file_read.h"

#include <cerrno>
#include <new>
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

namespace {

// Reads `fd` to its end into `content`; 0 or the errno value of the failure
// (EFBIG: more than `limit` bytes).
int ReadAll(int fd, std::size_t limit, std::string& content)
{
    struct stat info {};
    if (::fstat(fd, &info) == 0 && static_cast<unsigned long long>(info.st_size) <= limit)
        content.reserve(static_cast<std::size_t>(info.st_size));
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n == 0)
            return 0;
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno;
        // The size is checked as the bytes come: the file may grow while it is read.
        if (static_cast<std::size_t>(n) > limit - content.size())
            return EFBIG;
        content.append(buffer, static_cast<std::size_t>(n));
    }
}

}  // namespace

int NyrReadRegularFile(const std::string& path, std::size_t limit, std::string& content, std::string* error)
{
    content.clear();
    const int fd = NyrOpenRegularFile(path, error);
    if (fd < 0)
        return 0;
    int failure = 0;
    try {
        failure = ReadAll(fd, limit, content);
    } catch (const std::bad_alloc&) {
        failure = ENOMEM;
    }
    ::close(fd);
    if (failure == 0)
        return 1;
    content.clear();
    content.shrink_to_fit();
    SetError(error, path,
             failure == EFBIG ? "larger than " + std::to_string(limit) + " bytes"
                              : NyrSystemErrorText(static_cast<unsigned long>(failure)));
    return 0;
}

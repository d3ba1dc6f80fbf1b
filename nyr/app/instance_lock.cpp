#include "nyr/app/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "nyr/platform/system_error.h"
#include "nyr/platform/user_folders_p.h"

namespace {

// A folder of this user that no one else can enter: the socket and lock
// files in it are then this user's alone.
bool IsPrivateFolder(const std::string& path, bool isLink)
{
    struct stat st{};
    if (path.empty() || path[0] != '/' || (isLink ? lstat : stat)(path.c_str(), &st) != 0)
        return false;
    return S_ISDIR(st.st_mode) && st.st_uid == geteuid() && (st.st_mode & 077) == 0;
}

// FNV-1a, 64 bits: names stay short and free of the key's odd characters.
std::string Hash(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 1099511628211ull;
    }
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(hash));
    return hex;
}

}  // namespace

std::string CNyrInstanceLock::RuntimeFolder()
{
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && IsPrivateFolder(runtime, false))
        return runtime;
    const std::string fallback = "/tmp/nyr240-" + std::to_string(geteuid());
    mkdir(fallback.c_str(), 0700);
    // lstat: a link planted by another user must not lead us elsewhere.
    return IsPrivateFolder(fallback, true) ? fallback : std::string();
}

std::string CNyrInstanceLock::LoginKey()
{
    for (const char* name : {"XDG_SESSION_ID", "WAYLAND_DISPLAY", "DISPLAY"})
        if (const char* value = std::getenv(name); value && value[0])
            return std::string(name) + "=" + value;
    return "console";
}

CNyrInstanceLock::CNyrInstanceLock(const std::string& appName)
{
    const std::string folder = RuntimeFolder();
    if (folder.empty()) {
        m_error = "no private runtime folder";
        return;
    }
    const std::string base = folder + "/" + nyr::platform::SafeFileName(appName, 40) + "-" + Hash(LoginKey());
    if (base.size() + 5 >= sizeof(sockaddr_un::sun_path)) {
        m_error = base + ".sock: path too long for a socket";
        return;
    }
    m_lockPath = base + ".lock";
    m_socketPath = base + ".sock";
}

CNyrInstanceLock::~CNyrInstanceLock()
{
    Release();
}

int CNyrInstanceLock::TryAcquire()
{
    if (m_fd >= 0)
        return 1;
    if (m_lockPath.empty())
        return -1;
    const int fd = open(m_lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) {
        m_error = m_lockPath + ": " + NyrSystemErrorText(errno);
        return -1;
    }
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        close(fd);
        if (error == EWOULDBLOCK)
            return 0;
        m_error = m_lockPath + ": " + NyrSystemErrorText(error);
        return -1;
    }
    m_fd = fd;
    return 1;
}

void CNyrInstanceLock::Release()
{
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

#pragma once

#include <string>

#include "nyr/platform/export.h"

// The election behind the single-instance guard: the first process of an
// application, per user and desktop login, holds an exclusive lock on a
// file; the lock is the kernel's (flock), so it goes with the process,
// however that ends, and a crashed first instance never blocks the next.
// Any number of simultaneous starts elect exactly one.
//
// The files live in RuntimeFolder(), named after the application and a hash
// of LoginKey(): "nyr-survey-3f9a0c2b71d4e856.lock" and ".sock" (the socket
// on which the first instance listens; see CNyrSingleInstance in
// nyrwidgets/app/single_instance.h).
//
// The lock descriptor is close-on-exec: programs the first instance starts
// do not inherit it and cannot keep it alive after the instance ends.
class NYR_EXPORT CNyrInstanceLock
{
public:
    // `appName`: characters other than letters, digits, ".", "_" and "-"
    // become "_"; at most 40 are used; an empty name is "nyr".
    explicit CNyrInstanceLock(const std::string& appName);
    // Releases the lock.
    ~CNyrInstanceLock();
    CNyrInstanceLock(const CNyrInstanceLock&) = delete;
    CNyrInstanceLock& operator=(const CNyrInstanceLock&) = delete;

    // $XDG_RUNTIME_DIR when it is an absolute path of a folder of this user
    // that no one else may enter; else /tmp/nyr240-UID, created with mode
    // 0700. "" when neither is usable (the /tmp folder is someone else's, a
    // link, or open to others).
    static std::string RuntimeFolder();
    // The desktop login: $XDG_SESSION_ID, else $WAYLAND_DISPLAY, else
    // $DISPLAY, else "console".
    static std::string LoginKey();

    // "" when RuntimeFolder() is "" or the socket path would not fit a
    // socket address (107 bytes).
    const std::string& LockPath() const { return m_lockPath; }
    const std::string& SocketPath() const { return m_socketPath; }

    // Tries once, without waiting. 1: this process holds the lock now (it
    // is the first instance; also when it held it already); 0: another
    // process holds it; -1: the lock file cannot be used (Error() says why).
    int TryAcquire();
    bool IsHeld() const { return m_fd >= 0; }
    void Release();
    const std::string& Error() const { return m_error; }

private:
    std::string m_lockPath;
    std::string m_socketPath;
    std::string m_error;
    int m_fd = -1;
};

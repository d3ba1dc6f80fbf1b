#pragma once

#include <QString>

// The SMTP password in the desktop's secret service (GNOME Keyring, KWallet
// and others that speak the freedesktop Secret Service API), reached through
// libsecret's command secret-tool (Debian's libsecret-tools). When the
// command is missing or no service answers, nothing is stored and the
// password is asked for each time. The password never goes to the settings
// file, and it travels to secret-tool on its standard input, never on a
// command line. Each call waits at most a few seconds.
namespace survey {

class CSecretStore
{
public:
    // The command run; "secret-tool" unless set (an absolute path for tests).
    static QString Command();
    static void SetCommand(const QString& command);

    // Whether the command can be found.
    static bool Available();
    // The stored password of `user` at `server` ("host:port"); false when
    // none is stored or the service cannot be reached.
    static bool Lookup(const QString& server, const QString& user, QString& password);
    // Stores (replaces) it; false when the service cannot take it.
    static bool Store(const QString& server, const QString& user, const QString& password);
    // Removes it; true when nothing is stored afterwards.
    static bool Clear(const QString& server, const QString& user);
};

}  // namespace survey

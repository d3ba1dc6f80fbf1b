#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

#include "nyr/platform/export.h"

class QWidget;

// One running instance of an application per user and desktop login. A
// later start hands its arguments and working directory to the first and
// ends:
//
//   CNyrSingleInstance guard;  // QCoreApplication::applicationName()
//   if (guard.Start(app.arguments().mid(1)) == CNyrSingleInstance::eHandedOver)
//       return 0;
//   connect(&guard, &CNyrSingleInstance::argumentsReceived, ...open the files...);
//   guard.SetWindow(&mainWindow);
//
// The first instance is elected by CNyrInstanceLock (nyr/app/instance_lock.h):
// a crashed first instance frees the place at once, its stale socket is
// removed by the next first instance, and simultaneous starts elect exactly
// one. The first instance listens on a local socket in the user's private
// runtime folder; what arrives there is read with a size limit and a time
// limit, and a peer that sends anything but a message is dropped.
class NYR_EXPORT CNyrSingleInstance : public QObject
{
    Q_OBJECT

public:
    enum eRole
    {
        eNotStarted,
        eFirst,        // this process is the first instance and now listens
        eHandedOver,   // another instance took the arguments: end this one
        eFailed,       // no instance could be reached or become first: ErrorText()
    };

    // How long the first instance waits for a whole message, in ms.
    static constexpr int kReadTimeoutMs = 5000;

    // `appName` "" is QCoreApplication::applicationName(). A QCoreApplication
    // must exist.
    explicit CNyrSingleInstance(const QString& appName = {}, QObject* parent = nullptr);
    ~CNyrSingleInstance() override;
    CNyrSingleInstance(const CNyrSingleInstance&) = delete;
    CNyrSingleInstance& operator=(const CNyrSingleInstance&) = delete;

    // Becomes the first instance, or hands `arguments` (and the current
    // directory) to it and waits for its answer, for at most `timeoutMs`.
    // Arguments beyond the message's limits (4095 of them, 1 MiB in all)
    // are left out.
    // eFailed when the first instance holds its place but does not answer
    // in time (hung, or stopped), or when the runtime folder cannot be
    // used. Call once.
    eRole Start(const QStringList& arguments, int timeoutMs = 5000);
    eRole Role() const;
    // Why Start failed: "NAME is already running but does not answer." or
    // the problem with the lock file.
    QString ErrorText() const;

    // Raised, restored and activated when a later start hands over (may be
    // null).
    void SetWindow(QWidget* window);

signals:
    // In the first instance: a later start's arguments and the directory it
    // was started in (relative file names are relative to it). The later
    // start ends once the handlers have returned.
    void argumentsReceived(const QStringList& arguments, const QString& workingDirectory);

private:
    eRole HandOver(const QByteArray& message, int timeoutMs);
    bool Listen();
    void Accept();

    struct Private;
    std::unique_ptr<Private> d;
};

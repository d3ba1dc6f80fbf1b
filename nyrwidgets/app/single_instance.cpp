#include "nyrwidgets/app/single_instance.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "nyr/app/instance_lock.h"
#include "nyr/app/instance_message.h"
#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/string_format.h"

namespace {

constexpr int kMaxPeers = 16;        // connections read at once; more are dropped
constexpr int kRetryMs = 20;         // between attempts to reach a first instance
constexpr int kConnectMs = 200;      // one attempt
const QByteArray kAnswer = "OK\n";

int Remaining(const QDeadlineTimer& deadline)
{
    return static_cast<int>(std::max<qint64>(0, deadline.remainingTime()));
}

}  // namespace

struct CNyrSingleInstance::Private
{
    explicit Private(const QString& name) : appName(name), lock(name.toStdString()) {}

    QString appName;
    CNyrInstanceLock lock;
    eRole role = eNotStarted;
    QString error;
    QLocalServer server;
    QPointer<QWidget> window;
    int peers = 0;
};

CNyrSingleInstance::CNyrSingleInstance(const QString& appName, QObject* parent)
    : QObject(parent), d(std::make_unique<Private>(appName.isEmpty() ? QCoreApplication::applicationName() : appName))
{
    connect(&d->server, &QLocalServer::newConnection, this, &CNyrSingleInstance::Accept);
}

CNyrSingleInstance::~CNyrSingleInstance() = default;

CNyrSingleInstance::eRole CNyrSingleInstance::Role() const
{
    return d->role;
}

QString CNyrSingleInstance::ErrorText() const
{
    return d->error;
}

void CNyrSingleInstance::SetWindow(QWidget* window)
{
    d->window = window;
}

CNyrSingleInstance::eRole CNyrSingleInstance::Start(const QStringList& arguments, int timeoutMs)
{
    if (d->role != eNotStarted)
        return d->role;
    CNyrInstanceMessage message{QDir::currentPath().toStdString(), {}};
    for (const QString& argument : arguments)
        message.arguments.push_back(argument.toStdString());
    std::string wire = NyrEncodeInstanceMessage(message);
    while (wire.empty() && !message.arguments.empty()) {  // beyond the message's limits
        message.arguments.pop_back();
        wire = NyrEncodeInstanceMessage(message);
    }
    const QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        const int lock = d->lock.TryAcquire();
        if (lock == 1)
            return d->role = Listen() ? eFirst : eFailed;
        if (lock < 0) {
            d->error = QString::fromStdString(d->lock.Error());
            return d->role = eFailed;
        }
        // Another process holds the place. Its socket may not listen yet
        // (it has only just won) or no more (it is ending): try again.
        if (HandOver(QByteArray::fromStdString(wire), Remaining(deadline)) == eHandedOver)
            return d->role = eHandedOver;
        if (deadline.hasExpired()) {
            d->error = QString::fromStdString(
                NyrFormat(NyrLoadString(NYR_IDS_INSTANCE_NOT_ANSWERING).c_str(), d->appName.toStdString().c_str()));
            return d->role = eFailed;
        }
        QThread::msleep(kRetryMs);
    }
}

CNyrSingleInstance::eRole CNyrSingleInstance::HandOver(const QByteArray& message, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(d->lock.SocketPath()));
    if (!socket.waitForConnected(std::min(kConnectMs, Remaining(deadline))))
        return eFailed;
    socket.write(message);
    while (socket.bytesToWrite() > 0 && !deadline.hasExpired())
        if (!socket.waitForBytesWritten(Remaining(deadline)))
            return eFailed;
    QByteArray answer;
    while (answer.size() < kAnswer.size() && !deadline.hasExpired()) {
        if (!socket.waitForReadyRead(Remaining(deadline)))
            break;
        answer += socket.read(kAnswer.size() - answer.size());
    }
    return answer == kAnswer ? eHandedOver : eFailed;
}

bool CNyrSingleInstance::Listen()
{
    const QString path = QString::fromStdString(d->lock.SocketPath());
    QLocalServer::removeServer(path);  // left by a first instance that crashed
    d->server.setSocketOptions(QLocalServer::UserAccessOption);
    if (d->server.listen(path))
        return true;
    d->error = path + ": " + d->server.errorString();
    return false;
}

void CNyrSingleInstance::Accept()
{
    while (QLocalSocket* socket = d->server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (d->peers >= kMaxPeers) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        ++d->peers;
        connect(socket, &QObject::destroyed, this, [this] { --d->peers; });
        // A peer that does not finish its message in time is dropped.
        QTimer::singleShot(kReadTimeoutMs, socket, [socket] { socket->abort(); });
        auto buffer = std::make_shared<std::string>();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, buffer] {
            *buffer += socket->readAll().toStdString();
            CNyrInstanceMessage message;
            const int decoded = NyrDecodeInstanceMessage(*buffer, message);
            if (decoded < 0) {
                socket->abort();
                return;
            }
            if (decoded == 0)
                return;
            QStringList arguments;
            for (const std::string& argument : message.arguments)
                arguments << QString::fromStdString(argument);
            if (QWidget* window = d->window) {
                if (window->isMinimized())
                    window->showNormal();
                window->show();
                window->raise();
                window->activateWindow();
            }
            disconnect(socket, &QLocalSocket::readyRead, this, nullptr);  // one message a connection
            emit argumentsReceived(arguments, QString::fromStdString(message.workingDirectory));
            // Flushed now: a handler may have asked the application to quit.
            socket->write(kAnswer);
            socket->flush();
            socket->disconnectFromServer();
        });
    }
}

#include "apps/nyr-survey/mail/secret_store.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

namespace survey {

namespace {

constexpr int kWaitMs = 5000;

QString& CommandSlot()
{
    static QString command = QStringLiteral("secret-tool");
    return command;
}

QStringList Attributes(const QString& server, const QString& user)
{
    return {"application", "nyr-survey", "server", server, "user", user};
}

// Runs the command with `input` on its standard input; the exit code, or
// -1 when it could not run or did not end in time (it is killed then).
int Run(const QStringList& arguments, const QByteArray& input, QByteArray* output)
{
    QProcess process;
    process.start(CommandSlot(), arguments);
    if (!process.waitForStarted(kWaitMs))
        return -1;
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(kWaitMs)) {
        process.kill();
        process.waitForFinished(kWaitMs);
        return -1;
    }
    if (output)
        *output = process.readAllStandardOutput();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

}  // namespace

QString CSecretStore::Command()
{
    return CommandSlot();
}

void CSecretStore::SetCommand(const QString& command)
{
    CommandSlot() = command;
}

bool CSecretStore::Available()
{
    const QString& command = CommandSlot();
    return !command.isEmpty() && !QStandardPaths::findExecutable(command).isEmpty();
}

bool CSecretStore::Lookup(const QString& server, const QString& user, QString& password)
{
    QByteArray output;
    if (!Available() || Run(QStringList{"lookup"} + Attributes(server, user), {}, &output) != 0 || output.isEmpty())
        return false;
    if (output.endsWith('\n'))
        output.chop(1);
    password = QString::fromUtf8(output);
    return true;
}

bool CSecretStore::Store(const QString& server, const QString& user, const QString& password)
{
    const QStringList arguments =
        QStringList{"store", "--label", "Nyr Survey SMTP " + user + "@" + server} + Attributes(server, user);
    return Available() && Run(arguments, password.toUtf8(), nullptr) == 0;
}

bool CSecretStore::Clear(const QString& server, const QString& user)
{
    return Available() && Run(QStringList{"clear"} + Attributes(server, user), {}, nullptr) == 0;
}

}  // namespace survey

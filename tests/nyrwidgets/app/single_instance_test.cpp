#include "nyrwidgets/app/single_instance.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSet>
#include <QWidget>
#include <memory>
#include <vector>

#include "nyr/app/instance_lock.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;

constexpr int kWaitMs = 30000;  // a bound for hung processes, not a speed limit

// One start of the helper application, a real process.
class Instance
{
public:
    Instance(const TempDir& runtime, const QStringList& arguments, const QString& directory = {},
             const QString& session = "test", int answerTimeoutMs = 10000)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(runtime.Path()));
        environment.insert("XDG_SESSION_ID", session);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("NYR_TEST_TIMEOUT_MS", QString::number(answerTimeoutMs));
        m_process.setProcessEnvironment(environment);
        if (!directory.isEmpty())
            m_process.setWorkingDirectory(directory);
        m_process.start(NYR_SINGLE_INSTANCE_HELPER, QStringList("survey") + arguments);
    }
    ~Instance()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(kWaitMs);
        }
    }

    // The next line the process prints; "" when none comes.
    QString Line()
    {
        const QDeadlineTimer deadline(kWaitMs);
        while (!m_process.canReadLine() && !deadline.hasExpired())
            if (!m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
                break;
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }
    // The exit code; -1 when it crashed or did not end.
    int Finish()
    {
        if (!m_process.waitForFinished(kWaitMs) && m_process.state() != QProcess::NotRunning)
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    qint64 Pid() const { return m_process.processId(); }
    QProcess& Process() { return m_process; }

private:
    QProcess m_process;
};

struct SingleInstanceFixture : ::testing::Test
{
    TempDir runtime;
    void SetUp() override { chmod(runtime.Path().c_str(), 0700); }

    // The socket path the helper's guard uses.
    QString SocketPath()
    {
        setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1);
        setenv("XDG_SESSION_ID", "test", 1);
        QString path = QString::fromStdString(CNyrInstanceLock("survey").SocketPath());
        unsetenv("XDG_RUNTIME_DIR");
        return path;
    }
    // Every test ends its first instance this way, which also checks that the
    // answer reaches a later start whose arguments make the first one quit.
    void Quit(Instance& first)
    {
        Instance quit(runtime, {"--quit"});
        EXPECT_EQ(quit.Line(), "handed over");
        EXPECT_EQ(first.Finish(), 0);
    }
};

TEST_F(SingleInstanceFixture, ALaterStartHandsItsArgumentsAndDirectoryToTheFirst)
{
    Instance first(runtime, {"own.nyr"});
    ASSERT_EQ(first.Line(), "first");

    TempDir work;
    const QString directory = QFileInfo(QString::fromStdString(work.Path())).canonicalFilePath();
    Instance second(runtime, {"two.nyr", QString::fromUtf8("Grüße mit Leerzeichen.csv"), ""}, directory);
    EXPECT_EQ(second.Line(), "handed over");
    EXPECT_EQ(second.Finish(), 0);
    EXPECT_EQ(first.Line(), "args " + directory + QString::fromUtf8("|two.nyr|Grüße mit Leerzeichen.csv|"));

    // Another desktop login of the same user has an instance of its own.
    Instance other(runtime, {}, {}, "other-login");
    EXPECT_EQ(other.Line(), "first");
    Quit(first);
}

// This test process is the first instance, with a minimised window; a real
// later start reaches it.
TEST_F(SingleInstanceFixture, TheFirstInstanceRestoresItsWindowAndGetsTheArguments)
{
    setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1);
    setenv("XDG_SESSION_ID", "test", 1);
    CNyrSingleInstance guard("survey");
    EXPECT_EQ(guard.Start({}), CNyrSingleInstance::eFirst);
    EXPECT_EQ(guard.Start({}), CNyrSingleInstance::eFirst);  // once only
    unsetenv("XDG_RUNTIME_DIR");
    QWidget window;
    window.showMinimized();
    guard.SetWindow(&window);
    QStringList received;
    bool minimizedWhenTold = true;
    QObject::connect(&guard, &CNyrSingleInstance::argumentsReceived, [&](const QStringList& arguments, const QString&) {
        received = arguments;
        minimizedWhenTold = window.isMinimized();
    });

    Instance later(runtime, {"plan.nyr"});
    const QDeadlineTimer deadline(kWaitMs);
    while (later.Process().state() != QProcess::NotRunning && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(later.Line(), "handed over");
    EXPECT_EQ(received, QStringList{"plan.nyr"});
    EXPECT_FALSE(minimizedWhenTold);
    EXPECT_TRUE(window.isVisible());
}

TEST_F(SingleInstanceFixture, AKilledFirstInstanceLeavesNothingInTheWay)
{
    {
        Instance crashed(runtime, {});
        ASSERT_EQ(crashed.Line(), "first");
        kill(static_cast<pid_t>(crashed.Pid()), SIGKILL);
        EXPECT_EQ(crashed.Finish(), -1);
    }
    EXPECT_TRUE(QFileInfo::exists(SocketPath()));  // its socket is still there

    Instance next(runtime, {});
    ASSERT_EQ(next.Line(), "first");
    Instance later(runtime, {"x"});
    EXPECT_EQ(later.Line(), "handed over");
    EXPECT_TRUE(next.Line().endsWith("|x"));
    Quit(next);
}

TEST_F(SingleInstanceFixture, TenSimultaneousStartsElectExactlyOne)
{
    std::vector<std::unique_ptr<Instance>> starts;
    for (int i = 0; i < 10; ++i)
        starts.push_back(std::make_unique<Instance>(runtime, QStringList{"n" + QString::number(i)}));
    Instance* first = nullptr;
    QSet<QString> handedOver;
    for (int i = 0; i < 10; ++i) {
        const QString line = starts[i]->Line();
        if (line == "first") {
            EXPECT_EQ(first, nullptr) << "a second first instance";
            first = starts[i].get();
        } else {
            EXPECT_EQ(line, "handed over") << i;
            EXPECT_EQ(starts[i]->Finish(), 0);
            handedOver << "n" + QString::number(i);
        }
    }
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(handedOver.size(), 9);
    QSet<QString> received;
    for (int i = 0; i < 9; ++i)
        received << first->Line().section('|', 1);
    EXPECT_EQ(received, handedOver);
    Quit(*first);
}

// Peers that are not later starts: garbage, a message that announces more
// than the limit, one that never finishes, a crowd. None stops the first
// instance from taking the next real start.
TEST_F(SingleInstanceFixture, HostilePeersDoNotStopTheFirstInstance)
{
    Instance first(runtime, {});
    ASSERT_EQ(first.Line(), "first");
    const QString path = SocketPath();
    const QByteArray peers[] = {
        "GET / HTTP/1.1\r\n\r\n",
        QByteArray("NYRI\x01\0\0\0\xff\xff\xff\x7f", 12),
        QByteArray("NYRI\x02\0\0\0\x01\0\0\0", 12),  // stops half-way
        QByteArray(1 << 20, 'N'),
    };
    std::vector<std::unique_ptr<QLocalSocket>> sockets;
    for (int round = 0; round < 10; ++round)
        for (const QByteArray& bytes : peers) {
            sockets.push_back(std::make_unique<QLocalSocket>());
            sockets.back()->connectToServer(path);
            if (sockets.back()->waitForConnected(kWaitMs)) {
                sockets.back()->write(bytes);
                sockets.back()->waitForBytesWritten(100);
            }
        }
    Instance real(runtime, {"still here"});
    EXPECT_EQ(real.Line(), "handed over");
    EXPECT_TRUE(first.Line().endsWith("|still here"));
    sockets.clear();
    Quit(first);
}

TEST_F(SingleInstanceFixture, AFirstInstanceThatDoesNotAnswerIsReported)
{
    Instance first(runtime, {});
    ASSERT_EQ(first.Line(), "first");
    kill(static_cast<pid_t>(first.Pid()), SIGSTOP);
    Instance second(runtime, {"x"}, {}, "test", 500);
    EXPECT_EQ(second.Line(), "failed: survey is already running but does not answer.");
    EXPECT_EQ(second.Finish(), 3);
    kill(static_cast<pid_t>(first.Pid()), SIGCONT);
    Quit(first);
}

}  // namespace

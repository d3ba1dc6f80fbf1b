#include "nyr/app/instance_lock.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;

// The runtime folder of the test, and the login, for the duration of a test.
struct LockFixture : ::testing::Test
{
    TempDir dir;
    void SetUp() override
    {
        chmod(dir.Path().c_str(), 0700);
        setenv("XDG_RUNTIME_DIR", dir.Path().c_str(), 1);
        setenv("XDG_SESSION_ID", "7", 1);
    }
    void TearDown() override { unsetenv("XDG_RUNTIME_DIR"); }
};

int ExitCode(pid_t pid)
{
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(LockFixture, NamesTheFilesPerApplicationUserAndLogin)
{
    CNyrInstanceLock lock("nyr survey/../x");
    EXPECT_EQ(lock.LockPath().rfind(dir.Path() + "/nyr_survey_.._x-", 0), 0u) << lock.LockPath();
    EXPECT_EQ(lock.SocketPath(), lock.LockPath().substr(0, lock.LockPath().size() - 5) + ".sock");

    setenv("XDG_SESSION_ID", "8", 1);  // another desktop login of the same user
    EXPECT_NE(CNyrInstanceLock("nyr survey/../x").LockPath(), lock.LockPath());

    // A runtime folder others may enter is not used.
    chmod(dir.Path().c_str(), 0755);
    EXPECT_EQ(CNyrInstanceLock::RuntimeFolder(), "/tmp/nyr240-" + std::to_string(geteuid()));
    setenv("XDG_RUNTIME_DIR", "relative/run", 1);
    EXPECT_EQ(CNyrInstanceLock::RuntimeFolder(), "/tmp/nyr240-" + std::to_string(geteuid()));

    // A socket path that cannot be bound is refused up front.
    const std::string deep = dir.File(std::string(100, 'd'));
    mkdir(deep.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
    CNyrInstanceLock tooLong("app");
    EXPECT_EQ(tooLong.TryAcquire(), -1);
    EXPECT_NE(tooLong.Error().find("too long"), std::string::npos);
}

TEST_F(LockFixture, TenSimultaneousProcessesElectExactlyOne)
{
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < 10; ++i) {
        const pid_t pid = fork();
        if (pid == 0) {
            close(go[1]);
            char c;
            (void)!read(go[0], &c, 1);  // all start together when the pipe closes
            CNyrInstanceLock lock("race");
            const int result = lock.TryAcquire();
            sleep(1);  // hold it while the others try
            _exit(result + 1);
        }
        children.push_back(pid);
    }
    close(go[0]);
    close(go[1]);
    int first = 0, others = 0;
    for (const pid_t pid : children) {
        const int code = ExitCode(pid);
        first += code == 2;
        others += code == 1;
    }
    EXPECT_EQ(first, 1);
    EXPECT_EQ(others, 9);
}

TEST_F(LockFixture, KilledHolderFreesTheLockAndProgramsItStartedDoNotHoldIt)
{
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    char c;
    if (holder == 0) {
        close(ready[0]);
        CNyrInstanceLock lock("crash");
        if (lock.TryAcquire() != 1)
            _exit(1);
        // A program the instance starts, which outlives it. The pipe closes
        // at its exec, when the descriptors marked close-on-exec go.
        int execed[2];
        if (pipe2(execed, O_CLOEXEC) != 0)
            _exit(1);
        const pid_t program = fork();
        if (program == 0) {
            const int null = open("/dev/null", O_RDWR);  // not the test's output, which CTest waits on
            dup2(null, 1);
            dup2(null, 2);
            execl("/bin/sleep", "sleep", "30", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(execed[1]);
        (void)!read(execed[0], &c, 1);
        (void)!write(ready[1], &program, sizeof program);
        pause();
    }
    close(ready[1]);
    pid_t program = 0;
    ASSERT_EQ(read(ready[0], &program, sizeof program), static_cast<ssize_t>(sizeof program));
    close(ready[0]);

    CNyrInstanceLock lock("crash");
    EXPECT_EQ(lock.TryAcquire(), 0);
    kill(holder, SIGKILL);
    EXPECT_EQ(ExitCode(holder), -1);
    EXPECT_EQ(lock.TryAcquire(), 1);  // the sleeping grandchild inherited no lock
    EXPECT_EQ(lock.TryAcquire(), 1);
    EXPECT_TRUE(lock.IsHeld());
    lock.Release();
    EXPECT_FALSE(lock.IsHeld());
    kill(program, SIGKILL);  // reparented, so not ours to wait for
}

}  // namespace

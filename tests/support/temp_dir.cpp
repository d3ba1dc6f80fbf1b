#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace nyr::test {

TempDir::TempDir()
{
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/nyr-test-XXXXXX";
    if (!mkdtemp(pattern.data()))
        ADD_FAILURE() << "cannot create a temporary folder from " << pattern;
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(m_path, ignored);
}

std::string TempDir::File(const std::string& name) const
{
    return m_path + "/" + name;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

}  // namespace nyr::test

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

extern char** environ;

namespace nyr::test {

ProcessResult RunProcess(const std::vector<std::string>& argv, const std::string& input, int limitSeconds)
{
    ProcessResult result;
    int in[2], out[2], err[2];
    if (pipe2(in, O_CLOEXEC) || pipe2(out, O_CLOEXEC) || pipe2(err, O_CLOEXEC))
        return result;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    std::vector<char*> args;
    for (const auto& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    close(err[1]);
    if (spawned != 0) {
        close(in[1]);
        close(out[0]);
        close(err[0]);
        return result;
    }
    std::size_t written = 0;
    if (input.empty()) {
        close(in[1]);
        in[1] = -1;
    }
    pollfd fds[3] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}, {in[1], POLLOUT, 0}};
    int open = 2;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limitSeconds);
    while (open > 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const int ready = left.count() > 0 ? poll(fds, in[1] >= 0 ? 3 : 2, static_cast<int>(left.count())) : 0;
        if (ready == 0) {
            kill(pid, SIGKILL);
            result.timedOut = true;
            break;
        }
        if (ready < 0)
            break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP)))
                continue;
            char buffer[65536];
            const ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
            if (n <= 0) {
                close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            } else {
                (i == 0 ? result.out : result.err).append(buffer, static_cast<std::size_t>(n));
            }
        }
        if (in[1] >= 0 && (fds[2].revents & (POLLOUT | POLLERR))) {
            const ssize_t n = write(in[1], input.data() + written, input.size() - written);
            if (n > 0)
                written += static_cast<std::size_t>(n);
            if (n <= 0 || written == input.size()) {
                close(in[1]);
                in[1] = -1;
                fds[2].fd = -1;
            }
        }
    }
    for (int fd : {in[1], fds[0].fd, fds[1].fd})
        if (fd >= 0)
            close(fd);
    int status = 0;
    waitpid(pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

LockHolder::LockHolder(const std::string& path)
{
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0)
        return;
    const pid_t pid = fork();
    if (pid == 0) {
        const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        const char ok = fd >= 0 && flock(fd, LOCK_EX) == 0 ? 1 : 0;
        (void)!write(ready[1], &ok, 1);
        for (;;)
            pause();
    }
    close(ready[1]);
    char ok = 0;
    const bool held = pid > 0 && read(ready[0], &ok, 1) == 1 && ok == 1;
    close(ready[0]);
    m_pid = pid;
    if (!held)
        Release();
}

LockHolder::~LockHolder()
{
    Release();
}

void LockHolder::Release()
{
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

void LockHolder::Stop()
{
    if (m_pid > 0)
        kill(m_pid, SIGSTOP);
}

}  // namespace nyr::test

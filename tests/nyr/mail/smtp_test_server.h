#pragma once

// Servers for the SMTP tests, all on 127.0.0.1 and all bounded in time:
//  - SmtpTestServer: the real aiosmtpd (Debian's python3-aiosmtpd) run by
//    /usr/bin/python3 from smtp_server.py, optionally with TLS and AUTH;
//  - SmtpSink: Postfix's smtp-sink, which dumps what it receives;
//  - ScriptedSmtpServer: one connection served by a script of the test's
//    own, for the faults a real server will not produce.
// Header-only so that the library tests and the nyr tool's tests share it.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/temp_dir.h"

extern char** environ;

namespace nyr::test {

struct ReceivedMail
{
    std::string data;      // the DATA section as received, dot-unstuffed
    std::string envelope;  // JSON: {"from": ..., "to": [...], "login": ...}
};

class SmtpTestServer
{
public:
    // `options` are smtp_server.py's (--cert, --key, --implicit-tls, --user, ...).
    explicit SmtpTestServer(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> argv = {"/usr/bin/python3", NYR_SOURCE_DIR "/tests/nyr/mail/smtp_server.py",
                                         m_dir.Path()};
        argv.insert(argv.end(), options.begin(), options.end());
        std::vector<char*> args;
        for (auto& a : argv)
            args.push_back(a.data());
        args.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        // Its log: aiosmtpd reports refused handshakes with a traceback.
        posix_spawn_file_actions_addopen(&actions, 2, (m_dir.Path() + ".log").c_str(), O_WRONLY | O_CREAT, 0644);
        if (posix_spawn(&m_pid, args[0], &actions, nullptr, args.data(), environ) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&actions);
        // A server that does not listen within 20 s is a failed fixture: Port() stays 0.
        for (int i = 0; m_pid > 0 && i < 2000 && !m_port; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            if (const std::string port = ReadFile(m_dir.File("port")); !port.empty())
                m_port = static_cast<unsigned>(std::stoul(port));
        }
    }

    ~SmtpTestServer()
    {
        if (m_pid > 0 && kill(m_pid, SIGTERM) == 0)
            waitpid(m_pid, nullptr, 0);
        std::filesystem::remove(m_dir.Path() + ".log");
    }

    SmtpTestServer(const SmtpTestServer&) = delete;
    SmtpTestServer& operator=(const SmtpTestServer&) = delete;

    // 0 when the server did not start.
    unsigned Port() const { return m_port; }

    // The messages received so far, waiting up to 10 s until there are `count`.
    std::vector<ReceivedMail> Messages(std::size_t count = 0) const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        std::vector<ReceivedMail> mails;
        for (;;) {
            mails.clear();
            for (int i = 1;; ++i) {
                char name[16];
                std::snprintf(name, sizeof name, "%04d", i);
                const std::string base = m_dir.File(name);
                if (!std::filesystem::exists(base + ".json"))
                    break;
                mails.push_back({ReadFile(base + ".eml"), ReadFile(base + ".json")});
            }
            if (mails.size() >= count || std::chrono::steady_clock::now() > deadline)
                return mails;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

private:
    TempDir m_dir;
    pid_t m_pid = -1;
    unsigned m_port = 0;
};

// Postfix's smtp-sink (Debian's postfix) on a free port: it offers
// PIPELINING and appends each transaction to one dump file, lines as
// received (dots not removed) ended by LF after headers of its own.
class SmtpSink
{
public:
    SmtpSink()
    {
        const char* program = "/usr/sbin/smtp-sink";
        if (access(program, X_OK) != 0)
            return;
        chmod(m_dir.Path().c_str(), 0777);  // it writes as the postfix user when started by root
        for (int attempt = 0; attempt < 5 && !m_port; ++attempt) {
            const unsigned port = FreePort();
            // Through a watcher that ends it with the test, however the test ends.
            std::vector<std::string> argv = {"/usr/bin/python3", NYR_SOURCE_DIR "/tests/nyr/mail/smtp_sink.py", "-D",
                                             m_dir.File("dump"), "127.0.0.1:" + std::to_string(port), "64"};
            if (geteuid() == 0)
                argv.insert(argv.begin() + 2, {"-u", "postfix"});
            std::vector<char*> args;
            for (auto& a : argv)
                args.push_back(a.data());
            args.push_back(nullptr);
            if (posix_spawn(&m_pid, args[0], nullptr, nullptr, args.data(), environ) != 0) {
                m_pid = -1;
                return;
            }
            for (int i = 0; i < 200 && !m_port; ++i) {  // 2 s to listen
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                if (Listening(port))
                    m_port = port;
            }
            if (!m_port)
                Stop();
        }
    }
    ~SmtpSink() { Stop(); }
    SmtpSink(const SmtpSink&) = delete;
    SmtpSink& operator=(const SmtpSink&) = delete;

    // 0 when smtp-sink is not installed or did not start.
    unsigned Port() const { return m_port; }

    // The dumped transactions so far, each from its first line of its own
    // headers ("X-Client-Addr: ...") on; waits up to 10 s until there are `count`.
    std::vector<std::string> Transactions(std::size_t count) const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        for (;;) {
            const std::string dump = ReadFile(m_dir.File("dump"));
            std::vector<std::string> transactions;
            for (std::size_t at = dump.find("X-Client-Addr: "); at != std::string::npos;) {
                const std::size_t next = dump.find("\nX-Client-Addr: ", at);
                transactions.push_back(dump.substr(at, next == std::string::npos ? std::string::npos : next + 1 - at));
                at = next == std::string::npos ? next : next + 1;
            }
            if (transactions.size() >= count || std::chrono::steady_clock::now() > deadline)
                return transactions;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

private:
    static unsigned FreePort()
    {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        unsigned port = 0;
        if (bind(fd, reinterpret_cast<sockaddr*>(&address), length) == 0 &&
            getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
            port = ntohs(address.sin_port);
        close(fd);
        return port;
    }
    static bool Listening(unsigned port)
    {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        close(fd);
        return ok;
    }
    void Stop()
    {
        if (m_pid > 0 && kill(m_pid, SIGTERM) == 0)
            waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }

    TempDir m_dir;
    pid_t m_pid = -1;
    unsigned m_port = 0;
};

// One connection on a free port of 127.0.0.1, served on a thread by the
// test's script. Every read gives up after 10 s, so a script never hangs.
class ScriptedSmtpServer
{
public:
    class Connection
    {
    public:
        explicit Connection(int fd) : m_fd(fd) {}
        // Sends all of `text`; false when the client has gone.
        bool Send(const std::string& text)
        {
            std::size_t sent = 0;
            while (sent < text.size()) {
                const ssize_t n = send(m_fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
                if (n <= 0)
                    return false;
                sent += static_cast<std::size_t>(n);
            }
            return true;
        }
        // Reads until `terminator` has arrived (returned with it), or the
        // client closes or 10 s pass (returns what came).
        std::string ReadUntil(const std::string& terminator)
        {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            for (;;) {
                if (const auto at = m_buffer.find(terminator); at != std::string::npos) {
                    std::string got = m_buffer.substr(0, at + terminator.size());
                    m_buffer.erase(0, at + terminator.size());
                    return got;
                }
                if (!Fill(deadline)) {
                    std::string got;
                    got.swap(m_buffer);
                    return got;
                }
            }
        }
        std::string ReadLine() { return ReadUntil("\r\n"); }
        // Reads one line as a lax server does: ended by CR LF, a bare LF or a
        // bare CR, returned without its end. False when the client closes or
        // 10 s pass without a line end.
        bool ReadLaxLine(std::string& line)
        {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            for (;;) {
                if (m_skipLf && !m_buffer.empty()) {
                    if (m_buffer[0] == '\n')
                        m_buffer.erase(0, 1);
                    m_skipLf = false;
                }
                const auto end = m_buffer.find_first_of("\r\n");
                if (end != std::string::npos) {
                    line = m_buffer.substr(0, end);
                    const bool crlf = m_buffer[end] == '\r' && end + 1 < m_buffer.size() && m_buffer[end + 1] == '\n';
                    m_skipLf = m_buffer[end] == '\r' && end + 1 == m_buffer.size();
                    m_buffer.erase(0, end + (crlf ? 2 : 1));
                    return true;
                }
                if (!Fill(deadline))
                    return false;
            }
        }
        // The lines that have arrived whole (each with its CR LF), reading
        // more only when there is none; false when the client closes or 10 s
        // pass without a line. The buffer is cut once per read, so a stream
        // of millions of lines costs no more than reading it.
        bool ReadLines(std::vector<std::string>& lines)
        {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            lines.clear();
            for (;;) {
                std::size_t at = 0;
                for (std::size_t end; (end = m_buffer.find("\r\n", at)) != std::string::npos; at = end + 2)
                    lines.push_back(m_buffer.substr(at, end + 2 - at));
                m_buffer.erase(0, at);
                if (!lines.empty())
                    return true;
                if (!Fill(deadline))
                    return false;
            }
        }
        // Shrinks the server's send buffer to about `bytes` (and stops the
        // kernel from growing it): a client that does not take the replies
        // in soon stalls the server's writes, and with them its reading.
        void SmallSendBuffer(int bytes) { setsockopt(m_fd, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes); }
        // True when the client closes within 10 s.
        bool WaitClosed()
        {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            while (Fill(deadline)) {
            }
            return m_closed;
        }
        // Ends the server's side of the stream (the client reads its end)
        // while what the client still sends can be read.
        void ShutdownWrite() { shutdown(m_fd, SHUT_WR); }
        // Makes the close at the end of the script a reset (RST) instead of
        // an orderly close.
        void Reset()
        {
            const linger hard{1, 0};
            setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        }

    private:
        bool Fill(std::chrono::steady_clock::time_point deadline)
        {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            pollfd p{m_fd, POLLIN, 0};
            if (left.count() <= 0 || poll(&p, 1, static_cast<int>(left.count())) <= 0)
                return false;
            char buffer[65536];
            const ssize_t n = recv(m_fd, buffer, sizeof buffer, 0);
            if (n <= 0) {
                m_closed = true;
                return false;
            }
            m_buffer.append(buffer, static_cast<std::size_t>(n));
            return true;
        }
        int m_fd;
        std::string m_buffer;
        bool m_closed = false;
        bool m_skipLf = false;  // a line ended by CR at the end of the buffer: a LF that follows belongs to it
    };

    // `family`: AF_INET (127.0.0.1) or AF_INET6 (::1). Port() is 0 when the
    // loopback address of that family cannot be bound.
    explicit ScriptedSmtpServer(std::function<void(Connection&)> script, int family = AF_INET)
    {
        m_listener = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_storage address{};
        socklen_t length;
        if (family == AF_INET6) {
            auto* a = reinterpret_cast<sockaddr_in6*>(&address);
            a->sin6_family = AF_INET6;
            a->sin6_addr = in6addr_loopback;
            length = sizeof *a;
        } else {
            auto* a = reinterpret_cast<sockaddr_in*>(&address);
            a->sin_family = AF_INET;
            a->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            length = sizeof *a;
        }
        if (m_listener < 0 || bind(m_listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            listen(m_listener, 4) != 0 || getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
            return;
        m_port = ntohs(family == AF_INET6 ? reinterpret_cast<sockaddr_in6*>(&address)->sin6_port
                                          : reinterpret_cast<sockaddr_in*>(&address)->sin_port);
        m_thread = std::thread([this, script = std::move(script)] {
            pollfd p{m_listener, POLLIN, 0};
            if (poll(&p, 1, 10000) <= 0)
                return;
            const int fd = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0)
                return;
            Connection connection(fd);
            script(connection);
            close(fd);
        });
    }

    ~ScriptedSmtpServer()
    {
        if (m_thread.joinable())
            m_thread.join();
        if (m_listener >= 0)
            close(m_listener);
    }

    ScriptedSmtpServer(const ScriptedSmtpServer&) = delete;
    ScriptedSmtpServer& operator=(const ScriptedSmtpServer&) = delete;

    unsigned Port() const { return m_port; }
    // Waits for the script to end (at most its own bounded reads).
    void Join()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    int m_listener = -1;
    unsigned m_port = 0;
    std::thread m_thread;
};

}  // namespace nyr::test

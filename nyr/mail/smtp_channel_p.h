#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The byte stream under CNyrSmtp: a TCP connection over IPv4 or IPv6 that
// can be switched to TLS. The socket is non-blocking inside; every call
// waits at most its time-out (milliseconds, 0: no limit). Failures leave an
// errno value in errno: ETIMEDOUT when the time-out ran out. SIGPIPE is
// never raised, with or without TLS.
class CNyrSmtpChannel
{
public:
    // The moment a wait must end by: one for a whole reply or handshake,
    // however many receives it takes.
    struct Deadline
    {
        std::chrono::steady_clock::time_point at;
        bool limited = false;
        // `timeoutMs` from now; 0: no limit.
        static Deadline In(unsigned timeoutMs)
        {
            return {std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), timeoutMs != 0};
        }
    };

    CNyrSmtpChannel();
    ~CNyrSmtpChannel();
    CNyrSmtpChannel(const CNyrSmtpChannel&) = delete;
    CNyrSmtpChannel& operator=(const CNyrSmtpChannel&) = delete;

    enum eOpen
    {
        OPEN_DONE,
        OPEN_NO_SOCKET,   // no socket could be created for any address
        OPEN_NO_CONNECT,  // the name did not resolve, or no address took the connection in time
    };
    // Resolves `host` (name or address literal) and connects to the first
    // address that answers within the time-out, which spans all addresses.
    eOpen Open(const std::string& host, unsigned port, unsigned timeoutMs);

    enum eTls
    {
        TLS_DONE,
        TLS_FAILED,     // handshake failed or timed out
        TLS_UNTRUSTED,  // the server's certificate chain or name did not verify
    };
    // Runs a TLS (1.2 or later) client handshake on the open connection,
    // within one time-out for the whole handshake. The certificate must chain
    // to the system's trusted roots or to the certificates of `trustPem` (PEM
    // text; when not empty it must hold at least one) and name `host` (a DNS
    // name or an IP address literal).
    eTls StartTls(const std::string& host, const std::string& trustPem, unsigned timeoutMs);

    // One receive of at most `size` bytes: their number, 0 at the end of the
    // stream, -1 on failure (ETIMEDOUT once the deadline has passed).
    long Receive(char* buffer, std::size_t size, const Deadline& deadline);
    long Receive(char* buffer, std::size_t size, unsigned timeoutMs)
    {
        return Receive(buffer, size, Deadline::In(timeoutMs));
    }

    // Sends all of the pieces, in order and as one stream (empty ones are
    // skipped). The time-out applies to each wait for the peer to take more:
    // a stalled peer fails, a slow one does not. With `received`, whatever
    // the peer sends meanwhile is appended to it (up to `maxReceived` bytes
    // in all), so a peer that answers while the client still writes is never
    // stalled on a full buffer, nor the client on it.
    bool Send(std::vector<std::string_view> pieces, unsigned timeoutMs, std::string* received = nullptr,
              std::size_t maxReceived = 0);

    bool IsOpen() const { return m_fd >= 0; }
    bool IsSecure() const { return m_ssl != nullptr; }
    void Close();

private:
    // Waits for `events`; false with errno ETIMEDOUT once the deadline passed.
    bool WaitUntil(short events, const Deadline& deadline);
    // One write of pieces[first...] without waiting: the bytes written (the
    // pieces advanced), 0 when blocked (`events` tells on what), -1 on failure.
    long WriteSome(std::vector<std::string_view>& pieces, std::size_t& first, short& events);
    // One read without waiting, appended to `received` (below `maxReceived`):
    // the bytes read, 0 when none are there, -2 at the end of the stream, -1 on failure.
    long ReadSome(std::string& received, std::size_t maxReceived);

    int m_fd = -1;
    struct ssl_ctx_st* m_ctx = nullptr;
    struct ssl_st* m_ssl = nullptr;
};

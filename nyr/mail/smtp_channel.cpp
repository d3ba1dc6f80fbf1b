#include "nyr/mail/smtp_channel_p.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Milliseconds left until the deadline for poll(): -1 without a limit.
int Remaining(const CNyrSmtpChannel::Deadline& deadline)
{
    if (!deadline.limited)
        return -1;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline.at - Clock::now()).count();
    return left > 0 ? static_cast<int>(std::min<long long>(left, 1 << 30)) : 0;
}

// A socket BIO that sends with MSG_NOSIGNAL: OpenSSL's own writes with
// write(), which raises SIGPIPE when the server has gone.
int BioWrite(BIO* bio, const char* data, std::size_t length, std::size_t* written)
{
    BIO_clear_retry_flags(bio);
    const int fd = static_cast<int>(reinterpret_cast<std::intptr_t>(BIO_get_data(bio)));
    const ssize_t n = send(fd, data, length, MSG_NOSIGNAL);
    if (n >= 0) {
        *written = static_cast<std::size_t>(n);
        return 1;
    }
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
        BIO_set_retry_write(bio);
    return 0;
}

int BioRead(BIO* bio, char* data, std::size_t length, std::size_t* read)
{
    BIO_clear_retry_flags(bio);
    const int fd = static_cast<int>(reinterpret_cast<std::intptr_t>(BIO_get_data(bio)));
    const ssize_t n = recv(fd, data, length, 0);
    if (n > 0) {
        *read = static_cast<std::size_t>(n);
        return 1;
    }
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
        BIO_set_retry_read(bio);
    return 0;
}

long BioCtrl(BIO*, int command, long, void*)
{
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

int BioCreate(BIO* bio)
{
    BIO_set_init(bio, 1);
    return 1;
}

BIO_METHOD* SocketBioMethod()
{
    // Made once, kept for the process.
    static BIO_METHOD* method = [] {
        BIO_METHOD* m = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "nyr smtp socket");
        BIO_meth_set_write_ex(m, BioWrite);
        BIO_meth_set_read_ex(m, BioRead);
        BIO_meth_set_ctrl(m, BioCtrl);
        BIO_meth_set_create(m, BioCreate);
        return m;
    }();
    return method;
}

// Adds the certificates of PEM text to the context's trust store: false when
// it holds none.
bool TrustPem(SSL_CTX* context, const std::string& pem)
{
    BIO* bio = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
    STACK_OF(X509_INFO)* infos = bio ? PEM_X509_INFO_read_bio(bio, nullptr, nullptr, nullptr) : nullptr;
    int added = 0;
    for (int i = 0; infos && i < sk_X509_INFO_num(infos); ++i) {
        X509* certificate = sk_X509_INFO_value(infos, i)->x509;
        added += certificate && X509_STORE_add_cert(SSL_CTX_get_cert_store(context), certificate) == 1;
    }
    sk_X509_INFO_pop_free(infos, X509_INFO_free);
    BIO_free(bio);
    return added > 0;
}

bool IsAddressLiteral(const std::string& host)
{
    unsigned char buffer[sizeof(in6_addr)];
    return inet_pton(AF_INET, host.c_str(), buffer) == 1 || inet_pton(AF_INET6, host.c_str(), buffer) == 1;
}

}  // namespace

CNyrSmtpChannel::CNyrSmtpChannel() = default;

CNyrSmtpChannel::~CNyrSmtpChannel()
{
    Close();
}

CNyrSmtpChannel::eOpen CNyrSmtpChannel::Open(const std::string& host, unsigned port, unsigned timeoutMs)
{
    Close();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* found = nullptr;
    const std::string service = std::to_string(port);
    if (getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0 || !found) {
        errno = EHOSTUNREACH;
        return OPEN_NO_CONNECT;
    }
    const Deadline deadline = Deadline::In(timeoutMs);
    bool anySocket = false;
    int error = ECONNREFUSED;
    for (const addrinfo* a = found; a && m_fd < 0; a = a->ai_next) {
        const int fd = socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
        if (fd < 0) {
            error = errno;
            continue;
        }
        anySocket = true;
        if (connect(fd, a->ai_addr, a->ai_addrlen) != 0) {
            if (errno != EINPROGRESS) {
                error = errno;
                close(fd);
                continue;
            }
            pollfd p{fd, POLLOUT, 0};
            int ready;
            do
                ready = poll(&p, 1, Remaining(deadline));
            while (ready < 0 && errno == EINTR);
            int status = ready > 0 ? 0 : ETIMEDOUT;
            socklen_t length = sizeof status;
            if (ready > 0 && getsockopt(fd, SOL_SOCKET, SO_ERROR, &status, &length) != 0)
                status = errno;
            if (status != 0) {
                error = status;
                close(fd);
                continue;
            }
        }
        // Commands and replies alternate: small writes must not wait for an ACK.
        const int one = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        m_fd = fd;
    }
    freeaddrinfo(found);
    if (m_fd >= 0)
        return OPEN_DONE;
    errno = error;
    return anySocket ? OPEN_NO_CONNECT : OPEN_NO_SOCKET;
}

CNyrSmtpChannel::eTls CNyrSmtpChannel::StartTls(const std::string& host, const std::string& trustPem,
                                                unsigned timeoutMs)
{
    if (m_fd < 0 || m_ssl) {
        errno = ENOTCONN;
        return TLS_FAILED;
    }
    m_ctx = SSL_CTX_new(TLS_client_method());
    if (!m_ctx) {
        errno = ENOMEM;
        return TLS_FAILED;
    }
    SSL_CTX_set_min_proto_version(m_ctx, TLS1_2_VERSION);
    // SMTP frames its own data: a peer that closes without close_notify is an
    // end of stream, not an attack on the message.
    SSL_CTX_set_options(m_ctx, SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_verify(m_ctx, SSL_VERIFY_PEER, nullptr);
    bool trusted = SSL_CTX_set_default_verify_paths(m_ctx) == 1;
    if (!trustPem.empty())
        trusted = TrustPem(m_ctx, trustPem);
    ERR_clear_error();
    if (!trusted) {
        errno = EINVAL;
        return TLS_UNTRUSTED;  // trust text without a certificate trusts nothing
    }

    m_ssl = SSL_new(m_ctx);
    BIO* bio = m_ssl ? BIO_new(SocketBioMethod()) : nullptr;
    if (!bio) {
        errno = ENOMEM;
        return TLS_FAILED;
    }
    BIO_set_data(bio, reinterpret_cast<void*>(static_cast<std::intptr_t>(m_fd)));
    SSL_set_bio(m_ssl, bio, bio);
    if (IsAddressLiteral(host)) {
        X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(m_ssl), host.c_str());
    } else {
        SSL_set_tlsext_host_name(m_ssl, host.c_str());
        SSL_set1_host(m_ssl, host.c_str());
    }

    const Deadline deadline = Deadline::In(timeoutMs);  // one for the whole handshake
    for (;;) {
        errno = 0;
        const int result = SSL_connect(m_ssl);
        if (result == 1)
            return TLS_DONE;
        const int reason = SSL_get_error(m_ssl, result);
        const short events = reason == SSL_ERROR_WANT_READ ? POLLIN : reason == SSL_ERROR_WANT_WRITE ? POLLOUT : 0;
        if (events == 0 || !WaitUntil(events, deadline)) {
            const bool untrusted = SSL_get_verify_result(m_ssl) != X509_V_OK;
            ERR_clear_error();
            if (events == 0 && errno == 0)
                errno = ECONNABORTED;
            return untrusted ? TLS_UNTRUSTED : TLS_FAILED;
        }
    }
}

bool CNyrSmtpChannel::WaitUntil(short events, const Deadline& deadline)
{
    pollfd p{m_fd, events, 0};
    for (;;) {
        const int ready = poll(&p, 1, Remaining(deadline));
        if (ready > 0)
            return true;  // ready, or an error that the next call reports
        if (ready == 0) {
            errno = ETIMEDOUT;
            return false;
        }
        if (errno != EINTR)
            return false;
    }
}

long CNyrSmtpChannel::Receive(char* buffer, std::size_t size, const Deadline& deadline)
{
    if (m_fd < 0) {
        errno = ENOTCONN;
        return -1;
    }
    for (;;) {
        short events = POLLIN;
        if (m_ssl) {
            ERR_clear_error();
            errno = 0;
            const int n = SSL_read(m_ssl, buffer, static_cast<int>(std::min<std::size_t>(size, 1 << 30)));
            if (n > 0)
                return n;
            switch (SSL_get_error(m_ssl, n)) {
            case SSL_ERROR_ZERO_RETURN: return 0;
            case SSL_ERROR_WANT_READ: break;
            case SSL_ERROR_WANT_WRITE: events = POLLOUT; break;
            case SSL_ERROR_SYSCALL:
                if (errno == 0)
                    return 0;
                return -1;
            default:
                ERR_clear_error();
                errno = ECONNABORTED;
                return -1;
            }
        } else {
            // A reply follows a command: waiting first saves a read that would find nothing.
            if (!WaitUntil(POLLIN, deadline))
                return -1;
            const ssize_t n = recv(m_fd, buffer, size, 0);
            if (n >= 0)
                return n;
            if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
                return -1;
            continue;
        }
        if (!WaitUntil(events, deadline))
            return -1;
    }
}

long CNyrSmtpChannel::WriteSome(std::vector<std::string_view>& rest, std::size_t& first, short& events)
{
    long n;
    if (m_ssl) {
        ERR_clear_error();
        errno = 0;
        const std::string_view piece = rest[first];
        n = SSL_write(m_ssl, piece.data(), static_cast<int>(std::min<std::size_t>(piece.size(), 1 << 20)));
        if (n <= 0) {
            switch (SSL_get_error(m_ssl, static_cast<int>(n))) {
            case SSL_ERROR_WANT_WRITE: events = POLLOUT; return 0;
            case SSL_ERROR_WANT_READ: events = POLLIN; return 0;
            case SSL_ERROR_SYSCALL:
                if (errno == 0)
                    errno = EPIPE;
                return -1;
            default:
                ERR_clear_error();
                errno = ECONNABORTED;
                return -1;
            }
        }
    } else {
        // All pieces in one call: the message data goes out without waiting between its parts.
        iovec vectors[8];
        msghdr message{};
        message.msg_iov = vectors;
        for (std::size_t i = first; i < rest.size() && message.msg_iovlen < std::size(vectors); ++i)
            vectors[message.msg_iovlen++] = {const_cast<char*>(rest[i].data()), rest[i].size()};
        n = sendmsg(m_fd, &message, MSG_NOSIGNAL);
        if (n < 0) {
            events = POLLOUT;
            return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? 0 : -1;
        }
    }
    for (auto left = static_cast<std::size_t>(n); left > 0 && first < rest.size();) {
        const std::size_t take = std::min(left, rest[first].size());
        rest[first].remove_prefix(take);
        left -= take;
        first += rest[first].empty();
    }
    return n;
}

long CNyrSmtpChannel::ReadSome(std::string& received, std::size_t maxReceived)
{
    char buffer[4096];
    const std::size_t size = std::min(sizeof buffer, maxReceived - received.size());
    long n;
    if (m_ssl) {
        ERR_clear_error();
        errno = 0;
        n = SSL_read(m_ssl, buffer, static_cast<int>(size));
        if (n <= 0) {
            const int reason = SSL_get_error(m_ssl, static_cast<int>(n));
            if (reason == SSL_ERROR_WANT_READ || reason == SSL_ERROR_WANT_WRITE)
                return 0;
            ERR_clear_error();
            return reason == SSL_ERROR_ZERO_RETURN || (reason == SSL_ERROR_SYSCALL && errno == 0) ? -2 : -1;
        }
    } else {
        n = recv(m_fd, buffer, size, MSG_DONTWAIT);
        if (n == 0)
            return -2;
        if (n < 0)
            return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? 0 : -1;
    }
    received.append(buffer, static_cast<std::size_t>(n));
    return n;
}

bool CNyrSmtpChannel::Send(std::vector<std::string_view> pieces, unsigned timeoutMs, std::string* received,
                           std::size_t maxReceived)
{
    if (m_fd < 0) {
        errno = ENOTCONN;
        return false;
    }
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    std::size_t first = 0;  // pieces[first] is the piece being sent
    bool reading = received != nullptr;
    while (first < pieces.size()) {
        short events = 0;
        const long written = WriteSome(pieces, first, events);
        if (written < 0)
            return false;
        if (written > 0)
            continue;
        // Blocked: take in what the server answers meanwhile, so that it is
        // never stalled on a full buffer while the client waits on it.
        if (reading && received->size() < maxReceived) {
            const long read = ReadSome(*received, maxReceived);
            if (read == -1)
                return false;
            if (read > 0)
                continue;
            reading = read == 0;  // -2: the server closed; the next write tells
            events |= reading ? POLLIN : 0;
        }
        // The time-out counts from the last progress: a stalled peer fails, a slow one does not.
        if (!WaitUntil(events, Deadline::In(timeoutMs)))
            return false;
    }
    return true;
}

void CNyrSmtpChannel::Close()
{
    if (m_ssl) {
        // One attempt at close_notify; a server that does not read it is not waited for.
        SSL_shutdown(m_ssl);
        SSL_free(m_ssl);  // frees the BIO too
        m_ssl = nullptr;
        ERR_clear_error();
    }
    if (m_ctx) {
        SSL_CTX_free(m_ctx);
        m_ctx = nullptr;
    }
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
}

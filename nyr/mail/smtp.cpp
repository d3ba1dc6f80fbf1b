#include "nyr/mail/smtp.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_message.h"
#include "nyr/mail/mail_text_p.h"
#include "nyr/mail/smtp_channel_p.h"
#include "nyr/mail/smtp_reply_p.h"
#include "nyr/platform/file_read.h"
#include "nyr/platform/string_format.h"

namespace {

// The longest whole reply the extended dialogue collects (an EHLO reply is a
// few hundred bytes).
constexpr std::size_t kMaxReply = 64 * 1024;
// The largest file of trusted certificates read (a system bundle is about 200 KiB).
constexpr std::size_t kMaxTrustFile = 4 * 1024 * 1024;

unsigned SocketErrorText(int error)
{
    switch (error) {
    case ENETDOWN:
    case ENETUNREACH:
    case EHOSTUNREACH: return NYR_IDS_SOCKET_NETWORK_DOWN;
    case ENOTCONN: return NYR_IDS_SOCKET_NOT_CONNECTED;
    case EINPROGRESS:
    case EALREADY: return NYR_IDS_SOCKET_IN_PROGRESS;
    case ENOTSOCK:
    case EBADF: return NYR_IDS_SOCKET_NOT_SOCKET;
    case EOPNOTSUPP: return NYR_IDS_SOCKET_NOT_STREAM;
    case ESHUTDOWN: return NYR_IDS_SOCKET_SHUT_DOWN;
    case EAGAIN: return NYR_IDS_SOCKET_WOULD_BLOCK;
    case EMSGSIZE: return NYR_IDS_SOCKET_TOO_LARGE;
    case EINVAL: return NYR_IDS_SOCKET_INVALID;
    case ECONNABORTED:
    case ETIMEDOUT: return NYR_IDS_SOCKET_ABORTED;
    case ECONNRESET:
    case EPIPE: return NYR_IDS_SOCKET_RESET;
    default: return NYR_IDS_SOCKET_ERROR;
    }
}

std::string LocalHostName()
{
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0 || !name[0])
        return "localhost";
    return name;
}

int& PipeliningDefaultValue()
{
    static int value = 0;
    return value;
}

// Standard Base64 (RFC 4648) for AUTH: servers refuse the library's own form.
std::string AuthBase64(const std::string& data)
{
    std::string out(4 * ((data.size() + 2) / 3) + 1, '\0');
    const int n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()),
                                  reinterpret_cast<const unsigned char*>(data.data()), static_cast<int>(data.size()));
    out.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    return out;
}

}  // namespace

const CNyrSmtp::RESPONSE_CODE CNyrSmtp::s_ResponseTable[4] = {
    {250, NYR_IDS_SMTP_SERVER_ERROR},
    {220, NYR_IDS_SMTP_NOT_AVAILABLE},
    {354, NYR_IDS_SMTP_NOT_READY_FOR_DATA},
    {221, NYR_IDS_SMTP_NO_QUIT},
};

CNyrSmtp::CNyrSmtp(std::string server, unsigned port)
    : m_server(std::move(server)),
      m_port(port),
      m_socket(std::make_unique<CNyrSmtpChannel>()),
      m_pipelining(PipeliningDefaultValue())
{
}

CNyrSmtp::~CNyrSmtp()
{
    if (m_connected)
        Disconnect();
}

// --- settings ---

std::string CNyrSmtp::Server() const
{
    return m_server;
}

int CNyrSmtp::Server(const std::string& server)
{
    if (m_connected)
        return 0;
    m_server = server;
    return 1;
}

unsigned CNyrSmtp::Port() const
{
    return m_port;
}

int CNyrSmtp::Port(unsigned port)
{
    if (m_connected)
        return 0;
    m_port = port;
    return 1;
}

int CNyrSmtp::Connected() const
{
    return m_connected;
}

std::string CNyrSmtp::GetLastError() const
{
    return m_lastError;
}

CNyrSmtp::eSecurity CNyrSmtp::Security() const
{
    return m_security;
}

int CNyrSmtp::Security(eSecurity security)
{
    if (m_connected || security < SECURITY_NONE || security > SECURITY_TLS)
        return 0;
    m_security = security;
    return 1;
}

std::string CNyrSmtp::TrustedCertificates() const
{
    return m_trustFile;
}

int CNyrSmtp::TrustedCertificates(const std::string& pemFile)
{
    if (m_connected)
        return 0;
    m_trustFile = pemFile;
    return 1;
}

int CNyrSmtp::Credentials(const std::string& user, const std::string& password)
{
    if (m_connected)
        return 0;
    m_user = user;
    m_password = password;
    return 1;
}

CNyrSmtp::TIMEOUTS CNyrSmtp::Timeouts() const
{
    return m_timeouts;
}

int CNyrSmtp::Timeouts(const TIMEOUTS& timeouts)
{
    if (m_connected)
        return 0;
    m_timeouts = timeouts;
    return 1;
}

int CNyrSmtp::Pipelining() const
{
    return m_pipelining;
}

int CNyrSmtp::Pipelining(int on)
{
    if (m_connected)
        return 0;
    m_pipelining = on ? 1 : 0;
    return 1;
}

int CNyrSmtp::PipeliningDefault()
{
    return PipeliningDefaultValue();
}

void CNyrSmtp::PipeliningDefault(int on)
{
    PipeliningDefaultValue() = on ? 1 : 0;
}

// --- errors and replies ---

void CNyrSmtp::SetError(unsigned textId, unsigned code)
{
    m_lastError = NyrFormat("%d:%s", static_cast<int>(code), NyrLoadString(textId).c_str());
}

void CNyrSmtp::SetSocketError(int error)
{
    SetError(SocketErrorText(error), 0);
}

bool CNyrSmtp::ReadReply(std::string& reply)
{
    if (!m_socket->IsOpen() || m_broken) {
        SetSocketError(ENOTCONN);
        return false;
    }
    if (!m_wholeReplies) {
        // One receive per reply: only the start of what arrives counts.
        char buffer[1024];
        const long n = m_socket->Receive(buffer, sizeof buffer, m_waitMs);
        if (n <= 0) {
            Broken(n == 0 ? ESHUTDOWN : errno);
            return false;
        }
        reply.assign(buffer, static_cast<std::size_t>(n));
        return true;
    }
    // One deadline for the whole reply, however it is cut up: a server that
    // sends "220-" and then a byte a second times out all the same.
    const auto deadline = CNyrSmtpChannel::Deadline::In(m_waitMs);
    for (;;) {
        if (const std::size_t length = NyrSmtpReplyLength(m_pending)) {
            reply = m_pending.substr(0, length);
            m_pending.erase(0, length);
            return true;
        }
        if (m_pending.size() > kMaxReply) {
            Broken(EMSGSIZE);
            return false;
        }
        char buffer[4096];
        const long n = m_socket->Receive(buffer, sizeof buffer, deadline);
        if (n < 0 || (n == 0 && m_pending.empty())) {
            Broken(n == 0 ? ESHUTDOWN : errno);
            return false;
        }
        if (n == 0) {  // closed after part of a reply: that part is all there is
            reply.swap(m_pending);
            m_pending.clear();
            m_broken = true;
            return true;
        }
        m_pending.append(buffer, static_cast<std::size_t>(n));
    }
}

int CNyrSmtp::GetResponse(unsigned index)
{
    if (index >= std::size(s_ResponseTable)) {
        SetError(NYR_IDS_SMTP_ERROR, 0);
        return 0;
    }
    std::string reply;
    if (!ReadReply(reply))
        return 0;
    const unsigned code = NyrSmtpReplyCode(reply);
    if (code == s_ResponseTable[index].code)
        return 1;
    SetError(s_ResponseTable[index].textId, code);
    return 0;
}

int CNyrSmtp::Await(unsigned index, unsigned timeoutMs)
{
    m_waitMs = timeoutMs;
    return GetResponse(index);
}

bool CNyrSmtp::SendCommand(const std::string& command)
{
    if (m_broken || !m_socket->IsOpen()) {
        SetSocketError(ENOTCONN);
        return false;
    }
    if (m_socket->Send({command}, m_timeouts.command))
        return true;
    Broken(errno);
    return false;
}

void CNyrSmtp::Broken(int error)
{
    SetSocketError(error);
    m_broken = true;
    m_pending.clear();
}

// Reads one whole reply and checks its code; a mismatch sets "<code>:<textId>".
bool CNyrSmtp::Expect(unsigned code, unsigned textId, const std::string& command)
{
    if (!command.empty() && !SendCommand(command))
        return false;
    m_waitMs = m_timeouts.command;
    std::string reply;
    if (!ReadReply(reply))
        return false;
    const unsigned got = NyrSmtpReplyCode(reply);
    if (got == code)
        return true;
    SetError(textId, got);
    return false;
}

void CNyrSmtp::Abort()
{
    m_socket->Close();
    m_pending.clear();
    m_broken = false;
}

// --- connection ---

bool CNyrSmtp::SecureChannel()
{
    // Only a regular file of bounded size: a FIFO or /dev/zero named here
    // must not block or feed the client for ever.
    std::string pem;
    if (!m_trustFile.empty() && !NyrReadRegularFile(m_trustFile, kMaxTrustFile, pem)) {
        SetError(NYR_IDS_SMTP_TLS_UNTRUSTED, 0);
        return false;
    }
    switch (m_socket->StartTls(m_server, pem, m_timeouts.connect)) {
    case CNyrSmtpChannel::TLS_DONE: return true;
    case CNyrSmtpChannel::TLS_UNTRUSTED: SetError(NYR_IDS_SMTP_TLS_UNTRUSTED, 0); return false;
    case CNyrSmtpChannel::TLS_FAILED: break;
    }
    SetError(NYR_IDS_SMTP_TLS_FAILED, 0);
    return false;
}

bool CNyrSmtp::Hello(std::string& reply)
{
    if (!SendCommand("EHLO " + LocalHostName() + "\r\n"))
        return false;
    m_waitMs = m_timeouts.command;
    if (!ReadReply(reply))
        return false;
    const unsigned code = NyrSmtpReplyCode(reply);
    if (code == s_ResponseTable[0].code)
        return true;
    SetError(s_ResponseTable[0].textId, code);
    return false;
}

bool CNyrSmtp::StartTls()
{
    if (!Expect(220, NYR_IDS_SMTP_NO_STARTTLS, "STARTTLS\r\n"))
        return false;
    // Bytes that came with the 220 were sent before the handshake and could
    // have been injected on the way; nothing may be taken from them.
    if (!m_pending.empty()) {
        SetError(NYR_IDS_SMTP_TLS_FAILED, 0);
        return false;
    }
    return SecureChannel();
}

bool CNyrSmtp::LogIn(const std::string& ehloReply)
{
    const CNyrSmtpExtensions offered = NyrSmtpExtensions(ehloReply);
    if (offered.authPlain)
        return Expect(235, NYR_IDS_SMTP_AUTH_FAILED,
                      "AUTH PLAIN " + AuthBase64(std::string(1, '\0') + m_user + '\0' + m_password) + "\r\n");
    if (offered.authLogin)
        return Expect(334, NYR_IDS_SMTP_AUTH_FAILED, "AUTH LOGIN\r\n") &&
               Expect(334, NYR_IDS_SMTP_AUTH_FAILED, AuthBase64(m_user) + "\r\n") &&
               Expect(235, NYR_IDS_SMTP_AUTH_FAILED, AuthBase64(m_password) + "\r\n");
    SetError(NYR_IDS_SMTP_AUTH_NO_MECHANISM, 0);
    return false;
}

// HELO, or EHLO with what the extensions need after it.
bool CNyrSmtp::Greet()
{
    if (!m_wholeReplies)
        return SendCommand("HELO " + LocalHostName() + "\r\n") && Await(0, m_timeouts.command);
    std::string capabilities;
    bool ok = Hello(capabilities);
    if (!ok && !m_broken && m_security == SECURITY_NONE && m_user.empty()) {
        capabilities.clear();  // a server that does not know EHLO: nothing is offered
        ok = Expect(s_ResponseTable[0].code, s_ResponseTable[0].textId, "HELO " + LocalHostName() + "\r\n");
    }
    if (ok && m_security == SECURITY_STARTTLS) {
        // Never a silent fall-back to plain text.
        if (!NyrSmtpExtensions(capabilities).startTls) {
            SetError(NYR_IDS_SMTP_NO_STARTTLS, 0);
            return false;
        }
        ok = StartTls() && Hello(capabilities);  // RFC 3207: forget what was offered before TLS
    }
    if (ok && !m_user.empty())
        ok = LogIn(capabilities);
    m_pipelined = ok && m_pipelining && NyrSmtpExtensions(capabilities).pipelining;
    return ok;
}

int CNyrSmtp::Connect()
{
    if (m_connected)
        return 1;
    if (m_server.empty()) {
        SetError(NYR_IDS_SMTP_NAME_EMPTY, 0);
        return 0;
    }
    if (!m_user.empty() && m_security == SECURITY_NONE) {
        SetError(NYR_IDS_SMTP_AUTH_NEEDS_TLS, 0);
        return 0;
    }
    m_pending.clear();
    m_wholeReplies = m_security != SECURITY_NONE || m_pipelining;
    m_pipelined = false;
    switch (m_socket->Open(m_server, m_port, m_timeouts.connect)) {
    case CNyrSmtpChannel::OPEN_DONE: break;
    case CNyrSmtpChannel::OPEN_NO_SOCKET: SetError(NYR_IDS_SMTP_NO_SOCKET, 0); return 0;
    case CNyrSmtpChannel::OPEN_NO_CONNECT: SetError(NYR_IDS_SMTP_NO_CONNECT, 0); return 0;
    }
    if (m_security == SECURITY_TLS && !SecureChannel()) {
        Abort();
        return 0;
    }
    if (!Await(1, m_timeouts.greeting)) {
        SetError(NYR_IDS_SMTP_NO_GREETING, 0);
        Abort();
        return 0;
    }
    if (!Greet()) {
        Abort();
        return 0;
    }
    m_connected = 1;
    return 1;
}

int CNyrSmtp::Disconnect()
{
    if (!m_connected)
        return 1;
    // After a transport failure nothing more is sent: the connection is only closed.
    const int result = !m_broken && SendCommand("QUIT\r\n") && Await(3, m_timeouts.command);
    Abort();
    m_connected = 0;
    return result;
}

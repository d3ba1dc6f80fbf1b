#include "nyr/mail/smtp.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_message.h"
#include "nyr/mail/mail_text_p.h"
#include "nyr/mail/smtp_channel_p.h"
#include "nyr/mail/smtp_reply_p.h"
#include "nyr/platform/string_format.h"

namespace {

// Text numbers of the table.
enum : unsigned
{
    kSmtpError = 26150,
    kNameEmpty = 26155,
    kNoSocket = 26156,
    kNoConnect = 26157,
    kNoGreeting = 26158,
    kNotConnected = 26159,
    kNoSender = 26160,
    kNoRecipient = 26161,
    kSocketNetworkDown = 26163,
    kSocketNotConnected = 26164,
    kSocketInProgress = 26165,
    kSocketNotSocket = 26166,
    kSocketNotStream = 26167,
    kSocketShutDown = 26168,
    kSocketWouldBlock = 26169,
    kSocketTooLarge = 26170,
    kSocketInvalid = 26171,
    kSocketAborted = 26172,
    kSocketReset = 26173,
    kSocketError = 26174,
    kControlCharacter = 26286,
    kNoStartTls = 26287,
    kTlsFailed = 26288,
    kTlsUntrusted = 26289,
    kAuthFailed = 26290,
    kAuthNoMechanism = 26291,
    kAuthNeedsTls = 26292,
};

// The longest whole reply the extended dialogue collects (an EHLO reply is a
// few hundred bytes).
constexpr std::size_t kMaxReply = 64 * 1024;

unsigned SocketErrorText(int error)
{
    switch (error) {
    case ENETDOWN:
    case ENETUNREACH:
    case EHOSTUNREACH: return kSocketNetworkDown;
    case ENOTCONN: return kSocketNotConnected;
    case EINPROGRESS:
    case EALREADY: return kSocketInProgress;
    case ENOTSOCK:
    case EBADF: return kSocketNotSocket;
    case EOPNOTSUPP: return kSocketNotStream;
    case ESHUTDOWN: return kSocketShutDown;
    case EAGAIN: return kSocketWouldBlock;
    case EMSGSIZE: return kSocketTooLarge;
    case EINVAL: return kSocketInvalid;
    case ECONNABORTED:
    case ETIMEDOUT: return kSocketAborted;
    case ECONNRESET:
    case EPIPE: return kSocketReset;
    default: return kSocketError;
    }
}

std::string LocalHostName()
{
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0 || !name[0])
        return "localhost";
    return name;
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
    {250, 26151},
    {220, 26152},
    {354, 26153},
    {221, 26154},
};

CNyrSmtp::CNyrSmtp(std::string server, unsigned port)
    : m_server(std::move(server)), m_port(port), m_socket(std::make_unique<CNyrSmtpChannel>())
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
    if (m_security == SECURITY_NONE) {
        // One receive per reply: only the start of what arrives counts.
        char buffer[1024];
        const long n = m_socket->Receive(buffer, sizeof buffer, m_waitMs);
        if (n < 0) {
            SetSocketError(errno);
            return false;
        }
        reply.assign(buffer, static_cast<std::size_t>(n));
        return true;
    }
    for (;;) {
        if (const std::size_t length = NyrSmtpReplyLength(m_pending)) {
            reply = m_pending.substr(0, length);
            m_pending.erase(0, length);
            return true;
        }
        if (m_pending.size() > kMaxReply) {
            m_pending.clear();
            SetSocketError(EMSGSIZE);
            return false;
        }
        char buffer[4096];
        const long n = m_socket->Receive(buffer, sizeof buffer, m_waitMs);
        if (n < 0) {
            SetSocketError(errno);
            return false;
        }
        if (n == 0) {  // closed: what came is all the reply there is
            reply.swap(m_pending);
            m_pending.clear();
            return true;
        }
        m_pending.append(buffer, static_cast<std::size_t>(n));
    }
}

int CNyrSmtp::GetResponse(unsigned index)
{
    if (index >= std::size(s_ResponseTable)) {
        SetError(kSmtpError, 0);
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
    if (m_socket->Send({command}, m_timeouts.command))
        return true;
    SetSocketError(errno);
    return false;
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
}

// --- connection ---

bool CNyrSmtp::SecureChannel()
{
    switch (m_socket->StartTls(m_server, m_trustFile, m_timeouts.connect)) {
    case CNyrSmtpChannel::TLS_DONE: return true;
    case CNyrSmtpChannel::TLS_UNTRUSTED: SetError(kTlsUntrusted, 0); return false;
    case CNyrSmtpChannel::TLS_FAILED: break;
    }
    SetError(kTlsFailed, 0);
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
    if (!Expect(220, kNoStartTls, "STARTTLS\r\n"))
        return false;
    // Bytes that came with the 220 were sent before the handshake and could
    // have been injected on the way; nothing may be taken from them.
    if (!m_pending.empty()) {
        SetError(kTlsFailed, 0);
        return false;
    }
    return SecureChannel();
}

bool CNyrSmtp::LogIn(const std::string& ehloReply)
{
    const CNyrSmtpExtensions offered = NyrSmtpExtensions(ehloReply);
    if (offered.authPlain)
        return Expect(235, kAuthFailed, "AUTH PLAIN " + AuthBase64(std::string(1, '\0') + m_user + '\0' + m_password) +
                                            "\r\n");
    if (offered.authLogin)
        return Expect(334, kAuthFailed, "AUTH LOGIN\r\n") &&
               Expect(334, kAuthFailed, AuthBase64(m_user) + "\r\n") &&
               Expect(235, kAuthFailed, AuthBase64(m_password) + "\r\n");
    SetError(kAuthNoMechanism, 0);
    return false;
}

int CNyrSmtp::Connect()
{
    if (m_connected)
        return 1;
    if (m_server.empty()) {
        SetError(kNameEmpty, 0);
        return 0;
    }
    if (!m_user.empty() && m_security == SECURITY_NONE) {
        SetError(kAuthNeedsTls, 0);
        return 0;
    }
    m_pending.clear();
    switch (m_socket->Open(m_server, m_port, m_timeouts.connect)) {
    case CNyrSmtpChannel::OPEN_DONE: break;
    case CNyrSmtpChannel::OPEN_NO_SOCKET: SetError(kNoSocket, 0); return 0;
    case CNyrSmtpChannel::OPEN_NO_CONNECT: SetError(kNoConnect, 0); return 0;
    }
    if (m_security == SECURITY_TLS && !SecureChannel()) {
        Abort();
        return 0;
    }
    if (!Await(1, m_timeouts.greeting)) {
        SetError(kNoGreeting, 0);
        Abort();
        return 0;
    }

    if (m_security == SECURITY_NONE) {
        if (!SendCommand("HELO " + LocalHostName() + "\r\n") || !Await(0, m_timeouts.command)) {
            Abort();
            return 0;
        }
    } else {
        std::string capabilities;
        bool ok = Hello(capabilities);
        if (ok && m_security == SECURITY_STARTTLS) {
            // Never a silent fall-back to plain text.
            if (!NyrSmtpExtensions(capabilities).startTls) {
                SetError(kNoStartTls, 0);
                ok = false;
            } else {
                ok = StartTls() && Hello(capabilities);  // RFC 3207: forget what was offered before TLS
            }
        }
        if (ok && !m_user.empty())
            ok = LogIn(capabilities);
        if (!ok) {
            Abort();
            return 0;
        }
    }
    m_connected = 1;
    return 1;
}

int CNyrSmtp::Disconnect()
{
    if (!m_connected)
        return 1;
    const int result = SendCommand("QUIT\r\n") && Await(3, m_timeouts.command);
    Abort();
    m_connected = 0;
    return result;
}

// --- messages ---

int CNyrSmtp::SendMailMessage(CNyrMailMessage* message)
{
    if (!m_connected) {
        SetError(kNotConnected, 0);
        return 0;
    }
    CNyrBusyCursor busy;
    return TransmitMailMessage(message);
}

int CNyrSmtp::PrepareHeader(std::string&)
{
    return 1;
}

int CNyrSmtp::PrepareBody(std::string& body)
{
    if (body.size() < 2 || body.compare(body.size() - 2, 2, "\r\n") != 0)
        body += "\r\n";
    // One pass gives what replacing "\r\n.\r\n" from the start until none is
    // left gives: the search goes on at the "\r\n" that ends a doubled line,
    // so "\r\n.\r\n.\r\n" doubles both dots.
    const bool leadingDot = body.compare(0, 3, ".\r\n") == 0;
    std::size_t found = body.find("\r\n.\r\n");
    if (!leadingDot && found == std::string::npos)
        return 1;
    std::string stuffed;
    stuffed.reserve(body.size() + body.size() / 64 + 1);
    if (leadingDot)
        stuffed += '.';
    std::size_t from = 0;
    while (found != std::string::npos) {
        stuffed.append(body, from, found + 3 - from);  // up to and with the dot
        stuffed += '.';
        from = found + 3;
        found = body.find("\r\n.\r\n", from);
    }
    stuffed.append(body, from, std::string::npos);
    body.swap(stuffed);
    return 1;
}

int CNyrSmtp::TransmitMailMessage(CNyrMailMessage* message)
{
    if (!message)
        return 0;
    if (!m_connected) {
        SetError(kNotConnected, 0);
        return 0;
    }
    const std::string sender = message->From().address;
    if (sender.empty()) {
        SetError(kNoSender, 0);
        return 0;
    }
    if (message->GetNumRecipients() == 0) {
        SetError(kNoRecipient, 0);
        return 0;
    }
    // Every address goes into a command line: one holding CR, LF or another
    // control character would end the command early. Refused before anything is sent.
    std::vector<std::string> recipients;
    bool clean = !NyrMailText::HasControlCharacter(sender);
    for (const auto kind : {CNyrMailMessage::TO, CNyrMailMessage::CC, CNyrMailMessage::BCC}) {
        std::string address, name;
        for (unsigned i = 0; message->Recipient(address, name, i, kind); ++i) {
            clean = clean && !NyrMailText::HasControlCharacter(address);
            recipients.push_back(address);
        }
    }
    if (!clean) {
        SetError(kControlCharacter, 0);
        return 0;
    }

    if (!SendCommand("MAIL From: <" + sender + ">\r\n") || !Await(0, m_timeouts.command))
        return 0;
    for (const auto& address : recipients) {
        // A refused recipient only leaves its refusal in the last error (intended).
        if (!SendCommand("RCPT TO: <" + address + ">\r\n"))
            return 0;
        Await(0, m_timeouts.command);
    }
    if (!SendCommand("DATA\r\n") || !Await(2, m_timeouts.dataStart))
        return 0;

    std::string header = message->Header();
    PrepareHeader(header);
    std::string body = message->Body();
    PrepareBody(body);
    if (!m_socket->Send({header, "\r\n", body, "\r\n.\r\n"}, m_timeouts.dataBlock)) {
        SetSocketError(errno);
        return 0;
    }
    return Await(0, m_timeouts.dataEnd);
}

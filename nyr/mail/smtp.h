#pragma once

#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"

class CNyrMailMessage;
class CNyrSmtpChannel;

// A synchronous SMTP client: sends messages built with CNyrMailMessage or
// CNyrMailMessageMimeContainer over one TCP connection (IPv4 or IPv6).
// Every call blocks its caller for the length of the dialogue; one object is
// used by one thread at a time. Copying is not allowed.
//
// Calling order: Connect, any number of SendMailMessage, Disconnect.
// Operations return 1 on success and 0 on failure; the reason is then in
// GetLastError() as "<code>:<text>", the server's reply code (0 for a local
// failure) and a text of the library's text table, as "550:SMTP server
// error." or "0:Socket error.". The text is never reset by a success, so
// after a successful send it may still tell of a refused recipient.
//
// The plain dialogue (SECURITY_NONE) is:
//   greeting 220, "HELO <host name>" 250,
//   per message "MAIL From: <sender>" 250, "RCPT TO: <address>" 250 for each
//   To, Cc and Bcc recipient, "DATA" 354, header, blank line, body, ".", 250,
//   finally "QUIT" 221.
// Each reply is read with a single receive of at most 1024 bytes, and only its
// first three characters count: a reply split over packets or a multi-line
// reply is not collected further (intended; such a server fails the
// dialogue, and so does a reply shorter than three digits). A refused
// recipient does not stop the message (intended leniency: the call can
// succeed with the refusal in GetLastError()). A failed message leaves the
// connection as the server has it; no RSET is sent.
//
// A transport failure (a time-out, a reset, a connection closed where a reply
// was due: "0:Socket has been shut down.") ends the dialogue: nothing more is
// sent on that connection, the call fails at once with the socket's text,
// later messages fail with "0:Socket is not connected." and Disconnect only
// closes.
//
// The message data goes out with every line end as CR LF (a bare CR or LF in
// header or body included) and every line that begins with "." doubled, so
// the only "\r\n.\r\n" a server sees is the client's own terminator.
//
// Opt-in extensions for submission servers, see Security() and
// Credentials(): STARTTLS or implicit TLS, and AUTH PLAIN or LOGIN; and
// pipelining, see Pipelining(). They use EHLO instead of HELO and read every
// reply whole (multi-line replies up to 64 KiB); the rest of the dialogue is
// the same.
//
// Socket failures map errno to the socket error texts:
//   ENETDOWN, ENETUNREACH, EHOSTUNREACH  "Network subsystem failed."
//   ENOTCONN                              "Socket is not connected."
//   EINPROGRESS, EALREADY                 "Blocking Windows sockets operation is in progress."
//   ENOTSOCK, EBADF                       "The descriptor is not a socket."
//   EOPNOTSUPP                            "Socket is not of type SOCK_STREAM."
//   ESHUTDOWN                             "Socket has been shut down."
//   EAGAIN                                "Socket is marked as nonblocking and Receive operation would block"
//   EMSGSIZE (a reply over 64 KiB)        "The datagram was too large to fit into the specified buffer and was truncated."
//   EINVAL                                "Socket has not been bound with Bind."
//   ECONNABORTED, ETIMEDOUT (time-outs)   "Virtual circuit was aborted due to timeout or other failure."
//   ECONNRESET, EPIPE                     "Virtual circuit was reset by the remote side."
//   anything else                         "Socket error."
// (EPIPE on a TCP socket means the server has reset the connection.) A server
// that closes the connection instead of replying gives an empty reply, which
// fails like any wrong reply: "0:SMTP server error." and the like.
class NYR_EXPORT CNyrSmtp
{
public:
    // How the connection is protected. SECURITY_STARTTLS upgrades after the
    // greeting and fails when the server does not offer STARTTLS: it never
    // goes on in plain text. SECURITY_TLS speaks TLS from the first byte
    // (port 465). The server's certificate is always verified: against the
    // system's trusted roots, plus TrustedCertificates() when set, and for
    // the server name (or address) given.
    enum eSecurity
    {
        SECURITY_NONE = 0,
        SECURITY_STARTTLS = 1,
        SECURITY_TLS = 2,
    };

    // Time-outs in milliseconds (0: wait without limit). The defaults are
    // those of RFC 5321 4.5.3.2, so a silent server never holds the caller
    // for ever. A reply (multi-line ones included) and a TLS handshake each
    // have one deadline from the moment the client starts waiting for them,
    // however slowly the bytes come; sending waits at most `command` (or
    // `dataBlock`) each time the server takes nothing more.
    struct TIMEOUTS
    {
        unsigned connect = 5 * 60000;    // TCP connection (all addresses) and each TLS handshake
        unsigned greeting = 5 * 60000;   // the 220 greeting
        unsigned command = 5 * 60000;    // replies to HELO/EHLO, MAIL, RCPT, STARTTLS, AUTH, QUIT
        unsigned dataStart = 2 * 60000;  // the 354 reply to DATA
        unsigned dataBlock = 3 * 60000;  // each wait for the server to take more message data
        unsigned dataEnd = 10 * 60000;   // the reply after the final "."
    };

    // Stores server (host name or address literal) and port; not connected,
    // last error "OK".
    explicit CNyrSmtp(std::string server = {}, unsigned port = 25);
    // Disconnects (QUIT) when connected.
    virtual ~CNyrSmtp();
    CNyrSmtp(const CNyrSmtp&) = delete;
    CNyrSmtp& operator=(const CNyrSmtp&) = delete;

    // Connects and greets the server; 1 at once when already connected.
    // Failures: empty server name, no socket, no connection, no 220 greeting
    // ("0:Server didn't respond." whatever the reason), a refused HELO/EHLO;
    // with the extensions also a failed TLS handshake or verification, a
    // missing STARTTLS, a refused login.
    virtual int Connect();
    // Sends QUIT and closes. Always ends not connected; returns whether the
    // server answered 221 (1 when it was not connected).
    virtual int Disconnect();
    // Sends one message (the busy cursor shows meanwhile). Fails when not
    // connected, and as TransmitMailMessage.
    virtual int SendMailMessage(CNyrMailMessage* message);

    virtual std::string Server() const;
    // Changes the server or port only while not connected: 1, else 0.
    virtual int Server(const std::string& server);
    virtual unsigned Port() const;
    virtual int Port(unsigned port);
    virtual int Connected() const;
    virtual std::string GetLastError() const;

    // The extensions' settings; like Server() they change only while not
    // connected (1), else return 0.
    eSecurity Security() const;
    int Security(eSecurity security);
    // A PEM file of further certificates to trust (a private CA, or a
    // server's self-signed certificate); empty for the system's roots only.
    // Read at each TLS handshake, when it is a regular file of at most
    // 4 MiB holding a certificate; otherwise the handshake is refused as
    // untrusted.
    std::string TrustedCertificates() const;
    int TrustedCertificates(const std::string& pemFile);
    // Log in after the (secured) greeting: AUTH PLAIN when the server offers
    // it, else AUTH LOGIN. An empty user switches login off. Credentials are
    // sent over TLS only: with SECURITY_NONE, Connect refuses to start.
    int Credentials(const std::string& user, const std::string& password);
    TIMEOUTS Timeouts() const;
    int Timeouts(const TIMEOUTS& timeouts);

    // Pipelining (RFC 2920), off by default (the plain HELO dialogue). When
    // on, the client greets with EHLO (with HELO after a refused EHLO when no
    // TLS or login is asked for), and when the server offers PIPELINING it
    // sends MAIL, every RCPT and DATA in one write (in groups of 1,000
    // unanswered commands for a message with more recipients) and reads
    // their replies in order, then the data and its "." in one write;
    // SendMailMessages sends the next message's commands behind the previous
    // message's data, so the server's latency is paid about once per message. Replies are matched
    // to commands in order; a refused recipient keeps the leniency above; a
    // refused MAIL or a failed DATA ends the transaction with RSET (only
    // here). Changes, like Server(), only while not connected (1), else 0.
    int Pipelining() const;
    int Pipelining(int on);
    // Whether later constructions start with pipelining on; initially 0.
    static int PipeliningDefault();
    static void PipeliningDefault(int on);

    // Sends the messages in order over the connection (the busy cursor shows
    // meanwhile) and returns how many the server accepted; `results`, when
    // given, receives 1 or 0 for each. A message that cannot be sent leaves
    // its reason in GetLastError() and the next one is sent all the same; a
    // transport failure ends the run. Without pipelining it is
    // SendMailMessage for each.
    unsigned SendMailMessages(const std::vector<CNyrMailMessage*>& messages, std::vector<int>* results = nullptr);

protected:
    struct RESPONSE_CODE
    {
        unsigned code;    // the reply code expected
        unsigned textId;  // the message when the reply differs
    };
    // 0: 250 "SMTP server error.", 1: 220 "SMTP server not available.",
    // 2: 354 "SMTP server not ready for data.", 3: 221 "SMTP server didn't terminate session."
    static const RESPONSE_CODE s_ResponseTable[4];

    // Hooks on the text sent, both as it goes on the wire: every line end
    // made CR LF, then a "." put in front of every line that begins with "."
    // (RFC 5321 4.5.2; "a\r\n.\r\nb" becomes "a\r\n..\r\nb\r\n"). The body is
    // also made to end in "\r\n". Return 1. A derived class that overrides
    // them takes over this duty.
    virtual int PrepareHeader(std::string& header);
    virtual int PrepareBody(std::string& body);
    // The MAIL/RCPT/DATA transaction. Fails (0) for a null message (last
    // error unchanged), when not connected, without a sender, without any
    // recipient (Bcc alone will do), when the sender's or a recipient's
    // address holds a control character ("0:Mail address contains a control
    // character.") or a blank, '"', '<' or '>' ("0:The mail address is not
    // valid."; nothing is sent then), when MAIL, DATA or the final "." are
    // refused, or when the connection fails.
    virtual int TransmitMailMessage(CNyrMailMessage* message);
    // Reads one reply and compares its code with s_ResponseTable[index]: 1
    // when equal; else 0 with the last error set from the table (or from the
    // socket failure, with code 0).
    virtual int GetResponse(unsigned index);
    // Sets the last error to "<code>:<text textId>".
    virtual void SetError(unsigned textId, unsigned code);

private:
    int Await(unsigned index, unsigned timeoutMs);
    bool ReadReply(std::string& reply);
    bool SendCommand(const std::string& command);
    void SetSocketError(int error);
    bool SecureChannel();
    bool Hello(std::string& reply);
    bool StartTls();
    bool LogIn(const std::string& ehloReply);
    bool Expect(unsigned code, unsigned textId, const std::string& command);
    void Abort();
    // Marks the connection failed (nothing more is sent) with the socket text of `error`.
    void Broken(int error);
    bool TakeEnvelope(const CNyrMailMessage& message, std::string& sender, std::vector<std::string>& recipients);
    bool Greet();
    class CPipelinedRun;
    unsigned SendPipelined(const std::vector<CNyrMailMessage*>& messages, std::vector<int>& results);
    // Reads one whole reply within `timeoutMs`: its code, or false after a transport failure.
    bool ReadCode(unsigned timeoutMs, unsigned& code);

    std::string m_server;
    unsigned m_port;
    int m_connected = 0;
    std::string m_lastError = "OK";
    std::unique_ptr<CNyrSmtpChannel> m_socket;

    eSecurity m_security = SECURITY_NONE;
    std::string m_trustFile;
    std::string m_user;
    std::string m_password;
    TIMEOUTS m_timeouts;
    unsigned m_waitMs = 0;  // time-out of the reply GetResponse reads next
    std::string m_pending;  // received bytes after the last whole reply (extensions only)
    bool m_broken = false;  // a transport failure happened on this connection
    int m_pipelining;
    bool m_wholeReplies = false;  // the EHLO dialogue of the extensions, for this connection
    bool m_pipelined = false;     // pipelining on and offered by the server of this connection
};

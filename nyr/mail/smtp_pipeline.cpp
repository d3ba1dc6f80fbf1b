// CNyrSmtp: several messages, and the commands of each transaction sent
// together when the server offers PIPELINING (RFC 2920).
#include <algorithm>
#include <cerrno>
#include <deque>

#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_channel_p.h"
#include "nyr/mail/smtp_reply_p.h"

namespace {

// What the server answers to pipelined commands before the client reads
// them (a reply is some 30 bytes: thousands of recipients fit).
constexpr std::size_t kMaxPendingReplies = 1024 * 1024;
// Commands sent and not yet answered, at most. A message with more
// recipients goes out in groups, more commands following as their replies
// are read: the replies owed (at about 1 KiB each) fit in
// kMaxPendingReplies, so neither side stalls on the other however many
// recipients there are.
constexpr std::size_t kMaxInFlight = 1000;

// A reply the client waits for, in the order the commands went out.
struct Expected
{
    enum Kind
    {
        MAIL,
        RCPT,
        DATA,
        END,    // the reply to the message data and its "."
        IGNORE  // RSET, or the "." that ends the data of a refused transaction
    } kind;
    std::size_t message;
};

}  // namespace

unsigned CNyrSmtp::SendMailMessages(const std::vector<CNyrMailMessage*>& messages, std::vector<int>* results)
{
    std::vector<int> sent(messages.size(), 0);
    unsigned accepted = 0;
    if (!m_connected) {
        SetError(NYR_IDS_SMTP_NOT_CONNECTED, 0);
    } else if (m_pipelined) {
        CNyrBusyCursor busy;
        accepted = SendPipelined(messages, sent);
    } else {
        CNyrBusyCursor busy;
        for (std::size_t i = 0; i < messages.size() && !m_broken; ++i)
            accepted += sent[i] = TransmitMailMessage(messages[i]) ? 1 : 0;
    }
    if (results)
        *results = sent;
    return accepted;
}

bool CNyrSmtp::ReadCode(unsigned timeoutMs, unsigned& code)
{
    m_waitMs = timeoutMs;
    std::string reply;
    if (!ReadReply(reply))
        return false;
    code = NyrSmtpReplyCode(reply);
    return true;
}

// A run of pipelined transactions. The commands of each message go out in
// one write (a message of more than kMaxInFlight recipients in several);
// its replies are read in order up to DATA's. Then the message data goes
// out in one write together with the next message's commands (or the RSET
// that ends a refused transaction), and so on: one wait for the server per
// message.
class CNyrSmtp::CPipelinedRun
{
public:
    CPipelinedRun(CNyrSmtp& smtp, const std::vector<CNyrMailMessage*>& messages, std::vector<int>& results)
        : m_smtp(smtp), m_messages(messages), m_results(results)
    {
        m_results.assign(messages.size(), 0);
    }

    unsigned Run()
    {
        QueueNextMessage();
        for (;;) {
            if (m_withData || (!m_commands.empty() && InFlight() < kMaxInFlight)) {
                if (!Write())
                    return m_accepted;
                continue;
            }
            // Replies in order, up to the one that decides what goes out next.
            if (InFlight() == 0)
                return m_accepted;
            const Expected e = m_expected.front();
            m_expected.pop_front();
            unsigned code = 0;
            if (!m_smtp.ReadCode(Timeout(e.kind), code))
                return m_accepted;
            Take(e, code);
        }
    }

private:
    // The commands of the next message that can be sent; nothing is sent for
    // one that cannot (the reason is in the last error).
    void QueueNextMessage()
    {
        for (std::string sender; m_next < m_messages.size(); ++m_next) {
            std::vector<std::string> recipients;
            if (!m_messages[m_next] || !m_smtp.TakeEnvelope(*m_messages[m_next], sender, recipients))
                continue;
            Queue("MAIL From: <" + sender + ">\r\n", Expected::MAIL);
            for (const auto& address : recipients)
                Queue("RCPT TO: <" + address + ">\r\n", Expected::RCPT);
            Queue("DATA\r\n", Expected::DATA);
            ++m_next;
            return;
        }
    }

    void Queue(std::string command, Expected::Kind kind)
    {
        m_commands.push_back(std::move(command));
        m_expected.push_back({kind, m_next});
    }

    // The replies owed for what has gone out: all those expected but the
    // ones of the commands and the data still to be sent.
    std::size_t InFlight() const { return m_expected.size() - m_commands.size() - (m_withData ? 1 : 0); }

    // The message data when due, then as many queued commands as the limit
    // of unanswered ones allows, in one write.
    bool Write()
    {
        const std::size_t inFlight = InFlight();
        const std::size_t count = std::min(m_commands.size(), inFlight < kMaxInFlight ? kMaxInFlight - inFlight : 0);
        std::string group;
        for (std::size_t i = 0; i < count; ++i)
            group += m_commands[i];
        std::vector<std::string_view> pieces;
        if (m_withData)
            pieces = {m_header, "\r\n", m_body, "\r\n.\r\n"};
        pieces.push_back(group);
        const TIMEOUTS& t = m_smtp.m_timeouts;
        if (!m_smtp.m_socket->Send(pieces, m_withData ? t.dataBlock : t.command, &m_smtp.m_pending,
                                   kMaxPendingReplies)) {
            m_smtp.Broken(errno);
            return false;
        }
        m_withData = false;
        m_commands.erase(m_commands.begin(), m_commands.begin() + static_cast<std::ptrdiff_t>(count));
        return true;
    }

    unsigned Timeout(Expected::Kind kind) const
    {
        const TIMEOUTS& t = m_smtp.m_timeouts;
        return kind == Expected::DATA ? t.dataStart : kind == Expected::END ? t.dataEnd : t.command;
    }

    void Take(const Expected& e, unsigned code)
    {
        const RESPONSE_CODE& ok = s_ResponseTable[0];
        const RESPONSE_CODE& data = s_ResponseTable[2];
        switch (e.kind) {
        case Expected::MAIL:
            m_mailAccepted = code == ok.code;
            if (!m_mailAccepted)
                m_smtp.SetError(ok.textId, code);
            break;
        case Expected::RCPT:  // a refused recipient only leaves its refusal in the last error (intended)
            if (m_mailAccepted && code != ok.code)
                m_smtp.SetError(ok.textId, code);
            break;
        case Expected::END:
            if (code == ok.code)
                m_accepted += m_results[e.message] = 1;
            else
                m_smtp.SetError(ok.textId, code);
            break;
        case Expected::IGNORE: break;
        case Expected::DATA:
            if (code == data.code && m_mailAccepted) {
                m_header = m_messages[e.message]->Header();
                m_smtp.PrepareHeader(m_header);
                m_body = m_messages[e.message]->Body();
                m_smtp.PrepareBody(m_body);
                m_withData = true;
                m_expected.push_back({Expected::END, e.message});
            } else {
                if (m_mailAccepted)
                    m_smtp.SetError(data.textId, code);
                if (code == data.code)  // a server that took DATA without a sender gets an empty message first
                    Queue(".\r\n", Expected::IGNORE);
                Queue("RSET\r\n", Expected::IGNORE);
            }
            QueueNextMessage();
            break;
        }
    }

    CNyrSmtp& m_smtp;
    const std::vector<CNyrMailMessage*>& m_messages;
    std::vector<int>& m_results;
    unsigned m_accepted = 0;
    std::size_t m_next = 0;             // the next message to start
    std::deque<Expected> m_expected;    // replies due, in the order of the commands
    std::deque<std::string> m_commands;  // to go out, in order; they follow the data
    std::string m_header, m_body;       // the data of the message that got 354
    bool m_withData = false;            // they go out with the next write
    bool m_mailAccepted = false;        // the last MAIL read was accepted
};

unsigned CNyrSmtp::SendPipelined(const std::vector<CNyrMailMessage*>& messages, std::vector<int>& results)
{
    if (m_broken) {
        results.assign(messages.size(), 0);
        SetSocketError(ENOTCONN);
        return 0;
    }
    return CPipelinedRun(*this, messages, results).Run();
}

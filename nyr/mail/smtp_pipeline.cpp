// CNyrSmtp: several messages, and the commands of each transaction sent
// together when the server offers PIPELINING (RFC 2920).
#include <cerrno>
#include <deque>

#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_channel_p.h"
#include "nyr/mail/smtp_p.h"
#include "nyr/mail/smtp_reply_p.h"

using namespace NyrSmtpText;

namespace {

// What the server answers to pipelined commands before the client reads
// them (a reply is some 30 bytes: thousands of recipients fit).
constexpr std::size_t kMaxPendingReplies = 1024 * 1024;

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
        SetError(kNotConnected, 0);
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

// The commands of each message go out in one write; its replies are read in
// order up to DATA's. Then the message data goes out in one write together
// with the next message's commands (or the RSET that ends a refused
// transaction), and so on: one wait for the server per message.
unsigned CNyrSmtp::SendPipelined(const std::vector<CNyrMailMessage*>& messages, std::vector<int>& results)
{
    results.assign(messages.size(), 0);
    unsigned accepted = 0;
    if (m_broken) {
        SetSocketError(ENOTCONN);
        return accepted;
    }
    std::deque<Expected> expected;
    std::vector<std::string> commands;  // to go out with the next write
    std::string header, body;           // the data of the message that got 354
    bool withData = false;              // header and body go out with the next write
    std::size_t next = 0;
    auto queueNextMessage = [&] {
        for (std::string sender; next < messages.size(); ++next) {
            std::vector<std::string> recipients;
            if (!messages[next] || !TakeEnvelope(*messages[next], sender, recipients))
                continue;  // nothing sent for it; the reason is in the last error
            commands.push_back("MAIL From: <" + sender + ">\r\n");
            expected.push_back({Expected::MAIL, next});
            for (const auto& address : recipients) {
                commands.push_back("RCPT TO: <" + address + ">\r\n");
                expected.push_back({Expected::RCPT, next});
            }
            commands.push_back("DATA\r\n");
            expected.push_back({Expected::DATA, next++});
            return;
        }
    };

    queueNextMessage();
    bool mailAccepted = false;
    while (!commands.empty() || withData) {
        std::vector<std::string_view> pieces;
        if (withData)
            pieces = {header, "\r\n", body, "\r\n.\r\n"};
        pieces.insert(pieces.end(), commands.begin(), commands.end());
        if (!m_socket->Send(pieces, withData ? m_timeouts.dataBlock : m_timeouts.command, &m_pending,
                            kMaxPendingReplies)) {
            Broken(errno);
            return accepted;
        }
        withData = false;
        commands.clear();
        // Replies in order, up to the one that decides what goes out next.
        while (!expected.empty() && commands.empty() && !withData) {
            const Expected e = expected.front();
            expected.pop_front();
            unsigned code = 0;
            const unsigned timeout = e.kind == Expected::DATA  ? m_timeouts.dataStart
                                     : e.kind == Expected::END ? m_timeouts.dataEnd
                                                               : m_timeouts.command;
            if (!ReadCode(timeout, code))
                return accepted;
            switch (e.kind) {
            case Expected::MAIL:
                mailAccepted = code == s_ResponseTable[0].code;
                if (!mailAccepted)
                    SetError(s_ResponseTable[0].textId, code);
                break;
            case Expected::RCPT:  // a refused recipient only leaves its refusal in the last error (intended)
                if (mailAccepted && code != s_ResponseTable[0].code)
                    SetError(s_ResponseTable[0].textId, code);
                break;
            case Expected::END:
                if (code == s_ResponseTable[0].code)
                    accepted += results[e.message] = 1;
                else
                    SetError(s_ResponseTable[0].textId, code);
                break;
            case Expected::IGNORE: break;
            case Expected::DATA:
                if (code == s_ResponseTable[2].code && mailAccepted) {
                    header = messages[e.message]->Header();
                    PrepareHeader(header);
                    body = messages[e.message]->Body();
                    PrepareBody(body);
                    withData = true;
                    expected.push_back({Expected::END, e.message});
                } else {
                    if (mailAccepted)
                        SetError(s_ResponseTable[2].textId, code);
                    // A server that took DATA without a sender gets an empty message first.
                    if (code == s_ResponseTable[2].code) {
                        commands.push_back(".\r\n");
                        expected.push_back({Expected::IGNORE, e.message});
                    }
                    commands.push_back("RSET\r\n");
                    expected.push_back({Expected::IGNORE, e.message});
                }
                queueNextMessage();
                break;
            }
        }
    }
    return accepted;
}

// CNyrSmtp against scripted servers: the faults a real server will not
// produce, each ending with its documented result and text, none hanging.
#include <gtest/gtest.h>

#include <atomic>
#include <map>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "tests/nyr/mail/smtp_test_server.h"

namespace {

using nyr::test::ScriptedSmtpServer;
using Connection = ScriptedSmtpServer::Connection;

// Greeting and HELO answered; false when the client went away.
bool Greet(Connection& c)
{
    return c.Send("220 scripted ready\r\n") && c.ReadLine().rfind("HELO ", 0) == 0 && c.Send("250 scripted\r\n");
}

// Answers commands by their first word until QUIT or the end of the
// connection, recording every command line and the DATA section.
void Answer(Connection& c, const std::map<std::string, std::string>& replies, std::vector<std::string>* log)
{
    for (;;) {
        const std::string line = c.ReadLine();
        if (line.empty())
            return;
        log->push_back(line);
        const std::string word = line.substr(0, line.find_first_of(" \r"));
        const auto reply = replies.find(word);
        c.Send((reply == replies.end() ? "500 unknown" : reply->second) + "\r\n");
        if (word == "DATA" && reply != replies.end() && reply->second.rfind("354", 0) == 0) {
            log->push_back(c.ReadUntil("\r\n.\r\n"));
            c.Send("250 queued\r\n");
        }
        if (word == "QUIT")
            return;
    }
}

CNyrSmtp::TIMEOUTS Short()
{
    CNyrSmtp::TIMEOUTS t;
    t.connect = t.greeting = t.command = t.dataStart = t.dataBlock = t.dataEnd = 300;
    return t;
}

CNyrMailMessage SimpleMessage(const std::string& body = "hello\r\n")
{
    CNyrMailMessage m;
    m.From("ann@example.org");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.Body(body.c_str());
    return m;
}

TEST(SmtpFaults, AGreetingOtherThan220FailsConnect)
{
    ScriptedSmtpServer server([](Connection& c) {
        c.Send("554 no service\r\n");
        c.WaitClosed();
    });
    CNyrSmtp smtp("127.0.0.1", server.Port());
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Server didn't respond.");
    EXPECT_EQ(smtp.Connected(), 0);
}

TEST(SmtpFaults, ARefusedRecipientDoesNotStopTheMessage)
{
    std::vector<std::string> log;
    ScriptedSmtpServer server([&log](Connection& c) {
        if (!Greet(c))
            return;
        log.push_back(c.ReadLine());  // MAIL
        c.Send("250 ok\r\n");
        for (const std::string reply : {"250 ok", "550 no such user", "250 ok"}) {  // the three RCPTs
            log.push_back(c.ReadLine());
            c.Send(reply + "\r\n");
        }
        Answer(c, {{"DATA", "354 go"}, {"QUIT", "421 closing"}}, &log);
    });
    CNyrMailMessage m = SimpleMessage("a\r\n.\r\nb");
    m.AddRecipient("carl@example.org", CNyrMailMessage::CC);
    m.AddRecipient("dora@example.org", CNyrMailMessage::BCC);
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.SendMailMessage(&m), 1);
    EXPECT_EQ(smtp.GetLastError(), "550:SMTP server error.");  // although the final reply was 250
    EXPECT_EQ(smtp.Disconnect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "421:SMTP server didn't terminate session.");
    EXPECT_EQ(smtp.Connected(), 0);
    server.Join();

    ASSERT_EQ(log.size(), 7u);
    EXPECT_EQ(log[0], "MAIL From: <ann@example.org>\r\n");
    EXPECT_EQ(log[1], "RCPT TO: <bob@example.org>\r\n");
    EXPECT_EQ(log[2], "RCPT TO: <carl@example.org>\r\n");
    EXPECT_EQ(log[3], "RCPT TO: <dora@example.org>\r\n");
    EXPECT_EQ(log[4], "DATA\r\n");
    // Only the lone dot is doubled; the body gets its "\r\n"; then the blank line and the end.
    EXPECT_EQ(log[5].substr(log[5].find("\r\n\r\n") + 4), "a\r\n..\r\nb\r\n\r\n.\r\n");
    EXPECT_EQ(log[6], "QUIT\r\n");
}

TEST(SmtpFaults, OneReceivePerReplySoASplitReplyFails)
{
    ScriptedSmtpServer server([](Connection& c) {
        c.Send("220 ready\r\n");
        c.ReadLine();
        c.Send("25");  // the rest of "250 ok" would follow in another packet
        c.WaitClosed();
    });
    CNyrSmtp smtp("127.0.0.1", server.Port());
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "25:SMTP server error.");
}

TEST(SmtpFaults, AMegabyteReplyLineIsReadByItsStartOnly)
{
    ScriptedSmtpServer server([](Connection& c) {
        c.Send("220 " + std::string(1 << 20, 'x') + "\r\n");  // ends when the client has gone
    });
    CNyrSmtp smtp("127.0.0.1", server.Port());
    // The greeting's first 1024 bytes read as 220; the HELO reply then reads
    // the rest of that line, which holds no code.
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:SMTP server error.");
}

TEST(SmtpFaults, AServerThatResetsTheConnectionDuringData)
{
    ScriptedSmtpServer server([](Connection& c) {
        if (!Greet(c))
            return;
        for (const char* reply : {"250 ok", "250 ok", "354 go"}) {
            c.ReadLine();
            c.Send(std::string(reply) + "\r\n");
        }
        c.Read(1000);
        c.Reset();
    });
    std::string body;
    while (body.size() < (16u << 20))
        body += std::string(998, 'x') + "\r\n";
    CNyrMailMessage m = SimpleMessage(body);
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.SendMailMessage(&m), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Virtual circuit was reset by the remote side.");
    EXPECT_EQ(smtp.Connected(), 1);  // a failed message leaves the state as it is
    EXPECT_EQ(smtp.Disconnect(), 0);
    EXPECT_EQ(smtp.Connected(), 0);
}

TEST(SmtpFaults, ASilentServerTimesOutAtEveryStage)
{
    {  // no greeting
        ScriptedSmtpServer server([](Connection& c) { c.WaitClosed(); });
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Timeouts(Short());
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:Server didn't respond.");
    }
    {  // no reply to MAIL
        ScriptedSmtpServer server([](Connection& c) {
            if (Greet(c))
                c.WaitClosed();
        });
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        CNyrMailMessage m = SimpleMessage();
        EXPECT_EQ(smtp.SendMailMessage(&m), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:Virtual circuit was aborted due to timeout or other failure.");
    }
    {  // stops taking message data
        std::atomic<bool> done = false;
        ScriptedSmtpServer server([&done](Connection& c) {
            if (!Greet(c))
                return;
            for (const char* reply : {"250 ok", "250 ok", "354 go"}) {
                c.ReadLine();
                c.Send(std::string(reply) + "\r\n");
            }
            for (int i = 0; i < 1000 && !done; ++i)  // reads nothing more, for 10 s at most
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
        });
        CNyrMailMessage m = SimpleMessage(std::string(32u << 20, 'x'));
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.SendMailMessage(&m), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:Virtual circuit was aborted due to timeout or other failure.");
        done = true;
    }
}

struct LaxMessage : CNyrMailMessage
{
    int CheckMailAddress(NyrMailHelper::MAIL_ADDRESS) const override { return 1; }
};

struct ExposedSmtp : CNyrSmtp
{
    using CNyrSmtp::CNyrSmtp;
    using CNyrSmtp::PrepareBody;
    using CNyrSmtp::TransmitMailMessage;
};

TEST(SmtpFaults, MessagesThatCannotBeSentAreRefusedBeforeAnyCommand)
{
    std::vector<std::string> log;
    ScriptedSmtpServer server([&log](Connection& c) {
        if (Greet(c))
            Answer(c, {{"MAIL", "250 ok"}, {"RCPT", "250 ok"}, {"DATA", "451 try later"}, {"QUIT", "221 bye"}}, &log);
    });
    ExposedSmtp smtp("127.0.0.1", server.Port());
    CNyrMailMessage unsent = SimpleMessage();
    EXPECT_EQ(smtp.SendMailMessage(&unsent), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Must be connected to SMTP server.");
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();

    EXPECT_EQ(smtp.TransmitMailMessage(nullptr), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Must be connected to SMTP server.");  // unchanged

    CNyrMailMessage noSender;
    noSender.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    EXPECT_EQ(smtp.SendMailMessage(&noSender), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:No sender (FROM) given.");

    CNyrMailMessage noRecipient;
    noRecipient.From("ann@example.org");
    EXPECT_EQ(smtp.SendMailMessage(&noRecipient), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:No Recipient (TO) given.");

    CNyrMailMessage injectedSender = SimpleMessage();
    injectedSender.From(NyrMailHelper::MAIL_ADDRESS{"", "ann@example.org>\r\nRCPT TO:<spy@example.net"});
    EXPECT_EQ(smtp.SendMailMessage(&injectedSender), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Mail address contains a control character.");

    LaxMessage injectedRecipient;
    injectedRecipient.From("ann@example.org");
    injectedRecipient.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    ASSERT_EQ(injectedRecipient.AddRecipient("carl@example.org>\r\nDATA", CNyrMailMessage::BCC), 1);
    EXPECT_EQ(smtp.SendMailMessage(&injectedRecipient), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Mail address contains a control character.");

    CNyrMailMessage refusedData = SimpleMessage();
    EXPECT_EQ(smtp.SendMailMessage(&refusedData), 0);
    EXPECT_EQ(smtp.GetLastError(), "451:SMTP server not ready for data.");
    EXPECT_EQ(smtp.Disconnect(), 1);
    server.Join();
    EXPECT_EQ(log, (std::vector<std::string>{"MAIL From: <ann@example.org>\r\n", "RCPT TO: <bob@example.org>\r\n",
                                              "DATA\r\n", "QUIT\r\n"}));
}

TEST(SmtpFaults, ConnectFailuresAndIpv6)
{
    CNyrSmtp noName("", 25);
    EXPECT_EQ(noName.Connect(), 0);
    EXPECT_EQ(noName.GetLastError(), "0:SMTP server name must not be empty.");

    unsigned closedPort;
    {
        ScriptedSmtpServer gone([](Connection&) {});
        closedPort = gone.Port();
        CNyrSmtp once("127.0.0.1", closedPort);  // takes the one connection, so the port closes
        once.Timeouts(Short());
        once.Connect();
    }
    CNyrSmtp refused("127.0.0.1", closedPort);
    EXPECT_EQ(refused.Connect(), 0);
    EXPECT_EQ(refused.GetLastError(), "0:Unable to connect to server.");

    std::vector<std::string> log;
    ScriptedSmtpServer server6(
        [&log](Connection& c) {
            if (Greet(c))
                Answer(c, {{"QUIT", "221 bye"}}, &log);
        },
        AF_INET6);
    if (server6.Port() == 0)
        GTEST_SKIP() << "no IPv6 loopback here";
    CNyrSmtp smtp("::1", server6.Port());
    EXPECT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.Disconnect(), 1);
}

TEST(SmtpFaults, PrepareBodyDoublesLoneDotsOnlyAndEndsTheBodyWithALineEnd)
{
    const struct
    {
        const char* in;
        const char* out;
    } cases[] = {
        {"a\r\n.\r\nb", "a\r\n..\r\nb\r\n"},
        {".\r\nx\r\n", "..\r\nx\r\n"},
        {".", "..\r\n"},  // the line end comes first, then the lone dot is doubled
        {"x\r\n.\r\n.\r\n.\r\n", "x\r\n..\r\n..\r\n..\r\n"},
        {".x\r\n..\r\n", ".x\r\n..\r\n"},
        {"", "\r\n"},
        {"\r\n", "\r\n"},
        {"x\r", "x\r\r\n"},
        {"\r\n.\r\n", "\r\n..\r\n"},
    };
    ExposedSmtp smtp;
    for (const auto& c : cases) {
        std::string body = c.in;
        EXPECT_EQ(smtp.PrepareBody(body), 1);
        EXPECT_EQ(body, c.out) << c.in;
    }
}

}  // namespace

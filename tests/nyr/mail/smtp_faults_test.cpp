// CNyrSmtp against scripted servers: the faults a real server will not
// produce, each ending with its documented result and text, none hanging.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "tests/nyr/mail/smtp_test_server.h"

namespace {

using nyr::test::ScriptedSmtpServer;
using Connection = ScriptedSmtpServer::Connection;

// Answers the greeting and HELO, then each command with reply(line) until
// QUIT or the end of the connection, logging the commands and DATA sections.
// An empty reply answers like a willing server; "silence" answers nothing
// until the client closes, "close" closes at once.
void Serve(Connection& c, std::vector<std::string>* log = nullptr,
           const std::function<std::string(const std::string&)>& reply = nullptr)
{
    if (!c.Send("220 scripted ready\r\n") || c.ReadLine().rfind("HELO ", 0) != 0 || !c.Send("250 scripted\r\n"))
        return;
    for (std::string line; !(line = c.ReadLine()).empty();) {
        if (log)
            log->push_back(line);
        std::string answer = reply ? reply(line) : "";
        if (answer.empty())
            answer = line.rfind("DATA", 0) == 0 ? "354 go" : line.rfind("QUIT", 0) == 0 ? "221 bye" : "250 ok";
        if (answer == "silence")
            c.WaitClosed();
        if (answer == "silence" || answer == "close")
            return;
        c.Send(answer + "\r\n");
        if (answer.rfind("354", 0) == 0) {
            const std::string data = c.ReadUntil("\r\n.\r\n");
            if (log)
                log->push_back(data);
            c.Send("250 queued\r\n");
        }
    }
}

// Sends script[0] on connect and each further text after a line from the
// client, then waits for the client to close.
void Play(Connection& c, const std::vector<std::string>& script)
{
    for (std::size_t i = 0; i < script.size(); ++i)
        if ((i > 0 && c.ReadLine().empty()) || !c.Send(script[i]))
            return;
    c.WaitClosed();
}

CNyrSmtp::TIMEOUTS Short()
{
    const unsigned ms = 300;
    return {ms, ms, ms, ms, ms, ms};
}

CNyrMailMessage SimpleMessage(const std::string& body = "hello\r\n")
{
    CNyrMailMessage m;
    m.From("ann@example.org");
    m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    m.Body(body.c_str());
    return m;
}

TEST(SmtpFaults, ARefusedRecipientDoesNotStopTheMessage)
{
    std::vector<std::string> log;
    ScriptedSmtpServer server([&log](Connection& c) {
        Serve(c, &log, [](const std::string& line) -> std::string {
            return line.find("carl") != std::string::npos ? "550 no such user"
                   : line == "QUIT\r\n"                    ? "421 closing"
                                                           : "";
        });
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
    EXPECT_EQ(log[0] + log[1] + log[2] + log[3] + log[4], "MAIL From: <ann@example.org>\r\nRCPT TO: <bob@example.org>\r\n"
                                                          "RCPT TO: <carl@example.org>\r\nRCPT TO: <dora@example.org>\r\n"
                                                          "DATA\r\n");
    // Only the lone dot is doubled; the body gets its line end; the blank line; the end.
    EXPECT_EQ(log[5].substr(log[5].find("\r\n\r\n") + 4), "a\r\n..\r\nb\r\n\r\n.\r\n");
}

TEST(SmtpFaults, RepliesAreReadWithOneReceiveAndByTheirFirstThreeCharacters)
{
    const struct
    {
        std::vector<std::string> script;  // for Play
        const char* error;
    } cases[] = {
        {{"554 no service\r\n"}, "0:Server didn't respond."},
        {{"220 ready\r\n", "25"}, "25:SMTP server error."},  // "0 ok\r\n" would follow in another packet
        // The greeting's first 1024 bytes read as 220; the HELO reply then
        // reads the rest of that line, which holds no code.
        {{"220 " + std::string(1 << 20, 'x') + "\r\n"}, "0:SMTP server error."},
    };
    for (const auto& c : cases) {
        ScriptedSmtpServer server([&c](Connection& connection) { Play(connection, c.script); });
        CNyrSmtp smtp("127.0.0.1", server.Port());
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), c.error);
        EXPECT_EQ(smtp.Connected(), 0);
    }
}

TEST(SmtpFaults, AServerThatResetsTheConnectionDuringData)
{
    ScriptedSmtpServer server([](Connection& c) {
        Serve(c, nullptr, [&c](const std::string& line) -> std::string {
            if (line != "DATA\r\n")
                return "";
            c.Send("354 go\r\n");
            c.ReadLine();
            c.Reset();
            return "close";
        });
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
    const struct
    {
        const char* silentAfter;
        std::size_t bodySize;
    } stages[] = {{"MAIL", 10}, {"RCPT", 10}, {"DATA", 10}, {"", 32u << 20}};
    for (const auto& stage : stages) {
        // The last stage takes DATA, then no more data: the client's send stalls.
        std::atomic<bool> done = false;
        ScriptedSmtpServer server([&](Connection& c) {
            Serve(c, nullptr, [&](const std::string& line) -> std::string {
                if (*stage.silentAfter && line.rfind(stage.silentAfter, 0) == 0)
                    return "silence";
                if (!*stage.silentAfter && line == "DATA\r\n") {
                    c.Send("354 go\r\n");
                    for (int i = 0; i < 1000 && !done; ++i)  // 10 s at most
                        std::this_thread::sleep_for(std::chrono::milliseconds(10));
                    return "silence";
                }
                return "";
            });
        });
        CNyrMailMessage m = SimpleMessage(std::string(stage.bodySize, 'x'));
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.SendMailMessage(&m), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:Virtual circuit was aborted due to timeout or other failure.")
            << stage.silentAfter;
        done = true;
    }
}

// Five recipients; the server fails after the first RCPT: silent, closed or
// reset. Nothing more is sent on that connection: no further RCPT, no DATA,
// no QUIT, and the call does not wait once per recipient.
TEST(SmtpFaults, ATransportFailureDuringRecipientsEndsTheMessageAtOnce)
{
    const struct
    {
        const char* fault;
        const char* error;
    } cases[] = {
        {"silence", "0:Virtual circuit was aborted due to timeout or other failure."},
        {"close", "0:Socket has been shut down."},
        {"reset", "0:Virtual circuit was reset by the remote side."},
    };
    for (const auto& c : cases) {
        const std::string fault = c.fault;
        std::vector<std::string> log;
        ScriptedSmtpServer server([&](Connection& connection) {
            Serve(connection, &log, [&](const std::string& line) -> std::string {
                if (line.rfind("RCPT", 0) != 0)
                    return "";
                if (fault == "reset") {
                    connection.Reset();
                    return "close";
                }
                if (fault == "close")
                    connection.ShutdownWrite();
                // What the client still sends is logged until it closes.
                for (std::string more; !(more = connection.ReadLine()).empty();)
                    log.push_back(more);
                return "close";
            });
        });
        CNyrMailMessage m = SimpleMessage();
        for (const char* address : {"carl@example.org", "dora@example.org", "eve@example.org", "fred@example.org"})
            m.AddRecipient(address, CNyrMailMessage::CC);
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.SendMailMessage(&m), 0);
        EXPECT_EQ(smtp.GetLastError(), c.error) << fault;
        EXPECT_EQ(smtp.SendMailMessage(&m), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:Socket is not connected.") << fault;
        EXPECT_EQ(smtp.Disconnect(), 0);
        EXPECT_EQ(smtp.Connected(), 0);
        server.Join();
        EXPECT_EQ(log, (std::vector<std::string>{"MAIL From: <ann@example.org>\r\n", "RCPT TO: <bob@example.org>\r\n"}))
            << fault;
    }
}

// A reply that arrives a byte at a time, each byte well within the
// time-out, still has to be complete within it: one deadline per reply (and
// per TLS handshake), not per receive. Each script would go on to a
// different, later failure if the client waited it out.
TEST(SmtpFaults, RepliesTrickledByteByByteTimeOutAsAWhole)
{
    auto trickle = [](Connection& c, const std::string& start) {
        c.Send(start);
        for (int i = 0; i < 40 && c.Send("x"); ++i)  // 2 s
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
    };
    const struct
    {
        CNyrSmtp::eSecurity security;
        std::function<void(Connection&)> script;
        const char* error;
    } cases[] = {
        {CNyrSmtp::SECURITY_STARTTLS,
         [&](Connection& c) {
             trickle(c, "220-");
             Play(c, {"\r\n220 ready\r\n", "250 no STARTTLS here\r\n"});
         },
         "0:Server didn't respond."},
        {CNyrSmtp::SECURITY_STARTTLS,
         [&](Connection& c) {
             c.Send("220 ready\r\n");
             c.ReadLine();
             trickle(c, "250-");
             Play(c, {"\r\n250 STARTTLS\r\n", "454 not now\r\n"});
         },
         "0:Virtual circuit was aborted due to timeout or other failure."},
        {CNyrSmtp::SECURITY_TLS,
         [&](Connection& c) {
             c.ReadUntil("\x01");  // the client's hello
             trickle(c, std::string("\x16\x03\x03\x40\x00", 5));  // a 16 KiB handshake record
         },
         "0:The secure connection to the SMTP server failed."},
    };
    for (const auto& c : cases) {
        ScriptedSmtpServer server(c.script);
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Security(c.security);
        smtp.Timeouts(Short());
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), c.error);
    }
}

// A trust file that is a device or a FIFO used to hang the handshake's set-up
// (read for ever, or waiting for a writer).
TEST(SmtpFaults, TrustFilesAreReadOnlyWhenTheyAreRegularFiles)
{
    nyr::test::TempDir dir;
    ASSERT_EQ(mkfifo(dir.File("fifo").c_str(), 0600), 0);
    nyr::test::WriteFile(dir.File("empty.pem"), "no certificate here\n");
    for (const std::string& trust : {std::string("/dev/zero"), dir.File("fifo"), dir.Path(), dir.File("empty.pem")}) {
        ScriptedSmtpServer server([](Connection& c) { c.WaitClosed(); });
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Security(CNyrSmtp::SECURITY_TLS);
        smtp.TrustedCertificates(trust);
        smtp.Timeouts(Short());
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:The certificate of the SMTP server could not be verified.") << trust;
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
        Serve(c, &log, [](const std::string& line) { return line == "DATA\r\n" ? "451 try later" : ""; });
    });
    ExposedSmtp smtp("127.0.0.1", server.Port());
    CNyrMailMessage unsent = SimpleMessage();
    EXPECT_EQ(smtp.SendMailMessage(&unsent), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Must be connected to SMTP server.");
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.TransmitMailMessage(nullptr), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:Must be connected to SMTP server.");  // unchanged

    CNyrMailMessage noSender, noRecipient, injectedSender = SimpleMessage(), refusedData = SimpleMessage();
    CNyrMailMessage parameterSender = SimpleMessage(), blankSender = SimpleMessage();
    noSender.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    noRecipient.From("ann@example.org");
    injectedSender.From(NyrMailHelper::MAIL_ADDRESS{"", "ann@example.org>\r\nRCPT TO:<spy@example.net"});
    parameterSender.From(NyrMailHelper::MAIL_ADDRESS{"", "a@x.org> SIZE=1"});
    blankSender.From(NyrMailHelper::MAIL_ADDRESS{"", "a b@x.org"});
    LaxMessage quotedRecipient;
    quotedRecipient.From("ann@example.org");
    quotedRecipient.AddRecipient("\"bob\"@example.org", CNyrMailMessage::TO);
    LaxMessage injectedRecipient;
    injectedRecipient.From("ann@example.org");
    injectedRecipient.AddRecipient("bob@example.org", CNyrMailMessage::TO);
    ASSERT_EQ(injectedRecipient.AddRecipient("carl@example.org>\r\nDATA", CNyrMailMessage::BCC), 1);
    const std::pair<CNyrMailMessage*, const char*> cases[] = {
        {&noSender, "0:No sender (FROM) given."},
        {&noRecipient, "0:No Recipient (TO) given."},
        {&injectedSender, "0:Mail address contains a control character."},
        {&injectedRecipient, "0:Mail address contains a control character."},
        {&parameterSender, "0:The mail address is not valid."},
        {&blankSender, "0:The mail address is not valid."},
        {&quotedRecipient, "0:The mail address is not valid."},
        {&refusedData, "451:SMTP server not ready for data."},
    };
    for (const auto& [message, error] : cases) {
        EXPECT_EQ(smtp.SendMailMessage(message), 0);
        EXPECT_EQ(smtp.GetLastError(), error);
    }
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
        CNyrSmtp once("127.0.0.1", closedPort);
        once.Connect();  // takes the one connection, so the port closes
    }
    CNyrSmtp refused("127.0.0.1", closedPort);
    EXPECT_EQ(refused.Connect(), 0);
    EXPECT_EQ(refused.GetLastError(), "0:Unable to connect to server.");

    ScriptedSmtpServer server6([](Connection& c) { Serve(c); }, AF_INET6);
    if (server6.Port() == 0)
        GTEST_SKIP() << "no IPv6 loopback here";
    CNyrSmtp smtp("::1", server6.Port());
    EXPECT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.Disconnect(), 1);
}

TEST(SmtpFaults, SecureConnectionsRefuseWhatIsNotTls)
{
    const struct
    {
        CNyrSmtp::eSecurity security;
        std::vector<std::string> script;  // for Play
    } cases[] = {
        {CNyrSmtp::SECURITY_TLS, {"220 plain text only\r\n"}},
        // A reply planted behind the 220 to STARTTLS would be read as coming
        // over TLS: the upgrade is refused.
        {CNyrSmtp::SECURITY_STARTTLS, {"220 ready\r\n", "250-scripted\r\n250 STARTTLS\r\n",
                                       "220 go ahead\r\n250 planted\r\n"}},
    };
    for (const auto& c : cases) {
        ScriptedSmtpServer server([&c](Connection& connection) { Play(connection, c.script); });
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Security(c.security);
        smtp.Timeouts(Short());
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:The secure connection to the SMTP server failed.");
    }
}

}  // namespace

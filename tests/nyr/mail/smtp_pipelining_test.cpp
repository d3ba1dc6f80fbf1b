// Pipelined transactions (RFC 2920): against aiosmtpd and Postfix's
// smtp-sink, which take commands however they arrive, and against a scripted
// server that answers a group of commands only once it has all of them, so
// a client that waited for a reply inside a group would stall it.
#include <gtest/gtest.h>

#include <random>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "tests/nyr/mail/mail_test_text.h"
#include "tests/nyr/mail/smtp_test_server.h"

namespace {

using nyr::test::ScriptedSmtpServer;
using nyr::test::SmtpSink;
using nyr::test::SmtpTestServer;
using Connection = ScriptedSmtpServer::Connection;

// A message with a fixed header, so that what a server received can be
// compared with what was composed.
struct FixedMessage : CNyrMailMessage
{
    std::string Header() const override { return "Subject: " + Subject() + "\r\n"; }
};

FixedMessage Message(const std::string& body, std::size_t recipients = 2)
{
    FixedMessage m;
    m.From("ann@example.org");
    m.Subject("pipelined");
    m.Body(body.c_str());
    for (std::size_t i = 0; i < recipients; ++i)
        m.AddRecipient(("r" + std::to_string(i) + "@example.org").c_str(), i % 2 ? CNyrMailMessage::BCC
                                                                               : CNyrMailMessage::TO);
    return m;
}

// What a server reads from the client: the lines of the text (ending in
// CR LF); the client's dot-stuffing is undone on the way.
std::string ServerLines(const std::string& text)
{
    return nyr::test::WithLineEnd(nyr::test::CrLfLines(text));
}

std::vector<std::string> Bodies()
{
    std::vector<std::string> bodies = {"hello\n.\nMAIL FROM:<x@y>\nDATA\n", ".hidden\r\n..two\r\n.", "plain\r\n", ""};
    std::mt19937 random(2920);
    while (bodies.size() < 30) {
        std::string body;
        for (std::size_t length = random() % 3000; body.size() < length;)
            body += "\r\n.aM "[random() % 6];
        bodies.push_back(body);
    }
    return bodies;
}

TEST(SmtpPipelining, RealServersReceiveEveryMessageAsSent)
{
    const std::vector<std::string> bodies = Bodies();
    std::vector<FixedMessage> messages;
    for (const auto& body : bodies)
        messages.push_back(Message(body));
    messages.push_back(Message("many recipients\r\n", 3000));  // a group larger than a socket buffer
    std::vector<CNyrMailMessage*> pointers;
    for (auto& m : messages)
        pointers.push_back(&m);

    SmtpTestServer aiosmtpd({"--pipelining"});
    SmtpSink sink;
    ASSERT_NE(aiosmtpd.Port(), 0u);
    ASSERT_NE(sink.Port(), 0u) << "Postfix's smtp-sink is not installed";
    for (const unsigned port : {aiosmtpd.Port(), sink.Port()}) {
        CNyrSmtp smtp("127.0.0.1", port);
        ASSERT_EQ(smtp.Pipelining(1), 1);
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        std::vector<int> results;
        EXPECT_EQ(smtp.SendMailMessages(pointers, &results), pointers.size()) << smtp.GetLastError();
        EXPECT_EQ(results, std::vector<int>(pointers.size(), 1));
        EXPECT_EQ(smtp.GetLastError(), "OK");
        EXPECT_EQ(smtp.Disconnect(), 1);
    }

    // Both servers remove the stuffing dots: the composed lines arrive, at
    // aiosmtpd with the blank line before the final dot, in smtp-sink's dump
    // with LF ends and the blank line that ends each transaction.
    const auto mails = aiosmtpd.Messages(messages.size());
    const auto transactions = sink.Transactions(messages.size());
    ASSERT_EQ(mails.size(), messages.size());
    ASSERT_EQ(transactions.size(), messages.size());
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        std::string expected = "Subject: pipelined\r\n\r\n" + ServerLines(bodies[i]) + "\r\n";
        EXPECT_EQ(mails[i].data, expected) << i;
        EXPECT_NE(mails[i].envelope.find(R"("to": ["r0@example.org", "r1@example.org"])"), std::string::npos);

        for (std::size_t at = 0; (at = expected.find("\r\n", at)) != std::string::npos;)
            expected.erase(at, 1);
        const std::string& t = transactions[i];
        EXPECT_NE(t.find("X-Mail-Args: <ann@example.org>\nX-Rcpt-Args: <r0@example.org>\n"
                         "X-Rcpt-Args: <r1@example.org>\n"),
                  std::string::npos);
        EXPECT_EQ(t.substr(t.find("Subject: ")), expected + "\n") << i;
    }
    EXPECT_NE(mails.back().envelope.find("r2999@example.org"), std::string::npos);
    EXPECT_NE(transactions.back().find("X-Rcpt-Args: <r2999@example.org>\n"), std::string::npos);
}

// The scripted pipelining server. Commands are collected up to DATA or QUIT
// (or an RSET after the last expected MAIL) and answered together; after a
// message's data the next group is read before the data is answered, unless
// all `messages` MAIL commands have come. `answer(line)` gives a command's reply
// ("" the usual one: 503 for RCPT and DATA after a refused MAIL; "close"
// closes instead). The log holds each group (its lines joined) and each
// data section (its lines up to the "." line).
struct PipeliningScript
{
    std::size_t messages = 1;
    std::function<std::string(const std::string&)> answer;
    enum { NOW, LATE, SPLIT } pace = NOW;
    std::vector<std::string> log;
    bool sender = true;  // the last MAIL was accepted

    void operator()(Connection& c)
    {
        if (!c.Send("220 scripted\r\n") || c.ReadLine().rfind("EHLO ", 0) != 0 ||
            !c.Send("250-scripted\r\n250 PIPELINING\r\n"))
            return;
        std::string replies;  // owed from before the group (the reply to a message's data)
        for (std::size_t mails = 0;;) {
            std::string group, line;
            do {
                line = c.ReadLine();
                group += line;
                mails += line.rfind("MAIL", 0) == 0;
            } while (!line.empty() && line != "DATA\r\n" && line != "QUIT\r\n" &&
                     !(line == "RSET\r\n" && mails == messages));
            if (group.empty())
                return;
            log.push_back(group);
            bool data = false;
            for (std::size_t at = 0; at < group.size();) {
                const std::size_t end = group.find("\r\n", at) + 2;
                const std::string command = group.substr(at, end - at);
                at = end;
                std::string reply = answer ? answer(command) : "";
                if (reply == "close") {
                    Reply(c, replies);
                    return;
                }
                if (command.rfind("MAIL", 0) == 0)
                    sender = reply.empty();
                if (reply.empty())
                    reply = command == "QUIT\r\n"                                      ? "221 bye"
                            : !sender && (command == "DATA\r\n" || command.rfind("RCPT", 0) == 0) ? "503 need MAIL"
                            : command == "DATA\r\n"                                    ? "354 go"
                                                                                        : "250 ok";
                replies += reply + "\r\n";
                data = command == "DATA\r\n" && reply.rfind("354", 0) == 0;
            }
            if (!Reply(c, replies) || line == "QUIT\r\n")
                return;
            replies.clear();
            if (data) {
                std::string section, dataLine;
                do {
                    dataLine = c.ReadLine();
                    section += dataLine;
                } while (!dataLine.empty() && dataLine != ".\r\n");
                log.push_back(section);
                replies = "250 queued\r\n";
                if (mails == messages) {  // nothing follows the last message's data: answer it now
                    if (!Reply(c, replies))
                        return;
                    replies.clear();
                }
            }
        }
    }

    bool Reply(Connection& c, const std::string& replies)
    {
        if (pace == LATE)
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
        if (pace != SPLIT)
            return c.Send(replies);
        for (const char byte : replies) {
            if (!c.Send(std::string(1, byte)))
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }
};

CNyrSmtp::TIMEOUTS Short()
{
    const unsigned ms = 2000;
    return {ms, ms, ms, ms, ms, ms};
}

TEST(SmtpPipelining, ARefusedSenderEndsItsTransactionWithRsetAndTheNextMessageGoesOn)
{
    PipeliningScript script;
    script.messages = 3;
    script.answer = [](const std::string& line) -> std::string {
        if (line.find("<bad@example.org>") != std::string::npos)
            return "550 sender refused";
        return "";
    };
    ScriptedSmtpServer server(std::ref(script));
    FixedMessage first = Message("one\r\n"), refused = Message("two\r\n"), third = Message("three\r\n");
    refused.From("bad@example.org");
    CNyrSmtp smtp("127.0.0.1", server.Port());
    smtp.Pipelining(1);
    smtp.Timeouts(Short());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    std::vector<int> results;
    EXPECT_EQ(smtp.SendMailMessages({&first, &refused, &third}, &results), 2u);
    EXPECT_EQ(results, (std::vector<int>{1, 0, 1}));
    EXPECT_EQ(smtp.GetLastError(), "550:SMTP server error.");  // not the 503s that follow a refused MAIL
    EXPECT_EQ(smtp.Disconnect(), 1);
    server.Join();

    const std::string group = "RCPT TO: <r0@example.org>\r\nRCPT TO: <r1@example.org>\r\nDATA\r\n";
    EXPECT_EQ(script.log,
              (std::vector<std::string>{"MAIL From: <ann@example.org>\r\n" + group,
                                        "Subject: pipelined\r\n\r\none\r\n\r\n.\r\n",
                                        "MAIL From: <bad@example.org>\r\n" + group,
                                        "RSET\r\nMAIL From: <ann@example.org>\r\n" + group,
                                        "Subject: pipelined\r\n\r\nthree\r\n\r\n.\r\n", "QUIT\r\n"}));
}

TEST(SmtpPipelining, FaultsInAGroupEndWithTheirResultAndNothingHangs)
{
    const std::string group = "MAIL From: <ann@example.org>\r\nRCPT TO: <r0@example.org>\r\n"
                              "RCPT TO: <r1@example.org>\r\nRCPT TO: <r2@example.org>\r\nDATA\r\n";
    const std::string data = "Subject: pipelined\r\n\r\nbody\r\n\r\n.\r\n";
    const struct
    {
        const char* name;
        const char* refuse;  // the command answered with `reply`
        const char* reply;
        int pace;
        int result;
        const char* error;
        std::vector<std::string> log;
    } cases[] = {
        {"second recipient", "<r1@", "550 no such user", PipeliningScript::NOW, 1, "550:SMTP server error.",
         {group, data, "QUIT\r\n"}},
        {"sender", "MAIL", "550 refused", PipeliningScript::NOW, 0, "550:SMTP server error.",
         {group, "RSET\r\n", "QUIT\r\n"}},
        {"data", "DATA", "554 no", PipeliningScript::NOW, 0, "554:SMTP server not ready for data.",
         {group, "RSET\r\n", "QUIT\r\n"}},
        // A server that takes DATA although it refused the sender gets an empty message, then RSET.
        {"data after a refused sender", "", "", PipeliningScript::NOW, 0, "550:SMTP server error.",
         {group, ".\r\n", "RSET\r\n", "QUIT\r\n"}},
        {"late", "", "", PipeliningScript::LATE, 1, "OK", {group, data, "QUIT\r\n"}},
        {"split", "", "", PipeliningScript::SPLIT, 1, "OK", {group, data, "QUIT\r\n"}},
        {"closed mid-group", "<r1@", "close", PipeliningScript::NOW, 0, "0:Socket has been shut down.", {group}},
    };
    for (const auto& c : cases) {
        PipeliningScript script;
        script.pace = static_cast<decltype(script.pace)>(c.pace);
        script.answer = [&c](const std::string& line) -> std::string {
            if (std::string(c.name) == "data after a refused sender")
                return line.rfind("MAIL", 0) == 0 ? "550 refused" : line == "DATA\r\n" ? "354 go" : "";
            return *c.refuse && line.find(c.refuse) != std::string::npos ? c.reply : "";
        };
        ScriptedSmtpServer server(std::ref(script));
        FixedMessage m = Message("body\r\n", 0);
        for (const char* address : {"r0@example.org", "r1@example.org", "r2@example.org"})
            m.AddRecipient(address, CNyrMailMessage::TO);
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Pipelining(1);
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.SendMailMessage(&m), c.result) << c.name;
        EXPECT_EQ(smtp.GetLastError(), c.error) << c.name;
        EXPECT_EQ(smtp.Disconnect(), c.log.back() == "QUIT\r\n" ? 1 : 0) << c.name;
        server.Join();
        EXPECT_EQ(script.log, c.log) << c.name;
    }
}

// A message of 200,000 recipients to a server that answers each read's
// commands at once, in long replies, through a small send buffer: the
// commands are far more than the socket buffers hold, and so are the replies. A client
// that wrote the whole group while taking replies in only up to its bound
// stalled the server, and the server it, until the time-out.
TEST(SmtpPipelining, AGroupBeyondTheSocketBuffersStallsNeitherSide)
{
    constexpr std::size_t kRecipients = 200000;
    const std::string longReply = "250 2.1.5 Recipient ok" + std::string(300, '.') + "\r\n";  // RFC 5321: up to 512
    std::size_t recipients = 0;
    std::string received;
    ScriptedSmtpServer server([&](Connection& c) {
        c.SmallSendBuffer(4096);
        if (!c.Send("220 scripted\r\n") || c.ReadLine().rfind("EHLO ", 0) != 0 ||
            !c.Send("250-scripted\r\n250 PIPELINING\r\n"))
            return;
        bool data = false;
        for (std::vector<std::string> lines; !data && c.ReadLines(lines);) {
            std::string replies;
            for (const auto& line : lines) {
                const bool recipient = line.rfind("RCPT TO: ", 0) == 0;
                recipients += recipient;
                data = line == "DATA\r\n";
                replies += data ? "354 go\r\n" : recipient ? longReply : "250 ok\r\n";
            }
            if (!c.Send(replies))
                return;
        }
        received = c.ReadUntil("\r\n.\r\n");
        c.Send("250 queued\r\n");
        if (c.ReadLine() == "QUIT\r\n")
            c.Send("221 bye\r\n");
    });
    FixedMessage m = Message("body\r\n", kRecipients);
    CNyrSmtp smtp("127.0.0.1", server.Port());
    smtp.Pipelining(1);
    smtp.Timeouts(Short());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.SendMailMessage(&m), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.GetLastError(), "OK");
    EXPECT_EQ(smtp.Disconnect(), 1);
    server.Join();
    EXPECT_EQ(recipients, kRecipients);
    EXPECT_EQ(received, "Subject: pipelined\r\n\r\nbody\r\n\r\n.\r\n");
}

// Without the server's offer the transaction is the synchronous one (a
// reply before each next command), and a server that does not know EHLO
// gets HELO. By default the plain HELO dialogue stays as it always was.
TEST(SmtpPipelining, WithoutTheOfferEachCommandWaitsForItsReply)
{
    for (const char* ehloReply : {"250 scripted\r\n", "500 what?\r\n"}) {
        std::vector<std::string> log;
        ScriptedSmtpServer server([&](Connection& c) {
            c.Send("220 scripted\r\n");
            for (std::string line; !(line = c.ReadLine()).empty();) {
                log.push_back(line);
                const std::string reply = line.rfind("EHLO", 0) == 0   ? ehloReply
                                          : line == "DATA\r\n"         ? "354 go\r\n"
                                          : line == "QUIT\r\n"         ? "221 bye\r\n"
                                                                       : "250 ok\r\n";
                c.Send(reply);
                if (line == "DATA\r\n") {
                    log.push_back(c.ReadUntil("\r\n.\r\n"));
                    c.Send("250 queued\r\n");
                }
            }
        });
        FixedMessage m = Message("body\r\n", 1);
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Pipelining(1);
        smtp.Timeouts(Short());
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.SendMailMessages({&m, &m}), 2u);
        EXPECT_EQ(smtp.Disconnect(), 1);
        server.Join();
        const bool helo = std::string(ehloReply).rfind("500", 0) == 0;
        ASSERT_EQ(log.size(), helo ? 11u : 10u) << ehloReply;
        EXPECT_EQ(log[0].rfind("EHLO ", 0), 0u);
        EXPECT_EQ(log[1].rfind("HELO ", 0), helo ? 0u : std::string::npos);
        const std::vector<std::string> transaction = {"MAIL From: <ann@example.org>\r\n",
                                                      "RCPT TO: <r0@example.org>\r\n", "DATA\r\n",
                                                      "Subject: pipelined\r\n\r\nbody\r\n\r\n.\r\n"};
        EXPECT_EQ(std::vector<std::string>(log.end() - 9, log.end() - 5), transaction);
        EXPECT_EQ(std::vector<std::string>(log.end() - 5, log.end() - 1), transaction);
        EXPECT_EQ(log.back(), "QUIT\r\n");
    }

    CNyrSmtp before;
    CNyrSmtp::PipeliningDefault(1);
    CNyrSmtp after;
    CNyrSmtp::PipeliningDefault(0);
    EXPECT_EQ(before.Pipelining(), 0);
    EXPECT_EQ(after.Pipelining(), 1);
}

}  // namespace

// What reaches the wire: no caller's text can become an SMTP command or end
// the data early, neither at a lax server (lines end at CR, LF or CR LF;
// commands after the data are run) nor at a strict one (aiosmtpd).
#include <gtest/gtest.h>

#include <random>

#include "nyr/mail/mail_message.h"
#include "nyr/mail/smtp.h"
#include "nyr/mail/smtp_data_p.h"
#include "tests/nyr/mail/mail_test_text.h"
#include "tests/nyr/mail/smtp_test_server.h"

namespace {

using nyr::test::CrLfLines;
using nyr::test::ScriptedSmtpServer;
using nyr::test::WithLineEnd;
using nyr::test::SmtpTestServer;
using Connection = ScriptedSmtpServer::Connection;

// The client always sends a blank line before the final dot (the body ends
// in CR LF, the terminator starts with one).
//
// A deliberately lax server: every line end counts, a line "." ends the data
// wherever it stands, one leading dot is removed from data lines, and what
// follows the data is read as commands. The log holds each command line and
// each data section (its lines joined with CR LF ends).
void LaxServer(Connection& c, std::vector<std::string>& log)
{
    c.Send("220 lax\r\n");
    for (std::string line; c.ReadLaxLine(line);) {
        log.push_back(line);
        if (line.rfind("QUIT", 0) == 0) {
            c.Send("221 bye\r\n");
            return;
        }
        if (line.rfind("DATA", 0) != 0) {
            c.Send("250 ok\r\n");
            continue;
        }
        c.Send("354 go\r\n");
        std::string data;
        while (c.ReadLaxLine(line) && line != ".")
            data += (line.rfind('.', 0) == 0 ? line.substr(1) : line) + "\r\n";
        log.push_back(data);
        c.Send("250 queued\r\n");
    }
}

// A message whose header is the caller's own text, as a derived class may write it.
struct RawHeaderMessage : CNyrMailMessage
{
    std::string header;
    std::string Header() const override { return header; }
};

const char* const kHostileBodies[] = {
    "hello\n.\nMAIL FROM:<x@y>\nRCPT TO:<v@y>\nDATA\nsmuggled\n.\n",
    "hello\r.\rMAIL FROM:<x@y>\rRCPT TO:<v@y>\rDATA\rsmuggled\r.\r",
    "hello\r\n.\nMAIL FROM:<x@y>\r\nRCPT TO:<v@y>\n\rDATA\r\r\n.\r",
    ".hidden\r\n..two dots\r\n.\r\n.",
    "a\r\n.\r\nb",
    "\n.\n",
    "",
};

TEST(SmtpWire, HostileBodiesAndHeadersMakeOneTransactionAtALaxServer)
{
    std::vector<std::string> log;
    ScriptedSmtpServer server([&log](Connection& c) { LaxServer(c, log); });
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    std::vector<std::string> expected;
    for (const char* body : kHostileBodies) {
        RawHeaderMessage m;
        m.From("ann@example.org");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.header = std::string("Subject: ") + body + "\r\n";
        m.Body(body);
        ASSERT_EQ(smtp.SendMailMessage(&m), 1) << smtp.GetLastError();
        expected.insert(expected.end(), {"MAIL From: <ann@example.org>", "RCPT TO: <bob@example.org>", "DATA",
                                         CrLfLines(m.header) + "\r\n" + WithLineEnd(CrLfLines(body)) + "\r\n"});
    }
    EXPECT_EQ(smtp.Disconnect(), 1) << smtp.GetLastError();
    server.Join();
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(log.front().rfind("HELO ", 0), 0u);
    EXPECT_EQ(log.back(), "QUIT");
    EXPECT_EQ(std::vector<std::string>(log.begin() + 1, log.end() - 1), expected);
}

TEST(SmtpWire, AStrictServerReceivesEveryLineAsWritten)
{
    SmtpTestServer server;
    ASSERT_NE(server.Port(), 0u);
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    for (const char* body : kHostileBodies) {
        CNyrMailMessage m;
        m.From("ann@example.org");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.Body(body);
        ASSERT_EQ(smtp.SendMailMessage(&m), 1) << smtp.GetLastError();
    }
    smtp.Disconnect();
    const auto mails = server.Messages(std::size(kHostileBodies));
    ASSERT_EQ(mails.size(), std::size(kHostileBodies));
    for (std::size_t i = 0; i < mails.size(); ++i) {
        const std::string& data = mails[i].data;
        // aiosmtpd keeps the line end before the terminator's: the blank line the client sends.
        EXPECT_EQ(data.substr(data.find("\r\n\r\n") + 4), WithLineEnd(CrLfLines(kHostileBodies[i])) + "\r\n") << i;
    }
}

// Random texts of line ends, dots and letters: whatever comes, the lax server
// sees one transaction per message and reads the text back line for line.
TEST(SmtpWire, RandomTextsNeverLeaveTheirMessage)
{
    std::vector<std::string> log;
    ScriptedSmtpServer server([&log](Connection& c) { LaxServer(c, log); });
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    std::mt19937 random(20240613);
    std::vector<std::string> bodies;
    for (int n = 0; n < 200; ++n) {
        std::string body;
        for (std::size_t length = random() % 40; body.size() < length;)
            body += "\r\n.aM"[random() % 5];
        CNyrMailMessage m;
        m.From("ann@example.org");
        m.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        m.Body(body.c_str());
        ASSERT_EQ(smtp.SendMailMessage(&m), 1) << smtp.GetLastError();
        bodies.push_back(body);
    }
    smtp.Disconnect();
    server.Join();
    ASSERT_EQ(log.size(), 2 + 4 * bodies.size());
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        const std::string& data = log[1 + 4 * i + 3];
        EXPECT_EQ(log[1 + 4 * i], "MAIL From: <ann@example.org>");
        EXPECT_EQ(data.substr(data.find("\r\n\r\n") + 4), WithLineEnd(CrLfLines(bodies[i])) + "\r\n") << i;
    }
}

TEST(SmtpWire, WireLinesNormaliseLineEndsBeforeDoublingLeadingDots)
{
    const struct
    {
        const char* in;
        bool stuff;
        const char* out;
    } cases[] = {
        {"a\r\n.\r\nb", true, "a\r\n..\r\nb"},
        {".x\r\n..\r\n", true, "..x\r\n...\r\n"},
        {"x\r", true, "x\r\n"},
        {"\r\r\n\n\r.", true, "\r\n\r\n\r\n\r\n.."},
        {"\n.\n", false, "\r\n.\r\n"},
        {"plain\r\nlines\r\n", true, "plain\r\nlines\r\n"},
        {"", true, ""},
    };
    for (const auto& c : cases) {
        std::string text = c.in;
        NyrSmtpWireLines(text, c.stuff);
        EXPECT_EQ(text, c.out) << c.in;
    }
}

}  // namespace

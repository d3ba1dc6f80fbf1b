// CNyrSmtp against a real SMTP server (aiosmtpd) on 127.0.0.1: plain,
// STARTTLS, implicit TLS and login.
#include <gtest/gtest.h>

#include <random>

#include "nyr/mail/mail_message_mime_container.h"
#include "nyr/mail/smtp.h"
#include "nyr/util/base64.h"
#include "tests/nyr/mail/smtp_test_server.h"
#include "tests/nyr/mail/test_certificate.h"

namespace {

using nyr::test::SmtpTestServer;
using nyr::test::TempDir;

std::string RandomBytes(std::size_t size, unsigned seed)
{
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random());
    return bytes;
}

std::string WithoutFirstLine(const std::string& text)
{
    return text.substr(text.find("\r\n") + 2);
}

// The bodies of a multipart body's parts, in order.
std::vector<std::string> PartBodies(const std::string& body, const std::string& boundary)
{
    std::vector<std::string> parts;
    const std::string delimiter = "\r\n--" + boundary;
    std::size_t at = body.find(delimiter);
    while (at != std::string::npos && body.compare(at + delimiter.size(), 2, "--") != 0) {
        const std::size_t start = body.find("\r\n\r\n", at + delimiter.size()) + 4;
        at = body.find(delimiter, start);
        parts.push_back(body.substr(start, at - start));
    }
    return parts;
}

TEST(Smtp, MessagesArriveByteForByteAndAttachmentsDecodeBack)
{
    SmtpTestServer server;
    ASSERT_NE(server.Port(), 0u);
    TempDir dir;
    const std::string first = RandomBytes(100000, 1), second = RandomBytes(4097, 2);
    nyr::test::WriteFile(dir.File("network.dat"), first);
    nyr::test::WriteFile(dir.File("report.pdf"), second);

    CNyrMailMessageMimeContainer message;
    message.From("Ann Surveyor <ann@example.org>");
    message.AddRecipient("Bob <bob@example.org>", CNyrMailMessage::TO);
    message.AddRecipient("carl@example.org", CNyrMailMessage::CC);
    message.AddRecipient("dora@example.org", CNyrMailMessage::BCC);
    message.Subject("Adjustment results");
    message.AddMimePart(new CNyrMailMessageMimePartText(NyrEncodeIso8859("Results attached.\r\n").c_str()));
    message.AddMimePart(new CNyrMailMessageMimePartBinary(dir.File("network.dat").c_str()));
    message.AddMimePart(new CNyrMailMessageMimePartBinary(dir.File("report.pdf").c_str()));

    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.Connect(), 1);  // already connected
    EXPECT_EQ(smtp.Port(25), 0);
    EXPECT_EQ(smtp.Server("elsewhere"), 0);
    EXPECT_EQ(smtp.Port(), server.Port());
    EXPECT_EQ(smtp.Server(), "127.0.0.1");
    ASSERT_EQ(smtp.SendMailMessage(&message), 1) << smtp.GetLastError();
    CNyrMailMessage dots;  // a second message over the same connection, to a Bcc only
    dots.From("ann@example.org");
    dots.AddRecipient("hidden@example.org", CNyrMailMessage::BCC);
    dots.Body(".\r\nline\r\n.\r\n.\r\n..\r\n.end");
    ASSERT_EQ(smtp.SendMailMessage(&dots), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.GetLastError(), "OK");
    EXPECT_EQ(smtp.Disconnect(), 1);
    EXPECT_EQ(smtp.Connected(), 0);
    EXPECT_EQ(smtp.Port(25), 1);

    const auto mails = server.Messages(2);
    ASSERT_EQ(mails.size(), 2u);
    // Every line that begins with a dot arrives as sent.
    EXPECT_EQ(mails[1].data.substr(mails[1].data.find("\r\n\r\n") + 4), ".\r\nline\r\n.\r\n.\r\n..\r\n.end\r\n\r\n");
    EXPECT_NE(mails[1].envelope.find(R"("to": ["hidden@example.org"])"), std::string::npos);
    EXPECT_EQ(mails[0].envelope,
              R"({"from": "ann@example.org", "to": ["bob@example.org", "carl@example.org", "dora@example.org"], )"
              R"("login": null})");
    // Header, blank line, body (ending in "\r\n"), and the blank line the
    // client always sends before the final dot. The Date may have ticked.
    const std::string composed = message.Header() + "\r\n" + message.Body() + "\r\n";
    EXPECT_EQ(WithoutFirstLine(mails[0].data), WithoutFirstLine(composed));
    EXPECT_EQ(mails[0].data.substr(0, mails[0].data.find("\r\n\r\n")).find("dora"), std::string::npos);  // Bcc

    // The library's decoder reads its own Base64 back (strict decoders refuse
    // the extra "A"; known and intended).
    const auto parts = PartBodies(WithoutFirstLine(mails[0].data), message.Boundary());
    ASSERT_EQ(parts.size(), 3u);
    EXPECT_EQ(parts[0], "Results attached.\r\n");
    const std::string* originals[] = {&first, &second};
    for (int i = 0; i < 2; ++i) {
        std::string text = parts[i + 1];
        const unsigned long n = NyrDecodeBase64(reinterpret_cast<unsigned char*>(text.data()));
        EXPECT_EQ(std::string(text.data(), n), *originals[i]) << "attachment " << i;
    }
}

class SmtpTls : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(nyr::test::WriteSelfSignedCertificate(m_cert, m_key, "IP:127.0.0.1,DNS:localhost"));
    }

    static CNyrMailMessage Message()
    {
        CNyrMailMessage message;
        message.From("ann@example.org");
        message.AddRecipient("bob@example.org", CNyrMailMessage::TO);
        message.Subject("secure");
        message.Body("over TLS\r\n");
        return message;
    }

    TempDir m_dir;
    std::string m_cert = m_dir.File("cert.pem"), m_key = m_dir.File("key.pem");
};

TEST_F(SmtpTls, StartTlsVerifiesTheCertificateThenLogsIn)
{
    SmtpTestServer server({"--cert", m_cert, "--key", m_key, "--user", "ann", "--password", "s3cret pass"});
    ASSERT_NE(server.Port(), 0u);
    CNyrSmtp smtp("127.0.0.1", server.Port());
    ASSERT_EQ(smtp.Security(CNyrSmtp::SECURITY_STARTTLS), 1);

    EXPECT_EQ(smtp.Connect(), 0);  // self-signed and not trusted
    EXPECT_EQ(smtp.GetLastError(), "0:The certificate of the SMTP server could not be verified.");

    ASSERT_EQ(smtp.TrustedCertificates(m_cert), 1);
    smtp.Credentials("ann", "wrong");
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "535:SMTP authentication failed.");
    EXPECT_EQ(smtp.Connected(), 0);

    smtp.Credentials("ann", "s3cret pass");
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.Security(CNyrSmtp::SECURITY_NONE), 0);  // not while connected
    CNyrMailMessage message = Message();
    ASSERT_EQ(smtp.SendMailMessage(&message), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.Disconnect(), 1);

    const auto mails = server.Messages(1);
    ASSERT_EQ(mails.size(), 1u);
    EXPECT_NE(mails[0].envelope.find(R"("login": "ann")"), std::string::npos) << mails[0].envelope;
    EXPECT_NE(mails[0].data.find("\r\n\r\nover TLS\r\n"), std::string::npos);
}

TEST_F(SmtpTls, LoginFallsBackToAuthLoginAndImplicitTlsSpeaksTlsFromTheStart)
{
    {
        SmtpTestServer server({"--cert", m_cert, "--key", m_key, "--user", "ann", "--password", "pw", "--no-plain"});
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Security(CNyrSmtp::SECURITY_STARTTLS);
        smtp.TrustedCertificates(m_cert);
        smtp.Credentials("ann", "pw");
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        CNyrMailMessage message = Message();
        EXPECT_EQ(smtp.SendMailMessage(&message), 1) << smtp.GetLastError();
        smtp.Disconnect();
        ASSERT_EQ(server.Messages(1).size(), 1u);
        EXPECT_NE(server.Messages(1)[0].envelope.find(R"("login": "ann")"), std::string::npos);
    }
    {
        SmtpTestServer server({"--cert", m_cert, "--key", m_key, "--implicit-tls"});
        CNyrSmtp smtp("127.0.0.1", server.Port());
        smtp.Security(CNyrSmtp::SECURITY_TLS);
        EXPECT_EQ(smtp.Connect(), 0);
        EXPECT_EQ(smtp.GetLastError(), "0:The certificate of the SMTP server could not be verified.");
        smtp.TrustedCertificates(m_cert);
        ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
        CNyrMailMessage message = Message();
        EXPECT_EQ(smtp.SendMailMessage(&message), 1) << smtp.GetLastError();
        EXPECT_EQ(smtp.Disconnect(), 1);
        EXPECT_EQ(server.Messages(1).size(), 1u);
    }
}

// Pipelined over TLS, where the client takes in replies while it still
// writes through the same TLS session: a group larger than the socket
// buffers and a large body among small messages.
TEST_F(SmtpTls, PipelinedMessagesArriveWholeOverTls)
{
    SmtpTestServer server({"--cert", m_cert, "--key", m_key, "--implicit-tls", "--pipelining"});
    ASSERT_NE(server.Port(), 0u);
    std::vector<CNyrMailMessage> messages(10, Message());
    std::string body;
    while (body.size() < (4u << 20))
        body += ".line " + std::to_string(body.size()) + "\r\n";
    messages[4].Body(body.c_str());
    for (int i = 0; i < 5000; ++i)
        messages[7].AddRecipient(("r" + std::to_string(i) + "@example.org").c_str(), CNyrMailMessage::BCC);
    std::vector<CNyrMailMessage*> pointers;
    for (auto& m : messages)
        pointers.push_back(&m);

    CNyrSmtp smtp("127.0.0.1", server.Port());
    smtp.Security(CNyrSmtp::SECURITY_TLS);
    smtp.TrustedCertificates(m_cert);
    smtp.Pipelining(1);
    ASSERT_EQ(smtp.Connect(), 1) << smtp.GetLastError();
    EXPECT_EQ(smtp.SendMailMessages(pointers), messages.size()) << smtp.GetLastError();
    EXPECT_EQ(smtp.Disconnect(), 1);

    const auto mails = server.Messages(messages.size());
    ASSERT_EQ(mails.size(), messages.size());
    EXPECT_EQ(mails[4].data.substr(mails[4].data.find("\r\n\r\n") + 4), body + "\r\n");
    EXPECT_NE(mails[7].envelope.find("\"r4999@example.org\"]"), std::string::npos);
    EXPECT_NE(mails[9].data.find("\r\n\r\nover TLS\r\n"), std::string::npos);
}

TEST_F(SmtpTls, ATrustedCertificateForAnotherNameIsRefused)
{
    const std::string cert = m_dir.File("other.pem"), key = m_dir.File("other.key");
    ASSERT_TRUE(nyr::test::WriteSelfSignedCertificate(cert, key, "DNS:mail.example.org"));
    SmtpTestServer server({"--cert", cert, "--key", key});
    CNyrSmtp smtp("127.0.0.1", server.Port());
    smtp.Security(CNyrSmtp::SECURITY_STARTTLS);
    smtp.TrustedCertificates(cert);
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:The certificate of the SMTP server could not be verified.");
}

TEST_F(SmtpTls, NoSilentFallBackToPlainText)
{
    SmtpTestServer plain;  // offers no STARTTLS
    CNyrSmtp smtp("127.0.0.1", plain.Port());
    smtp.Security(CNyrSmtp::SECURITY_STARTTLS);
    EXPECT_EQ(smtp.Connect(), 0);
    EXPECT_EQ(smtp.GetLastError(), "0:The SMTP server does not offer STARTTLS.");
    EXPECT_EQ(smtp.Connected(), 0);

    // Credentials are never offered over plain text: refused before connecting.
    CNyrSmtp unsecured("127.0.0.1", plain.Port());
    unsecured.Credentials("ann", "pw");
    EXPECT_EQ(unsecured.Connect(), 0);
    EXPECT_EQ(unsecured.GetLastError(), "0:User name and password are sent over a secure connection only.");
}

}  // namespace

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli_test_p.h"
#include "tests/nyr/mail/smtp_test_server.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;

TEST(CliMail, ComposePrintsTheMessageAsItWouldBeSent)
{
    TempDir dir;
    WriteFile(dir.File("points.csv"), "P1,1,2\n");
    const auto r = Nyr({"mail", "compose", "--from", "Ann <ann@example.org>", "--to", "bob@example.org", "--bcc",
                        "eve@example.org", "--subject", "Points", "--body", "Two lines\nof text = fine",
                        "--attach", dir.File("points.csv")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const std::string out = r.out.substr(r.out.find("\r\n") + 2);  // after the Date
    EXPECT_EQ(out.substr(0, out.find("\r\n\r\n") + 4),
              "From: \"Ann\" <ann@example.org>\r\n"
              "To: \" \" <bob@example.org>\r\n"
              "X-Mailer: NyrMail\r\n"
              "Subject: Points\r\n"
              "MIME-Version: 1.0\r\n"
              "Content-Type: multipart/mixed;\r\n"
              "\tboundary=_NextPart_CNyrMail_1dE8e48F60beBCECoestrsf\r\n\r\n");
    EXPECT_NE(out.find("charset=\"utf-8\"\r\nContent-transfer-encoding: quoted-printable\r\n\r\n"
                       "Two lines\r\nof text =3D fine\r\n--"),
              std::string::npos);
    EXPECT_NE(out.find("filename=\"points.csv\"\r\nContent-transfer-encoding: Base64\r\n\r\nUDEsMSwyCg==\r\n--"),
              std::string::npos);
}

TEST(CliMail, AttachmentsGoInStandardBase64UnlessTheLegacyFormIsAsked)
{
    TempDir dir;
    WriteFile(dir.File("abc.bin"), "abc");  // a multiple of three: the forms differ
    const std::vector<std::string> compose = {"mail", "compose", "--from", "a@x", "--to", "b@x", "--subject", "s",
                                              "--body", "b", "--attach", dir.File("abc.bin")};
    const auto standard = Nyr(compose);
    ASSERT_EQ(standard.exitCode, 0) << standard.err;
    EXPECT_NE(standard.out.find("filename=\"abc.bin\"\r\nContent-transfer-encoding: Base64\r\n\r\nYWJj\r\n--"),
              std::string::npos);
    std::vector<std::string> legacyArgs = compose;
    legacyArgs.push_back("--legacy-base64");
    const auto legacy = Nyr(legacyArgs);
    ASSERT_EQ(legacy.exitCode, 0) << legacy.err;
    EXPECT_NE(legacy.out.find("\r\n\r\nYWJjA===\r\n--"), std::string::npos);
}

// /dev/zero as a body ran out of memory, a FIFO blocked for ever, a folder
// or /dev/null went out as an empty attachment.
TEST(CliMail, OnlyRegularFilesWithinTheirLimitsAreRead)
{
    TempDir dir;
    ASSERT_EQ(mkfifo(dir.File("fifo").c_str(), 0600), 0);
    WriteFile(dir.File("big.txt"), std::string((16u << 20) + 1, 'x'));
    WriteFile(dir.File("password"), std::string(5000, 'p'));
    const std::vector<std::string> message = {"--from", "a@x", "--to", "b@x", "--subject", "s"};
    const struct
    {
        std::vector<std::string> args;
        std::string err;
    } cases[] = {
        {{"--body-file", "/dev/zero"}, "cannot read /dev/zero: not a regular file"},
        {{"--body-file", dir.File("fifo")}, "cannot read " + dir.File("fifo") + ": not a regular file"},
        {{"--body-file", dir.Path()}, "cannot read " + dir.Path() + ": not a regular file"},
        {{"--body-file", dir.File("big.txt")}, "cannot read " + dir.File("big.txt") + ": larger than 16777216 bytes"},
        {{"--body", "b", "--attach", "/dev/null"}, "cannot read /dev/null: not a regular file"},
        {{"--body", "b", "--attach", dir.File("fifo")}, "cannot read " + dir.File("fifo") + ": not a regular file"},
        {{"--body", "b", "--attach", dir.Path()}, "cannot read " + dir.Path() + ": not a regular file"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"mail", "compose"};
        args.insert(args.end(), message.begin(), message.end());
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto r = Nyr(args);
        EXPECT_EQ(r.exitCode, 1) << c.err;
        EXPECT_EQ(r.err, "nyr mail compose: " + c.err + "\n");
        EXPECT_EQ(r.out, "");

        // The hand-off says which file, before the mail client is started
        // (/bin/true would take anything).
        std::vector<std::string> handOff = {"mail", "handoff", "--to", "b@x", "--command", "/bin/true"};
        handOff.insert(handOff.end(), c.args.begin(), c.args.end());
        const auto h = Nyr(handOff);
        EXPECT_EQ(h.exitCode, 1) << c.err;
        EXPECT_EQ(h.err, "nyr mail handoff: " + c.err + "\n");
    }
    for (const std::string& password : {std::string("/dev/zero"), dir.File("password")}) {
        std::vector<std::string> args = {"mail", "send", "--server", "127.0.0.1", "--tls", "--user", "u",
                                         "--password-file", password, "--body", "b"};
        args.insert(args.end(), message.begin(), message.end());
        const auto r = Nyr(args);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(r.err.rfind("nyr mail send: cannot read " + password + ": ", 0), 0u) << r.err;
    }
}

TEST(CliMail, BadInputIsRefusedWithItsReason)
{
    const struct
    {
        std::vector<std::string> args;
        int exitCode;
        const char* err;
    } cases[] = {
        {{"mail", "compose", "--from", "a@x", "--subject", "s", "--body", "b"}, 2, "needs a recipient"},
        {{"mail", "compose", "--from", "a@x", "--to", "b@x", "--subject", "s"}, 2, "needs --body or --body-file"},
        {{"mail", "compose", "--from", "a@x", "--to", "b @x", "--subject", "s", "--body", "b"}, 1,
         "not a valid mail address: b @x"},
        {{"mail", "compose", "--from", "a@x", "--to", "b@x", "--subject", "s", "--body", "b", "--attach",
          "/nonexistent/file"},
         1, "cannot read /nonexistent/file"},
        {{"mail", "send", "--server", "h", "--user", "u", "--from", "a@x", "--to", "b@x", "--subject", "s", "--body",
          "b"},
         2, "--user and --password-file go together"},
        {{"mail", "handoff", "--to", "b@x", "--command", "nyr-no-such-mail-command"}, 1,
         "nyr-no-such-mail-command was not found"},
        {{"mail", "handoff", "--to", "b@x", "--command", "/bin/false"}, 1,
         "The mail client hand-off command does not work."},
    };
    for (const auto& c : cases) {
        const auto r = Nyr(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode) << c.args.back() << "\n" << r.err;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }
}

TEST(CliMail, SendDeliversToARealServerAndReportsFailures)
{
    nyr::test::SmtpTestServer server;
    ASSERT_NE(server.Port(), 0u);
    const auto r = Nyr({"mail", "send", "--server", "127.0.0.1", "--port", std::to_string(server.Port()), "--from",
                        "ann@example.org", "--to", "bob@example.org", "--cc", "carl@example.org", "--subject",
                        "From the tool", "--body", "Hello\n.\nBye\n"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "sent to 2 recipient(s)\n");
    const auto mails = server.Messages(1);
    ASSERT_EQ(mails.size(), 1u);
    EXPECT_NE(mails[0].data.find("Subject: From the tool\r\n"), std::string::npos);
    EXPECT_NE(mails[0].data.find("\r\n\r\nHello\r\n.\r\nBye\r\n"), std::string::npos);
    EXPECT_NE(mails[0].envelope.find(R"("to": ["bob@example.org", "carl@example.org"])"), std::string::npos);

    nyr::test::SmtpTestServer pipelining({"--pipelining"});
    const auto pipelined = Nyr({"mail", "send", "--server", "127.0.0.1", "--port", std::to_string(pipelining.Port()),
                                "--pipelining", "--from", "ann@example.org", "--to", "bob@example.org", "--subject",
                                "Pipelined", "--body", ".dot\n"});
    EXPECT_EQ(pipelined.exitCode, 0) << pipelined.err;
    ASSERT_EQ(pipelining.Messages(1).size(), 1u);
    EXPECT_NE(pipelining.Messages(1)[0].data.find("\r\n\r\n.dot\r\n"), std::string::npos);

    const auto refused = Nyr({"mail", "send", "--server", "127.0.0.1", "--port", std::to_string(server.Port()),
                              "--starttls", "--from", "a@x", "--to", "b@x", "--subject", "s", "--body", "b"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.err, "nyr mail send: 0:The SMTP server does not offer STARTTLS.\n");
}

TEST(CliMail, HandOffRunsTheCommandWithTheMail)
{
    // /bin/true stands in for xdg-email: it answers --version and takes the mail.
    const auto r = Nyr({"mail", "handoff", "--to", "bob@example.org", "--subject", "s", "--body", "text",
                        "--command", "/bin/true"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.err, "");
}

}  // namespace

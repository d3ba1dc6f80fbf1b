// CNyrMapiSendMail with the real xdg-email and a mail client of the test's
// own (tests/nyr/mail/mail_handler.py), registered for mailto in a temporary
// XDG environment, either as a plain mailto handler or as a Thunderbird
// found on PATH. The client decodes what it is given and records the fields.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mapi_send_mail.h"
#include "tests/nyr/mail/mail_test_text.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::FromHex;
using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;
using NyrMailHelper::MAIL_ADDRESS;
using Fields = std::vector<std::pair<std::string, std::string>>;

std::vector<std::string> g_messages;
std::vector<bool> g_mainWindow;

int RecordMessage(const std::string& text, const std::string&, unsigned)
{
    g_messages.push_back(text);
    return 1;
}

void RecordMainWindow(bool enable)
{
    g_mainWindow.push_back(enable);
}

// A desktop of the test's own: HOME, the XDG folders and DISPLAY point into
// a temporary folder whose bin/ leads PATH; the mail client there is the
// mailto handler. It exits with the status in the file "status" (0 when
// missing), or ends its parent with SIGTERM when that file says "cancel".
class MailHandOff : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Unset where empty. xdg-open asks the desktop files only with a display.
        const std::pair<const char*, std::string> environment[] = {
            {"HOME", m_dir.Path()}, {"XDG_CONFIG_HOME", m_dir.File("config")}, {"XDG_DATA_HOME", m_dir.File("share")},
            {"XDG_DATA_DIRS", m_dir.File("empty")}, {"XDG_CONFIG_DIRS", m_dir.File("empty")},
            {"XDG_RUNTIME_DIR", m_dir.Path()}, {"DISPLAY", ":99"}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
            {"XDG_CURRENT_DESKTOP", ""}, {"DESKTOP_SESSION", ""}, {"KDE_FULL_SESSION", ""}, {"MAILER", ""},
            {"GNOME_DESKTOP_SESSION_ID", ""}, {"MATE_DESKTOP_SESSION_ID", ""}, {"BROWSER", ""}, {"WAYLAND_DISPLAY", ""},
            {"PATH", m_dir.File("bin") + ":" + std::getenv("PATH")}};
        for (const auto& [name, value] : environment) {
            const char* saved = std::getenv(name);
            m_savedEnvironment[name] = saved ? std::optional<std::string>(saved) : std::nullopt;
            value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
        }
        for (const char* folder : {"bin", "share/applications", "config", "empty", "data"})
            std::filesystem::create_directories(m_dir.File(folder));
        WriteFile(m_dir.File("config/mimeapps.list"), "[Default Applications]\n"
                                                      "x-scheme-handler/mailto=nyrtest-mail.desktop\n");
        UseClient("nyr-test-mail-handler");

        CNyrUiHooks hooks;
        hooks.messageBox = RecordMessage;
        hooks.enableMainWindow = RecordMainWindow;
        NyrSetUiHooks(hooks);
        g_messages.clear();
        g_mainWindow.clear();
    }

    void TearDown() override
    {
        NyrSetUiHooks(CNyrUiHooks{});
        CNyrMapiSendMail::AttachmentClients({"thunderbird", "icedove", "evolution", "kmail"});
        for (const auto& [name, value] : m_savedEnvironment)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }

    // Installs the test's mail client as bin/NAME and registers it for mailto
    // by that name (so it is found on PATH, as a desktop would have it).
    void UseClient(const std::string& name)
    {
        const std::string program = m_dir.File("bin/" + name);
        WriteFile(program, "#!/usr/bin/python3\n" + ReadFile(NYR_SOURCE_DIR "/tests/nyr/mail/mail_handler.py"));
        chmod(program.c_str(), 0755);
        WriteFile(m_dir.File("share/applications/nyrtest-mail.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Test mail\nExec=" + name + " %u\n");
        std::filesystem::remove(m_dir.File("argv"));
        std::filesystem::remove(m_dir.File("received"));
    }

    // The client's arguments; empty when it did not run.
    std::vector<std::string> Argv() const
    {
        std::vector<std::string> argv;
        std::istringstream lines(ReadFile(m_dir.File("argv")));
        for (std::string line; std::getline(lines, line);)
            argv.push_back(line);
        return argv;
    }

    // The fields the client decoded, in order.
    Fields Received() const
    {
        Fields fields;
        std::istringstream lines(ReadFile(m_dir.File("received")));
        for (std::string name, hex; lines >> name >> hex;)
            fields.emplace_back(name, FromHex(hex));
        return fields;
    }

    TempDir m_dir;
    std::map<std::string, std::optional<std::string>> m_savedEnvironment;
};

TEST_F(MailHandOff, RecipientsSubjectAndTextReachTheMailClientInOrder)
{
    CNyrMapiSendMail mapi;
    ASSERT_EQ(mapi.Available(), 1) << "xdg-email is not installed";
    const std::vector<MAIL_ADDRESS> to = {{"Ann Smith", "ann@example.org"}, {"", "bob@example.org"}};
    const std::vector<MAIL_ADDRESS> bcc = {{"Eve", "eve@example.org"}};
    char before[4096];
    ASSERT_TRUE(getcwd(before, sizeof before));

    EXPECT_EQ(mapi.Send(&to, nullptr, &bcc, "Traverse\r\nreport", "Line 1\r\nLine 2 \xc3\xbc = 100%\r\n", nullptr), 1);
    // One argument, built here: xdg-email adds nothing.
    EXPECT_EQ(Argv(), (std::vector<std::string>{
                          "mailto:?to=Ann%20Smith%20%3Cann@example.org%3E&to=bob@example.org"
                          "&bcc=Eve%20%3Ceve@example.org%3E&subject=Traverse%20report"
                          "&body=Line%201%0D%0ALine%202%20%C3%BC%20%3D%20100%25%0D%0A"}));
    EXPECT_EQ(Received(), (Fields{{"to", "Ann Smith <ann@example.org>"}, {"to", "bob@example.org"},
                                  {"bcc", "Eve <eve@example.org>"}, {"subject", "Traverse report"},
                                  {"body", "Line 1\r\nLine 2 \xc3\xbc = 100%\r\n"}}));
    EXPECT_TRUE(g_messages.empty());
    EXPECT_TRUE(g_mainWindow.empty());  // no user interface asked for
    char after[4096];
    ASSERT_TRUE(getcwd(after, sizeof after));
    EXPECT_STREQ(before, after);

    // Asking for user interface disables the main window while the client runs.
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "", "", nullptr, CNyrMapiSendMail::MAPI_DIALOG), 1);
    EXPECT_EQ(Received(), (Fields{{"to", "Ann Smith <ann@example.org>"}, {"to", "bob@example.org"}}));
    EXPECT_EQ(g_mainWindow, (std::vector<bool>{false, true}));
}

// The text a shell would take apart: backslash escapes ("C:\new" lost its
// "\n", "\c" cut the body), quotes and commas that end a client's field,
// URI delimiters, line breaks and UTF-8. Each arrives as it was given.
TEST_F(MailHandOff, EveryFieldArrivesByteForByteAtEachKindOfClient)
{
    const std::string hostile = "C:\\new\\test \\c 'q' \"dq\" a,b & c? 50% %41 #1; +x \xc3\xbc\xe2\x82\xac";
    const std::vector<MAIL_ADDRESS> to = {{"O'Brien & Co #1?%", "o'brien+x%41#y?z&w@example.org"}};
    const std::vector<MAIL_ADDRESS> cc = {{"Dr. A. Smith (Survey)", "smith@example.org"}};
    const std::vector<MAIL_ADDRESS> bcc = {{"", "eve@example.org"}};
    const std::string subject = hostile + "\r\nsecond\nthird";
    const std::string body = hostile + "\r\n" + hostile + "\nlast\rline";
    const std::string file = m_dir.File("data/a\\b 'c\" ,&?%41#;\n\xc3\xbc.txt");
    WriteFile(file, "points");
    const std::vector<std::string> files = {file, m_dir.File("data/a\\b 'c\" ,&?%41#;\n\xc3\xbc.txt")};
    // As the handler receives them: line ends in the subject become blanks, in
    // the body CR LF.
    const std::string sentSubject = hostile + " second third";
    const std::string sentBody = hostile + "\r\n" + hostile + "\r\nlast\r\nline";

    const struct
    {
        const char* client;
        const char* attachField;
        std::size_t argc;
    } clients[] = {{"nyr-test-mail-handler", "attach", 1}, {"thunderbird", "attachment", 2}};
    for (const auto& c : clients) {
        UseClient(c.client);
        CNyrMapiSendMail::AttachmentClients({"nyr-test-mail-handler", "thunderbird"});
        CNyrMapiSendMail mapi;
        ASSERT_EQ(mapi.Send(&to, &cc, &bcc, subject.c_str(), body.c_str(), &files), 1) << c.client;
        EXPECT_EQ(Argv().size(), c.argc) << c.client;
        EXPECT_EQ(Received(), (Fields{{"to", "O'Brien & Co #1?% <o'brien+x%41#y?z&w@example.org>"},
                                      {"cc", "\"Dr. A. Smith (Survey)\" <smith@example.org>"},
                                      {"bcc", "eve@example.org"},
                                      {"subject", sentSubject},
                                      {"body", sentBody},
                                      {c.attachField, file},
                                      {c.attachField, file}}))
            << c.client;
        EXPECT_TRUE(g_messages.empty()) << c.client;
    }
}

// A recipient is refused when a client's address list would read part of
// it as structure: another recipient, or an option such as Thunderbird's
// attachment='...'. Nothing is started.
TEST_F(MailHandOff, RecipientsThatCouldAddARecipientOrAnOptionAreRefused)
{
    const MAIL_ADDRESS refused[] = {
        {"", "x@evil.org',attachment='/etc/shadow"}, {"", "a@x.org,b@y.org"}, {"", "a@x.org;b@y.org"},
        {"", "a b@x.org"}, {"", "<a@x.org>"}, {"", "a@x.org\n--attach=/etc/passwd"}, {"", "a\\@x.org"},
        {"Smith, Ann", "ann@x.org"}, {"A \"B\"", "ab@x.org"}, {"x>y", "xy@x.org"}, {"semi;colon", "s@x.org"},
        {"", ""},
    };
    for (const char* client : {"nyr-test-mail-handler", "thunderbird"}) {
        UseClient(client);
        CNyrMapiSendMail mapi;
        ASSERT_EQ(mapi.InitializeMapiLib(), 1);
        for (const auto& recipient : refused) {
            const std::vector<MAIL_ADDRESS> to = {{"", "ok@x.org"}, recipient};
            EXPECT_EQ(mapi.SendMailEx(nullptr, nullptr, &to, nullptr, "s", "t", nullptr, 0, 0),
                      CNyrMapiSendMail::MAPI_E_INVALID_RECIPS)
                << client << ": " << recipient.name << " / " << recipient.address;
        }
        EXPECT_TRUE(Argv().empty()) << client;
        const std::vector<MAIL_ADDRESS> to = {refused[0]};
        EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    }
    EXPECT_EQ(g_messages, std::vector<std::string>(
                              2, "One or more recipients were invalid or did not resolve to any address."));
}

TEST_F(MailHandOff, AttachmentsGoOnlyToClientsThatTakeThemAndOnlyFromRegularFiles)
{
    const std::string report = m_dir.File("data/report.csv");
    WriteFile(report, "P1,1.0,2.0\n");
    ASSERT_EQ(mkfifo(m_dir.File("data/fifo").c_str(), 0600), 0);
    const std::vector<MAIL_ADDRESS> to = {{"", "ann@example.org"}};
    const std::vector<std::string> files = {report};

    CNyrMapiSendMail mapi;
    ASSERT_EQ(mapi.InitializeMapiLib(), 1);
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", &files, 0, 0),
              CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE);
    EXPECT_TRUE(Argv().empty());  // the client was not started
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", &files), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"The specified attachment could not be opened."}));

    // A Thunderbird-family client is started directly, with file URLs.
    UseClient("thunderbird");
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", &files), 1);
    const auto argv = Argv();
    ASSERT_EQ(argv.size(), 2u);
    EXPECT_EQ(argv[0], "-compose");
    EXPECT_EQ(argv[1].rfind("to=ann@example.org,subject=s,body=t,attachment=file%3A%2F%2F%2F", 0), 0u) << argv[1];
    EXPECT_EQ(Received(), (Fields{{"to", "ann@example.org"}, {"subject", "s"}, {"body", "t"}, {"attachment", report}}));

    const struct
    {
        std::string path;
        unsigned long result;
    } special[] = {
        {m_dir.File("data/gone.csv"), CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND},
        {m_dir.File("data/gone/x.csv"), CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND},
        {"", CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND},
        {m_dir.File("data"), CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE},
        {m_dir.File("data/fifo"), CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE},  // and no wait for a writer
        {"/dev/null", CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE},
    };
    std::filesystem::remove(m_dir.File("argv"));
    for (const auto& s : special) {
        const std::vector<std::string> one = {s.path};
        EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", &one, 0, 0), s.result) << s.path;
    }
    EXPECT_TRUE(Argv().empty());
}

TEST_F(MailHandOff, ResultsOfTheHandOffMapToTheirTexts)
{
    const std::vector<MAIL_ADDRESS> to = {{"", "ann@example.org"}};
    CNyrMapiSendMail mapi;
    WriteFile(m_dir.File("status"), "1");
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);

    WriteFile(m_dir.File("status"), "cancel");
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", nullptr, 0, 0),
              CNyrMapiSendMail::MAPI_USER_ABORT);
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", nullptr), 1);  // a cancel is not a failure
    std::filesystem::remove(m_dir.File("status"));

    // About 128 KiB of text no longer fits on a command line.
    const std::string large(200 * 1024, 'x');
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", large.c_str(), nullptr, 0, 0),
              CNyrMapiSendMail::MAPI_E_TEXT_TOO_LARGE);
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", large.c_str(), nullptr), 0);

    // xdg-email's own exit statuses for files (a stand-in gives them here).
    for (const int status : {2, 5}) {
        const std::string command = m_dir.File("bin/exit" + std::to_string(status));
        WriteFile(command, "#!/bin/sh\n[ \"$1\" = --version ] && exit 0\nexit " + std::to_string(status) + "\n");
        chmod(command.c_str(), 0755);
        CNyrMapiSendMail standIn;
        standIn.Command(command);
        EXPECT_EQ(standIn.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    }

    CNyrMapiSendMail::MapiRecipDesc strange;
    strange.ulRecipClass = 4;
    strange.lpszAddress = "ann@example.org";
    CNyrMapiSendMail::MapiMessage message;
    message.nRecipCount = 1;
    message.lpRecips = &strange;
    EXPECT_EQ(mapi.SendMail(0, nullptr, &message, 0), CNyrMapiSendMail::MAPI_E_BAD_RECIPTYPE);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"One or more unspecified errors occurred.",
                                                     "The text in the message was too large.",
                                                     "The specified attachment was not found.",
                                                     "The specified attachment could not be opened."}));
}

TEST_F(MailHandOff, CommandsThatAreMissingOrBrokenMakeTheHandOffUnavailable)
{
    const std::vector<MAIL_ADDRESS> to = {{"", "ann@example.org"}};
    CNyrMapiSendMail missing;
    missing.Command("nyr-no-such-mail-command");
    EXPECT_EQ(missing.Available(), 0);
    EXPECT_EQ(missing.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    EXPECT_TRUE(g_messages.empty());  // silently

    CNyrMapiSendMail uninitialised;
    CNyrMapiSendMail::MapiMessage message;
    unsigned long session = 99;
    EXPECT_EQ(uninitialised.SendMail(0, nullptr, &message, 0), 26146u);  // a text number as result, intended
    EXPECT_EQ(uninitialised.Logon(0, nullptr, nullptr, 0, &session), 26146u);
    ASSERT_EQ(uninitialised.InitializeMapiLib(), 1);
    EXPECT_EQ(uninitialised.Logon(0, nullptr, nullptr, 0, &session), 0u);
    EXPECT_EQ(uninitialised.Logoff(session, 0, 0), 0u);

    CNyrMapiSendMail failing;
    failing.Command("/bin/false");
    EXPECT_EQ(failing.Available(), 1);
    EXPECT_EQ(failing.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    EXPECT_EQ(failing.Available(), 0);  // for good
    EXPECT_EQ(failing.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"The mail client hand-off command does not work."}));

    const std::string unstartable = m_dir.File("bin/broken-mailer");
    WriteFile(unstartable, "#!/nonexistent/interpreter\n");
    chmod(unstartable.c_str(), 0755);
    g_messages.clear();
    CNyrMapiSendMail broken;
    broken.Command(unstartable);
    EXPECT_EQ(broken.InitializeMapiLib(), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"The mail client cannot be started."}));
}

}  // namespace

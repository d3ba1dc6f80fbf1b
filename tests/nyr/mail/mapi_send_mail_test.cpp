// CNyrMapiSendMail with the real xdg-email and a mail handler of the test's
// own, registered for mailto in a temporary XDG environment.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "nyr/frame/ui_hooks.h"
#include "nyr/mail/mapi_send_mail.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;
using NyrMailHelper::MAIL_ADDRESS;

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

// A desktop of the test's own: HOME, the XDG folders and DISPLAY point into a
// temporary folder; a handler script there is the mailto handler. It writes
// its arguments, one per line, to "received" and exits with the status in
// the file "status" (0 when missing), or ends its parent with SIGTERM when
// that file says "cancel".
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
            {"GNOME_DESKTOP_SESSION_ID", ""}, {"MATE_DESKTOP_SESSION_ID", ""}, {"BROWSER", ""}, {"WAYLAND_DISPLAY", ""}};
        for (const auto& [name, value] : environment) {
            const char* saved = std::getenv(name);
            m_savedEnvironment[name] = saved ? std::optional<std::string>(saved) : std::nullopt;
            value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
        }
        for (const char* folder : {"bin", "share/applications", "config", "empty"})
            std::filesystem::create_directories(m_dir.File(folder));
        WriteFile(m_dir.File("config/mimeapps.list"), "[Default Applications]\n"
                                                      "x-scheme-handler/mailto=nyrtest-mail.desktop\n");
        UseHandler("nyr-test-mail-handler");

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
        for (const auto& [name, value] : m_savedEnvironment)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }

    // Registers a handler script under the program name `name`.
    void UseHandler(const std::string& name)
    {
        const std::string program = m_dir.File("bin/" + name);
        WriteFile(program, "#!/bin/sh\n"
                           "dir='" + m_dir.Path() + "'\n"
                           "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$dir/received\"\n"
                           "status=$(cat \"$dir/status\" 2>/dev/null)\n"
                           "[ \"$status\" = cancel ] && kill -TERM $PPID\n"
                           "exit ${status:-0}\n");
        chmod(program.c_str(), 0755);
        WriteFile(m_dir.File("share/applications/nyrtest-mail.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Test mail\nExec=" + program + " %u\n");
    }

    std::string Received() const { return ReadFile(m_dir.File("received")); }

    TempDir m_dir;
    std::map<std::string, std::optional<std::string>> m_savedEnvironment;
};

TEST_F(MailHandOff, RecipientsSubjectAndTextReachTheMailClientInOrder)
{
    CNyrMapiSendMail mapi;
    ASSERT_EQ(mapi.Available(), 1) << "xdg-email is not installed";
    const std::vector<MAIL_ADDRESS> to = {{"Ann", "ann@example.org"}, {"", "bob@example.org"}};
    const std::vector<MAIL_ADDRESS> bcc = {{"Eve", "eve@example.org"}};
    char before[4096];
    ASSERT_TRUE(getcwd(before, sizeof before));

    EXPECT_EQ(mapi.Send(&to, nullptr, &bcc, "Traverse\r\nreport", "Line 1\r\nLine 2 \xc3\xbc = 100%\r\n", nullptr), 1);
    EXPECT_EQ(Received(), "mailto:?to=ann@example.org&to=bob@example.org&bcc=eve@example.org"
                          "&subject=Traverse%20report&body=Line%201%0D%0ALine%202%20%C3%BC%20%3D%20100%25\n");
    EXPECT_TRUE(g_messages.empty());
    EXPECT_TRUE(g_mainWindow.empty());  // no user interface asked for
    char after[4096];
    ASSERT_TRUE(getcwd(after, sizeof after));
    EXPECT_STREQ(before, after);

    // Asking for user interface disables the main window while the client runs.
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "", "", nullptr, CNyrMapiSendMail::MAPI_DIALOG), 1);
    EXPECT_EQ(Received(), "mailto:?to=ann@example.org&to=bob@example.org\n");
    EXPECT_EQ(g_mainWindow, (std::vector<bool>{false, true}));
}

TEST_F(MailHandOff, AttachmentsGoOnlyToClientsThatTakeThem)
{
    const std::string report = m_dir.File("data/report.csv");
    std::filesystem::create_directories(m_dir.File("data"));
    WriteFile(report, "P1,1.0,2.0\n");
    const std::vector<MAIL_ADDRESS> to = {{"", "ann@example.org"}};
    const std::vector<std::string> files = {report};

    CNyrMapiSendMail mapi;
    ASSERT_EQ(mapi.InitializeMapiLib(), 1);
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", &files, 0, 0),
              CNyrMapiSendMail::MAPI_E_ATTACHMENT_OPEN_FAILURE);
    EXPECT_FALSE(std::filesystem::exists(m_dir.File("received")));  // the client was not started
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", &files), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"The specified attachment could not be opened."}));

    // A Thunderbird-family client gets them from xdg-email itself.
    UseHandler("thunderbird");
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", &files), 1);
    EXPECT_EQ(Received(), "-compose\nto='ann@example.org,',subject=s,body=t,attachment='" + report + "'\n");

    const std::vector<std::string> missing = {m_dir.File("data/gone.csv")};
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", &missing, 0, 0),
              CNyrMapiSendMail::MAPI_E_ATTACHMENT_NOT_FOUND);
    g_messages.clear();
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", &missing), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"The specified attachment was not found."}));
}

TEST_F(MailHandOff, AFailingClientIsReportedAndACancelIsNot)
{
    const std::vector<MAIL_ADDRESS> to = {{"", "ann@example.org"}};
    CNyrMapiSendMail mapi;
    WriteFile(m_dir.File("status"), "1");
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", nullptr), 0);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"One or more unspecified errors occurred."}));

    g_messages.clear();
    WriteFile(m_dir.File("status"), "cancel");
    EXPECT_EQ(mapi.SendMailEx(nullptr, &to, nullptr, nullptr, "s", "t", nullptr, 0, 0),
              CNyrMapiSendMail::MAPI_USER_ABORT);
    EXPECT_EQ(mapi.Send(&to, nullptr, nullptr, "s", "t", nullptr), 1);
    EXPECT_TRUE(g_messages.empty());

    const std::vector<MAIL_ADDRESS> broken = {{"", "ann@example.org\n--attach=/etc/passwd"}};
    EXPECT_EQ(mapi.SendMailEx(nullptr, &broken, nullptr, nullptr, "s", "t", nullptr, 0, 0),
              CNyrMapiSendMail::MAPI_E_INVALID_RECIPS);
    CNyrMapiSendMail::MapiRecipDesc strange;
    strange.ulRecipClass = 4;
    strange.lpszAddress = "ann@example.org";
    CNyrMapiSendMail::MapiMessage message;
    message.nRecipCount = 1;
    message.lpRecips = &strange;
    EXPECT_EQ(mapi.SendMail(0, nullptr, &message, 0), CNyrMapiSendMail::MAPI_E_BAD_RECIPTYPE);
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

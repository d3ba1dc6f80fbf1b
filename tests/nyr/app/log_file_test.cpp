#include "nyr/app/log_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::ReadFile;
using nyr::test::RunProcess;
using nyr::test::TempDir;

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::uintmax_t FileSize(const std::string& path)
{
    struct stat st{};
    return stat(path.c_str(), &st) == 0 ? static_cast<std::uintmax_t>(st.st_size) : 0;
}

// Row 0 of the time-format table with milliseconds, level, thread, message.
const std::regex kLine(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3} (DEBUG|INFO|WARNING|ERROR) \[\d+\] (.*))");

// A log whose settings file is in a temp folder, time format row 0.
struct LogFixture : ::testing::Test
{
    TempDir dir;
    std::string path = dir.File("state/app/app.log");
    void SetUp() override { NyrSetProfilePath(dir.File("settings.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }
};

TEST(LogEscape, ALineNeverBreaksAndNothingIsAmbiguous)
{
    const struct
    {
        std::string in, out;
    } cases[] = {
        {"plain", "plain"},
        {"two\nlines", "two\\nlines"},
        {"crlf\r\n", "crlf\\r\\n"},
        {"tab\there", "tab\\there"},
        {"back\\slash\\n", "back\\\\slash\\\\n"},  // a real backslash-n stays apart from an escaped LF
        {std::string("nul\0x", 5), "nul\\x00x"},
        {"\x1b[31mred", "\\x1B[31mred"},  // terminal escapes cannot colour a viewer's screen
        {"del\x7f", "del\\x7F"},
        {"Gr\xc3\xbc\xc3\x9f""e", "Gr\xc3\xbc\xc3\x9f""e"},  // UTF-8 passes
    };
    for (const auto& c : cases)
        EXPECT_EQ(CNyrLogFile::EscapeMessage(c.in), c.out) << c.in;

    // Cut at the limit, never inside a UTF-8 sequence.
    std::string longText(CNyrLogFile::kMaxMessage - 1, 'a');
    longText += "\xc3\xbc tail";
    EXPECT_EQ(CNyrLogFile::EscapeMessage(longText), std::string(CNyrLogFile::kMaxMessage - 1, 'a') + "...");
    EXPECT_EQ(CNyrLogFile::EscapeMessage(std::string(CNyrLogFile::kMaxMessage, 'b')),
              std::string(CNyrLogFile::kMaxMessage, 'b'));
}

// One file per application under the user's state folder; the folders and
// the file are the user's alone.
TEST_F(LogFixture, DefaultPathIsTheApplicationsOwnUnderTheStateFolder)
{
    const std::string saved[] = {std::getenv("XDG_STATE_HOME") ? std::getenv("XDG_STATE_HOME") : "",
                                 std::getenv("HOME") ? std::getenv("HOME") : ""};
    const struct
    {
        const char* state;  // nullptr: unset
        const char* home;
        const char* app;
        const char* expected;
    } cases[] = {
        {"/s/state", "/h", "nyr-survey", "/s/state/nyr-survey/nyr-survey.log"},
        {nullptr, "/h/", "nyr-survey", "/h/.local/state/nyr-survey/nyr-survey.log"},
        {"relative/state", "/h", "a", "/h/.local/state/a/a.log"},  // not absolute: ignored
        {"", "/h", "a", "/h/.local/state/a/a.log"},
        {"/s", "/h", "my app/../x", "/s/my_app_.._x/my_app_.._x.log"},  // never leaves its folder
        {"/s", "/h", "..", "/s/nyr/nyr.log"},
        {"/s", "/h", "", "/s/nyr/nyr.log"},
    };
    for (const auto& c : cases) {
        c.state ? setenv("XDG_STATE_HOME", c.state, 1) : unsetenv("XDG_STATE_HOME");
        setenv("HOME", c.home, 1);
        EXPECT_EQ(CNyrLogFile::DefaultPath(c.app), c.expected) << (c.state ? c.state : "unset") << " " << c.app;
    }
    setenv("XDG_STATE_HOME", dir.File("state").c_str(), 1);
    {
        CNyrLogFile log(CNyrLogFile::DefaultPath("app"));
        EXPECT_EQ(log.Info("first"), 1);
    }
    struct stat folder = {};
    struct stat file = {};
    ASSERT_EQ(stat(dir.File("state/app").c_str(), &folder), 0);
    ASSERT_EQ(stat(path.c_str(), &file), 0);
    EXPECT_EQ(folder.st_mode & 0777, 0700u);
    EXPECT_EQ(file.st_mode & 0777, 0600u);
    EXPECT_NE(ReadFile(path).find(" INFO "), std::string::npos);
    saved[0].empty() ? unsetenv("XDG_STATE_HOME") : setenv("XDG_STATE_HOME", saved[0].c_str(), 1);
    setenv("HOME", saved[1].c_str(), 1);
}

TEST_F(LogFixture, LinesCarryTheStoredTimeFormatLevelAndThread)
{
    const struct
    {
        int row;
        const char* stamp;
    } rows[] = {
        {0, R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3})"},
        {17, R"(\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d\.\d{3})"},
        {26, R"(\d{1,2}\. [A-Z][a-z]{2} \d{4} \d{1,2}:\d\d:\d\d\.\d{3} [AP]M)"},
        {40, R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3})"},  // beyond the table: row 0
    };
    for (const auto& r : rows) {
        CNyrProfileEntries::WriteNyrProfileInt("CNyrTime", "Time Format (###)", r.row);
        CNyrLogFile log(path);  // the format is read when the file is opened
        EXPECT_EQ(log.Debug("hidden"), 0);
        EXPECT_EQ(log.Info("shown\nnext"), 1);
        log.SetLevel(CNyrLogFile::eDebug);
        EXPECT_EQ(log.Debug("now shown"), 1);
        const std::vector<std::string> lines = Lines(ReadFile(path));
        ASSERT_EQ(lines.size(), 2u) << r.row;
        EXPECT_TRUE(std::regex_match(lines[0], std::regex(std::string(r.stamp) + R"( INFO \[\d+\] shown\\nnext)")))
            << lines[0];
        EXPECT_TRUE(std::regex_match(lines[1], std::regex(std::string(r.stamp) + R"( DEBUG \[\d+\] now shown)")))
            << lines[1];
        std::remove(path.c_str());
    }
    struct stat st{};
    ASSERT_EQ(stat(path.substr(0, path.rfind('/')).c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
}

TEST_F(LogFixture, NoPathOrAnUnusablePathLosesLinesWithoutHarm)
{
    CNyrLogFile none;
    EXPECT_EQ(none.Error("nowhere"), 0);
    EXPECT_EQ(none.LostLines(), 0u);

    mkfifo(dir.File("fifo").c_str(), 0600);  // must not block, must not be written
    for (const std::string& bad : {dir.File("fifo"), std::string("/proc/version"), dir.Path()}) {
        CNyrLogFile log(bad);
        EXPECT_EQ(log.Error("refused"), 0) << bad;
        EXPECT_EQ(log.LostLines(), 1u) << bad;
    }
}

TEST_F(LogFixture, RotatesAtTheLimitAndKeepsTheNewestFiles)
{
    CNyrLogFile log(path);
    log.SetLimits(4096, 2);
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(log.Info("line " + std::to_string(i) + " " + std::string(60, '.')), 1);
    EXPECT_EQ(FileSize(path + ".3"), 0u);
    std::vector<int> numbers;
    for (const std::string& file : {path + ".2", path + ".1", path}) {
        EXPECT_LE(FileSize(file), 4096u) << file;
        if (file != path) {
            EXPECT_GT(FileSize(file), 4096u - 120) << file;  // rotated only when the next line did not fit
        }
        for (const std::string& line : Lines(ReadFile(file))) {
            std::smatch m;
            ASSERT_TRUE(std::regex_match(line, m, kLine)) << line;
            numbers.push_back(std::stoi(m[2].str().substr(5)));
        }
    }
    ASSERT_FALSE(numbers.empty());
    EXPECT_EQ(numbers.back(), 299);
    for (std::size_t i = 1; i < numbers.size(); ++i)
        EXPECT_EQ(numbers[i], numbers[i - 1] + 1);  // no line lost or repeated between the kept files
}

TEST_F(LogFixture, RemovedOrRenamedFileIsRecreated)
{
    CNyrLogFile log(path);
    log.Info("one");
    ASSERT_EQ(std::rename(path.c_str(), (path + ".old").c_str()), 0);  // another program rotated it
    log.Info("two");
    std::remove(path.c_str());
    log.Info("three");
    EXPECT_EQ(Lines(ReadFile(path + ".old")).size(), 1u);
    const std::vector<std::string> lines = Lines(ReadFile(path));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("three"), std::string::npos);
}

TEST_F(LogFixture, ConcurrentWritersNeitherInterleaveNorLoseLinesAcrossRotations)
{
    constexpr int kThreads = 8, kLines = 1500;
    CNyrLogFile log(path);
    log.SetLimits(64 * 1024, 99);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&log, t] {
            for (int i = 0; i < kLines; ++i)
                log.Write(i % 2 ? CNyrLogFile::eWarning : CNyrLogFile::eInfo,
                          "t" + std::to_string(t) + " " + std::to_string(i) + " " + std::string(i % 50, '-'));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(log.LostLines(), 0u);

    std::vector<std::string> files;
    for (int i = 99; i >= 1; --i)
        if (FileSize(path + "." + std::to_string(i)) > 0)
            files.push_back(path + "." + std::to_string(i));
    files.push_back(path);
    EXPECT_GT(files.size(), 5u);
    std::map<int, int> next;  // thread -> next number expected
    for (const std::string& file : files) {
        EXPECT_LE(FileSize(file), 64u * 1024) << file;
        for (const std::string& line : Lines(ReadFile(file))) {
            std::smatch m;
            ASSERT_TRUE(std::regex_match(line, m, kLine)) << line;
            int thread = -1, number = -1;
            ASSERT_EQ(std::sscanf(m[2].str().c_str(), "t%d %d", &thread, &number), 2) << line;
            EXPECT_EQ(number, next[thread]++) << line;
        }
    }
    ASSERT_EQ(next.size(), static_cast<std::size_t>(kThreads));
    for (const auto& [thread, count] : next)
        EXPECT_EQ(count, kLines) << thread;
}

// A killed process leaves its last line in the file: nothing waits in a buffer.
TEST_F(LogFixture, LastLineIsOnDiskWhenTheProcessIsKilled)
{
    const nyr::test::ProcessResult result = RunProcess({NYR_LOG_HELPER, "crash", path});
    EXPECT_EQ(result.exitCode, -1);  // killed, as intended
    const std::vector<std::string> lines = Lines(ReadFile(path));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(" ERROR ["), std::string::npos);
    EXPECT_EQ(lines[0].substr(lines[0].size() - 10), "last words");
}

// A write past RLIMIT_FSIZE raises SIGXFSZ, which ends a process by default.
TEST_F(LogFixture, FileSizeLimitNeverRaisesSigxfsz)
{
    const nyr::test::ProcessResult result = RunProcess({NYR_LOG_HELPER, "write", path, "400", "10000", "1048576"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "written 400 lost 0\n");  // the process limit acts as the rotation limit
    for (const std::string& file : {path, path + ".1", path + ".2"}) {
        EXPECT_GT(FileSize(file), 0u) << file;
        EXPECT_LE(FileSize(file), 10000u) << file;
    }
}

// On a full file system lines are lost and counted, a line cut short is taken
// back, and the first line after space returns reports the loss.
TEST_F(LogFixture, FullDiskLosesLinesButNeverHalfALine)
{
    TempDir mount;
    const nyr::test::ProcessResult result = RunProcess(
        {"/usr/bin/unshare", "--map-root-user", "--mount", "sh", "-c",
         "mount -t tmpfs -o size=65536 tmpfs \"$1\" && exec \"$2\" diskfull \"$1\"", "sh", mount.Path(),
         NYR_LOG_HELPER});
    if (result.exitCode != 0 && result.out.empty())
        GTEST_SKIP() << "no small file system to fill here: " << result.err;
    ASSERT_EQ(result.exitCode, 0) << result.err;
    int writtenFull = -1, lost = -1, writtenAfter = -1;
    std::istringstream out(result.out);
    std::string first, second;
    std::getline(out, first);
    std::getline(out, second);
    ASSERT_EQ(std::sscanf(first.c_str(), "written while full %d lost %d", &writtenFull, &lost), 2) << first;
    ASSERT_EQ(std::sscanf(second.c_str(), "written after %d", &writtenAfter), 1) << second;
    EXPECT_LT(writtenFull, 50);
    EXPECT_EQ(lost, 50 - writtenFull);
    EXPECT_EQ(writtenAfter, 1);

    std::vector<std::string> lines;
    for (std::string line; std::getline(out, line);)
        lines.push_back(line);
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(result.out.back(), '\n');
    // Every line whole: a cut line would run into the next one. Each note
    // counts the lines lost since the line before it (a short note may fit
    // where a long line did not).
    const std::regex message(
        R"(before \d+\.{40}|while full \d+\.{200}|(\d+) log lines lost: No space left on device|after)");
    int fullLines = 0, reported = 0;
    for (const std::string& line : lines) {
        std::smatch m;
        ASSERT_TRUE(std::regex_match(line, m, kLine)) << line;
        const std::string text = m[2].str();
        std::smatch note;
        ASSERT_TRUE(std::regex_match(text, note, message)) << line;
        fullLines += text.starts_with("while full");
        if (note[1].matched) {
            reported += std::stoi(note[1].str());
            EXPECT_EQ(m[1].str(), "WARNING");
        }
    }
    EXPECT_EQ(fullLines, writtenFull);
    EXPECT_EQ(reported, lost);
    EXPECT_NE(lines[lines.size() - 2].find("log lines lost"), std::string::npos);
    EXPECT_EQ(lines.back().substr(lines.back().size() - 5), "after");
}

}  // namespace

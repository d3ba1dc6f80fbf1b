#include "nyr/util/profile_entries.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;
using P = CNyrProfileEntries;

const std::string kAbsent = "<absent>";
// Longer than a tick of the coarse clock that paces the cache's checks.
constexpr auto kTick = std::chrono::milliseconds(20);

std::string Read(const std::string& file, const std::string& section, const std::string& entry)
{
    return P::ReadProfileString(file, section, entry, kAbsent);
}

// Runs `body` in a child process (optionally as an unprivileged user) and
// returns its exit status.
template <class F>
int InChild(F body, bool unprivileged = false)
{
    const pid_t pid = fork();
    if (pid == 0) {
        if (unprivileged && (setgid(65534) != 0 || setuid(65534) != 0))
            _exit(99);
        _exit(body());
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ProfileEntries, ReadsWithThePrivateProfileLookupRulesInEveryLineEndStyle)
{
    const std::vector<std::string> lines = {
        "; a comment=not an entry",
        "orphan=before any section",
        "[Alpha]",
        "Key=one",
        "key=second",
        "  Spaced Name   =   padded value   ",
        "Quoted=\"  inner  \"",
        "Single='x'",
        "Mismatched=\"abc'",
        "Empty=",
        "a line without an equals sign",
        "Eq=a=b ; c",
        "[ALPHA]",
        "Extra=in the second matching section",
        "[beta",
        "Open=yes",
        "[Gamma] trailing text",
        "G=1",
        "Long=" + std::string(5000, 'v'),
    };
    const std::pair<const char*, const char*> styles[] = {
        {"LF", "\n"}, {"CRLF", "\r\n"}, {"no final break", "\n"}, {"byte order mark", "\n"}};
    for (const auto& [style, eol] : styles) {
        std::string text = style == std::string("byte order mark") ? "\xEF\xBB\xBF" : "";
        for (const auto& line : lines)
            text += line + eol;
        if (style == std::string("no final break"))
            text.pop_back();
        TempDir dir;
        const std::string file = dir.File("rules.ini");
        WriteFile(file, text);
        SCOPED_TRACE(style);
        const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
            {"alpha", "KEY", "one"},                 // case-insensitive, first match wins
            {" Alpha ", " key ", "one"},             // names are trimmed
            {"Alpha", "spaced name", "padded value"},
            {"Alpha", "Quoted", "  inner  "},        // one pair of quotes removed, inside kept
            {"Alpha", "Single", "x"},
            {"Alpha", "Mismatched", "\"abc'"},
            {"Alpha", "Empty", ""},
            {"Alpha", "a line without an equals sign", kAbsent},
            {"Alpha", "Eq", "a=b ; c"},              // value to the end of the line
            {"Alpha", "Extra", kAbsent},             // only the first matching section counts
            {"Alpha", "orphan", kAbsent},
            {"", "orphan", kAbsent},
            {"Alpha", "; a comment", kAbsent},
            {"beta", "Open", "yes"},                 // "[beta" without "]"
            {"Gamma", "G", "1"},
            {"Gamma", "Long", std::string(4096, 'v')},  // cut to 4096 characters
            {"Delta", "Key", kAbsent},
        };
        for (const auto& [section, entry, expected] : cases)
            EXPECT_EQ(Read(file, section, entry), expected) << "[" << section << "] " << entry;
    }
    EXPECT_EQ(Read("/nonexistent/folder/x.ini", "Alpha", "Key"), kAbsent);
}

TEST(ProfileEntries, ReadsIntegersAndVectorsAsAtoiDoesAndEndsVectorsAtEmptyElements)
{
    TempDir dir;
    const std::string file = dir.File("values.ini");
    WriteFile(file, "[V]\nneg=-5\ntrail=12abc\ntext=abc\nsigned= +7\nempty=\nhuge=99999999999\n"
                    "v1=100;200;\nv2=100;200\nv3=abc;7;\nv4=;5;\nv5=1;;2;\nv6= 3 ; 4;x\nv7=\n");
    const std::vector<std::pair<std::string, int>> ints = {
        {"neg", -5}, {"trail", 12}, {"text", 0}, {"signed", 7}, {"empty", 42}, {"huge", 1215752191}, {"none", 42}};
    for (const auto& [entry, expected] : ints)
        EXPECT_EQ(static_cast<int>(P::ReadProfileInt(file, "V", entry, 42)), expected) << entry;

    const std::vector<std::pair<std::string, std::vector<int>>> vectors = {
        {"v1", {100, 200}}, {"v2", {100}},  // without its final ";" the last element is lost
        {"v3", {0, 7}},     {"v4", {}},     {"v5", {1}},  // an empty element ends the reading
        {"v6", {3, 4}},     {"v7", {}},     {"none", {}}};
    for (const auto& [entry, expected] : vectors) {
        std::vector<int> values = {9, 9, 9};
        P::ReadProfileIntVector(file, "V", entry, values);
        EXPECT_EQ(values, expected) << entry;
    }

    const std::vector<int> written = {120, 80, -1, INT_MIN};
    ASSERT_EQ(P::WriteProfileIntVector(file, "V", "w", written), 1);
    ASSERT_EQ(P::WriteProfileIntVector(file, "V", "none", {}), 1);
    ASSERT_EQ(P::WriteProfileInt(file, "V", "i", -5), 1);
    std::vector<int> back;
    P::ReadProfileIntVector(file, "V", "w", back);
    EXPECT_EQ(back, written);
    EXPECT_EQ(Read(file, "V", "w"), "120;80;-1;-2147483648;");
    EXPECT_EQ(Read(file, "V", "none"), "");
    EXPECT_EQ(Read(file, "V", "i"), "-5");
}

TEST(ProfileEntries, WritesChangeOnlyTheirOwnLine)
{
    struct Case { const char* name; std::string before, section, entry, value, after; };
    const std::string base = "; settings\n[A]\nx = 1 ; old\n\n; about B\n[B]\ny=2\n";
    const Case cases[] = {
        {"replace keeps name and blanks", base, "a", "X", "5", "; settings\n[A]\nx = 5\n\n; about B\n[B]\ny=2\n"},
        {"add after the section's last entry", base, "A", "z", "3",
         "; settings\n[A]\nx = 1 ; old\nz=3\n\n; about B\n[B]\ny=2\n"},
        {"new section at the end", base, "C", "w", "4", base + "\n[C]\nw=4\n"},
        {"CRLF file gets CRLF lines", "[A]\r\nx=1\r\n", "A", "y", "2", "[A]\r\nx=1\r\ny=2\r\n"},
        {"last line without break", "[A]\nx=1", "A", "y", "2", "[A]\nx=1\ny=2\n"},
        {"header without break", "[A]", "A", "x", "1", "[A]\nx=1\n"},
        {"header ending in a lone CR", "[A]\r", "A", "x", "1", "[A]\r\nx=1\n"},
        {"empty file", "", "A", "x", "1", "[A]\nx=1\n"},
        {"first of repeated sections", "[A]\nx=1\n[B]\n[a]\ny=1\n", "A", "y", "2", "[A]\nx=1\ny=2\n[B]\n[a]\ny=1\n"},
        {"byte order mark stays", "\xEF\xBB\xBF[A]\nx=1\n", "A", "x", "2", "\xEF\xBB\xBF[A]\nx=2\n"},
        {"entry before any section untouched", "x=0\n[A]\nx=1\n", "A", "x", "2", "x=0\n[A]\nx=2\n"},
        {"garbage lines kept", "\x01\x02\n[A\nno equals\n", "A", "k", "v", "\x01\x02\n[A\nk=v\nno equals\n"},
    };
    for (const auto& c : cases) {
        TempDir dir;
        const std::string file = dir.File("w.ini");
        WriteFile(file, c.before);
        ASSERT_EQ(P::WriteProfileStringA(file, c.section, c.entry, c.value), 1) << c.name;
        EXPECT_EQ(ReadFile(file), c.after) << c.name;
        EXPECT_EQ(Read(file, c.section, c.entry), c.value) << c.name;
    }
}

TEST(ProfileEntries, RefusesNamesAndValuesThatWouldBreakTheFile)
{
    TempDir dir;
    const std::string file = dir.File("r.ini");
    const std::string before = "[A]\nx=1\n";
    WriteFile(file, before);
    const std::vector<std::tuple<std::string, std::string, std::string>> refused = {
        {"a]b", "x", "v"}, {"a\nb", "x", "v"}, {"", "x", "v"},  {"  ", "x", "v"},
        {"A", "a=b", "v"}, {"A", "[x", "v"},   {"A", ";x", "v"}, {"A", "#x", "v"},
        {"A", "a\rb", "v"}, {"A", "", "v"},    {"A", "x", "a\nb"}, {"A", "x", std::string("a\0b", 3)},
    };
    for (const auto& [section, entry, value] : refused)
        EXPECT_EQ(P::WriteProfileStringA(file, section, entry, value), 0) << section << "/" << entry;
    EXPECT_EQ(ReadFile(file), before);
    EXPECT_EQ(P::WriteProfileStringA(dir.File("new.ini"), "A", "x=", "v"), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.File("new.ini")));
}

TEST(ProfileEntries, FailsWithoutCrashOnMissingOrUnwritablePlaces)
{
    TempDir dir;
    EXPECT_EQ(P::WriteProfileInt(dir.File("missing/x.ini"), "A", "x", 1), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.File("missing")));
    EXPECT_EQ(P::WriteProfileInt(dir.Path(), "A", "x", 1), 0);  // a folder, not a file
    WriteFile(dir.File("plain"), "x");
    EXPECT_EQ(P::WriteProfileInt(dir.File("plain/x.ini"), "A", "x", 1), 0);
    EXPECT_EQ(P::WriteProfileInt("/proc/nyr-settings.ini", "A", "x", 1), 0);

    // Permissions hold for an ordinary user only, so the writes run as one.
    const std::string locked = dir.File("locked");
    std::filesystem::create_directory(locked);
    WriteFile(locked + "/x.ini", "[A]\nx=1\n");
    WriteFile(dir.File("readonly.ini"), "[A]\nx=1\n");
    chmod(locked.c_str(), 0555);
    chmod(dir.Path().c_str(), 0777);
    chmod((locked + "/x.ini").c_str(), 0666);
    chmod(dir.File("readonly.ini").c_str(), 0444);
    EXPECT_EQ(InChild([&] { return P::WriteProfileInt(locked + "/x.ini", "A", "x", 2); }, true), 0);
    EXPECT_EQ(InChild([&] { return P::WriteProfileInt(dir.File("readonly.ini"), "A", "x", 2); }, true), 0);
    EXPECT_EQ(InChild([&] { return P::WriteProfileInt(dir.File("mine.ini"), "A", "x", 2); }, true), 1);
    EXPECT_EQ(ReadFile(locked + "/x.ini"), "[A]\nx=1\n");
    EXPECT_EQ(ReadFile(dir.File("readonly.ini")), "[A]\nx=1\n");
}

TEST(ProfileEntries, KeepsModeAndSymbolicLinksAndSeesOtherProgramsChanges)
{
    TempDir dir;
    const std::string file = dir.File("real.ini");
    WriteFile(file, "[A]\nx=1\n");
    chmod(file.c_str(), 0640);
    ASSERT_EQ(symlink(file.c_str(), dir.File("link.ini").c_str()), 0);
    ASSERT_EQ(P::WriteProfileInt(dir.File("link.ini"), "A", "x", 2), 1);
    EXPECT_TRUE(std::filesystem::is_symlink(dir.File("link.ini")));
    EXPECT_EQ(ReadFile(file), "[A]\nx=2\n");
    struct stat st{};
    ASSERT_EQ(stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);

    // Another program rewrites the file in place, then replaces it.
    EXPECT_EQ(Read(file, "A", "x"), "2");
    WriteFile(file, "[A]\nx=333\n");
    std::this_thread::sleep_for(kTick);
    EXPECT_EQ(Read(file, "A", "x"), "333");
    WriteFile(dir.File("other"), "[A]\nx=4\n");
    std::filesystem::rename(dir.File("other"), file);
    std::this_thread::sleep_for(kTick);
    EXPECT_EQ(Read(file, "A", "x"), "4");
    std::filesystem::remove(file);
    std::this_thread::sleep_for(kTick);
    EXPECT_EQ(Read(file, "A", "x"), kAbsent);
}

TEST(ProfileEntries, TwoProcessesWritingOneFileLoseNothing)
{
    TempDir dir;
    const std::string file = dir.File("shared.ini");
    WriteFile(file, "; shared\n[Other]\nkeep=me\n");
    constexpr int kWrites = 150;
    std::vector<pid_t> children;
    for (const char* who : {"A", "B"}) {
        const pid_t pid = fork();
        if (pid == 0) {
            int failures = 0;
            for (int i = 0; i < kWrites; ++i)
                failures += P::WriteProfileInt(file, i % 2 ? "Odd" : "Even", who + std::to_string(i), i) != 1;
            _exit(failures ? 1 : 0);
        }
        children.push_back(pid);
    }
    for (const pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (const char* who : {"A", "B"})
        for (int i = 0; i < kWrites; ++i)
            ASSERT_EQ(Read(file, i % 2 ? "Odd" : "Even", who + std::to_string(i)), std::to_string(i)) << who << i;
    EXPECT_EQ(Read(file, "Other", "keep"), "me");
}

TEST(ProfileEntries, AKilledWriterLeavesTheOldOrTheNewFile)
{
    TempDir dir;
    const std::string file = dir.File("killed.ini");
    const std::string big(3000, 'b');
    std::string start = "[Keep]\nfirst=1\n";
    for (int i = 0; i < 200; ++i)
        start += "[S" + std::to_string(i) + "]\nvalue=" + big + "\n";
    WriteFile(file, start);
    for (int round = 0; round < 20; ++round) {
        const pid_t pid = fork();
        if (pid == 0) {
            for (int i = 0;; ++i)
                P::WriteProfileStringA(file, "S" + std::to_string(i % 200), "value", std::string(3000, 'a' + i % 26));
        }
        std::this_thread::sleep_for(std::chrono::microseconds(500 + 300 * round));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        const std::string text = ReadFile(file);
        ASSERT_EQ(text.size(), start.size()) << "torn file after round " << round;
        ASSERT_EQ(text.substr(0, 15), "[Keep]\nfirst=1\n");
    }
}

TEST(ProfileEntries, LibraryFilePathDefaultsToTheConfigFolderAndTakesAPrefix)
{
    TempDir dir;
    const std::string oldXdg = std::getenv("XDG_CONFIG_HOME") ? std::getenv("XDG_CONFIG_HOME") : "";
    const std::string oldHome = std::getenv("HOME") ? std::getenv("HOME") : "";

    setenv("XDG_CONFIG_HOME", (dir.Path() + "/cfg").c_str(), 1);
    NyrSetProfilePath("");
    EXPECT_EQ(NyrGetProfilePath(), dir.Path() + "/cfg/Nyr240.INI");
    setenv("XDG_CONFIG_HOME", "/elsewhere", 1);
    EXPECT_EQ(NyrGetProfilePath(), dir.Path() + "/cfg/Nyr240.INI");  // the default is kept once decided

    // The folder is created on the first write, and reads go to the same file.
    setenv("XDG_CONFIG_HOME", (dir.Path() + "/cfg").c_str(), 1);
    EXPECT_EQ(P::WriteNyrProfileInt("Units", "Angle", 12), 1);
    EXPECT_EQ(P::ReadNyrProfileInt("units", "angle", 0), 12u);
    EXPECT_EQ(ReadFile(dir.Path() + "/cfg/Nyr240.INI"), "[Units]\nAngle=12\n");

    NyrSetProfilePath("/d/x/y.ini");
    EXPECT_EQ(NyrGetProfilePath(), "/d/x/y.ini");
    NyrSetProfilePrefix("Survey");  // applied to the default path, not to the one set
    EXPECT_EQ(NyrGetProfilePath(), dir.Path() + "/cfg/Survey.Nyr240.INI");

    setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
    setenv("HOME", (dir.Path() + "/home/").c_str(), 1);
    NyrSetProfilePath("");
    EXPECT_EQ(NyrGetProfilePath(), dir.Path() + "/home/.config/Nyr240.INI");
    unsetenv("XDG_CONFIG_HOME");
    NyrSetProfilePrefix("A");
    EXPECT_EQ(NyrGetProfilePath(), dir.Path() + "/home/.config/A.Nyr240.INI");

    oldXdg.empty() ? unsetenv("XDG_CONFIG_HOME") : setenv("XDG_CONFIG_HOME", oldXdg.c_str(), 1);
    oldHome.empty() ? unsetenv("HOME") : setenv("HOME", oldHome.c_str(), 1);
    NyrSetProfilePath("");
}

}  // namespace

// The settings store where it meets the file system and other processes:
// paths and links to one file, locks held by others, permissions, killed
// writers, files that are not settings files.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"
#include "tests/support/turkish_locale.h"

namespace {

using nyr::test::LockHolder;
using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;
using P = CNyrProfileEntries;

const std::string kAbsent = "<absent>";

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// Restores the default lock wait when a test shortened it.
struct ShortLockWait
{
    explicit ShortLockWait(unsigned ms) { NyrSetProfileLockTimeout(ms); }
    ~ShortLockWait() { NyrSetProfileLockTimeout(5000); }
};

TEST(ProfileStore, IntegersReadAsThePlatformReadsThemEmptyGivesTheDefaultAndValuesWrap)
{
    TempDir dir;
    const std::string file = dir.File("ints.ini");
    WriteFile(file, "[I]\nempty=\nblanks=   \nquotedEmpty=\"\"\nquotedBlanks=\"  \"\nmax=4294967295\n"
                    "wrap=4294967296\nhalf=2147483648\nminus=-1\nlow=-2147483649\nbig=99999999999\n"
                    "plus=+12x\nzero=0\nletters=abc\n");
    const struct
    {
        const char* entry;
        unsigned expected;
    } cases[] = {
        {"empty", 77u},          // present but empty: the caller's default
        {"blanks", 77u},         // blanks only are trimmed to empty
        {"quotedEmpty", 77u},    // the quotes go, nothing is left
        {"quotedBlanks", 0u},    // blanks inside quotes are a value without digits
        {"max", 4294967295u},    // unsigned: the whole 32-bit range
        {"wrap", 0u},            // modulo 2^32
        {"half", 2147483648u},
        {"minus", 4294967295u},  // -1 in its unsigned form
        {"low", 2147483647u},    // -(2^31 + 1) modulo 2^32
        {"big", 1215752191u},    // 99999999999 modulo 2^32
        {"plus", 12u},
        {"zero", 0u},
        {"letters", 0u},
        {"absent", 77u},
    };
    for (const auto& c : cases)
        EXPECT_EQ(P::ReadProfileInt(file, "I", c.entry, 77), c.expected) << c.entry;
}

TEST(ProfileStore, NamesFoldOnlyAsciiCaseWhateverTheLocale)
{
    const nyr::test::ScopedTurkishLocale turkish;
    NYR_REQUIRE_TURKISH_LOCALE(turkish);
    TempDir dir;
    const std::string file = dir.File("tr.ini");
    WriteFile(file, "[Window]\nIndex=1\n");
    for (const auto& [section, entry] : {std::pair{"WINDOW", "INDEX"}, {"window", "index"}, {"wINDOw", "iNDEX"}})
        EXPECT_EQ(P::ReadProfileInt(file, section, entry, 0), 1u) << section << "/" << entry;
    EXPECT_EQ(P::ReadProfileInt(file, "W\xC4\xB0NDOW", "INDEX", 0), 0u);  // dotted capital I: another name
    ASSERT_EQ(P::WriteProfileInt(file, "WINDOW", "INDEX", 2), 1);
    EXPECT_EQ(ReadFile(file), "[Window]\nIndex=2\n");
}

// Every way this test reaches one file.
struct Paths
{
    std::vector<std::string> all;
    std::string real;

    explicit Paths(const TempDir& dir)
    {
        real = dir.File("a.ini");
        std::filesystem::create_directory(dir.File("sub"));
        symlink("a.ini", dir.File("link.ini").c_str());
        symlink("link.ini", dir.File("chain.ini").c_str());
        symlink(".", dir.File("here").c_str());
        all = {real, dir.Path() + "/./a.ini", dir.File("sub/../a.ini"), dir.File("link.ini"), dir.File("chain.ini"),
               dir.File("here/a.ini")};
    }
};

TEST(ProfileStore, WritesAreSeenAtOnceThroughEveryPathAndLinksStayLinks)
{
    TempDir dir;
    const Paths paths(dir);
    WriteFile(paths.real, "[S]\n");
    std::map<std::string, std::string> model;  // entry -> value
    std::mt19937 random(20240611);
    for (int step = 0; step < 300; ++step) {
        const std::string& path = paths.all[random() % paths.all.size()];
        const std::string entry = "k" + std::to_string(random() % 5);
        const std::string value = std::to_string(step);
        ASSERT_EQ(P::WriteProfileStringA(path, "S", entry, value), 1) << path;
        model[entry] = value;
        for (const std::string& reader : paths.all)
            for (const auto& [e, v] : model)
                ASSERT_EQ(P::ReadProfileString(reader, "S", e, kAbsent), v)
                    << "step " << step << ": wrote " << entry << " through " << path << ", read through " << reader;
        ASSERT_TRUE(std::filesystem::is_symlink(dir.File("link.ini")));
        ASSERT_TRUE(std::filesystem::is_symlink(dir.File("chain.ini")));
        ASSERT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(paths.real)));
    }
}

TEST(ProfileStore, AWriteWaitsForAHeldLockOnlyAsLongAsAllowedAndSaysTheFileIsLocked)
{
    TempDir dir;
    const std::string file = dir.File("w.ini");
    WriteFile(file, "[S]\nB=1\n");
    const ShortLockWait wait(300);
    {
        LockHolder holder(file);
        ASSERT_TRUE(holder.Holding());
        for (const bool stopped : {false, true}) {  // a stopped holder (Ctrl+Z) keeps the lock
            if (stopped)
                holder.Stop();
            EXPECT_EQ(P::WriteProfileInt(file, "S", "B", 2), 0);
            EXPECT_TRUE(Contains(NyrGetProfileError(), "is locked by another program")) << NyrGetProfileError();
            EXPECT_TRUE(Contains(NyrGetProfileError(), file));
            EXPECT_EQ(ReadFile(file), "[S]\nB=1\n");
        }
    }
    EXPECT_EQ(P::WriteProfileInt(file, "S", "B", 2), 1);
    EXPECT_EQ(NyrGetProfileError(), "");
    EXPECT_EQ(ReadFile(file), "[S]\nB=2\n");
}

TEST(ProfileStore, AWriteWaitsForAHolderThatLetsGoInTime)
{
    TempDir dir;
    const std::string file = dir.File("w.ini");
    WriteFile(file, "[S]\nB=1\n");
    auto holder = std::make_unique<LockHolder>(file);
    std::thread release([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        holder.reset();
    });
    EXPECT_EQ(P::WriteProfileInt(file, "S", "B", 3), 1) << NyrGetProfileError();
    release.join();
    EXPECT_EQ(ReadFile(file), "[S]\nB=3\n");
}

TEST(ProfileStore, FilesWithoutAWritePermissionBitAreNeverRewrittenEvenByRoot)
{
    const struct
    {
        mode_t mode;
        bool written;
    } cases[] = {{0444, false}, {0400, false}, {0000, false}, {0644, true}, {0600, true}, {0244, true}};
    for (const auto& c : cases) {
        TempDir dir;
        const std::string file = dir.File("p.ini");
        WriteFile(file, "[A]\nx=1\n");
        chmod(file.c_str(), c.mode);
        SCOPED_TRACE(testing::Message() << std::oct << c.mode << (geteuid() == 0 ? " as root" : ""));
        if (geteuid() != 0 && !(c.mode & 0400))
            continue;  // unreadable to us: another failure
        EXPECT_EQ(P::WriteProfileInt(file, "A", "x", 2), c.written ? 1 : 0);
        chmod(file.c_str(), 0600);
        EXPECT_EQ(ReadFile(file), c.written ? "[A]\nx=2\n" : "[A]\nx=1\n");
        if (!c.written) {
            EXPECT_TRUE(Contains(NyrGetProfileError(), "is read-only")) << NyrGetProfileError();
        }
    }
}

std::vector<std::string> TemporariesIn(const std::string& folder, const std::string& prefix)
{
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder)) {
        const std::string name = e.path().filename().string();
        if (name.rfind(prefix, 0) == 0)
            names.push_back(name);
    }
    return names;
}

void Backdate(const std::string& path, int seconds)
{
    timespec times[2];
    clock_gettime(CLOCK_REALTIME, &times[0]);
    times[0].tv_sec -= seconds;
    times[1] = times[0];
    utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

TEST(ProfileStore, TemporariesLeftByKilledWritersGoWithTheNextWriteOnceAMinuteOld)
{
    TempDir dir;
    const std::string file = dir.File("k.ini");
    const std::string big(1 << 20, 'v');
    WriteFile(file, "[S]\nv=" + big + "\n");
    // Writers killed the moment their temporary file shows; some die before
    // they renamed it.
    for (int round = 0; round < 200 && TemporariesIn(dir.Path(), ".k.ini.").size() < 3; ++round) {
        const size_t before = TemporariesIn(dir.Path(), ".k.ini.").size();
        const pid_t pid = fork();
        if (pid == 0)
            for (int i = 0;; ++i)
                P::WriteProfileStringA(file, "S", "v", std::string(1 << 20, static_cast<char>('a' + i % 26)));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (TemporariesIn(dir.Path(), ".k.ini.").size() == before && std::chrono::steady_clock::now() < deadline) {
        }
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    std::vector<std::string> left = TemporariesIn(dir.Path(), ".k.ini.");
    ASSERT_FALSE(left.empty()) << "no writer died between creating and renaming its temporary file";
    EXPECT_EQ(P::ReadProfileString(file, "S", "v", kAbsent).size(), 4096u);  // the file is whole

    // Fresh temporaries may belong to a writer that is still at work elsewhere: kept.
    ASSERT_EQ(P::WriteProfileInt(file, "S", "n", 1), 1);
    EXPECT_EQ(TemporariesIn(dir.Path(), ".k.ini.").size(), left.size());

    const std::vector<std::string> lookAlikes = {".k.ini.tmp", ".k.ini.ABCDE", ".k.ini.ABC-EF", ".j.ini.ABCDEF",
                                                 "k.ini.ABCDEF"};
    for (const std::string& name : lookAlikes)
        WriteFile(dir.File(name), "");
    for (const std::string& name : TemporariesIn(dir.Path(), ""))
        Backdate(dir.File(name), 120);
    ASSERT_EQ(P::WriteProfileInt(file, "S", "n", 2), 1);
    for (const std::string& name : left)
        EXPECT_FALSE(std::filesystem::exists(dir.File(name))) << name;
    for (const std::string& name : lookAlikes)
        EXPECT_TRUE(std::filesystem::exists(dir.File(name))) << name;
    EXPECT_EQ(P::ReadProfileInt(file, "S", "n", 0), 2u);
}

TEST(ProfileStore, FilesThatAreNoSettingsFilesReadAsAbsentAndSayWhy)
{
    TempDir dir;
    const std::string fifo = dir.File("fifo.ini");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string large = dir.File("large.ini");
    {
        WriteFile(large, "[S]\nA=1\n");
        std::filesystem::resize_file(large, (64 << 20) + 1);
    }
    const struct
    {
        std::string path;
        std::string reason;
    } cases[] = {
        {fifo, "is not a regular file"},
        {dir.Path(), "is not a regular file"},
        {large, "is too large: settings files hold at most 64 MiB"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(P::ReadProfileString(c.path, "S", "A", kAbsent), kAbsent) << c.path;
        EXPECT_TRUE(Contains(NyrGetProfileError(), c.reason)) << NyrGetProfileError();
        EXPECT_EQ(P::WriteProfileInt(c.path, "S", "A", 2), 0) << c.path;
        EXPECT_FALSE(NyrGetProfileError().empty());
    }
    EXPECT_EQ(std::filesystem::file_size(large), (64u << 20) + 1);

    // An absent file is no failure; a refused name is.
    EXPECT_EQ(P::ReadProfileString(dir.File("absent.ini"), "S", "A", kAbsent), kAbsent);
    EXPECT_EQ(NyrGetProfileError(), "");
    EXPECT_EQ(P::WriteProfileInt(dir.File("absent.ini"), "S", "A=", 2), 0);
    EXPECT_TRUE(Contains(NyrGetProfileError(), "would break the lines")) << NyrGetProfileError();
}

}  // namespace

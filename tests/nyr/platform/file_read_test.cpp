#include "nyr/platform/file_read.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temp_dir.h"

namespace {

using nyr::test::TempDir;
using nyr::test::WriteFile;

TEST(FileRead, ReadsRegularFilesUpToTheLimitAndThroughLinks)
{
    TempDir dir;
    const std::string path = dir.File("a.txt");
    WriteFile(path, std::string("ab\0cd", 5));
    ASSERT_EQ(0, ::symlink(path.c_str(), dir.File("link").c_str()));
    std::string content, error;
    EXPECT_EQ(1, NyrReadRegularFile(path, 5, content, &error)) << error;
    EXPECT_EQ(std::string("ab\0cd", 5), content);
    EXPECT_EQ(1, NyrReadRegularFile(dir.File("link"), 5, content, &error)) << error;
    EXPECT_EQ(5u, content.size());
    WriteFile(path, "");
    EXPECT_EQ(1, NyrReadRegularFile(path, 0, content, &error));
    EXPECT_TRUE(content.empty());
}

TEST(FileRead, RefusesOneByteOverTheLimitAndLeavesNothingBehind)
{
    TempDir dir;
    WriteFile(dir.File("big"), std::string(70000, 'x'));
    std::string content = "old", error;
    EXPECT_EQ(0, NyrReadRegularFile(dir.File("big"), 69999, content, &error));
    EXPECT_TRUE(content.empty());
    EXPECT_EQ(dir.File("big") + ": larger than 69999 bytes", error);
    EXPECT_EQ(1, NyrReadRegularFile(dir.File("big"), 70000, content, &error));
}

// A file far beyond a large limit used to be read up to the limit before it
// was refused: here 64 GiB of memory and minutes. It must go unread.
TEST(FileRead, AFileBeyondALargeLimitIsRefusedUnread)
{
    TempDir dir;
    const std::string path = dir.File("sparse");
    WriteFile(path, "");
    if (::truncate(path.c_str(), off_t{1} << 40) != 0)  // 1 TiB, sparse: no disk used
        GTEST_SKIP() << "the file system cannot hold a sparse file of 1 TiB";
    std::string content, error;
    EXPECT_EQ(0, NyrReadRegularFile(path, std::size_t{64} << 30, content, &error));
    EXPECT_TRUE(content.empty());
    EXPECT_EQ(path + ": larger than " + std::to_string(std::size_t{64} << 30) + " bytes", error);
}

TEST(FileRead, SpecialFilesAreRefusedWithoutBlockingOrEndlessReads)
{
    TempDir dir;
    const std::string fifo = dir.File("fifo");
    ASSERT_EQ(0, ::mkfifo(fifo.c_str(), 0600));
    struct Case
    {
        std::string path;
        std::string error;
    };
    const Case cases[] = {
        {fifo, fifo + ": not a regular file"},  // no writer: a blocking open would wait for ever
        {"/dev/zero", "/dev/zero: not a regular file"},
        {"/dev/null", "/dev/null: not a regular file"},
        {dir.Path(), dir.Path() + ": not a regular file"},
        {dir.File("missing"), dir.File("missing") + ": No such file or directory"},
    };
    for (const Case& c : cases) {
        std::string content, error;
        EXPECT_EQ(0, NyrReadRegularFile(c.path, 1 << 20, content, &error)) << c.path;
        EXPECT_EQ(c.error, error);
        EXPECT_EQ(-1, NyrOpenRegularFile(c.path));
    }
}

TEST(FileRead, FilesThatClaimNoSizeAreStillBoundedByTheLimit)
{
    // /proc files report a size of 0 and produce their text as they are read.
    std::string content, error;
    EXPECT_EQ(1, NyrReadRegularFile("/proc/self/status", 1 << 20, content, &error)) << error;
    EXPECT_NE(std::string::npos, content.find("Pid:"));
    EXPECT_EQ(0, NyrReadRegularFile("/proc/self/status", 16, content, &error));
}

}  // namespace

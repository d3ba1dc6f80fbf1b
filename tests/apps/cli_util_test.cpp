#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "cli_test_p.h"

namespace {

using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;

TEST(CliUtil, IniGetsSetsAndReadsVectorsKeepingTheRestOfTheFile)
{
    TempDir dir;
    const std::string file = dir.File("app.ini");
    WriteFile(file, "; mine\n[Report]\nColWidth = 120;80;-1;\n");
    auto r = Nyr({"ini", "get", "--file", file, "report", "colwidth"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "120;80;-1;\n");
    r = Nyr({"ini", "vector", "--file", file, "Report", "ColWidth"});
    EXPECT_EQ(r.out, "120\n80\n-1\n");
    EXPECT_EQ(Nyr({"ini", "vector", "--file", file, "Report", "Absent"}).out, "");

    EXPECT_EQ(Nyr({"ini", "set", "--file", file, "Report", "ColWidth", "1;2;"}).exitCode, 0);
    EXPECT_EQ(Nyr({"ini", "set", "--file", file, "Units", "Angle", "12"}).exitCode, 0);
    EXPECT_EQ(ReadFile(file), "; mine\n[Report]\nColWidth = 1;2;\n\n[Units]\nAngle=12\n");

    r = Nyr({"ini", "get", "--file", file, "Units", "Distance"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
    r = Nyr({"ini", "get", "--file", file, "Units", "Distance", "--default", "21"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "21\n");

    // Refused and failed writes leave the file as it was.
    EXPECT_EQ(Nyr({"ini", "set", "--file", file, "Re]port", "x", "1"}).exitCode, 1);
    EXPECT_EQ(Nyr({"ini", "set", "--file", file, "Report", "x", "two\nlines"}).exitCode, 1);
    EXPECT_EQ(Nyr({"ini", "set", "--file", dir.File("missing/x.ini"), "A", "x", "1"}).exitCode, 1);
    EXPECT_EQ(ReadFile(file), "; mine\n[Report]\nColWidth = 1;2;\n\n[Units]\nAngle=12\n");

    for (const std::vector<std::string>& bad :
         {std::vector<std::string>{"ini"}, {"ini", "get", "A"}, {"ini", "set", "A", "x"}, {"ini", "del", "A", "x"},
          {"ini", "vector", "A", "x", "--default", "1"}, {"ini", "get", "A", "x", "--bogus"}})
        EXPECT_EQ(Nyr(bad).exitCode, 2) << bad.size();
}

TEST(CliUtil, IniSaysWhyAFileCannotBeUsedAndLeavesItAsItWas)
{
    TempDir dir;
    const std::string locked = dir.File("w.ini"), readOnly = dir.File("ro.ini"), large = dir.File("large.ini");
    for (const std::string& file : {locked, readOnly, large})
        WriteFile(file, "[S]\nA=1\n");
    chmod(readOnly.c_str(), 0444);
    std::filesystem::resize_file(large, (64 << 20) + 1);
    nyr::test::LockHolder holder(locked);  // another program in the middle of a write
    ASSERT_TRUE(holder.Holding());
    const struct
    {
        std::vector<std::string> args;
        std::string reason;
    } cases[] = {
        {{"ini", "set", "--file", locked, "S", "B", "2"}, "is locked by another program"},
        {{"ini", "set", "--file", readOnly, "S", "A", "2"}, "is read-only"},
        {{"ini", "get", "--file", large, "S", "A"}, "is too large"},
        {{"ini", "get", "--file", large, "S", "A", "--default", "0"}, "is too large"},
        {{"ini", "set", "--file", large, "S", "A", "2"}, "is too large"},
        {{"ini", "get", "--file", dir.Path(), "S", "A"}, "is not a regular file"},
    };
    for (const auto& c : cases) {
        const auto r = Nyr(c.args);
        EXPECT_EQ(r.exitCode, 1) << c.args[1] << " " << c.args[3];
        EXPECT_NE(r.err.find(c.reason), std::string::npos) << r.err;
        EXPECT_FALSE(r.timedOut);
    }
    EXPECT_EQ(ReadFile(locked), "[S]\nA=1\n");
    EXPECT_EQ(ReadFile(readOnly), "[S]\nA=1\n");
    EXPECT_EQ(std::filesystem::file_size(large), (64u << 20) + 1);
}

TEST(CliUtil, Base64EncodesAndDecodesFilesAndStandardInput)
{
    TempDir dir;
    EXPECT_EQ(Nyr({"base64", "encode", "--line", "0"}, "abc").out, "YWJjA===\n");
    EXPECT_EQ(Nyr({"base64", "encode", "--line", "4", "-"}, "abc").out, "YWJj\r\nA=\n");
    EXPECT_EQ(Nyr({"base64", "decode"}, "YWJjA===\n").out, "abc");

    std::string bytes;
    for (int i = 0; i < 1000; ++i)
        bytes += static_cast<char>(i * 7 % 256);
    WriteFile(dir.File("data.bin"), bytes);
    auto r = Nyr({"base64", "encode", dir.File("data.bin")});
    ASSERT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out.substr(76, 2), "\r\n");  // 76 characters a line by default
    WriteFile(dir.File("data.b64"), r.out);
    r = Nyr({"base64", "decode", dir.File("data.b64")});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, bytes);

    EXPECT_EQ(Nyr({"base64", "encode", dir.File("missing")}).exitCode, 1);
    EXPECT_EQ(Nyr({"base64", "decode", dir.Path()}).exitCode, 1);
    for (const char* endless : {"/dev/zero", "/dev/urandom"}) {
        const auto refused = nyr::test::RunProcess({NYR_TOOL, "base64", "encode", endless}, {}, 60);
        EXPECT_EQ(refused.exitCode, 1) << endless;
        EXPECT_NE(refused.err.find("not a regular file"), std::string::npos) << refused.err;
    }
    EXPECT_EQ(Nyr({"base64", "encode", "--line", "-1"}).exitCode, 2);
    EXPECT_EQ(Nyr({"base64", "decode", "--line", "4"}).exitCode, 2);
    EXPECT_EQ(Nyr({"base64", "recode"}).exitCode, 2);
}

// Runs the tool with its standard output going to `output` and returns its
// peak resident memory in KiB (-1 when it failed). A fresh Python starts it,
// so that the peak is the tool's own and not this test's memory, which a
// child shares until it runs the tool.
long PeakKb(const std::vector<std::string>& args, const std::string& output)
{
    std::vector<std::string> argv = {"/usr/bin/python3", "-c",
                                     "import resource, subprocess, sys\n"
                                     "with open(sys.argv[1], 'wb') as out:\n"
                                     "    code = subprocess.run(sys.argv[2:], stdout=out).returncode\n"
                                     "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss if code == 0 else -1)\n",
                                     output, NYR_TOOL};
    argv.insert(argv.end(), args.begin(), args.end());
    const auto r = nyr::test::RunProcess(argv);
    return r.exitCode == 0 ? std::stol(r.out) : -1;
}

TEST(CliUtil, Base64OfALargeFileRunsInFlatMemory)
{
    // 64 MiB in, 87 MB out: memory must stay far below either.
    constexpr long kFlatKb = 48 * 1024;
    TempDir dir;
    const std::string large = dir.File("large.bin"), text = dir.File("large.b64"), back = dir.File("back.bin");
    WriteFile(large, "");
    ASSERT_EQ(truncate(large.c_str(), 64 << 20), 0);

    long peak = PeakKb({"base64", "encode", "--line", "0", large}, text);
    EXPECT_GT(peak, 0);
    EXPECT_LT(peak, kFlatKb) << "encoding held the file or its text in memory";
    const std::string encoded = ReadFile(text);
    EXPECT_EQ(encoded.size(), ((64u << 20) / 3 + 1) * 4 + 1);  // + the extra zero byte, padding and "\n"
    EXPECT_EQ(encoded.find_first_not_of('A'), (64u << 20) / 3 * 4 + 2);  // 1 byte left: "AA" and "=="

    peak = PeakKb({"base64", "decode", text}, back);
    EXPECT_GT(peak, 0);
    EXPECT_LT(peak, kFlatKb) << "decoding held the text or its bytes in memory";
    const std::string decoded = ReadFile(back);
    EXPECT_EQ(decoded.size(), 64u << 20);
    EXPECT_EQ(decoded.find_first_not_of('\0'), std::string::npos);
}

}  // namespace

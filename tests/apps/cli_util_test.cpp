#include <gtest/gtest.h>

#include <cstdlib>

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

TEST(CliUtil, IniDefaultsToTheLibrarysFileAndCreatesItsFolder)
{
    TempDir dir;
    const char* old = std::getenv("XDG_CONFIG_HOME");
    const std::string saved = old ? old : "";
    setenv("XDG_CONFIG_HOME", (dir.Path() + "/config").c_str(), 1);
    EXPECT_EQ(Nyr({"ini", "set", "CNyrTime", "Time Format (###)", "3"}).exitCode, 0);
    EXPECT_EQ(ReadFile(dir.Path() + "/config/Nyr240.INI"), "[CNyrTime]\nTime Format (###)=3\n");
    EXPECT_EQ(Nyr({"ini", "get", "cnyrtime", "time format (###)"}).out, "3\n");
    old ? setenv("XDG_CONFIG_HOME", saved.c_str(), 1) : unsetenv("XDG_CONFIG_HOME");
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
    EXPECT_EQ(Nyr({"base64", "encode", "--line", "-1"}).exitCode, 2);
    EXPECT_EQ(Nyr({"base64", "decode", "--line", "4"}).exitCode, 2);
    EXPECT_EQ(Nyr({"base64", "recode"}).exitCode, 2);
}

}  // namespace

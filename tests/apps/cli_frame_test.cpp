#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>

#include <filesystem>

#include "cli_test_p.h"

namespace {

TEST(CliFrame, TextPrintsTheTableOrTheLanguageModule)
{
    auto r = Nyr({"text", "26051"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "Finished searching this view. No more matches found.\n");

    r = Nyr({"text", "--language", NYR_SOURCE_DIR "/data/lang/de.lang", "26100"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "Abbrechen\n");

    EXPECT_EQ(Nyr({"text", "26210"}).exitCode, 1);  // a gap in the numbering
    EXPECT_EQ(Nyr({"text", "abc"}).exitCode, 2);
    EXPECT_EQ(Nyr({"text"}).exitCode, 2);
    EXPECT_EQ(Nyr({"text", "--language", "/nonexistent/x.lang", "1"}).exitCode, 1);
}

TEST(CliFrame, TextReadsOnlyRegularLanguageModulesOfBoundedSize)
{
    nyr::test::TempDir dir;
    nyr::test::WriteFile(dir.File("huge.lang"), std::string((4 << 20) + 1, '#'));
    ASSERT_EQ(mkfifo(dir.File("fifo.lang").c_str(), 0600), 0);  // no writer: opening must not wait
    const struct
    {
        std::string file;
        const char* reason;
    } cases[] = {
        {"/dev/zero", "not a regular file"},
        {dir.File("fifo.lang"), "not a regular file"},
        {dir.Path(), "not a regular file"},
        {dir.File("huge.lang"), "larger than 4194304 bytes"},
    };
    for (const auto& c : cases) {
        const auto r = nyr::test::RunProcess({NYR_TOOL, "text", "--language", c.file, "26000"}, {}, 60);
        EXPECT_EQ(r.exitCode, 1) << c.file << (r.timedOut ? ": timed out" : "");
        EXPECT_NE(r.err.find(c.reason), std::string::npos) << r.err;
    }
}

TEST(CliFrame, DumpIsALanguageModuleOfTheWholeTable)
{
    const auto r = Nyr({"text", "--dump"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_NE(r.out.find("26032 \"&Find...\\tCtrl+F\"\n"), std::string::npos);
}

TEST(CliFrame, MessagesListsAllHundredAndOne)
{
    const auto r = Nyr({"messages"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 101);
    EXPECT_EQ(r.out.rfind("0xc000\t49152\tWM_NYR_PROPERTIES\n", 0), 0u);
}

TEST(CliFrame, RequirementsPassOnThisSystem)
{
    const auto r = Nyr({"requirements"});
    EXPECT_EQ(r.exitCode, 0) << r.out;
    EXPECT_EQ(r.out, "result 0\nAll requirements are met.\n");
}

// The file the dynamic loader finds for `soname`, links resolved; "" when none.
std::string LoadedFile(const char* soname)
{
    void* handle = dlopen(soname, RTLD_LAZY | RTLD_NODELETE);
    link_map* map = nullptr;
    if (!handle || dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map)
        return {};
    return std::filesystem::canonical(map->l_name).string();
}

TEST(CliFrame, RequirementsReadQtsOwnVersionWhenItShipsUnderItsSonameAlone)
{
    // As application bundles ship Qt: libQt6Widgets.so.6 is the library
    // itself, with no version in its name.
    nyr::test::TempDir bundle;
    for (const char* soname : {"libQt6Core.so.6", "libQt6Gui.so.6", "libQt6Widgets.so.6"}) {
        const std::string file = LoadedFile(soname);
        if (file.empty())
            GTEST_SKIP() << "Qt 6 is not installed";
        std::filesystem::copy_file(file, bundle.File(soname));
    }
    const auto r = nyr::test::RunProcess({"/usr/bin/env", "LD_LIBRARY_PATH=" + bundle.Path(), NYR_TOOL, "requirements"});
    EXPECT_EQ(r.exitCode, 0) << r.out << r.err;
    EXPECT_EQ(r.out, "result 0\nAll requirements are met.\n");
}

TEST(CliFrame, HelpAndUsageErrors)
{
    EXPECT_EQ(Nyr({"--help"}).exitCode, 0);
    EXPECT_EQ(Nyr({}).exitCode, 2);
    EXPECT_EQ(Nyr({"frobnicate"}).exitCode, 2);
    const auto r = Nyr({"text", "--help"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out.rfind("Usage: nyr text", 0), 0u);
    EXPECT_EQ(Nyr({"messages", "extra"}).exitCode, 2);
}

}  // namespace

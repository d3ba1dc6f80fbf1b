#include <gtest/gtest.h>

#include <cerrno>
#include <dlfcn.h>
#include <map>

#include "nyr/frame/version_check.h"
#include "nyr/platform/system_error.h"
#include "tests/support/turkish_locale.h"

namespace {

// A version source of the test's own: versions by library name, a missing
// entry is a library that is not there, and every query is counted.
class FakeSource : public CNyrVersionSource
{
public:
    std::map<std::string, std::pair<unsigned, unsigned>> versions;
    std::map<std::string, int> queries;

    bool Query(const std::string& fileName, VS_FIXEDFILEINFO& info, unsigned long& errorCode) override
    {
        ++queries[fileName];
        const auto it = versions.find(fileName);
        if (it == versions.end()) {
            errorCode = ENOENT;
            return false;
        }
        info.dwProductVersionMS = it->second.first << 16 | it->second.second;
        return true;
    }
};

class VersionCheckTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        source.versions = {{"ComCtl32.Dll", {6, 0}}, {"Shell32.Dll", {6, 0}}, {"ShFolder.Dll", {6, 0}},
                           {"Shlwapi.Dll", {6, 0}}, {"Mfc70.Dll", {7, 0}}};
        NyrSetVersionSource(&source);
        NyrResetFixedFileInfoCache();
    }
    void TearDown() override
    {
        NyrSetVersionSource(nullptr);
        NyrResetFixedFileInfoCache();
    }
    FakeSource source;
};

std::string Found(const char* library, int a, int b, int c, int d)
{
    return std::string(library) + " V" + std::to_string(a) + "." + std::to_string(b) +
           " found.\n\nRequired is version V" + std::to_string(c) + "." + std::to_string(d) + " or higher.";
}

TEST_F(VersionCheckTest, FourSeventyOneIsTheEdgeForTheThreeShellLibraries)
{
    const struct
    {
        const char* file;
        bool (*check)(std::string&);
        const char* text;
    } libraries[] = {{"ComCtl32.Dll", NyrCheckComCtl32Version, "ComCtl32.Dll"},
                     {"Shell32.Dll", NyrCheckShell32Version, "Shell32.Dll"},
                     {"Shlwapi.Dll", NyrCheckShlwapiVersion, "Shlwapi.Dll"}};
    const struct
    {
        unsigned major, minor;
        bool passes;
    } versions[] = {{4, 70, false}, {4, 71, true}, {4, 99, true}, {5, 0, true}, {6, 0, true}, {3, 99, false}};
    for (const auto& library : libraries) {
        for (const auto& v : versions) {
            source.versions[library.file] = {v.major, v.minor};
            NyrResetFixedFileInfoCache();
            std::string message = "stale";
            EXPECT_EQ(library.check(message), v.passes) << library.file << " " << v.major << "." << v.minor;
            EXPECT_EQ(message, v.passes ? "" : Found(library.text, int(v.major), int(v.minor), 4, 71));
        }
    }
}

TEST_F(VersionCheckTest, MfcNeedsSeven)
{
    std::string message;
    source.versions["Mfc70.Dll"] = {6, 0};
    EXPECT_FALSE(NyrCheckMfcVersion(message));
    EXPECT_EQ(message, Found("Mfc70.Dll", 6, 0, 7, 0));
    source.versions["Mfc70.Dll"] = {7, 0};
    NyrResetFixedFileInfoCache();
    EXPECT_TRUE(NyrCheckMfcVersion(message));
    EXPECT_EQ(message, "");
}

TEST_F(VersionCheckTest, MissingLibraryGivesPrefixAndSystemText)
{
    source.versions.erase("Shlwapi.Dll");
    std::string message;
    EXPECT_FALSE(NyrCheckShlwapiVersion(message));
    EXPECT_EQ(message, "Shlwapi.dll: " + NyrSystemErrorText(ENOENT));

    VS_FIXEDFILEINFO info;
    info.dwSignature = 77;
    unsigned long error = 0;
    std::string text;
    EXPECT_FALSE(NyrFixedFileInfoShlwapi(info, &error, &text));
    EXPECT_EQ(info.dwSignature, 0u);
    EXPECT_EQ(error, static_cast<unsigned long>(ENOENT));
    EXPECT_EQ(text, NyrSystemErrorText(ENOENT));
}

TEST_F(VersionCheckTest, ShFolderCheckTestsShell32AndReportsWithItsText)
{
    std::string message;
    source.versions["Shell32.Dll"] = {4, 0};
    source.versions["ShFolder.Dll"] = {0, 1};  // its own version does not matter
    EXPECT_TRUE(NyrCheckShFolderVersion(message));
    EXPECT_EQ(message, "");

    source.versions["Shell32.Dll"] = {3, 51};
    NyrResetFixedFileInfoCache();
    EXPECT_FALSE(NyrCheckShFolderVersion(message));
    EXPECT_EQ(message, Found("Shell32.Dll", 3, 51, 4, 0));

    source.versions["Shell32.Dll"] = {4, 0};
    source.versions.erase("ShFolder.Dll");
    NyrResetFixedFileInfoCache();
    EXPECT_FALSE(NyrCheckShFolderVersion(message));
    EXPECT_EQ(message, "ShFolder.dll: " + NyrSystemErrorText(ENOENT));
}

TEST_F(VersionCheckTest, CombinedCheckReportsTheFirstFailureOnly)
{
    eNyrRequirements missing = NYR_REQUIREMENT_MFC;
    std::string message = "stale";
    EXPECT_TRUE(NyrCheckAllRequirements(missing, message));
    EXPECT_EQ(missing, NYR_REQUIREMENTS_MET);
    EXPECT_EQ(message, "");

    const struct
    {
        const char* file;
        eNyrRequirements code;
    } order[] = {{"Mfc70.Dll", NYR_REQUIREMENT_MFC},
                 {"Shlwapi.Dll", NYR_REQUIREMENT_SHLWAPI},
                 {"Shell32.Dll", NYR_REQUIREMENT_SHELL32},
                 {"ComCtl32.Dll", NYR_REQUIREMENT_COMCTL32}};
    // Break them from the last to the first: each time the earliest broken one wins.
    for (const auto& step : order) {
        source.versions[step.file] = {4, 70};
        NyrResetFixedFileInfoCache();
        EXPECT_FALSE(NyrCheckAllRequirements(missing, message));
        EXPECT_EQ(missing, step.code);
    }
    EXPECT_EQ(message, Found("ComCtl32.Dll", 4, 70, 4, 71));
}

TEST_F(VersionCheckTest, EachLibraryIsQueriedOncePerProcess)
{
    std::string message;
    for (int i = 0; i < 3; ++i) {
        eNyrRequirements missing;
        NyrCheckAllRequirements(missing, message);
        NyrCheckShFolderVersion(message);
    }
    source.versions.erase("Mfc70.Dll");  // the cache answers; the source is not asked again
    EXPECT_TRUE(NyrCheckMfcVersion(message));
    for (const auto& [file, count] : source.queries)
        EXPECT_EQ(count, 1) << file;
    EXPECT_EQ(source.queries.size(), 5u);
}

TEST_F(VersionCheckTest, LoadFixedFileInfoIsUncachedAndZeroesOnFailure)
{
    VS_FIXEDFILEINFO info{};
    unsigned long error = 99;
    std::string text = "stale";
    EXPECT_TRUE(NyrLoadFixedFileInfo(info, "ComCtl32.Dll", &error, &text));
    EXPECT_EQ(error, 0u);
    EXPECT_EQ(text, "");
    EXPECT_TRUE(NyrLoadFixedFileInfo(info, "ComCtl32.Dll"));
    EXPECT_EQ(source.queries["ComCtl32.Dll"], 2);
    EXPECT_FALSE(NyrLoadFixedFileInfo(info, "Absent.Dll", &error, &text));
    EXPECT_EQ(info.dwProductVersionMS, 0u);
    EXPECT_EQ(error, static_cast<unsigned long>(ENOENT));
    EXPECT_FALSE(NyrLoadFixedFileInfo(info, nullptr, &error));
}

TEST(SystemVersionSource, ASystemWithQtSixPassesTheCombinedCheck)
{
    void* qt = dlopen("libQt6Widgets.so.6", RTLD_LAZY | RTLD_NODELETE);
    if (!qt)
        GTEST_SKIP() << "Qt 6 Widgets is not installed";
    dlclose(qt);
    NyrResetFixedFileInfoCache();
    eNyrRequirements missing;
    std::string message;
    EXPECT_TRUE(NyrCheckAllRequirements(missing, message)) << message;
    VS_FIXEDFILEINFO info;
    ASSERT_TRUE(NyrFixedFileInfoMfc(info));
    EXPECT_EQ(info.dwProductVersionMS, 7u << 16);
    EXPECT_EQ(info.dwFileVersionMS >> 16, 6u);  // the real Qt version
    EXPECT_EQ(info.dwSignature, 0xFEEF04BDu);
    unsigned long error = 0;
    EXPECT_FALSE(NyrLoadFixedFileInfo(info, "Kernel32.Dll", &error));
    EXPECT_EQ(error, static_cast<unsigned long>(ENOENT));
    NyrResetFixedFileInfoCache();
}

TEST(SystemVersionSource, LibraryNamesFoldOnlyAsciiCaseWhateverTheLocale)
{
    void* qt = dlopen("libQt6Widgets.so.6", RTLD_LAZY | RTLD_NODELETE);
    if (!qt)
        GTEST_SKIP() << "Qt 6 Widgets is not installed";
    dlclose(qt);
    const nyr::test::ScopedTurkishLocale turkish;
    NYR_REQUIRE_TURKISH_LOCALE(turkish);
    for (const char* name : {"SHLWAPI.DLL", "shlwapi.dll", "ShFolder.Dll", "SHFOLDER.DLL", "ComCtl32.Dll",
                             "MFC70.DLL", "mfc70.dll", "SHELL32.DLL"}) {
        VS_FIXEDFILEINFO info{};
        unsigned long error = 0;
        EXPECT_TRUE(NyrLoadFixedFileInfo(info, name, &error)) << name << ": " << error;
    }
    VS_FIXEDFILEINFO info{};
    EXPECT_FALSE(NyrLoadFixedFileInfo(info, "SHLWAP\xC4\xB0.DLL"));  // not ASCII: no match
}

}  // namespace

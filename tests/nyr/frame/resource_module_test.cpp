#include <gtest/gtest.h>

#include "nyr/frame/resource_module.h"
#include "nyr/platform/string_format.h"
#include "tests/support/temp_dir.h"

namespace {

// Leaves the process-wide switching state as each test found it.
class ResourceModuleTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        NyrRestoreResourceHandle();
        NyrSetCurrentResourceHandle(CNyrResourceModule::Host());
        NyrSetNyrResourceHandle(CNyrResourceModule::Library());
    }
};

TEST_F(ResourceModuleTest, BuiltInTableHoldsQuotedTextsAndUnknownNumbersAreEmpty)
{
    EXPECT_EQ(NyrLoadString(26000), "ComCtl32.Dll V%d.%d found.\n\nRequired is version V%d.%d or higher.");
    EXPECT_EQ(NyrLoadString(26032), "&Find...\tCtrl+F");
    EXPECT_EQ(NyrLoadString(26128), "-000\u00b0 00' 00.00000\"");
    EXPECT_EQ(NyrLoadString(26282), " pt ");
    EXPECT_EQ(NyrLoadString(56125), "Help");
    EXPECT_EQ(NyrLoadString(26210), "");  // a gap in the numbering
    EXPECT_EQ(NyrLoadString(1), "");
    // The load restores the host's module.
    EXPECT_EQ(NyrGetCurrentResourceHandle(), CNyrResourceModule::Host());
}

TEST_F(ResourceModuleTest, NestedSwitchRestoresOnlyOnceBecauseTheSlotHoldsOneModule)
{
    CNyrResourceModule first("first"), second("second");
    NyrResourceHandle host = NyrGetCurrentResourceHandle();
    NyrSetResourceHandle(&first);
    NyrSetResourceHandle(&second);  // overwrites the slot that held the host
    EXPECT_EQ(NyrGetCurrentResourceHandle(), &second);
    NyrRestoreResourceHandle();
    EXPECT_EQ(NyrGetCurrentResourceHandle(), &first);
    NyrRestoreResourceHandle();  // finds nothing saved
    EXPECT_EQ(NyrGetCurrentResourceHandle(), &first);
    EXPECT_NE(NyrGetCurrentResourceHandle(), host);
}

TEST_F(ResourceModuleTest, RestoreWithoutSetIsHarmless)
{
    NyrResourceHandle before = NyrGetCurrentResourceHandle();
    NyrRestoreResourceHandle();
    EXPECT_EQ(NyrGetCurrentResourceHandle(), before);
}

TEST_F(ResourceModuleTest, LanguageModuleReplacesTheLibraryTexts)
{
    auto german = CNyrResourceModule::LoadFromText("# Deutsch\n"
                                                   "26100 \"Abbrechen\"\n"
                                                   "  26000  \"ComCtl32.Dll V%d.%d gefunden.\\n\\nBenötigt: V%d.%d\"\n"
                                                   "26282 \" pt \"\n",
                                                   "de");
    ASSERT_TRUE(german);
    NyrSetNyrResourceHandle(german.get());
    EXPECT_EQ(NyrLoadString(26100), "Abbrechen");
    EXPECT_EQ(NyrLoadString(26000), "ComCtl32.Dll V%d.%d gefunden.\n\nBenötigt: V%d.%d");
    EXPECT_EQ(NyrLoadString(26282), " pt ");
    EXPECT_EQ(NyrLoadString(26099), "");  // not translated: empty, like an unknown number
}

TEST_F(ResourceModuleTest, MalformedModulesAreRefusedWithTheLine)
{
    const struct
    {
        const char* text;
        const char* reason;
    } cases[] = {
        {"26100 Abbrechen\n", "expected a double-quoted text"},
        {"\"x\"\n", "must start with a text number"},
        {"26100 \"open\n", "missing closing quote"},
        {"26100 \"a\\qb\"\n", "unknown escape"},
        {"26100 \"a\" b\n", "text after the closing quote"},
        {"99999999999 \"a\"\n", "out of range"},
        // A translation that would read a string where the library passes an int.
        {"26000 \"V%s found\"\n", "conversions"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(CNyrResourceModule::LoadFromText(std::string("# ok\n") + c.text, "m.lang", &error)) << c.text;
        EXPECT_NE(error.find("m.lang:2: "), std::string::npos) << error;
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
    }
}

// A format that reaches the formatter without the compiler's check.
std::string FormatUnchecked(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string out = NyrFormatV(format, args);
    va_end(args);
    return out;
}

// Texts that passed the old check by their conversion letters alone and then
// made the library's messages come out empty (or read past the arguments).
TEST_F(ResourceModuleTest, ConversionsMustMatchTheBuiltInTextsCompletely)
{
    const struct
    {
        std::string line;
        const char* reason;  // nullptr: accepted
    } cases[] = {
        {"26064 \"Seite %d von 100%\"", "unknown or incomplete conversion"},  // a lone "%" at the end
        {"26064 \"Seite %z%d\"", "unknown or incomplete conversion"},
        {"26064 \"Seite %d %.66\"", "unknown or incomplete conversion"},
        {"26064 \"Seite %n%d\"", "unknown or incomplete conversion"},       // writes through an argument
        {"26064 \"Seite %1$d\"", "unknown or incomplete conversion"},
        {std::string("26064 \"Seite %\0d\"", 15), "a zero byte"},
        {std::string("# a comment \0\n26064 \"Seite %d\"", 30), "a zero byte"},
        {"26064 \"Seite %ld\"", "keep the conversions \"%d\""},             // length modifiers
        {"26066 \"Gedruckt am %ls\"", "keep the conversions \"%s\""},
        {"26064 \"Seite %5d\"", "keep the conversions"},                     // width
        {"26198 \"%.2f KB\"", "keep the conversions \"%.*f\""},             // precision
        {"26064 \"Seite %i\"", "keep the conversions"},                      // another letter
        {"26065 \"Seite %d\"", "keep the conversions \"%d%d\""},            // one argument left out
        {"26065 \"Seite %d von %d, %d\"", "keep the conversions"},
        {"26079 \"Mindestens %MAX\"", "keep the conversions \"%MIN\""},
        {"99999 \"100% %Y-%m-%d\"", nullptr},                               // the host's own: as it stands
        {"26064 \"Seite %d (100%%)\"", nullptr},
        {"26198 \"%.*f KiB\"", nullptr},
        {"26081 \"Zwischen %MIN und %MAX\"", nullptr},
        {"99999 \"Host %s, %-8.3f\"", nullptr},
        {"26100 \"50% \"", "unknown or incomplete conversion"},             // "% " starts a conversion
    };
    for (const auto& c : cases) {
        std::string error;
        const auto module = CNyrResourceModule::LoadFromText(c.line + "\n", "m.lang", &error);
        if (!c.reason) {
            EXPECT_TRUE(module) << c.line << ": " << error;
            continue;
        }
        EXPECT_FALSE(module) << c.line;
        EXPECT_NE(error.find(c.reason), std::string::npos) << c.line << ": " << error;
    }
}

TEST_F(ResourceModuleTest, AcceptedTranslationsNeverFormatToAnEmptyText)
{
    // Every built-in text with conversions, translated by keeping them: the
    // library's own arguments give a text, never an empty one.
    auto german = CNyrResourceModule::LoadFromText("26000 \"V%d.%d gefunden, V%d.%d nötig (100%%)\"\n"
                                                   "26066 \"Gedruckt am %s\"\n26198 \"%.*f KiB\"\n",
                                                   "de");
    ASSERT_TRUE(german);
    NyrSetNyrResourceHandle(german.get());
    EXPECT_EQ(NyrFormat(NyrLoadString(26000).c_str(), 6, 0, 7, 0), "V6.0 gefunden, V7.0 nötig (100%)");
    EXPECT_EQ(NyrFormat(NyrLoadString(26066).c_str(), "heute"), "Gedruckt am heute");
    EXPECT_EQ(NyrFormat(NyrLoadString(26198).c_str(), 1, 2.25), "2.2 KiB");
    // Where printf itself fails, the formatter gives the text as it stands.
    for (const char* unchecked : {"100%", "%z", "V%d.%66"})
        EXPECT_EQ(FormatUnchecked(unchecked, 6), unchecked);
}

TEST_F(ResourceModuleTest, DumpedTableReadsBackIdentically)
{
    const std::string dump = CNyrResourceModule::Library()->ToText();
    auto copy = CNyrResourceModule::LoadFromText(dump, "copy");
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->Size(), CNyrResourceModule::Library()->Size());
    EXPECT_EQ(copy->ToText(), dump);
}

TEST_F(ResourceModuleTest, ShippedGermanModuleLoads)
{
    std::string error;
    auto german = CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang", &error);
    ASSERT_TRUE(german) << error;
    std::string text;
    EXPECT_TRUE(german->LoadString(26115, text));
    EXPECT_EQ(text, "In Zukunft nicht mehr fragen");
}

TEST_F(ResourceModuleTest, OnlyRegularFilesUpToTheLimitAreRead)
{
    nyr::test::TempDir dir;
    const std::string large = dir.File("large.lang");
    nyr::test::WriteFile(large, std::string(CNyrResourceModule::kMaxFileSize + 1, '#'));
    const struct
    {
        std::string path;
        const char* reason;
    } cases[] = {
        {dir.File("absent.lang"), "No such file"},
        {"/dev/zero", "not a regular file"},  // endless
        {dir.Path(), "not a regular file"},
        {large, "larger than 4194304 bytes"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(CNyrResourceModule::LoadFromFile(c.path, &error)) << c.path;
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
        EXPECT_EQ(error.rfind(c.path, 0), 0u) << error;
    }
}

}  // namespace

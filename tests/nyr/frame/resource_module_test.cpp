#include <gtest/gtest.h>

#include "nyr/frame/resource_module.h"
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

TEST_F(ResourceModuleTest, MissingFileIsReported)
{
    nyr::test::TempDir dir;
    std::string error;
    EXPECT_FALSE(CNyrResourceModule::LoadFromFile(dir.File("absent.lang"), &error));
    EXPECT_NE(error.find("cannot be read"), std::string::npos);
}

}  // namespace

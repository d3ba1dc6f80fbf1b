#include <gtest/gtest.h>

#include <string>

#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "tests/support/temp_dir.h"

namespace {

// Each test gets its own settings file, and the process-wide settings start
// from their construction units.
class UnitSettingsFile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
        CNyrUnitSettingsAngle::Default().Unit(NYR_UNIT_DMS);
        CNyrUnitSettingsAngleLatLon::Default().Unit(NYR_UNIT_DMS);
        for (CNyrUnitSettings* s : {static_cast<CNyrUnitSettings*>(&CNyrUnitSettingsDistance::Default()),
                                    static_cast<CNyrUnitSettings*>(&CNyrUnitSettingsAngle::Default()),
                                    static_cast<CNyrUnitSettings*>(&CNyrUnitSettingsAngleLatLon::Default())})
            s->Status();
    }

    std::string File() const { return nyr::test::ReadFile(m_dir.File("Nyr240.INI")); }

    static std::string Stored(const char* section, const char* entry)
    {
        return CNyrProfileEntries::ReadNyrProfileString(section, entry, "<none>");
    }

    nyr::test::TempDir m_dir;
};

TEST_F(UnitSettingsFile, DistanceDefaultIsStoredOnceAndThenKept)
{
    CNyrUnitSettingsDistance& distance = CNyrUnitSettingsDistance::Default();
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(22), 1);
    EXPECT_EQ(distance.Unit(), NYR_UNIT_US_SURVEY_FEET);
    EXPECT_EQ(File(), "[CNyrUnitSettingsDistance]\nUnitDistance Format (###)=22\nUnitDistance Format (str)=fts\n");

    distance.Unit(NYR_UNIT_METRES);
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(21), 1);
    EXPECT_EQ(distance.Unit(), NYR_UNIT_US_SURVEY_FEET);  // the stored choice wins
    EXPECT_EQ(Stored("CNyrUnitSettingsDistance", "UnitDistance Format (###)"), "22");
    EXPECT_TRUE(distance.IsValid());
}

TEST_F(UnitSettingsFile, DefaultSettingsIgnoresPlaceholdersAndRefusesOtherCodes)
{
    CNyrUnitSettingsDistance& distance = CNyrUnitSettingsDistance::Default();
    CNyrUnitSettingsAngle& angle = CNyrUnitSettingsAngle::Default();
    for (long ignored : {20L, 2L}) {
        EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(ignored), 0);
        EXPECT_EQ(distance.Status(), NYR_UNIT_SETTINGS_OK);
    }
    for (long ignored : {10L, 2L}) {
        EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(ignored, nullptr), 0);
        EXPECT_EQ(angle.Status(), NYR_UNIT_SETTINGS_OK);
    }
    for (long wrong : {11L, 19L, 24L, -1L}) {
        EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(wrong), 0);
        EXPECT_FALSE(distance.IsValid());
        EXPECT_EQ(distance.Status(), NYR_UNIT_SETTINGS_NOT_A_UNIT);
    }
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(21, nullptr), 0);
    EXPECT_EQ(angle.Status(), NYR_UNIT_SETTINGS_NOT_A_UNIT);
    const int excluded[] = {13, 11, 0, 14};  // ends at 0: 14 is offered
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(11, excluded), 0);
    EXPECT_EQ(angle.Status(), NYR_UNIT_SETTINGS_EXCLUDED);
    EXPECT_EQ(File(), "");  // nothing was written
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(14, excluded), 1);
    EXPECT_EQ(angle.Unit(), NYR_UNIT_GRAD);
}

TEST_F(UnitSettingsFile, ExcludedOrForeignStoredUnitsAreReplaced)
{
    const char* section = "CNyrUnitSettingsAngle";
    const char* number = "UnitAngle Format (###)";
    const char* text = "UnitAngle Format (str)";
    const int noDms[] = {12, 0};
    CNyrProfileEntries::WriteNyrProfileInt(section, number, 12);
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(11, noDms), 1);
    EXPECT_EQ(CNyrUnitSettingsAngle::Default().Unit(), NYR_UNIT_DEGREE);
    EXPECT_EQ(Stored(section, number), "11");
    EXPECT_EQ(Stored(section, text), "dec");

    for (const char* foreign : {"21", "19", "abc", "-5"}) {
        CNyrProfileEntries::WriteNyrProfileString(section, number, foreign);
        EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(15, nullptr), 1);
        EXPECT_EQ(Stored(section, number), "15") << foreign;
        EXPECT_EQ(Stored(section, text), "") << foreign;  // Gon has no abbreviation
    }
    CNyrProfileEntries::WriteNyrProfileInt(section, number, 16);
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(15, nullptr), 1);
    EXPECT_EQ(CNyrUnitSettingsAngle::Default().Unit(), NYR_UNIT_DECIMAL_GON);
}

TEST_F(UnitSettingsFile, LatitudeLongitudeHaveTheirOwnSection)
{
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(13, nullptr), 1);
    EXPECT_EQ(CNyrUnitSettingsAngleLatLon::DefaultSettings(11, nullptr), 1);
    EXPECT_EQ(CNyrUnitSettingsAngle::Default().Unit(), NYR_UNIT_DECIMAL_DMS);
    EXPECT_EQ(CNyrUnitSettingsAngleLatLon::Default().Unit(), NYR_UNIT_DEGREE);
    EXPECT_EQ(Stored("CNyrUnitSettingsAngleLatLon", "UnitAngle Format (###)"), "11");
    EXPECT_EQ(Stored("CNyrUnitSettingsAngleLatLon", "UnitAngle Format (str)"), "dec");
    EXPECT_EQ(Stored("CNyrUnitSettingsAngle", "UnitAngle Format (str)"), "deg");
    EXPECT_NE(&CNyrUnitSettingsAngleLatLon::Default(), &CNyrUnitSettingsAngle::Default());
    EXPECT_EQ(CNyrUnitSettingsAngleLatLon::Default().Section(), "CNyrUnitSettingsAngleLatLon");
}

TEST_F(UnitSettingsFile, AnUnwritableFileLeavesTheUnitCurrentAndAStatus)
{
    NyrSetProfilePath("/proc/nyr-values-test/Nyr240.INI");
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(23), 1);
    EXPECT_EQ(CNyrUnitSettingsDistance::Default().Unit(), NYR_UNIT_INTERNATIONAL_FEET);
    EXPECT_EQ(CNyrUnitSettingsDistance::Default().Status(), NYR_UNIT_SETTINGS_WRITE_FAILED);
}

TEST(UnitSettings, UnitsOfTheWrongKindAreRefused)
{
    CNyrUnitSettingsDistance distance;
    EXPECT_EQ(distance.Unit(NYR_UNIT_DMS), 0);
    EXPECT_EQ(distance.Unit(), NYR_UNIT_METRES);
    EXPECT_FALSE(distance.IsValid());
    EXPECT_EQ(distance.Status(), NYR_UNIT_SETTINGS_NOT_A_UNIT);
    EXPECT_TRUE(distance.IsValid());

    CNyrUnitSettingsAngleLatLon latLon;
    EXPECT_EQ(latLon.Unit(NYR_UNIT_METRES), 0);
    EXPECT_EQ(latLon.Unit(NYR_UNIT_GRAD), 1);
    std::string abbreviation;
    latLon.GetUnitAbbreviation(abbreviation);
    EXPECT_EQ(abbreviation, "grad");
    latLon.UseSecOnly(1);
    latLon.GetUnitAbbreviation(abbreviation);
    EXPECT_EQ(abbreviation, "cc");
    latLon.Precision(3);
    EXPECT_EQ(latLon.Format().Precision(), 3);
    latLon.Format("%DegOrG");
    EXPECT_EQ(latLon.Format().Format(), "%DegOrG");
}

}  // namespace

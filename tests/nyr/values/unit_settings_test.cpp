#include <gtest/gtest.h>

#include <string>

#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "tests/support/temp_dir.h"

namespace {

// Each test gets its own settings file; the process-wide settings start from
// their construction units.
class UnitSettingsFile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        m_distance.Unit(NYR_UNIT_METRES);
        m_angle.Unit(NYR_UNIT_DMS);
        m_distance.Status();
        m_angle.Status();
    }

    std::string File() const { return nyr::test::ReadFile(m_dir.File("Nyr240.INI")); }
    static std::string Stored(const char* section, const char* entry)
    {
        return CNyrProfileEntries::ReadNyrProfileString(section, entry, "<none>");
    }

    nyr::test::TempDir m_dir;
    CNyrUnitSettingsDistance& m_distance = CNyrUnitSettingsDistance::Default();
    CNyrUnitSettingsAngle& m_angle = CNyrUnitSettingsAngle::Default();
};

TEST_F(UnitSettingsFile, DistanceDefaultIsStoredOnceAndThenKept)
{
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(22), 1);
    EXPECT_EQ(m_distance.Unit(), NYR_UNIT_US_SURVEY_FEET);
    EXPECT_EQ(File(), "[CNyrUnitSettingsDistance]\nUnitDistance Format (###)=22\nUnitDistance Format (str)=fts\n");
    m_distance.Unit(NYR_UNIT_METRES);
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(21), 1);
    EXPECT_EQ(m_distance.Unit(), NYR_UNIT_US_SURVEY_FEET);  // the stored choice wins
    EXPECT_EQ(Stored("CNyrUnitSettingsDistance", "UnitDistance Format (###)"), "22");
}

TEST_F(UnitSettingsFile, PlaceholdersAreIgnoredAndOtherCodesRefused)
{
    const struct
    {
        CNyrUnitSettings* settings;
        long unit;
        const int* excluded;
        int status;
    } cases[] = {
        {&m_distance, 20, nullptr, NYR_UNIT_SETTINGS_OK},      {&m_distance, 2, nullptr, NYR_UNIT_SETTINGS_OK},
        {&m_angle, 10, nullptr, NYR_UNIT_SETTINGS_OK},         {&m_angle, 2, nullptr, NYR_UNIT_SETTINGS_OK},
        {&m_distance, 11, nullptr, NYR_UNIT_SETTINGS_NOT_A_UNIT}, {&m_distance, 19, nullptr, NYR_UNIT_SETTINGS_NOT_A_UNIT},
        {&m_angle, 21, nullptr, NYR_UNIT_SETTINGS_NOT_A_UNIT}, {&m_angle, -1, nullptr, NYR_UNIT_SETTINGS_NOT_A_UNIT},
    };
    for (const auto& c : cases) {
        const int made = c.settings == &m_distance ? CNyrUnitSettingsDistance::DefaultSettings(c.unit)
                                                   : CNyrUnitSettingsAngle::DefaultSettings(c.unit, c.excluded);
        EXPECT_EQ(made, 0) << c.unit;
        EXPECT_EQ(c.settings->Status(), c.status) << c.unit;
    }
    const int excluded[] = {13, 11, 0, 14};  // ends at 0: 14 is offered
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(11, excluded), 0);
    EXPECT_EQ(m_angle.Status(), NYR_UNIT_SETTINGS_EXCLUDED);
    EXPECT_EQ(File(), "");  // nothing was written
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(14, excluded), 1);
    EXPECT_EQ(m_angle.Unit(), NYR_UNIT_GRAD);
}

TEST_F(UnitSettingsFile, ExcludedOrForeignStoredUnitsAreReplaced)
{
    const char* section = "CNyrUnitSettingsAngle";
    const char* number = "UnitAngle Format (###)";
    const int noDms[] = {12, 0};
    CNyrProfileEntries::WriteNyrProfileInt(section, number, 12);
    EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(11, noDms), 1);
    EXPECT_EQ(m_angle.Unit(), NYR_UNIT_DEGREE);
    EXPECT_EQ(Stored(section, number), "11");
    EXPECT_EQ(Stored(section, "UnitAngle Format (str)"), "dec");
    const struct
    {
        const char* foreign;
        long unit;
        const char* abbreviation;
    } replaced[] = {{"21", 15, ""}, {"19", 14, "grad"}, {"abc", 16, "gon"}, {"-5", 17, "rev"}, {"99", 18, "rad"}};
    for (const auto& r : replaced) {
        CNyrProfileEntries::WriteNyrProfileString(section, number, r.foreign);
        EXPECT_EQ(CNyrUnitSettingsAngle::DefaultSettings(r.unit, nullptr), 1);
        EXPECT_EQ(Stored(section, number), std::to_string(r.unit)) << r.foreign;
        EXPECT_EQ(Stored(section, "UnitAngle Format (str)"), r.abbreviation) << r.foreign;
    }
    // Latitudes and longitudes keep theirs in their own section.
    EXPECT_EQ(CNyrUnitSettingsAngleLatLon::DefaultSettings(13, nullptr), 1);
    EXPECT_EQ(CNyrUnitSettingsAngleLatLon::Default().Unit(), NYR_UNIT_DECIMAL_DMS);
    EXPECT_EQ(m_angle.Unit(), NYR_UNIT_RADIANS);
    EXPECT_EQ(Stored("CNyrUnitSettingsAngleLatLon", "UnitAngle Format (str)"), "deg");
}

TEST_F(UnitSettingsFile, AnUnwritableFileLeavesTheUnitCurrentAndAStatus)
{
    NyrSetProfilePath("/proc/nyr-values-test/Nyr240.INI");
    EXPECT_EQ(CNyrUnitSettingsDistance::DefaultSettings(23), 1);
    EXPECT_EQ(m_distance.Unit(), NYR_UNIT_INTERNATIONAL_FEET);
    EXPECT_EQ(m_distance.Status(), NYR_UNIT_SETTINGS_WRITE_FAILED);
}

}  // namespace

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nyr/values/unit_settings.h"
#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct ConvertCase
{
    double value;
    long from, to;
    int precision;
    int result;
    double out;
};

TEST(Units, ConvertFollowsItsFiveSteps)
{
    const ConvertCase cases[] = {
        {1, NYR_UNIT_US_SURVEY_FEET, NYR_UNIT_METRES, -1, 0, 0.3048006096012192},
        {1, NYR_UNIT_INTERNATIONAL_FEET, NYR_UNIT_METRES, -1, 0, 0.3048},
        {0.3048, NYR_UNIT_METRES, NYR_UNIT_INTERNATIONAL_FEET, -1, 0, 1.0},
        {100, NYR_UNIT_GRAD, NYR_UNIT_RADIANS, -1, 0, kPi / 2},
        {1, NYR_UNIT_REVOLUTION, NYR_UNIT_RADIANS, -1, 0, 2 * kPi},
        {180, NYR_UNIT_DEGREE, NYR_UNIT_RADIANS, -1, 0, kPi},
        {12.3, NYR_UNIT_DMS, NYR_UNIT_DEGREE, -1, 0, 12.5},
        {12.5, NYR_UNIT_DEGREE, NYR_UNIT_DECIMAL_DMS, 4, 0, 12.3},
        {12.3, NYR_UNIT_DECIMAL_DMS, NYR_UNIT_GON, 4, 0, 13.8889},
        {50, NYR_UNIT_DECIMAL_GON, NYR_UNIT_DEGREE, -1, 0, 45.0},
        {0.25, NYR_UNIT_REVOLUTION, NYR_UNIT_DMS, 4, 0, 90.0},
        // The same code: a plain copy, unrounded and unchecked (intended).
        {12.5, NYR_UNIT_DEGREE, NYR_UNIT_DEGREE, -1, 0, 12.5},
        {12.349999, NYR_UNIT_DMS, NYR_UNIT_DMS, 2, 0, 12.349999},
        {7, 19, 19, -1, 0, 7.0},
        // Kinds are not checked: metres to radians is a copy (intended).
        {12.5, NYR_UNIT_METRES, NYR_UNIT_RADIANS, -1, 0, 12.5},
        // Not units: 1 and an output of 0.
        {12.5, NYR_UNIT_DEGREE, 19, -1, 1, 0.0},
        {12.5, 20, NYR_UNIT_METRES, -1, 1, 0.0},
        {12.5, 10, NYR_UNIT_DEGREE, -1, 1, 0.0},
        {12.5, NYR_UNIT_METRES, 24, -1, 1, 0.0},
        {12.5, 2, NYR_UNIT_METRES, -1, 1, 0.0},
    };
    for (const ConvertCase& c : cases) {
        double out = -99;
        EXPECT_EQ(CNyrValue::Convert(c.value, c.from, out, c.to, c.precision, 0), c.result)
            << c.value << " " << c.from << " -> " << c.to;
        EXPECT_DOUBLE_EQ(out, c.out) << c.value << " " << c.from << " -> " << c.to;
    }
}

TEST(Units, EveryPairOfAngleUnitsRoundTrips)
{
    for (const NYR_UNIT_TEXT* from = NyrUnitTableAngle(); from->unit != -1; ++from)
        for (const NYR_UNIT_TEXT* to = NyrUnitTableAngle(); to->unit != -1; ++to) {
            double there = 0, back = 0;
            ASSERT_EQ(CNyrValue::Convert(0.7, NYR_UNIT_RADIANS, there, from->unit, -1, 0), 0);
            ASSERT_EQ(CNyrValue::Convert(there, from->unit, back, to->unit, -1, 0), 0);
            ASSERT_EQ(CNyrValue::Convert(back, to->unit, back, NYR_UNIT_RADIANS, -1, 0), 0);
            EXPECT_NEAR(back, 0.7, 1e-13) << from->unit << " -> " << to->unit;
        }
}

TEST(Units, TablesAndAbbreviations)
{
    long distance[4], angle[9];
    int n = 0;
    for (const NYR_UNIT_TEXT* row = NyrUnitTableDistance(); n < 4; ++row)
        distance[n++] = row->unit;
    EXPECT_EQ(std::vector<long>(distance, distance + 4), (std::vector<long>{21, 22, 23, -1}));
    n = 0;
    for (const NYR_UNIT_TEXT* row = NyrUnitTableAngle(); n < 9; ++row)
        angle[n++] = row->textId;
    EXPECT_EQ(std::vector<long>(angle, angle + 9),
              (std::vector<long>{26120, 26121, 26122, 26123, 26124, 26125, 26126, 26127, -1}));

    const struct
    {
        long unit;
        const char* plain;
        const char* secondsOnly;
    } rows[] = {{11, "dec", "\""}, {12, "", "\""},     {13, "deg", "\""},  {14, "grad", "cc"},
                {15, "", "cc"},    {16, "gon", "cc"},  {17, "rev", "rev"}, {18, "rad", "rad"},
                {21, "m", "m"},    {22, "fts", "fts"}, {23, "fti", "fti"}};
    for (const auto& row : rows) {
        std::string text = "x";
        EXPECT_EQ(CNyrUnitSettings::UnitAbbreviation(row.unit, text, 0), 1);
        EXPECT_EQ(text, row.plain) << row.unit;
        EXPECT_EQ(CNyrUnitSettings::UnitAbbreviation(row.unit, text, 1), 1);
        EXPECT_EQ(text, row.secondsOnly) << row.unit;
    }
    for (long notAUnit : {2L, 10L, 19L, 20L, 24L, -1L}) {
        std::string text = "x";
        EXPECT_EQ(CNyrUnitSettings::UnitAbbreviation(notAUnit, text, 0), 0);
        EXPECT_EQ(text, "");
    }
}

}  // namespace

#include <gtest/gtest.h>

#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

constexpr double kPi = 3.141592653589793;

TEST(Units, ConvertFollowsItsFiveSteps)
{
    const struct
    {
        double value;
        long from, to;
        int precision, result;
        double out;
    } cases[] = {
        {1, NYR_UNIT_US_SURVEY_FEET, NYR_UNIT_METRES, -1, 0, 0.3048006096012192},
        {1, NYR_UNIT_INTERNATIONAL_FEET, NYR_UNIT_METRES, -1, 0, 0.3048},
        {0.3048, NYR_UNIT_METRES, NYR_UNIT_INTERNATIONAL_FEET, -1, 0, 1.0},
        {100, NYR_UNIT_GRAD, NYR_UNIT_RADIANS, -1, 0, kPi / 2},
        {1, NYR_UNIT_REVOLUTION, NYR_UNIT_RADIANS, -1, 0, 2 * kPi},
        {90, NYR_UNIT_DMS, NYR_UNIT_RADIANS, -1, 0, kPi / 2},
        {12.3, NYR_UNIT_DMS, NYR_UNIT_DEGREE, -1, 0, 12.5},
        {12.3, NYR_UNIT_DECIMAL_DMS, NYR_UNIT_GON, 4, 0, 13.8889},
        {50, NYR_UNIT_DECIMAL_GON, NYR_UNIT_DEGREE, -1, 0, 45.0},
        {0.25, NYR_UNIT_REVOLUTION, NYR_UNIT_DMS, 4, 0, 90.0},
        // The same code: a plain copy, unrounded and unchecked (intended).
        {12.349999, NYR_UNIT_DMS, NYR_UNIT_DMS, 2, 0, 12.349999},
        {7, 19, 19, -1, 0, 7.0},
        // Kinds are not checked: metres to radians is a copy (intended).
        {12.5, NYR_UNIT_METRES, NYR_UNIT_RADIANS, -1, 0, 12.5},
        // Not units: 1 and an output of 0.
        {12.5, NYR_UNIT_DEGREE, 19, -1, 1, 0.0},
        {12.5, 20, NYR_UNIT_METRES, -1, 1, 0.0},
        {12.5, 10, NYR_UNIT_DEGREE, -1, 1, 0.0},
        {12.5, NYR_UNIT_METRES, 24, -1, 1, 0.0},
    };
    for (const auto& c : cases) {
        double out = -99;
        EXPECT_EQ(CNyrValue::Convert(c.value, c.from, out, c.to, c.precision, 0), c.result) << c.from << "->" << c.to;
        EXPECT_DOUBLE_EQ(out, c.out) << c.value << " " << c.from << " -> " << c.to;
    }
}

TEST(Units, EveryPairOfAngleUnitsRoundTrips)
{
    for (const NYR_UNIT_TEXT* from = NyrUnitTableAngle(); from->unit != -1; ++from)
        for (const NYR_UNIT_TEXT* to = NyrUnitTableAngle(); to->unit != -1; ++to) {
            double there = 0, back = 0;
            CNyrValue::Convert(-0.7, NYR_UNIT_RADIANS, there, from->unit, -1, 0);
            ASSERT_EQ(CNyrValue::Convert(there, from->unit, back, to->unit, -1, 0), 0);
            CNyrValue::Convert(back, to->unit, back, NYR_UNIT_RADIANS, -1, 0);
            EXPECT_NEAR(back, -0.7, 1e-13) << from->unit << " -> " << to->unit;
        }
}

}  // namespace

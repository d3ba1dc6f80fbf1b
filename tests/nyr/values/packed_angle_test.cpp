#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "nyr/values/packed_angle.h"
#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

double Radians(double value, long unit)
{
    double out = 0;
    CNyrValue::Convert(value, unit, out, NYR_UNIT_RADIANS, -1, 0);
    return out;
}

struct SplitCase
{
    double packed;
    int precision;
    int sign, whole, minutes;
    double seconds;
};

TEST(PackedAngle, DmsSplitsTheDigitsItPrintsWithAndCarries)
{
    const SplitCase cases[] = {
        {12.3, -1, 1, 12, 30, 0.0},                  // not 29' 59.99999"
        {12.299999999999999, -1, 1, 12, 30, 0.0},    // 12.3 after some arithmetic
        {-0.3, -1, -1, 0, 30, 0.0},                  // the sign of an angle under one degree
        {-0.0015, -1, -1, 0, 0, 15.0},
        {12.301550, 5, 1, 12, 30, 15.5},
        {12.30155123456, 8, 1, 12, 30, 15.5123456},  // the sixth decimal of the seconds rounds up
        {12.30155123456, 3, 1, 12, 30, 15.512},
        {29.595999999999, 4, 1, 30, 0, 0.0},         // 59.9999999" carries through every field
        {-0.595999999999, 4, -1, 1, 0, 0.0},
        {12.75, -1, 1, 13, 15, 0.0},                 // 75 minutes are 1° 15'
        {12.3075, -1, 1, 12, 31, 15.0},              // 75 seconds are 1' 15"
        {-0.0, -1, 1, 0, 0, 0.0},                    // a zero angle has no sign
        {-1e-14, 8, 1, 0, 0, 0.0},
        {-4.9e-13, 8, 1, 0, 0, 0.0},                 // below half the twelfth decimal: zero, unsigned
        {-5e-11, 8, -1, 0, 0, 5e-7},                 // the twelfth decimal is 1e-8 of a second
        {359.59599999999, 8, 1, 359, 59, 59.9999999},
        {2147483647.0, 0, 1, 2147483647, 0, 0.0},
    };
    for (const SplitCase& c : cases) {
        int sign = 0, whole = 0, minutes = 0;
        double seconds = -1;
        ASSERT_EQ(Wb32DMS2DMS(c.packed, sign, whole, minutes, seconds, c.precision, 0), 1) << c.packed;
        EXPECT_EQ(sign, c.sign) << c.packed;
        EXPECT_EQ(whole, c.whole) << c.packed;
        EXPECT_EQ(minutes, c.minutes) << c.packed;
        EXPECT_DOUBLE_EQ(seconds, c.seconds) << c.packed;
    }
}

TEST(PackedAngle, GonSplitsAndCarriesAtHundred)
{
    const SplitCase cases[] = {
        {12.3456, -1, 1, 12, 34, 56.0},
        {-0.0001, -1, -1, 0, 0, 1.0},
        {399.99999999, 4, 1, 399, 99, 99.9999},
        {399.9999999999, 4, 1, 400, 0, 0.0},
        {12.99995, 0, 1, 13, 0, 0.0},
    };
    for (const SplitCase& c : cases) {
        int sign = 0, whole = 0, minutes = 0;
        double seconds = -1;
        ASSERT_EQ(Wb32GCCC2GCCC(c.packed, sign, whole, minutes, seconds, c.precision, 0), 1);
        EXPECT_EQ(sign, c.sign) << c.packed;
        EXPECT_EQ(whole, c.whole) << c.packed;
        EXPECT_EQ(minutes, c.minutes) << c.packed;
        EXPECT_DOUBLE_EQ(seconds, c.seconds) << c.packed;
    }
    int sign = 0, whole = 0, minutes = 0;
    double seconds = 0;
    EXPECT_EQ(Wb32GCCC2GCCC(399.9999999999, sign, whole, minutes, seconds, 4, WB32_FLAG_ONE_TURN), 1);
    EXPECT_EQ(whole, 0);
}

TEST(PackedAngle, SplitRefusesWhatHasNoFieldsAndLeavesThemAlone)
{
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                       -std::numeric_limits<double>::infinity(), 2147483648.0, -1e300}) {
        int sign = 7, whole = 7, minutes = 7;
        double seconds = 7;
        EXPECT_EQ(Wb32DMS2DMS(bad, sign, whole, minutes, seconds, 5, 0), 0) << bad;
        EXPECT_EQ(sign + whole + minutes, 21);
        EXPECT_EQ(seconds, 7);
    }
}

struct PackCase
{
    double value;  // in `unit`
    long unit;
    int precision;
    unsigned long flags;
    double packed;
};

TEST(PackedAngle, RadiansPackRoundedWithCarry)
{
    const PackCase cases[] = {
        {29.999999999, NYR_UNIT_DEGREE, 4, 0, 30.0},  // not 29.5960
        {12.5, NYR_UNIT_DEGREE, 4, 0, 12.3},
        {12.5, NYR_UNIT_DEGREE, 2, 0, 12.3},
        {12.5, NYR_UNIT_DEGREE, 1, 0, 12.3},          // tens of minutes
        {12.5, NYR_UNIT_DEGREE, 0, 0, 13.0},          // half away from zero
        {12.301550, NYR_UNIT_DMS, 3, 0, 12.302},      // tens of seconds: 15.5" -> 20"
        {12.305550, NYR_UNIT_DMS, 3, 0, 12.31},       // 55.5" -> 60" -> next minute
        {12.301550, NYR_UNIT_DMS, 12, 0, 12.30155},
        {12.301550, NYR_UNIT_DMS, -1, 0, 12.30155},
        {-0.5, NYR_UNIT_DEGREE, 4, 0, -0.3},
        {-90, NYR_UNIT_DEGREE, 4, WB32_FLAG_ONE_TURN, 270.0},
        {359.595999999, NYR_UNIT_DMS, 4, WB32_FLAG_ONE_TURN, 0.0},
        {359.595999999, NYR_UNIT_DMS, 4, 0, 360.0},
        {-720.5, NYR_UNIT_DEGREE, 2, WB32_FLAG_ONE_TURN, 359.3},
        {100, NYR_UNIT_GRAD, 4, 0, 100.0},
        {99.99999999, NYR_UNIT_GRAD, 4, 0, 100.0},
        {-0.5, NYR_UNIT_GRAD, 4, 0, -0.5},
        {-50, NYR_UNIT_GRAD, 4, WB32_FLAG_ONE_TURN, 350.0},
        {12345.6789, NYR_UNIT_GRAD, 4, 0, 12345.6789},
    };
    for (const PackCase& c : cases) {
        const double radians = Radians(c.value, c.unit);
        const bool gon = c.unit == NYR_UNIT_GRAD;
        const double packed = gon ? Wb32Rad2GCCC(radians, c.precision, c.flags)
                                  : Wb32Rad2DMS(radians, c.precision, c.flags);
        EXPECT_EQ(packed, c.packed) << c.value << " unit " << c.unit << " precision " << c.precision;
        EXPECT_FALSE(std::signbit(packed) && packed == 0) << "negative zero from " << c.value;
    }
    EXPECT_FALSE(std::signbit(Wb32Rad2DMS(-1e-12, 4, 0)));  // rounds to an unsigned zero
    EXPECT_TRUE(std::isnan(Wb32Rad2DMS(std::numeric_limits<double>::quiet_NaN(), 4, 0)));
    EXPECT_EQ(Wb32Rad2GCCC(std::numeric_limits<double>::infinity(), 4, 0), std::numeric_limits<double>::infinity());
}

TEST(PackedAngle, EveryPackedDecimalSurvivesTheRoundTripThroughRadians)
{
    // Whatever DMS2Rad reads, Rad2DMS at full precision writes back as the
    // same double, for degrees, minutes and seconds of every shape within a
    // turn (beyond it radians no longer resolve 1e-8 of a second).
    for (int degrees : {0, 1, 12, 89, 179, 359})
        for (int minutes = 0; minutes < 60; minutes += 7)
            for (double seconds : {0.0, 0.5, 15.12345678, 59.99999999})
                for (int sign : {1, -1}) {
                    const double packed = Wb32DMS2DMS(sign, degrees, minutes, seconds, -1, 0);
                    ASSERT_EQ(Wb32Rad2DMS(Wb32DMS2Rad(packed), -1, 0), packed)
                        << sign * degrees << " " << minutes << " " << seconds;
                    const double gon = Wb32GCCC2GCCC(sign, degrees, minutes, seconds, -1, 0);
                    ASSERT_EQ(Wb32Rad2GCCC(Wb32GCCC2Rad(gon), -1, 0), gon) << gon;
                }
}

TEST(PackedAngle, BuildTakesMagnitudesCarriesAndRefusesWildSeconds)
{
    EXPECT_EQ(Wb32DMS2DMS(-1, 0, 30, 0.0, -1, 0), -0.3);
    EXPECT_EQ(Wb32DMS2DMS(1, 12, 30, 15.5, -1, 0), 12.30155);
    EXPECT_EQ(Wb32DMS2DMS(1, -12, -30, -15.5, -1, 0), 12.30155);  // only `sign` gives the sign
    EXPECT_EQ(Wb32DMS2DMS(1, 12, 75, 0.0, -1, 0), 13.15);
    EXPECT_EQ(Wb32DMS2DMS(1, 29, 59, 59.99999, 4, 0), 30.0);
    EXPECT_EQ(Wb32DMS2DMS(-1, 0, 0, 0.0, -1, 0), 0.0);
    EXPECT_FALSE(std::signbit(Wb32DMS2DMS(-1, 0, 0, 0.0, -1, 0)));
    EXPECT_EQ(Wb32DMS2DMS(-1, 90, 0, 0.0, -1, WB32_FLAG_ONE_TURN), 270.0);
    EXPECT_EQ(Wb32GCCC2GCCC(1, 12, 34, 56.78, -1, 0), 12.345678);
    EXPECT_TRUE(std::isnan(Wb32DMS2DMS(1, 0, 0, std::numeric_limits<double>::infinity(), -1, 0)));
    EXPECT_TRUE(std::isnan(Wb32DMS2DMS(1, 0, 0, 1e9, -1, 0)));
    EXPECT_TRUE(std::isnan(Wb32GCCC2GCCC(1, 0, 0, std::numeric_limits<double>::quiet_NaN(), -1, 0)));
}

TEST(PackedAngle, PackedNumbersReadAsRadians)
{
    const double pi = 3.141592653589793;
    EXPECT_EQ(Wb32DMS2Rad(90.0), pi / 2);
    EXPECT_EQ(Wb32DMS2Rad(180.0), pi);
    EXPECT_EQ(Wb32DMS2Rad(-0.3), -Wb32DMS2Rad(0.3));
    EXPECT_EQ(Wb32DMS2Rad(12.3), Radians(12.5, NYR_UNIT_DEGREE));
    EXPECT_DOUBLE_EQ(Wb32GCCC2Rad(100.0), pi / 2);
    EXPECT_EQ(Wb32GCCC2Rad(-0.5), -Radians(0.5, NYR_UNIT_GRAD));
    EXPECT_EQ(Wb32DMS2Rad(1e300), Radians(1e300, NYR_UNIT_DEGREE));  // no fields: decimal degrees
    EXPECT_TRUE(std::isnan(Wb32DMS2Rad(std::numeric_limits<double>::quiet_NaN())));
}

}  // namespace

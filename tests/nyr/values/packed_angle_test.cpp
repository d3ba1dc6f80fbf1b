#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "nyr/values/packed_angle.h"
#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(PackedAngle, SplitsTheDecimalDigitsAndCarries)
{
    const struct
    {
        double packed;
        bool gon;
        int precision, sign, whole, minutes;
        double seconds;
    } cases[] = {
        {12.3, false, -1, 1, 12, 30, 0.0},                  // not 29' 59.99999"
        {12.299999999999999, false, -1, 1, 12, 30, 0.0},    // 12.3 after some arithmetic
        {-0.3, false, -1, -1, 0, 30, 0.0},                  // the sign of an angle under one degree
        {-0.0015, false, -1, -1, 0, 0, 15.0},
        {12.30155123456, false, 3, 1, 12, 30, 15.512},
        {29.595999999999, false, 4, 1, 30, 0, 0.0},         // 59.9999999" carries through every field
        {-0.595999999999, false, 4, -1, 1, 0, 0.0},
        {12.75, false, -1, 1, 13, 15, 0.0},                 // 75 minutes are 1° 15'
        {12.3075, false, -1, 1, 12, 31, 15.0},              // 75 seconds are 1' 15"
        {-0.0, false, -1, 1, 0, 0, 0.0},                    // a zero angle has no sign
        {-4.9e-13, false, 8, 1, 0, 0, 0.0},                 // below half the twelfth decimal
        {-5e-11, false, 8, -1, 0, 0, 5e-7},                 // the twelfth decimal is 1e-8"
        {2147483647.0, false, 0, 1, 2147483647, 0, 0.0},
        {113000556.05, false, -1, 1, 113000556, 5, 0.0},    // noise in the last places is not seconds
        {4000.2999999999993, false, -1, 1, 4000, 30, 0.0},
        {12.3456, true, -1, 1, 12, 34, 56.0},
        {-0.0001, true, -1, -1, 0, 0, 1.0},
        {399.9999999999, true, 4, 1, 400, 0, 0.0},
    };
    using Split = int (*)(double, int&, int&, int&, double&, int, int);
    for (const auto& c : cases) {
        int sign = 0, whole = 0, minutes = 0;
        double seconds = -1;
        const Split split = c.gon ? Split(Wb32GCCC2GCCC) : Split(Wb32DMS2DMS);
        ASSERT_EQ(split(c.packed, sign, whole, minutes, seconds, c.precision, 0), 1);
        EXPECT_EQ(sign, c.sign) << c.packed;
        EXPECT_EQ(whole, c.whole) << c.packed;
        EXPECT_EQ(minutes, c.minutes) << c.packed;
        EXPECT_DOUBLE_EQ(seconds, c.seconds) << c.packed;
    }
    for (double bad : {kNaN, kInf, 2147483648.0, -1e300}) {
        int sign = 7, whole = 7, minutes = 7;
        double seconds = 7;
        EXPECT_EQ(Wb32DMS2DMS(bad, sign, whole, minutes, seconds, 5, 0), 0) << bad;
        EXPECT_EQ(sign + whole + minutes + seconds, 28);  // untouched
    }
}

TEST(PackedAngle, RadiansPackRoundedWithCarry)
{
    const struct
    {
        double value;
        long unit;
        int precision;
        unsigned long flags;
        double packed;
    } cases[] = {
        {29.999999999, NYR_UNIT_DEGREE, 4, 0, 30.0},  // not 29.5960
        {12.5, NYR_UNIT_DEGREE, 4, 0, 12.3},
        {12.5, NYR_UNIT_DEGREE, 1, 0, 12.3},          // tens of minutes
        {12.5, NYR_UNIT_DEGREE, 0, 0, 13.0},          // half away from zero
        {12.301550, NYR_UNIT_DMS, 3, 0, 12.302},      // tens of seconds: 15.5" -> 20"
        {12.305550, NYR_UNIT_DMS, 3, 0, 12.31},       // 55.5" -> 60" -> the next minute
        {12.301550, NYR_UNIT_DMS, -1, 0, 12.30155},
        {-0.5, NYR_UNIT_DEGREE, 4, 0, -0.3},
        {-1e-12, NYR_UNIT_RADIANS, 4, 0, 0.0},        // rounds to an unsigned zero
        {-90, NYR_UNIT_DEGREE, 4, WB32_FLAG_ONE_TURN, 270.0},
        {359.595999999, NYR_UNIT_DMS, 4, WB32_FLAG_ONE_TURN, 0.0},
        {359.595999999, NYR_UNIT_DMS, 4, 0, 360.0},
        {-720.5, NYR_UNIT_DEGREE, 2, WB32_FLAG_ONE_TURN, 359.3},
        {99.99999999, NYR_UNIT_GRAD, 4, 0, 100.0},
        {-50, NYR_UNIT_GRAD, 4, WB32_FLAG_ONE_TURN, 350.0},
        {12345.6789, NYR_UNIT_GRAD, 4, 0, 12345.6789},
        {kNaN, NYR_UNIT_RADIANS, 4, 0, kNaN},
        {kInf, NYR_UNIT_RADIANS, 4, 0, kInf},
    };
    for (const auto& c : cases) {
        double radians = 0;
        CNyrValue::Convert(c.value, c.unit, radians, NYR_UNIT_RADIANS, -1, 0);
        const bool gon = c.unit == NYR_UNIT_GRAD;
        const double packed = (gon ? Wb32Rad2GCCC : Wb32Rad2DMS)(radians, c.precision, c.flags);
        if (std::isnan(c.packed))
            EXPECT_TRUE(std::isnan(packed));
        else
            EXPECT_EQ(packed, c.packed) << c.value << " unit " << c.unit << " precision " << c.precision;
        EXPECT_FALSE(std::signbit(packed) && packed == 0) << "negative zero from " << c.value;
    }
}

TEST(PackedAngle, EveryPackedDecimalSurvivesTheRoundTripThroughRadians)
{
    // Within a turn: beyond it radians no longer resolve 1e-8 of a second.
    for (int degrees : {0, 1, 12, 89, 179, 359})
        for (int minutes = 0; minutes < 60; minutes += 7)
            for (double seconds : {0.0, 0.5, 15.12345678, 59.99999999})
                for (int sign : {1, -1}) {
                    const double dms = Wb32DMS2DMS(sign, degrees, minutes, seconds, -1, 0);
                    ASSERT_EQ(Wb32Rad2DMS(Wb32DMS2Rad(dms), -1, 0), dms) << dms;
                    const double gon = Wb32GCCC2GCCC(sign, degrees, minutes, seconds, -1, 0);
                    ASSERT_EQ(Wb32Rad2GCCC(Wb32GCCC2Rad(gon), -1, 0), gon) << gon;
                }
}

TEST(PackedAngle, BuildTakesMagnitudesCarriesAndRefusesWildSeconds)
{
    EXPECT_EQ(Wb32DMS2DMS(1, -12, -30, -15.5, -1, 0), 12.30155);  // only `sign` gives the sign
    EXPECT_EQ(Wb32DMS2DMS(1, 12, 75, 0.0, -1, 0), 13.15);
    EXPECT_EQ(Wb32DMS2DMS(1, 29, 59, 59.99999, 4, 0), 30.0);
    EXPECT_FALSE(std::signbit(Wb32DMS2DMS(-1, 0, 0, 0.0, -1, 0)));
    EXPECT_EQ(Wb32DMS2DMS(-1, 90, 0, 0.0, -1, WB32_FLAG_ONE_TURN), 270.0);
    for (double wild : {kInf, kNaN, 1e9})
        EXPECT_TRUE(std::isnan(Wb32DMS2DMS(1, 0, 0, wild, -1, 0))) << wild;
    EXPECT_TRUE(std::isnan(Wb32DMS2Rad(kNaN)));
    EXPECT_EQ(Wb32GCCC2Rad(-kInf), -kInf);
}

}  // namespace

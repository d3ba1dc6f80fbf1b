#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "nyr/values/packed_angle.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kUntouched = 0.123;  // what a refused input must leave behind
constexpr long DMS = NYR_UNIT_DMS;
constexpr long GON = NYR_UNIT_GON;
constexpr long DEG = NYR_UNIT_DEGREE;
constexpr long RAD = NYR_UNIT_RADIANS;
constexpr long M = NYR_UNIT_METRES;
constexpr int OK = NYR_VALUE_OK;
constexpr int UNREADABLE = NYR_VALUE_UNREADABLE;
constexpr int RANGE = NYR_VALUE_OUT_OF_RANGE;
constexpr int TOO_LONG = NYR_VALUE_TOO_LONG;

double Degrees(double degrees)
{
    return degrees * kPi / 180;
}

struct ReadCase
{
    std::string text;
    long unit;
    int status;
    double inUnit;  // read back in `unit` when the status is 0
};

// Reads each text into a value of its unit's kind that held kUntouched.
void CheckReads(const std::vector<ReadCase>& cases)
{
    CNyrUnitSettingsAngle angles;
    CNyrUnitSettingsDistance distances;
    CNyrValueAngle angle(0.0, angles);
    CNyrValueDistance distance(0.0, distances);
    for (const auto& c : cases) {
        CNyrValue& value = c.unit < 20 ? static_cast<CNyrValue&>(angle) : distance;
        value.SetDouble(kUntouched);
        EXPECT_EQ(value.ConvertToStd(c.text.c_str(), c.unit), c.status) << '"' << c.text << '"';
        EXPECT_EQ(value.Status(), c.status) << '"' << c.text << '"';
        double out = kUntouched;
        if (c.status == OK)
            value.ConvertStdTo(out, c.unit);
        EXPECT_DOUBLE_EQ(out, c.status == OK ? c.inUnit : kUntouched) << '"' << c.text << '"';
        EXPECT_FALSE(value.GetDouble() == 0 && std::signbit(value.GetDouble())) << '"' << c.text << '"';
    }
}

TEST(Value, ReadsTextOrRefusesItWhole)
{
    CheckReads({
        {"12 30 15.5", DMS, OK, 12.30155}, {"12\u00b030'15.5\"", DMS, OK, 12.30155}, {"12", DMS, OK, 12.0},
        // A minus in any field makes the angle negative, also on a zero field
        // and apart from its field as the written texts have it.
        {"-12 30 15", DMS, OK, -12.3015}, {"12 -30 15", DMS, OK, -12.3015}, {"-0 30 00", DMS, OK, -0.3},
        {"-  5 30 00.00000", DMS, OK, -5.3}, {"12 30 15.5 S", DMS, OK, -12.30155},
        {"-12 30 15.5 W", DMS, OK, 12.30155},  // letter and minus cancel (intended)
        {"12g 34c 56.78cc", GON, OK, 12.345678}, {"399 99 99.5", GON, OK, 399.99995},
        {"12.5\u00b0 trailing text", DEG, OK, 12.5}, {"  -1.25e1 S", DEG, OK, 12.5}, {"0 S", DEG, OK, 0.0},
        {"12.301550", NYR_UNIT_DECIMAL_DMS, OK, 12.30155},
        {"", DMS, UNREADABLE, 0}, {"\u00b0'\"", DMS, UNREADABLE, 0}, {"#12", DEG, UNREADABLE, 0},
        {"--12", DEG, UNREADABLE, 0}, {"99999999999", DMS, RANGE, 0}, {"1e308", DEG, RANGE, 0},
        {"1e400", DEG, RANGE, 0}, {"nan", DEG, RANGE, 0}, {"-infinity", RAD, RANGE, 0},
        {"12.5 m", M, OK, 12.5}, {"12 S", M, OK, 12.0} /* no hemispheres */, {"1", NYR_UNIT_US_SURVEY_FEET, OK, 1.0},
        {"m 12", M, UNREADABLE, 0}, {"1e13", M, RANGE, 0},
    });
    CNyrUnitSettingsAngle angles;
    CNyrUnitSettingsDistance distances;
    CNyrValueAngle angle(kUntouched, angles);
    CNyrValueDistance distance(0.0, distances);
    EXPECT_EQ(angle.ConvertToStd(std::string(300, '1').c_str(), DEG), TOO_LONG);
    EXPECT_EQ(angle.ConvertToStd(nullptr, DMS), UNREADABLE);
    EXPECT_EQ(angle.ConvertToStd("12", M), NYR_VALUE_WRONG_UNIT);
    EXPECT_EQ(distance.ConvertToStd(1.0, DMS), NYR_VALUE_WRONG_UNIT);
    EXPECT_EQ(angle.GetDouble(), kUntouched);
}

// Regression: "-0" was refused as a negative zero, "0x10" read as 0, an
// underflow such as 1e-400 was refused, and blanks after a number counted
// toward the length limit.
TEST(Value, DecimalTextReadsAsStrtodReadsIt)
{
    const std::string blanks(300, ' ');
    CheckReads({
        {"-0", DEG, OK, 0.0}, {"-0.0", M, OK, 0.0}, {"-0 S", DEG, OK, 0.0}, {"0x10", DEG, OK, 16.0},
        {"-0X1p-2", M, OK, -0.25}, {"0x", M, OK, 0.0}, {"1e-400", DEG, OK, 0.0}, {"-1e-400", M, OK, 0.0},
        {"12.5" + blanks, M, OK, 12.5}, {blanks + "12.5\t\r\n", DEG, OK, 12.5}, {"12.5 m" + blanks, M, OK, 12.5},
        {blanks + "12 30 15.5" + blanks, DMS, OK, 12.30155},
        // Text that is not white space still counts.
        {"12.5 " + std::string(260, 'm'), M, TOO_LONG, 0}, {blanks + "x", DEG, UNREADABLE, 0},
    });
}

// Regression: the field reader refused texts that "%d%d%f" reads: a point in
// the degrees or minutes, fields not separated by blanks, minutes or seconds
// of 60 and more, a text after the third field.
TEST(Value, FieldTextReadsAsScanfReadsItAndItsOwnTextsBack)
{
    CheckReads({
        // "%d" stops at the point; "%f" takes what is left.
        {"12.5", DMS, OK, 12.0}, {"12 30.5", DMS, OK, 12.30005}, {"12.5.5", GON, OK, 12.0},
        // Fields beyond their limits carry.
        {"12 60 00", DMS, OK, 13.0}, {"12 30 60", DMS, OK, 12.31}, {"12 100", GON, OK, 13.0},
        {"0 0 7200.5", DMS, OK, 2.00005},
        // A field that cannot be read ends the reading; what follows is ignored.
        {"12 30 15 4", DMS, OK, 12.3015}, {"12 30 -", GON, OK, 12.30}, {"12 30 . 5", DMS, OK, 12.30},
        {"12-30", DMS, OK, -12.30}, {"12 -30 -", DMS, OK, -12.30},
        // A negative zero is zero.
        {"-0 00 00", DMS, OK, 0.0}, {"-0", GON, OK, 0.0}, {"0 0 -0.0", DMS, OK, 0.0},
        // The library's own forms: the sign field apart, a '-' on a zero field.
        {"- 12 30 15.50000", DMS, OK, -12.30155}, {"-  0 30 00.00000", DMS, OK, -0.3}, {"-0 30", DMS, OK, -0.3},
        {"-12g 34c 56.78000cc", GON, OK, -12.345678},
        // Stricter than "%d%d%f", which would give zero or an undefined int.
        {"", DMS, UNREADABLE, 0}, {"m", DMS, UNREADABLE, 0}, {".5 30", DMS, UNREADABLE, 0},
        {"- 5", GON, OK, -5.0}, {"-", DMS, UNREADABLE, 0}, {"3000000000", DMS, RANGE, 0},
        {"1 3000000000", DMS, RANGE, 0}, {"0 0 1000000000", DMS, RANGE, 0},
    });
}

TEST(Value, NumbersThatAreRefusedLeaveTheValue)
{
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(kUntouched, settings);
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, 1e308, -2e9}) {
        EXPECT_EQ(angle.SetDouble(bad), RANGE) << bad;
        angle = bad;
        EXPECT_EQ(angle.Status(), RANGE) << bad;
        EXPECT_EQ(angle.ConvertToStd(bad, DEG), RANGE) << bad;
        EXPECT_EQ(angle.GetDouble(), kUntouched);
    }
    EXPECT_EQ(angle.ConvertToStd(1e308, DMS), RANGE);  // beyond the limit once converted
    CNyrValueAngle bad(HUGE_VAL, settings);
    EXPECT_EQ(bad.GetDouble(), 0.0);
    EXPECT_EQ(bad.Status(), RANGE);
}

TEST(Value, ComputedNegativeZeroIsStoredAsZero)
{
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(kUntouched, settings);
    const double zero = 0.0;
    angle = -zero;
    EXPECT_EQ(angle.Status(), NYR_VALUE_OK);
    EXPECT_EQ(angle.GetDouble(), 0.0);
    EXPECT_FALSE(std::signbit(angle.GetDouble()));
    EXPECT_EQ(angle.ConvertToStd(-5e-324, DEG), NYR_VALUE_OK);  // underflows to -0.0 in radians
    EXPECT_FALSE(std::signbit(angle.GetDouble()));
}

TEST(Value, AssignmentFormsAndStatus)
{
    CNyrUnitSettingsAngle settings;
    settings.Unit(DEG);
    CNyrValueAngle angle(0.0, settings);
    angle = 2.5f;
    EXPECT_EQ(static_cast<double>(angle), 2.5);
    angle = static_cast<short>(-3);
    EXPECT_EQ(angle.GetDouble(), -3.0);
    angle = "180";  // text is in the current unit
    EXPECT_EQ(angle.GetDouble(), kPi);
    EXPECT_TRUE(angle.IsValid());

    angle = std::string("12\0 5", 4);  // what follows the zero would be lost
    angle = 1.0;                        // a success does not clear the failure
    EXPECT_FALSE(angle.IsValid());
    EXPECT_EQ(angle.Status(), UNREADABLE);
    EXPECT_EQ(angle.Status(), OK);

    CNyrUnitSettingsDistance distanceSettings;
    CNyrValueDistance distance(5.0, distanceSettings);
    distance = angle;
    EXPECT_EQ(distance.Status(), NYR_VALUE_WRONG_KIND);
    EXPECT_EQ(distance.GetDouble(), 5.0);

    // Assigning a value takes its number, not its settings or flags.
    CNyrUnitSettingsAngle other;
    CNyrValueAngle copy(2.0, other);
    angle.SetFlag(WB32_FLAG_ONE_TURN);
    copy = angle;
    EXPECT_EQ(copy.GetDouble(), 1.0);
    EXPECT_EQ(&copy.UnitSettings(), &other);
    EXPECT_EQ(copy.GetFlag(), 0u);

    EXPECT_EQ(&CNyrValueAngleLat().UnitSettings(), &CNyrUnitSettingsAngleLatLon::Default());
    EXPECT_EQ(&CNyrValueDistance().UnitSettings(), &CNyrUnitSettingsDistance::Default());
}

TEST(Value, ConvertStdToRaisesThePrecisionOfFieldUnits)
{
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(0.0, settings);
    ASSERT_EQ(angle.ConvertToStd(12.30155, DMS), OK);
    const struct
    {
        long unit;
        int precision;
        double out;
    } cases[] = {
        {DMS, 0, 12.30155},                  // five more: whole seconds and a guard digit
        {GON, 0, 13.89367},
        {NYR_UNIT_DECIMAL_DMS, 4, 12.3016},  // decimal forms: decimals of the packed number
        {NYR_UNIT_DECIMAL_DMS, 0, 13.0},
    };
    for (const auto& c : cases) {
        double out = 0;
        EXPECT_EQ(angle.ConvertStdTo(out, c.unit, c.precision), OK);
        EXPECT_DOUBLE_EQ(out, c.out) << c.unit << " " << c.precision;
    }
    double out = 7;
    EXPECT_EQ(angle.ConvertStdTo(out, M), NYR_VALUE_WRONG_UNIT);
    EXPECT_EQ(out, 7);
    angle.SetDouble(Degrees(-90));
    angle.SetFlag(WB32_FLAG_ONE_TURN);
    angle.ConvertStdTo(out, DMS, 4);
    EXPECT_EQ(out, 270.0);
}

TEST(ValueAngle, LimitToCircleKeepsOneTurn)
{
    CNyrUnitSettingsAngle settings;
    settings.LimitToCircle(1);
    settings.Precision(5);
    settings.UseDmsSymbols(0);
    CNyrValueAngle angle(-kPi / 2, settings);
    EXPECT_DOUBLE_EQ(angle.GetDouble(), 1.5 * kPi);
    for (double turn : {4 * kPi, -2 * kPi, -1e-300}) {
        angle = turn;
        EXPECT_EQ(angle.GetDouble(), 0.0) << turn;
        EXPECT_FALSE(std::signbit(angle.GetDouble())) << turn;
    }
    ASSERT_TRUE(angle.SetString("359 59 59.999999"));
    std::string text;
    angle.GetString(text);
    EXPECT_EQ(text, "   0 00 00.00000");
    EXPECT_EQ(angle.ConvertToStd(-1e300, DEG), RANGE);  // checked before it is reduced
}

TEST(ValueAngle, LatitudesAndLongitudes)
{
    CNyrUnitSettingsAngleLatLon settings;
    settings.Precision(5);
    CNyrValueAngleLat lat(0.0, settings);
    EXPECT_EQ(lat.ConvertToStd(90.0, DMS), OK);
    EXPECT_EQ(lat.GetDouble(), kPi / 2);
    EXPECT_EQ(lat.ConvertToStd(-100.0, NYR_UNIT_GRAD), OK);
    EXPECT_EQ(lat.GetDouble(), -kPi / 2);
    EXPECT_EQ(lat.ConvertToStd("90 00 00.01", DMS), RANGE);
    EXPECT_EQ(lat.ConvertToStd(kPi / 2 + 1.1e-8, RAD), RANGE);
    EXPECT_EQ(lat.ConvertToStd("1.57079633", RAD), OK);  // the pole, rounded up in its last digit
    EXPECT_EQ(lat.GetDouble(), kPi / 2);
    EXPECT_EQ(lat.ConvertToStd("45 S", DMS), OK);
    std::string text;
    lat.StdFormat(text);
    EXPECT_EQ(text, "-0.7853981634 [rad]");

    settings.LimitToCircle(1);  // not for longitudes
    CNyrValueAngleLon lon(0.0, settings);
    const struct
    {
        double degrees, kept;
    } cases[] = {{190, -170}, {-180, 180}, {180, 180}, {-190, 170}, {370, 10}, {360, 0}, {-10, -10}};
    for (const auto& c : cases) {
        lon = Degrees(c.degrees);
        EXPECT_NEAR(lon.GetDouble(), Degrees(c.kept), 1e-15) << c.degrees;
        EXPECT_FALSE(std::signbit(lon.GetDouble()) && lon.GetDouble() == 0) << c.degrees;
    }
    lon.ConvertToStd(200.0, NYR_UNIT_GRAD);  // pi and a unit in the last place: still east
    EXPECT_EQ(lon.GetDouble(), kPi);
    ASSERT_TRUE(lon.SetString("10 30 W"));
    EXPECT_DOUBLE_EQ(lon.GetDouble(), Degrees(-10.5));
}

TEST(Value, TextsFollowTheSettings)
{
    CNyrUnitSettingsAngle settings;
    settings.UseDmsSymbols(0);
    settings.Precision(5);
    CNyrValueAngle angle(Degrees(12.5), settings);
    std::string text;
    angle.GetString(text);
    EXPECT_EQ(text, "  12 30 00.00000");
    angle.StdFormat(text);
    EXPECT_EQ(text, " 0.2181661565 [rad]");

    settings.UseSecOnly(1);  // seconds in and out
    angle.GetString(text);
    EXPECT_EQ(text, " 45000.00000");
    ASSERT_TRUE(angle.SetString("1800"));
    EXPECT_DOUBLE_EQ(angle.GetDouble(), Degrees(0.5));
    settings.Unit(NYR_UNIT_DECIMAL_GON);
    ASSERT_TRUE(angle.SetString("5000"));
    EXPECT_DOUBLE_EQ(angle.GetDouble(), kPi / 400);

    CNyrUnitSettingsDistance metres;
    CNyrValueDistance(12.5, metres).StdFormat(text);
    EXPECT_EQ(text, " 12.500000 m");
    CNyrValueAngle misled(1.0, metres);  // follows settings of the wrong kind
    misled.GetString(text);
    EXPECT_EQ(misled.Status(), NYR_VALUE_WRONG_UNIT);
}

// Regression: negative angles written with the sign field apart from the
// degrees ("-  5 30 00.00000") could not be read back.
TEST(Value, EveryTextItWritesReadsBack)
{
    CNyrUnitSettingsAngle angles;
    CNyrUnitSettingsAngleLatLon latLons;
    CNyrValueAngle angle(0.0, angles);
    CNyrValueAngleLat lat(0.0, latLons);
    CNyrValueAngleLon lon(0.0, latLons);
    const struct
    {
        CNyrValue* value;
        CNyrUnitSettingsAngle* settings;
        double range;
    } kinds[] = {{&angle, &angles, 2 * kPi}, {&lat, &latLons, kPi / 2}, {&lon, &latLons, kPi}};
    for (const auto& kind : kinds)
        for (int flags = 0; flags < 4; ++flags) {
            kind.settings->Precision(8);
            kind.settings->UseDmsSymbols(flags & 1);
            kind.settings->TrimTrailingZeros(flags & 2);  // (texts without leading fields read differently)
            for (const NYR_UNIT_TEXT* row = NyrUnitTableAngle(); row->unit != -1; ++row) {
                kind.settings->Unit(row->unit);
                for (int i = -500; i <= 500; ++i) {
                    ASSERT_EQ(kind.value->SetDouble(kind.range * i / 500), OK);
                    const double stored = kind.value->GetDouble();  // -180° is kept as 180°
                    std::string text;
                    kind.value->GetString(text);
                    ASSERT_TRUE(kind.value->SetString(text.c_str())) << '"' << text << "\" unit " << row->unit;
                    EXPECT_NEAR(kind.value->GetDouble(), stored, 1e-7) << '"' << text << "\" unit " << row->unit;
                }
            }
        }
}

}  // namespace

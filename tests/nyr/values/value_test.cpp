#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "nyr/values/packed_angle.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kUntouched = 0.123;  // what a refused input must leave behind

double Degrees(double degrees)
{
    double out = 0;
    CNyrValue::Convert(degrees, NYR_UNIT_DEGREE, out, NYR_UNIT_RADIANS, -1, 0);
    return out;
}

struct ReadCase
{
    const char* text;
    long unit;
    int status;
    double inUnit;  // the value read back in `unit` when the status is 0
};

void CheckReads(CNyrValue& value, const ReadCase* begin, const ReadCase* end)
{
    for (const ReadCase* c = begin; c != end; ++c) {
        value.SetDouble(kUntouched);
        value.Status();
        EXPECT_EQ(value.ConvertToStd(c->text, c->unit), c->status) << '"' << c->text << '"';
        EXPECT_EQ(value.Status(), c->status) << '"' << c->text << '"';
        if (c->status != NYR_VALUE_OK) {
            EXPECT_EQ(value.GetDouble(), kUntouched) << '"' << c->text << '"';
            continue;
        }
        double out = 0;
        value.ConvertStdTo(out, c->unit);
        EXPECT_DOUBLE_EQ(out, c->inUnit) << '"' << c->text << '"';
        EXPECT_FALSE(std::signbit(value.GetDouble()) && value.GetDouble() == 0) << '"' << c->text << '"';
    }
}

constexpr long DMS = NYR_UNIT_DMS;
constexpr long GON = NYR_UNIT_GON;
constexpr long DEG = NYR_UNIT_DEGREE;
constexpr int OK = NYR_VALUE_OK;
constexpr int UNREADABLE = NYR_VALUE_UNREADABLE;
constexpr int RANGE = NYR_VALUE_OUT_OF_RANGE;
constexpr int NEGZERO = NYR_VALUE_NEGATIVE_ZERO;

TEST(ValueAngle, ReadsTextInEveryForm)
{
    const ReadCase cases[] = {
        {"12 30 15.5", DMS, OK, 12.30155},
        {"12\u00b030'15.5\"", DMS, OK, 12.30155},
        {"  12 30  ", DMS, OK, 12.3},
        {"12", DMS, OK, 12.0},
        {"-12 30 15", DMS, OK, -12.3015},
        {"12 -30 15", DMS, OK, -12.3015},  // a minus in any field makes the angle negative
        {"12 30 -15", DMS, OK, -12.3015},
        {"-0 30 00", DMS, OK, -0.3},       // also on a zero field
        {"-  5 30 00.00000", DMS, OK, -5.3},  // the sign field of the written text
        {"12 59 59.99999999", DMS, OK, 12.595999999999},
        {"12 30 15.5 S", DMS, OK, -12.30155},
        {"-12 30 15.5 W", DMS, OK, 12.30155},  // letter and minus cancel (intended)
        {"N 12 30", DMS, OK, 12.3},
        {"12g 34c 56.78cc", GON, OK, 12.345678},
        {"399 99 99.5", GON, OK, 399.99995},
        {"12.5", DEG, OK, 12.5},
        {"12.5\u00b0 trailing text", DEG, OK, 12.5},
        {"  -1.25e1 S", DEG, OK, 12.5},
        {"0 S", DEG, OK, 0.0},
        {"12.301550", NYR_UNIT_DECIMAL_DMS, OK, 12.30155},
        {"1.5 rad", NYR_UNIT_RADIANS, OK, 1.5},
        // Refused: the value stays as it was.
        {"", DMS, UNREADABLE, 0},
        {"   ", DEG, UNREADABLE, 0},
        {"abc", DMS, UNREADABLE, 0},
        {"\u00b0'\"", DMS, UNREADABLE, 0},
        {"abc", DEG, UNREADABLE, 0},
        {"#12", DEG, UNREADABLE, 0},
        {"--12", DEG, UNREADABLE, 0},
        {"12.5", DMS, UNREADABLE, 0},     // a point in the degrees field
        {"12 30.5", DMS, UNREADABLE, 0},  // ... or in the minutes
        {"12-30", DMS, UNREADABLE, 0},    // fields not separated
        {"12 30 15 4", DMS, UNREADABLE, 0},
        {"12 30 15.5.3", DMS, UNREADABLE, 0},
        {"-", DMS, UNREADABLE, 0},
        {"12 30 -", DMS, UNREADABLE, 0},
        {"12 . 5", GON, UNREADABLE, 0},
        {"12 60", DMS, RANGE, 0},
        {"12 30 60", DMS, RANGE, 0},
        {"12 100", GON, RANGE, 0},
        {"99999999999", DMS, RANGE, 0},
        {"1e308", DEG, RANGE, 0},
        {"1e400", DEG, RANGE, 0},
        {"inf", DEG, RANGE, 0},
        {"-infinity", NYR_UNIT_RADIANS, RANGE, 0},
        {"nan", DEG, RANGE, 0},
        {"2e7", NYR_UNIT_RADIANS, RANGE, 0},
        {"-0", DEG, NEGZERO, 0},
        {"-0.000", NYR_UNIT_GRAD, NEGZERO, 0},
        {"-0 00 00", DMS, NEGZERO, 0},
        {"0 -0 0", GON, NEGZERO, 0},
    };
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(0.0, settings);
    CheckReads(angle, std::begin(cases), std::end(cases));

    EXPECT_EQ(angle.ConvertToStd(std::string(300, '1').c_str(), DEG), NYR_VALUE_TOO_LONG);
    EXPECT_EQ(angle.ConvertToStd(("12" + std::string(255, ' ')).c_str(), DMS), NYR_VALUE_TOO_LONG);
    EXPECT_EQ(angle.ConvertToStd(nullptr, DMS), UNREADABLE);
    EXPECT_EQ(angle.ConvertToStd("12", NYR_UNIT_METRES), NYR_VALUE_WRONG_UNIT);
    EXPECT_EQ(angle.ConvertToStd("12", 19), NYR_VALUE_WRONG_UNIT);
    EXPECT_EQ(angle.GetDouble(), kUntouched);
}

TEST(ValueDistance, ReadsOneDecimalNumber)
{
    const ReadCase cases[] = {
        {"12.5", NYR_UNIT_METRES, OK, 12.5},
        {"12.5 m", NYR_UNIT_METRES, OK, 12.5},
        {"12 S", NYR_UNIT_METRES, OK, 12.0},  // no hemispheres for distances
        {"1", NYR_UNIT_US_SURVEY_FEET, OK, 1.0},
        {"m 12", NYR_UNIT_METRES, UNREADABLE, 0},
        {"-0", NYR_UNIT_METRES, NEGZERO, 0},
        {"1e13", NYR_UNIT_METRES, RANGE, 0},
    };
    CNyrUnitSettingsDistance settings;
    CNyrValueDistance distance(0.0, settings);
    CheckReads(distance, std::begin(cases), std::end(cases));
    distance.ConvertToStd(1.0, NYR_UNIT_US_SURVEY_FEET);
    EXPECT_EQ(distance.GetDouble(), 0.3048006096012192);
    EXPECT_EQ(distance.ConvertToStd(1.0, DMS), NYR_VALUE_WRONG_UNIT);
}

TEST(Value, NumbersThatAreRefused)
{
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(kUntouched, settings);
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308,
                       -2e9, -0.0}) {
        const int expected = bad == 0 ? NEGZERO : RANGE;
        EXPECT_EQ(angle.SetDouble(bad), expected) << bad;
        angle = bad;
        EXPECT_EQ(angle.Status(), expected) << bad;
        EXPECT_EQ(angle.ConvertToStd(bad, DEG), expected) << bad;
        EXPECT_EQ(angle.GetDouble(), kUntouched);
    }
    EXPECT_EQ(angle.ConvertToStd(1e308, NYR_UNIT_DMS), RANGE);  // converted beyond the limit
    CNyrValueAngle bad(std::numeric_limits<double>::infinity(), settings);
    EXPECT_EQ(bad.GetDouble(), 0.0);
    EXPECT_EQ(bad.Status(), RANGE);
}

TEST(Value, AssignmentFormsAndStatus)
{
    CNyrUnitSettingsAngle settings;
    settings.Unit(DEG);
    CNyrValueAngle angle(0.0, settings);
    angle = 1;
    EXPECT_EQ(angle.GetDouble(), 1.0);
    angle = 2.5f;
    EXPECT_EQ(static_cast<double>(angle), 2.5);
    angle = static_cast<short>(-3);
    EXPECT_EQ(angle.GetDouble(), -3.0);
    angle = 4u;
    EXPECT_EQ(angle.GetDouble(), 4.0);
    angle = 5ul;
    EXPECT_EQ(angle.GetDouble(), 5.0);
    angle = static_cast<unsigned short>(6);
    EXPECT_EQ(angle.GetDouble(), 6.0);
    angle = 7L;
    EXPECT_EQ(angle.GetDouble(), 7.0);
    angle = "180";  // text is in the current unit
    EXPECT_EQ(angle.GetDouble(), kPi);
    angle = std::string("90");
    EXPECT_EQ(angle.GetDouble(), kPi / 2);
    EXPECT_TRUE(angle.IsValid());

    angle = std::string("12\0 5", 4);  // the text after the zero would be lost
    EXPECT_FALSE(angle.IsValid());
    angle = 1.0;  // a success does not clear an earlier failure
    EXPECT_FALSE(angle.IsValid());
    EXPECT_EQ(angle.Status(), UNREADABLE);
    EXPECT_TRUE(angle.IsValid());
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
    const CNyrValueAngle constructed(angle);
    EXPECT_EQ(&constructed.UnitSettings(), &settings);

    EXPECT_EQ(&CNyrValueAngle().UnitSettings(), &CNyrUnitSettingsAngle::Default());
    EXPECT_EQ(&CNyrValueAngleLat().UnitSettings(), &CNyrUnitSettingsAngleLatLon::Default());
    EXPECT_EQ(&CNyrValueAngleLon().UnitSettings(), &CNyrUnitSettingsAngleLatLon::Default());
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
        {DMS, 0, 12.30155},  // five more: seconds to 0 decimals plus a guard digit
        {DMS, 1, 12.30155},
        {GON, 0, 13.89367},
        {NYR_UNIT_DECIMAL_DMS, 4, 12.3016},  // decimal forms: decimals of the packed number
        {NYR_UNIT_DECIMAL_DMS, 0, 13.0},
        {DMS, -1, 12.30155},
    };
    for (const auto& c : cases) {
        double out = 0;
        EXPECT_EQ(angle.ConvertStdTo(out, c.unit, c.precision), OK);
        EXPECT_DOUBLE_EQ(out, c.out) << c.unit << " " << c.precision;
    }
    double out = 7;
    EXPECT_EQ(angle.ConvertStdTo(out, NYR_UNIT_METRES), NYR_VALUE_WRONG_UNIT);
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
    EXPECT_EQ(lat.ConvertToStd(kPi / 2 + 1.1e-8, NYR_UNIT_RADIANS), RANGE);
    EXPECT_EQ(lat.GetDouble(), -kPi / 2);
    EXPECT_EQ(lat.ConvertToStd("1.57079633", NYR_UNIT_RADIANS), OK);  // the pole, rounded up
    EXPECT_EQ(lat.GetDouble(), kPi / 2);
    EXPECT_EQ(lat.ConvertToStd("45 S", DMS), OK);
    EXPECT_DOUBLE_EQ(lat.GetDouble(), -kPi / 4);
    std::string text;
    lat.GetString(text);
    EXPECT_EQ(text, "45\u00b0 00' 00.00000\" S");
    lat.StdFormat(text);
    EXPECT_EQ(text, "-0.7853981634 [rad]");

    CNyrUnitSettingsAngleLatLon noLimit;
    noLimit.LimitToCircle(1);  // not for longitudes
    CNyrValueAngleLon lon(Degrees(190), noLimit);
    EXPECT_NEAR(lon.GetDouble(), Degrees(-170), 1e-15);
    const struct
    {
        double degrees, kept;
    } cases[] = {{-180, 180}, {180, 180}, {-190, 170}, {370, 10}, {-350, 10}, {360, 0}, {-10, -10}};
    lon.ConvertToStd(200.0, NYR_UNIT_GRAD);  // pi and a unit in the last place
    EXPECT_EQ(lon.GetDouble(), kPi);
    for (const auto& c : cases) {
        lon = Degrees(c.degrees);
        EXPECT_NEAR(lon.GetDouble(), Degrees(c.kept), 1e-15) << c.degrees;
        EXPECT_FALSE(std::signbit(lon.GetDouble()) && lon.GetDouble() == 0) << c.degrees;
    }
    ASSERT_TRUE(lon.SetString("10 30 W"));
    EXPECT_DOUBLE_EQ(lon.GetDouble(), -Degrees(10.5));
    noLimit.UseDmsSymbols(0);
    noLimit.Precision(0);
    lon.GetString(text);
    EXPECT_EQ(text, " 10 30 00.00000 W");
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
    angle.GetUnitAbbreviation(text);
    EXPECT_EQ(text, "\"");
    ASSERT_TRUE(angle.SetString("1800"));
    EXPECT_DOUBLE_EQ(angle.GetDouble(), Degrees(0.5));
    settings.Unit(NYR_UNIT_DECIMAL_GON);
    ASSERT_TRUE(angle.SetString("5000"));
    EXPECT_DOUBLE_EQ(angle.GetDouble(), kPi / 400);

    // An angle that follows settings of the wrong kind cannot show itself.
    CNyrUnitSettingsDistance metres;
    CNyrValueAngle misled(1.0, metres);
    misled.GetString(text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(misled.Status(), NYR_VALUE_WRONG_UNIT);

    CNyrValueDistance distance(12.5, metres);
    distance.StdFormat(text);
    EXPECT_EQ(text, " 12.500000 m");
    metres.Unit(NYR_UNIT_INTERNATIONAL_FEET);
    metres.TrimTrailingZeros(1);
    distance = 0.3048;
    distance.GetString(text);
    EXPECT_EQ(text, " 1.0");
}

}  // namespace

namespace {

// Regression: negative angles written with the sign field apart from the
// degrees ("-  5 30 00.00000") could not be read back.
TEST(ValueAngle, EveryTextItWritesReadsBack)
{
    CNyrUnitSettingsAngle angles;
    CNyrUnitSettingsAngleLatLon latLons;
    CNyrValueAngle angle(0.0, angles);
    CNyrValueAngleLat lat(0.0, latLons);
    CNyrValueAngleLon lon(0.0, latLons);
    struct
    {
        CNyrValue* value;
        CNyrUnitSettings* settings;
        double range;
    } kinds[] = {{&angle, &angles, 2 * kPi}, {&lat, &latLons, kPi / 2}, {&lon, &latLons, kPi}};
    for (const auto& kind : kinds)
        for (int flags = 0; flags < 4; ++flags) {
            auto& settings = static_cast<CNyrUnitSettingsAngle&>(*kind.settings);
            settings.Precision(8);
            settings.UseDmsSymbols(flags & 1);
            settings.TrimTrailingZeros(flags & 2);  // (texts without leading fields read differently)
            for (const NYR_UNIT_TEXT* row = NyrUnitTableAngle(); row->unit != -1; ++row) {
                settings.Unit(row->unit);
                for (int i = -500; i <= 500; ++i) {
                    const double radians = kind.range * i / 500;
                    ASSERT_EQ(kind.value->SetDouble(radians), OK);
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

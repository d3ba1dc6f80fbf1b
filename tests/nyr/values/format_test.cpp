#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "nyr/values/format.h"
#include "nyr/values/packed_angle.h"
#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

double Radians(double value, long unit)
{
    double out = 0;
    CNyrValue::Convert(value, unit, out, unit < 20 ? NYR_UNIT_RADIANS : NYR_UNIT_METRES, -1, 0);
    return out;
}

enum Flags
{
    kSymbols = 1,
    kTrimLeading = 2,
    kTrimTrailing = 4,
    kLimit = 8,
    kSecOnly = 16,
};

struct TextCase
{
    double value;  // in `given`
    long given;
    long unit;
    int precision;
    int flags;
    eNyrGeoKind kind;
    const char* text;
};

std::string Text(const TextCase& c)
{
    CNyrFormat format(c.unit, c.flags & kSecOnly, c.flags & kLimit);
    format.Precision(c.precision);
    format.UseDmsSymbols(c.flags & kSymbols);
    format.TrimLeadingZeros(c.flags & kTrimLeading);
    format.TrimTrailingZeros(c.flags & kTrimTrailing);
    std::string out = "stale";
    EXPECT_EQ(format.ConvertToString(Radians(c.value, c.given), c.unit, out, c.kind, 0), 1);
    return out;
}

constexpr long DMS = NYR_UNIT_DMS;
constexpr long GON = NYR_UNIT_GON;
constexpr long DEG = NYR_UNIT_DEGREE;
constexpr eNyrGeoKind ANGLE = NYR_GEO_NONE;
constexpr eNyrGeoKind LAT = NYR_GEO_LATITUDE;
constexpr eNyrGeoKind LON = NYR_GEO_LONGITUDE;

TEST(Format, FieldTexts)
{
    const TextCase cases[] = {
        // The layout of the masks: sign field, degrees in three places.
        {12.301550, DMS, DMS, 5, 0, ANGLE, "  12 30 15.50000"},
        {-12.301550, DMS, DMS, 5, 0, ANGLE, "- 12 30 15.50000"},
        {-0.0015, DMS, DMS, 5, 0, ANGLE, "-  0 00 15.00000"},
        {12.301550, DMS, DMS, 3, 0, ANGLE, "  12 30 15.50000"},    // five decimals at any precision up to 5
        {12.30155555, DMS, DMS, 3, 0, ANGLE, "  12 30 15.55600"},  // ... rounded at the precision
        {12.301550, DMS, DMS, 7, 0, ANGLE, "  12 30 15.5000000"},  // seconds field of width 10
        {12.301550, DMS, DMS, 12, 0, ANGLE, "  12 30 15.50000000"},
        {12.301550, DMS, DMS, 5, kSymbols, ANGLE, "  12\u00b0 30' 15.50000\""},
        {345.0001, DMS, DMS, 0, kSymbols, ANGLE, " 345\u00b0 00' 01.00000\""},
        {12.345678, GON, GON, 5, kSymbols, ANGLE, "  12g 34c 56.78000cc"},
        {-399.9999999999, GON, GON, 4, 0, ANGLE, "-400 00 00.00000"},
        {-399.99999999, GON, GON, 4, 0, ANGLE, "-399 99 99.99990"},
        // Carries: no field reaches 60.
        {29.999999999, DEG, DMS, 4, 0, ANGLE, "  30 00 00.00000"},
        {359.59599999999, DMS, DMS, 5, 0, ANGLE, " 360 00 00.00000"},
        {359.59599999999, DMS, DMS, 5, kLimit, ANGLE, "   0 00 00.00000"},
        {-1e-12, DEG, DMS, 5, 0, ANGLE, "   0 00 00.00000"},  // rounds to zero: no sign
        // Latitudes: two places and N/S; longitudes: three places and E/W.
        {12.301550, DMS, DMS, 5, kSymbols, LAT, "12\u00b0 30' 15.50000\" N"},
        {-5.0, DMS, DMS, 5, kSymbols, LAT, " 5\u00b0 00' 00.00000\" S"},
        {-5.0, DMS, DMS, 5, 0, LON, "  5 00 00.00000 W"},
        {180.0, DMS, DMS, 5, 0, LON, "180 00 00.00000 E"},
        {-1e-12, DEG, DMS, 5, 0, LAT, " 0 00 00.00000 N"},
        {-12.345678, GON, GON, 5, kSymbols, LON, " 12g 34c 56.78000cc W"},
        // Leading zero fields dropped, the first field shown padded with blanks.
        {0.301550, DMS, DMS, 5, kTrimLeading, ANGLE, " 30 15.50000"},
        {0.051550, DMS, DMS, 5, kTrimLeading | kSymbols, ANGLE, "  5' 15.50000\""},
        {-0.001550, DMS, DMS, 5, kTrimLeading, ANGLE, "-15.50000"},
        {0.000550, DMS, DMS, 5, kTrimLeading, ANGLE, "  5.50000"},
        {0.000550, DMS, DMS, 5, kTrimLeading, LAT, " 5.50000 N"},
        {12.000550, DMS, DMS, 5, kTrimLeading, ANGLE, "  12 00 05.50000"},
        // Trailing zero fields dropped, seconds trimmed like the decimal text.
        {12.0, DMS, DMS, 5, kTrimTrailing | kSymbols, ANGLE, "  12\u00b0"},
        {-12.3, DMS, DMS, 5, kTrimTrailing, ANGLE, "- 12 30"},
        {12.301550, DMS, DMS, 5, kTrimTrailing, ANGLE, "  12 30 15.5"},
        {12.0015, DMS, DMS, 5, kTrimTrailing, ANGLE, "  12 00 15.0"},
        {0.0, DMS, DMS, 5, kTrimTrailing | kTrimLeading, ANGLE, "   0"},
        {0.3, DMS, DMS, 5, kTrimTrailing | kTrimLeading, ANGLE, " 30"},
    };
    for (const TextCase& c : cases)
        EXPECT_EQ(Text(c), c.text) << c.value << " precision " << c.precision << " flags " << c.flags;
}

TEST(Format, DecimalTexts)
{
    const TextCase cases[] = {
        {12.5, 21, 21, 6, 0, ANGLE, " 12.500000"},
        {12.5, 21, 21, 6, kTrimTrailing, ANGLE, " 12.5"},
        {-3, 21, 21, 6, kTrimTrailing, ANGLE, "-3.0"},
        {12.5, 21, 21, 0, 0, ANGLE, " 12.500000"},  // precision 0 gives six decimals
        {100, 21, 21, 2, kTrimTrailing, ANGLE, " 100.0"},
        {1, 21, NYR_UNIT_US_SURVEY_FEET, 4, 0, ANGLE, " 3.2808"},
        {1, 21, NYR_UNIT_INTERNATIONAL_FEET, 3, 0, ANGLE, " 3.281"},
        {12.5, DEG, DEG, 6, 0, ANGLE, " 12.500000"},
        {12.301550, DMS, NYR_UNIT_DECIMAL_DMS, 6, 0, ANGLE, " 12.301550"},  // the packed number
        {29.999999999, DEG, NYR_UNIT_DECIMAL_DMS, 4, 0, ANGLE, " 30.0000"},
        {359.59599999999, DMS, NYR_UNIT_DECIMAL_DMS, 4, kLimit, ANGLE, " 0.0000"},
        {12.345678, GON, NYR_UNIT_DECIMAL_GON, 4, 0, ANGLE, " 12.3457"},
        {0.25, NYR_UNIT_REVOLUTION, NYR_UNIT_RADIANS, 5, 0, ANGLE, " 1.57080"},
        // Seconds only: arc seconds for 11 to 13, cc for 14 to 16.
        {0.3, DMS, DMS, 1, kSecOnly, ANGLE, " 1800.0"},
        {-0.5, DEG, DEG, 6, kSecOnly | kTrimTrailing, ANGLE, "-1800.0"},
        {0.5, GON, GON, 2, kSecOnly, ANGLE, " 5000.00"},
        {0.25, NYR_UNIT_REVOLUTION, NYR_UNIT_REVOLUTION, 2, kSecOnly, ANGLE, " 0.25"},
        // Latitudes and longitudes: the magnitude and a hemisphere letter.
        {-12.5, DEG, DEG, 6, 0, LAT, " 12.500000 S"},
        {-1e-9, DEG, DEG, 6, 0, LON, " 0.000000 E"},
    };
    for (const TextCase& c : cases)
        EXPECT_EQ(Text(c), c.text) << c.value << " unit " << c.unit << " precision " << c.precision;
}

TEST(Format, CustomFormats)
{
    const double angle = Wb32DMS2Rad(-12.301550);
    const double gon = Wb32GCCC2Rad(12.345678);
    const struct
    {
        const char* format;
        double value;
        long unit;
        eNyrGeoKind kind;
        const char* text;
    } cases[] = {
        {"%DegOrG %MinOrC %SecOrCC", angle, DMS, ANGLE, "-12\u00b0 30' 15.50000\""},
        {"%DegOrG %MinOrC %SecOrCC", gon, GON, ANGLE, "12g 34c 56.78000cc"},
        {"%degOrG:%minOrC:%secOrCC", angle, DMS, ANGLE, "-12:30:15.50000"},
        {"%degOrG:%minOrC:%secOrCC", angle, DMS, LAT, "12:30:15.50000 S"},
        {"100%% %%degOrG %x", angle, DMS, ANGLE, "100% %degOrG %x"},
        {"[%SecOrCC]", gon, GON, ANGLE, "[56.78000cc]"},
    };
    for (const auto& c : cases) {
        CNyrFormat format(c.unit, 0, 0, c.format);
        format.Precision(5);
        EXPECT_EQ(format.Format(), c.format);
        std::string out;
        format.ConvertToString(c.value, c.unit, out, c.kind, 0);
        EXPECT_EQ(out, c.text) << c.format;
    }

    CNyrFormat format(DMS);
    format.Precision(5);
    format.CustomFormat("%degOrG d", nullptr);
    EXPECT_EQ(format.Format(), "");
    std::string out;
    format.ConvertToString(angle, DMS, out);
    EXPECT_EQ(out, "-12 d");
    format.ConvertToString(gon, GON, out);
    EXPECT_EQ(out, "  12g 34c 56.78000cc");  // no custom format for gon: the fixed layout
    format.Format("");
    format.ConvertToString(angle, DMS, out);
    EXPECT_EQ(out, "- 12\u00b0 30' 15.50000\"");
}

TEST(Format, RefusalsAndAbbreviations)
{
    CNyrFormat format(NYR_UNIT_DMS);
    std::string out = "stale";
    EXPECT_EQ(format.ConvertToString(1.0, 19, out), 0);
    EXPECT_EQ(out, "");
    EXPECT_EQ(format.ConvertToString(std::numeric_limits<double>::quiet_NaN(), NYR_UNIT_DEGREE, out), 0);
    EXPECT_EQ(format.ConvertToString(std::numeric_limits<double>::infinity(), NYR_UNIT_DMS, out), 0);

    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "");
    format.UseSecOnly(1);
    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "\"");
    format.Unit(NYR_UNIT_DECIMAL_GON);
    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "cc");
    format.SetUnitAbbreviation("mgon");
    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "mgon");

    format.Precision(-3);
    EXPECT_EQ(format.Precision(), 0);
    format.Precision(40);
    EXPECT_EQ(format.Precision(), 15);
}

}  // namespace

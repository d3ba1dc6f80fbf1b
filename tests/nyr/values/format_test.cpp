#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "nyr/values/format.h"
#include "nyr/values/packed_angle.h"
#include "nyr/values/units.h"
#include "nyr/values/value.h"

namespace {

enum Flags
{
    kSymbols = 1,
    kTrimLeading = 2,
    kTrimTrailing = 4,
    kLimit = 8,
    kSecOnly = 16,
};

constexpr long DMS = NYR_UNIT_DMS;
constexpr long GON = NYR_UNIT_GON;
constexpr long DEG = NYR_UNIT_DEGREE;
constexpr eNyrGeoKind ANGLE = NYR_GEO_NONE;
constexpr eNyrGeoKind LAT = NYR_GEO_LATITUDE;
constexpr eNyrGeoKind LON = NYR_GEO_LONGITUDE;

struct TextCase
{
    double value;  // in `given`
    long given, unit;
    int precision, flags;
    eNyrGeoKind kind;
    const char* text;
};

void CheckTexts(const TextCase* begin, const TextCase* end)
{
    for (const TextCase* c = begin; c != end; ++c) {
        CNyrFormat format(c->unit, c->flags & kSecOnly, c->flags & kLimit);
        format.Precision(c->precision);
        format.UseDmsSymbols(c->flags & kSymbols);
        format.TrimLeadingZeros(c->flags & kTrimLeading);
        format.TrimTrailingZeros(c->flags & kTrimTrailing);
        double standard = 0;
        CNyrValue::Convert(c->value, c->given, standard, c->given < 20 ? NYR_UNIT_RADIANS : NYR_UNIT_METRES, -1, 0);
        std::string out = "stale";
        EXPECT_EQ(format.ConvertToString(standard, c->unit, out, c->kind, 0), 1);
        EXPECT_EQ(out, c->text) << c->value << " unit " << c->unit << " precision " << c->precision << " flags "
                                << c->flags;
    }
}

TEST(Format, FieldTexts)
{
    const TextCase cases[] = {
        // The masks' layout: sign field, degrees in three places.
        {12.301550, DMS, DMS, 5, 0, ANGLE, "  12 30 15.50000"},
        {-12.301550, DMS, DMS, 5, 0, ANGLE, "- 12 30 15.50000"},
        {-0.0015, DMS, DMS, 5, 0, ANGLE, "-  0 00 15.00000"},
        {12.30155555, DMS, DMS, 3, 0, ANGLE, "  12 30 15.55600"},  // rounded at 3, five decimals shown
        {12.301550, DMS, DMS, 7, 0, ANGLE, "  12 30 15.5000000"},  // seconds field of width 10
        {12.301550, DMS, DMS, 5, kSymbols, ANGLE, "  12\u00b0 30' 15.50000\""},
        {12.345678, GON, GON, 5, kSymbols, ANGLE, "  12g 34c 56.78000cc"},
        // Carries: no field reaches 60 (100).
        {29.999999999, DEG, DMS, 4, 0, ANGLE, "  30 00 00.00000"},
        {-399.9999999999, GON, GON, 4, 0, ANGLE, "-400 00 00.00000"},
        {359.59599999999, DMS, DMS, 5, 0, ANGLE, " 360 00 00.00000"},
        {359.59599999999, DMS, DMS, 5, kLimit, ANGLE, "   0 00 00.00000"},
        {-1e-12, DEG, DMS, 5, 0, ANGLE, "   0 00 00.00000"},  // rounds to zero: no sign
        // Latitudes: two places and N/S; longitudes: three places and E/W.
        {12.301550, DMS, DMS, 5, kSymbols, LAT, "12\u00b0 30' 15.50000\" N"},
        {-5.0, DMS, DMS, 5, kSymbols, LAT, " 5\u00b0 00' 00.00000\" S"},
        {-1e-12, DEG, DMS, 5, 0, LAT, " 0 00 00.00000 N"},
        {-12.345678, GON, GON, 5, kSymbols, LON, " 12g 34c 56.78000cc W"},
        // Leading zero fields dropped, the first field shown padded with blanks.
        {0.051550, DMS, DMS, 5, kTrimLeading | kSymbols, ANGLE, "  5' 15.50000\""},
        {-0.001550, DMS, DMS, 5, kTrimLeading, ANGLE, "-15.50000"},
        {0.000550, DMS, DMS, 5, kTrimLeading, LAT, " 5.50000 N"},
        {12.000550, DMS, DMS, 5, kTrimLeading, ANGLE, "  12 00 05.50000"},
        // Trailing zero fields dropped, seconds trimmed like the decimal text.
        {12.0, DMS, DMS, 5, kTrimTrailing | kSymbols, ANGLE, "  12\u00b0"},
        {-12.3, DMS, DMS, 5, kTrimTrailing, ANGLE, "- 12 30"},
        {12.0015, DMS, DMS, 5, kTrimTrailing, ANGLE, "  12 00 15.0"},
        {0.0, DMS, DMS, 5, kTrimTrailing | kTrimLeading, ANGLE, "   0"},
    };
    CheckTexts(std::begin(cases), std::end(cases));
}

TEST(Format, DecimalTexts)
{
    const TextCase cases[] = {
        {12.5, 21, 21, 6, kTrimTrailing, ANGLE, " 12.5"},
        {-3, 21, 21, 6, kTrimTrailing, ANGLE, "-3.0"},
        {12.5, 21, 21, 0, 0, ANGLE, " 12.500000"},  // precision 0 gives six decimals
        {100, 21, 21, 2, kTrimTrailing, ANGLE, " 100.0"},
        {-4e-7, 21, 21, 6, 0, ANGLE, "-0.000000"},  // rounds to zero: printf keeps the sign
        {-0.004, 21, 21, 2, kTrimTrailing, ANGLE, "-0.0"},
        {-1e-12, DEG, NYR_UNIT_DECIMAL_DMS, 4, 0, ANGLE, "-0.0000"},
        {-6e-7, 21, 21, 6, 0, ANGLE, "-0.000001"},
        {1, 21, NYR_UNIT_US_SURVEY_FEET, 4, 0, ANGLE, " 3.2808"},
        {12.301550, DMS, NYR_UNIT_DECIMAL_DMS, 6, 0, ANGLE, " 12.301550"},  // the packed number
        {29.999999999, DEG, NYR_UNIT_DECIMAL_DMS, 4, 0, ANGLE, " 30.0000"},
        {359.59599999999, DMS, NYR_UNIT_DECIMAL_DMS, 4, kLimit, ANGLE, " 0.0000"},
        // Seconds only: arc seconds for 11 to 13, cc for 14 to 16.
        {0.3, DMS, DMS, 1, kSecOnly, ANGLE, " 1800.0"},
        {-0.5, DEG, DEG, 6, kSecOnly | kTrimTrailing, ANGLE, "-1800.0"},
        {0.5, GON, GON, 2, kSecOnly, ANGLE, " 5000.00"},
        {0.25, NYR_UNIT_REVOLUTION, NYR_UNIT_REVOLUTION, 2, kSecOnly, ANGLE, " 0.25"},
        // Latitudes and longitudes: the magnitude and a hemisphere letter.
        {-12.5, DEG, DEG, 6, 0, LAT, " 12.500000 S"},
        {-1e-9, DEG, DEG, 6, 0, LON, " 0.000000 E"},
    };
    CheckTexts(std::begin(cases), std::end(cases));
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
        {"%degOrG:%minOrC:%secOrCC", angle, DMS, LAT, "12:30:15.50000 S"},
        {"100%% %%degOrG %x", angle, DMS, ANGLE, "100% %degOrG %x"},
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
    format.CustomFormat("%degOrG d", nullptr);  // gon keeps the fixed layout
    std::string dms, gonText;
    format.ConvertToString(angle, DMS, dms);
    format.ConvertToString(gon, GON, gonText);
    EXPECT_EQ(dms + "|" + gonText, "-12 d|  12g 34c 56.78000cc");
}

TEST(Format, RefusalsAndAbbreviations)
{
    CNyrFormat format(NYR_UNIT_DMS);
    std::string out = "stale";
    EXPECT_EQ(format.ConvertToString(1.0, 19, out), 0);
    EXPECT_EQ(out, "");
    EXPECT_EQ(format.ConvertToString(std::nan(""), NYR_UNIT_DEGREE, out), 0);
    EXPECT_EQ(format.ConvertToString(HUGE_VAL, NYR_UNIT_DMS, out), 0);

    format.UseSecOnly(1);  // the abbreviation follows seconds-only and the unit
    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "\"");
    format.Unit(NYR_UNIT_DECIMAL_GON);
    format.GetUnitAbbreviation(out);
    EXPECT_EQ(out, "cc");
    format.Precision(40);
    EXPECT_EQ(format.Precision(), 15);
}

}  // namespace

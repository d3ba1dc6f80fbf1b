// Field and packed texts against an exact-decimal reference: the angle in
// degrees (gon) is radians / factor as a double, and its exact decimal
// expansion (glibc's printf prints every digit of a double) is split into
// fields by schoolbook arithmetic on the digit string, then rounded once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "nyr/values/format.h"
#include "nyr/values/units.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct Fields
{
    unsigned long long whole = 0, minutes = 0;
    std::string seconds;  // "SS" and, with decimals, "." and the digits
    bool inWindow = false;  // the dropped part was within [0.45, 0.5) of the last unit
};

// Multiplies the digit string of a fraction by `factor` in place and returns
// the integer that spills out in front.
unsigned MultiplyFraction(std::string& digits, unsigned factor)
{
    unsigned carry = 0;
    for (std::size_t i = digits.size(); i-- > 0;) {
        const unsigned d = static_cast<unsigned>(digits[i] - '0') * factor + carry;
        digits[i] = static_cast<char>('0' + d % 10);
        carry = d / 10;
    }
    return carry;
}

// Fields of `radians` in DMS (base 60) or gon (base 100), seconds rounded
// half away from zero to `decimals`.
Fields Reference(double radians, int base, int decimals)
{
    const double units = std::fabs(radians / (base == 60 ? kPi / 180 : kPi / 200));
    char text[1200];
    std::snprintf(text, sizeof text, "%.1100f", units);
    const std::string all = text;
    const std::size_t point = all.find('.');
    std::string fraction = all.substr(point + 1);
    Fields f;
    f.whole = std::stoull(all.substr(0, point));
    f.minutes = MultiplyFraction(fraction, static_cast<unsigned>(base));
    unsigned long long seconds = MultiplyFraction(fraction, static_cast<unsigned>(base));
    std::string kept = fraction.substr(0, static_cast<std::size_t>(decimals));
    const std::string dropped = fraction.substr(static_cast<std::size_t>(decimals));
    f.inWindow = dropped[0] == '4' && dropped[1] >= '5';
    if (dropped[0] >= '5') {
        // Round up: carry through the kept digits, the seconds and minutes.
        int i = decimals - 1;
        for (; i >= 0 && kept[static_cast<std::size_t>(i)] == '9'; --i)
            kept[static_cast<std::size_t>(i)] = '0';
        if (i >= 0)
            ++kept[static_cast<std::size_t>(i)];
        else if (++seconds == static_cast<unsigned>(base) && (seconds = 0, ++f.minutes == static_cast<unsigned>(base))) {
            f.minutes = 0;
            ++f.whole;
        }
    }
    char integer[24];
    std::snprintf(integer, sizeof integer, "%02llu", seconds);
    f.seconds = integer + (decimals > 0 ? "." + kept : std::string());
    return f;
}

// The fixed layout: a sign field and three-place whole units, or for a
// latitude (longitude) two (three) places and the hemisphere letter after.
std::string FieldText(const Fields& f, bool negative, int precision, eNyrGeoKind kind = NYR_GEO_NONE)
{
    char head[64];
    const bool zero = !f.whole && !f.minutes && f.seconds.find_first_of("123456789") == std::string::npos;
    const char* sign = kind != NYR_GEO_NONE ? "" : negative && !zero ? "-" : " ";
    std::snprintf(head, sizeof head, "%s%*llu %02llu ", sign, kind == NYR_GEO_LATITUDE ? 2 : 3, f.whole, f.minutes);
    std::string seconds = f.seconds;
    if (precision == 0)  // five decimals shown whatever the precision
        seconds += ".00000";
    else if (precision < 5)
        seconds += std::string(static_cast<std::size_t>(5 - precision), '0');
    if (kind == NYR_GEO_LATITUDE)
        seconds += negative && !zero ? " S" : " N";
    else if (kind == NYR_GEO_LONGITUDE)
        seconds += negative && !zero ? " W" : " E";
    return head + seconds;
}

// Angles whose seconds (cc) lie in [0.45, 0.5) of the last unit at
// `precision`, with magnitudes the double still resolves to that unit (its
// relative resolution is about 1e-16, and the window is 0.05 units wide).
// `wholeUnits` is the largest magnitude in whole units (degrees or gon).
double WindowAngle(std::mt19937_64& random, int base, int precision, double wholeUnits)
{
    const double unit = std::pow(10.0, -precision);
    const double maxSeconds = std::fmin(wholeUnits * base * base, 2e13 * unit);
    std::uniform_real_distribution<double> part(0, 1);
    const double seconds = (std::floor(part(random) * maxSeconds / unit) + 0.45 + 0.05 * part(random)) * unit;
    const double sign = part(random) < 0.5 ? -1 : 1;
    return sign * seconds / (base * base) * (base == 60 ? kPi / 180 : kPi / 200);
}

// Regression: the seconds were rounded twice (at precision + 1, then at the
// precision), so 12° 30' 59.4999" showed 12 31 00 at precision 0; precision
// above 8 was cut to 8 decimals. Angles, latitudes and longitudes alike.
TEST(FormatExact, FieldSecondsRoundOnceAtEveryPrecisionInBothUnits)
{
    std::mt19937_64 random(2402);
    for (const eNyrGeoKind kind : {NYR_GEO_NONE, NYR_GEO_LATITUDE, NYR_GEO_LONGITUDE})
        for (int base : {60, 100})
            for (int precision = 0; precision <= 15; ++precision) {
                CNyrFormat format(base == 60 ? NYR_UNIT_DMS : NYR_UNIT_GON);
                format.UseDmsSymbols(0);
                format.Precision(precision);
                const double quarter = base == 60 ? 90 : 100;
                const double wholeUnits = kind == NYR_GEO_LATITUDE    ? quarter
                                          : kind == NYR_GEO_LONGITUDE ? 2 * quarter
                                                                      : 400;
                int inWindow = 0;
                for (int i = 0; i < 400; ++i) {
                    const double radians = WindowAngle(random, base, precision, wholeUnits);
                    const Fields expected = Reference(radians, base, precision);
                    inWindow += expected.inWindow;
                    std::string text;
                    ASSERT_EQ(format.ConvertToString(radians, format.Unit(), text, kind, 0), 1);
                    ASSERT_EQ(text, FieldText(expected, radians < 0, precision, kind))
                        << "kind " << kind << " base " << base << " precision " << precision << " radians " << radians;
                }
                EXPECT_GT(inWindow, 300) << "base " << base << " precision " << precision;
            }
}

// Regression: beyond about 563° the packed form had too few decimals and the
// texts were padded with zeros (1513.633648475066 rad at precision 8 showed
// 11.23180000").
TEST(FormatExact, DigitsHoldOverTheWholeRangeInFieldAndPackedTexts)
{
    CNyrFormat dms(NYR_UNIT_DMS);
    dms.UseDmsSymbols(0);
    dms.Precision(8);
    std::string text;
    dms.ConvertToString(1513.633648475066, NYR_UNIT_DMS, text);
    EXPECT_EQ(text, " 86724 49 11.23179504");

    std::mt19937_64 random(563);
    std::uniform_real_distribution<double> exponent(-3, 7);  // radians up to the values' limit
    for (int i = 0; i < 3000; ++i) {
        const double radians = std::pow(10.0, exponent(random)) * (i % 2 ? -1 : 1);
        const int base = i % 4 < 2 ? 60 : 100;
        const int precision = i % 16;
        CNyrFormat fields(base == 60 ? NYR_UNIT_DMS : NYR_UNIT_GON);
        fields.UseDmsSymbols(0);
        fields.Precision(precision);
        ASSERT_EQ(fields.ConvertToString(radians, fields.Unit(), text), 1);
        const Fields f = Reference(radians, base, precision);
        ASSERT_EQ(text, FieldText(f, radians < 0, precision)) << radians << " precision " << precision;

        // The packed decimal of the same fields (Decimal DMS, Decimal Gon),
        // where the precision counts the packed number's decimals.
        if (precision < 4)
            continue;
        CNyrFormat packed(base == 60 ? NYR_UNIT_DECIMAL_DMS : NYR_UNIT_DECIMAL_GON);
        packed.Precision(precision);
        ASSERT_EQ(packed.ConvertToString(radians, packed.Unit(), text), 1);
        const Fields p = Reference(radians, base, precision - 4);
        std::string digits = p.seconds;
        digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
        char expected[96];
        std::snprintf(expected, sizeof expected, "%s%llu.%02llu%s", radians < 0 ? "-" : " ", p.whole, p.minutes,
                      digits.c_str());
        ASSERT_EQ(text, expected) << radians << " precision " << precision;
    }
}

}  // namespace

#include "nyr/values/value_angle.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/string_format.h"
#include "nyr/values/packed_angle.h"
#include "nyr/values/text_number_p.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/units_p.h"

using namespace nyr::values;

namespace {

// The first characters of the southern and western hemisphere letters,
// loaded once per process.
struct Hemispheres
{
    char south;
    char west;
};

const Hemispheres& SouthWest()
{
    static const Hemispheres letters{NyrLoadString(NYR_IDS_HEMISPHERE_SOUTH).c_str()[0],
                                     NyrLoadString(NYR_IDS_HEMISPHERE_WEST).c_str()[0]};
    return letters;
}

constexpr double kPoleTolerance = 1e-8;           // radians, 0.002"
constexpr double kAntimeridianTolerance = 1e-12;  // radians, 2e-7"

using nyr::ascii::IsDigit;

// One conversion of "%d%d%f" on the cleaned text: whole units and minutes
// as "%d" reads them ([-]digits), seconds as "%f" reads them ([-]digits with
// an optional point, at least one digit). Two differences from sscanf, both
// so that the library's own texts read back: blanks may stand between the
// '-' and its digits (the sign field of "-  5 30 00.00000"), and the '-' of
// a zero field counts ("-0 30" is negative, as a custom format writes it).
struct Field
{
    bool negative = false;
    double value = 0;
};

// Reads one field at `p`; false (a matching failure, where sscanf stops)
// when there are no digits.
bool ReadField(const char*& p, bool decimal, Field& field)
{
    const char* q = p;
    while (*q == ' ')
        ++q;
    const bool negative = *q == '-';
    if (negative)
        while (*++q == ' ') {
        }
    const char* const start = q;
    while (IsDigit(*q))
        ++q;
    if (decimal && *q == '.')
        while (IsDigit(*++q)) {
        }
    if (q == start || (q == start + 1 && *start == '.'))
        return false;
    field.negative = negative;
    std::from_chars(start, q, field.value, std::chars_format::fixed);
    p = q;
    return true;
}

}  // namespace

CNyrValueAngle::CNyrValueAngle(double radians) : CNyrValueAngle(radians, CNyrUnitSettingsAngle::Default())
{
}

CNyrValueAngle::CNyrValueAngle(double radians, CNyrUnitSettings& settings) : CNyrValue(settings)
{
    Assign(radians);
}

CNyrValueAngle::CNyrValueAngle(CNyrUnitSettings& settings) : CNyrValue(settings)
{
}

CNyrValueAngle& CNyrValueAngle::operator=(const CNyrValueAngle& other)
{
    CNyrValue::operator=(other);
    return *this;
}

int CNyrValueAngle::StringToNumber(const char* text, double& out, long unit) const
{
    if (!text)
        return NYR_VALUE_UNREADABLE;
    const std::string_view trimmed = TrimWhiteSpace(text);
    if (trimmed.size() > kMaxTextLength)
        return NYR_VALUE_TOO_LONG;
    const std::size_t length = trimmed.size();
    text = trimmed.data();
    const Hemispheres& letters = SouthWest();
    const bool southOrWest = (letters.south && std::memchr(text, letters.south, length)) ||
                             (letters.west && std::memchr(text, letters.west, length));
    const double hemisphere = southOrWest ? -1.0 : 1.0;

    if (unit != NYR_UNIT_DMS && unit != NYR_UNIT_GON) {
        double number = 0;
        if (const int status = CNyrValue::StringToNumber(text, number, unit))
            return status;
        out = number * hemisphere + 0.0;  // + 0.0: "0 S" is zero, not negative zero
        return NYR_VALUE_OK;
    }

    // Digits, '-' and '.' stay; everything else separates fields.
    char cleaned[kMaxTextLength + 1];
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        cleaned[i] = IsDigit(c) || c == '-' || c == '.' ? c : ' ';
    }
    cleaned[length] = '\0';

    // "%d%d%f": the fields up to the first that cannot be read; missing
    // fields are 0, what follows the third is not read.
    Field fields[3];
    const char* p = cleaned;
    int read = 0;
    while (read < 3 && ReadField(p, read == 2, fields[read]))
        ++read;
    if (read == 0)
        return NYR_VALUE_UNREADABLE;  // stricter than sscanf, which gives 0
    // Fields beyond their limit carry (12 60 00 is 13 00 00); whole units
    // and minutes must fit an int, seconds the packed form.
    if (fields[0].value > INT_MAX || fields[1].value > INT_MAX || !(fields[2].value < 1e9))
        return NYR_VALUE_OUT_OF_RANGE;

    const bool negative = fields[0].negative || fields[1].negative || fields[2].negative;
    const int whole = static_cast<int>(fields[0].value);
    const int minutes = static_cast<int>(fields[1].value);
    const double packed = unit == NYR_UNIT_DMS
                              ? Wb32DMS2DMS(negative ? -1 : 1, whole, minutes, fields[2].value, -1, 0)
                              : Wb32GCCC2GCCC(negative ? -1 : 1, whole, minutes, fields[2].value, -1, 0);
    out = packed * hemisphere + 0.0;
    return NYR_VALUE_OK;
}

void CNyrValueAngle::StdFormat(std::string& out) const
{
    std::string number;
    AppendDecimalText(number, GetDouble(), 10, false);
    out = NyrFormat("%s [%s]", number.c_str(), "rad");
}

long CNyrValueAngle::StdUnit() const
{
    return NYR_UNIT_RADIANS;
}

bool CNyrValueAngle::CheckUnit(long unit) const
{
    return NyrIsAngleUnit(unit);
}

int CNyrValueAngle::Assign(double radians)
{
    if (!UnitSettings().Format().LimitToCircle())
        return CNyrValue::Assign(radians);
    if (const int status = Check(radians))
        return Fail(status);
    double reduced = std::fmod(radians, kRevolutionFactor);
    if (reduced < 0)
        reduced += kRevolutionFactor;
    if (reduced >= kRevolutionFactor)  // a tiny negative angle plus a turn rounds to the turn itself
        reduced = 0;
    return CNyrValue::Assign(reduced + 0.0);
}

double CNyrValueAngle::MaxMagnitude() const
{
    return 1e7;
}

unsigned long CNyrValueAngle::PackedFlags() const
{
    return m_flags | (UnitSettings().Format().LimitToCircle() ? WB32_FLAG_ONE_TURN : 0);
}

CNyrValueAngleLat::CNyrValueAngleLat(double radians)
    : CNyrValueAngleLat(radians, CNyrUnitSettingsAngleLatLon::Default())
{
}

CNyrValueAngleLat::CNyrValueAngleLat(double radians, CNyrUnitSettings& settings) : CNyrValueAngle(settings)
{
    Assign(radians);
}

CNyrValueAngleLat& CNyrValueAngleLat::operator=(const CNyrValueAngleLat& other)
{
    CNyrValue::operator=(other);
    return *this;
}

int CNyrValueAngleLat::Assign(double radians)
{
    if (const int status = Check(radians))
        return Fail(status);
    // 90° comes here through conversions and texts rounded at their last
    // digit (1.57079633 rad): a little beyond is taken as the pole.
    constexpr double kQuarter = kPi / 2;
    if (std::fabs(radians) > kQuarter + kPoleTolerance)
        return Fail(NYR_VALUE_OUT_OF_RANGE);
    return CNyrValue::Assign(std::fmin(std::fmax(radians, -kQuarter), kQuarter));
}

eNyrGeoKind CNyrValueAngleLat::GeoKind() const
{
    return NYR_GEO_LATITUDE;
}

unsigned long CNyrValueAngleLat::PackedFlags() const
{
    return GetFlag() & ~static_cast<unsigned long>(WB32_FLAG_ONE_TURN);  // the hemisphere carries the sign
}

CNyrValueAngleLon::CNyrValueAngleLon(double radians)
    : CNyrValueAngleLon(radians, CNyrUnitSettingsAngleLatLon::Default())
{
}

CNyrValueAngleLon::CNyrValueAngleLon(double radians, CNyrUnitSettings& settings) : CNyrValueAngle(settings)
{
    Assign(radians);
}

CNyrValueAngleLon& CNyrValueAngleLon::operator=(const CNyrValueAngleLon& other)
{
    CNyrValue::operator=(other);
    return *this;
}

int CNyrValueAngleLon::Assign(double radians)
{
    if (const int status = Check(radians))
        return Fail(status);
    double reduced = std::fmod(radians, kRevolutionFactor);
    if (reduced > kPi)
        reduced -= kRevolutionFactor;
    else if (reduced <= -kPi)
        reduced += kRevolutionFactor;
    // 180° reached through a factor rounded in its last place (200 grad is
    // pi plus a unit) must not flip to the western side.
    if (std::fabs(reduced) > kPi - kAntimeridianTolerance)
        reduced = kPi;
    return CNyrValue::Assign(reduced + 0.0);
}

eNyrGeoKind CNyrValueAngleLon::GeoKind() const
{
    return NYR_GEO_LONGITUDE;
}

unsigned long CNyrValueAngleLon::PackedFlags() const
{
    return GetFlag() & ~static_cast<unsigned long>(WB32_FLAG_ONE_TURN);
}

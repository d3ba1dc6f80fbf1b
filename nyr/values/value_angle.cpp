#include "nyr/values/value_angle.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>

#include "nyr/frame/resource_module.h"
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
    static const Hemispheres letters{NyrLoadString(26011).c_str()[0], NyrLoadString(26013).c_str()[0]};
    return letters;
}

constexpr double kPoleTolerance = 1e-8;           // radians, 0.002"
constexpr double kAntimeridianTolerance = 1e-12;  // radians, 2e-7"

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// One field of the cleaned text: [-]digits for the whole units and minutes,
// [-]digits[.digits] (or [-].digits) for the seconds; blanks may follow the '-'.
struct Field
{
    bool negative = false;
    double value = 0;
};

int ReadField(const char*& p, bool decimal, Field& field)
{
    field.negative = *p == '-';
    if (field.negative) {
        ++p;
        while (*p == ' ')  // the sign field of the text forms stands apart: "-  5 30 00.00000"
            ++p;
    }
    const char* const start = p;
    while (IsDigit(*p))
        ++p;
    if (decimal && *p == '.') {
        ++p;
        while (IsDigit(*p))
            ++p;
    }
    if (p == start || (p == start + 1 && *start == '.'))
        return NYR_VALUE_UNREADABLE;
    if (*p != ' ' && *p != '\0')  // "12.5", "12 30.5", "12-30": a field ends inside the text
        return NYR_VALUE_UNREADABLE;
    std::from_chars(start, p, field.value, std::chars_format::fixed);
    return NYR_VALUE_OK;
}

void SkipBlanks(const char*& p)
{
    while (*p == ' ')
        ++p;
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
    const std::size_t length = strnlen(text, kMaxTextLength + 1);
    if (length > kMaxTextLength)
        return NYR_VALUE_TOO_LONG;
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

    const int base = unit == NYR_UNIT_DMS ? 60 : 100;
    Field fields[3];
    const char* p = cleaned;
    SkipBlanks(p);
    if (*p == '\0')
        return NYR_VALUE_UNREADABLE;
    for (int i = 0; i < 3 && *p != '\0'; ++i) {
        if (const int status = ReadField(p, i == 2, fields[i]))
            return status;
        SkipBlanks(p);
    }
    if (*p != '\0')
        return NYR_VALUE_UNREADABLE;  // a fourth field
    if (fields[0].value > INT_MAX || fields[1].value >= base || fields[2].value >= base)
        return NYR_VALUE_OUT_OF_RANGE;

    const bool negative = fields[0].negative || fields[1].negative || fields[2].negative;
    if (negative && fields[0].value == 0 && fields[1].value == 0 && fields[2].value == 0)
        return NYR_VALUE_NEGATIVE_ZERO;
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

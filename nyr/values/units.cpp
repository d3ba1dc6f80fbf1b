#include "nyr/values/units.h"

#include "nyr/frame/text_ids.h"
#include "nyr/values/packed_angle.h"
#include "nyr/values/units_p.h"

namespace {

constexpr NYR_UNIT_TEXT kDistanceTable[] = {
    {21, NYR_IDS_UNIT_METRES}, {22, NYR_IDS_UNIT_US_SURVEY_FEET}, {23, NYR_IDS_UNIT_INTERNATIONAL_FEET}, {-1, -1}};
constexpr NYR_UNIT_TEXT kAngleTable[] = {
    {11, NYR_IDS_UNIT_DEGREE},     {12, NYR_IDS_UNIT_DMS},     {13, NYR_IDS_UNIT_DECIMAL_DMS},
    {14, NYR_IDS_UNIT_GRAD},       {15, NYR_IDS_UNIT_GON},     {16, NYR_IDS_UNIT_DECIMAL_GON},
    {17, NYR_IDS_UNIT_REVOLUTION}, {18, NYR_IDS_UNIT_RADIANS}, {-1, -1}};

struct Abbreviations
{
    const char* plain;
    const char* secondsOnly;
};

// Rows for codes 11 to 23; codes 19 and 20 are not units.
constexpr Abbreviations kAbbreviations[] = {
    {"dec", "\""},   {"", "\""},      {"deg", "\""},   {"grad", "cc"}, {"", "cc"},      {"gon", "cc"},
    {"rev", "rev"},  {"rad", "rad"},  {nullptr, nullptr}, {nullptr, nullptr}, {"m", "m"}, {"fts", "fts"},
    {"fti", "fti"},
};

}  // namespace

const NYR_UNIT_TEXT* NyrUnitTableDistance()
{
    return kDistanceTable;
}

const NYR_UNIT_TEXT* NyrUnitTableAngle()
{
    return kAngleTable;
}

bool NyrIsAngleUnit(long unit)
{
    return unit >= NYR_UNIT_DEGREE && unit <= NYR_UNIT_RADIANS;
}

bool NyrIsDistanceUnit(long unit)
{
    return unit >= NYR_UNIT_METRES && unit <= NYR_UNIT_INTERNATIONAL_FEET;
}

namespace nyr::values {

const char* UnitAbbreviation(long unit, bool secondsOnly)
{
    if (unit < NYR_UNIT_DEGREE || unit > NYR_UNIT_INTERNATIONAL_FEET)
        return nullptr;
    const Abbreviations& row = kAbbreviations[unit - NYR_UNIT_DEGREE];
    return secondsOnly ? row.secondsOnly : row.plain;
}

}  // namespace nyr::values

namespace nyr::values {

int ConvertUnits(double value, long fromUnit, double& out, long toUnit, int precision, unsigned long flags)
{
    if (fromUnit == toUnit) {
        out = value;  // a plain copy: no check of the code, no rounding (intended)
        return 0;
    }
    out = 0;
    if (!IsConvertibleUnit(fromUnit))
        return 1;
    double standard = value;
    switch (fromUnit) {
    case NYR_UNIT_DEGREE: standard = value * kDegreeFactor; break;
    case NYR_UNIT_GRAD: standard = value * kGradFactor; break;
    case NYR_UNIT_REVOLUTION: standard = value * kRevolutionFactor; break;
    case NYR_UNIT_US_SURVEY_FEET: standard = value * kUsSurveyFootFactor; break;
    case NYR_UNIT_INTERNATIONAL_FEET: standard = value * kInternationalFootFactor; break;
    case NYR_UNIT_DMS:
    case NYR_UNIT_DECIMAL_DMS: standard = Wb32DMS2Rad(value); break;
    case NYR_UNIT_GON:
    case NYR_UNIT_DECIMAL_GON: standard = Wb32GCCC2Rad(value); break;
    default: break;  // radians and metres are the standard units
    }
    if (!IsConvertibleUnit(toUnit))
        return 1;
    double result = standard;
    switch (toUnit) {
    case NYR_UNIT_DEGREE: result = standard / kDegreeFactor; break;
    case NYR_UNIT_GRAD: result = standard / kGradFactor; break;
    case NYR_UNIT_REVOLUTION: result = standard / kRevolutionFactor; break;
    case NYR_UNIT_US_SURVEY_FEET: result = standard / kUsSurveyFootFactor; break;
    case NYR_UNIT_INTERNATIONAL_FEET: result = standard / kInternationalFootFactor; break;
    case NYR_UNIT_DMS:
    case NYR_UNIT_DECIMAL_DMS: result = Wb32Rad2DMS(standard, precision, flags); break;
    case NYR_UNIT_GON:
    case NYR_UNIT_DECIMAL_GON: result = Wb32Rad2GCCC(standard, precision, flags); break;
    default: break;
    }
    out = result;
    return 0;
}

}  // namespace nyr::values

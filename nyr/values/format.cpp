#include "nyr/values/format.h"

#include <charconv>
#include <climits>
#include <cstdint>
#include <cmath>
#include <string_view>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/values/packed_angle.h"
#include "nyr/values/packed_angle_p.h"
#include "nyr/values/text_number_p.h"
#include "nyr/values/units.h"
#include "nyr/values/units_p.h"

using namespace nyr::values;

namespace {

constexpr int kMaxPrecision = 15;

// Symbols and hemisphere letters, loaded once per process from the text table.
struct AngleTexts
{
    std::string dms[3];  // degree, minute and second signs
    std::string gon[3];
    std::string north, south, east, west;
};

const AngleTexts& Texts()
{
    static const AngleTexts texts = [] {
        AngleTexts t;
        t.dms[0] = NyrLoadString(NYR_IDS_SYMBOL_DEGREE);
        t.dms[1] = "'";
        t.dms[2] = NyrLoadString(NYR_IDS_SYMBOL_SECONDS);
        t.gon[0] = "g";
        t.gon[1] = "c";
        t.gon[2] = "cc";
        t.north = NyrLoadString(NYR_IDS_HEMISPHERE_NORTH);
        t.south = NyrLoadString(NYR_IDS_HEMISPHERE_SOUTH);
        t.east = NyrLoadString(NYR_IDS_HEMISPHERE_EAST);
        t.west = NyrLoadString(NYR_IDS_HEMISPHERE_WEST);
        return t;
    }();
    return texts;
}

const std::string& HemisphereLetter(eNyrGeoKind kind, bool negative)
{
    const AngleTexts& t = Texts();
    if (kind == NYR_GEO_LATITUDE)
        return negative ? t.south : t.north;
    return negative ? t.west : t.east;
}

// An integer right-aligned in `width` places, padded with `pad`.
void AppendInt(std::string& out, uint64_t value, int width, char pad)
{
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    const int length = static_cast<int>(result.ptr - digits);
    if (length < width)
        out.append(static_cast<std::size_t>(width - length), pad);
    out.append(digits, result.ptr);
}

// The decimal digits of `value` in exactly `count` places, leading zeros kept.
void AppendDigits(std::string& out, uint64_t value, int count)
{
    char digits[20];
    for (int i = count - 1; i >= 0; --i, value /= 10)
        digits[i] = static_cast<char>('0' + value % 10);
    out.append(digits, static_cast<std::size_t>(count));
}

// The seconds (cc) of a rounded angle: two integer places padded with `pad`,
// the decimals it was rounded to, then zeros up to `shown` decimals;
// trimmed like the decimal text when asked.
void AppendSeconds(std::string& out, const RoundedAngle& angle, int shown, char pad, bool trim)
{
    AppendInt(out, angle.WholeSeconds(), 2, pad);
    const std::size_t point = out.size();
    out += '.';
    AppendDigits(out, angle.SecondDecimals(), angle.decimals - 4);
    out.append(static_cast<std::size_t>(shown - (angle.decimals - 4)), '0');
    if (trim)
        DropTrailingZeros(out, point);
}

// Spells out the capitalised placeholders as the lower-case ones followed by
// the unit's symbols; "%%" stays as it is.
std::string SpellOutSymbols(const std::string& format, const std::string (&symbols)[3])
{
    static const char* const kCapitalised[] = {"%DegOrG", "%MinOrC", "%SecOrCC"};
    static const char* const kPlain[] = {"%degOrG", "%minOrC", "%secOrCC"};
    std::string out;
    for (std::size_t i = 0; i < format.size();) {
        if (format.compare(i, 2, "%%") == 0) {
            out += "%%";
            i += 2;
            continue;
        }
        bool replaced = false;
        for (int field = 0; field < 3 && !replaced; ++field) {
            const std::string_view name = kCapitalised[field];
            if (format.compare(i, name.size(), name) == 0) {
                out += kPlain[field];
                out += symbols[field];
                i += name.size();
                replaced = true;
            }
        }
        if (!replaced)
            out += format[i++];
    }
    return out;
}

void AppendCustom(std::string& out, const std::string& format, const RoundedAngle& f, bool showSign, int shown,
                  bool trim)
{
    for (std::size_t i = 0; i < format.size();) {
        if (format[i] != '%') {
            out += format[i++];
        } else if (format.compare(i, 2, "%%") == 0) {
            out += '%';
            i += 2;
        } else if (format.compare(i, 7, "%degOrG") == 0) {
            if (showSign && f.negative && !f.IsZero())
                out += '-';
            AppendInt(out, f.whole, 1, ' ');
            i += 7;
        } else if (format.compare(i, 7, "%minOrC") == 0) {
            AppendInt(out, f.Minutes(), 2, '0');
            i += 7;
        } else if (format.compare(i, 8, "%secOrCC") == 0) {
            AppendSeconds(out, f, shown, '0', trim);
            i += 8;
        } else {
            out += format[i++];
        }
    }
}

}  // namespace

CNyrFormat::CNyrFormat(long unit, int useSecOnly, int limitToCircle, const char* customFormat)
    : m_unit(unit), m_useSecOnly(useSecOnly ? 1 : 0), m_limitToCircle(limitToCircle ? 1 : 0)
{
    SetUnitAbbreviation(unit);
    if (customFormat && *customFormat)
        Format(customFormat);
}

CNyrFormat::~CNyrFormat() = default;

void CNyrFormat::SetUnitAbbreviation(const char* abbreviation)
{
    m_abbreviation = abbreviation ? abbreviation : "";
}

void CNyrFormat::SetUnitAbbreviation(long unit)
{
    const char* abbreviation = UnitAbbreviation(unit, m_useSecOnly != 0);
    m_abbreviation = abbreviation ? abbreviation : "";
}

void CNyrFormat::GetUnitAbbreviation(std::string& out) const
{
    out = m_abbreviation;
}

const std::string& CNyrFormat::Format() const
{
    return m_customFormat;
}

void CNyrFormat::Format(const char* customFormat)
{
    SetCustomPieces(customFormat, customFormat);
    m_customFormat = customFormat ? customFormat : "";
}

void CNyrFormat::CustomFormat(const char* dmsFormat, const char* gonFormat)
{
    SetCustomPieces(dmsFormat, gonFormat);
    m_customFormat.clear();
}

void CNyrFormat::SetCustomPieces(const char* dmsFormat, const char* gonFormat)
{
    m_customDms = dmsFormat ? SpellOutSymbols(dmsFormat, Texts().dms) : std::string();
    m_customGon = gonFormat ? SpellOutSymbols(gonFormat, Texts().gon) : std::string();
}

void CNyrFormat::Precision(int precision)
{
    m_precision = precision < 0 ? 0 : precision > kMaxPrecision ? kMaxPrecision : precision;
}

int CNyrFormat::Precision() const
{
    return m_precision;
}

void CNyrFormat::Unit(long unit)
{
    m_unit = unit;
    SetUnitAbbreviation(unit);
}

void CNyrFormat::UseSecOnly(int on)
{
    m_useSecOnly = on ? 1 : 0;
    SetUnitAbbreviation(m_unit);
}

int CNyrFormat::ConvertToString(double value, long unit, std::string& out) const
{
    return ConvertToString(value, unit, out, NYR_GEO_NONE, 0);
}

int CNyrFormat::ConvertToString(double value, long unit, std::string& out, eNyrGeoKind kind,
                                unsigned long packedFlags) const
{
    out.clear();
    const bool angle = NyrIsAngleUnit(unit);
    if ((!angle && !NyrIsDistanceUnit(unit)) || !std::isfinite(value))
        return 0;
    if (!angle)
        kind = NYR_GEO_NONE;
    if (angle && kind == NYR_GEO_NONE && m_limitToCircle)
        packedFlags |= WB32_FLAG_ONE_TURN;
    if ((unit == NYR_UNIT_DMS || unit == NYR_UNIT_GON) && !m_useSecOnly)
        return FieldText(value, unit == NYR_UNIT_DMS ? 60 : 100, kind, packedFlags, out);
    DecimalText(value, unit, kind, packedFlags, out);
    return 1;
}

int CNyrFormat::FieldText(double value, int base, eNyrGeoKind kind, unsigned long flags, std::string& out) const
{
    // Rounded once, at the precision: the seconds' decimals are the packed
    // number's decimals beyond its four field digits.
    RoundedAngle f;
    if (!RoundAngle(value, base, m_precision + 4, flags, f) || f.whole > INT_MAX)
        return 0;  // beyond the int fields: only values far outside any angle's range get here
    const bool negative = f.negative && !f.IsZero();  // a zero angle has a blank sign
    const bool trim = m_trimTrailingZeros != 0;
    const int shown = m_precision <= 5 ? 5 : m_precision;
    const std::string& custom = base == 60 ? m_customDms : m_customGon;
    if (!custom.empty()) {
        AppendCustom(out, custom, f, kind == NYR_GEO_NONE, shown, trim);
    } else {
        const std::string(&symbols)[3] = base == 60 ? Texts().dms : Texts().gon;
        int last = 2;
        if (trim && f.Seconds() == 0)
            last = f.Minutes() == 0 ? 0 : 1;
        int first = 0;
        if (m_trimLeadingZeros && f.whole == 0)
            first = f.Minutes() == 0 ? 2 : 1;
        if (first > last)
            first = last;
        if (kind == NYR_GEO_NONE)
            out += negative ? '-' : ' ';
        for (int field = first; field <= last; ++field) {
            if (field > first)
                out += ' ';
            const char pad = field == first && first > 0 ? ' ' : '0';
            if (field == 0)
                AppendInt(out, f.whole, kind == NYR_GEO_LATITUDE ? 2 : 3, ' ');
            else if (field == 1)
                AppendInt(out, f.Minutes(), 2, pad);
            else
                AppendSeconds(out, f, shown, pad, trim);
            if (m_useDmsSymbols)
                out += symbols[field];
        }
    }
    if (kind != NYR_GEO_NONE) {
        out += ' ';
        out += HemisphereLetter(kind, negative);
    }
    return 1;
}

void CNyrFormat::DecimalText(double value, long unit, eNyrGeoKind kind, unsigned long flags, std::string& out) const
{
    const bool trim = m_trimTrailingZeros != 0;
    const int precision = m_precision <= 0 ? 6 : m_precision;
    const double shown = kind != NYR_GEO_NONE ? std::fabs(value) : value;
    RoundedAngle packed;
    if (m_useSecOnly && unit >= NYR_UNIT_DEGREE && unit <= NYR_UNIT_DECIMAL_DMS) {
        AppendDecimalText(out, shown / kDegreeFactor * 3600.0, precision, trim);
    } else if (m_useSecOnly && unit >= NYR_UNIT_GRAD && unit <= NYR_UNIT_DECIMAL_GON) {
        AppendDecimalText(out, shown / kGradFactor * 10000.0, precision, trim);
    } else if ((unit == NYR_UNIT_DECIMAL_DMS || unit == NYR_UNIT_DECIMAL_GON) &&
               RoundAngle(shown, unit == NYR_UNIT_DECIMAL_DMS ? 60 : 100, precision, flags, packed)) {
        // The packed number's digits as they were rounded: a double would
        // hold too few of them beyond a few hundred degrees.
        out += packed.negative ? '-' : ' ';
        AppendInt(out, packed.whole, 1, ' ');
        const std::size_t point = out.size();
        out += '.';
        AppendDigits(out, packed.fraction, precision);
        if (trim)
            DropTrailingZeros(out, point);
    } else {
        double number = 0;
        ConvertUnits(shown, NyrIsAngleUnit(unit) ? NYR_UNIT_RADIANS : NYR_UNIT_METRES, number, unit, precision, flags);
        AppendDecimalText(out, number, precision, trim);
    }
    if (kind != NYR_GEO_NONE) {
        // The hemisphere of a value that shows as zero is N or E.
        const bool negative = value < 0 && out.find_first_of("123456789") != std::string::npos;
        out += ' ';
        out += HemisphereLetter(kind, negative);
    }
}

#include "nyr/values/value.h"

#include <cmath>
#include <cstring>

#include "nyr/values/text_number_p.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/units_p.h"

using namespace nyr::values;

CNyrValue::CNyrValue(CNyrUnitSettings& settings) : m_settings(&settings)
{
}

CNyrValue::~CNyrValue() = default;

CNyrValue& CNyrValue::operator=(double standardValue)
{
    Assign(standardValue);
    return *this;
}

CNyrValue& CNyrValue::operator=(float standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(int standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(long standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(short standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(unsigned int standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(unsigned long standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(unsigned short standardValue)
{
    return *this = static_cast<double>(standardValue);
}

CNyrValue& CNyrValue::operator=(const char* text)
{
    SetString(text);
    return *this;
}

CNyrValue& CNyrValue::operator=(const std::string& text)
{
    if (text.find('\0') != std::string::npos)
        Fail(NYR_VALUE_UNREADABLE);  // what follows the zero would be silently lost
    else
        SetString(text.c_str());
    return *this;
}

CNyrValue& CNyrValue::operator=(const CNyrValue& other)
{
    if (other.StdUnit() != StdUnit())
        Fail(NYR_VALUE_WRONG_KIND);
    else
        Assign(other.m_value);
    return *this;
}

int CNyrValue::SetDouble(double standardValue)
{
    return Assign(standardValue);
}

int CNyrValue::Status()
{
    const int status = m_status;
    m_status = NYR_VALUE_OK;
    return status;
}

void CNyrValue::GetUnitAbbreviation(std::string& out) const
{
    m_settings->GetUnitAbbreviation(out);
}

int CNyrValue::ConvertToStd(double value, long unit)
{
    if (!CheckUnit(unit))
        return Fail(NYR_VALUE_WRONG_UNIT);
    if (!std::isfinite(value))
        return Fail(NYR_VALUE_OUT_OF_RANGE);
    double standard = 0;
    Convert(value, unit, standard, StdUnit(), -1, PackedFlags());
    return Assign(standard);
}

int CNyrValue::ConvertToStd(const char* text, long unit)
{
    if (!CheckUnit(unit))
        return Fail(NYR_VALUE_WRONG_UNIT);
    if (!text)
        return Fail(NYR_VALUE_UNREADABLE);
    if (TrimWhiteSpace(text).size() > kMaxTextLength)
        return Fail(NYR_VALUE_TOO_LONG);
    const bool secondsOnly =
        m_settings->Format().UseSecOnly() && unit >= NYR_UNIT_DEGREE && unit <= NYR_UNIT_DECIMAL_GON;
    double number = 0;
    // Seconds are a decimal number: read them as a decimal unit reads.
    if (const int status = StringToNumber(text, number, secondsOnly ? long{NYR_UNIT_DEGREE} : unit))
        return Fail(status);
    if (!secondsOnly)
        return ConvertToStd(number, unit);
    if (unit <= NYR_UNIT_DECIMAL_DMS)
        return Assign(number / 3600.0 * kDegreeFactor);
    return Assign(number / 10000.0 * kGradFactor);
}

int CNyrValue::ConvertStdTo(double& out, long unit, int precision)
{
    if (!CheckUnit(unit))
        return Fail(NYR_VALUE_WRONG_UNIT);
    // Minutes and seconds take four digits of the packed number, plus one guard digit.
    if (precision >= 0 && (unit == NYR_UNIT_DMS || unit == NYR_UNIT_GON))
        precision += 5;
    Convert(m_value, StdUnit(), out, unit, precision, PackedFlags());
    return NYR_VALUE_OK;
}

int CNyrValue::ConvertStdTo(std::string& out, long unit)
{
    out.clear();
    if (!CheckUnit(unit))
        return Fail(NYR_VALUE_WRONG_UNIT);
    if (!m_settings->Format().ConvertToString(m_value, unit, out, GeoKind(), PackedFlags()))
        return Fail(NYR_VALUE_OUT_OF_RANGE);
    return NYR_VALUE_OK;
}

void CNyrValue::GetString(std::string& out)
{
    ConvertStdTo(out, m_settings->Unit());
}

int CNyrValue::SetString(const char* text)
{
    return ConvertToStd(text, m_settings->Unit()) == NYR_VALUE_OK ? 1 : 0;
}

int CNyrValue::StringToNumber(const char* text, double& out, long) const
{
    double number = 0;
    if (!text || ReadNumber(text, number) == 0)
        return NYR_VALUE_UNREADABLE;
    if (!std::isfinite(number))
        return NYR_VALUE_OUT_OF_RANGE;
    out = number + 0.0;  // "-0" and "-1e-400" are zero
    return NYR_VALUE_OK;
}

int CNyrValue::Convert(double value, long fromUnit, double& out, long toUnit, int precision, unsigned long flags)
{
    return ConvertUnits(value, fromUnit, out, toUnit, precision, flags);
}

int CNyrValue::Check(double standardValue) const
{
    if (!std::isfinite(standardValue) || std::fabs(standardValue) > MaxMagnitude())
        return NYR_VALUE_OUT_OF_RANGE;
    return NYR_VALUE_OK;
}

int CNyrValue::Assign(double standardValue)
{
    if (const int status = Check(standardValue))
        return Fail(status);
    // A computed -0.0 (-x with x = 0, an underflow) is zero, as a typed "-0" is.
    m_value = standardValue + 0.0;
    return NYR_VALUE_OK;
}

int CNyrValue::Fail(int status)
{
    m_status = status;
    return status;
}

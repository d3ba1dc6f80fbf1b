#include "nyr/values/value_distance.h"

#include "nyr/platform/string_format.h"
#include "nyr/values/text_number_p.h"
#include "nyr/values/unit_settings.h"

CNyrValueDistance::CNyrValueDistance(double metres) : CNyrValueDistance(metres, CNyrUnitSettingsDistance::Default())
{
}

CNyrValueDistance::CNyrValueDistance(double metres, CNyrUnitSettings& settings) : CNyrValue(settings)
{
    Assign(metres);
}

CNyrValueDistance& CNyrValueDistance::operator=(const CNyrValueDistance& other)
{
    CNyrValue::operator=(other);
    return *this;
}

void CNyrValueDistance::StdFormat(std::string& out) const
{
    std::string number;
    nyr::values::AppendDecimalText(number, GetDouble(), 6, false);
    out = NyrFormat("%s %s", number.c_str(), "m");
}

long CNyrValueDistance::StdUnit() const
{
    return NYR_UNIT_METRES;
}

bool CNyrValueDistance::CheckUnit(long unit) const
{
    return NyrIsDistanceUnit(unit);
}

double CNyrValueDistance::MaxMagnitude() const
{
    return 1e12;
}

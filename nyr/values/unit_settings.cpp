#include "nyr/values/unit_settings.h"

#include "nyr/util/profile_entries.h"
#include "nyr/values/units_p.h"

using nyr::values::IsConvertibleUnit;

CNyrUnitSettings::CNyrUnitSettings(long unit, const char* section, const char* numberEntry, const char* stringEntry)
    : m_format(unit), m_section(section), m_numberEntry(numberEntry), m_stringEntry(stringEntry)
{
}

CNyrUnitSettings::~CNyrUnitSettings() = default;

long CNyrUnitSettings::Unit() const
{
    return m_format.Unit();
}

int CNyrUnitSettings::Unit(long unit)
{
    if (!IsUnitOfKind(unit)) {
        Fail(NYR_UNIT_SETTINGS_NOT_A_UNIT);
        return 0;
    }
    m_format.Unit(unit);
    return 1;
}

void CNyrUnitSettings::GetUnitAbbreviation(std::string& out) const
{
    m_format.GetUnitAbbreviation(out);
}

CNyrFormat& CNyrUnitSettings::Format()
{
    return m_format;
}

const CNyrFormat& CNyrUnitSettings::Format() const
{
    return m_format;
}

void CNyrUnitSettings::Format(const char* customFormat)
{
    m_format.Format(customFormat);
}

void CNyrUnitSettings::Precision(int precision)
{
    m_format.Precision(precision);
}

int CNyrUnitSettings::Precision() const
{
    return m_format.Precision();
}

void CNyrUnitSettings::TrimTrailingZeros(int on)
{
    m_format.TrimTrailingZeros(on);
}

int CNyrUnitSettings::TrimTrailingZeros() const
{
    return m_format.TrimTrailingZeros();
}

int CNyrUnitSettings::Status()
{
    const int status = m_status;
    m_status = NYR_UNIT_SETTINGS_OK;
    return status;
}

bool CNyrUnitSettings::IsUnitOfKind(long unit) const
{
    return IsConvertibleUnit(unit);
}

int CNyrUnitSettings::UnitAbbreviation(long unit, std::string& out, int secondsOnly)
{
    const char* abbreviation = nyr::values::UnitAbbreviation(unit, secondsOnly != 0);
    out = abbreviation ? abbreviation : "";
    return abbreviation ? 1 : 0;
}

int CNyrUnitSettings::Fail(int status)
{
    m_status = status;
    return status;
}

long CNyrUnitSettings::StoredUnit(long defaultUnit) const
{
    // The store hands negative numbers back in their unsigned form.
    return static_cast<int>(
        CNyrProfileEntries::ReadNyrProfileInt(m_section, m_numberEntry, static_cast<int>(defaultUnit)));
}

int CNyrUnitSettings::Persist(long unit)
{
    std::string abbreviation;
    UnitAbbreviation(unit, abbreviation, 0);
    const int written =
        CNyrProfileEntries::WriteNyrProfileInt(m_section, m_numberEntry, static_cast<int>(unit)) &&
        CNyrProfileEntries::WriteNyrProfileString(m_section, m_stringEntry, abbreviation);
    if (!written)
        Fail(NYR_UNIT_SETTINGS_WRITE_FAILED);
    return written;
}

int CNyrUnitSettings::SaveUnit(long unit)
{
    if (!Unit(unit))
        return 0;
    Persist(unit);
    return 1;
}

bool CNyrUnitSettings::IsExcluded(long unit, const int* excluded)
{
    for (const int* code = excluded; code && *code > 0; ++code)
        if (*code == unit)
            return true;
    return false;
}

int CNyrUnitSettings::ApplyDefault(long unit, long ignoredCode, const int* excluded)
{
    if (unit == ignoredCode || unit == 2)
        return 0;
    if (!IsUnitOfKind(unit)) {
        Fail(NYR_UNIT_SETTINGS_NOT_A_UNIT);
        return 0;
    }
    if (IsExcluded(unit, excluded)) {
        Fail(NYR_UNIT_SETTINGS_EXCLUDED);
        return 0;
    }
    const long stored = StoredUnit(-1);
    if (IsUnitOfKind(stored) && !IsExcluded(stored, excluded))
        return Unit(stored);
    Persist(unit);
    return Unit(unit);
}

CNyrUnitSettingsDistance::CNyrUnitSettingsDistance()
    : CNyrUnitSettings(NYR_UNIT_METRES, CNyrProfileEntries::UnitSettingsDistanceSection(),
                       CNyrProfileEntries::UnitSettingsDistanceEntryFormatNumber(),
                       CNyrProfileEntries::UnitSettingsDistanceEntryFormatString())
{
}

CNyrUnitSettingsDistance& CNyrUnitSettingsDistance::Default()
{
    static CNyrUnitSettingsDistance settings;
    return settings;
}

int CNyrUnitSettingsDistance::DefaultSettings(long unit)
{
    return Default().ApplyDefault(unit, 20, nullptr);
}

bool CNyrUnitSettingsDistance::IsUnitOfKind(long unit) const
{
    return NyrIsDistanceUnit(unit);
}

CNyrUnitSettingsAngle::CNyrUnitSettingsAngle() : CNyrUnitSettingsAngle(CNyrProfileEntries::UnitSettingsAngleSection())
{
}

CNyrUnitSettingsAngle::CNyrUnitSettingsAngle(const char* section)
    : CNyrUnitSettings(NYR_UNIT_DMS, section, CNyrProfileEntries::UnitSettingsAngleEntryFormatNumber(),
                       CNyrProfileEntries::UnitSettingsAngleEntryFormatString())
{
}

CNyrUnitSettingsAngle& CNyrUnitSettingsAngle::Default()
{
    static CNyrUnitSettingsAngle settings;
    return settings;
}

int CNyrUnitSettingsAngle::DefaultSettings(long unit, const int* excluded)
{
    return Default().ApplyDefault(unit, 10, excluded);
}

bool CNyrUnitSettingsAngle::IsUnitOfKind(long unit) const
{
    return NyrIsAngleUnit(unit);
}

CNyrUnitSettingsAngleLatLon::CNyrUnitSettingsAngleLatLon()
    : CNyrUnitSettingsAngle(CNyrProfileEntries::UnitSettingsAngleLatLonSection())
{
}

CNyrUnitSettingsAngleLatLon& CNyrUnitSettingsAngleLatLon::Default()
{
    static CNyrUnitSettingsAngleLatLon settings;
    return settings;
}

int CNyrUnitSettingsAngleLatLon::DefaultSettings(long unit, const int* excluded)
{
    return Default().ApplyDefault(unit, 10, excluded);
}

#pragma once

#include <string>

#include "nyr/platform/export.h"
#include "nyr/values/format.h"
#include "nyr/values/units.h"

class QWidget;

// Status words of the unit settings (Status(), IsValid()).
enum eNyrUnitSettingsStatus
{
    NYR_UNIT_SETTINGS_OK = 0,
    NYR_UNIT_SETTINGS_NOT_A_UNIT = 1,     // a code that is not a unit of this kind (Unit, DefaultSettings, Save...)
    NYR_UNIT_SETTINGS_EXCLUDED = 2,       // DefaultSettings was given a unit its own excluded list names
    NYR_UNIT_SETTINGS_WRITE_FAILED = 3,   // the settings file could not be written
};

// The display unit that one kind of value is shown and entered in, for the
// whole process, with its display format. The process-wide objects come from
// the Default() accessors of the derived classes; other objects can be made
// for values that must not follow the user's choice (exports, tools).
//
// Settings file: each class has its own section, an entry " (###)" with the
// unit code and an entry " (str)" with its abbreviation (seconds-only off),
// written together. Only the "(###)" entry is ever read. The file is read by
// DefaultSettings, the selection lists and SaveCurrentSelection; everything
// else works on memory.
//
// A failed operation leaves a non-zero status (eNyrUnitSettingsStatus) that
// IsValid() reports until Status() has read and reset it. User-interface
// thread only.
class NYR_EXPORT CNyrUnitSettings
{
public:
    virtual ~CNyrUnitSettings();
    CNyrUnitSettings(const CNyrUnitSettings&) = delete;
    CNyrUnitSettings& operator=(const CNyrUnitSettings&) = delete;

    virtual long Unit() const;
    // Makes `unit` current; 0 (and NYR_UNIT_SETTINGS_NOT_A_UNIT) when it is not
    // a unit of this kind.
    virtual int Unit(long unit);
    // The current unit's abbreviation, in its seconds form when seconds-only is on.
    virtual void GetUnitAbbreviation(std::string& out) const;
    virtual CNyrFormat& Format();
    virtual const CNyrFormat& Format() const;
    // The custom format of CNyrFormat::Format(const char*).
    virtual void Format(const char* customFormat);
    // Decimals, 0 to 15: see CNyrFormat.
    virtual void Precision(int precision);
    virtual int Precision() const;
    virtual void TrimTrailingZeros(int on);
    virtual int TrimTrailingZeros() const;
    // The last failure; reading resets it to 0.
    virtual int Status();
    bool IsValid() const { return m_status == NYR_UNIT_SETTINGS_OK; }

    // Whether `unit` is a unit of this settings' kind (any unit of the table here).
    virtual bool IsUnitOfKind(long unit) const;

    // The abbreviation of `unit` (the unit table: "dec", "" for DMS, "deg",
    // "grad", "" for Gon, "gon", "rev", "rad", "m", "fts", "fti"; with
    // `secondsOnly` "\"" for 11 to 13 and "cc" for 14 to 16). Returns 0 and an
    // empty text when `unit` is not a unit.
    static int UnitAbbreviation(long unit, std::string& out, int secondsOnly);

    const std::string& Section() const { return m_section; }

protected:
    // `section`, `numberEntry` and `stringEntry` name the settings file keys.
    CNyrUnitSettings(long unit, const char* section, const char* numberEntry, const char* stringEntry);

    int Fail(int status);
    // The stored "(###)" code, or `defaultUnit` when there is none.
    long StoredUnit(long defaultUnit) const;
    // Writes the code and its abbreviation; 0 (and a status) when the file
    // cannot be written.
    int Persist(long unit);
    // Makes `unit` current and persists it (saving a selection); 0 when it is
    // not a unit of this kind. The write's success does not count: the unit
    // is current either way, and a failed write leaves a status.
    int SaveUnit(long unit);
    // The DefaultSettings algorithm: `ignoredCode` and 2 are silently ignored;
    // `excluded` ends at its first value that is not positive (may be null).
    int ApplyDefault(long unit, long ignoredCode, const int* excluded);
    static bool IsExcluded(long unit, const int* excluded);

private:
    CNyrFormat m_format;
    std::string m_section;
    const char* m_numberEntry;
    const char* m_stringEntry;
    int m_status = NYR_UNIT_SETTINGS_OK;
};

// The distance unit: metres (21) at construction. Section
// "CNyrUnitSettingsDistance", entries "UnitDistance Format (###)" and "(str)".
class NYR_EXPORT CNyrUnitSettingsDistance : public CNyrUnitSettings
{
public:
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The selection list of distance units (nyrwidgets/values/unit_combo_box.h).
    class CUnitDistanceComboBox;

    CNyrUnitSettingsDistance();
    // The process-wide distance settings, created on first use.
    static CNyrUnitSettingsDistance& Default();

    // Establishes the host's default distance unit, once at start-up:
    // 20 and 2 are ignored; a code that is not a distance unit does nothing
    // but set NYR_UNIT_SETTINGS_NOT_A_UNIT; a stored distance unit is made
    // current; otherwise `unit` is stored and made current. Returns 1 when a
    // unit was made current.
    static int DefaultSettings(long unit);

    bool IsUnitOfKind(long unit) const override;

    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // Fills the list with the distance units in table order, each entry's
    // data its unit code, and selects the stored unit ("(###)" read with
    // default 21, so Metres when nothing is stored; when the stored code is
    // not listed, the current unit).
    void InitializeUnitDistanceComboBox(CUnitDistanceComboBox& list);
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The unit code of the list's selected entry; -1 when none is selected.
    long GetCurrentSelection(const CUnitDistanceComboBox& list) const;
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // Makes the selected unit current and stores it; when it differs from
    // the unit that was current and `notifyRoot` is not null, sends
    // WM_NYR_UNIT_CHANGED_DISTANCE (old code, new code) synchronously to every
    // descendant of `notifyRoot`, depth first, before returning. `notifyRoot`
    // must be alive (a raw pointer cannot be tested; pass null when unsure).
    // Returns 0 (with a status) when no unit is selected.
    int SaveCurrentSelection(const CUnitDistanceComboBox& list, QWidget* notifyRoot);
};

// The angle unit: DMS (12) at construction. Section "CNyrUnitSettingsAngle",
// entries "UnitAngle Format (###)" and "(str)". Adds the angle display flags.
class NYR_EXPORT CNyrUnitSettingsAngle : public CNyrUnitSettings
{
public:
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The selection list of angle units (nyrwidgets/values/unit_combo_box.h).
    class CUnitAngleComboBox;

    CNyrUnitSettingsAngle();
    static CNyrUnitSettingsAngle& Default();

    // As CNyrUnitSettingsDistance::DefaultSettings, for angles: 10 and 2 are
    // ignored; `excluded` lists units this host does not offer, ended by its
    // first value that is not positive (may be null). An excluded `unit`
    // does nothing (NYR_UNIT_SETTINGS_EXCLUDED); an excluded stored unit is
    // replaced by `unit`.
    static int DefaultSettings(long unit, const int* excluded);

    bool IsUnitOfKind(long unit) const override;

    int UseDmsSymbols() const { return Format().UseDmsSymbols(); }
    void UseDmsSymbols(int on) { Format().UseDmsSymbols(on); }
    int UseSecOnly() const { return Format().UseSecOnly(); }
    void UseSecOnly(int on) { Format().UseSecOnly(on); }
    int TrimLeadingZeros() const { return Format().TrimLeadingZeros(); }
    void TrimLeadingZeros(int on) { Format().TrimLeadingZeros(on); }
    // Plain angles that follow these settings are kept in [0°, 360°): see
    // CNyrValueAngle.
    int LimitToCircle() const { return Format().LimitToCircle(); }
    void LimitToCircle(int on) { Format().LimitToCircle(on); }

    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // Fills the list with the angle units in table order except those in
    // `excluded` and selects the unit stored in this object's section
    // (default -1). When no listed unit is stored, the current unit is
    // selected, or the first entry when the current unit is not listed.
    void InitializeUnitAngleComboBox(CUnitAngleComboBox& list, const int* excluded = nullptr);
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The unit code of the list's selected entry; -1 when none is selected.
    long GetCurrentSelection(const CUnitAngleComboBox& list) const;
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // As for distances, with WM_NYR_UNIT_CHANGED_ANGLE (also for the
    // latitude/longitude settings).
    int SaveCurrentSelection(const CUnitAngleComboBox& list, QWidget* notifyRoot);

protected:
    explicit CNyrUnitSettingsAngle(const char* section);
};

// The unit of latitudes and longitudes: DMS (12) at construction. Section
// "CNyrUnitSettingsAngleLatLon", entries as for angles.
class NYR_EXPORT CNyrUnitSettingsAngleLatLon : public CNyrUnitSettingsAngle
{
public:
    CNyrUnitSettingsAngleLatLon();
    static CNyrUnitSettingsAngleLatLon& Default();
    static int DefaultSettings(long unit, const int* excluded);
};

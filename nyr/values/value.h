#pragma once

#include <cstddef>
#include <string>

#include "nyr/platform/export.h"
#include "nyr/values/format.h"

class CNyrUnitSettings;

// Status words of the values (Status(), IsValid()).
enum eNyrValueStatus
{
    NYR_VALUE_OK = 0,
    NYR_VALUE_WRONG_UNIT = 1,     // a unit code that is not of the value's kind
    NYR_VALUE_UNREADABLE = 2,     // text without a number, or with more than can be read
    NYR_VALUE_OUT_OF_RANGE = 3,   // not finite, beyond the magnitude limit, a field beyond its limit,
                                  // a latitude beyond 90°
    NYR_VALUE_NEGATIVE_ZERO = 4,  // no longer set: "-0" reads as zero, as strtod reads it
    NYR_VALUE_TOO_LONG = 5,       // text longer than kMaxTextLength
    NYR_VALUE_WRONG_KIND = 6,     // assigned from a value of another kind
};

// A number with a unit kind, held in the standard unit of its kind (radians
// or metres) and shown and entered in the unit of the settings it follows
// (by default the process-wide settings of its kind).
//
// Every way of setting a value checks it first. A value that is not finite,
// beyond the kind's magnitude limit (angles 1e7 rad, about 1.6 million turns,
// so whole degrees and gon fit their fields; distances 1e12 m), a text that
// cannot be read, a text longer than kMaxTextLength (white space around it
// not counted) or a unit that is not of the value's kind leaves the stored
// value unchanged and sets a status (eNyrValueStatus). Zero is stored
// without a sign: "-0" and "-1e-400" read as zero. A failure stays in the
// status until Status() reads it; later successes do not clear it.
//
// Copying copies the number, the settings followed and the status.
// Assigning another value assigns its number only, through the kind's checks.
class NYR_EXPORT CNyrValue
{
public:
    static constexpr std::size_t kMaxTextLength = 256;

    virtual ~CNyrValue();

    // Numbers are in the standard unit (radians, metres).
    CNyrValue& operator=(double standardValue);
    CNyrValue& operator=(float standardValue);
    CNyrValue& operator=(int standardValue);
    CNyrValue& operator=(long standardValue);
    CNyrValue& operator=(short standardValue);
    CNyrValue& operator=(unsigned int standardValue);
    CNyrValue& operator=(unsigned long standardValue);
    CNyrValue& operator=(unsigned short standardValue);
    // Text in the current display unit (SetString).
    CNyrValue& operator=(const char* text);
    CNyrValue& operator=(const std::string& text);
    // The other value's number; NYR_VALUE_WRONG_KIND when it is an angle and
    // this a distance or the other way round.
    CNyrValue& operator=(const CNyrValue& other);

    operator double() const { return m_value; }  // NOLINT(google-explicit-constructor): a value reads as its number
    double GetDouble() const { return m_value; }
    // Returns the status of this assignment (0: stored).
    int SetDouble(double standardValue);

    bool IsValid() const { return m_status == NYR_VALUE_OK; }
    // The last failure; reading resets it to 0.
    int Status();

    CNyrUnitSettings& UnitSettings() const { return *m_settings; }
    // The abbreviation of the followed settings' current unit.
    void GetUnitAbbreviation(std::string& out) const;

    // Sets the value from a number given in `unit` (packed for DMS and Gon).
    // Returns the status of this operation (0: stored).
    int ConvertToStd(double value, long unit);
    // Sets the value from text in `unit`, read as StringToNumber reads it;
    // with the followed format's seconds-only on, text in the angle units 11
    // to 16 is a decimal number of seconds (cc), as GetString shows it.
    int ConvertToStd(const char* text, long unit);
    // The value in `unit`. `precision` (negative: full) goes to the packed
    // conversions: decimals of the packed number, raised by 5 for DMS and
    // Gon so that it counts the decimals of the seconds (cc).
    int ConvertStdTo(double& out, long unit, int precision = -1);
    // The value as text in `unit` with the followed settings' format.
    int ConvertStdTo(std::string& out, long unit);

    // The text in the followed settings' current unit (empty on failure).
    void GetString(std::string& out);
    // Reads text in the followed settings' current unit; 1 on success, 0 and
    // a status otherwise.
    int SetString(const char* text);
    // The value in its standard unit for logs and exports, whatever the
    // display unit: angles "%s [%s]" with radians to 10 decimals
    // (" 0.2181661565 [rad]"), distances "%s %s" with metres to 6 decimals
    // (" 12.500000 m").
    virtual void StdFormat(std::string& out) const = 0;

    // Reads a number in `unit` from text (packed for DMS and Gon); returns
    // the status (0: read). Here: one number as strtod reads it in the C
    // locale, hexadecimal included ("0x10" is 16), text after it ignored
    // ("12.5 m" is 12.5; "m 12.5" cannot be read); an underflow is zero, an
    // overflow out of range.
    virtual int StringToNumber(const char* text, double& out, long unit) const;

    // The standard unit of the kind: 18 (radians) or 21 (metres).
    virtual long StdUnit() const = 0;
    // Whether `unit` is a unit of this value's kind.
    virtual bool CheckUnit(long unit) const = 0;

    // The unit conversion: returns 0 with `out` set, 1 (with `out` 0) when a
    // unit is not one of the codes 11 to 18 and 21 to 23. A conversion to the
    // same code copies the value as it is, whatever the code (intended), and
    // the kinds are not checked (metres to radians is a copy, intended).
    // `precision` and `flags` (eWb32Flags) go to the packed conversions.
    static int Convert(double value, long fromUnit, double& out, long toUnit, int precision, unsigned long flags);

protected:
    // `settings` must outlive the value.
    explicit CNyrValue(CNyrUnitSettings& settings);
    CNyrValue(const CNyrValue&) = default;

    // Stores a number in the standard unit after the checks of the kind;
    // returns the status. Derived kinds add their rules and call this.
    virtual int Assign(double standardValue);
    // The common checks (finite, magnitude); the status, 0 when passed.
    int Check(double standardValue) const;
    virtual double MaxMagnitude() const = 0;
    virtual eNyrGeoKind GeoKind() const { return NYR_GEO_NONE; }
    // Flags (eWb32Flags) for the packed conversions of this value.
    virtual unsigned long PackedFlags() const { return 0; }
    int Fail(int status);

private:
    CNyrUnitSettings* m_settings;
    double m_value = 0.0;
    int m_status = NYR_VALUE_OK;
};

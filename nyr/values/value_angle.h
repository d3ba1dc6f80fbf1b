#pragma once

#include "nyr/values/value.h"

// An angle in radians, shown in the angle unit of its settings
// (CNyrUnitSettingsAngle::Default() unless given).
//
// LimitToCircle (on the followed settings): every value stored is reduced
// into [0, 2 pi): -90° is kept as 270°, 360° as 0°; and a text that rounds up
// to a full turn shows as 0.
//
// Reading text (StringToNumber):
//  - a hemisphere letter anywhere in the text, the first character of text
//    NYR_IDS_HEMISPHERE_SOUTH ("S") or NYR_IDS_HEMISPHERE_WEST ("W") as loaded once per process, exact case,
//    makes the angle negative; it multiplies whatever sign the number has,
//    so "-12 S" is positive (intended, the two cancel);
//  - Degree, Decimal DMS, Grad, Decimal Gon, Revolution, Radians: one number
//    as strtod reads it, text after it ignored ("12.5°" is 12.5);
//  - DMS and Gon: every character other than digits, '-' and '.' separates
//    fields (symbols, letters, blanks), then the fields are read as
//    sscanf's "%d%d%f" reads them: whole degrees (gon), whole minutes (c),
//    decimal seconds (cc), up to the first that cannot be read; missing
//    fields are 0 and what follows the third is not read. So "12°30'15.5""
//    is 12° 30' 15.5", "12.5" is 12° ("%d" stops at the point), "12 30.5" is
//    12° 30' 0.5", "12-30" is -(12° 30'), "12 30 15 4" is 12° 30' 15".
//    Minutes and seconds of 60 (100) or more carry: "12 60 00" is 13°. The
//    angle is negative when any field is read with '-': "-12 30 15" and
//    "12 -30 15" alike.
//    Where it departs from "%d%d%f", deliberately:
//    - so that the library's own texts read back: blanks may stand between
//      a '-' and its digits (the sign field of "-  5 30 00.00000", where
//      "%d" would stop), and the '-' of a zero field counts ("-0 30 00" is
//      negative, as a custom format writes 0° 30' below zero; "%d" reads
//      -0 as 0);
//    - stricter: a text in which not even the first field can be read is
//      refused (sscanf leaves every field 0, which would set a zero angle),
//      whole units or minutes beyond the range of int and seconds of 1e9 or
//      more are out of range (sscanf's result is undefined there).
//  - for every unit, white space around the text does not count toward
//    kMaxTextLength, and a negative zero reads as zero.
// A text that is refused leaves the value as it was.
class NYR_EXPORT CNyrValueAngle : public CNyrValue
{
public:
    explicit CNyrValueAngle(double radians = 0.0);
    CNyrValueAngle(double radians, CNyrUnitSettings& settings);
    CNyrValueAngle(const CNyrValueAngle&) = default;
    CNyrValueAngle& operator=(const CNyrValueAngle& other);
    using CNyrValue::operator=;

    // Flags (eWb32Flags) for every conversion of this angle into a packed
    // unit, on top of the settings' own (WB32_FLAG_ONE_TURN with
    // LimitToCircle). 0 at construction; not copied by assignment.
    void SetFlag(unsigned long flags) { m_flags = flags; }
    unsigned long GetFlag() const { return m_flags; }

    int StringToNumber(const char* text, double& out, long unit) const override;
    void StdFormat(std::string& out) const override;
    long StdUnit() const override;
    bool CheckUnit(long unit) const override;

protected:
    // For the latitude and longitude classes, which check the initial value themselves.
    explicit CNyrValueAngle(CNyrUnitSettings& settings);

    int Assign(double radians) override;
    double MaxMagnitude() const override;
    unsigned long PackedFlags() const override;

private:
    unsigned long m_flags = 0;
};

// A latitude, shown with a two-place degree field and N or S instead of a
// sign, in the unit of CNyrUnitSettingsAngleLatLon::Default() unless given.
// Values beyond ±90° (±pi/2) are refused with NYR_VALUE_OUT_OF_RANGE, except
// that up to 1e-8 rad (0.002") beyond is taken as the pole itself, so that a
// pole written with a rounded last digit (1.57079633 rad) reads back.
// LimitToCircle does not apply.
class NYR_EXPORT CNyrValueAngleLat : public CNyrValueAngle
{
public:
    explicit CNyrValueAngleLat(double radians = 0.0);
    CNyrValueAngleLat(double radians, CNyrUnitSettings& settings);
    CNyrValueAngleLat(const CNyrValueAngleLat&) = default;
    CNyrValueAngleLat& operator=(const CNyrValueAngleLat& other);
    using CNyrValue::operator=;

protected:
    int Assign(double radians) override;
    eNyrGeoKind GeoKind() const override;
    unsigned long PackedFlags() const override;
};

// A longitude, shown with E or W instead of a sign, in the unit of
// CNyrUnitSettingsAngleLatLon::Default() unless given. Every value stored is
// reduced into (-180°, 180°]: 190° is kept as -170° (W), -180° as 180° (E),
// and so is anything within 1e-12 rad (2e-7") of ±180°, so that 180° reached
// through a rounded conversion factor stays E. LimitToCircle does not apply.
class NYR_EXPORT CNyrValueAngleLon : public CNyrValueAngle
{
public:
    explicit CNyrValueAngleLon(double radians = 0.0);
    CNyrValueAngleLon(double radians, CNyrUnitSettings& settings);
    CNyrValueAngleLon(const CNyrValueAngleLon&) = default;
    CNyrValueAngleLon& operator=(const CNyrValueAngleLon& other);
    using CNyrValue::operator=;

protected:
    int Assign(double radians) override;
    eNyrGeoKind GeoKind() const override;
    unsigned long PackedFlags() const override;
};

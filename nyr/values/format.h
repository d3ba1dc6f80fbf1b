#pragma once

#include <string>

#include "nyr/platform/export.h"

// What an angle text stands for: a plain angle carries a sign field; a
// latitude or longitude carries a hemisphere letter instead (N/S, E/W).
enum eNyrGeoKind
{
    NYR_GEO_NONE = 0,
    NYR_GEO_LATITUDE = 1,
    NYR_GEO_LONGITUDE = 2,
};

// Turns a number held in a standard unit (radians for angle units, metres for
// distance units) into the text of a display unit. Every text uses '.' as the
// decimal point whatever the process locale.
//
// Decimal text: every unit except DMS (12) and Gon (15), and those two as
// well when seconds-only is on.
//   - precision 0 or less gives 6 decimals (intended: 0 cannot be asked for);
//   - "% .*f": a blank in front of a non-negative number, '-' in front of a
//     negative one, so columns line up; a negative number that rounds to
//     zero keeps its '-', as printf shows it (-0.004 at precision 2 is
//     "-0.00", which reads back as zero);
//   - ".0" appended when the text has no point;
//   - TrimTrailingZeros removes zeros from the end down to one decimal:
//     12.500000 -> 12.5, 3.000000 -> 3.0.
//   Decimal DMS (13) and Decimal Gon (16) show the packed number itself,
//   rounded to the precision (12.301550), its digits made as the field
//   text's are. With UseSecOnly the sexagesimal units (11, 12, 13) show the
//   angle in arc seconds and the centesimal ones (14, 15, 16) in cc: 0° 30'
//   is 1800.000000.
//
// Field text: DMS (12) and Gon (15) with seconds-only off. The angle in
// degrees (gon) is radians / factor as a double; the fields come from that
// double's exact value, the seconds rounded once, half away from zero, at the
// precision (0 to 15 decimals) and carried, so no field reaches 60 (100) and
// every digit shown is the correctly rounded one at any magnitude (packing at
// precision + 5 first and rounding the packed number again would round
// twice). Layout, as masks NYR_IDS_MASK_ANGLE_DMS to NYR_IDS_MASK_LATLONG_GON show it:
//
//   angle       "-000° 00' 00.00000\""   sign field ("-" or a blank), degrees in 3 places
//   latitude    "00° 00' 00.00000\" N"   no sign field, degrees in 2 places, N or S
//   longitude   "000° 00' 00.00000\" W"  no sign field, degrees in 3 places, E or W
//   gon         "-000g 00c 00.00000cc"   the same with g, c and cc
//
//   - degrees "%3d" ("%2d" for latitudes), minutes "%02d", fields separated
//     by one blank;
//   - seconds "%08.5f" when the precision is 5 or less (intended: a smaller
//     precision rounds the seconds but still shows five decimals), otherwise
//     "%0*.*f" with width precision + 3;
//   - UseDmsSymbols puts the field's symbol right after each field: ° ' "
//     (texts NYR_IDS_SYMBOL_DEGREE, "'", NYR_IDS_SYMBOL_SECONDS) or g c cc; the symbols and the hemisphere
//     letters (NYR_IDS_HEMISPHERE_NORTH to NYR_IDS_HEMISPHERE_WEST) are loaded from the text table once per
//     process, on first use;
//   - TrimLeadingZeros drops a leading degrees field of 0 and then a leading
//     minutes field of 0; the first field shown is then padded with blanks
//     instead of zeros (" 30' 15.50000\"", " 15.50000\""). Such texts are
//     for display: the reader takes fields by position, so they do not read
//     back as the same angle;
//   - TrimTrailingZeros drops a trailing seconds field of 0 and then a
//     trailing minutes field of 0 (" 12°"), and trims the seconds' decimals
//     as in the decimal text; at least one field always stays;
//   - a zero angle, including one that rounds to zero, has a blank sign and
//     the hemisphere N or E;
//   - with LimitToCircle a plain angle that rounds up to a full turn shows as
//     0 (359° 59' 59.999999" at precision 5 is "   0 00 00.00000").
//
// Custom format (Format(const char*)): replaces the field layout of DMS and
// Gon. Placeholders:
//   %degOrG   whole degrees (gon), with '-' in front of a negative angle
//   %minOrC   minutes (c), two digits
//   %secOrCC  seconds (cc), two integer digits and the decimals of the
//             field text
//   %DegOrG, %MinOrC, %SecOrCC   the same followed by the unit's symbol
//             (° ' " or g c cc), whatever UseDmsSymbols says, so one format
//             serves both units: "%DegOrG %MinOrC %SecOrCC" gives
//             12° 30' 15.50000" and 12g 34c 56.00000cc
//   %%        a percent sign; anything else is copied as it stands.
// A latitude or longitude gets a blank and its hemisphere letter after the
// custom text; the field widths and the leading-zero trim do not apply.
class NYR_EXPORT CNyrFormat
{
public:
    // `unit` sets the abbreviation; a non-empty `customFormat` is applied at once.
    explicit CNyrFormat(long unit, int useSecOnly = 0, int limitToCircle = 0, const char* customFormat = nullptr);
    virtual ~CNyrFormat();
    CNyrFormat(const CNyrFormat&) = default;
    CNyrFormat& operator=(const CNyrFormat&) = default;

    // The abbreviation text as given.
    virtual void SetUnitAbbreviation(const char* abbreviation);
    // The abbreviation of `unit` from the unit table, honouring UseSecOnly;
    // empty for a code that is not a unit.
    virtual void SetUnitAbbreviation(long unit);
    virtual void GetUnitAbbreviation(std::string& out) const;

    // The custom format text; empty when the fixed layout is used.
    virtual const std::string& Format() const;
    // Sets the custom format for both DMS and Gon (null or empty: back to the
    // fixed layout).
    virtual void Format(const char* customFormat);
    // Sets separate custom formats for DMS and for Gon (null or empty: the
    // fixed layout for that unit); Format() then reads empty.
    virtual void CustomFormat(const char* dmsFormat, const char* gonFormat);

    // Number of decimals, 0 to 15 (stored clamped); 6 at construction.
    virtual void Precision(int precision);
    virtual int Precision() const;

    // The text of `value` (radians or metres) in `unit`, as described above.
    // Returns 1; returns 0 with an empty text when `unit` is not a unit, the
    // value is not finite, or its whole degrees (gon) do not fit an int.
    virtual int ConvertToString(double value, long unit, std::string& out) const;
    // The same for a latitude or longitude; `packedFlags` (eWb32Flags) are
    // added to those of the format when the angle is packed.
    virtual int ConvertToString(double value, long unit, std::string& out, eNyrGeoKind kind,
                                unsigned long packedFlags) const;

    // The unit the format stands for; setting it sets the abbreviation.
    long Unit() const { return m_unit; }
    void Unit(long unit);

    int UseDmsSymbols() const { return m_useDmsSymbols; }  // 1 at construction
    void UseDmsSymbols(int on) { m_useDmsSymbols = on ? 1 : 0; }
    int TrimLeadingZeros() const { return m_trimLeadingZeros; }
    void TrimLeadingZeros(int on) { m_trimLeadingZeros = on ? 1 : 0; }
    int TrimTrailingZeros() const { return m_trimTrailingZeros; }
    void TrimTrailingZeros(int on) { m_trimTrailingZeros = on ? 1 : 0; }
    // Seconds-only also switches the abbreviation to its seconds form.
    int UseSecOnly() const { return m_useSecOnly; }
    void UseSecOnly(int on);
    int LimitToCircle() const { return m_limitToCircle; }
    void LimitToCircle(int on) { m_limitToCircle = on ? 1 : 0; }

private:
    void SetCustomPieces(const char* dmsFormat, const char* gonFormat);
    // The field text of DMS (base 60) and Gon (base 100); 0 when the whole
    // units do not fit an int.
    int FieldText(double value, int base, eNyrGeoKind kind, unsigned long flags, std::string& out) const;
    void DecimalText(double value, long unit, eNyrGeoKind kind, unsigned long flags, std::string& out) const;

    std::string m_abbreviation;
    std::string m_customFormat;
    std::string m_customDms;  // m_customFormat with the capitalised placeholders spelt out for DMS
    std::string m_customGon;  // ... and for gon
    long m_unit;
    int m_useDmsSymbols = 1;
    int m_trimLeadingZeros = 0;
    int m_trimTrailingZeros = 0;
    int m_useSecOnly;
    int m_limitToCircle;
    int m_precision = 6;
};

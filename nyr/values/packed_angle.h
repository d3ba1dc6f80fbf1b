#pragma once

#include "nyr/platform/export.h"

// Packed angles: one double whose decimal digits carry several fields.
//
//   sexagesimal (DMS, units 12 and 13)   DDD.MMSSsss   12.301550 = 12° 30' 15.50"
//   centesimal  (gon, units 15 and 16)   GGG.CCcc...   12.345678 = 12g 34c 56.78cc
//
// The whole part is degrees (gon); the first two decimals are minutes
// (centigon, c); the rest are seconds (centi-centigon, cc) with their
// fraction, the point standing after the next two digits. The sign belongs to
// the whole number: -0.3 is -(0° 30'), so angles under one degree keep it.
// A packed gon number is therefore the decimal gon value itself; a packed DMS
// number is not a decimal number of anything.
//
// Reading a packed number (the ...2Rad functions and the splitting forms)
// first rounds it to 12 decimals, and only then splits the decimal digits.
// 12.3000 (the double 12.300000000000000710...) therefore reads as 12° 30' 00"
// and not as 12° 29' 59.99999", and a number that drifted by a few units in
// the last place through arithmetic (12.299999999999999) reads as its
// intended value. Seconds carry 8 decimals (1e-8″, 5e-14 rad). From 563
// degrees on a double holds fewer decimals with room to spare, and reading
// and writing both keep one decimal fewer for every tenfold (11 decimals up
// to 5,629°, 10 up to 56,294°, ...), so that noise in the last places never
// reads as seconds. A field that reaches its limit
// carries into the next one: 12.7500 reads as 12° 75' = 13° 15', and 12.3075
// as 12° 31' 15".
//
// Writing a packed number (Rad2... and the building forms) rounds half away
// from zero at the requested precision and carries 60 seconds into a minute
// and 60 minutes into a degree (100 cc, 100 c for gon), so no field ever
// reaches its limit: 29.999999999° at precision 4 is 30.0000, not 29.5960.
// The result is the double nearest to that decimal, so its shortest form shows
// exactly the digits written.

// Flags of the packed-angle functions.
enum eWb32Flags
{
    WB32_FLAG_NONE = 0,
    // Reduce the angle into one turn, [0°, 360°) or [0g, 400g), after
    // rounding: -90° packs as 270.0000, and 359° 59' 59.9999" at precision 4
    // as 0.0000 rather than 360.0000.
    WB32_FLAG_ONE_TURN = 0x1,
};

// Packed DMS (DDD.MMSSsss) to radians. A number that is not finite, or whose
// magnitude is 2^31 or more (no room for fields), is converted as decimal
// degrees.
NYR_EXPORT double Wb32DMS2Rad(double packedDms);
// Packed gon (GGG.CCcc...) to radians; same rules.
NYR_EXPORT double Wb32GCCC2Rad(double packedGon);

// Radians to packed DMS, rounded to `precision` decimals of the packed number:
// 0 whole degrees, 2 whole minutes, 4 whole seconds, 4 + n seconds with n
// decimals (1 and 3 round to tens of minutes and tens of seconds). A negative
// precision, or one above 12, means 12 (seconds to 8 decimals); it is lowered
// further for large angles as described above. `flags` takes eWb32Flags. Not finite: returned
// unchanged. Magnitudes of 1e15 degrees and more come back as decimal degrees.
NYR_EXPORT double Wb32Rad2DMS(double radians, int precision, unsigned long flags);
// Radians to packed gon; same rules with gon, c and cc.
NYR_EXPORT double Wb32Rad2GCCC(double radians, int precision, unsigned long flags);

// Splits a packed DMS number into its fields: sign (+1 or -1; +1 for a zero
// angle, -0.0 included), whole degrees, minutes (0 to 59) and seconds
// ([0, 60)), the seconds rounded to `precision` decimals (0 to 8; negative or
// larger: 8) with carry into minutes and degrees. `flags` takes eWb32Flags.
// Returns 1; returns 0 and leaves the fields unchanged when the number is not
// finite or the degrees do not fit an int.
NYR_EXPORT int Wb32DMS2DMS(double packedDms, int& sign, int& degrees, int& minutes, double& seconds, int precision,
                           int flags);
// Builds a packed DMS number from a sign (negative: a negative angle) and the
// magnitudes of the three fields (their own signs are ignored). The seconds
// are rounded to `precision` decimals as above and fields at or beyond their
// limit carry (75 minutes = 1° 15'). Returns NaN when the seconds are not
// finite or 1e9 or more.
NYR_EXPORT double Wb32DMS2DMS(int sign, int degrees, int minutes, double seconds, int precision, int flags);

// The same for packed gon: gon, c (0 to 99), cc ([0, 100)).
NYR_EXPORT int Wb32GCCC2GCCC(double packedGon, int& sign, int& gon, int& c, double& cc, int precision, int flags);
NYR_EXPORT double Wb32GCCC2GCCC(int sign, int gon, int c, double cc, int precision, int flags);

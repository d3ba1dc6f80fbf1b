#pragma once

// The packed-angle arithmetic shared by the Wb32 functions, the text forms and
// the parser. Fields are kept as integers so that splitting, rounding and
// carrying are exact; seconds (cc) are counted in units of 1e-8.
namespace nyr::values {

inline constexpr long long kSecondUnits = 100000000;  // units of a second (cc): 1e-8
inline constexpr int kMaxSecondDecimals = 8;

struct PackedFields
{
    bool negative = false;
    long long whole = 0;    // degrees or gon
    long long minutes = 0;  // minutes or c
    long long seconds = 0;  // seconds or cc, in units of 1e-8
};

// base: 60 for DMS, 100 for gon.
bool SplitPacked(double packed, int base, int secondDecimals, unsigned long flags, PackedFields& fields);
// Rounds the seconds to `secondDecimals` (negative or above 8: 8), carries
// fields at or beyond their limit and applies WB32_FLAG_ONE_TURN.
void Normalize(PackedFields& fields, int base, int secondDecimals, unsigned long flags);
// The double nearest to the packed decimal of normalised fields.
double ComposePacked(const PackedFields& fields);
double PackedToRadians(double packed, int base);
double RadiansToPacked(double radians, int base, int precision, unsigned long flags);

}  // namespace nyr::values

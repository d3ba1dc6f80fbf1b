#pragma once

#include <cstdint>

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

// The most decimals of a packed number RoundAngle takes: seconds (cc) to 15.
inline constexpr int kMaxRoundDecimals = 19;

// An angle rounded to the decimals of its packed number, as decimal digits:
// the packed number is whole + fraction / 10^decimals (DDD.MMSSsss).
struct RoundedAngle
{
    bool negative = false;  // the angle is below zero (also when it rounds to zero)
    uint64_t whole = 0;     // degrees or gon
    uint64_t fraction = 0;  // the digits after the point
    int decimals = 0;

    bool IsZero() const { return whole == 0 && fraction == 0; }
    // For decimals >= 4: minutes (c); seconds (cc) in units of
    // 10^-(decimals - 4); their whole part; their decimals as one integer.
    uint64_t Minutes() const;
    uint64_t Seconds() const;
    uint64_t WholeSeconds() const;
    uint64_t SecondDecimals() const;
};

// Rounds the angle in degrees (gon), radians / factor as a double as every
// conversion of the library computes it, from that double's exact value,
// once, half away from zero, to `decimals` (0 to 19) decimals of the packed
// number (0 whole units, 2 minutes, 4 seconds, 4 + n seconds with n
// decimals; 1 and 3 round to tens of minutes and tens of seconds), carries
// 60 (100) into the next field, and applies WB32_FLAG_ONE_TURN after
// rounding. False when not finite or the whole units reach 2^53.
bool RoundAngle(double radians, int base, int decimals, unsigned long flags, RoundedAngle& angle);

}  // namespace nyr::values

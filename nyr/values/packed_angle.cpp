#include "nyr/values/packed_angle.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "nyr/values/packed_angle_p.h"
#include "nyr/values/units_p.h"

namespace nyr::values {

namespace {

constexpr long long kPow10[] = {1LL,          10LL,          100LL,          1000LL,          10000LL,
                                100000LL,     1000000LL,     10000000LL,     100000000LL,     1000000000LL,
                                10000000000LL, 100000000000LL, 1000000000000LL, 10000000000000LL, 100000000000000LL,
                                1000000000000000LL, 10000000000000000LL, 100000000000000000LL,
                                1000000000000000000LL};
constexpr int kPackedDecimals = 12;  // seconds to 8 decimals
// A packed number keeps only the decimals it holds with room to spare: its
// value times 10^decimals stays below 2^53 / 16, so the last decimal kept is
// at least 8 units in the last place of the double. Writing and reading agree
// on this, and noise in the last places never reads as seconds (113000556.05
// is held as 113000556.04999999702 and must read as 05', not 04' 99.999997").
constexpr double kResolved = 9007199254740992.0 / 16;

int DecimalsHeld(double magnitude, int wanted)
{
    int decimals = wanted < 0 || wanted > kPackedDecimals ? kPackedDecimals : wanted;
    while (decimals > 0 && magnitude * static_cast<double>(kPow10[decimals]) >= kResolved)
        --decimals;
    return decimals;
}

double Factor(int base)
{
    return base == 60 ? kDegreeFactor : kGradFactor;
}

long long FullTurn(int base)
{
    return base == 60 ? 360 : 400;
}

__extension__ typedef unsigned __int128 u128;  // GCC and Clang on 64-bit targets

// round(x * scale), half away from zero, from the exact value of the double
// x >= 0 (an integer times a power of two); false when the result reaches
// 2^110.
bool RoundedScaled(double x, uint64_t scale, u128& result)
{
    int exponent = 0;
    const auto mantissa = static_cast<uint64_t>(std::ldexp(std::frexp(x, &exponent), 53));
    const u128 product = static_cast<u128>(mantissa) * scale;  // x * scale = product 2^(exponent - 53)
    const int shift = exponent - 53;
    if (product == 0 || shift < -117) {
        result = 0;  // below 2^117 2^-118: less than half a step
    } else if (shift < 0) {
        const int right = -shift;
        result = (product >> right) + ((product >> (right - 1)) & 1);
    } else {
        if (shift >= 110 || product >> (110 - shift) != 0)
            return false;
        result = product << shift;
    }
    return true;
}

// Steps of the last decimal of a packed number per whole unit.
uint64_t StepsPerUnit(int base, int decimals)
{
    const auto b = static_cast<uint64_t>(base);
    switch (decimals) {
    case 0: return 1;
    case 1: return b / 10;  // tens of minutes (c)
    case 2: return b;
    case 3: return b * b / 10;  // tens of seconds (cc)
    default: return b * b * static_cast<uint64_t>(kPow10[decimals - 4]);
    }
}

}  // namespace

bool SplitPacked(double packed, int base, int secondDecimals, unsigned long flags, PackedFields& fields)
{
    if (!std::isfinite(packed))
        return false;
    const double magnitude = std::fabs(packed);
    if (magnitude >= 2147483648.0)
        return false;

    // The fraction is exact (a double minus its whole part loses nothing);
    // scaled, it is off by a small part of the last decimal kept.
    const double wholePart = std::floor(magnitude);
    const int decimals = DecimalsHeld(magnitude, kPackedDecimals);
    long long whole = static_cast<long long>(wholePart);
    long long fraction = std::llround((magnitude - wholePart) * static_cast<double>(kPow10[decimals]));
    if (fraction == kPow10[decimals]) {
        fraction = 0;
        ++whole;
    }
    fraction *= kPow10[kPackedDecimals - decimals];  // the first 12 decimals
    PackedFields split;
    split.negative = packed < 0;
    split.whole = whole;
    split.minutes = fraction / kPow10[10];
    split.seconds = fraction % kPow10[10];
    Normalize(split, base, secondDecimals, flags);
    fields = split;
    return true;
}

void Normalize(PackedFields& f, int base, int secondDecimals, unsigned long flags)
{
    if (secondDecimals >= 0 && secondDecimals < kMaxSecondDecimals) {
        const long long step = kPow10[kMaxSecondDecimals - secondDecimals];
        f.seconds = (f.seconds + step / 2) / step * step;
    }
    const long long secondLimit = base * kSecondUnits;
    if (f.seconds >= secondLimit) {
        f.minutes += f.seconds / secondLimit;
        f.seconds %= secondLimit;
    }
    if (f.minutes >= base) {
        f.whole += f.minutes / base;
        f.minutes %= base;
    }
    if (flags & WB32_FLAG_ONE_TURN) {
        const long long turn = FullTurn(base);
        f.whole %= turn;
        if (f.negative) {
            // Counted in seconds units the turn is at most 400 * 100 * 100 * 1e8 = 4e14.
            long long total = (f.whole * base + f.minutes) * secondLimit + f.seconds;
            if (total != 0)
                total = turn * base * secondLimit - total;
            f.seconds = total % secondLimit;
            f.minutes = total / secondLimit % base;
            f.whole = total / secondLimit / base;
        }
        f.negative = false;
    }
    if (f.whole == 0 && f.minutes == 0 && f.seconds == 0)
        f.negative = false;  // a zero angle has no sign
}

double ComposePacked(const PackedFields& f)
{
    const long long fraction = f.minutes * kPow10[10] + f.seconds;  // 12 decimals
    double value;
    if (f.whole < 9000)  // whole * 1e12 + fraction stays below 2^53: one correctly rounded division
        value = static_cast<double>(f.whole * kPow10[kPackedDecimals] + fraction) / 1e12;
    else
        value = static_cast<double>(f.whole) + static_cast<double>(fraction) / 1e12;
    return f.negative ? -value : value;
}

double PackedToRadians(double packed, int base)
{
    PackedFields f;
    if (!SplitPacked(packed, base, kMaxSecondDecimals, WB32_FLAG_NONE, f))
        return packed * Factor(base);
    // The fraction of a unit as one exact ratio (numerator below 1e12).
    const double units = static_cast<double>(f.whole) +
                         static_cast<double>(f.minutes * base * kSecondUnits + f.seconds) /
                             static_cast<double>(base * base * kSecondUnits);
    const double radians = units * Factor(base);
    return f.negative ? -radians : radians;
}

uint64_t RoundedAngle::Minutes() const
{
    return fraction / kPow10[decimals - 2];
}

uint64_t RoundedAngle::Seconds() const
{
    return fraction % kPow10[decimals - 2];
}

uint64_t RoundedAngle::WholeSeconds() const
{
    return Seconds() / kPow10[decimals - 4];
}

uint64_t RoundedAngle::SecondDecimals() const
{
    return Seconds() % kPow10[decimals - 4];
}

bool RoundAngle(double radians, int base, int decimals, unsigned long flags, RoundedAngle& angle)
{
    if (!std::isfinite(radians) || decimals < 0 || decimals > kMaxRoundDecimals)
        return false;
    const uint64_t perUnit = StepsPerUnit(base, decimals);
    u128 steps = 0;
    if (!RoundedScaled(std::fabs(radians / Factor(base)), perUnit, steps))
        return false;
    bool negative = radians < 0;
    if (flags & WB32_FLAG_ONE_TURN) {
        const u128 turn = static_cast<u128>(FullTurn(base)) * perUnit;
        steps %= turn;
        if (negative && steps != 0)
            steps = turn - steps;
        negative = false;
    }
    const u128 whole = steps / perUnit;
    if (whole >= (u128{1} << 53))
        return false;
    const auto rest = static_cast<uint64_t>(steps % perUnit);
    angle.negative = negative;
    angle.whole = static_cast<uint64_t>(whole);
    angle.decimals = decimals;
    if (decimals < 2) {
        angle.fraction = rest;  // tens of minutes (c), or nothing
    } else {
        const uint64_t perMinute = perUnit / static_cast<uint64_t>(base);
        angle.fraction = rest / perMinute * kPow10[decimals - 2] + rest % perMinute;
    }
    return true;
}

double RadiansToPacked(double radians, int base, int precision, unsigned long flags)
{
    if (!std::isfinite(radians))
        return radians;
    const double units = radians / Factor(base);
    const bool oneTurn = (flags & WB32_FLAG_ONE_TURN) != 0;
    if (!oneTurn && std::fabs(units) >= 1e15)
        return units;  // beyond a double's resolution of whole units: no fields to pack
    const double magnitude = std::fabs(units);
    const int p = DecimalsHeld(oneTurn ? std::fmin(magnitude, static_cast<double>(FullTurn(base))) : magnitude,
                               precision);
    RoundedAngle angle;
    if (!RoundAngle(radians, base, p, flags, angle))
        return units;  // a turn reduced from beyond 10^20 units: nothing left to resolve
    if (angle.IsZero())
        return 0.0;
    // Below 2^53 (DecimalsHeld): one correctly rounded division.
    const double value = static_cast<double>(angle.whole * kPow10[p] + angle.fraction) / static_cast<double>(kPow10[p]);
    return angle.negative ? -value : value;
}

namespace {

int SplitToInts(double packed, int base, int& sign, int& whole, int& minutes, double& seconds, int precision,
                int flags)
{
    PackedFields f;
    if (!SplitPacked(packed, base, precision, static_cast<unsigned long>(flags), f) || f.whole > INT_MAX)
        return 0;
    sign = f.negative ? -1 : 1;
    whole = static_cast<int>(f.whole);
    minutes = static_cast<int>(f.minutes);
    seconds = static_cast<double>(f.seconds) / static_cast<double>(kSecondUnits);
    return 1;
}

double BuildFromInts(int base, int sign, int whole, int minutes, double seconds, int precision, int flags)
{
    const double magnitude = std::fabs(seconds);
    if (!(magnitude < 1e9))
        return std::numeric_limits<double>::quiet_NaN();
    PackedFields f;
    f.negative = sign < 0;
    f.whole = std::llabs(static_cast<long long>(whole));
    f.minutes = std::llabs(static_cast<long long>(minutes));
    f.seconds = std::llround(magnitude * static_cast<double>(kSecondUnits));
    Normalize(f, base, precision, static_cast<unsigned long>(flags));
    return ComposePacked(f);
}

}  // namespace

}  // namespace nyr::values

using namespace nyr::values;

double Wb32DMS2Rad(double packedDms)
{
    return PackedToRadians(packedDms, 60);
}

double Wb32GCCC2Rad(double packedGon)
{
    return PackedToRadians(packedGon, 100);
}

double Wb32Rad2DMS(double radians, int precision, unsigned long flags)
{
    return RadiansToPacked(radians, 60, precision, flags);
}

double Wb32Rad2GCCC(double radians, int precision, unsigned long flags)
{
    return RadiansToPacked(radians, 100, precision, flags);
}

int Wb32DMS2DMS(double packedDms, int& sign, int& degrees, int& minutes, double& seconds, int precision, int flags)
{
    return SplitToInts(packedDms, 60, sign, degrees, minutes, seconds, precision, flags);
}

double Wb32DMS2DMS(int sign, int degrees, int minutes, double seconds, int precision, int flags)
{
    return BuildFromInts(60, sign, degrees, minutes, seconds, precision, flags);
}

int Wb32GCCC2GCCC(double packedGon, int& sign, int& gon, int& c, double& cc, int precision, int flags)
{
    return SplitToInts(packedGon, 100, sign, gon, c, cc, precision, flags);
}

double Wb32GCCC2GCCC(int sign, int gon, int c, double cc, int precision, int flags)
{
    return BuildFromInts(100, sign, gon, c, cc, precision, flags);
}

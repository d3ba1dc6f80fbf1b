#include "nyr/values/packed_angle.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "nyr/values/packed_angle_p.h"
#include "nyr/values/units_p.h"

namespace nyr::values {

namespace {

constexpr long long kPow10[] = {1LL,          10LL,          100LL,          1000LL,          10000LL,
                                100000LL,     1000000LL,     10000000LL,     100000000LL,     1000000000LL,
                                10000000000LL, 100000000000LL, 1000000000000LL};
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

double RadiansToPacked(double radians, int base, int precision, unsigned long flags)
{
    if (!std::isfinite(radians))
        return radians;
    double units = radians / Factor(base);
    const double turn = static_cast<double>(FullTurn(base));
    if (flags & WB32_FLAG_ONE_TURN) {
        units = std::fmod(units, turn);
        if (units < 0)
            units += turn;
        if (units >= turn)  // a tiny negative angle plus a turn rounds to the turn itself
            units = 0;
    }
    const bool negative = units < 0;
    const double magnitude = std::fabs(units);
    if (magnitude >= 1e15)
        return units;  // beyond a double's resolution of whole units: no fields to pack

    const int p = DecimalsHeld(magnitude, precision);

    const long long b = base;
    long long whole;
    long long minutes;
    long long packed;  // the packed decimal times 10^p
    if (p >= 4) {
        const long long perSecond = kPow10[p - 4];
        const long long n = std::llround(magnitude * static_cast<double>(b * b * perSecond));
        const long long seconds = n % (b * perSecond);
        const long long rest = n / (b * perSecond);
        minutes = rest % b;
        whole = rest / b;
        if ((flags & WB32_FLAG_ONE_TURN) && whole >= FullTurn(base))
            whole -= FullTurn(base);
        packed = whole * kPow10[p] + minutes * kPow10[p - 2] + seconds;
    } else {
        // Steps of tens of minutes, minutes and tens of seconds, in seconds.
        const long long step[] = {b * b, 10 * b, b, 10};
        const long long total = std::llround(magnitude * static_cast<double>(b * b) / static_cast<double>(step[p])) *
                                step[p];
        const long long seconds = total % b;
        minutes = total / b % b;
        whole = total / (b * b);
        if ((flags & WB32_FLAG_ONE_TURN) && whole >= FullTurn(base))
            whole -= FullTurn(base);
        const long long fieldDigits[] = {0, minutes / 10, minutes, minutes * 10 + seconds / 10};
        packed = whole * kPow10[p] + fieldDigits[p];
    }
    if (packed == 0)
        return 0.0;
    const double value = static_cast<double>(packed) / static_cast<double>(kPow10[p]);
    return negative ? -value : value;
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

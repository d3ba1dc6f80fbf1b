#pragma once

// Conversion factors of the unit table: the standard unit (radians, metres)
// per display unit. Evaluated at compile time; the doubles are the same ones
// a run-time computation in double precision gives.
namespace nyr::values {

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kDegreeFactor = kPi / 180.0;
inline constexpr double kGradFactor = kPi / 200.0;
inline constexpr double kRevolutionFactor = kPi + kPi;
inline constexpr double kUsSurveyFootFactor = 0.3048006096012192;  // 1200/3937
inline constexpr double kInternationalFootFactor = 0.3048;

// The abbreviation of a unit code ("dec", "fts", ...; "\"" or "cc" for the
// sexagesimal and centesimal units when seconds-only is on); null when the
// code is not a unit.
const char* UnitAbbreviation(long unit, bool secondsOnly);

}  // namespace nyr::values

namespace nyr::values {

// True for the codes 11 to 23 except 19 and 20: the codes the conversion takes.
inline bool IsConvertibleUnit(long unit)
{
    return unit >= 11 && unit <= 23 && unit != 19 && unit != 20;
}

// The unit conversion in five steps (CNyrValue::Convert).
int ConvertUnits(double value, long fromUnit, double& out, long toUnit, int precision, unsigned long flags);

}  // namespace nyr::values

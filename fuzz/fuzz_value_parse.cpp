// The angle and distance readers on arbitrary text, in every unit, as plain
// angles, latitudes, longitudes and distances. Whatever a reader accepts must
// be a finite value within its kind's limits whose text reads back to nearly
// the same value; whatever it refuses must leave the value untouched. The
// first eight bytes also go through the packed-angle splitting as a double.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "nyr/values/packed_angle.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/value_angle.h"
#include "nyr/values/value_distance.h"

namespace {

constexpr double kUntouched = 0.25;

// Half a step of the last digit the default text shows, in the standard unit.
double TextResolution(long unit)
{
    const double degree = 3.141592653589793 / 180, gon = 3.141592653589793 / 200;
    switch (unit) {
    case NYR_UNIT_DEGREE: return 1e-6 * degree;
    case NYR_UNIT_DMS: return 1e-6 / 3600 * degree;
    case NYR_UNIT_DECIMAL_DMS: return 1e-2 / 3600 * degree;
    case NYR_UNIT_GRAD: return 1e-6 * gon;
    case NYR_UNIT_GON: return 1e-10 * gon;
    case NYR_UNIT_DECIMAL_GON: return 1e-6 * gon;
    case NYR_UNIT_REVOLUTION: return 1e-6 * 2 * 3.141592653589793;
    case NYR_UNIT_US_SURVEY_FEET:
    case NYR_UNIT_INTERNATIONAL_FEET: return 1e-6 * 0.31;
    default: return 1e-6;
    }
}

// `turn`: the length of a turn when values equal modulo a turn are the same
// (longitudes: 180° W and 180° E), else 0.
void Check(CNyrValue& value, CNyrUnitSettings& settings, long unit, const char* text, double turn = 0)
{
    settings.Unit(unit);
    value.SetDouble(kUntouched);
    value.Status();
    const int status = value.ConvertToStd(text, unit);
    if (status != value.Status())
        abort();
    const double read = value.GetDouble();
    if (status != NYR_VALUE_OK) {
        if (read != kUntouched)
            abort();
        return;
    }
    if (!std::isfinite(read) || (read == 0 && std::signbit(read)))
        abort();
    std::string shown;
    value.GetString(shown);
    if (shown.empty() || value.ConvertToStd(shown.c_str(), unit) != NYR_VALUE_OK)
        abort();
    // Reading the text back must land within its last digit (with room for
    // the rounding of large magnitudes).
    const double difference = turn ? std::remainder(value.GetDouble() - read, turn) : value.GetDouble() - read;
    if (std::fabs(difference) > 2 * TextResolution(unit) + 1e-15 * std::fabs(read))
        abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CNyrUnitSettingsAngle angles;
    static CNyrUnitSettingsAngleLatLon latLons;
    static CNyrUnitSettingsDistance distances;
    static CNyrValueAngle angle(0.0, angles);
    static CNyrValueAngleLat lat(0.0, latLons);
    static CNyrValueAngleLon lon(0.0, latLons);
    static CNyrValueDistance distance(0.0, distances);

    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const NYR_UNIT_TEXT* row = NyrUnitTableAngle(); row->unit != -1; ++row) {
        Check(angle, angles, row->unit, text.c_str());
        Check(lat, latLons, row->unit, text.c_str());
        Check(lon, latLons, row->unit, text.c_str(), 2 * 3.141592653589793);
    }
    for (const NYR_UNIT_TEXT* row = NyrUnitTableDistance(); row->unit != -1; ++row)
        Check(distance, distances, row->unit, text.c_str());

    if (size >= sizeof(double)) {
        double packed;
        std::memcpy(&packed, data, sizeof packed);
        int sign = 0, whole = 0, minutes = 0;
        double seconds = 0;
        if (Wb32DMS2DMS(packed, sign, whole, minutes, seconds, 5, 0) &&
            (whole < 0 || minutes < 0 || minutes >= 60 || !(seconds >= 0 && seconds < 60)))
            abort();
        if (Wb32GCCC2GCCC(packed, sign, whole, minutes, seconds, 5, 0) &&
            (whole < 0 || minutes < 0 || minutes >= 100 || !(seconds >= 0 && seconds < 100)))
            abort();
    }
    return 0;
}

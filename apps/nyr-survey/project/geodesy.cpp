#include "apps/nyr-survey/project/geodesy.h"

#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/UTMUPS.hpp>
#include <cmath>
#include <numbers>

namespace survey {

namespace {

constexpr double kDeg = std::numbers::pi / 180.0;

bool LatitudeOk(double lat)
{
    return std::isfinite(lat) && std::fabs(lat) <= std::numbers::pi / 2;
}

}  // namespace

Geodesic InverseGeodesic(double lat1, double lon1, double lat2, double lon2)
{
    const double nan = std::nan("");
    if (!LatitudeOk(lat1) || !LatitudeOk(lat2) || !std::isfinite(lon1) || !std::isfinite(lon2))
        return {nan, nan};
    double s12 = 0.0, azi1 = 0.0, azi2 = 0.0;
    GeographicLib::Geodesic::WGS84().Inverse(lat1 / kDeg, lon1 / kDeg, lat2 / kDeg, lon2 / kDeg, s12, azi1, azi2);
    double azimuth = azi1 * kDeg;
    if (azimuth < 0.0)
        azimuth += 2 * std::numbers::pi;
    if (azimuth >= 2 * std::numbers::pi)  // -tiny + 2 pi rounds up to 2 pi
        azimuth = 0.0;
    return {s12, azimuth};
}

bool LatLonToUtm(double lat, double lon, UtmPosition& utm, int zone)
{
    if (!std::isfinite(lat) || !std::isfinite(lon) || lat > 84.0 * kDeg || lat < -80.0 * kDeg)
        return false;
    try {
        int z = 0;
        bool north = true;
        GeographicLib::UTMUPS::Forward(lat / kDeg, lon / kDeg, z, north, utm.easting, utm.northing,
                                       zone > 0 ? zone : GeographicLib::UTMUPS::STANDARD);
        utm.zone = z;
        utm.north = north;
        return true;
    } catch (const GeographicLib::GeographicErr&) {
        return false;
    }
}

bool UtmToLatLon(const UtmPosition& utm, double& lat, double& lon)
{
    if (utm.zone < 1 || utm.zone > 60 || !std::isfinite(utm.easting) || !std::isfinite(utm.northing))
        return false;
    try {
        double latDeg = 0.0, lonDeg = 0.0;
        GeographicLib::UTMUPS::Reverse(utm.zone, utm.north, utm.easting, utm.northing, latDeg, lonDeg);
        lat = latDeg * kDeg;
        lon = lonDeg * kDeg;
        return true;
    } catch (const GeographicLib::GeographicErr&) {
        return false;
    }
}

}  // namespace survey

#pragma once

// The geodesy the survey points need, on the WGS84 ellipsoid through
// GeographicLib. Angles here are in radians, distances in metres.
namespace survey {

// The geodesic from point 1 to point 2: its length (metres) and its azimuth
// at point 1 (radians clockwise from north, in [0, 2 pi)). Both NaN when an
// input is not finite or a latitude lies beyond +-90 degrees.
struct Geodesic
{
    double distance;
    double azimuth;
};
Geodesic InverseGeodesic(double lat1, double lon1, double lat2, double lon2);

// A UTM grid position: zone 1..60, northern hemisphere flag, easting and
// northing in metres (false easting 500 km, false northing 10,000 km south).
struct UtmPosition
{
    int zone = 32;
    bool north = true;
    double easting = 0.0;
    double northing = 0.0;
};

// Latitude/longitude to UTM in the given zone (or, with zone 0, the
// standard zone of the point). False when the point is outside the UTM
// range (beyond 84 N / 80 S) or not finite.
bool LatLonToUtm(double lat, double lon, UtmPosition& utm, int zone = 0);
// The inverse: false when the grid position is impossible.
bool UtmToLatLon(const UtmPosition& utm, double& lat, double& lon);

}  // namespace survey

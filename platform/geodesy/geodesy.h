#ifndef GEODESY_GEODESY_H
#define GEODESY_GEODESY_H

#include "simulationdata/simulationdata_export.h"

/// Geodesics on the WGS 84 ellipsoid. Points are longitude first everywhere.
///
/// The geodesics are those of C. F. F. Karney, "Algorithms for geodesics",
/// J. Geodesy 87 (2013), accurate to about 15 nanometres. No function throws. Any
/// thread may call every function.
namespace Geodesy {

/// A point on the ellipsoid, longitude first. Any longitude is taken modulo 360. A
/// point with a latitude outside [-90, 90] lies outside the globe.
struct Point
{
    double longitude = 0.0; ///< degrees, east positive
    double latitude = 0.0;  ///< degrees, north positive
};

/// The azimuth at `a_from` of the geodesic to `a_to`, in degrees clockwise from
/// north, [0, 360). 0 for coincident points, and when a point lies outside the globe
/// or is not finite.
[[nodiscard]] SIMULATIONDATA_EXPORT double azimuth(const Point& a_from, const Point& a_to);

/// The length of the geodesic between two points, in kilometres. NaN when a point
/// lies outside the globe or is not finite.
[[nodiscard]] SIMULATIONDATA_EXPORT double distance(const Point& a_from, const Point& a_to);

/// The end of a geodesic. The geodesic starts at `a_start` in the direction
/// `a_dAzimuth` (degrees clockwise from north) and is `a_dDistance` kilometres long. A
/// negative length means the opposite direction. The longitude of the end is in
/// [-180, 180]. Both coordinates are NaN when the start lies outside the globe or an
/// argument is not finite.
[[nodiscard]] SIMULATIONDATA_EXPORT Point destination(const Point& a_start, double a_dAzimuth,
                                                      double a_dDistance);

/// Converts degrees, minutes and seconds of arc to decimal degrees. The arguments
/// are magnitudes; the caller applies the sign of the hemisphere.
[[nodiscard]] SIMULATIONDATA_EXPORT double decimalDegrees(double a_dDegrees, double a_dMinutes,
                                                          double a_dSeconds);

} // namespace Geodesy

#endif

#include "geodesy/geodesy.h"

#include <GeographicLib/Geodesic.hpp>

#include <cmath>
#include <exception>
#include <limits>

namespace Geodesy {

namespace {

constexpr double s_dFullCircle = 360.0; // degrees
constexpr double s_dMaximumLatitude = 90.0;
constexpr double s_dMetresPerKilometre = 1000.0;
constexpr double s_dMinutesPerDegree = 60.0;
constexpr double s_dSecondsPerDegree = 3600.0;
constexpr double s_dNotANumber = std::numeric_limits<double>::quiet_NaN();

bool isOnGlobe(const Point& a_point)
{
    return std::isfinite(a_point.longitude) && std::fabs(a_point.latitude) <= s_dMaximumLatitude;
}

/// Maps an azimuth from (-360, 360) to [0, 360) degrees.
double normalised(double a_dAzimuth)
{
    const double dTurned = a_dAzimuth < 0.0 ? a_dAzimuth + s_dFullCircle : a_dAzimuth;
    // A tiny negative azimuth rounds to the full circle; adding 0 removes the sign of -0.
    return dTurned >= s_dFullCircle ? 0.0 : dTurned + 0.0;
}

/// The geodesic between two points. A default object means that there is no geodesic.
struct Way
{
    double metres = s_dNotANumber;
    double azimuth = 0.0; ///< at the start, degrees clockwise from north, [-180, 180]
};

// GeographicLib takes the latitude first and may throw exceptions. Only the next two
// functions call GeographicLib. They swap the coordinates and return NaN after an
// exception.

/// The inverse geodesic problem: length and start azimuth of the shortest line.
Way wayBetween(const Point& a_from, const Point& a_to)
{
    if (!isOnGlobe(a_from) || !isOnGlobe(a_to)) {
        return {};
    }
    try {
        Way way;
        double dAzimuthAtEnd = 0.0;
        GeographicLib::Geodesic::WGS84().Inverse(a_from.latitude, a_from.longitude, a_to.latitude,
                                                 a_to.longitude, way.metres, way.azimuth, dAzimuthAtEnd);
        return way;
    } catch (const std::exception&) {
        return {};
    }
}

/// The direct geodesic problem: the end of a line from its start, azimuth (degrees)
/// and length (metres). Azimuth and length may have any finite value.
Point pointAfter(const Point& a_start, double a_dAzimuth, double a_dMetres)
{
    Point end{s_dNotANumber, s_dNotANumber};
    try {
        GeographicLib::Geodesic::WGS84().Direct(a_start.latitude, a_start.longitude, a_dAzimuth, a_dMetres,
                                                end.latitude, end.longitude);
    } catch (const std::exception&) {
        end = {s_dNotANumber, s_dNotANumber};
    }
    return end;
}

} // namespace

double azimuth(const Point& a_from, const Point& a_to)
{
    const Way way = wayBetween(a_from, a_to);
    // Coincident points have no azimuth. The comparison is also false for a length
    // that is NaN.
    return way.metres > 0.0 ? normalised(way.azimuth) : 0.0;
}

double distance(const Point& a_from, const Point& a_to)
{
    return wayBetween(a_from, a_to).metres / s_dMetresPerKilometre;
}

Point destination(const Point& a_start, double a_dAzimuth, double a_dDistance)
{
    const double dMetres = a_dDistance * s_dMetresPerKilometre;
    if (!isOnGlobe(a_start) || !std::isfinite(a_dAzimuth) || !std::isfinite(dMetres)) {
        return {s_dNotANumber, s_dNotANumber};
    }
    return pointAfter(a_start, a_dAzimuth, dMetres);
}

double decimalDegrees(double a_dDegrees, double a_dMinutes, double a_dSeconds)
{
    return a_dDegrees + a_dMinutes / s_dMinutesPerDegree + a_dSeconds / s_dSecondsPerDegree;
}

} // namespace Geodesy

#ifndef SIMULATIONDATA_TPOS_H
#define SIMULATIONDATA_TPOS_H

#include "simulationdata/simulationdata_export.h"

namespace Simulation {

/// A geographic position on WGS 84, longitude first. Copied by value; the
/// layout equals that of Units::Position_t.
struct TPos
{
    double longitude = 0.0; ///< degrees, east positive
    double latitude = 0.0;  ///< degrees, north positive
};

/// The initial azimuth of the geodesic from one position to another, in degrees
/// clockwise from north, [0, 360). 0 for coincident positions, and when a latitude
/// lies outside [-90, 90].
[[nodiscard]] SIMULATIONDATA_EXPORT double azimuth(const TPos& a_from, const TPos& a_to);

/// The length of the geodesic between two positions, in kilometres. NaN when a
/// latitude lies outside [-90, 90].
[[nodiscard]] SIMULATIONDATA_EXPORT double distance(const TPos& a_from, const TPos& a_to);

/// The end of a geodesic. The geodesic starts at `a_start` in the direction
/// `a_dAzimuth` (degrees clockwise from north) and is `a_dDistance` kilometres long.
/// The longitude of the end is in [-180, 180]. Both coordinates are NaN when the
/// latitude of the start lies outside [-90, 90] or an argument is not finite.
[[nodiscard]] SIMULATIONDATA_EXPORT TPos position(const TPos& a_start, double a_dAzimuth, double a_dDistance);

} // namespace Simulation

#endif

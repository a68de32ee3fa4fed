#ifndef SIMULATIONDATA_MOVEMENTPOINT_H
#define SIMULATIONDATA_MOVEMENTPOINT_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QString>

namespace Simulation {

/// One point of a movement. A major point is a way point that the user placed.
/// Intermediate points shape the path between way points. Their dwell time is 0, and
/// their speed is that of the next point.
struct MovementPoint
{
    TPos position;                   ///< degrees, longitude first
    unsigned int transitionTime = 0; ///< ms to the next point, calculated; 0 at the last point
    unsigned int dwellTime = 0;      ///< ms that the emitter stays here
    bool major = false;              ///< whether the user placed this point
    QString name;                    ///< null at unnamed intermediate points
    double speed = 50.0;             ///< km/h on the leg to this point; <= 0 = the leg takes no time
};

/// Compares positions within 1e-10 degrees and all other fields exactly.
[[nodiscard]] SIMULATIONDATA_EXPORT bool operator==(const MovementPoint& a_first,
                                                    const MovementPoint& a_second);

} // namespace Simulation

#endif

#include "movementpoint.h"

#include <cmath>

namespace Simulation {

namespace {

constexpr double s_dPositionTolerance = 1e-10; ///< degrees, about 0.01 mm

bool equalAngle(double a_dFirst, double a_dSecond)
{
    return std::fabs(a_dFirst - a_dSecond) <= s_dPositionTolerance;
}

} // namespace

bool operator==(const MovementPoint& a_first, const MovementPoint& a_second)
{
    return equalAngle(a_first.position.latitude, a_second.position.latitude) &&
           equalAngle(a_first.position.longitude, a_second.position.longitude) &&
           a_first.transitionTime == a_second.transitionTime && a_first.dwellTime == a_second.dwellTime &&
           a_first.major == a_second.major && a_first.name == a_second.name &&
           a_first.speed == a_second.speed;
}

} // namespace Simulation

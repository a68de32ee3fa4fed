#include "transmittersettings.h"

#include <cmath>

namespace Simulation {

namespace {

constexpr float s_fFullTurn = 360.0F; // degrees

} // namespace

void TransmitterSettings::setAntennaDirection(float a_fDirection)
{
    // direction - floor(direction / 360) * 360. Negative directions are deliberately
    // kept.
    m_fAntennaDirection = a_fDirection >= s_fFullTurn
                              ? a_fDirection - std::floor(a_fDirection / s_fFullTurn) * s_fFullTurn
                              : a_fDirection;
}

} // namespace Simulation

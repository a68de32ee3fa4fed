#ifndef SIMULATIONDATA_TIMESLOTOFFSET_P_H
#define SIMULATIONDATA_TIMESLOTOFFSET_P_H

#include "crt/crt.h"

namespace Simulation {

/// The time-slot offset of a new object: 0.00, 0.01, ... 0.99, so that emitters
/// made one after the other do not sweep or hop in step. Draws one number from
/// this thread's sequence.
[[nodiscard]] inline float randomTimeslotOffset()
{
    constexpr int iSlots = 100;
    return static_cast<float>((Crt::rand() % iSlots) / static_cast<double>(iSlots));
}

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_HRACTIVITY_H
#define SIMULATIONDATA_HRACTIVITY_H

#include <cstdint>

namespace Simulation {

/// One stretch of time that an emitter spends on one frequency.
struct HRActivity
{
    std::uint64_t start = 0;    ///< ms since scenario start, within 32 bits
    std::uint64_t duration = 0; ///< ms, within 32 bits
    double frequency = 0.0;     ///< Hz; schedules leave it 0 for the caller to fill
};

} // namespace Simulation

#endif

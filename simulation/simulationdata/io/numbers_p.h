#ifndef SIMULATIONDATA_NUMBERS_P_H
#define SIMULATIONDATA_NUMBERS_P_H

#include <cmath>
#include <cstdint>

namespace Simulation {

/// Turns a real number into an unsigned 32-bit count, for every input: the
/// number is truncated to a signed 64-bit integer whose low 32 bits are taken,
/// so small negative numbers wrap round as the times of a sweep must. What does
/// not fit 64 bits, and what is not a number, gives 0.
[[nodiscard]] inline std::uint32_t toUInt32(double a_dValue)
{
    constexpr double dTwoTo63 = 9223372036854775808.0;
    if (!(a_dValue >= -dTwoTo63 && a_dValue < dTwoTo63)) {
        return 0;
    }
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(a_dValue));
}

/// The number itself, or 0 when it is infinite or not a number.
[[nodiscard]] inline double finiteOrZero(double a_dValue)
{
    return std::isfinite(a_dValue) ? a_dValue : 0.0;
}

} // namespace Simulation

#endif

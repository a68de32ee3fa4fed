#ifndef SIMULATIONDATA_NUMBERS_P_H
#define SIMULATIONDATA_NUMBERS_P_H

#include <cmath>
#include <cstdint>

namespace Simulation {

/// Converts a real number to an unsigned 32-bit count. The result is defined for every
/// input. The number is truncated to a signed 64-bit integer, and the low 32 bits are the
/// result. Small negative numbers therefore wrap round; the times of sweeps and hops
/// depend on this. NaN and numbers beyond 64 bits give 0.
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

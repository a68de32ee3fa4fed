#ifndef CRT_CRT_H
#define CRT_CRT_H

#include "simulationdata/simulationdata_export.h"

/// The random numbers of the platform's C runtime. Stored scenarios depend on them:
/// the same seed gives the same hop sequence on every machine. Each thread has its
/// own state, which starts as if seeded with 1.
namespace Crt {

/// The largest number that rand() returns.
constexpr int s_iRandMax = 0x7FFF;

/// Returns the next number of this thread's sequence, [0, 32767]. Linear
/// congruential: state = state * 214013 + 2531011 (mod 2^32), result = bits 16 to
/// 30.
SIMULATIONDATA_EXPORT int rand();

/// Seeds this thread's sequence with `a_uiSeed`.
SIMULATIONDATA_EXPORT void srand(unsigned int a_uiSeed);

} // namespace Crt

#endif

#include "crt/crt.h"

#include <cstdint>

namespace {

// Linear congruential generator: state = state * multiplier + increment (mod 2^32).
constexpr std::uint32_t s_uiMultiplier = 214013;
constexpr std::uint32_t s_uiIncrement = 2531011;
constexpr unsigned int s_uiResultShift = 16;

thread_local std::uint32_t t_uiState = 1;

} // namespace

int Crt::rand()
{
    t_uiState = t_uiState * s_uiMultiplier + s_uiIncrement; // wraps modulo 2^32 on purpose
    // Returns the upper bits: the low bits of such a generator have short periods.
    return static_cast<int>((t_uiState >> s_uiResultShift) & static_cast<std::uint32_t>(s_iRandMax));
}

void Crt::srand(unsigned int a_uiSeed)
{
    t_uiState = a_uiSeed;
}

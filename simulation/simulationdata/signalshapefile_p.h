#ifndef SIMULATIONDATA_SIGNALSHAPEFILE_P_H
#define SIMULATIONDATA_SIGNALSHAPEFILE_P_H

#include <cstdint>

namespace Simulation {

// A signal shape file is little-endian: the header begins with the magic and the
// version, and the records follow. Both names are shared by reader and writer.
inline constexpr char s_szSignalShapeMagic[] = "T&K-SSF"; ///< without its NUL
inline constexpr std::uint32_t s_uiSignalShapeVersion = 2;

} // namespace Simulation

#endif

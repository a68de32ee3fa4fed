#ifndef SIMULATIONDATA_RECEIVERSETTINGS_H
#define SIMULATIONDATA_RECEIVERSETTINGS_H

namespace Simulation {

/// How a device receives. Nothing here computes with it, so the units are those
/// on which the programs that fill and use it agree, and every value is taken. A
/// document keeps 6 significant digits, and 0 for what is not finite.
struct ReceiverSettings
{
    double antennaHeight = 7.0; ///< of the antenna above its site
    double antennaGain = 0.0;   ///< of the antenna
};

} // namespace Simulation

#endif

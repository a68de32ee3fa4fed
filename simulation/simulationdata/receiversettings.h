#ifndef SIMULATIONDATA_RECEIVERSETTINGS_H
#define SIMULATIONDATA_RECEIVERSETTINGS_H

namespace Simulation {

/// How a device receives. Stored and sent as it stands; nothing here computes
/// with it.
struct ReceiverSettings
{
    double antennaHeight = 7.0; ///< of the antenna above its site
    double antennaGain = 0.0;   ///< of the antenna
};

} // namespace Simulation

#endif

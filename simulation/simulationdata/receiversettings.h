#ifndef SIMULATIONDATA_RECEIVERSETTINGS_H
#define SIMULATIONDATA_RECEIVERSETTINGS_H

namespace Simulation {

/// The receiver of a device. The library only stores these values and accepts every
/// value. The programs that write and read the values agree on their units. A
/// document keeps 6 significant digits. A value that is not finite is stored as 0.
struct ReceiverSettings
{
    double antennaHeight = 7.0; ///< height of the antenna above its site
    double antennaGain = 0.0;   ///< gain of the antenna
};

} // namespace Simulation

#endif

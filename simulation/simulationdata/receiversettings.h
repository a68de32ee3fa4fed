#ifndef SIMULATIONDATA_RECEIVERSETTINGS_H
#define SIMULATIONDATA_RECEIVERSETTINGS_H

namespace Simulation {

/// The receiver of a device. The library only stores these values: their units are
/// those on which the writing and the reading programs agree, and every value is
/// accepted. A document keeps 6 significant digits, and 0 for a value that is not
/// finite.
struct ReceiverSettings
{
    double antennaHeight = 7.0; ///< of the antenna above its site
    double antennaGain = 0.0;   ///< of the antenna
};

} // namespace Simulation

#endif

#ifndef SIMULATIONTOOL_DEVICEPLACEMENT_H
#define SIMULATIONTOOL_DEVICEPLACEMENT_H

#include <QString>

namespace Simulation {
class DeploymentDataXml;
class SimulationDeviceConfiguration;
} // namespace Simulation

namespace SimulationTool {

/// Gives a device the station and the position (at scenario time 0) that a
/// deployment has for it: for the device of its id, or else the only one of its
/// name. The result is the event to report (see DeviceReport); when the deployment
/// has no place for the device the record stays as it is.
[[nodiscard]] QString placeDevice(Simulation::SimulationDeviceConfiguration& a_device,
                                  const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif

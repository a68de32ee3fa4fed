#ifndef SIMULATIONTOOL_DEVICEPLACEMENT_H
#define SIMULATIONTOOL_DEVICEPLACEMENT_H

#include <QString>

namespace Simulation {
class DeploymentDataXml;
class SimulationDeviceConfiguration;
} // namespace Simulation

namespace SimulationTool {

/// Sets the station and the position (at scenario time 0) of a device's record from a
/// deployment. Uses the deployment's device with the record's id, otherwise the only
/// device with the record's name. Returns the event to report (see DeviceReport). When
/// the deployment has no place for the device, the record stays unchanged.
[[nodiscard]] QString placeDevice(Simulation::SimulationDeviceConfiguration& a_device,
                                  const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_DEVICEPLAY_H
#define SIMULATIONTOOL_DEVICEPLAY_H

#include "console/report.h"
#include "playsink.h"

#include "simulationdata/simulationdeviceconfiguration.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace SimulationTool {

class Output;
class RepositoryPackages;
class SimulationDevice;

/// The record of a device on this machine. An empty name is replaced by the id.
[[nodiscard]] Simulation::SimulationDeviceConfiguration localDevice(const QString& a_sId,
                                                                    const QString& a_sName);

/// Writes rows to an output for every step that a device plays.
class DevicePlay
{
public:
    /// Owns none of its arguments. Without packages (null) no levels are shown.
    DevicePlay(SimulationDevice& a_device, RepositoryPackages* a_pPackages, Output& a_output);
    ~DevicePlay();
    DevicePlay(const DevicePlay&) = delete;
    DevicePlay& operator=(const DevicePlay&) = delete;

    /// False once rows could not be written.
    [[nodiscard]] bool begin();
    [[nodiscard]] bool add(std::uint32_t a_uiTime);

private:
    SimulationDevice& m_device;
    RepositoryPackages* m_pPackages;
    Output& m_output;
    Report m_report;              ///< writes the rows
    std::unique_ptr<Sink> m_sink; ///< the rows of the current play
};

} // namespace SimulationTool

#endif

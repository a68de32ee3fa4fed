#ifndef SIMULATIONTOOL_CONTROLREPORT_H
#define SIMULATIONTOOL_CONTROLREPORT_H

#include "console/exitcode.h"
#include "programs/devicereport.h"

#include <QString>

#include <functional>
#include <optional>

namespace Simulation {
class SimulationDeviceConfiguration;
class SimulationDeviceState;
} // namespace Simulation

namespace SimulationTool {

class Report;
class ServiceController;

/// How "control" reports devices, for people and for programs.

/// What becomes of an order, by device.
struct ConfirmedOrder
{
    QString done;    ///< "Started at 0 ms": written when at least one device has confirmed it
    QString notDone; ///< "Not started": written when none has
    std::function<OrderOutcome(const QString&)> outcome;
};

/// A table of the devices with the answer of each to the last order, and a last
/// line that counts them. Findings unless there are devices and all have confirmed.
[[nodiscard]] ExitCode reportAnswers(const ServiceController& a_controller, const ConfirmedOrder& a_order,
                                     Report& a_report);

/// A table of the devices with how each is done with loading, and a last line.
/// Findings unless there are devices, and all have loaded without a warning.
[[nodiscard]] ExitCode reportLoading(const ServiceController& a_controller, Report& a_report);

/// A table of the devices with their records, and their number.
void reportDevices(const ServiceController& a_controller, Report& a_report);

/// The scenario, its time, and what the devices report.
void reportStatus(const ServiceController& a_controller, Report& a_report);

/// "1 device", "2 devices": those of the last list.
[[nodiscard]] QString devicesText(const ServiceController& a_controller);

/// The run for programs: "running", "paused", "stopped", "unknown".
[[nodiscard]] QString runKind(const ServiceController& a_controller);
/// For people: "running at 5000 ms", "paused at 5000 ms", "not running", or that it is unknown.
[[nodiscard]] QString runText(const ServiceController& a_controller);

/// The state of a device as the service reported it; empty when it did not.
[[nodiscard]] std::optional<Simulation::SimulationDeviceState> stateOf(const ServiceController& a_controller,
                                                                       const QString& a_sId);

} // namespace SimulationTool

#endif

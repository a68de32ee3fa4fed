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

/// The reports of the command "control" about devices, for people and for programs.

/// The texts for an order that devices confirm, and the function that derives the
/// outcome from an answer.
struct ConfirmedOrder
{
    QString done;    ///< "Started at 0 ms": written when at least one device confirmed the order
    QString notDone; ///< "Not started at 0 ms": written when none did
    std::function<OrderOutcome(const QString&)> outcome;
};

/// Reports a table of the devices with their answers to the last order, and a line
/// with the counts. Returns Ok when there are devices and all confirmed the order,
/// otherwise Findings.
[[nodiscard]] ExitCode reportAnswers(const ServiceController& a_controller, const ConfirmedOrder& a_order,
                                     Report& a_report);

/// Reports a table of the devices with their loading states, and a line with the
/// counts. Returns Ok when there are devices and all loaded without a warning,
/// otherwise Findings.
[[nodiscard]] ExitCode reportLoading(const ServiceController& a_controller, Report& a_report);

/// Reports a table of the devices with their records, and their number.
void reportDevices(const ServiceController& a_controller, Report& a_report);

/// Reports the scenario, its time, and the state of each device.
void reportStatus(const ServiceController& a_controller, Report& a_report);

/// The number of devices in the last list: "1 device", "2 devices".
[[nodiscard]] QString devicesText(const ServiceController& a_controller);

/// The run state for programs: "running", "paused", "stopped", "unknown".
[[nodiscard]] QString runKind(const ServiceController& a_controller);
/// The run state for people: "running at 5000 ms", "paused at 5000 ms", "not running"
/// or "unknown". A remark follows "running" when no device reports that it plays.
[[nodiscard]] QString runText(const ServiceController& a_controller);

/// The state of a device as reported by the service; no value when it reported none.
[[nodiscard]] std::optional<Simulation::SimulationDeviceState> stateOf(const ServiceController& a_controller,
                                                                       const QString& a_sId);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_DEPLOYMENTDETAILS_H
#define SIMULATIONTOOL_DEPLOYMENTDETAILS_H

#include "verdict.h"

#include <QString>

namespace Simulation {
class DeploymentDataXml;
} // namespace Simulation

namespace SimulationTool {

class InputFile;
class Report;

/// A deployment document: header, stations and devices. The verdict that is
/// returned is not written.
[[nodiscard]] Verdict describeDeployment(Report& a_report, const InputFile& a_file);

/// What a deployment holds, in half a line: "1 station, 2 devices".
[[nodiscard]] QString deploymentSummary(const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif

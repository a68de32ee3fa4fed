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

/// Describes a deployment document: header, stations and devices. The caller writes
/// the returned verdict.
[[nodiscard]] Verdict describeDeployment(Report& a_report, const InputFile& a_file);

/// The numbers of stations and devices: "1 station, 2 devices".
[[nodiscard]] QString deploymentSummary(const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif

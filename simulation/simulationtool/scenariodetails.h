#ifndef SIMULATIONTOOL_SCENARIODETAILS_H
#define SIMULATIONTOOL_SCENARIODETAILS_H

#include "exitcode.h"

#include <QString>

namespace SimulationTool {

class Report;

/// What a scenario holds: header, noise, an overview of emitters and networks,
/// then each object with all its settings. What is wrong with it goes to
/// standard error.
[[nodiscard]] ExitCode describeScenario(Report& a_report, const QString& a_sFile);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_SCENARIODETAILS_H
#define SIMULATIONTOOL_SCENARIODETAILS_H

#include "verdict.h"

#include <optional>

namespace SimulationTool {

class InputFile;
class Report;

/// What a scenario holds: header, noise, an overview of emitters and networks,
/// then each object with all its settings. What is wrong with it goes to
/// standard error. Nothing when it cannot be read. The verdict that is returned
/// is not written.
[[nodiscard]] std::optional<Verdict> describeScenario(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_SCENARIODETAILS_H
#define SIMULATIONTOOL_SCENARIODETAILS_H

#include "verdict.h"

#include <optional>

namespace SimulationTool {

class InputFile;
class Report;

/// Describes a scenario: header, noise, an overview of emitters and networks, then
/// each object with all its settings. Errors are reported on standard error. The
/// caller writes the returned verdict. No value when the file cannot be read.
[[nodiscard]] std::optional<Verdict> describeScenario(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

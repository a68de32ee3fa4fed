#ifndef SIMULATIONTOOL_COMPACTDETAILS_H
#define SIMULATIONTOOL_COMPACTDETAILS_H

#include "verdict.h"

#include <QString>

#include <optional>

namespace Simulation {
class ScenarioDataBinary;
} // namespace Simulation

namespace SimulationTool {

class InputFile;
class Report;

/// Describes a scenario of the compact form: a table of its emitters, and its
/// unresolved links. The caller writes the returned verdict. No value, and nothing
/// written, when the file has another form.
[[nodiscard]] std::optional<Verdict> describeCompact(Report& a_report, const InputFile& a_file);

/// Lists the unresolved links. A link is resolved only when its target is an emitter
/// that precedes the linking emitter. Shows at most the first 20 links. The scenario
/// must have been read.
void describeUnresolvedLinks(Report& a_report, const Simulation::ScenarioDataBinary& a_scenario);

} // namespace SimulationTool

#endif

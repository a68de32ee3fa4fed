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

/// What a scenario of the compact form holds: a table of its emitters, and the
/// links that lead nowhere. Nothing, and nothing is written, when the file is of
/// another form. The verdict that is returned is not written.
[[nodiscard]] std::optional<Verdict> describeCompact(Report& a_report, const InputFile& a_file);

/// The links of a scenario that was read which lead to no emitter before theirs;
/// of very many only the first.
void describeUnresolvedLinks(Report& a_report, const Simulation::ScenarioDataBinary& a_scenario);

} // namespace SimulationTool

#endif

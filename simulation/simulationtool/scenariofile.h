#ifndef SIMULATIONTOOL_SCENARIOFILE_H
#define SIMULATIONTOOL_SCENARIOFILE_H

#include "exitcode.h"
#include "verdict.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace Simulation {
class ScenarioDataBinary;
class ScenarioDataXml;
class ScenarioNetwork;
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

/// Reads a scenario. What is wrong with it goes to standard error as one line
/// that names the file and, where there is one, line and column: Unusable when
/// nothing could be read, Findings when the document broke off and what came
/// before was kept.
[[nodiscard]] ExitCode loadScenario(Simulation::ScenarioDataXml& a_scenario, const QString& a_sFile);

/// Reads a scenario of the compact form, which has no mark of its own: nothing
/// unless count and records fill the file, or the stream breaks off at the file's
/// end or behind a whole record, or holds more than its records. Only regular
/// files that do not begin like a document are looked at. The scenario must be
/// empty.
[[nodiscard]] std::optional<Verdict> loadCompact(Simulation::ScenarioDataBinary& a_scenario,
                                                 const QString& a_sFile);

/// The emitters of both kinds, in the order of their ids.
[[nodiscard]] QList<std::shared_ptr<Simulation::SzenarioEmitter>>
emittersOf(const Simulation::ScenarioDataXml& a_scenario);
[[nodiscard]] QList<std::shared_ptr<Simulation::SzenarioEmitter>>
emittersOf(const Simulation::ScenarioDataBinary& a_scenario);

/// The networks, in the order of their ids.
[[nodiscard]] QList<std::shared_ptr<Simulation::ScenarioNetwork>>
networksOf(const Simulation::ScenarioDataXml& a_scenario);

} // namespace SimulationTool

#endif

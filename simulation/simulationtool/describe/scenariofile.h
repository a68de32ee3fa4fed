#ifndef SIMULATIONTOOL_SCENARIOFILE_H
#define SIMULATIONTOOL_SCENARIOFILE_H

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

class InputFile;

/// Reads a scenario. What is wrong with it goes to standard error as one line
/// that names the file and, where there is one, line and column: nothing when
/// it cannot be read, Findings when the document broke off and what came before
/// was kept.
[[nodiscard]] std::optional<Verdict> loadScenario(Simulation::ScenarioDataXml& a_scenario,
                                                  const InputFile& a_file);

/// The verdict on a document that was read, by the error that its reader names.
[[nodiscard]] Verdict documentVerdict(const QString& a_sError);

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

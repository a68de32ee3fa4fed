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

/// Reads a scenario. Reports an error as one line on standard error, with the file
/// and, if known, line and column. No value when the file cannot be read; Findings
/// when the document broke off and the objects before that place were kept.
[[nodiscard]] std::optional<Verdict> loadScenario(Simulation::ScenarioDataXml& a_scenario,
                                                  const InputFile& a_file);

/// The verdict on a document that was read, from its reader's error text.
[[nodiscard]] Verdict documentVerdict(const QString& a_sError);

/// Reads a scenario of the compact form, which has no signature. Accepts a file in three
/// cases: the count and the records fill it exactly, it has at least one complete
/// record, or it ends within the first record. Returns no value for any other file.
/// Reads only regular files that do not begin like an XML document. The scenario must
/// be empty.
[[nodiscard]] std::optional<Verdict> loadCompact(Simulation::ScenarioDataBinary& a_scenario,
                                                 const QString& a_sFile);

/// All emitters, ELINT emitters included, ordered by id, then name.
[[nodiscard]] QList<std::shared_ptr<Simulation::SzenarioEmitter>>
emittersOf(const Simulation::ScenarioDataXml& a_scenario);
[[nodiscard]] QList<std::shared_ptr<Simulation::SzenarioEmitter>>
emittersOf(const Simulation::ScenarioDataBinary& a_scenario);

/// The networks, ordered by id, then name.
[[nodiscard]] QList<std::shared_ptr<Simulation::ScenarioNetwork>>
networksOf(const Simulation::ScenarioDataXml& a_scenario);

} // namespace SimulationTool

#endif

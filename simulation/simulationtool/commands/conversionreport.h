#ifndef SIMULATIONTOOL_CONVERSIONREPORT_H
#define SIMULATIONTOOL_CONVERSIONREPORT_H

#include <QList>
#include <QString>

#include <memory>

namespace Simulation {
class ScenarioDataXml;
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

class Report;

using EmitterList = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;

/// Reports the written form and its size.
void describeWritten(Report& a_report, const QString& a_sForm, qsizetype a_iEmitters, qsizetype a_iBytes);

/// Reports the content of a scenario that the compact form does not carry and that is
/// not at its default.
void describeUncarried(Report& a_report, const Simulation::ScenarioDataXml& a_scenario);

/// Reports the defaults in a document made from a compact scenario.
void describeDefaults(Report& a_report, const Simulation::ScenarioDataXml& a_scenario);

/// Reports the differences between emitters and their read-back copies: missing
/// emitters, changed texts and lost links. Compares only content that both forms
/// carry.
void describeDifferences(Report& a_report, const EmitterList& a_emitters, const EmitterList& a_readBack);

} // namespace SimulationTool

#endif

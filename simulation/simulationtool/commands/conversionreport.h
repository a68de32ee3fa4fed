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

/// What was written.
void describeWritten(Report& a_report, const QString& a_sForm, qsizetype a_iEmitters, qsizetype a_iBytes);

/// What the compact form does not carry of a scenario: all that is there and
/// not at its default.
void describeUncarried(Report& a_report, const Simulation::ScenarioDataXml& a_scenario);

/// What a document that was made of a compact scenario holds only by default.
void describeDefaults(Report& a_report, const Simulation::ScenarioDataXml& a_scenario);

/// Where emitters differ from what a reader makes of them, by what both forms
/// carry: emitters that are missing, texts that changed, links that are lost.
void describeDifferences(Report& a_report, const EmitterList& a_emitters, const EmitterList& a_readBack);

} // namespace SimulationTool

#endif

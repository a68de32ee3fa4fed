#ifndef SIMULATIONTOOL_OBJECTDETAILS_H
#define SIMULATIONTOOL_OBJECTDETAILS_H

#include "console/reportvalue.h"

namespace Simulation {
class IFrequencySettings;
class IPositionSettings;
class ScenarioNetwork;
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

class Report;

/// A frequency behaviour in one line, in JSON an object with its "kind". Without
/// settings the text is empty and JSON null.
[[nodiscard]] ReportValue frequencySummary(Simulation::IFrequencySettings* a_pSettings);
/// The same for a position (degrees, longitude first).
[[nodiscard]] ReportValue positionSummary(Simulation::IPositionSettings* a_pSettings);
/// The same for an emitter; a linked emitter shows the emitter that it follows.
[[nodiscard]] ReportValue positionSummary(const Simulation::SzenarioEmitter& a_emitter);

/// Describe one object with all its settings and relations, under a heading of its
/// own.
void describeEmitter(Report& a_report, const Simulation::SzenarioEmitter& a_emitter, bool a_bDefault);
void describeNetwork(Report& a_report, const Simulation::ScenarioNetwork& a_network);

} // namespace SimulationTool

#endif

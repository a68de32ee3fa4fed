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

/// A frequency behaviour in one line, or as an object with its "kind"; no text
/// and null without one.
[[nodiscard]] ReportValue frequencySummary(Simulation::IFrequencySettings* a_pSettings);
/// The same for a position (degrees).
[[nodiscard]] ReportValue positionSummary(Simulation::IPositionSettings* a_pSettings);
/// The same for an emitter; a linked one names whom it follows.
[[nodiscard]] ReportValue positionSummary(const Simulation::SzenarioEmitter& a_emitter);

/// One object with all its settings and relations, under a heading of its own.
void describeEmitter(Report& a_report, const Simulation::SzenarioEmitter& a_emitter, bool a_bDefault);
void describeNetwork(Report& a_report, const Simulation::ScenarioNetwork& a_network);

} // namespace SimulationTool

#endif

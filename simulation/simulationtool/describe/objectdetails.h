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

/// A frequency behaviour: one line of text, and in JSON an object with its "kind".
/// Without settings the text is empty and the JSON value is null.
[[nodiscard]] ReportValue frequencySummary(Simulation::IFrequencySettings* a_pSettings);
/// A position (degrees, longitude first) in the two forms of frequencySummary().
[[nodiscard]] ReportValue positionSummary(Simulation::IPositionSettings* a_pSettings);
/// The position of an emitter; for a linked emitter, the emitter that it follows.
[[nodiscard]] ReportValue positionSummary(const Simulation::SzenarioEmitter& a_emitter);

/// Describe one object with all its settings and relations, under a heading of its
/// own.
void describeEmitter(Report& a_report, const Simulation::SzenarioEmitter& a_emitter, bool a_bDefault);
void describeNetwork(Report& a_report, const Simulation::ScenarioNetwork& a_network);

} // namespace SimulationTool

#endif

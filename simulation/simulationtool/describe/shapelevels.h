#ifndef SIMULATIONTOOL_SHAPELEVELS_H
#define SIMULATIONTOOL_SHAPELEVELS_H

namespace Simulation {
class SignalShapeFile;
} // namespace Simulation

namespace SimulationTool {

class Report;

/// Describes the levels of up to ten records, spread evenly over an open file, and
/// the range of the signal level over all of them. Reads every complete record.
void describeLevels(Report& a_report, Simulation::SignalShapeFile& a_reader);

} // namespace SimulationTool

#endif

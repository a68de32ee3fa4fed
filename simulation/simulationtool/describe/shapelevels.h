#ifndef SIMULATIONTOOL_SHAPELEVELS_H
#define SIMULATIONTOOL_SHAPELEVELS_H

namespace Simulation {
class SignalShapeFile;
} // namespace Simulation

namespace SimulationTool {

class Report;

/// The levels of some records spread over an open file, and the range of the
/// signal level over all of them. Every record that the file holds is read.
void describeLevels(Report& a_report, Simulation::SignalShapeFile& a_reader);

} // namespace SimulationTool

#endif

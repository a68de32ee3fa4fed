#ifndef SIMULATIONTOOL_INSPECTCOMMAND_H
#define SIMULATIONTOOL_INSPECTCOMMAND_H

#include "exitcode.h"

class QString;

namespace SimulationTool {

class Output;

/// Writes what a scenario holds: header, noise, an overview of emitters and
/// networks, then each object with all its settings.
[[nodiscard]] ExitCode runInspect(const QString& a_sFile, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_COMMANDLINE_H
#define SIMULATIONTOOL_COMMANDLINE_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Reads the program's arguments, the program itself first, and does what they
/// ask for. Wrong usage is answered by one line on standard error. The output
/// is not finished.
[[nodiscard]] ExitCode runCommandLine(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

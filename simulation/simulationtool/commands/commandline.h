#ifndef SIMULATIONTOOL_COMMANDLINE_H
#define SIMULATIONTOOL_COMMANDLINE_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Reads the program's arguments and runs the command. The first argument is the
/// program's name. Reports wrong usage as one line on standard error. The caller
/// finishes the output.
[[nodiscard]] ExitCode runCommandLine(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

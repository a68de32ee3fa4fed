#ifndef SIMULATIONTOOL_NEWCOMMAND_H
#define SIMULATIONTOOL_NEWCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "new": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode newCommand(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

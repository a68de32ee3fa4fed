#ifndef SIMULATIONTOOL_CONTROLCOMMAND_H
#define SIMULATIONTOOL_CONTROLCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "control": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode control(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

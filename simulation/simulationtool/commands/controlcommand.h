#ifndef SIMULATIONTOOL_CONTROLCOMMAND_H
#define SIMULATIONTOOL_CONTROLCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "control" with its arguments, which begin with the command's name.
[[nodiscard]] ExitCode control(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

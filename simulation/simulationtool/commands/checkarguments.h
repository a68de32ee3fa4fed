#ifndef SIMULATIONTOOL_CHECKARGUMENTS_H
#define SIMULATIONTOOL_CHECKARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "check": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode check(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

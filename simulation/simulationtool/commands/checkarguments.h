#ifndef SIMULATIONTOOL_CHECKARGUMENTS_H
#define SIMULATIONTOOL_CHECKARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "check" with its arguments, which begin with the command's name.
[[nodiscard]] ExitCode check(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_DEMOCOMMAND_H
#define SIMULATIONTOOL_DEMOCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "demo" with its arguments, which begin with the command's name.
[[nodiscard]] ExitCode demo(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

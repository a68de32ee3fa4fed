#ifndef SIMULATIONTOOL_DEMOCOMMAND_H
#define SIMULATIONTOOL_DEMOCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "demo": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode demo(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

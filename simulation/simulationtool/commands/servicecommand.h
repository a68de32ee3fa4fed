#ifndef SIMULATIONTOOL_SERVICECOMMAND_H
#define SIMULATIONTOOL_SERVICECOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "service": reads the arguments, the command's name first, and runs the
/// service until the process is interrupted.
[[nodiscard]] ExitCode service(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_SERVICECOMMAND_H
#define SIMULATIONTOOL_SERVICECOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "service" with its arguments, which begin with the command's name.
/// The service runs until the process is interrupted.
[[nodiscard]] ExitCode service(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

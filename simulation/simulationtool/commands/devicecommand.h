#ifndef SIMULATIONTOOL_DEVICECOMMAND_H
#define SIMULATIONTOOL_DEVICECOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "device": reads the arguments, the command's name first, and runs the
/// device until the process is interrupted or its output cannot be written.
[[nodiscard]] ExitCode device(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

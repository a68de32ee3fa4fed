#ifndef SIMULATIONTOOL_DEVICECOMMAND_H
#define SIMULATIONTOOL_DEVICECOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "device" with its arguments, which begin with the command's name.
/// The device runs until the process is interrupted or the output cannot be written.
[[nodiscard]] ExitCode device(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

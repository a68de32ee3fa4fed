#ifndef SIMULATIONTOOL_PLAYARGUMENTS_H
#define SIMULATIONTOOL_PLAYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "play" with its arguments, which begin with the command's name.
[[nodiscard]] ExitCode play(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_PLAYARGUMENTS_H
#define SIMULATIONTOOL_PLAYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "play": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode play(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

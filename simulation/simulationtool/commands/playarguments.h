#ifndef SIMULATIONTOOL_PLAYARGUMENTS_H
#define SIMULATIONTOOL_PLAYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Reads the arguments of the command, its name first, and does what they ask
/// for.
[[nodiscard]] ExitCode play(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

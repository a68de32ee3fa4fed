#ifndef SIMULATIONTOOL_REPOSITORYARGUMENTS_H
#define SIMULATIONTOOL_REPOSITORYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Reads the arguments of the command, its name first, and does what they ask
/// for.
[[nodiscard]] ExitCode repository(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

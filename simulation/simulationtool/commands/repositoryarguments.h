#ifndef SIMULATIONTOOL_REPOSITORYARGUMENTS_H
#define SIMULATIONTOOL_REPOSITORYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "repository": reads the arguments, the command's name first, and runs
/// the action.
[[nodiscard]] ExitCode repository(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

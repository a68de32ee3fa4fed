#ifndef SIMULATIONTOOL_REPOSITORYARGUMENTS_H
#define SIMULATIONTOOL_REPOSITORYARGUMENTS_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs an action of the command "repository". The arguments begin with the command's
/// name.
[[nodiscard]] ExitCode repository(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_NEWPACKAGECOMMAND_H
#define SIMULATIONTOOL_NEWPACKAGECOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The kind "package" of the command "new": reads the arguments, the kind's name first, and
/// runs it.
[[nodiscard]] ExitCode newPackage(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

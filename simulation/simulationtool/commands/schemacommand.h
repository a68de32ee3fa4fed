#ifndef SIMULATIONTOOL_SCHEMACOMMAND_H
#define SIMULATIONTOOL_SCHEMACOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "schema": reads the arguments, the command's name first, and runs it.
[[nodiscard]] ExitCode schema(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

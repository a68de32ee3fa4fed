#ifndef SIMULATIONTOOL_CONVERTCOMMAND_H
#define SIMULATIONTOOL_CONVERTCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// Runs the command "convert" with its arguments, which begin with the command's name.
/// Writes the compact form of a scenario document, or a document of a compact scenario.
/// The target is replaced whole or not at all, even when the command is interrupted.
[[nodiscard]] ExitCode convert(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

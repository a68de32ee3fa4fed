#ifndef SIMULATIONTOOL_CONVERTCOMMAND_H
#define SIMULATIONTOOL_CONVERTCOMMAND_H

#include "console/exitcode.h"

#include <QStringList>

namespace SimulationTool {

class Output;

/// The command "convert": reads the arguments, the command's name first, and writes
/// the compact form of a scenario document or a document of a compact scenario. The
/// target is replaced whole or not at all, even when the command is interrupted.
[[nodiscard]] ExitCode convert(const QStringList& a_arguments, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_INSPECTCOMMAND_H
#define SIMULATIONTOOL_INSPECTCOMMAND_H

#include "console/exitcode.h"

class QString;

namespace SimulationTool {

class Output;
enum class ReportForm;

/// Writes what a file or a package folder holds. What it is, its content tells;
/// where that says nothing, the ending of its name does; everything else is
/// taken for a scenario. "-" is standard input.
[[nodiscard]] ExitCode runInspect(const QString& a_sPath, ReportForm a_eForm, Output& a_output);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_INSPECTCOMMAND_H
#define SIMULATIONTOOL_INSPECTCOMMAND_H

#include "console/exitcode.h"

class QString;

namespace SimulationTool {

class Output;
enum class ReportForm;

/// The command "inspect": describes a file or a package folder. The kind is
/// recognised by the content, otherwise by the file name ending; any other file is
/// read as a scenario. "-" is standard input.
[[nodiscard]] ExitCode runInspect(const QString& a_sPath, ReportForm a_eForm, Output& a_output);

} // namespace SimulationTool

#endif

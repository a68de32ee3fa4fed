#ifndef SIMULATIONTOOL_REPOSITORYCOMMAND_H
#define SIMULATIONTOOL_REPOSITORYCOMMAND_H

#include "console/exitcode.h"

class QString;

namespace SimulationTool {

class Output;
enum class ReportForm;

/// Makes a folder a repository and reports its content. Refuses a folder that is not a
/// repository yet but contains a folder "Sessions", because that folder would be
/// emptied.
[[nodiscard]] ExitCode runRepositoryInit(const QString& a_sFolder, ReportForm a_eForm, Output& a_output);

/// Lists the packages of a repository, or of any folder, and their problems; returns
/// Findings when there are any. Reads only the header of every file.
[[nodiscard]] ExitCode runRepositoryList(const QString& a_sFolder, ReportForm a_eForm, Output& a_output);

} // namespace SimulationTool

#endif

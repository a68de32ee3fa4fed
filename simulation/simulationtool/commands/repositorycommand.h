#ifndef SIMULATIONTOOL_REPOSITORYCOMMAND_H
#define SIMULATIONTOOL_REPOSITORYCOMMAND_H

#include "console/exitcode.h"

class QString;

namespace SimulationTool {

class Output;
enum class ReportForm;

/// Makes a folder a repository and says what stands there. A folder whose
/// sessions would be lost, and which is no repository yet, is refused.
[[nodiscard]] ExitCode runRepositoryInit(const QString& a_sFolder, ReportForm a_eForm, Output& a_output);

/// Lists the packages of a repository, or of any folder, and what is wrong with
/// them: Findings when something is. Of every file only the header is read.
[[nodiscard]] ExitCode runRepositoryList(const QString& a_sFolder, ReportForm a_eForm, Output& a_output);

} // namespace SimulationTool

#endif

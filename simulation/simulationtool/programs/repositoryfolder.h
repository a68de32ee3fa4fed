#ifndef SIMULATIONTOOL_REPOSITORYFOLDER_H
#define SIMULATIONTOOL_REPOSITORYFOLDER_H

#include <QString>

namespace SimulationTool {

/// Why a folder cannot be looked into; empty when it can.
[[nodiscard]] QString folderProblem(const QString& a_sFolder);

/// Where the packages of a folder lie: in "SignalPackages" if it is a
/// repository, otherwise in the folder itself.
[[nodiscard]] QString packageStoreOf(const QString& a_sFolder);

} // namespace SimulationTool

#endif

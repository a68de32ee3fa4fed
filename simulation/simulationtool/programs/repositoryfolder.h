#ifndef SIMULATIONTOOL_REPOSITORYFOLDER_H
#define SIMULATIONTOOL_REPOSITORYFOLDER_H

#include <QString>

namespace SimulationTool {

/// The error text for a folder that cannot be read; empty when it can.
[[nodiscard]] QString folderError(const QString& a_sFolder);

/// The folder that contains the packages: "SignalPackages" in a repository, otherwise
/// the folder itself.
[[nodiscard]] QString packageStoreOf(const QString& a_sFolder);

} // namespace SimulationTool

#endif

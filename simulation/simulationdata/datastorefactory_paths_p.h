#ifndef SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H
#define SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H

#include <QString>

namespace Simulation {

/// The folder for the default packages, which the program unpacks into a
/// repository.
inline constexpr QLatin1String s_sDefaultPackages("TuK-Default");

/// The path to open for a path that a getter of DataStoreFactory returned. Where
/// the separator is the slash and the path as given does not exist, its backslashes
/// are replaced by slashes.
[[nodiscard]] QString resolvedStorePath(const QString& a_sPath);

/// The absolute path of a file in such a folder. Empty for an empty folder, which
/// would otherwise mean the current one.
[[nodiscard]] QString filePathIn(const QString& a_sFolder, const QString& a_sName);

} // namespace Simulation

#endif

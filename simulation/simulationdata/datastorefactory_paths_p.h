#ifndef SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H
#define SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H

#include <QString>

namespace Simulation {

/// The folder of the packages that the program unpacks into a repository.
inline constexpr QLatin1String s_sDefaultPackages("TuK-Default");

/// The path to open for one that a getter of DataStoreFactory joined. Where the
/// separator is the slash and nothing lies at the path as it is given, its
/// backslashes are read as slashes.
[[nodiscard]] QString resolvedStorePath(const QString& a_sPath);

/// The absolute path of a file in such a folder. Empty for an empty folder, which
/// would be the current one.
[[nodiscard]] QString filePathIn(const QString& a_sFolder, const QString& a_sName);

} // namespace Simulation

#endif

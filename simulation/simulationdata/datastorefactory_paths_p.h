#ifndef SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H
#define SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H

#include <QString>

namespace Simulation {

/// The name of the folder that contains the default packages, in the package store of
/// a repository and in the archive from which the packages are unpacked.
inline constexpr QLatin1String s_sDefaultPackages("TuK-Default");

/// Converts a path from a getter of DataStoreFactory to a path that can be opened. On
/// platforms whose separator is the slash, slashes replace the backslashes, unless the
/// path exists as given.
[[nodiscard]] QString resolvedStorePath(const QString& a_sPath);

/// The absolute path of a file in a folder. The folder's path may be one that a getter
/// of DataStoreFactory returned. Empty when `a_sFolder` is empty, because an empty path
/// would mean the current folder.
[[nodiscard]] QString filePathIn(const QString& a_sFolder, const QString& a_sName);

} // namespace Simulation

#endif

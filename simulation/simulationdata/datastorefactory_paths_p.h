#ifndef SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H
#define SIMULATIONDATA_DATASTOREFACTORY_PATHS_P_H

#include <QString>

namespace Simulation {

/// The folder for the default packages, which the program unpacks into a
/// repository.
inline constexpr QLatin1String s_sDefaultPackages("TuK-Default");

/// Returns the path to open for a path from a getter of DataStoreFactory. Where the
/// separator is the slash, replaces backslashes by slashes unless the path exists as
/// given.
[[nodiscard]] QString resolvedStorePath(const QString& a_sPath);

/// The absolute path of a file in a folder whose path a getter returned. Empty for an
/// empty folder, which would otherwise mean the current one.
[[nodiscard]] QString filePathIn(const QString& a_sFolder, const QString& a_sName);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_DATASTOREFACTORY_H
#define SIMULATIONDATA_DATASTOREFACTORY_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

class ICfg;

namespace Simulation {

class ISignalPackageStore;

/// Knows the layout of the repository, the folder that holds all packages, files
/// and icons, and prepares it. Static operations only: an object holds nothing
/// and assigning it does nothing. Any thread may call.
///
/// The repository is the value "Repository" of the configuration's group
/// "FileSystem", by default the system's temporary folder.
class SIMULATIONDATA_EXPORT DataStoreFactory
{
public:
    /// The stores in the repository: its path, a backslash on every platform,
    /// and the name. Programs keep and compare these texts. Empty when the
    /// configuration is null or has no group "FileSystem".
    [[nodiscard]] static QString sessionStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString signalPackageStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString fileStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString radarStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString iconStoreDir(ICfg* a_pCfg);

    /// The id of the default signal package: the absolute path of
    /// "TuK-Default/Default" in the store. Empty for an empty store.
    [[nodiscard]] static QString defaultSignalPackage(const QString& a_sStoreDir);

    /// The absolute path of "Tessaro/Default.scexml" in the folder of the user's
    /// files. Empty for an empty folder.
    [[nodiscard]] static QString defaultScenario(const QString& a_sFileDir);

    /// Makes the repository ready: empties the sessions, makes the folders that
    /// are missing, unpacks the default packages over what is there, and puts
    /// the default scenario in its place unless one is there. The repository
    /// folder itself is never made.
    ///
    /// False when a folder is missing or cannot be made, after one trace and, on
    /// the thread of a running QApplication, a message that waits for the user.
    /// Default data that cannot be written are traced, and the result is true.
    [[nodiscard]] static bool initializeDataStore(ICfg* a_pCfg);

    /// The same. What failed, default data included, and the system's reason are
    /// put into the problem, which is empty when nothing failed.
    [[nodiscard]] static bool initializeDataStore(ICfg* a_pCfg, QString* a_pProblem);

    /// Always null: there is no such store.
    [[nodiscard]] static ISignalPackageStore* createSignalPackageStore(ICfg* a_pCfg, bool a_bOn);
};

} // namespace Simulation

#endif

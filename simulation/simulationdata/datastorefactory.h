#ifndef SIMULATIONDATA_DATASTOREFACTORY_H
#define SIMULATIONDATA_DATASTOREFACTORY_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

class ICfg;

namespace Simulation {

class ISignalPackageStore;

/// Defines and prepares the layout of the repository: the folder that holds all
/// packages, files and icons. Static operations only: an object has no state. Any
/// thread may call.
///
/// The path of the repository is the value "Repository" in the group "FileSystem" of
/// the configuration. The default is the system's temporary folder.
class SIMULATIONDATA_EXPORT DataStoreFactory
{
public:
    /// The folders of the stores. Each text is the repository's path, a backslash on
    /// every platform, and the store's name. Applications store and compare these
    /// texts. The text is empty when the configuration is null or has no group
    /// "FileSystem".
    [[nodiscard]] static QString sessionStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString signalPackageStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString fileStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString radarStoreDir(ICfg* a_pCfg);
    [[nodiscard]] static QString iconStoreDir(ICfg* a_pCfg);

    /// The id of the default signal package: the absolute path of
    /// "TuK-Default/Default" in the store. Empty when `a_sStoreDir` is empty.
    [[nodiscard]] static QString defaultSignalPackage(const QString& a_sStoreDir);

    /// The absolute path of "Tessaro/Default.scexml" in the folder of the user's
    /// files. Empty when `a_sFileDir` is empty.
    [[nodiscard]] static QString defaultScenario(const QString& a_sFileDir);

    /// Prepares the repository: removes the folder of sessions, creates missing
    /// folders, unpacks the default packages over existing files, and copies the
    /// default scenario unless it exists. The repository folder itself is never
    /// created.
    ///
    /// Returns false when the repository does not exist or a folder cannot be
    /// created. The error is traced once. On the thread of a running QApplication a
    /// message box also shows it and waits for the user. When the sessions cannot be
    /// removed or default data cannot be written, the error is traced, but the result
    /// is true.
    [[nodiscard]] static bool initializeDataStore(ICfg* a_pCfg);

    /// Works like the overload above and also returns the error text with the
    /// system's reason in `*a_pError`. Default data that cannot be written also sets
    /// the text, although the result is true. Otherwise the text is empty.
    [[nodiscard]] static bool initializeDataStore(ICfg* a_pCfg, QString* a_pError);

    /// Always returns null: such a store does not exist.
    [[nodiscard]] static ISignalPackageStore* createSignalPackageStore(ICfg* a_pCfg, bool a_bOn);
};

} // namespace Simulation

#endif

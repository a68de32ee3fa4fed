#ifndef SIMULATIONDATA_SIGNALPACKAGEFOLDER_H
#define SIMULATIONDATA_SIGNALPACKAGEFOLDER_H

#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QStringList>

namespace Simulation {

/// Reads and writes a signal package in an unpacked folder. Static operations only;
/// any thread may call.
///
/// Paths may be those that the getters of DataStoreFactory return. An empty path is
/// not a folder.
class SIMULATIONDATA_EXPORT SignalPackageFolder
{
public:
    SignalPackageFolder() = delete;

    /// Whether the folder contains a descriptor.
    [[nodiscard]] static bool isValid(const QString& a_sFolder);

    /// The absolute paths of the package folders below a folder, at any depth; the
    /// sub-folders of each folder are sorted by name. Packages inside packages,
    /// hidden folders and links are skipped.
    [[nodiscard]] static QStringList list(const QString& a_sFolder);

    /// The absolute paths of a package's files, whether they exist or not:
    /// "Signal.xml", "Signal.ssf", "Signal.wav", "Signal.sdf" and "Signal.rdf".
    /// Empty for an empty folder.
    [[nodiscard]] static QString signalFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString signalShapeFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString audioFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString symbolDataFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString resultDataFilePath(const QString& a_sFolder);

    /// Returns the package that the folder's descriptor describes, with two
    /// exceptions. The name is that of the folder up to the first full stop. The
    /// content flags show which files exist. The path is not set. Without a readable
    /// descriptor the id is empty and one line is traced; name and flags are still
    /// set.
    [[nodiscard]] static SignalPackage signalPackage(const QString& a_sFolder);

    /// Replaces the folder's descriptor by that of the package. On failure, returns
    /// false after one trace and leaves the former descriptor unchanged. The folder
    /// must exist.
    [[nodiscard]] static bool setSignalPackage(const QString& a_sFolder, const SignalPackage& a_package);
};

} // namespace Simulation

#endif

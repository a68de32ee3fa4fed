#ifndef SIMULATIONDATA_SIGNALPACKAGEFOLDER_H
#define SIMULATIONDATA_SIGNALPACKAGEFOLDER_H

#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QStringList>

namespace Simulation {

/// Reads and writes a signal package that lies unpacked in a folder. Static
/// operations only; any thread may call.
///
/// Every path may be one that a getter of DataStoreFactory joined. An empty path
/// names no folder.
class SIMULATIONDATA_EXPORT SignalPackageFolder
{
public:
    SignalPackageFolder() = delete;

    /// Whether the folder holds a descriptor.
    [[nodiscard]] static bool isValid(const QString& a_sFolder);

    /// The package folders below a folder, at any depth, as absolute paths: of
    /// each folder the sub-folders in the order of their names. Packages inside
    /// packages, hidden folders and links are passed over.
    [[nodiscard]] static QStringList list(const QString& a_sFolder);

    /// The absolute paths of the files of a package, whether they are there or
    /// not: "Signal.xml", "Signal.ssf", "Signal.wav", "Signal.sdf" and
    /// "Signal.rdf". Empty for an empty folder.
    [[nodiscard]] static QString signalFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString signalShapeFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString audioFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString symbolDataFilePath(const QString& a_sFolder);
    [[nodiscard]] static QString resultDataFilePath(const QString& a_sFolder);

    /// The package as its descriptor says, but named after the folder, whose
    /// name up to the first full stop counts, and with the content flags by the
    /// files that are there. The path is not set. Without a readable descriptor
    /// the id is empty and one line is traced; name and flags are set all the same.
    [[nodiscard]] static SignalPackage signalPackage(const QString& a_sFolder);

    /// Replaces the folder's descriptor by that of the package, whole or not at
    /// all. False after one trace; the folder must be there.
    [[nodiscard]] static bool setSignalPackage(const QString& a_sFolder, const SignalPackage& a_package);
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIGNALPACKAGEFILE_H
#define SIMULATIONDATA_SIGNALPACKAGEFILE_H

#include "simulationdata/readingreport.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// Reads and writes the descriptor of a signal package, "Signal.xml". Static
/// operations only; any thread may call.
///
/// For a descriptor that cannot be read, one line is traced and a default package is
/// returned. Its id is empty. report() traces nothing.
class SIMULATIONDATA_EXPORT SignalPackageFile
{
public:
    SignalPackageFile() = delete;

    /// Reads a descriptor; the package's path and content flags stay unset. Unknown
    /// elements are skipped. A value that is missing or not a number keeps its
    /// default. A bandwidth that is not finite becomes 0. The name of the root
    /// element is not checked.
    [[nodiscard]] static SignalPackage readSignalPackageDescriptor(const QByteArray& a_descriptor);

    /// What readSignalPackageDescriptor() skips, replaces or doubts in the descriptor, with
    /// places. Empty when the descriptor is taken as it is written. Elements that other
    /// programs write and that the package does not need are not reported.
    [[nodiscard]] static ReadingReport report(const QByteArray& a_descriptor);

    /// Returns the descriptor as UTF-8, without path and content flags. An update id
    /// that the package has twice is written once.
    [[nodiscard]] static QByteArray writeSignalPackageDescriptor(const SignalPackage& a_package);

    /// The same as readSignalPackageDescriptor().
    [[nodiscard]] static SignalPackage signalPackage(const QByteArray& a_descriptor);

    /// Reads the descriptor in a regular file.
    [[nodiscard]] static SignalPackage signalPackage(const QString& a_sFile);

    /// Replaces the content of the file by the package's descriptor. On failure,
    /// returns false after one trace and leaves the file unchanged.
    [[nodiscard]] static bool signalPackageFile(const SignalPackage& a_package, const QString& a_sFile);
};

} // namespace Simulation

#endif

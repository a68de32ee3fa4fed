#ifndef SIMULATIONDATA_SIGNALPACKAGEFILE_H
#define SIMULATIONDATA_SIGNALPACKAGEFILE_H

#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// Reads and writes the descriptor of a signal package, "Signal.xml". Static
/// operations only; any thread may call.
///
/// What cannot be read gives a default package, whose empty id is the sign of
/// failure, and one trace.
class SIMULATIONDATA_EXPORT SignalPackageFile
{
public:
    SignalPackageFile() = delete;

    /// The package that the descriptor describes; its path and its content
    /// flags stay unset. Elements that we do not write are passed over, what is
    /// missing or no number stays at its default, a bandwidth that is not
    /// finite is 0. The name of the root is not looked at.
    [[nodiscard]] static SignalPackage readSignalPackageDescriptor(const QByteArray& a_descriptor);

    /// The descriptor as UTF-8. Path and content flags are not part of it; an
    /// update id that the package holds twice is written once.
    [[nodiscard]] static QByteArray writeSignalPackageDescriptor(const SignalPackage& a_package);

    /// The same as readSignalPackageDescriptor().
    [[nodiscard]] static SignalPackage signalPackage(const QByteArray& a_descriptor);

    /// Reads the descriptor in a regular file.
    [[nodiscard]] static SignalPackage signalPackage(const QString& a_sFile);

    /// Replaces the file by the package's descriptor, whole or not at all. False
    /// after one trace; the file then holds what it held.
    [[nodiscard]] static bool signalPackageFile(const SignalPackage& a_package, const QString& a_sFile);
};

} // namespace Simulation

#endif

#ifndef SIMULATIONTOOL_PACKAGEVERDICT_H
#define SIMULATIONTOOL_PACKAGEVERDICT_H

#include "datafiledetails.h"
#include "verdict.h"

#include "simulationdata/signalpackage.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// One data file that lies in a package folder.
struct PackageFileVerdict
{
    const PackageDataFile* file = nullptr; ///< one of s_packageDataFiles
    qint64 bytes = 0;
    DataFileSummary summary;
};

/// The verdict on a signal package: the one that every command gives.
struct PackageVerdict
{
    Simulation::SignalPackage package;
    Verdict descriptor;
    QList<PackageFileVerdict> files; ///< those that are there
    Verdict worst;                   ///< of the package as a whole
    QStringList problems;            ///< every fault in a few words; empty when the package is in order
};

/// Reads the descriptor and the header of every data file of the package that
/// lies in the folder.
[[nodiscard]] PackageVerdict packageVerdict(const QString& a_sFolder);

/// The verdict on a descriptor file that gave this package.
[[nodiscard]] Verdict descriptorVerdict(const Simulation::SignalPackage& a_package, const QString& a_sFile);

/// Why the spectra of a package cannot be played although they can be read;
/// empty when they can: spectra repeat over the duration of the descriptor.
[[nodiscard]] QString durationProblem(const Simulation::SignalPackage& a_package);

} // namespace SimulationTool

#endif

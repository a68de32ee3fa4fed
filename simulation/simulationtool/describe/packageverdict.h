#ifndef SIMULATIONTOOL_PACKAGEVERDICT_H
#define SIMULATIONTOOL_PACKAGEVERDICT_H

#include "datafiledetails.h"
#include "verdict.h"

#include "simulationdata/signalpackage.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// One data file of a package folder.
struct PackageFileVerdict
{
    const PackageDataFile* file = nullptr; ///< one of s_packageDataFiles
    qint64 bytes = 0;
    QString holds; ///< its header in one line; empty when it cannot be read
    Verdict verdict;
};

/// The verdict on a signal package, shared by all commands.
struct PackageVerdict
{
    Simulation::SignalPackage package;
    Verdict descriptor;
    QList<PackageFileVerdict> files; ///< the data files that exist
    Verdict worst;                   ///< on the whole package: its most severe problem
    QStringList problems;            ///< every problem in a few words; empty when the package is in order
};

/// Reads the descriptor and the header of every data file of the package in a folder.
[[nodiscard]] PackageVerdict packageVerdict(const QString& a_sFolder);

/// The verdict on a descriptor file from which this package was read.
[[nodiscard]] Verdict descriptorVerdict(const Simulation::SignalPackage& a_package, const QString& a_sFile);

} // namespace SimulationTool

#endif

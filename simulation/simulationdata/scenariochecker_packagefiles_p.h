#ifndef SIMULATIONDATA_SCENARIOCHECKER_PACKAGEFILES_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_PACKAGEFILES_P_H

#include "scenariochecker_rules_p.h"
#include "simulationdata/signalpackage.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace Simulation {

class IFrequencySettings;

/// The packages in a folder, as far as emissions name them. Descriptors are read with
/// the first question, the files of a package with the first question about them. Used
/// on one thread.
class PackageFiles
{
public:
    /// What is wrong with the files of a package, for a sentence about it.
    struct Problems
    {
        QString damage;         ///< empty = none
        QString contradictions; ///< empty = none
    };

    /// An empty folder holds no packages.
    explicit PackageFiles(const QString& a_sFolder)
        : m_sFolder(a_sFolder)
    {}

    /// Whether there is no folder.
    [[nodiscard]] bool isEmpty() const { return m_sFolder.isEmpty(); }

    /// The package that emissions with this id use: the one of that id, or the one that
    /// supersedes it. Null when the folder has none. Valid as long as this object.
    [[nodiscard]] const SignalPackage* package(const QString& a_sId);

    /// Null when the folder has no such package.
    [[nodiscard]] const Problems* problems(const QString& a_sId);

private:
    void readPackages();

    QString m_sFolder;
    bool m_bRead = false;
    QHash<QString, SignalPackage> m_packages; ///< by cleaned id and by superseded ids
    QHash<QString, Problems> m_problems;      ///< by the path of the package
};

/// The rules about the files of the packages that a schedule uses: one finding for each
/// rule and package.
void checkPackageFiles(const EmissionSettings& a_schedule, PackageFiles& a_files, Findings& a_findings);

/// The rule about hoppers and sweeps that are wider than a package of the schedule. A
/// package's bandwidth counts as Hz, the unit of the default packages. The bandwidth of
/// a record without one is taken from `a_files`.
void checkRange(const IFrequencySettings* a_pSettings, const EmissionSettings& a_schedule,
                PackageFiles& a_files, Findings& a_findings);

} // namespace Simulation

#endif

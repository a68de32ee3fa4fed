#include "packagelist.h"

#include "datafiledetails.h"
#include "packagedetails.h"

#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefolder.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <tuple>

namespace SimulationTool {

namespace {

ListedPackage readPackage(const QString& a_sFolder, const QString& a_sRelative)
{
    const Simulation::SignalPackage package = Simulation::SignalPackageFolder::signalPackage(a_sFolder);
    ListedPackage listed{a_sRelative,
                         package.id(),
                         package.cleanId(),
                         package.name(),
                         modulationText(package),
                         package.signalBandwidth(),
                         package.duration(),
                         {},
                         {}};
    if (listed.id.isEmpty()) {
        listed.problems.append(QStringLiteral("no id"));
    }
    for (const PackageDataFile& file : s_packageDataFiles) {
        const QString sFile = file.path(a_sFolder);
        if (!QFileInfo::exists(sFile)) {
            continue;
        }
        listed.files.append(QLatin1String(file.kind));
        if (const Verdict verdict = file.summary(sFile).verdict; verdict.code != ExitCode::Ok) {
            listed.problems.append(QStringLiteral("%1 %2").arg(QLatin1String(file.name), verdict.text));
        }
    }
    // Spectra repeat over the duration: without one there is none for any time.
    if (!listed.id.isEmpty() && listed.duration == 0 && listed.files.contains(QStringLiteral("ssf"))) {
        listed.problems.append(QStringLiteral("no duration"));
    }
    return listed;
}

/// Of packages that would get the same files in a cache only one can be used.
void findSameIds(QList<ListedPackage>& a_packages)
{
    QHash<QString, QString> folders;
    for (ListedPackage& package : a_packages) {
        if (package.id.isEmpty()) {
            continue;
        }
        const auto known = folders.constFind(package.cleanId);
        if (known != folders.constEnd()) {
            package.problems.append(QStringLiteral("same id as ") + *known);
        } else {
            folders.insert(package.cleanId, package.folder);
        }
    }
}

} // namespace

QList<ListedPackage> listPackages(const QString& a_sFolder)
{
    const QDir folder(a_sFolder);
    QList<ListedPackage> packages;
    for (const QString& sFolder : Simulation::SignalPackageFolder::list(a_sFolder)) {
        packages.append(readPackage(sFolder, folder.relativeFilePath(sFolder)));
    }
    std::sort(packages.begin(), packages.end(),
              [](const ListedPackage& a_first, const ListedPackage& a_second) {
                  return std::tie(a_first.name, a_first.id, a_first.folder) <
                         std::tie(a_second.name, a_second.id, a_second.folder);
              });
    findSameIds(packages);
    return packages;
}

} // namespace SimulationTool

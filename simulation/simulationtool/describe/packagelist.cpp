#include "packagelist.h"

#include "packagedetails.h"
#include "packageverdict.h"

#include "simulationdata/signalpackagefolder.h"

#include <QDir>
#include <QHash>

#include <algorithm>
#include <tuple>

namespace SimulationTool {

namespace {

ListedPackage readPackage(const QString& a_sFolder, const QString& a_sRelative)
{
    const PackageVerdict verdict = packageVerdict(a_sFolder);
    const Simulation::SignalPackage& package = verdict.package;
    ListedPackage listed{a_sRelative,
                         package.id(),
                         package.cleanId(),
                         package.name(),
                         modulationText(package),
                         package.signalBandwidth(),
                         package.duration(),
                         {},
                         verdict.problems};
    for (const PackageFileVerdict& file : verdict.files) {
        listed.files.append(QLatin1String(file.file->kind));
    }
    return listed;
}

/// Adds a problem to every package that has the clean id of an earlier one: a cache can
/// use only one of them.
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

#include "signalpackagecache_sources_p.h"

#include "datastorefactory_paths_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"

#include <QDir>
#include <QFileInfo>
#include <QFuture>
#include <QtConcurrentRun>

#include <algorithm>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagecache_sources";

/// The base name of the default package's files in a cache folder.
constexpr QLatin1String s_sReservedName("Signal");

/// Whether the program unpacked the package into the repository.
bool isBuiltIn(const QString& a_sFolder)
{
    return QFileInfo(a_sFolder).dir().dirName() == s_sDefaultPackages;
}

SignalPackage readPackage(const QString& a_sFolder)
{
    SignalPackage package = SignalPackageFolder::signalPackage(a_sFolder);
    package.setPath(a_sFolder);
    return package;
}

void passOver(const SignalPackage& a_package, const QString& a_sOwner)
{
    traceError(s_szSource, [&] {
        return QStringLiteral("\"%1\" is skipped: its id \"%2\" gives the file names of %3")
            .arg(a_package.path(), a_package.id(), a_sOwner);
    });
}

} // namespace

QList<PackageSource> readPackagesBelow(const QString& a_sFolder,
                                       const std::function<bool(const SignalPackage&)>& a_isCached)
{
    const QStringList folders = SignalPackageFolder::list(a_sFolder);
    QList<QFuture<PackageSource>> tasks;
    tasks.reserve(folders.size());
    for (const QString& sFolder : folders) {
        tasks.append(QtConcurrent::run([sFolder, &a_isCached] {
            const SignalPackage package = readPackage(sFolder);
            return PackageSource{package, !package.id().isEmpty() && a_isCached(package), isBuiltIn(sFolder)};
        }));
    }
    QList<PackageSource> sources;
    sources.reserve(tasks.size());
    for (QFuture<PackageSource>& task : tasks) {
        sources.append(task.result());
    }
    std::stable_sort(sources.begin(), sources.end(), [](const auto& a_first, const auto& a_second) {
        return a_first.builtIn != a_second.builtIn
                   ? a_second.builtIn
                   : a_first.package.timestamp() > a_second.package.timestamp();
    });
    QHash<QString, QString> owners{{s_sReservedName, QStringLiteral("the default package")}}; // by cleaned id
    sources.removeIf([&owners](const PackageSource& a_source) {
        if (a_source.package.id().isEmpty()) {
            return true;
        }
        QString& sOwner = owners[a_source.package.cleanId()];
        if (!sOwner.isEmpty()) {
            passOver(a_source.package, sOwner);
            return true;
        }
        sOwner = u'"' + a_source.package.path() + u'"';
        return false;
    });
    return sources;
}

SupersededIds::SupersededIds(const QList<PackageSource>& a_sources)
{
    m_timestamps.reserve(a_sources.size());
    for (const PackageSource& source : a_sources) {
        // A built-in package counts as older than any package that supersedes it.
        m_timestamps.insert(source.package.cleanId(), source.builtIn ? 0 : source.package.timestamp());
    }
}

QStringList SupersededIds::of(const SignalPackage& a_package) const
{
    const auto uiBytes = static_cast<std::uint64_t>(
        std::max<qint64>(QFileInfo(SignalPackageFolder::signalFilePath(a_package.path())).size(), 1));
    const std::uint64_t uiLimit =
        std::min(Limits::value(Limits::UpdateIds), Limits::value(Limits::DocumentBytes) / uiBytes);
    QStringList ids;
    for (const QString& sId : a_package.updateIds()) {
        const QString sCleanId = SignalPackage::cleanId(sId);
        if (sCleanId.isEmpty() || sCleanId == s_sReservedName ||
            m_timestamps.value(sCleanId, 0) > a_package.timestamp()) {
            continue;
        }
        if (static_cast<std::uint64_t>(ids.size()) == uiLimit) {
            traceError(s_szSource, [&] {
                return QStringLiteral("\"%1\" has %2 update ids, only the first %3 are followed")
                    .arg(a_package.path(), QString::number(a_package.updateIds().size()),
                         QString::number(uiLimit));
            });
            break;
        }
        ids.append(sCleanId);
    }
    return ids;
}

} // namespace Simulation

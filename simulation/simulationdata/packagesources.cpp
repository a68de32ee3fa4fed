#include "packagesources_p.h"

#include "simulationdata/limits.h"
#include "simulationdata/signalpackagefolder.h"
#include "trace_p.h"

#include <QFileInfo>
#include <QFuture>
#include <QtConcurrentRun>

#include <algorithm>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/packagesources";

/// The default package's files stand in a cache folder under this name.
constexpr QLatin1String s_sReservedName("Signal");

SignalPackage readPackage(const QString& a_sFolder)
{
    SignalPackage package = SignalPackageFolder::signalPackage(a_sFolder);
    package.setPath(a_sFolder);
    return package;
}

void passOver(const SignalPackage& a_package, const QString& a_sOwner)
{
    traceError(s_szSource, [&] {
        return QStringLiteral(
                   "\"%1\" is passed over: with the id \"%2\" its files would be named as those of %3")
            .arg(a_package.path(), a_package.id(), a_sOwner);
    });
}

} // namespace

QList<SignalPackage> readPackagesBelow(const QString& a_sFolder)
{
    const QStringList folders = SignalPackageFolder::list(a_sFolder);
    QList<QFuture<SignalPackage>> tasks;
    tasks.reserve(folders.size());
    for (const QString& sFolder : folders) {
        tasks.append(QtConcurrent::run(&readPackage, sFolder));
    }
    QList<SignalPackage> packages;
    packages.reserve(tasks.size());
    for (QFuture<SignalPackage>& task : tasks) {
        packages.append(task.result());
    }
    std::stable_sort(packages.begin(), packages.end(), [](const auto& a_first, const auto& a_second) {
        return a_first.timestamp() > a_second.timestamp();
    });
    QHash<QString, QString> owners{{s_sReservedName, QStringLiteral("the default package")}}; // by cleaned id
    packages.removeIf([&owners](const SignalPackage& a_package) {
        if (a_package.id().isEmpty()) {
            return true;
        }
        QString& sOwner = owners[a_package.cleanId()];
        if (!sOwner.isEmpty()) {
            passOver(a_package, sOwner);
            return true;
        }
        sOwner = u'"' + a_package.path() + u'"';
        return false;
    });
    return packages;
}

SupersededIds::SupersededIds(const QList<SignalPackage>& a_packages)
{
    m_timestamps.reserve(a_packages.size());
    for (const SignalPackage& package : a_packages) {
        m_timestamps.insert(package.cleanId(), package.timestamp());
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

#include "repositorypackages.h"

#include "console/output.h"
#include "console/progress.h"
#include "console/valuetexts.h"
#include "repositoryfolder.h"

#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecache.h"
#include "simulationdata/signalpackagecheck.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"

#include <QDir>
#include <QFileInfo>

namespace SimulationTool {

namespace {

constexpr std::uint64_t s_uiLoggedMessages = 20;

/// Whether a path is the folder itself or lies in it. Resolves links in the existing
/// part of the path.
bool isInside(const QString& a_sPath, const QString& a_sFolder)
{
    QFileInfo place(QDir(a_sPath).absolutePath());
    while (!place.exists() && !place.isRoot()) {
        place.setFile(place.path());
    }
    const QString sPlace = place.canonicalFilePath();
    const QString sFolder = QFileInfo(a_sFolder).canonicalFilePath();
    return sPlace == sFolder || sPlace.startsWith(sFolder.endsWith(u'/') ? sFolder : sFolder + u'/');
}

/// The error text for a folder that must not be used as a cache, because the cache
/// would replace the user's files. Empty for a usable folder.
QString cacheError(const QString& a_sCache, const QString& a_sRepository)
{
    if (QFileInfo::exists(a_sCache) && !QFileInfo(a_sCache).isDir()) {
        return QStringLiteral("is not a folder");
    }
    if (isInside(a_sCache, a_sRepository)) {
        return QStringLiteral("lies in the repository: choose another --cache");
    }
    // A cache folder also looks like a signal package, because it contains the files of
    // the built-in package.
    return Simulation::SignalPackageFolder::isValid(a_sCache) &&
                   !Simulation::SignalPackageCache::isCacheFolder(a_sCache)
               ? QStringLiteral("is a signal package, not a cache: choose another --cache")
               : QString();
}

} // namespace

RepositoryPackages::RepositoryPackages()
    : m_log(&complain)
{}

RepositoryPackages::~RepositoryPackages() = default;

bool RepositoryPackages::open(const QString& a_sRepository, const QString& a_sCache)
{
    QString sError = folderError(a_sRepository);
    if (!sError.isEmpty()) {
        complain(QStringLiteral("%1: %2").arg(a_sRepository, sError));
        return false;
    }
    QString sCache = a_sCache;
    if (a_sCache.isEmpty()) {
        m_temporary = std::make_unique<QTemporaryDir>();
        sCache = m_temporary->path();
        sError = m_temporary->isValid() ? QString() : m_temporary->errorString();
    } else {
        sError = cacheError(a_sCache, a_sRepository);
    }
    if (sError.isEmpty()) {
        m_cache = std::make_unique<Simulation::SignalPackageCache>(sCache, packageStoreOf(a_sRepository));
        setProvider(m_cache.get());
        if (fillCache()) {
            return true;
        }
        sError = QStringLiteral("cannot be used as cache folder: ") + m_cache->copyFailures().firstReason;
    }
    complain(QStringLiteral("%1: %2").arg(sCache, sError));
    return false;
}

bool RepositoryPackages::fillCache()
{
    if (!m_cache->prepareCacheForUse()) {
        return false;
    }
    reportCopyFailures(QStringLiteral("the built-in package"));
    updateCache();
    const auto uiFailed = static_cast<quint64>(m_cache->copyFailures().packages);
    // An error without failed packages means that no package was read, for example
    // because a folder is missing.
    reportCopyFailures(uiFailed == 0
                           ? QStringLiteral("the packages of the repository")
                           : QStringLiteral("%1 of the repository").arg(counted(uiFailed, "package")));
    return true;
}

void RepositoryPackages::reportCopyFailures(const QString& a_sWhat)
{
    const auto failures = m_cache->copyFailures();
    if (failures.firstReason.isEmpty()) {
        return;
    }
    m_bComplete = false;
    log(QStringLiteral("%1 could not be copied to the cache folder %2, the first reason is: %3. Remove the "
                       "cause or choose another folder (--cache or TMPDIR), then run this again")
            .arg(a_sWhat, m_cache->cacheDir(), failures.firstReason));
}

void RepositoryPackages::updateCache()
{
    const QDir folder(m_cache->cacheDir());
    const Progress progress(QStringLiteral("copying signal packages into the cache"), [folder] {
        const QStringList copied = folder.entryList({QStringLiteral("*.xml")}, QDir::Files);
        return counted(static_cast<quint64>(copied.size()), "package");
    });
    m_cache->updateCache(m_cache->sourceDir(), false);
}

std::optional<float> RepositoryPackages::levelAt(const std::shared_ptr<Simulation::SignalPackage>& a_package,
                                                 std::int64_t a_iTime)
{
    Simulation::SignalShapeFile* const pReader = m_cache->signalShapeFile(a_package);
    if (pReader == nullptr || a_iTime < 0) {
        return std::nullopt;
    }
    if (!m_checkedIds.contains(a_package->id())) {
        m_checkedIds.insert(a_package->id());
        checkShape(*a_package, *pReader);
    }
    if (!pReader->isOpen() || pReader->recordCount() == 0 || a_package->duration() == 0) {
        return std::nullopt;
    }
    pReader->readSpectrum(static_cast<std::uint32_t>(a_iTime % a_package->duration()));
    return pReader->signalLevelInSpectrum();
}

void RepositoryPackages::checkShape(const Simulation::SignalPackage& a_package,
                                    const Simulation::SignalShapeFile& a_reader)
{
    using Check = Simulation::SignalPackageCheck;
    if (const QString sProblem = Check::problemOf(a_reader).text; !sProblem.isEmpty()) {
        log(QStringLiteral("package %1: its signal shape file is %2").arg(a_package.id(), sProblem));
    } else if (const QString sError = Check::durationError(a_package); !sError.isEmpty()) {
        log(QStringLiteral("package %1: %2").arg(a_package.id(), sError));
    }
}

void RepositoryPackages::log(const QString& a_sMessage)
{
    if (++m_uiLogged <= s_uiLoggedMessages) {
        m_messages.append(a_sMessage);
        m_log(a_sMessage);
    }
}

ExitCode RepositoryPackages::finish()
{
    if (m_uiLogged > s_uiLoggedMessages) {
        complain(QStringLiteral("and %1 more of that kind").arg(m_uiLogged - s_uiLoggedMessages));
    }
    return m_uiLogged == 0 ? ExitCode::Ok : ExitCode::Findings;
}

std::shared_ptr<Simulation::SignalPackage> RepositoryPackages::signalPackage(const QString& a_sId)
{
    // An emission without a package id uses the default package.
    if (!a_sId.isEmpty() && !m_unknownIds.contains(a_sId) && !validSignalPackageId(a_sId)) {
        m_unknownIds.insert(a_sId);
        log(QStringLiteral("package %1 is not in the repository: the default package is used").arg(a_sId));
    }
    return ForwardingPackages::signalPackage(a_sId);
}

} // namespace SimulationTool

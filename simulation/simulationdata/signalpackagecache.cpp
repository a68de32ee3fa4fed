#include "signalpackagecache.h"

#include "datastorefactory_paths_p.h"
#include "signalpackagecache_folder_p.h"
#include "simulationdata/audiofile.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/symboldatafile.h"

#include <QFileInfo>
#include <QReadLocker>
#include <QWriteLocker>

#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagecache";

} // namespace

template<typename Reader>
void SignalPackageCache::Readers<Reader>::retire()
{
    for (auto& [sId, opened] : current) {
        retired.push_back(std::move(opened));
    }
    current.clear();
}

template<typename Reader>
void SignalPackageCache::Readers<Reader>::retire(const QString& a_sId)
{
    if (auto node = current.extract(a_sId)) {
        retired.push_back(std::move(node.mapped()));
    }
}

SignalPackageCache::SignalPackageCache(const QString& a_sCacheDir, const QString& a_sSourceDir)
    : m_folder(std::make_unique<PackageCacheFolder>(a_sCacheDir))
    , m_sSourceDir(a_sSourceDir)
    , m_lock(QReadWriteLock::Recursive)
{}

SignalPackageCache::~SignalPackageCache()
{
    deleteAllSignalpackages();
}

QString SignalPackageCache::cacheDir() const
{
    return m_folder->path();
}

bool SignalPackageCache::isCacheFolder(const QString& a_sFolder)
{
    return PackageCacheFolder(a_sFolder).wasPrepared();
}

bool SignalPackageCache::prepareCacheForUse()
{
    const QWriteLocker locker(&m_lock);
    m_failures = {};
    const std::shared_ptr<SignalPackage> package = m_folder->prepare(&m_failures);
    if (!package) {
        return false;
    }
    m_packages.erase(package->id());
    m_builtIn = package;
    resolveDefault();
    return true;
}

/// Determines the default package: the package in the folder that has the built-in
/// package's id, else the built-in package. While such a package from the folder is known,
/// the folder is not searched again.
void SignalPackageCache::resolveDefault()
{
    if (!m_builtIn) {
        return;
    }
    const QString sId = m_builtIn->id();
    std::shared_ptr<SignalPackage>& known = m_packages[sId];
    if (known && known != m_builtIn) {
        return;
    }
    known = m_folder->package(sId);
    if (!known) {
        known = m_builtIn;
    } else {
        m_shapeFiles.retire(sId);
        m_audioFiles.retire(sId);
        m_symbolFiles.retire(sId);
        m_resultFiles.retire(sId);
    }
    // A package that supersedes the built-in one has another id. It is used for the
    // built-in package's id, but not for unknown ids.
    m_defaultPackage = known->id() == sId ? known : m_builtIn;
}

void SignalPackageCache::updateCache(const QString& a_sFolder, bool a_bAnew)
{
    const QWriteLocker locker(&m_lock);
    const QString sFolder = resolvedStorePath(a_sFolder);
    // When the repository cannot be reached, the packages already cached from it
    // must stay.
    const bool bThere = !sFolder.isEmpty() && QFileInfo(sFolder).isDir();
    if (!bThere || !m_folder->exists()) {
        m_failures = {0,
                      QStringLiteral("There is no folder \"%1\"").arg(bThere ? m_folder->path() : a_sFolder)};
        traceError(s_szSource, [&] { return m_failures.firstReason; });
        return;
    }
    const PackageCacheFolder::Update update = m_folder->update(sFolder, a_bAnew);
    if (a_bAnew || update.replaced) {
        forget();
    }
    m_failures = update.failures;
    resolveDefault();
}

SignalPackageCache::CopyFailures SignalPackageCache::copyFailures()
{
    const QReadLocker locker(&m_lock);
    return m_failures;
}

void SignalPackageCache::clearCache()
{
    const QWriteLocker locker(&m_lock);
    forget();
    m_folder->clear();
    resolveDefault();
}

void SignalPackageCache::deleteAllSignalpackages()
{
    const QWriteLocker locker(&m_lock);
    m_packages.clear();
    m_shapeFiles = {};
    m_audioFiles = {};
    m_symbolFiles = {};
    m_resultFiles = {};
}

bool SignalPackageCache::validSignalPackageId(const QString& a_sId)
{
    {
        const QReadLocker locker(&m_lock);
        if (m_packages.contains(a_sId) || (m_builtIn && m_builtIn->id() == a_sId)) {
            return true;
        }
    }
    return m_folder->holds(a_sId);
}

std::shared_ptr<SignalPackage> SignalPackageCache::signalPackage(const QString& a_sId)
{
    {
        const QReadLocker locker(&m_lock);
        if (const auto known = m_packages.find(a_sId); known != m_packages.end()) {
            return known->second;
        }
    }
    const QWriteLocker locker(&m_lock);
    // Another thread may have inserted the package meanwhile.
    if (const auto known = m_packages.find(a_sId); known != m_packages.end()) {
        return known->second;
    }
    std::shared_ptr<SignalPackage> package = m_folder->package(a_sId);
    if (!package) {
        return m_defaultPackage;
    }
    m_packages.emplace(a_sId, package);
    return package;
}

std::shared_ptr<SignalPackage> SignalPackageCache::defaultSignalPackage()
{
    const QReadLocker locker(&m_lock);
    return m_defaultPackage;
}

SignalShapeFile* SignalPackageCache::signalShapeFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_shapeFiles, a_pPackage.get(), PackageCacheFolder::s_szShape);
}

AudioFile* SignalPackageCache::audioFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_audioFiles, a_pPackage.get(), PackageCacheFolder::s_szAudio);
}

SymbolDataFile* SignalPackageCache::symbolDataFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_symbolFiles, a_pPackage.get(), PackageCacheFolder::s_szSymbols);
}

ResultDataFile* SignalPackageCache::resultDataFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_resultFiles, a_pPackage.get(), PackageCacheFolder::s_szResults);
}

template<typename Reader>
Reader* SignalPackageCache::reader(Readers<Reader>& a_readers, const SignalPackage* a_pPackage,
                                   const char* a_szEnding)
{
    if (a_pPackage == nullptr) {
        return nullptr;
    }
    const QString sId = a_pPackage->id();
    {
        const QReadLocker locker(&m_lock);
        if (const auto known = a_readers.current.find(sId); known != a_readers.current.end()) {
            return known->second.get();
        }
    }
    const QWriteLocker locker(&m_lock);
    // Another thread may have inserted the reader meanwhile.
    if (const auto known = a_readers.current.find(sId); known != a_readers.current.end()) {
        return known->second.get();
    }
    std::unique_ptr<Reader> opened = makeReader<Reader>(*a_pPackage, a_szEnding);
    return opened ? a_readers.current.emplace(sId, std::move(opened)).first->second.get() : nullptr;
}

/// `a_package` may be outdated or contain only an id, so the package in the folder
/// determines the file and the duration.
template<typename Reader>
std::unique_ptr<Reader> SignalPackageCache::makeReader(const SignalPackage& a_package,
                                                       const char* a_szEnding) const
{
    const auto isOfId = [&](const std::shared_ptr<SignalPackage>& a_other) {
        return a_other && a_other->cleanId() == a_package.cleanId();
    };
    const std::shared_ptr<SignalPackage> cached = m_folder->package(a_package.id());
    const bool bBuiltIn = !isOfId(cached) && isOfId(m_builtIn);
    const QString sFile =
        bBuiltIn ? m_folder->builtInFile(a_szEnding) : m_folder->fileOf(a_package.id(), a_szEnding);
    if (sFile.isEmpty()) {
        return nullptr;
    }
    auto opened = std::make_unique<Reader>(sFile);
    const SignalPackage& described = bBuiltIn ? *m_builtIn : isOfId(cached) ? *cached : a_package;
    opened->setPackageDuration(described.duration());
    static_cast<void>(opened->open()); // open() traces its failure
    return opened;
}

/// Empties the maps of packages and readers; readers that were returned stay valid.
void SignalPackageCache::forget()
{
    m_packages.clear();
    m_shapeFiles.retire();
    m_audioFiles.retire();
    m_symbolFiles.retire();
    m_resultFiles.retire();
}

} // namespace Simulation

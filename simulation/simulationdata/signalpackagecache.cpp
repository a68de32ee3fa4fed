#include "signalpackagecache.h"

#include "documentfile_p.h"
#include "resourcearchive_p.h"
#include "storepath_p.h"
#include "trace_p.h"
#include "wholefile_p.h"

#include "simulationdata/audiofile.h"
#include "simulationdata/limits.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/symboldatafile.h"
#include "simulationdata/xmlelement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QHash>
#include <QLockFile>
#include <QReadLocker>
#include <QtConcurrentRun>
#include <QWriteLocker>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagecache";

// The endings of a package's files in the cache folder.
constexpr const char* s_szDescriptor = "xml";
constexpr const char* s_szShape = "ssf";
constexpr const char* s_szAudio = "wav";
constexpr const char* s_szSymbols = "sdf";
constexpr const char* s_szResults = "rdf";

constexpr QLatin1String s_sDefaultArchive(":/DefaultData/Default.zip");
constexpr QLatin1String s_sArchiveName("tmp.zip");
constexpr QLatin1String s_sDescriptorRoot("SignalPackage");
constexpr QLatin1String s_sLockName("simulationdata.lock");
constexpr std::chrono::seconds s_lockTimeout{30}; ///< far longer than preparing takes

/// A package's data files: how they end in the cache folder, and where they lie
/// in a package folder.
struct DataFile
{
    const char* ending;
    QString (*path)(const QString& a_sPackageFolder);
};

constexpr std::array<DataFile, 4> s_dataFiles{{
    {s_szShape, &SignalPackageFolder::signalShapeFilePath},
    {s_szAudio, &SignalPackageFolder::audioFilePath},
    {s_szSymbols, &SignalPackageFolder::symbolDataFilePath},
    {s_szResults, &SignalPackageFolder::resultDataFilePath},
}};

/// The update ids that a package may have, within the limit.
QStringList followedUpdateIds(const SignalPackage& a_package)
{
    QStringList ids = a_package.updateIds();
    ids.removeAll(QString());
    const auto iLimit = static_cast<qsizetype>(Limits::value(Limits::UpdateIds));
    if (ids.size() > iLimit) {
        traceError(s_szSource, [&] {
            return QStringLiteral("\"%1\" has %2 update ids: %3")
                .arg(a_package.path(), QString::number(ids.size()), Limits::exceeded(Limits::UpdateIds));
        });
        ids.resize(iLimit);
    }
    return ids;
}

} // namespace

template<typename Reader>
void SignalPackageCache::Readers<Reader>::retire()
{
    for (auto& [sId, opened] : current) {
        retired.push_back(std::move(opened));
    }
    current.clear();
}

SignalPackageCache::SignalPackageCache(const QString& a_sCacheDir, const QString& a_sSourceDir)
    : m_sCacheDir(a_sCacheDir.isEmpty() ? QString() : QDir(a_sCacheDir).absolutePath())
    , m_sSourceDir(a_sSourceDir)
    , m_lock(QReadWriteLock::Recursive)
{}

SignalPackageCache::~SignalPackageCache()
{
    deleteAllSignalpackages();
}

bool SignalPackageCache::prepareCacheForUse()
{
    const QWriteLocker locker(&m_lock);
    if (m_sCacheDir.isEmpty() || !QDir().mkpath(m_sCacheDir)) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("Cannot make the cache folder \"%1\"").arg(m_sCacheDir); });
        return false;
    }
    // Without the lock, in a folder that cannot be written, what others have
    // prepared is still good.
    QLockFile folderLock(QDir(m_sCacheDir).filePath(s_sLockName));
    if (folderLock.tryLock(s_lockTimeout)) {
        removeAbandonedFiles(m_sCacheDir);
        unpackDefaultPackage();
    }
    auto package = std::make_shared<SignalPackage>(SignalPackageFolder::signalPackage(m_sCacheDir));
    if (package->id().isEmpty()) {
        return false; // the reader of the descriptor has told why
    }
    m_defaultPackage = package;
    m_packages[package->id()] = package;
    return true;
}

void SignalPackageCache::updateCache(const QString& a_sFolder, bool a_bAnew)
{
    const QWriteLocker locker(&m_lock);
    const QString sFolder = resolvedStorePath(a_sFolder);
    // A repository that is out of reach must not cost what is cached of it.
    if (sFolder.isEmpty() || !QFileInfo(sFolder).isDir()) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("There is no folder \"%1\" with packages").arg(a_sFolder); });
        return;
    }
    if (a_bAnew) {
        clear();
    }
    if (!QFileInfo(m_sCacheDir).isDir()) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("There is no cache folder \"%1\"").arg(m_sCacheDir); });
        return;
    }
    const QList<SignalPackage> packages = readPackages(listSignalPackages(sFolder));
    // The descriptors come first: by them clearCache() finds what it may remove.
    cacheDescriptors(packages);
    QList<QFuture<void>> tasks;
    tasks.reserve(packages.size());
    for (const SignalPackage& package : packages) {
        tasks.append(QtConcurrent::run([this, &package] { cachePackage(package); }));
    }
    for (QFuture<void>& task : tasks) {
        task.waitForFinished();
    }
    trace(ErrorHandler::TraceProgress, s_szSource, [&] {
        return QStringLiteral("The cache was updated by the %1 packages below \"%2\"")
            .arg(QString::number(packages.size()), a_sFolder);
    });
}

void SignalPackageCache::clearCache()
{
    const QWriteLocker locker(&m_lock);
    clear();
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
        if (m_packages.contains(a_sId) || (m_defaultPackage && m_defaultPackage->id() == a_sId)) {
            return true;
        }
    }
    return !a_sId.isEmpty() && QFileInfo::exists(cachedFile(cleanId(a_sId), s_szDescriptor));
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
    // Another thread may have been faster.
    if (const auto known = m_packages.find(a_sId); known != m_packages.end()) {
        return known->second;
    }
    std::shared_ptr<SignalPackage> package = readPackage(a_sId);
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
    return reader(m_shapeFiles, a_pPackage.get(), s_szShape);
}

AudioFile* SignalPackageCache::audioFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_audioFiles, a_pPackage.get(), s_szAudio);
}

SymbolDataFile* SignalPackageCache::symbolDataFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_symbolFiles, a_pPackage.get(), s_szSymbols);
}

ResultDataFile* SignalPackageCache::resultDataFile(std::shared_ptr<SignalPackage> a_pPackage)
{
    return reader(m_resultFiles, a_pPackage.get(), s_szResults);
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
    // Another thread may have been faster.
    if (const auto known = a_readers.current.find(sId); known != a_readers.current.end()) {
        return known->second.get();
    }
    const QString sFile = cachedFile(cleanId(sId), a_szEnding);
    if (sId.isEmpty() || !QFileInfo::exists(sFile)) {
        return nullptr;
    }
    auto opened = std::make_unique<Reader>(sFile);
    opened->setPackageDuration(a_pPackage->duration());
    static_cast<void>(opened->open()); // it has told why if it could not
    return a_readers.current.emplace(sId, std::move(opened)).first->second.get();
}

/// Makes the files of the default package: under their own names, and the data
/// under those by which its readers are looked up. Both take the place of what
/// an older program has put there.
void SignalPackageCache::unpackDefaultPackage() const
{
    if (!unpackResource(s_sDefaultArchive, m_sCacheDir, QStringLiteral("/"), m_sCacheDir)) {
        return;
    }
    const QString sCleanId = SignalPackageFolder::signalPackage(m_sCacheDir).cleanId();
    for (const DataFile& file : s_dataFiles) {
        const QString sSource = file.path(m_sCacheDir);
        if (QFileInfo::exists(sSource)) {
            static_cast<void>(replaceByCopy(sSource, cachedFile(sCleanId, file.ending)));
        }
    }
}

/// Empties maps and folder; readers that were handed out live on.
void SignalPackageCache::clear()
{
    m_packages.clear();
    m_shapeFiles.retire();
    m_audioFiles.retire();
    m_symbolFiles.retire();
    m_resultFiles.retire();
    if (!m_sCacheDir.isEmpty()) {
        removePackages();
    }
}

void SignalPackageCache::removePackages() const
{
    const QDir folder(m_sCacheDir);
    const QStringList descriptors =
        folder.entryList({QStringLiteral("*.xml")}, QDir::Files | QDir::NoSymLinks | QDir::CaseSensitive);
    QStringList left;
    for (const QString& sDescriptor : descriptors) {
        if (isOurDescriptor(folder.filePath(sDescriptor)) &&
            !removeCachedFiles(QFileInfo(sDescriptor).completeBaseName())) {
            left.append(sDescriptor);
        }
    }
    // Under this name older programs unpacked, and so may others.
    const QString sFormer = folder.filePath(s_sArchiveName);
    if (isCopyOfResource(sFormer, s_sDefaultArchive)) {
        makeWritable(sFormer);
        QFile::remove(sFormer);
    }
    if (!left.isEmpty()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("%1 packages in \"%2\" cannot be removed, the first is \"%3\"")
                .arg(QString::number(left.size()), m_sCacheDir, left.front());
        });
    }
}

/// Whether the cache made the descriptor: the folder may be one that everybody
/// uses, such as that for temporary files.
bool SignalPackageCache::isOurDescriptor(const QString& a_sFile)
{
    QString sReason;
    const std::optional<QByteArray> descriptor = loadDocument(a_sFile, &sReason);
    if (!descriptor || XmlElement::parse(*descriptor).tagName() != s_sDescriptorRoot) {
        return false;
    }
    const SignalPackage package = SignalPackageFile::signalPackage(*descriptor);
    const QString sName = QFileInfo(a_sFile).completeBaseName();
    const auto isName = [&](const QString& a_sId) { return !a_sId.isEmpty() && cleanId(a_sId) == sName; };
    const QStringList& updateIds = package.updateIds();
    return isName(package.id()) || std::any_of(updateIds.cbegin(), updateIds.cend(), isName);
}

/// The descriptor goes last and only when the data are gone: by it they are
/// found again, after a crash as well. Data that nobody finds would later be
/// taken for those of a changed package.
bool SignalPackageCache::removeCachedFiles(const QString& a_sCleanId) const
{
    const auto remove = [&](const char* a_szEnding) {
        const QString sFile = cachedFile(a_sCleanId, a_szEnding);
        return QFile::remove(sFile) || !QFileInfo::exists(sFile);
    };
    const bool bDefault = m_defaultPackage && m_defaultPackage->cleanId() == a_sCleanId;
    bool bRemoved = true;
    for (const DataFile& file : s_dataFiles) {
        const bool bStays = bDefault && QFileInfo::exists(file.path(m_sCacheDir));
        bRemoved = (bStays || remove(file.ending)) && bRemoved;
    }
    return bRemoved && remove(s_szDescriptor);
}

/// What the folder holds of an id, or null.
std::shared_ptr<SignalPackage> SignalPackageCache::readPackage(const QString& a_sId) const
{
    const QString sFile = cachedFile(cleanId(a_sId), s_szDescriptor);
    if (a_sId.isEmpty() || !QFileInfo::exists(sFile)) {
        return nullptr;
    }
    auto package = std::make_shared<SignalPackage>(SignalPackageFile::signalPackage(sFile));
    const QString sCleanId = package->cleanId();
    if (sCleanId.isEmpty()) {
        return nullptr;
    }
    const auto hasFile = [&](const char* a_szEnding) {
        return QFileInfo::exists(cachedFile(sCleanId, a_szEnding));
    };
    package->setHasAudioContent(hasFile(s_szAudio));
    package->setHasSymbolDataContent(hasFile(s_szSymbols));
    package->setHasResultDataContent(hasFile(s_szResults));
    return package;
}

QStringList SignalPackageCache::listSignalPackages(const QString& a_sFolder)
{
    return SignalPackageFolder::list(a_sFolder);
}

/// The packages in the folders, with their paths, the newest first. One without
/// an id is left out, and so is an older one that another would take the place of.
QList<SignalPackage> SignalPackageCache::readPackages(const QStringList& a_folders)
{
    QList<QFuture<SignalPackage>> tasks;
    tasks.reserve(a_folders.size());
    for (const QString& sFolder : a_folders) {
        tasks.append(QtConcurrent::run(&SignalPackageCache::readPackageFolder, sFolder));
    }
    QList<SignalPackage> packages;
    packages.reserve(tasks.size());
    for (QFuture<SignalPackage>& task : tasks) {
        packages.append(task.result());
    }
    std::stable_sort(packages.begin(), packages.end(), [](const auto& a_first, const auto& a_second) {
        return a_first.timestamp() > a_second.timestamp();
    });
    QHash<QString, QString> taken; // the folders, by cleaned id
    packages.removeIf([&](const SignalPackage& a_package) {
        if (a_package.id().isEmpty()) {
            return true;
        }
        const QString sFirst = taken.value(a_package.cleanId());
        if (!sFirst.isEmpty()) {
            traceError(s_szSource, [&] {
                return QStringLiteral("\"%1\" is passed over: \"%2\" has its id %3")
                    .arg(a_package.path(), sFirst, a_package.id());
            });
            return true;
        }
        taken.insert(a_package.cleanId(), a_package.path());
        return false;
    });
    return packages;
}

SignalPackage SignalPackageCache::readPackageFolder(const QString& a_sFolder)
{
    SignalPackage package = SignalPackageFolder::signalPackage(a_sFolder);
    package.setPath(a_sFolder);
    return package;
}

/// An id that a newer package supersedes is to resolve to that one, whether or
/// not the older one is still there: so first come the update ids, those of the
/// newest package before others, and then the packages' own.
void SignalPackageCache::cacheDescriptors(const QList<SignalPackage>& a_packages) const
{
    QList<const SignalPackage*> missing;
    for (const SignalPackage& package : a_packages) {
        if (!QFileInfo::exists(cachedFile(package.cleanId(), s_szDescriptor))) {
            missing.append(&package);
        }
    }
    for (const SignalPackage* pPackage : missing) {
        for (const QString& sId : followedUpdateIds(*pPackage)) {
            cacheDescriptor(*pPackage, cleanId(sId));
        }
    }
    for (const SignalPackage* pPackage : missing) {
        cacheDescriptor(*pPackage, pPackage->cleanId());
    }
}

void SignalPackageCache::cacheDescriptor(const SignalPackage& a_package, const QString& a_sCleanId) const
{
    static_cast<void>(copyFileWhole(SignalPackageFolder::signalFilePath(a_package.path()),
                                    cachedFile(a_sCleanId, s_szDescriptor)));
}

/// Copies the data files of one package that the folder does not hold yet.
/// Without its descriptor, which could not be copied then, clear() would not
/// find them.
void SignalPackageCache::cachePackage(const SignalPackage& a_package) const
{
    if (!QFileInfo::exists(cachedFile(a_package.cleanId(), s_szDescriptor))) {
        return;
    }
    for (const DataFile& file : s_dataFiles) {
        const QString sSource = file.path(a_package.path());
        const QString sTarget = cachedFile(a_package.cleanId(), file.ending);
        if (!QFileInfo::exists(sTarget) && QFileInfo::exists(sSource)) {
            static_cast<void>(copyFileWhole(sSource, sTarget));
        }
    }
}

QString SignalPackageCache::cleanId(const QString& a_sId)
{
    return SignalPackage::cleanId(a_sId);
}

QString SignalPackageCache::cachedFile(const QString& a_sCleanId, const char* a_szEnding) const
{
    return QStringLiteral("%1/%2.%3").arg(m_sCacheDir, a_sCleanId, QLatin1String(a_szEnding));
}

} // namespace Simulation

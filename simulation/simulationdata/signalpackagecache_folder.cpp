#include "signalpackagecache_folder_p.h"

#include "signalpackagecache_sources_p.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/folderlock_p.h"
#include "simulationdata/io/resourcearchive_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/io/wholefile_p.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/xmlelement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QtConcurrentRun>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagecache_folder";

constexpr QLatin1String s_sDefaultArchive(":/DefaultData/Default.zip");
constexpr QLatin1String s_sArchiveName("tmp.zip");
constexpr QLatin1String s_sDescriptorRoot("SignalPackage");
constexpr QLatin1String s_sBuiltInName("Signal");

/// The data files of a package: extension in the cache folder, and path in a
/// package folder.
struct DataFile
{
    const char* ending;
    QString (*path)(const QString& a_sPackageFolder);
};

constexpr std::array<DataFile, 4> s_dataFiles{{
    {PackageCacheFolder::s_szShape, &SignalPackageFolder::signalShapeFilePath},
    {PackageCacheFolder::s_szAudio, &SignalPackageFolder::audioFilePath},
    {PackageCacheFolder::s_szSymbols, &SignalPackageFolder::symbolDataFilePath},
    {PackageCacheFolder::s_szResults, &SignalPackageFolder::resultDataFilePath},
}};

/// The built-in package has only the first two files.
constexpr std::size_t s_uiBuiltInFiles = 2;

void keepFirst(QString& a_sReason, const QString& a_sNext)
{
    if (a_sReason.isEmpty()) {
        a_sReason = a_sNext;
    }
}

/// Removes a file. Returns false with a reason when the file still exists afterwards.
bool removeFile(const QString& a_sFile, QString* a_pReason)
{
    QFile file(a_sFile);
    if (file.remove() || !file.exists()) {
        return true;
    }
    *a_pReason = QStringLiteral("Cannot remove \"%1\": %2").arg(a_sFile, file.errorString());
    return false;
}

/// Whether a cache wrote the descriptor. The folder may serve other purposes, too, such
/// as temporary files. A descriptor therefore counts only when its name is an id that
/// it contains.
bool isOurDescriptor(const QString& a_sFile)
{
    QString sReason;
    const std::optional<QByteArray> descriptor = loadDocument(a_sFile, &sReason);
    if (!descriptor || XmlElement::parse(*descriptor).tagName() != s_sDescriptorRoot) {
        return false;
    }
    const SignalPackage package = SignalPackageFile::signalPackage(*descriptor);
    const QString sName = QFileInfo(a_sFile).completeBaseName();
    const auto isName = [&](const QString& a_sId) {
        return !a_sId.isEmpty() && SignalPackage::cleanId(a_sId) == sName;
    };
    const QStringList& updateIds = package.updateIds();
    return isName(package.id()) || std::any_of(updateIds.cbegin(), updateIds.cend(), isName);
}

/// Whether a descriptor is identical to the built-in descriptor of that id, or to the
/// beginning of it.
bool isBuiltInDescriptor(const QString& a_sFile, const QString& a_sCleanId)
{
    const QString sResource = QStringLiteral(":/DefaultData/Descriptors/%1.xml").arg(a_sCleanId);
    return QFile::exists(sResource) && isCopyOfResource(a_sFile, sResource);
}

} // namespace

PackageCacheFolder::PackageCacheFolder(const QString& a_sPath)
    : m_sPath(a_sPath.isEmpty() ? QString() : QDir(a_sPath).absolutePath())
{}

bool PackageCacheFolder::exists() const
{
    return !m_sPath.isEmpty() && QFileInfo(m_sPath).isDir();
}

bool PackageCacheFolder::wasPrepared() const
{
    return exists() && (FolderLock::wasUsedIn(m_sPath) ||
                        !fileOf(SignalPackageFolder::signalPackage(m_sPath).id(), s_szShape).isEmpty());
}

std::shared_ptr<SignalPackage> PackageCacheFolder::prepare(CopyFailures* a_pFailures) const
{
    QString& sReason = a_pFailures->firstReason;
    if (m_sPath.isEmpty() || !QDir().mkpath(m_sPath)) {
        sReason = QStringLiteral("Cannot make the cache folder \"%1\"").arg(m_sPath);
        traceError(s_szSource, [&] { return sReason; });
        return nullptr;
    }
    if (const FolderLock lock(m_sPath); lock.isHeld()) {
        removeAbandonedFiles(m_sPath);
        unpackBuiltInPackage(&sReason);
    } else {
        sReason = lock.problem();
    }
    auto package = std::make_shared<SignalPackage>(SignalPackageFolder::signalPackage(m_sPath));
    const bool bWhole =
        !package->id().isEmpty() && !builtInFile(s_szShape).isEmpty() && !builtInFile(s_szAudio).isEmpty();
    // A folder that another user prepared is usable even when it is not writable.
    if (bWhole) {
        sReason.clear();
    } else {
        a_pFailures->packages = 1;
    }
    package->setHasSymbolDataContent(false);
    package->setHasResultDataContent(false);
    return package->id().isEmpty() ? nullptr : package;
}

/// Unpacks the built-in package over the files of an older program version. Old
/// versions also copied the data to names that a package of the repository may now use:
/// those copies are removed.
void PackageCacheFolder::unpackBuiltInPackage(QString* a_pReason) const
{
    if (!unpackResource(s_sDefaultArchive, m_sPath, QStringLiteral("/"), m_sPath, a_pReason)) {
        return;
    }
    const QString sId = SignalPackageFolder::signalPackage(m_sPath).id();
    for (std::size_t i = 0; i < s_uiBuiltInFiles && !holds(sId); ++i) {
        QFile::remove(file(SignalPackage::cleanId(sId), s_dataFiles[i].ending));
    }
}

void PackageCacheFolder::clear() const
{
    if (!exists()) {
        return;
    }
    // Without the lock, the descriptor of a package that another process copies could
    // be removed.
    if (const FolderLock lock(m_sPath); lock.isHeld()) {
        removePackages();
    }
}

void PackageCacheFolder::removePackages() const
{
    const QDir folder(m_sPath);
    const QStringList descriptors =
        folder.entryList({QStringLiteral("*.xml")}, QDir::Files | QDir::NoSymLinks | QDir::CaseSensitive);
    QStringList left;
    for (const QString& sDescriptor : descriptors) {
        const QString sCleanId = QFileInfo(sDescriptor).completeBaseName();
        if (isOurDescriptor(folder.filePath(sDescriptor)) && !removeFiles(sCleanId)) {
            left.append(sDescriptor);
        }
    }
    // Older program versions left the archive under this name. Other programs may use
    // the name, too, so only a copy of the archive is removed.
    const QString sFormer = folder.filePath(s_sArchiveName);
    if (isCopyOfResource(sFormer, s_sDefaultArchive)) {
        makeWritable(sFormer);
        QFile::remove(sFormer);
    }
    if (!left.isEmpty()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("%1 packages in \"%2\" cannot be removed, the first is \"%3\"")
                .arg(QString::number(left.size()), m_sPath, left.front());
        });
    }
}

/// The descriptor is removed last, and only when the data files are gone, because the
/// data files are found through the descriptor, even after a crash. Data files without
/// a descriptor would remain and later be taken for those of a changed package.
bool PackageCacheFolder::removeFiles(const QString& a_sCleanId) const
{
    QString sReason;
    return removeData(a_sCleanId, &sReason) && removeFile(file(a_sCleanId, s_szDescriptor), &sReason);
}

bool PackageCacheFolder::removeData(const QString& a_sCleanId, QString* a_pReason) const
{
    bool bRemoved = true;
    for (const DataFile& data : s_dataFiles) {
        bRemoved = removeFile(file(a_sCleanId, data.ending), a_pReason) && bRemoved;
    }
    return bRemoved;
}

PackageCacheFolder::Update PackageCacheFolder::update(const QString& a_sRepository, bool a_bAnew) const
{
    // Copying is safe even without the lock, because each file appears in the folder
    // complete or not at all.
    const FolderLock lock(m_sPath);
    Update result;
    CopyFailures& failures = result.failures;
    if (a_bAnew && lock.isHeld()) {
        removePackages();
    } else if (a_bAnew) {
        failures.firstReason = lock.problem();
    }
    QList<PackageSource> sources = readPackagesBelow(
        a_sRepository, [this](const SignalPackage& a_package) { return isComplete(a_package); });
    Reasons reasons(static_cast<std::size_t>(sources.size()));
    result.replaced = replaceBuiltIns(sources, lock, reasons);
    for (PackageSource& source : sources) {
        source.cached = result.replaced ? isComplete(source.package) : source.cached;
    }
    // Descriptors are copied first, because removePackages() finds the files of a
    // package by its descriptor.
    copyDescriptors(sources, reasons);
    QList<QFuture<QString>> tasks;
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        const PackageSource& source = sources[static_cast<qsizetype>(i)];
        const bool bSkip = source.cached || !reasons[i].isEmpty();
        tasks.append(QtConcurrent::run(
            [this, &source, bSkip] { return bSkip ? QString() : copyData(source.package); }));
    }
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        keepFirst(reasons[i], tasks[static_cast<qsizetype>(i)].result());
        keepFirst(failures.firstReason, reasons[i]);
        failures.packages += reasons[i].isEmpty() ? 0 : 1;
    }
    trace(ErrorHandler::TraceProgress, s_szSource, [&] {
        const auto isCached = [](const PackageSource& a_source) { return a_source.cached; };
        const qsizetype iCached = std::count_if(sources.cbegin(), sources.cend(), isCached);
        return QStringLiteral("%1 of the %2 packages below \"%3\" were copied into the cache")
            .arg(QString::number(sources.size() - iCached), QString::number(sources.size()), a_sRepository);
    });
    return result;
}

/// A built-in package is cached only while no user's package has its id. The files
/// of both must not be mixed, so a user's package replaces the built-in package
/// immediately, even when the cache is not cleared. A user's package with the built-in
/// descriptor is the same package and replaces nothing. Returns whether anything was
/// replaced.
bool PackageCacheFolder::replaceBuiltIns(const QList<PackageSource>& a_sources, const FolderLock& a_lock,
                                         Reasons& a_reasons) const
{
    bool bReplaced = false;
    for (qsizetype i = 0; i < a_sources.size(); ++i) {
        const SignalPackage& package = a_sources[i].package;
        for (const QString& sId : package.updateIds() + QStringList(package.id())) {
            const QString sCleanId = SignalPackage::cleanId(sId);
            if (a_sources[i].builtIn || !isBuiltInDescriptor(file(sCleanId, s_szDescriptor), sCleanId) ||
                isBuiltInDescriptor(SignalPackageFolder::signalFilePath(package.path()), sCleanId)) {
                continue;
            }
            keepFirst(a_reasons[static_cast<std::size_t>(i)],
                      a_lock.isHeld() ? replaceBuiltIn(package, sCleanId) : a_lock.problem());
            bReplaced = bReplaced || a_lock.isHeld();
        }
    }
    return bReplaced;
}

/// The descriptor is replaced last: a process that dies before this leaves the built-in
/// descriptor, and the next process repeats the replacement.
QString PackageCacheFolder::replaceBuiltIn(const SignalPackage& a_package, const QString& a_sCleanId) const
{
    QString sReason;
    if (removeData(a_sCleanId, &sReason)) {
        static_cast<void>(replaceByCopy(SignalPackageFolder::signalFilePath(a_package.path()),
                                        file(a_sCleanId, s_szDescriptor), &sReason));
    }
    return sReason;
}

/// A superseded id shall resolve to the package that supersedes it, even when the older
/// package still exists. An existing descriptor is never replaced. The descriptors are
/// therefore first copied under the update ids, beginning with the newest package, and
/// then under the packages' own ids.
void PackageCacheFolder::copyDescriptors(const QList<PackageSource>& a_sources, Reasons& a_reasons) const
{
    std::vector<std::pair<const SignalPackage*, QString*>> missing;
    for (qsizetype i = 0; i < a_sources.size(); ++i) {
        const SignalPackage& package = a_sources[i].package;
        // After a power failure a file may exist without its bytes.
        if (!a_sources[i].cached && QFileInfo(file(package.cleanId(), s_szDescriptor)).size() == 0) {
            missing.emplace_back(&package, &a_reasons[static_cast<std::size_t>(i)]);
        }
    }
    const SupersededIds superseded(a_sources);
    for (const auto& [pPackage, pReason] : missing) {
        for (const QString& sCleanId : superseded.of(*pPackage)) {
            keepFirst(*pReason, copyDescriptor(*pPackage, sCleanId));
        }
    }
    for (const auto& [pPackage, pReason] : missing) {
        // With its own descriptor the package would count as complete, and a failed
        // copy would never be repeated.
        if (pReason->isEmpty()) {
            *pReason = copyDescriptor(*pPackage, pPackage->cleanId());
        }
    }
}

QString PackageCacheFolder::copyDescriptor(const SignalPackage& a_package, const QString& a_sCleanId) const
{
    return copyMissing(SignalPackageFolder::signalFilePath(a_package.path()),
                       file(a_sCleanId, s_szDescriptor));
}

/// Copies the data files, but only when the folder contains the descriptor: without a
/// descriptor removePackages() would not find the data files.
QString PackageCacheFolder::copyData(const SignalPackage& a_package) const
{
    QString sReason;
    if (QFileInfo::exists(file(a_package.cleanId(), s_szDescriptor))) {
        for (const DataFile& data : s_dataFiles) {
            keepFirst(sReason,
                      copyMissing(data.path(a_package.path()), file(a_package.cleanId(), data.ending)));
        }
    }
    return sReason;
}

bool PackageCacheFolder::isComplete(const SignalPackage& a_package) const
{
    const QString sCleanId = a_package.cleanId();
    return QFileInfo(file(sCleanId, s_szDescriptor)).size() > 0 &&
           std::none_of(s_dataFiles.begin(), s_dataFiles.end(), [&](const DataFile& a_data) {
               return isMissing(a_data.path(a_package.path()), file(sCleanId, a_data.ending));
           });
}

/// Whether the source exists but the target does not, or the target is empty and
/// the source is not.
bool PackageCacheFolder::isMissing(const QString& a_sFrom, const QString& a_sTo)
{
    const QFileInfo target(a_sTo);
    if (target.size() > 0) {
        return false;
    }
    const QFileInfo source(a_sFrom);
    return target.exists() ? source.size() > 0 : source.exists();
}

/// Copies a missing file. Returns the reason of a failure; empty on success, and when
/// another process has copied the file meanwhile.
QString PackageCacheFolder::copyMissing(const QString& a_sFrom, const QString& a_sTo)
{
    QString sReason;
    if (!isMissing(a_sFrom, a_sTo)) {
        return sReason;
    }
    if (QFileInfo::exists(a_sTo)) {
        static_cast<void>(replaceByCopy(a_sFrom, a_sTo, &sReason));
    } else if (!copyFileWhole(a_sFrom, a_sTo, &sReason) && !isMissing(a_sFrom, a_sTo)) {
        sReason.clear();
    }
    return sReason;
}

std::shared_ptr<SignalPackage> PackageCacheFolder::package(const QString& a_sId) const
{
    const QString sFile = fileOf(a_sId, s_szDescriptor);
    if (sFile.isEmpty()) {
        return nullptr;
    }
    auto package = std::make_shared<SignalPackage>(SignalPackageFile::signalPackage(sFile));
    const QString sId = package->id();
    if (sId.isEmpty()) {
        return nullptr;
    }
    package->setHasAudioContent(!fileOf(sId, s_szAudio).isEmpty());
    package->setHasSymbolDataContent(!fileOf(sId, s_szSymbols).isEmpty());
    package->setHasResultDataContent(!fileOf(sId, s_szResults).isEmpty());
    return package;
}

bool PackageCacheFolder::holds(const QString& a_sId) const
{
    return !fileOf(a_sId, s_szDescriptor).isEmpty();
}

QString PackageCacheFolder::fileOf(const QString& a_sId, const char* a_szEnding) const
{
    if (m_sPath.isEmpty() || a_sId.isEmpty()) {
        return {};
    }
    QString sFile = file(SignalPackage::cleanId(a_sId), a_szEnding);
    return QFileInfo::exists(sFile) ? sFile : QString();
}

QString PackageCacheFolder::builtInFile(const char* a_szEnding) const
{
    const auto isEnding = [&](const DataFile& a_data) { return qstrcmp(a_data.ending, a_szEnding) == 0; };
    const auto end = s_dataFiles.begin() + s_uiBuiltInFiles;
    return std::any_of(s_dataFiles.begin(), end, isEnding) ? fileOf(s_sBuiltInName, a_szEnding) : QString();
}

QString PackageCacheFolder::file(const QString& a_sCleanId, const char* a_szEnding) const
{
    return QStringLiteral("%1/%2.%3").arg(m_sPath, a_sCleanId, QLatin1String(a_szEnding));
}

} // namespace Simulation

#include "packagecachefolder_p.h"

#include "documentfile_p.h"
#include "packagesources_p.h"
#include "resourcearchive_p.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/xmlelement.h"
#include "trace_p.h"
#include "wholefile_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QLockFile>
#include <QtConcurrentRun>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/packagecachefolder";

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
    {PackageCacheFolder::s_szShape, &SignalPackageFolder::signalShapeFilePath},
    {PackageCacheFolder::s_szAudio, &SignalPackageFolder::audioFilePath},
    {PackageCacheFolder::s_szSymbols, &SignalPackageFolder::symbolDataFilePath},
    {PackageCacheFolder::s_szResults, &SignalPackageFolder::resultDataFilePath},
}};

/// The first of them, which the default package has.
constexpr std::size_t s_uiDefaultFiles = 2;

/// Keeps other processes from changing the folder meanwhile. Without the lock,
/// after a trace, the work goes on where that does no harm: every single file
/// comes and goes whole.
class FolderLock
{
public:
    explicit FolderLock(const QString& a_sFolder)
        : m_file(QDir(a_sFolder).filePath(s_sLockName))
    {
        m_file.setStaleLockTime(std::chrono::seconds(0)); // only that of a dead process is stale
        const QFileInfo info(m_file.fileName());
        // Opening a pipe would wait for ever.
        m_bHeld = (!info.exists() || info.isFile()) && m_file.tryLock(s_lockTimeout);
        if (!m_bHeld) {
            traceError(s_szSource,
                       [&] { return QStringLiteral("Cannot lock \"%1\"").arg(m_file.fileName()); });
        }
    }

    [[nodiscard]] bool isHeld() const { return m_bHeld; }

private:
    QLockFile m_file;
    bool m_bHeld = false;
};

/// Whether a cache made the descriptor: the folder may be one that everybody
/// uses, such as that for temporary files.
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

} // namespace

PackageCacheFolder::PackageCacheFolder(const QString& a_sPath)
    : m_sPath(a_sPath.isEmpty() ? QString() : QDir(a_sPath).absolutePath())
{}

bool PackageCacheFolder::exists() const
{
    return !m_sPath.isEmpty() && QFileInfo(m_sPath).isDir();
}

std::shared_ptr<SignalPackage> PackageCacheFolder::prepare() const
{
    if (m_sPath.isEmpty() || !QDir().mkpath(m_sPath)) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("Cannot make the cache folder \"%1\"").arg(m_sPath); });
        return nullptr;
    }
    // What others have prepared in a folder that cannot be written is good, too.
    if (const FolderLock lock(m_sPath); lock.isHeld()) {
        removeAbandonedFiles(m_sPath);
        unpackDefaultPackage();
    }
    auto package = std::make_shared<SignalPackage>(SignalPackageFolder::signalPackage(m_sPath));
    if (package->id().isEmpty()) {
        return nullptr; // the reader of the descriptor has told why
    }
    package->setHasSymbolDataContent(!fileOf(package->id(), s_szSymbols).isEmpty());
    package->setHasResultDataContent(!fileOf(package->id(), s_szResults).isEmpty());
    return package;
}

/// Makes the files of the default package: under their own names, and the data
/// under those by which its readers are looked up. Both take the place of what
/// an older program has put there.
void PackageCacheFolder::unpackDefaultPackage() const
{
    if (!unpackResource(s_sDefaultArchive, m_sPath, QStringLiteral("/"), m_sPath)) {
        return;
    }
    const QString sCleanId = SignalPackageFolder::signalPackage(m_sPath).cleanId();
    for (std::size_t i = 0; i < s_uiDefaultFiles; ++i) {
        static_cast<void>(replaceByCopy(s_dataFiles[i].path(m_sPath), file(sCleanId, s_dataFiles[i].ending)));
    }
}

void PackageCacheFolder::clear() const
{
    if (exists()) {
        const FolderLock lock(m_sPath);
        removePackages();
    }
}

void PackageCacheFolder::removePackages() const
{
    const QDir folder(m_sPath);
    const QString sDefault = SignalPackageFolder::isValid(m_sPath)
                                 ? SignalPackageFolder::signalPackage(m_sPath).cleanId()
                                 : QString();
    const QStringList descriptors =
        folder.entryList({QStringLiteral("*.xml")}, QDir::Files | QDir::NoSymLinks | QDir::CaseSensitive);
    QStringList left;
    for (const QString& sDescriptor : descriptors) {
        const QString sCleanId = QFileInfo(sDescriptor).completeBaseName();
        if (isOurDescriptor(folder.filePath(sDescriptor)) && !removeFiles(sCleanId, sCleanId == sDefault)) {
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
                .arg(QString::number(left.size()), m_sPath, left.front());
        });
    }
}

/// The descriptor goes last and only when the data are gone: by it they are
/// found again, after a crash as well. Data that nobody finds would later be
/// taken for those of a changed package.
bool PackageCacheFolder::removeFiles(const QString& a_sCleanId, bool a_bDefault) const
{
    const auto remove = [&](const char* a_szEnding) {
        const QString sFile = file(a_sCleanId, a_szEnding);
        return QFile::remove(sFile) || !QFileInfo::exists(sFile);
    };
    bool bRemoved = true;
    for (std::size_t i = a_bDefault ? s_uiDefaultFiles : 0; i < s_dataFiles.size(); ++i) {
        bRemoved = remove(s_dataFiles[i].ending) && bRemoved;
    }
    return bRemoved && remove(s_szDescriptor);
}

void PackageCacheFolder::update(const QString& a_sRepository, bool a_bAnew) const
{
    const FolderLock lock(m_sPath);
    if (a_bAnew) {
        removePackages();
    }
    const QList<PackageSource> sources = readPackagesBelow(
        a_sRepository, [this](const SignalPackage& a_package) { return isComplete(a_package); });
    // The descriptors come first: by them removePackages() finds what is ours.
    copyDescriptors(sources);
    QList<QFuture<void>> tasks;
    for (const PackageSource& source : sources) {
        if (!source.cached) {
            tasks.append(QtConcurrent::run([this, &source] { copyData(source.package); }));
        }
    }
    for (QFuture<void>& task : tasks) {
        task.waitForFinished();
    }
    trace(ErrorHandler::TraceProgress, s_szSource, [&] {
        return QStringLiteral("The cache was updated by %1 of the %2 packages below \"%3\"")
            .arg(QString::number(tasks.size()), QString::number(sources.size()), a_sRepository);
    });
}

/// An id that a package supersedes is to resolve to that one, whether or not the
/// older one is still there: so first come the update ids, those of the newest
/// package before others, and then the packages' own.
void PackageCacheFolder::copyDescriptors(const QList<PackageSource>& a_sources) const
{
    QList<const SignalPackage*> missing;
    for (const PackageSource& source : a_sources) {
        // After a power cut a file may be there without its bytes.
        if (!source.cached && QFileInfo(file(source.package.cleanId(), s_szDescriptor)).size() == 0) {
            missing.append(&source.package);
        }
    }
    const SupersededIds superseded(a_sources);
    for (const SignalPackage* pPackage : missing) {
        for (const QString& sCleanId : superseded.of(*pPackage)) {
            copyDescriptor(*pPackage, sCleanId);
        }
    }
    for (const SignalPackage* pPackage : missing) {
        copyDescriptor(*pPackage, pPackage->cleanId());
    }
}

void PackageCacheFolder::copyDescriptor(const SignalPackage& a_package, const QString& a_sCleanId) const
{
    copyMissing(SignalPackageFolder::signalFilePath(a_package.path()), file(a_sCleanId, s_szDescriptor));
}

/// Without its descriptor, which could not be copied then, removePackages()
/// would not find the data.
void PackageCacheFolder::copyData(const SignalPackage& a_package) const
{
    if (!QFileInfo::exists(file(a_package.cleanId(), s_szDescriptor))) {
        return;
    }
    for (const DataFile& data : s_dataFiles) {
        copyMissing(data.path(a_package.path()), file(a_package.cleanId(), data.ending));
    }
}

bool PackageCacheFolder::isComplete(const SignalPackage& a_package) const
{
    const QString sCleanId = a_package.cleanId();
    return QFileInfo(file(sCleanId, s_szDescriptor)).size() > 0 &&
           std::none_of(s_dataFiles.begin(), s_dataFiles.end(), [&](const DataFile& a_data) {
               return isMissing(a_data.path(a_package.path()), file(sCleanId, a_data.ending));
           });
}

/// Whether there is something to copy to where there is none, or an empty file.
bool PackageCacheFolder::isMissing(const QString& a_sFrom, const QString& a_sTo)
{
    const QFileInfo target(a_sTo);
    if (target.size() > 0) {
        return false;
    }
    const QFileInfo source(a_sFrom);
    return target.exists() ? source.size() > 0 : source.exists();
}

void PackageCacheFolder::copyMissing(const QString& a_sFrom, const QString& a_sTo)
{
    if (isMissing(a_sFrom, a_sTo)) {
        static_cast<void>(QFileInfo::exists(a_sTo) ? replaceByCopy(a_sFrom, a_sTo)
                                                   : copyFileWhole(a_sFrom, a_sTo));
    }
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

QString PackageCacheFolder::file(const QString& a_sCleanId, const char* a_szEnding) const
{
    return QStringLiteral("%1/%2.%3").arg(m_sPath, a_sCleanId, QLatin1String(a_szEnding));
}

} // namespace Simulation

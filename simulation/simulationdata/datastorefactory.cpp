#include "datastorefactory.h"

#include "datastorefactory_paths_p.h"
#include "simulationdata/folderoperations.h"
#include "simulationdata/io/resourcearchive_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/io/wholefile_p.h"

#include "velaappstartup/icfg.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QThread>

#include <optional>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/datastorefactory";
constexpr char s_szContext[] = "Simulation::DataStoreFactory";

constexpr QLatin1String s_sFileSystem("FileSystem");
constexpr QLatin1String s_sSessions("Sessions");
constexpr QLatin1String s_sSignalPackages("SignalPackages");
constexpr QLatin1String s_sFiles("Files");
constexpr QLatin1String s_sRadar("Radar");
constexpr QLatin1String s_sIcons("Icons");

/// The path of the repository from the configuration. No value when the configuration is
/// null or has no group "FileSystem".
std::optional<QString> repository(ICfg* a_pCfg)
{
    if (a_pCfg == nullptr || !a_pCfg->hasGroup(s_sFileSystem)) {
        return std::nullopt;
    }
    return a_pCfg->openGroup(s_sFileSystem)->readString(QStringLiteral("Repository"), QDir::tempPath());
}

QString storeDir(ICfg* a_pCfg, QLatin1String a_sName)
{
    const QString sRepository = repository(a_pCfg).value_or(QString());
    // Without a repository the path would lie in the root folder.
    return !sRepository.isEmpty() ? sRepository + u'\\' + a_sName : QString();
}

bool makeFolder(const QString& a_sFolder, QString* a_pReason)
{
    if (QDir().mkpath(a_sFolder)) {
        return true;
    }
    // After mkpath() errno holds the reason for the last folder that it tried.
    *a_pReason = QStringLiteral("cannot create the folder \"%1\": %2").arg(a_sFolder, qt_error_string());
    return false;
}

/// Creates the folders of the stores and makes them writable. Returns false with a
/// reason when a folder cannot be created.
bool prepareFolders(const QDir& a_repository, QString* a_pReason)
{
    for (const QLatin1String sName : {s_sSignalPackages, s_sIcons, s_sFiles}) {
        if (!makeFolder(a_repository.absoluteFilePath(sName), a_pReason)) {
            return false;
        }
    }
    for (const QLatin1String sName : {s_sSignalPackages, s_sIcons, s_sFiles}) {
        makeWritable(a_repository.absoluteFilePath(sName));
    }
    const QDir packages(a_repository.absoluteFilePath(s_sSignalPackages));
    return makeFolder(packages.absoluteFilePath(s_sDefaultPackages), a_pReason);
}

/// Copies the default data into the repository. An error is traced and does not stop the
/// copying, because the repository is usable without the data. Returns the text of the
/// first error, empty on success.
QString putDefaultData(const QDir& a_repository)
{
    QString sError;
    const QDir packages(a_repository.absoluteFilePath(s_sSignalPackages));
    removeAbandonedFiles(packages.absolutePath());
    // Older programs copied the archive to this file before they unpacked it. A crash may
    // have left the file behind.
    const QString sFormer = packages.absoluteFilePath(QStringLiteral("~tmp.zip"));
    makeWritable(sFormer);
    QFile::remove(sFormer);
    static_cast<void>(unpackResource(QStringLiteral(":/DefaultData/TuK-Default.zip"), packages.absolutePath(),
                                     u'/' + s_sDefaultPackages, packages.absoluteFilePath(s_sDefaultPackages),
                                     &sError));
    const QString sScenario = DataStoreFactory::defaultScenario(a_repository.absoluteFilePath(s_sFiles));
    const QString sFolder = QFileInfo(sScenario).absolutePath();
    QString sReason;
    if (!makeFolder(sFolder, &sReason)) {
        traceError(s_szSource, [&] { return QStringLiteral("No default scenario: ") + sReason; });
        return sError.isEmpty() ? sReason : sError;
    }
    removeAbandonedFiles(sFolder);
    // An existing scenario stays, because the user may have changed it.
    static_cast<void>(copyFileWhole(QStringLiteral(":/DefaultData/Default.sce.exp"), sScenario, &sReason));
    // copyFileWhole() also sets the reason when the scenario exists already. That is not
    // an error.
    return sError.isEmpty() && !QFileInfo::exists(sScenario) ? sReason : sError;
}

/// Reports that the repository cannot be used: in a trace, with the reason, and in
/// a message box when the caller is on the thread of a running QApplication.
bool failToInitialize(const QString& a_sReason)
{
    const QString sText = QCoreApplication::translate(
        s_szContext, "There is an error in your simulation repository configuration. The repository is "
                     "either not accessible or not writable!");
    traceError(s_szSource, [&] { return QStringLiteral("%1 (%2)").arg(sText, a_sReason); });
    const auto* pApplication = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (pApplication != nullptr && pApplication->thread() == QThread::currentThread()) {
        QMessageBox::critical(nullptr, QCoreApplication::translate(s_szContext, "Simulation System"), sText,
                              QMessageBox::Ok);
    }
    return false;
}

} // namespace

QString DataStoreFactory::sessionStoreDir(ICfg* a_pCfg)
{
    return storeDir(a_pCfg, s_sSessions);
}

QString DataStoreFactory::signalPackageStoreDir(ICfg* a_pCfg)
{
    return storeDir(a_pCfg, s_sSignalPackages);
}

QString DataStoreFactory::fileStoreDir(ICfg* a_pCfg)
{
    return storeDir(a_pCfg, s_sFiles);
}

QString DataStoreFactory::radarStoreDir(ICfg* a_pCfg)
{
    return storeDir(a_pCfg, s_sRadar);
}

QString DataStoreFactory::iconStoreDir(ICfg* a_pCfg)
{
    return storeDir(a_pCfg, s_sIcons);
}

QString DataStoreFactory::defaultSignalPackage(const QString& a_sStoreDir)
{
    return filePathIn(a_sStoreDir, QStringLiteral("TuK-Default/Default"));
}

QString DataStoreFactory::defaultScenario(const QString& a_sFileDir)
{
    return filePathIn(a_sFileDir, QStringLiteral("Tessaro/Default.scexml"));
}

bool DataStoreFactory::initializeDataStore(ICfg* a_pCfg)
{
    QString sError;
    return initializeDataStore(a_pCfg, &sError);
}

bool DataStoreFactory::initializeDataStore(ICfg* a_pCfg, QString* a_pError)
{
    a_pError->clear();
    const std::optional<QString> sRepository = repository(a_pCfg);
    if (!sRepository) {
        *a_pError = QStringLiteral("no group \"%1\" is configured").arg(s_sFileSystem);
        return failToInitialize(*a_pError);
    }
    const QString sFolder = resolvedStorePath(*sRepository);
    if (sFolder.isEmpty() || !QFileInfo(sFolder).isDir()) {
        *a_pError = QStringLiteral("there is no folder \"%1\"").arg(*sRepository);
        return failToInitialize(*a_pError);
    }
    const QDir folder(sFolder);
    static_cast<void>(removeDir(folder.absoluteFilePath(s_sSessions)));
    if (!prepareFolders(folder, a_pError)) {
        return failToInitialize(*a_pError);
    }
    *a_pError = putDefaultData(folder);
    return true;
}

ISignalPackageStore* DataStoreFactory::createSignalPackageStore(ICfg* /*a_pCfg*/, bool /*a_bOn*/)
{
    return nullptr;
}

} // namespace Simulation

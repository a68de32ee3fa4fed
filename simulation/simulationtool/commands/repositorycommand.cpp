#include "repositorycommand.h"

#include "console/output.h"
#include "console/progress.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "describe/packagelist.h"
#include "programs/repositorycfg.h"
#include "programs/repositoryfolder.h"

#include "simulationdata/datastorefactory.h"
#include "simulationdata/signalpackagefolder.h"

#include <QDir>
#include <QFileInfo>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 36;
constexpr qsizetype s_iMaxNameWidth = 28;
constexpr qsizetype s_iMaxModulationWidth = 16;

ExitCode refuse(const QString& a_sFolder, const QString& a_sReason)
{
    complain(QStringLiteral("%1: %2").arg(a_sFolder, a_sReason));
    return ExitCode::Unusable;
}

/// The error text for an existing folder that must not become a repository; empty
/// when it may.
QString initError(const QString& a_sFolder)
{
    if (QString sError = folderError(a_sFolder); !sError.isEmpty()) {
        return sError;
    }
    if (!QFileInfo(a_sFolder).isWritable()) {
        return QStringLiteral("cannot be written to");
    }
    if (Simulation::SignalPackageFolder::isValid(a_sFolder)) {
        return QStringLiteral("is a signal package");
    }
    const QDir folder(a_sFolder);
    return folder.exists(QStringLiteral("Sessions")) && !folder.exists(QStringLiteral("SignalPackages"))
               ? QStringLiteral(
                     "is not a repository, and its folder Sessions would be emptied: choose another folder")
               : QString();
}

} // namespace

ExitCode runRepositoryInit(const QString& a_sFolder, ReportForm a_eForm, Output& a_output)
{
    const bool bMade = !QFileInfo::exists(a_sFolder);
    if (bMade && !QDir().mkpath(a_sFolder)) {
        return refuse(a_sFolder, QStringLiteral("cannot be made: ") + qt_error_string());
    }
    if (const QString sError = initError(a_sFolder); !sError.isEmpty()) {
        return refuse(a_sFolder, sError);
    }
    const Progress progress(QStringLiteral("preparing the repository"));
    const QDir folder(QDir(a_sFolder).absolutePath());
    RepositoryCfg cfg(folder.path());
    QString sError;
    if (!Simulation::DataStoreFactory::initializeDataStore(&cfg, &sError)) {
        return refuse(a_sFolder, QStringLiteral("could not be prepared: ") + sError);
    }
    const QString sStore = packageStoreOf(folder.path());
    const QString sScenario =
        Simulation::DataStoreFactory::defaultScenario(folder.filePath(QStringLiteral("Files")));
    // When default data cannot be written, the library returns success but sets an error
    // text.
    if (!sError.isEmpty()) {
        return refuse(a_sFolder, QStringLiteral("the default data could not be written: ") + sError);
    }
    const auto iPackages = Simulation::SignalPackageFolder::list(sStore).size();
    Report report(a_output, a_eForm);
    report.value("made", bMade);
    report.heading(bMade ? QStringLiteral("Repository made") : QStringLiteral("Repository prepared"));
    report.field("folder", QStringLiteral("Folder"), folder.path());
    report.value("package_folder", sStore);
    report.field("package_count", QStringLiteral("Packages"),
                 {QStringLiteral("%1 in %2").arg(QString::number(iPackages), sStore), iPackages});
    report.field("scenario", QStringLiteral("Scenario"), sScenario);
    report.field("files", QStringLiteral("Files"), folder.filePath(QStringLiteral("Files")));
    report.field("icons", QStringLiteral("Icons"), folder.filePath(QStringLiteral("Icons")));
    report.finish();
    return ExitCode::Ok;
}

ExitCode runRepositoryList(const QString& a_sFolder, ReportForm a_eForm, Output& a_output)
{
    if (const QString sError = folderError(a_sFolder); !sError.isEmpty()) {
        return refuse(a_sFolder, sError);
    }
    if (Simulation::SignalPackageFolder::isValid(a_sFolder)) {
        return refuse(a_sFolder, QStringLiteral("is a signal package itself (inspect shows it)"));
    }
    const Progress progress(QStringLiteral("reading the signal packages"));
    const QList<ListedPackage> packages = listPackages(packageStoreOf(a_sFolder));
    QList<ReportRow> rows;
    qsizetype iFaulty = 0;
    for (const ListedPackage& package : packages) {
        iFaulty += package.problems.isEmpty() ? 0 : 1;
        rows.append(
            {package.id,
             package.name,
             package.modulation,
             numberValue(package.bandwidth),
             countValue(package.duration),
             {package.files.join(u' '), QJsonArray::fromStringList(package.files)},
             {package.problems.join(QStringLiteral("; ")), QJsonArray::fromStringList(package.problems)}});
    }
    Report report(a_output, a_eForm);
    report.plainTable("packages",
                      {{QStringLiteral("ID"), false, s_iMaxIdWidth, "id"},
                       {QStringLiteral("Name"), false, s_iMaxNameWidth, "name"},
                       {QStringLiteral("Modulation"), false, s_iMaxModulationWidth, "modulation"},
                       {QStringLiteral("Bandwidth"), true, 0, "bandwidth"},
                       {QStringLiteral("Duration"), true, 0, "duration"},
                       {QStringLiteral("Files"), false, 0, "files"},
                       {QStringLiteral("Problems"), false, 0, "problems"}},
                      rows);
    report.value("package_count", packages.size());
    report.value("faulty_count", iFaulty);
    report.line(
        QStringLiteral("%1, %2 with problems")
            .arg(counted(static_cast<quint64>(packages.size()), "package"), QString::number(iFaulty)));
    report.finish();
    return iFaulty == 0 ? ExitCode::Ok : ExitCode::Findings;
}

} // namespace SimulationTool

#include "repositorycommand.h"

#include "output.h"
#include "packagelist.h"
#include "report.h"
#include "repositorycfg.h"
#include "repositoryfolder.h"
#include "valuetexts.h"

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

/// Why a folder that is there must not become a repository; empty when it may.
QString initProblem(const QString& a_sFolder)
{
    if (QString sProblem = folderProblem(a_sFolder); !sProblem.isEmpty()) {
        return sProblem;
    }
    if (!QFileInfo(a_sFolder).isWritable()) {
        return QStringLiteral("cannot be written to");
    }
    if (Simulation::SignalPackageFolder::isValid(a_sFolder)) {
        return QStringLiteral("is a signal package");
    }
    const QDir folder(a_sFolder);
    return folder.exists(QStringLiteral("Sessions")) && !folder.exists(QStringLiteral("SignalPackages"))
               ? QStringLiteral("is no repository, and its folder Sessions would be emptied: choose another")
               : QString();
}

} // namespace

ExitCode runRepositoryInit(const QString& a_sFolder, Output& a_output)
{
    const bool bMade = !QFileInfo::exists(a_sFolder);
    if (bMade && !QDir().mkpath(a_sFolder)) {
        return refuse(a_sFolder, QStringLiteral("cannot be made"));
    }
    if (const QString sProblem = initProblem(a_sFolder); !sProblem.isEmpty()) {
        return refuse(a_sFolder, sProblem);
    }
    const QDir folder(QDir(a_sFolder).absolutePath());
    RepositoryCfg cfg(folder.path());
    if (!Simulation::DataStoreFactory::initializeDataStore(&cfg)) {
        return refuse(a_sFolder, QStringLiteral("could not be prepared (--trace says why)"));
    }
    const QString sStore = packageStoreOf(folder.path());
    const QString sScenario =
        Simulation::DataStoreFactory::defaultScenario(folder.filePath(QStringLiteral("Files")));
    // Default data that cannot be written do not keep the library from going on.
    if (!Simulation::SignalPackageFolder::isValid(
            Simulation::DataStoreFactory::defaultSignalPackage(sStore)) ||
        !QFileInfo::exists(sScenario)) {
        return refuse(a_sFolder, QStringLiteral("the default data could not be written (--trace says why)"));
    }
    Report report(a_output);
    report.heading(bMade ? QStringLiteral("Repository made") : QStringLiteral("Repository prepared"));
    report.field(QStringLiteral("Folder"), folder.path());
    report.field(QStringLiteral("Packages"),
                 QStringLiteral("%1 in %2")
                     .arg(QString::number(Simulation::SignalPackageFolder::list(sStore).size()), sStore));
    report.field(QStringLiteral("Scenario"), sScenario);
    report.field(QStringLiteral("Files"), folder.filePath(QStringLiteral("Files")));
    report.field(QStringLiteral("Icons"), folder.filePath(QStringLiteral("Icons")));
    return ExitCode::Ok;
}

ExitCode runRepositoryList(const QString& a_sFolder, Output& a_output)
{
    if (const QString sProblem = folderProblem(a_sFolder); !sProblem.isEmpty()) {
        return refuse(a_sFolder, sProblem);
    }
    if (Simulation::SignalPackageFolder::isValid(a_sFolder)) {
        return refuse(a_sFolder, QStringLiteral("is a signal package itself (inspect shows it)"));
    }
    const QList<ListedPackage> packages = listPackages(packageStoreOf(a_sFolder));
    QList<QStringList> rows;
    qsizetype iFaulty = 0;
    for (const ListedPackage& package : packages) {
        iFaulty += package.problems.isEmpty() ? 0 : 1;
        rows.append({orDash(package.id), orDash(package.name), package.modulation,
                     shortNumber(package.bandwidth), QString::number(package.duration),
                     orDash(package.files.join(u' ')), orDash(package.problems.join(QStringLiteral("; ")))});
    }
    Report report(a_output);
    report.plainTable({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                       {QStringLiteral("Name"), false, s_iMaxNameWidth},
                       {QStringLiteral("Modulation"), false, s_iMaxModulationWidth},
                       {QStringLiteral("Bandwidth"), true},
                       {QStringLiteral("Duration"), true},
                       {QStringLiteral("Files")},
                       {QStringLiteral("Problems")}},
                      rows);
    a_output.write(
        QStringLiteral("%1, %2 with problems\n")
            .arg(counted(static_cast<quint64>(packages.size()), "package"), QString::number(iFaulty)));
    return iFaulty == 0 ? ExitCode::Ok : ExitCode::Findings;
}

} // namespace SimulationTool

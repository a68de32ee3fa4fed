#include "archivedetails.h"

#include "console/inputfile.h"
#include "console/interruption.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "packagedetails.h"

#include "kpzip/archive.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace SimulationTool {

namespace {

/// Unpacks all files into a folder and lists them, each with its verdict. Returns the
/// number of files that could not be unpacked.
qsizetype unpackFiles(Report& a_report, KPZip::Archive& a_archive, const QString& a_sFolder)
{
    qsizetype iFailed = 0;
    QList<ReportRow> rows;
    const QDir folder(a_sFolder);
    for (const QString& file : a_archive.files()) {
        if (isInterrupted()) {
            break;
        }
        const QString sTarget = folder.filePath(file);
        const bool bPlace = QDir().mkpath(QFileInfo(sTarget).path());
        const bool bUnpacked = bPlace && a_archive.extractToFile(file, sTarget);
        iFailed += bUnpacked ? 0 : 1;
        QString sVerdict = Verdict().text;
        if (!bUnpacked) {
            sVerdict = bPlace ? a_archive.errorString() : QStringLiteral("refused: its folder is a file");
        }
        rows.append({file, countValue(a_archive.declaredSize(file)), sVerdict});
    }
    a_report.titledTable("files", QStringLiteral("Files"),
                         {{QStringLiteral("Name"), false, 0, "name"},
                          {QStringLiteral("Bytes"), true, 0, "size_bytes"},
                          {QStringLiteral("Verdict"), false, 0, "verdict"}},
                         rows);
    return iFailed;
}

ExitCode describePackages(Report& a_report, const QString& a_sFolder)
{
    ExitCode eWorst = ExitCode::Ok;
    a_report.list("packages");
    QStringList folders = Simulation::SignalPackageFolder::list(a_sFolder);
    if (Simulation::SignalPackageFolder::isValid(a_sFolder)) {
        folders.prepend(a_sFolder);
    }
    for (const QString& folder : folders) {
        if (isInterrupted() || !a_report.isOk()) {
            break;
        }
        a_report.itemHeading(QStringLiteral("Signal package"), "packages");
        const Verdict verdict =
            describePackageFolder(a_report, folder, QDir(a_sFolder).relativeFilePath(folder));
        a_report.field("verdict", QStringLiteral("Verdict"), verdict.text);
        eWorst = worse(eWorst, verdict.code);
    }
    return eWorst;
}

} // namespace

Verdict describeArchive(Report& a_report, const InputFile& a_file)
{
    a_report.heading(QStringLiteral("Zip archive"));
    a_report.value("kind", QStringLiteral("zip archive"));
    a_report.field("file", QStringLiteral("File"), a_file.name());
    a_report.field("size_bytes", QStringLiteral("Size"),
                   countValue(static_cast<quint64>(QFileInfo(a_file.path()).size()), "byte"));
    KPZip::Archive archive(a_file.path());
    archive.setBounds(Simulation::Limits::value(Simulation::Limits::ArchiveBytes),
                      Simulation::Limits::value(Simulation::Limits::ArchiveEntries));
    if (!archive.open(KPZip::Archive::ModeRead)) {
        return refusedVerdict(archive.errorString());
    }
    const std::uint64_t uiRefused = archive.refusedCount();
    catchInterruptions();
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        return refusedVerdict(folder.errorString());
    }
    const qsizetype iFailed = unpackFiles(a_report, archive, folder.path());
    const ExitCode ePackages = describePackages(a_report, folder.path());
    a_report.heading(QStringLiteral("Archive"));
    if (uiRefused == 0 && iFailed == 0) {
        return ePackages == ExitCode::Ok
                   ? Verdict{}
                   : Verdict{ePackages, QStringLiteral("whole, but not all packages are")};
    }
    return refusedVerdict(
        QStringLiteral("%1 not unpacked, %2 unsafe (--trace names them)")
            .arg(counted(static_cast<quint64>(iFailed), "file"), QString::number(uiRefused)));
}

} // namespace SimulationTool

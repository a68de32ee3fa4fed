#include "packagedetails.h"

#include "console/inputfile.h"
#include "console/report.h"
#include "packageverdict.h"

#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"

#include <QFileInfo>

namespace SimulationTool {

namespace {

void describeFields(Report& a_report, const Simulation::SignalPackage& a_package)
{
    a_report.field("id", QStringLiteral("ID"), a_package.id());
    a_report.field("name", QStringLiteral("Name"), a_package.name());
    a_report.field("author", QStringLiteral("Author"), a_package.author());
    a_report.field("supersedes", QStringLiteral("Supersedes"),
                   {a_package.updateIds().join(u'\n'), QJsonArray::fromStringList(a_package.updateIds())});
    a_report.field("timestamp", QStringLiteral("Timestamp"), countValue(a_package.timestamp()));
    a_report.field("modulation", QStringLiteral("Modulation"), modulationText(a_package));
    // The descriptor defines no units.
    a_report.field("bandwidth", QStringLiteral("Bandwidth"), numberValue(a_package.signalBandwidth()));
    a_report.field("duration", QStringLiteral("Duration"), countValue(a_package.duration()));
}

} // namespace

QString modulationText(const Simulation::SignalPackage& a_package)
{
    return a_package.hasDigitalModulation() ? a_package.digitalModulation()
                                            : analogModulationToString(a_package.analogModulation());
}

Verdict describePackageFolder(Report& a_report, const QString& a_sFolder, const QString& a_sTitle)
{
    const PackageVerdict verdict = packageVerdict(a_sFolder);
    a_report.value("kind", QStringLiteral("signal package"));
    a_report.field("folder", QStringLiteral("Folder"), a_sTitle);
    if (verdict.descriptor.code == ExitCode::Ok) {
        describeFields(a_report, verdict.package);
    }
    const QFileInfo descriptor(Simulation::SignalPackageFolder::signalFilePath(a_sFolder));
    QList<ReportRow> rows{{descriptor.fileName(), wholeValue(descriptor.size()), verdict.descriptor.text,
                           QStringLiteral("descriptor")}};
    for (const PackageFileVerdict& file : verdict.files) {
        rows.append(
            {QString(QLatin1String(file.file->name)), wholeValue(file.bytes), file.verdict.text, file.holds});
    }
    a_report.titledTable("files", QStringLiteral("Files"),
                         {{QStringLiteral("Name"), false, 0, "name"},
                          {QStringLiteral("Bytes"), true, 0, "size_bytes"},
                          {QStringLiteral("Verdict"), false, 0, "verdict"},
                          {QStringLiteral("Holds"), false, 0, "holds"}},
                         rows);
    a_report.value("problems", QJsonArray::fromStringList(verdict.problems));
    return verdict.worst;
}

Verdict describeDescriptor(Report& a_report, const InputFile& a_file)
{
    const Simulation::SignalPackage package = Simulation::SignalPackageFile::signalPackage(a_file.path());
    Verdict verdict = descriptorVerdict(package, a_file.path());
    a_report.heading(QStringLiteral("Signal package descriptor"));
    a_report.value("kind", QStringLiteral("signal package descriptor"));
    a_report.field("file", QStringLiteral("File"), a_file.name());
    if (verdict.code == ExitCode::Ok) {
        describeFields(a_report, package);
    }
    return verdict;
}

} // namespace SimulationTool

#include "packagedetails.h"

#include "datafiledetails.h"
#include "report.h"
#include "valuetexts.h"

#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/xmlelement.h"

#include <QFile>
#include <QFileInfo>

namespace SimulationTool {

namespace {

void describeFields(Report& a_report, const Simulation::SignalPackage& a_package)
{
    a_report.field(QStringLiteral("ID"), a_package.id());
    a_report.field(QStringLiteral("Name"), a_package.name());
    a_report.field(QStringLiteral("Author"), a_package.author());
    a_report.field(QStringLiteral("Supersedes"), a_package.updateIds().join(u'\n'));
    a_report.field(QStringLiteral("Timestamp"), QString::number(a_package.timestamp()));
    a_report.field(QStringLiteral("Modulation"), modulationText(a_package));
    // The descriptor names no units.
    a_report.field(QStringLiteral("Bandwidth"), shortNumber(a_package.signalBandwidth()));
    a_report.field(QStringLiteral("Duration"), QString::number(a_package.duration()));
}

/// Why a descriptor gave no id.
QString descriptorFault(const QString& a_sFile)
{
    QFile file(a_sFile);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return QStringLiteral("cannot be read");
    }
    if (static_cast<std::uint64_t>(file.size()) >
        Simulation::Limits::value(Simulation::Limits::DocumentBytes)) {
        return Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes);
    }
    QString sReason;
    return Simulation::XmlElement::parse(file.readAll(), &sReason).isNull() ? sReason
                                                                            : QStringLiteral("names no id");
}

Verdict descriptorVerdict(const Simulation::SignalPackage& a_package, const QString& a_sFile)
{
    return a_package.id().isEmpty() ? refusedVerdict(descriptorFault(a_sFile)) : Verdict{};
}

} // namespace

QString modulationText(const Simulation::SignalPackage& a_package)
{
    return a_package.hasDigitalModulation() ? a_package.digitalModulation()
                                            : analogModulationToString(a_package.analogModulation());
}

Verdict describePackageFolder(Report& a_report, const QString& a_sFolder)
{
    return describePackageFolder(a_report, a_sFolder, a_sFolder);
}

Verdict describePackageFolder(Report& a_report, const QString& a_sFolder, const QString& a_sTitle)
{
    const Simulation::SignalPackage package = Simulation::SignalPackageFolder::signalPackage(a_sFolder);
    const QString sDescriptor = Simulation::SignalPackageFolder::signalFilePath(a_sFolder);
    Verdict worst = descriptorVerdict(package, sDescriptor);
    a_report.heading(QStringLiteral("Signal package"));
    a_report.field(QStringLiteral("Folder"), a_sTitle);
    if (worst.code == ExitCode::Ok) {
        describeFields(a_report, package);
    }
    QList<QStringList> rows{{QFileInfo(sDescriptor).fileName(),
                             QString::number(QFileInfo(sDescriptor).size()), worst.text,
                             QStringLiteral("descriptor")}};
    for (const PackageDataFile& file : s_packageDataFiles) {
        const QString sFile = file.path(a_sFolder);
        if (!QFileInfo::exists(sFile)) {
            continue;
        }
        const DataFileSummary summary = file.summary(sFile);
        rows.append({QLatin1String(file.name), QString::number(QFileInfo(sFile).size()), summary.verdict.text,
                     summary.text});
        if (summary.verdict.code > worst.code) {
            worst = {summary.verdict.code,
                     QStringLiteral("%1 %2").arg(QLatin1String(file.name), summary.verdict.text)};
        }
    }
    a_report.titledTable(QStringLiteral("Files"),
                         {{QStringLiteral("Name")},
                          {QStringLiteral("Bytes"), true},
                          {QStringLiteral("Verdict")},
                          {QStringLiteral("Holds")}},
                         rows);
    return worst;
}

Verdict describeDescriptor(Report& a_report, const QString& a_sFile)
{
    const Simulation::SignalPackage package = Simulation::SignalPackageFile::signalPackage(a_sFile);
    Verdict verdict = descriptorVerdict(package, a_sFile);
    a_report.heading(QStringLiteral("Signal package descriptor"));
    a_report.field(QStringLiteral("File"), a_sFile);
    if (verdict.code == ExitCode::Ok) {
        describeFields(a_report, package);
    }
    return verdict;
}

} // namespace SimulationTool

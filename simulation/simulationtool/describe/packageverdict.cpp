#include "packageverdict.h"

#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/xmlelement.h"

#include <QFile>
#include <QFileInfo>

namespace SimulationTool {

namespace {

/// The error text for a descriptor from which no id was read.
QString descriptorError(const QString& a_sFile)
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

/// Adds a problem. The verdict on the package is its most severe problem; among equally
/// severe problems, it is the first.
void addProblem(PackageVerdict& a_verdict, const QString& a_sText, ExitCode a_eCode)
{
    a_verdict.problems.append(a_sText);
    if (a_eCode > a_verdict.worst.code) {
        a_verdict.worst = {a_eCode, a_sText};
    }
}

} // namespace

Verdict descriptorVerdict(const Simulation::SignalPackage& a_package, const QString& a_sFile)
{
    return a_package.id().isEmpty() ? refusedVerdict(descriptorError(a_sFile)) : Verdict{};
}

QString durationError(const Simulation::SignalPackage& a_package)
{
    return a_package.duration() == 0 ? QStringLiteral("no duration") : QString();
}

PackageVerdict packageVerdict(const QString& a_sFolder)
{
    PackageVerdict verdict;
    verdict.package = Simulation::SignalPackageFolder::signalPackage(a_sFolder);
    const QString sDescriptor = Simulation::SignalPackageFolder::signalFilePath(a_sFolder);
    verdict.descriptor = descriptorVerdict(verdict.package, sDescriptor);
    const bool bDescribed = verdict.descriptor.code == ExitCode::Ok;
    if (!bDescribed) {
        addProblem(verdict,
                   QStringLiteral("%1 %2").arg(QFileInfo(sDescriptor).fileName(), verdict.descriptor.text),
                   verdict.descriptor.code);
    }
    bool bShape = false;
    for (const PackageDataFile& file : s_packageDataFiles) {
        const QString sFile = file.path(a_sFolder);
        if (!QFileInfo::exists(sFile)) {
            continue;
        }
        bShape = bShape || QLatin1String(file.kind) == u"ssf";
        const DataFileSummary summary = file.summary(sFile);
        verdict.files.append({&file, QFileInfo(sFile).size(), summary});
        if (summary.verdict.code != ExitCode::Ok) {
            addProblem(verdict, QStringLiteral("%1 %2").arg(QLatin1String(file.name), summary.verdict.text),
                       summary.verdict.code);
        }
    }
    if (const QString sError = durationError(verdict.package); bDescribed && bShape && !sError.isEmpty()) {
        addProblem(verdict, sError, ExitCode::Findings);
    }
    return verdict;
}

} // namespace SimulationTool

#include "checkdocument.h"

#include "console/inputfile.h"
#include "describe/documentloss.h"
#include "describe/scenariofile.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/readingreport.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagecheck.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFile>
#include <QFileInfo>

namespace SimulationTool {

namespace {

using Simulation::ReadingReport;
using Simulation::ScenarioChecker;

/// The findings of a document that cannot be read: those with a place. The others repeat
/// the error text.
DocumentFindings placedFindings(const ReadingReport& a_report)
{
    DocumentFindings findings = findingsOf(a_report);
    findings.listed.removeIf([](const CheckFinding& a_finding) { return !a_finding.place.isKnown(); });
    return findings;
}

/// Adds the checker's findings. The document is searched for the objects only if there
/// are findings.
void addChecked(DocumentFindings& a_findings, const ScenarioChecker& a_checker, const InputFile& a_file)
{
    if (!a_checker.findings().isEmpty()) {
        addObjectFindings(a_findings, a_checker.findings(), objectPlaces(a_file.content()));
    }
}

/// Names the parts of a document that its reader did not keep. The text completes
/// "would lose ..."; it is empty when the reader kept all parts.
QString lossOf(const Simulation::ScenarioDataXml& a_scenario, bool a_bBrokeOff, const QByteArray& a_source,
               const QByteArray& a_written)
{
    if (a_bBrokeOff) {
        return QStringLiteral("what follows the place where it broke off");
    }
    if (!a_scenario.mergedIds().isEmpty()) {
        return QStringLiteral("all but one of several emitters with one id");
    }
    return documentLoss(a_source, a_written);
}

CheckedDocument checkScenario(const InputFile& a_file, const DocumentScope& a_scope,
                              ScenarioChecker& a_checker)
{
    CheckedDocument checked;
    // This provider keeps every id while loading. The check must find unknown ids, and
    // known ids must be written unchanged.
    Simulation::UnresolvedSignalPackageProvider ids;
    Simulation::ScenarioDataXml scenario(&ids);
    if (!scenario.fromXmlFile(a_file.path())) {
        checked.error = scenario.errorString();
        checked.findings = placedFindings(scenario.report());
        return checked;
    }
    checked.findings = findingsOf(scenario.report());
    // toXml() clears the reader's error text.
    const bool bBrokeOff = !scenario.errorString().isEmpty();
    a_checker.check(scenario);
    addChecked(checked.findings, a_checker, a_file);
    if (a_scope.repair) {
        checked.repaired = scenario.toXml();
        checked.loss = lossOf(scenario, bBrokeOff, a_file.content(), checked.repaired);
    }
    return checked;
}

CheckedDocument checkDeployment(const InputFile& a_file, ScenarioChecker& a_checker)
{
    CheckedDocument checked;
    Simulation::DeploymentDataXml deployment;
    if (!deployment.fromXmlFile(a_file.path())) {
        checked.error = deployment.errorString();
        checked.findings = placedFindings(deployment.report());
        return checked;
    }
    checked.findings = findingsOf(deployment.report());
    a_checker.check(deployment);
    addChecked(checked.findings, a_checker, a_file);
    return checked;
}

/// Adds what is wrong with the data files beside a descriptor. Its own problems are those
/// of the reader already.
void addDataFiles(DocumentFindings& a_findings, const QString& a_sDescriptor)
{
    const QFileInfo descriptor(a_sDescriptor);
    for (const auto& problem : Simulation::SignalPackageCheck::damage(descriptor.path())) {
        if (problem.file != descriptor.fileName()) {
            a_findings.listed.append(
                ruleFinding(ScenarioChecker::s_sDamagedPackage,
                            QStringLiteral("The package is damaged: %1. Put a whole one in its place.")
                                .arg((problem.file + u' ' + problem.text).trimmed())));
        }
    }
    for (const auto& problem : Simulation::SignalPackageCheck::contradictions(descriptor.path())) {
        a_findings.listed.append(
            ruleFinding(ScenarioChecker::s_sContradictingPackage,
                        QStringLiteral("%1 %2. Put the original package in its place, or make its descriptor "
                                       "anew.")
                            .arg(problem.file, problem.text)));
    }
}

/// The bytes of a descriptor, or the error text.
QByteArray descriptorContent(const InputFile& a_file, QString& a_sError)
{
    QFile file(a_file.path());
    if (!file.open(QIODevice::ReadOnly)) {
        a_sError = file.errorString();
    } else if (!QFileInfo(file).isFile()) {
        a_sError = QStringLiteral("is not a file");
    } else if (static_cast<quint64>(file.size()) >
               Simulation::Limits::value(Simulation::Limits::DocumentBytes)) {
        a_sError = Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes);
    }
    return a_sError.isEmpty() ? file.readAll() : QByteArray();
}

CheckedDocument checkDescriptor(const InputFile& a_file, const DocumentScope& a_scope)
{
    CheckedDocument checked;
    const QByteArray content = descriptorContent(a_file, checked.error);
    if (!checked.error.isEmpty()) {
        return checked;
    }
    const ReadingReport report = Simulation::SignalPackageFile::report(content);
    checked.findings = findingsOf(report);
    if (report.count(ReadingReport::s_sBrokenOff) != 0) {
        checked.error = checked.findings.listed.constFirst().text;
        checked.findings = placedFindings(report);
    }
    if (a_scope.dataFiles) {
        addDataFiles(checked.findings, a_file.path());
    }
    return checked;
}

/// The compact form has no lines; its findings name the record or the emitter.
CheckedDocument checkCompact(const InputFile& a_file)
{
    CheckedDocument checked;
    Simulation::ScenarioDataBinary scenario(nullptr);
    const std::optional<Verdict> verdict = loadCompact(scenario, a_file.path());
    if (!verdict) {
        checked.error = QStringLiteral("is no compact form of a scenario any more");
        return checked;
    }
    QList<CheckFinding>& findings = checked.findings.listed;
    if (verdict->code != ExitCode::Ok) {
        findings.append(ruleFinding(ReadingReport::s_sBrokenOff,
                                    QStringLiteral("The compact form is not whole: %1.").arg(verdict->text)));
    }
    const auto links = scenario.unresolvedLinks();
    for (const Simulation::ScenarioDataBinary::UnresolvedLink& link : links) {
        findings.append(ruleFinding(ReadingReport::s_sUnknownReference,
                                    QStringLiteral("The link names \"%1\", which is no preceding emitter: "
                                                   "the link is dropped.")
                                        .arg(link.targetId),
                                    link.emitterId));
    }
    const auto emitters = emittersOf(scenario);
    for (qsizetype i = 1; i < emitters.size(); ++i) {
        if (emitters.at(i)->id() == emitters.at(i - 1)->id()) {
            findings.append(ruleFinding(ReadingReport::s_sDuplicateId,
                                        QStringLiteral("Another emitter has this id, too: give each an id of "
                                                       "its own."),
                                        emitters.at(i)->id()));
        }
    }
    return checked;
}

CheckedDocument checkOfKind(DocumentKind a_eKind, const InputFile& a_file, const DocumentScope& a_scope,
                            ScenarioChecker& a_checker)
{
    switch (a_eKind) {
    case DocumentKind::Deployment:
        return checkDeployment(a_file, a_checker);
    case DocumentKind::Descriptor:
        return checkDescriptor(a_file, a_scope);
    case DocumentKind::Compact:
        return checkCompact(a_file);
    default:
        return checkScenario(a_file, a_scope, a_checker);
    }
}

} // namespace

CheckedDocument checkDocument(const InputFile& a_file, const DocumentScope& a_scope,
                              ScenarioChecker& a_checker)
{
    const DocumentKind eKind = kindOf(a_file);
    CheckedDocument checked = checkOfKind(eKind, a_file, a_scope, a_checker);
    checked.kind = eKind;
    sortByPlace(checked.findings);
    return checked;
}

} // namespace SimulationTool

#include "checkcommand.h"

#include "checkfinding.h"
#include "console/inputfile.h"
#include "console/interruption.h"
#include "console/jsonreport.h"
#include "console/output.h"
#include "console/outputfile.h"
#include "console/progress.h"
#include "console/valuetexts.h"
#include "describe/documentloss.h"
#include "describe/verdict.h"
#include "programs/repositoryfolder.h"
#include "programs/repositorypackages.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFileInfo>

#include <optional>

namespace SimulationTool {

namespace {

/// Names the parts of a document that its reader did not keep. The text completes
/// "would lose ..."; it is empty when the reader kept all parts.
QString lossOf(const Simulation::ScenarioDataXml& a_scenario, const QByteArray& a_source,
               const QByteArray& a_written)
{
    if (!a_scenario.mergedIds().isEmpty()) {
        return QStringLiteral("all but one of several emitters with one id");
    }
    return documentLoss(a_source, a_written, Notes::Count);
}

/// Saves the content in a new file, whose name is the canonical path of `a_sFile` with
/// "~" added. Returns the new name. When the new file exists already or cannot be
/// written, writes one line to standard error and returns no value.
std::optional<QString> keepFormer(const QString& a_sFile, const QByteArray& a_content)
{
    const QString sBackup = QFileInfo(a_sFile).canonicalFilePath() + u'~';
    if (QFileInfo::exists(sBackup)) {
        complain(QStringLiteral("%1: exists already: move it elsewhere, it may be the only complete copy")
                     .arg(sBackup));
        return std::nullopt;
    }
    return replaceFile(sBackup, a_content) == ExitCode::Ok ? std::make_optional(sBackup) : std::nullopt;
}

/// Knows the ids of a repository, but keeps every emission's own package record, so
/// that a repaired document names the same packages as before.
class KnownIds : public Simulation::UnresolvedSignalPackageProvider
{
public:
    explicit KnownIds(RepositoryPackages& a_packages)
        : m_packages(a_packages)
    {}

    bool validSignalPackageId(const QString& a_sId) override
    {
        return m_packages.validSignalPackageId(a_sId);
    }
    std::shared_ptr<Simulation::SignalPackage> defaultSignalPackage() override
    {
        return m_packages.defaultSignalPackage();
    }

private:
    RepositoryPackages& m_packages;
};

/// Checks files one after another against the same packages and classes, and counts
/// the findings. Does not own the options, the packages and the output.
class FileCheck
{
public:
    /// `a_pKnownIds` is null when packages are not checked.
    FileCheck(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pKnownIds,
              Output& a_output);

    /// Checks all files and writes the summary; an interrupted check writes none.
    [[nodiscard]] ExitCode run();

private:
    [[nodiscard]] ExitCode check(InputFile& a_file);
    [[nodiscard]] ExitCode checkDeployment(const InputFile& a_file);
    [[nodiscard]] ExitCode checkScenario(const InputFile& a_file);
    [[nodiscard]] ExitCode report(const InputFile& a_file, const CheckFindings& a_findings);
    void reportFinding(const InputFile& a_file, const Simulation::ScenarioFinding& a_finding);
    [[nodiscard]] ExitCode refuse(const InputFile& a_file, const QString& a_sReason);
    [[nodiscard]] ExitCode repair(const InputFile& a_file, const QString& a_sLoss,
                                  const QByteArray& a_document);
    [[nodiscard]] bool mayReplace(const InputFile& a_file, const QString& a_sLoss,
                                  const QByteArray& a_source);
    void writeSummary();

    const CheckOptions& m_options;
    Output& m_output;
    Report m_report;
    Simulation::ScenarioChecker m_checker;
    quint64 m_uiChecked = 0; ///< files
    quint64 m_uiUnreadable = 0;
    quint64 m_uiFindings = 0; ///< without notes
    quint64 m_uiNotes = 0;
    quint64 m_uiRepaired = 0;
    bool m_bWritten = false;
};

FileCheck::FileCheck(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pKnownIds,
                     Output& a_output)
    : m_options(a_options)
    , m_output(a_output)
    , m_report(a_output, a_options.form)
    , m_checker(a_pKnownIds)
{
    m_checker.setKnownClasses(a_options.classes);
    if (a_pKnownIds != nullptr) {
        m_checker.setPackageFolder(packageStoreOf(a_options.repository));
    }
}

void FileCheck::reportFinding(const InputFile& a_file, const Simulation::ScenarioFinding& a_finding)
{
    const bool bNote = a_finding.severity == Simulation::Severity::Note;
    ++(bNote ? m_uiNotes : m_uiFindings);
    m_uiRepaired += a_finding.repaired ? 1 : 0;
    const QString sName =
        a_finding.objectName.isEmpty() ? QString() : QStringLiteral(" (") + a_finding.objectName + u')';
    const bool bObject = !isOfDocument(a_finding.ruleId);
    m_report.record("findings",
                    {{QStringLiteral("object_id"), jsonText(a_finding.objectId)},
                     {QStringLiteral("object_name"), jsonText(a_finding.objectName)},
                     {QStringLiteral("rule"), a_finding.ruleId},
                     {QStringLiteral("severity"), severityName(a_finding.severity)},
                     {QStringLiteral("text"), a_finding.text},
                     {QStringLiteral("repaired"), a_finding.repaired}},
                    a_file.name() + QStringLiteral(": ") +
                        (bObject ? orDash(a_finding.objectId) + sName + QStringLiteral(": ") : QString()) +
                        a_finding.text + QStringLiteral(" [") + a_finding.ruleId +
                        (bNote ? QStringLiteral(", note]") : QStringLiteral("]")));
}

/// Notes alone do not change the exit code: nothing is wrong.
ExitCode FileCheck::report(const InputFile& a_file, const CheckFindings& a_findings)
{
    ++m_uiChecked;
    m_report.list("findings");
    const quint64 uiBefore = m_uiFindings;
    for (const Simulation::ScenarioFinding& finding : a_findings) {
        reportFinding(a_file, finding);
    }
    return m_uiFindings == uiBefore ? ExitCode::Ok : ExitCode::Findings;
}

/// Whether the repaired scenario, which lacks `a_sLoss`, may be written. It may replace
/// its input file only if `a_sLoss` is empty, or with --force. With --force, saves the
/// former file.
bool FileCheck::mayReplace(const InputFile& a_file, const QString& a_sLoss, const QByteArray& a_source)
{
    if (a_sLoss.isEmpty() || !a_file.isSameAs(m_options.repairFile)) {
        return true;
    }
    if (m_options.force) {
        const std::optional<QString> backup = keepFormer(m_options.repairFile, a_source);
        m_report.value("former_file", backup.value_or(QString()));
        return backup.has_value();
    }
    complain(QStringLiteral("check: %1: not replaced, because it would lose %2: give --repair another file, "
                            "or add --force, which keeps the former file, \"~\" added to its name")
                 .arg(a_file.name(), a_sLoss));
    return false;
}

/// Writes the repaired document, which lacks `a_sLoss`.
ExitCode FileCheck::repair(const InputFile& a_file, const QString& a_sLoss, const QByteArray& a_document)
{
    if (a_document.isEmpty()) {
        complain(
            QStringLiteral("%1: not written: %2")
                .arg(m_options.repairFile, Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes)));
        return ExitCode::Unusable;
    }
    if (!mayReplace(a_file, a_sLoss, a_file.content())) {
        return ExitCode::Unusable;
    }
    const ExitCode eCode = replaceFile(m_options.repairFile, a_document);
    m_bWritten = eCode == ExitCode::Ok;
    m_report.value("left_out", jsonText(a_sLoss));
    if (m_bWritten && !a_sLoss.isEmpty()) {
        m_report.line(QStringLiteral("%1: the repaired scenario lacks %2").arg(a_file.name(), a_sLoss));
    }
    return eCode;
}

ExitCode FileCheck::refuse(const InputFile& a_file, const QString& a_sReason)
{
    ++m_uiUnreadable;
    m_report.value("error", a_sReason);
    complain(QStringLiteral("%1: cannot be read as a scenario or deployment document: %2")
                 .arg(a_file.name(), a_sReason));
    return ExitCode::Unusable;
}

ExitCode FileCheck::checkScenario(const InputFile& a_file)
{
    // This provider keeps every id while loading. The check must find unknown ids, and
    // known ids must be written unchanged.
    Simulation::UnresolvedSignalPackageProvider ids;
    Simulation::ScenarioDataXml scenario(&ids);
    if (!scenario.fromXmlFile(a_file.path())) {
        return refuse(a_file, scenario.errorString());
    }
    m_report.value("kind", QStringLiteral("scenario"));
    // toXml() clears the reader's error text.
    const bool bBrokeOff = !scenario.errorString().isEmpty();
    CheckFindings findings = brokenOffFindings(scenario.errorString());
    m_checker.check(scenario);
    findings += m_checker.findings();
    const QByteArray source = a_file.content();
    const QByteArray document = scenario.toXml();
    if (!bBrokeOff && scenario.mergedIds().isEmpty()) {
        findings += unreadFindings(source, document);
    }
    const ExitCode eFound = report(a_file, findings);
    if (m_options.repairFile.isEmpty() || isInterrupted()) {
        return eFound;
    }
    const QString sLoss = bBrokeOff ? QStringLiteral("what follows the place where it broke off")
                                    : lossOf(scenario, source, document);
    return worse(eFound, repair(a_file, sLoss, document));
}

ExitCode FileCheck::checkDeployment(const InputFile& a_file)
{
    Simulation::DeploymentDataXml deployment;
    if (!deployment.fromXmlFile(a_file.path())) {
        return refuse(a_file, deployment.errorString());
    }
    m_report.value("kind", QStringLiteral("deployment"));
    CheckFindings findings = brokenOffFindings(deployment.errorString()) + versionFindings(deployment);
    const bool bAsRead = findings.isEmpty() && deployment.mergedDeviceIds().isEmpty() &&
                         deployment.mergedStationIds().isEmpty();
    m_checker.check(deployment);
    findings += m_checker.findings();
    if (bAsRead) {
        findings += unreadFindings(a_file.content(), deployment.toXml());
    }
    const ExitCode eFound = report(a_file, findings);
    if (m_options.repairFile.isEmpty()) {
        return eFound;
    }
    complain(
        QStringLiteral("check: %1: is a deployment, and only scenarios are repaired").arg(a_file.name()));
    return ExitCode::Unusable;
}

ExitCode FileCheck::check(InputFile& a_file)
{
    m_report.beginItem("files");
    m_report.value("file", a_file.name());
    if (!a_file.prepare(Simulation::Limits::value(Simulation::Limits::DocumentBytes))) {
        ++m_uiUnreadable;
        return ExitCode::Unusable;
    }
    return hasDocumentRoot(a_file.head(), "SimulationDeployment") ? checkDeployment(a_file)
                                                                  : checkScenario(a_file);
}

void FileCheck::writeSummary()
{
    m_report.endPlace();
    m_report.value("checked_count", jsonCount(m_uiChecked));
    m_report.value("unreadable_count", jsonCount(m_uiUnreadable));
    m_report.value("finding_count", jsonCount(m_uiFindings));
    m_report.value("note_count", jsonCount(m_uiNotes));
    m_report.value("repaired_count", jsonCount(m_uiRepaired));
    m_report.value("written", jsonText(m_bWritten ? m_options.repairFile : QString()));
    QString sSummary = counted(m_uiChecked, "file") + QStringLiteral(" checked");
    if (m_uiUnreadable != 0) {
        sSummary += QStringLiteral(", %1 not readable").arg(m_uiUnreadable);
    }
    sSummary += QStringLiteral(": ") + counted(m_uiFindings, "finding");
    if (m_uiNotes != 0) {
        sSummary += QStringLiteral(", ") + counted(m_uiNotes, "note");
    }
    if (m_bWritten) {
        sSummary += QStringLiteral(", %1 repaired, written to ").arg(m_uiRepaired) + m_options.repairFile;
    }
    m_report.line(sSummary);
    m_report.finish();
}

ExitCode FileCheck::run()
{
    ExitCode eCode = ExitCode::Ok;
    Progress progress(QStringLiteral("checking"));
    for (const QString& sFile : m_options.files) {
        InputFile file(sFile);
        progress.setWork(QStringLiteral("checking ") + file.name());
        eCode = worse(eCode, check(file));
        // Neither an error text nor the summary is written here: main() ends an interrupted
        // process by the signal, and reports an error of the output.
        if (isInterrupted() || !m_output.isOk()) {
            return ExitCode::Unusable;
        }
    }
    writeSummary();
    return eCode;
}

} // namespace

ExitCode runCheck(const CheckOptions& a_options, Output& a_output)
{
    if (a_options.repository.isEmpty()) {
        return FileCheck(a_options, nullptr, a_output).run();
    }
    catchInterruptions(); // so that an interrupted check removes the temporary cache
    RepositoryPackages packages;
    // With an incomplete cache, the repair would replace packages that the repository has.
    if (!packages.open(a_options.repository, {}) || !packages.isComplete()) {
        return ExitCode::Unusable;
    }
    // With a folder without packages, the repair would replace the package of every
    // emission.
    if (Simulation::SignalPackageFolder::list(packageStoreOf(a_options.repository)).isEmpty()) {
        complain(QStringLiteral("%1: holds no signal packages").arg(a_options.repository));
        return ExitCode::Unusable;
    }
    KnownIds ids(packages);
    return FileCheck(a_options, &ids, a_output).run();
}

} // namespace SimulationTool

#include "checkcommand.h"

#include "checkdocument.h"
#include "checkrepair.h"
#include "console/inputfile.h"
#include "console/interruption.h"
#include "console/output.h"
#include "console/outputfile.h"
#include "console/progress.h"
#include "describe/folderdocuments.h"
#include "describe/verdict.h"
#include "programs/repositoryfolder.h"
#include "programs/repositorypackages.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFileInfo>

#include <algorithm>

#include <unistd.h>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMostOfDocument = 1000; ///< listed findings
constexpr qsizetype s_iMostOfRun = 25'000;    ///< listed findings; review systems read no more

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

/// Checks documents one after another against the same packages, classes and deployment,
/// and counts the findings. Does not own the options, the packages and the output.
class Check
{
public:
    /// `a_pKnownIds` is null when packages are not checked.
    Check(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pKnownIds, Output& a_output);

    /// Checks all documents and writes the summary; an interrupted check writes none.
    [[nodiscard]] ExitCode run();

private:
    [[nodiscard]] bool openDeployment();
    [[nodiscard]] ExitCode checkPath(const QString& a_sPath);
    [[nodiscard]] ExitCode checkFolder(const QString& a_sFolder);
    [[nodiscard]] ExitCode checkFile(InputFile& a_file, const DocumentScope& a_scope);
    [[nodiscard]] ExitCode report(const InputFile& a_file, DocumentFindings& a_findings);
    void leaveOut(DocumentFindings& a_findings) const;
    void count(Simulation::Severity a_eSeverity, quint64 a_uiCount);
    [[nodiscard]] ExitCode refuse(const InputFile& a_file, const CheckedDocument& a_checked);
    [[nodiscard]] ExitCode refuseFolder(const QString& a_sFolder, const QString& a_sReason);
    [[nodiscard]] bool isOver() const { return isInterrupted() || !m_output.isOk(); }

    const CheckOptions& m_options;
    Output& m_output;
    std::unique_ptr<CheckOutput> m_report;
    InputFile m_deploymentFile;
    Simulation::DeploymentDataXml m_deployment;
    QSet<QString> m_deploymentFindings; ///< texts of the findings that the deployment has on its own
    Simulation::ScenarioChecker m_checker;
    CheckSummary m_summary;
    qsizetype m_iListed = 0;
    bool m_bExcerpts; ///< standard output is a terminal
    Progress m_progress{QStringLiteral("checking")};
};

/// Identifies a finding of the checker among those of other documents.
QString keyOf(const QString& a_sRule, const QString& a_sObjectId, const QString& a_sText)
{
    return a_sRule + u'\n' + a_sObjectId + u'\n' + a_sText;
}

Check::Check(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pKnownIds, Output& a_output)
    : m_options(a_options)
    , m_output(a_output)
    , m_report(makeCheckOutput(a_output, a_options.form))
    , m_deploymentFile(a_options.deployment)
    , m_checker(a_pKnownIds)
    , m_bExcerpts(a_options.form == CheckForm::Text && ::isatty(STDOUT_FILENO) == 1)
{
    m_checker.setKnownClasses(a_options.classes);
    if (a_pKnownIds != nullptr) {
        m_checker.setPackageFolder(packageStoreOf(a_options.repository));
    }
}

/// Reads the deployment for the scenarios. False after one line on standard error.
bool Check::openDeployment()
{
    if (!m_deploymentFile.prepare(Simulation::Limits::value(Simulation::Limits::DocumentBytes))) {
        return false;
    }
    if (!m_deployment.fromXmlFile(m_deploymentFile.path())) {
        complain(QStringLiteral("%1: cannot be read as a deployment document: %2")
                     .arg(m_deploymentFile.name(), m_deployment.errorString()));
        return false;
    }
    m_checker.check(m_deployment);
    for (const Simulation::ScenarioFinding& finding : m_checker.findings()) {
        m_deploymentFindings.insert(keyOf(finding.ruleId, finding.objectId, finding.text));
    }
    m_checker.setDeployment(&m_deployment);
    return true;
}

void Check::count(Simulation::Severity a_eSeverity, quint64 a_uiCount)
{
    switch (a_eSeverity) {
    case Simulation::Severity::Note:
        m_summary.notes += a_uiCount;
        break;
    case Simulation::Severity::Warning:
        m_summary.warnings += a_uiCount;
        break;
    default:
        m_summary.errors += a_uiCount;
        break;
    }
}

/// Removes the findings of the rules that are not selected.
void Check::leaveOut(DocumentFindings& a_findings) const
{
    a_findings.listed.removeIf(
        [&](const CheckFinding& a_finding) { return !m_options.rules.accepts(a_finding.ruleId); });
    const QStringList rules = a_findings.unlisted.keys();
    for (const QString& sRule : rules) {
        if (!m_options.rules.accepts(sRule)) {
            a_findings.unlisted.remove(sRule);
        }
    }
}

/// Reports and counts the findings. Notes alone do not change the exit code: nothing is
/// wrong.
ExitCode Check::report(const InputFile& a_file, DocumentFindings& a_findings)
{
    const quint64 uiBefore = m_summary.errors + m_summary.warnings;
    for (const CheckFinding& finding : a_findings.listed) {
        count(finding.severity, 1);
        m_summary.repaired += finding.repaired ? 1 : 0;
    }
    for (auto rule = a_findings.unlisted.cbegin(); rule != a_findings.unlisted.cend(); ++rule) {
        count(checkRules().at(ruleIndex(rule.key())).severity, rule.value());
    }
    limitListed(a_findings, std::min(s_iMostOfDocument, s_iMostOfRun - m_iListed));
    m_iListed += a_findings.listed.size();
    std::optional<SourceExcerpts> source;
    for (const CheckFinding& finding : a_findings.listed) {
        const bool bExcerpt = m_bExcerpts && finding.place.isKnown();
        if (bExcerpt && !source) {
            source.emplace(a_file.content());
        }
        m_report->addFinding(finding,
                             bExcerpt ? source->at(finding.place.line, finding.place.column) : std::nullopt);
    }
    m_report->addUnlisted(a_findings.unlisted);
    return m_summary.errors + m_summary.warnings == uiBefore ? ExitCode::Ok : ExitCode::Findings;
}

/// Reports that the document cannot be read. A finding with a place says so already.
ExitCode Check::refuse(const InputFile& a_file, const CheckedDocument& a_checked)
{
    ++m_summary.unreadable;
    m_report->addError(a_checked.error);
    const QList<CheckFinding>& listed = a_checked.findings.listed;
    if (listed.isEmpty() || !listed.constFirst().place.isKnown()) {
        complain(QStringLiteral("%1: cannot be read as a %2: %3")
                     .arg(a_file.name(), QLatin1String(kindName(a_checked.kind)), a_checked.error));
    }
    return ExitCode::Unusable;
}

/// Reports that a folder was not checked, or only a part of it.
ExitCode Check::refuseFolder(const QString& a_sFolder, const QString& a_sReason)
{
    ++m_summary.unreadable;
    m_report->beginFile(a_sFolder);
    m_report->addError(a_sReason);
    complain(QStringLiteral("%1: %2").arg(a_sFolder, a_sReason));
    return ExitCode::Unusable;
}

ExitCode Check::checkFile(InputFile& a_file, const DocumentScope& a_scope)
{
    m_progress.setWork(QStringLiteral("checking ") + a_file.name());
    m_report->beginFile(a_file.name());
    if (!a_file.prepare(Simulation::Limits::value(Simulation::Limits::DocumentBytes))) {
        ++m_summary.unreadable;
        m_report->addError(QStringLiteral("cannot be read"));
        return ExitCode::Unusable;
    }
    CheckedDocument checked = checkDocument(a_file, a_scope, m_checker);
    checked.findings.listed.removeIf([&](const CheckFinding& a_finding) {
        return checked.kind == DocumentKind::Scenario &&
               m_deploymentFindings.contains(keyOf(a_finding.ruleId, a_finding.objectId, a_finding.text));
    });
    leaveOut(checked.findings);
    m_report->setKind(kindName(checked.kind));
    ExitCode eCode = report(a_file, checked.findings);
    if (!checked.error.isEmpty()) {
        return refuse(a_file, checked);
    }
    ++m_summary.checked;
    if (a_scope.repair && !isInterrupted()) {
        const ExitCode eWritten = writeRepaired(a_file, checked, m_options, *m_report);
        m_summary.writtenFile = eWritten == ExitCode::Ok ? m_options.repairFile : QString();
        eCode = worse(eCode, eWritten);
    }
    return eCode;
}

ExitCode Check::checkFolder(const QString& a_sFolder)
{
    ExitCode eCode = ExitCode::Ok;
    m_progress.setWork(QStringLiteral("searching ") + a_sFolder);
    const FolderDocuments documents = documentsIn(a_sFolder);
    for (const QString& sFolder : documents.unreadable) {
        eCode = refuseFolder(sFolder, QStringLiteral("the folder cannot be read: permission denied"));
    }
    if (documents.isCut) {
        eCode =
            refuseFolder(a_sFolder, QStringLiteral("holds more than %1 files and folders, the limit, and the "
                                                   "others are not checked: give a smaller folder")
                                        .arg(s_iMostEntries));
    }
    if (documents.files.isEmpty() && eCode == ExitCode::Ok && !isInterrupted()) {
        eCode = refuseFolder(a_sFolder, QStringLiteral("the folder holds no documents"));
    }
    for (const QString& sFile : documents.files) {
        InputFile file(sFile);
        const bool bDataFiles = QFileInfo(sFile).fileName() == u"Signal.xml";
        eCode = worse(eCode, checkFile(file, {bDataFiles, false}));
        if (isOver()) {
            break;
        }
    }
    return eCode;
}

ExitCode Check::checkPath(const QString& a_sPath)
{
    if (!isStandardStreamName(a_sPath) && QFileInfo(a_sPath).isDir()) {
        return checkFolder(a_sPath);
    }
    InputFile file(a_sPath);
    return checkFile(file, {false, !m_options.repairFile.isEmpty()});
}

ExitCode Check::run()
{
    ExitCode eCode = ExitCode::Ok;
    if (!m_options.deployment.isEmpty()) {
        if (!openDeployment()) {
            return ExitCode::Unusable;
        }
        eCode = checkFile(m_deploymentFile, {});
    }
    for (const QString& sPath : m_options.paths) {
        if (!isSameFile(m_options.deployment, sPath)) {
            eCode = worse(eCode, checkPath(sPath));
        }
        // Neither an error text nor the summary is written here: main() ends an interrupted
        // process by the signal, and reports an error of the output.
        if (isOver()) {
            return ExitCode::Unusable;
        }
    }
    m_report->finish(m_summary);
    return eCode;
}

} // namespace

ExitCode runCheck(const CheckOptions& a_options, Output& a_output)
{
    if (a_options.repository.isEmpty()) {
        return Check(a_options, nullptr, a_output).run();
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
    return Check(a_options, &ids, a_output).run();
}

} // namespace SimulationTool

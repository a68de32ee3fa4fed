#include "checkcommand.h"

#include "interruption.h"
#include "output.h"
#include "outputfile.h"
#include "repositoryfolder.h"
#include "repositorypackages.h"
#include "scenariofile.h"
#include "terminaltext.h"
#include "valuetexts.h"
#include "verdict.h"

#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

namespace SimulationTool {

namespace {

/// What of a document its reader has not kept; empty when it has kept all.
QString lossOf(const Simulation::ScenarioDataXml& a_scenario)
{
    if (!a_scenario.errorString().isEmpty()) {
        return QStringLiteral("broke off, and what did not come through");
    }
    return a_scenario.mergedIds().isEmpty()
               ? QString()
               : QStringLiteral("holds several emitters of one id, and all but one of them");
}

/// Checks files against the same packages and classes, and counts.
class FileCheck
{
public:
    FileCheck(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pPackages,
              Output& a_output);

    [[nodiscard]] ExitCode check(const QString& a_sFile);
    void writeSummary();

private:
    void tell(const QString& a_sFile, const QString& a_sText, const QString& a_sRule);
    void tellFindings(const QString& a_sFile);
    ExitCode repair(Simulation::ScenarioDataXml& a_scenario, const QString& a_sFile);

    const CheckOptions& m_options;
    Output& m_output;
    Simulation::ScenarioChecker m_checker;
    quint64 m_uiChecked = 0; ///< files
    quint64 m_uiUnreadable = 0;
    quint64 m_uiFindings = 0;
    quint64 m_uiRepaired = 0;
    bool m_bWritten = false;
};

FileCheck::FileCheck(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pPackages,
                     Output& a_output)
    : m_options(a_options)
    , m_output(a_output)
    , m_checker(a_pPackages)
{
    m_checker.setKnownClasses(a_options.classes);
}

void FileCheck::tell(const QString& a_sFile, const QString& a_sText, const QString& a_sRule)
{
    ++m_uiFindings;
    m_output.write(terminalText(a_sFile + QStringLiteral(": ") + a_sText + QStringLiteral(" [") + a_sRule) +
                   QStringLiteral("]\n"));
}

void FileCheck::tellFindings(const QString& a_sFile)
{
    for (const Simulation::ScenarioFinding& finding : m_checker.findings()) {
        const QString sName =
            finding.objectName.isEmpty() ? QString() : QStringLiteral(" (") + finding.objectName + u')';
        tell(a_sFile, orDash(finding.objectId) + sName + QStringLiteral(": ") + finding.text, finding.ruleId);
        m_uiRepaired += finding.repaired ? 1 : 0;
    }
}

/// Writes the scenario as it is after the check.
ExitCode FileCheck::repair(Simulation::ScenarioDataXml& a_scenario, const QString& a_sFile)
{
    const QString sLoss = lossOf(a_scenario);
    if (!sLoss.isEmpty() && isSameFile(a_sFile, m_options.repairFile)) {
        complain(QStringLiteral("check: %1 %2 would be lost: give another --repair").arg(a_sFile, sLoss));
        return ExitCode::Unusable;
    }
    const QByteArray document = a_scenario.toXml();
    if (document.isEmpty()) {
        complain(
            QStringLiteral("%1: not written: %2")
                .arg(m_options.repairFile, Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes)));
        return ExitCode::Unusable;
    }
    const ExitCode eCode = replaceFile(m_options.repairFile, document);
    m_bWritten = eCode == ExitCode::Ok;
    return eCode;
}

ExitCode FileCheck::check(const QString& a_sFile)
{
    // Keeps every id: one that the repository does not know is to be found, not
    // replaced while loading, and one that it knows is to be written as it was.
    Simulation::UnresolvedSignalPackageProvider ids;
    Simulation::ScenarioDataXml scenario(&ids);
    if (!scenario.fromXmlFile(a_sFile)) {
        ++m_uiUnreadable;
        complain(
            QStringLiteral("%1: cannot be read as a scenario document, the only kind that is checked: %2")
                .arg(a_sFile, scenario.errorString()));
        return ExitCode::Unusable;
    }
    ++m_uiChecked;
    const quint64 uiFindings = m_uiFindings;
    if (!scenario.errorString().isEmpty()) {
        tell(a_sFile, QStringLiteral("broke off: ") + scenario.errorString(), QStringLiteral("broken-off"));
    }
    m_checker.check(scenario);
    tellFindings(a_sFile);
    const ExitCode eFound = m_uiFindings == uiFindings ? ExitCode::Ok : ExitCode::Findings;
    return m_options.repairFile.isEmpty() || isInterrupted() ? eFound
                                                             : worse(eFound, repair(scenario, a_sFile));
}

void FileCheck::writeSummary()
{
    QString sSummary = counted(m_uiChecked, "file") + QStringLiteral(" checked");
    if (m_uiUnreadable != 0) {
        sSummary += QStringLiteral(", %1 not readable").arg(m_uiUnreadable);
    }
    sSummary += QStringLiteral(": ") + counted(m_uiFindings, "finding");
    if (m_bWritten) {
        sSummary += QStringLiteral(", %1 repaired, written to ").arg(m_uiRepaired) + m_options.repairFile;
    }
    m_output.write(terminalText(sSummary) + u'\n');
}

/// The ids that a repository knows. Every emission keeps its own record, so that a
/// repaired document names the same packages as before.
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

ExitCode checkAll(const CheckOptions& a_options, Simulation::ISignalPackageProvider* a_pPackages,
                  Output& a_output)
{
    FileCheck check(a_options, a_pPackages, a_output);
    ExitCode eCode = ExitCode::Ok;
    for (const QString& sFile : a_options.files) {
        eCode = worse(eCode, check.check(sFile));
        // An interrupted check is nobody's fault: nothing is said.
        if (isInterrupted() || !a_output.isOk()) {
            return ExitCode::Unusable;
        }
    }
    check.writeSummary();
    return eCode;
}

} // namespace

ExitCode runCheck(const CheckOptions& a_options, Output& a_output)
{
    if (a_options.repository.isEmpty()) {
        return checkAll(a_options, nullptr, a_output);
    }
    catchInterruptions(); // the cache is a temporary one
    RepositoryPackages packages;
    // A package that is not in the cache would be repaired away.
    if (!packages.open(a_options.repository, {}) || !packages.isComplete()) {
        return ExitCode::Unusable;
    }
    // A repair against the wrong folder would take every emission its package.
    if (Simulation::SignalPackageFolder::list(packageStoreOf(a_options.repository)).isEmpty()) {
        complain(QStringLiteral("%1: holds no signal packages").arg(a_options.repository));
        return ExitCode::Unusable;
    }
    KnownIds ids(packages);
    return checkAll(a_options, &ids, a_output);
}

} // namespace SimulationTool

#include "scenariochecker_packagefiles_p.h"

#include "signalpackagecache_sources_p.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/signalpackagecheck.h"

#include <QSet>

namespace Simulation {

namespace {

/// The problems in one text, separated by semicolons.
QString joined(const QList<SignalPackageProblem>& a_problems)
{
    QStringList texts;
    for (const SignalPackageProblem& problem : a_problems) {
        texts.append(problem.file.isEmpty() ? problem.text : problem.file + u' ' + problem.text);
    }
    return texts.join(QStringLiteral("; "));
}

} // namespace

/// Packages are found as a cache finds them, so that the package that is checked is the
/// one that is played.
void PackageFiles::readPackages()
{
    if (m_bRead || m_sFolder.isEmpty()) {
        return;
    }
    m_bRead = true;
    const QList<PackageSource> sources =
        readPackagesBelow(m_sFolder, [](const SignalPackage&) { return false; });
    for (const PackageSource& source : sources) {
        m_packages.insert(source.package.cleanId(), source.package);
    }
    const SupersededIds superseded(sources);
    for (const PackageSource& source : sources) {
        const QStringList ids = superseded.of(source.package);
        for (const QString& sId : ids) {
            if (!m_packages.contains(sId)) {
                m_packages.insert(sId, source.package);
            }
        }
    }
}

const SignalPackage* PackageFiles::package(const QString& a_sId)
{
    readPackages();
    const auto found = m_packages.constFind(SignalPackage::cleanId(a_sId));
    return found != m_packages.cend() ? &*found : nullptr;
}

const PackageFiles::Problems* PackageFiles::problems(const QString& a_sId)
{
    const SignalPackage* const pPackage = package(a_sId);
    if (pPackage == nullptr) {
        return nullptr;
    }
    const QString sFolder = pPackage->path();
    auto found = m_problems.constFind(sFolder);
    if (found == m_problems.cend()) {
        found = m_problems.insert(sFolder, {joined(SignalPackageCheck::damage(sFolder)),
                                            joined(SignalPackageCheck::contradictions(sFolder))});
    }
    return &*found;
}

void checkPackageFiles(const EmissionSettings& a_schedule, PackageFiles& a_files, Findings& a_findings)
{
    if (a_files.isEmpty()) {
        return;
    }
    QSet<QString> seen;
    for (const auto& emission : a_schedule.emissions()) {
        const QString sId = emission->signalPackage ? emission->signalPackage->id() : QString();
        if (sId.isEmpty() || seen.contains(sId)) {
            continue;
        }
        seen.insert(sId);
        const PackageFiles::Problems* const pProblems = a_files.problems(sId);
        if (pProblems != nullptr && !pProblems->damage.isEmpty()) {
            a_findings.append(ruleFinding(ScenarioChecker::s_sDamagedPackage,
                                          QStringLiteral("The signal package \"") + sId +
                                              QStringLiteral("\" is damaged: ") + pProblems->damage +
                                              QStringLiteral(". Put a whole one into the repository.")));
        }
        if (pProblems != nullptr && !pProblems->contradictions.isEmpty()) {
            a_findings.append(ruleFinding(
                ScenarioChecker::s_sContradictingPackage,
                QStringLiteral("The signal package \"") + sId +
                    QStringLiteral("\" contradicts its descriptor: ") + pProblems->contradictions +
                    QStringLiteral(". Put the original package into the repository.")));
        }
    }
}

void checkRange(const IFrequencySettings* a_pSettings, const EmissionSettings& a_schedule,
                PackageFiles& a_files, Findings& a_findings)
{
    if (a_pSettings == nullptr || a_schedule.emissions().isEmpty()) {
        return;
    }
    const double dRange = a_pSettings->getMaximumFrequency() - a_pSettings->getMinimumFrequency();
    if (!(dRange > 0.0)) { // a fixed frequency, or bounds that are not numbers
        return;
    }
    const SignalPackage* pNarrowest = nullptr;
    const SignalPackage* pSeen = nullptr;
    for (const auto& emission : a_schedule.emissions()) {
        const SignalPackage* pPackage = emission->signalPackage.get();
        if (pPackage == nullptr || pPackage == pSeen) {
            continue;
        }
        pSeen = pPackage;
        if (!(pPackage->signalBandwidth() > 0.0F)) {
            pPackage = a_files.package(pPackage->id());
        }
        if (pPackage != nullptr && pPackage->signalBandwidth() > 0.0F &&
            (pNarrowest == nullptr || pPackage->signalBandwidth() < pNarrowest->signalBandwidth())) {
            pNarrowest = pPackage;
        }
    }
    if (pNarrowest != nullptr && dRange > static_cast<double>(pNarrowest->signalBandwidth())) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sRangeBeyondBandwidth,
            QStringLiteral(
                "The frequencies cover %1 Hz, the signal package \"%2\" %3 Hz: the signal is moved "
                "through the range and does not fill it.")
                .arg(QString::number(dRange), pNarrowest->id(),
                     QString::number(static_cast<double>(pNarrowest->signalBandwidth())))));
    }
}

} // namespace Simulation

#include "scenariochecker.h"

#include "scenariochecker_networks_p.h"
#include "scenariochecker_objects_p.h"
#include "scenariochecker_packagefiles_p.h"
#include "scenariochecker_packages_p.h"
#include "scenariochecker_rules_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariochecker";

using Objects = QSet<std::shared_ptr<ScenarioObject>>;

/// An object and the key by which its findings are sorted.
struct Subject
{
    std::tuple<bool, QString, QString> key; ///< whether it is no emitter, id, name
    ScenarioObject* object = nullptr;
    SzenarioEmitter* emitter = nullptr; ///< the object as an emitter; null when it is not one
};

std::vector<Subject> subjectsOf(const Objects& a_objects)
{
    std::vector<Subject> subjects;
    subjects.reserve(static_cast<std::size_t>(a_objects.size()));
    for (const std::shared_ptr<ScenarioObject>& object : a_objects) {
        auto* const pEmitter = dynamic_cast<SzenarioEmitter*>(object.get());
        subjects.push_back({{pEmitter == nullptr, object->id(), object->name()}, object.get(), pEmitter});
    }
    std::sort(subjects.begin(), subjects.end(),
              [](const Subject& a_first, const Subject& a_second) { return a_first.key < a_second.key; });
    return subjects;
}

/// What a check of a scenario needs from its checker. Nothing is owned.
struct Settings
{
    ISignalPackageProvider* provider = nullptr; ///< null: packages are not checked
    PackageFiles& files;
    const QSet<QString>& knownClasses;
};

/// The rules and their state during one run.
class Run
{
public:
    Run(const Settings& a_settings, IdRule a_ids, const Objects& a_objects);

    /// The findings for objects of equal kind, id and name. These objects are treated
    /// as one: a finding could not show which of them it concerns, and their set has no
    /// order.
    [[nodiscard]] Findings check(std::span<const Subject> a_alike);

private:
    Findings checkPackages(std::span<const Subject> a_alike);
    void checkEmitter(SzenarioEmitter& a_emitter, Findings& a_findings);
    void checkObject(const Subject& a_subject, Findings& a_findings);

    const Settings m_settings;
    std::optional<PackageRule> m_packages;
    IdRule m_ids;
    LinkRule m_links;
    SettingsRule m_missing;
};

Run::Run(const Settings& a_settings, IdRule a_ids, const Objects& a_objects)
    : m_settings(a_settings)
    , m_ids(std::move(a_ids))
    , m_links(a_objects)
{
    if (a_settings.provider != nullptr) {
        m_packages.emplace(*a_settings.provider);
    }
}

Findings Run::checkPackages(std::span<const Subject> a_alike)
{
    PackageRule::Tallies tallies;
    for (const Subject& subject : a_alike) {
        // The qualified call returns the own schedule of a network's member. The
        // schedule of the network is checked with the network.
        m_packages->check(*subject.object->ScenarioObject::emissionSettings(), tallies);
    }
    Findings findings;
    for (const auto& [sId, tally] : tallies) {
        findings.append(m_packages->finding(sId, tally));
    }
    return findings;
}

void Run::checkEmitter(SzenarioEmitter& a_emitter, Findings& a_findings)
{
    m_ids.check(a_emitter.id(), a_findings);
    checkClass(a_emitter, m_settings.knownClasses, a_findings);
    if (a_emitter.isLinked()) {
        m_links.check(a_emitter, a_findings);
    } else {
        checkPath(a_emitter.ownPositionSettings(), a_findings);
    }
}

void Run::checkObject(const Subject& a_subject, Findings& a_findings)
{
    m_missing.check(*a_subject.object, a_subject.emitter, a_findings);
    if (a_subject.emitter != nullptr) {
        checkEmitter(*a_subject.emitter, a_findings);
    } else if (const auto* pNetwork = dynamic_cast<const ScenarioNetwork*>(a_subject.object)) {
        checkNetwork(*pNetwork, a_findings);
    }
    const EmissionSettings& schedule = *a_subject.object->ScenarioObject::emissionSettings();
    checkPackageFiles(schedule, m_settings.files, a_findings);
    if (a_subject.emitter == nullptr || !a_subject.emitter->hasNetwork()) {
        checkTimes(schedule, a_findings);
        checkGroups(schedule, a_findings);
        checkRange(a_subject.object->frequencySettings(), schedule, m_settings.files, a_findings);
    }
}

Findings Run::check(std::span<const Subject> a_alike)
{
    // The packages come first: the checks of their files need the repaired emissions.
    Findings findings = m_packages ? checkPackages(a_alike) : Findings();
    Findings others;
    for (const Subject& subject : a_alike) {
        checkObject(subject, others);
    }
    // The objects come from a set without order. Sorted by rule and text, the findings
    // are the same in every run.
    std::sort(others.begin(), others.end(),
              [](const ScenarioFinding& a_first, const ScenarioFinding& a_second) {
                  return std::pair(placeOfRule(a_first.ruleId), QStringView(a_first.text)) <
                         std::pair(placeOfRule(a_second.ruleId), QStringView(a_second.text));
              });
    findings += others;
    for (ScenarioFinding& finding : findings) {
        finding.objectId = std::get<1>(a_alike.front().key);
        finding.objectName = std::get<2>(a_alike.front().key);
    }
    return findings;
}

/// The emitters of a scenario, after their settings were repaired.
std::vector<const SzenarioEmitter*> emittersOf(const std::vector<Subject>& a_subjects)
{
    std::vector<const SzenarioEmitter*> emitters;
    for (const Subject& subject : a_subjects) {
        if (subject.emitter != nullptr) {
            emitters.push_back(subject.emitter);
        }
    }
    return emitters;
}

} // namespace

ScenarioChecker::ScenarioChecker(ISignalPackageProvider* a_pProvider)
    : m_pProvider(a_pProvider)
    , m_packageFiles(std::make_shared<PackageFiles>(QString()))
{}

void ScenarioChecker::setPackageFolder(const QString& a_sFolder)
{
    m_packageFiles = std::make_shared<PackageFiles>(a_sFolder);
}

qsizetype ScenarioChecker::count(QLatin1String a_sRule) const
{
    return std::count_if(m_findings.cbegin(), m_findings.cend(),
                         [&](const ScenarioFinding& a_finding) { return a_finding.ruleId == a_sRule; });
}

/// Traces how often each rule was broken. Notes alone are not traced.
void ScenarioChecker::traceFindings(const char* a_szDocument) const
{
    if (std::all_of(m_findings.cbegin(), m_findings.cend(),
                    [](const ScenarioFinding& a_finding) { return a_finding.severity == Severity::Note; })) {
        return;
    }
    traceError(s_szSource, [&] {
        QStringList counts;
        for (const CheckRule& rule : rules()) {
            if (const qsizetype iCount = count(rule.id); iCount != 0) {
                counts.append(QString::number(iCount) + u' ' + rule.id);
            }
        }
        return QStringLiteral("The check of a %1 found %2")
            .arg(QLatin1String(a_szDocument), counts.join(QStringLiteral(", ")));
    });
}

void ScenarioChecker::check(ScenarioDataXml& a_scenario)
{
    m_findings.clear();
    const Objects objects = a_scenario.scenarioObjects();
    const std::vector<Subject> subjects = subjectsOf(objects);
    IdRule ids(a_scenario.mergedIds());
    for (const Subject& subject : subjects) {
        if (subject.emitter != nullptr) {
            ids.add(subject.emitter->id());
        }
    }
    Run run({m_pProvider, *m_packageFiles, m_knownClasses}, std::move(ids), objects);
    for (auto first = subjects.cbegin(); first != subjects.cend();) {
        const auto last = std::find_if(first, subjects.cend(),
                                       [&](const Subject& a_subject) { return a_subject.key != first->key; });
        m_findings += run.check({first, last});
        first = last;
    }
    if (m_pDeployment != nullptr) {
        m_findings += deploymentFindings(*m_pDeployment);
        m_findings += reachFindings(*m_pDeployment, emittersOf(subjects));
    }
    traceFindings("scenario");
}

void ScenarioChecker::check(const DeploymentDataXml& a_deployment)
{
    m_findings = deploymentFindings(a_deployment);
    traceFindings("deployment");
}

} // namespace Simulation

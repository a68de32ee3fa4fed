#include "scenariochecker.h"

#include "scenariochecker_packages_p.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/transmittersettings.h"

#include <QHash>
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

/// The finding for an unknown class; the caller sets the object.
ScenarioFinding classFinding(const QString& a_sClass)
{
    return {{},
            {},
            ScenarioChecker::s_sInvalidClass,
            QStringLiteral("The class \"") + a_sClass + QStringLiteral("\" is not known: it stays as it is."),
            false};
}

/// The rule about ids that several emitters share. Each id is listed once.
class IdRule
{
public:
    /// `a_mergedIds`: see ScenarioDataXml::mergedIds().
    explicit IdRule(const QMap<QString, qsizetype>& a_mergedIds)
        : m_mergedIds(a_mergedIds)
    {}

    void add(const QString& a_sId) { ++m_counts[a_sId]; }
    void check(const QString& a_sId, QList<ScenarioFinding>& a_findings);

private:
    static ScenarioFinding finding(qsizetype a_iEmitters, const char* a_szConsequence);

    QHash<QString, qsizetype> m_counts; ///< emitters of the scenario, by id
    QMap<QString, qsizetype> m_mergedIds;
};

ScenarioFinding IdRule::finding(qsizetype a_iEmitters, const char* a_szConsequence)
{
    return {{},
            {},
            ScenarioChecker::s_sDuplicateId,
            QString::number(a_iEmitters) + QLatin1String(a_szConsequence) +
                QStringLiteral(" Give every emitter its own id."),
            false};
}

void IdRule::check(const QString& a_sId, QList<ScenarioFinding>& a_findings)
{
    if (const qsizetype iEmitters = m_counts.take(a_sId); iEmitters > 1) {
        a_findings.append(finding(
            iEmitters, " emitters have this id: a reader of the saved scenario gets one emitter for them."));
    }
    if (const qsizetype iMerged = m_mergedIds.take(a_sId); iMerged > 1) {
        a_findings.append(
            finding(iMerged, " emitters of the document have this id: they were read as one emitter."));
    }
}

/// The rule about missing settings objects. Each missing one is replaced by that of a
/// new object, with one finding.
class SettingsRule
{
public:
    void check(ScenarioObject& a_object, SzenarioEmitter* a_pEmitter, QList<ScenarioFinding>& a_findings);

private:
    static ScenarioFinding finding(const char* a_szKind);

    SzenarioEmitter m_fresh{{}, {}}; ///< source of the settings of a new object
};

ScenarioFinding SettingsRule::finding(const char* a_szKind)
{
    return {{},
            {},
            ScenarioChecker::s_sMissingSettings,
            QStringLiteral("The %1 settings were missing: those of a new object were set.")
                .arg(QLatin1String(a_szKind)),
            true};
}

void SettingsRule::check(ScenarioObject& a_object, SzenarioEmitter* a_pEmitter,
                         QList<ScenarioFinding>& a_findings)
{
    if (a_object.frequencySettings() == nullptr) {
        a_object.setFrequencySettings(m_fresh.frequencySettings()->clone());
        a_findings.append(finding("frequency"));
    }
    if (a_pEmitter != nullptr && a_pEmitter->ownPositionSettings() == nullptr) {
        a_pEmitter->setPositionSettings(m_fresh.ownPositionSettings()->clone());
        a_findings.append(finding("position"));
    }
    if (a_pEmitter != nullptr && a_pEmitter->getTranmitterSettings() == nullptr) {
        auto settings = std::make_unique<TransmitterSettings>(*m_fresh.getTranmitterSettings());
        a_pEmitter->setTransmitterSettings(settings.release());
        a_findings.append(finding("transmitter"));
    }
}

/// An object and the key by which its findings are sorted.
struct Subject
{
    std::tuple<bool, QString, QString> key; ///< whether it is no emitter, id, name
    ScenarioObject* object = nullptr;
    SzenarioEmitter* emitter = nullptr; ///< the object as an emitter; null when it is not one
};

std::vector<Subject> subjectsOf(const QSet<std::shared_ptr<ScenarioObject>>& a_objects)
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

/// The rules and their state during one run.
class Run
{
public:
    Run(ISignalPackageProvider* a_pProvider, const QSet<QString>& a_knownClasses, IdRule a_ids);

    /// The findings for objects of equal kind, id and name. These objects are treated
    /// as one: a finding could not show which of them it concerns, and their set has no
    /// order.
    [[nodiscard]] QList<ScenarioFinding> check(std::span<const Subject> a_alike);

private:
    QList<ScenarioFinding> checkPackages(std::span<const Subject> a_alike);

    std::optional<PackageRule> m_packages;
    const QSet<QString>& m_knownClasses;
    IdRule m_ids;
    SettingsRule m_settings;
};

Run::Run(ISignalPackageProvider* a_pProvider, const QSet<QString>& a_knownClasses, IdRule a_ids)
    : m_knownClasses(a_knownClasses)
    , m_ids(std::move(a_ids))
{
    if (a_pProvider != nullptr) {
        m_packages.emplace(*a_pProvider);
    }
}

QList<ScenarioFinding> Run::checkPackages(std::span<const Subject> a_alike)
{
    PackageRule::Tallies tallies;
    for (const Subject& subject : a_alike) {
        // The qualified call returns the own schedule of a network's member. The
        // schedule of the network is checked with the network.
        m_packages->check(*subject.object->ScenarioObject::emissionSettings(), tallies);
    }
    QList<ScenarioFinding> findings;
    for (const auto& [sId, tally] : tallies) {
        findings.append(m_packages->finding(sId, tally));
    }
    return findings;
}

QList<ScenarioFinding> Run::check(std::span<const Subject> a_alike)
{
    QList<ScenarioFinding> others;
    for (const Subject& subject : a_alike) {
        if (subject.emitter != nullptr) {
            m_ids.check(subject.emitter->id(), others);
        }
        if (subject.emitter != nullptr && !m_knownClasses.isEmpty() &&
            !m_knownClasses.contains(subject.emitter->getClass())) {
            others.append(classFinding(subject.emitter->getClass()));
        }
        m_settings.check(*subject.object, subject.emitter, others);
    }
    // The objects come from a set without order. Sorted by rule and text, the findings
    // are the same in every run.
    std::sort(others.begin(), others.end(),
              [](const ScenarioFinding& a_first, const ScenarioFinding& a_second) {
                  return std::tie(a_first.ruleId, a_first.text) < std::tie(a_second.ruleId, a_second.text);
              });
    QList<ScenarioFinding> findings =
        (m_packages ? checkPackages(a_alike) : QList<ScenarioFinding>()) + others;
    for (ScenarioFinding& finding : findings) {
        finding.objectId = std::get<1>(a_alike.front().key);
        finding.objectName = std::get<2>(a_alike.front().key);
    }
    return findings;
}

} // namespace

ScenarioChecker::ScenarioChecker(ISignalPackageProvider* a_pProvider)
    : m_pProvider(a_pProvider)
{}

qsizetype ScenarioChecker::count(QLatin1String a_sRule) const
{
    return std::count_if(m_findings.cbegin(), m_findings.cend(),
                         [&](const ScenarioFinding& a_finding) { return a_finding.ruleId == a_sRule; });
}

void ScenarioChecker::check(ScenarioDataXml& a_scenario)
{
    m_findings.clear();
    const auto objects = a_scenario.scenarioObjects();
    const std::vector<Subject> subjects = subjectsOf(objects);
    IdRule ids(a_scenario.mergedIds());
    for (const Subject& subject : subjects) {
        if (subject.emitter != nullptr) {
            ids.add(subject.emitter->id());
        }
    }
    Run run(m_pProvider, m_knownClasses, std::move(ids));
    for (auto first = subjects.cbegin(); first != subjects.cend();) {
        const auto last = std::find_if(first, subjects.cend(),
                                       [&](const Subject& a_subject) { return a_subject.key != first->key; });
        m_findings += run.check({first, last});
        first = last;
    }
    if (!m_findings.isEmpty()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("The check of a scenario found %1 %2, %3 %4, %5 %6, %7 %8")
                .arg(QString::number(count(s_sInvalidSignalPackage)), s_sInvalidSignalPackage,
                     QString::number(count(s_sDuplicateId)), s_sDuplicateId,
                     QString::number(count(s_sInvalidClass)), s_sInvalidClass,
                     QString::number(count(s_sMissingSettings)), s_sMissingSettings);
        });
    }
}

} // namespace Simulation

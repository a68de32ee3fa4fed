#ifndef SIMULATIONDATA_SCENARIOCHECKER_H
#define SIMULATIONDATA_SCENARIOCHECKER_H

#include "simulationdata/simulationdata_export.h"

#include <QLatin1String>
#include <QList>
#include <QSet>
#include <QString>
#include <QtGlobal>

namespace Simulation {

class ISignalPackageProvider;
class ScenarioDataXml;

/// What a check found at one object, and what it did about it.
struct ScenarioFinding
{
    QString objectId;
    QString objectName;
    QString ruleId;        ///< which rule was broken, one of those of ScenarioChecker; never changes
    QString text;          ///< one sentence in English: what was found and what was done
    bool repaired = false; ///< whether the object is in order now, as far as this finding goes
};

/// Checks the objects of a scenario and repairs in place what it can, so that
/// whoever plays the scenario need not ask. Four rules:
///
/// - every emission of an object's own schedule has a signal package that the
///   provider knows; those that have none get the provider's default package, and
///   all others, which is no finding, the provider's own record of their package,
///   by which its data files are read: a superseded package becomes its successor,
/// - every emitter has an id of its own, in the scenario and in the document that
///   it was read from: a reader makes one emitter of those who share an id, which
///   is reported only,
/// - the class of every emitter is a known one; others are reported only,
/// - every object has the settings objects that belong to it; missing ones are
///   replaced by those of a new object.
///
/// Members and link targets that are not among the scenario's objects are not
/// looked at. Used from the thread of the scenario. A new checker knows every
/// class and has found nothing.
class SIMULATIONDATA_EXPORT ScenarioChecker
{
public:
    /// The ids of the rules.
    static constexpr QLatin1String s_sInvalidSignalPackage{"invalid-signal-package"};
    static constexpr QLatin1String s_sDuplicateId{"duplicate-id"};
    static constexpr QLatin1String s_sInvalidClass{"invalid-class"};
    static constexpr QLatin1String s_sMissingSettings{"missing-settings"};

    /// The provider is not owned and must outlive the checker; with null the
    /// rule about packages is off. It may be another than the one that the
    /// scenario was loaded with, and should be: a provider that resolves unknown
    /// ids to its default package leaves nothing to find.
    explicit ScenarioChecker(ISignalPackageProvider* a_pProvider);

    /// The classes that emitters may have; an emitter without a class has the
    /// empty one. An empty set means that every class is known.
    void setKnownClasses(const QSet<QString>& a_classes) { m_knownClasses = a_classes; }

    /// Checks all objects of the scenario, whoever else holds them, and forgets
    /// what the last run found. O(n log n) in objects and emissions; every
    /// package id is asked of the provider once. One trace line when something
    /// was found.
    void check(ScenarioDataXml& a_scenario);

    /// Whether the last run found emissions without a usable package, emitters
    /// that share an id, emitters of an unknown class, missing settings objects;
    /// repaired or not.
    [[nodiscard]] bool hadInvalidSignalPackages() const { return count(s_sInvalidSignalPackage) != 0; }
    [[nodiscard]] bool hadDuplicateIds() const { return count(s_sDuplicateId) != 0; }
    [[nodiscard]] bool hadInvalidClasses() const { return count(s_sInvalidClass) != 0; }
    [[nodiscard]] bool hadNullPointerSettings() const { return count(s_sMissingSettings) != 0; }

    /// What the last run found: emitters before networks, in the order of ids
    /// and names, at each object in the order of the rules above; one for each
    /// package id, class and settings object; a shared id at the first object that
    /// has it. The same scenario gives the same
    /// list. An emission that several schedules share counts at the first.
    [[nodiscard]] const QList<ScenarioFinding>& findings() const { return m_findings; }

private:
    [[nodiscard]] qsizetype count(QLatin1String a_sRule) const;

    ISignalPackageProvider* m_pProvider;
    QSet<QString> m_knownClasses;
    QList<ScenarioFinding> m_findings;
};

} // namespace Simulation

#endif

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

/// A finding of a check at one object, and whether it was repaired.
struct ScenarioFinding
{
    QString objectId;
    QString objectName;
    QString ruleId;        ///< the id of the broken rule, a constant of ScenarioChecker
    QString text;          ///< one English sentence: finding and repair
    bool repaired = false; ///< whether the repair has removed this finding from the object
};

/// Checks the objects of a scenario and repairs them in place where possible, so that
/// a scenario can be played without further checks. There are four rules:
///
/// - Every emission of an object's own schedule has a signal package that the
///   provider knows. Any other emission gets the provider's default package. A valid
///   emission gets the provider's own record of its package, because data files are
///   read by that record. A superseded package is thus replaced by its successor;
///   this is not a finding.
/// - Every emitter has an id of its own, in the scenario and in the document that it
///   was read from. A reader merges emitters that share an id. Listed, not repaired.
/// - The class of every emitter is a known one. Listed, not repaired.
/// - Every object has its settings objects. Missing ones are replaced by those of a
///   new object.
///
/// Members and link targets that do not belong to the scenario's objects are not
/// checked. Used on the scenario's thread. A new checker accepts every class and has
/// no findings.
class SIMULATIONDATA_EXPORT ScenarioChecker
{
public:
    /// The ids of the rules.
    static constexpr QLatin1String s_sInvalidSignalPackage{"invalid-signal-package"};
    static constexpr QLatin1String s_sDuplicateId{"duplicate-id"};
    static constexpr QLatin1String s_sInvalidClass{"invalid-class"};
    static constexpr QLatin1String s_sMissingSettings{"missing-settings"};

    /// The provider is not owned and must outlive the checker. Null disables the rule
    /// about packages.
    ///
    /// The provider should not be the provider that loaded the scenario. A loading
    /// provider that resolves unknown ids to its default package hides these ids
    /// from the check.
    explicit ScenarioChecker(ISignalPackageProvider* a_pProvider);

    /// Sets the classes that emitters may have. The class of an emitter without one
    /// is the empty text. An empty set accepts every class.
    void setKnownClasses(const QSet<QString>& a_classes) { m_knownClasses = a_classes; }

    /// Checks all objects of the scenario, including those with further owners.
    /// Replaces the findings of the last run. O(n log n) in objects and emissions.
    /// The provider is called once per package id. One trace when there are
    /// findings.
    void check(ScenarioDataXml& a_scenario);

    /// Whether the last run found emissions without a usable package, emitters that
    /// share an id, emitters of an unknown class, or missing settings objects.
    /// Repaired findings count, too.
    [[nodiscard]] bool hadInvalidSignalPackages() const { return count(s_sInvalidSignalPackage) != 0; }
    [[nodiscard]] bool hadDuplicateIds() const { return count(s_sDuplicateId) != 0; }
    [[nodiscard]] bool hadInvalidClasses() const { return count(s_sInvalidClass) != 0; }
    [[nodiscard]] bool hadNullPointerSettings() const { return count(s_sMissingSettings) != 0; }

    /// The findings of the last run. Emitters come before networks; both groups are
    /// sorted by id and name. The findings of one object are in the order of the
    /// rules above. There is one finding per package id, class and settings object.
    /// A shared id is listed at the first object with this id. An emission that
    /// several schedules share is counted at the first of these schedules. The same
    /// scenario gives the same list.
    [[nodiscard]] const QList<ScenarioFinding>& findings() const { return m_findings; }

private:
    [[nodiscard]] qsizetype count(QLatin1String a_sRule) const;

    ISignalPackageProvider* m_pProvider;
    QSet<QString> m_knownClasses;
    QList<ScenarioFinding> m_findings;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SCENARIOCHECKER_H
#define SIMULATIONDATA_SCENARIOCHECKER_H

#include "simulationdata/checkrule.h"
#include "simulationdata/simulationdata_export.h"

#include <QLatin1String>
#include <QList>
#include <QSet>
#include <QString>
#include <QtGlobal>

#include <memory>
#include <span>

namespace Simulation {

class DeploymentDataXml;
class ISignalPackageProvider;
class PackageFiles;
class ScenarioDataXml;

/// A finding of a check at one object, and whether it was repaired.
struct ScenarioFinding
{
    QString objectId;
    QString objectName;
    QString ruleId;                        ///< the id of the broken rule, a constant of ScenarioChecker
    Severity severity = Severity::Warning; ///< that of the rule
    QString text;                          ///< one English sentence: finding and repair
    bool repaired = false;                 ///< whether the repair has removed this finding from the object
};

/// Checks the objects of a scenario for what shows only after loading, and repairs them
/// in place where it can, so that a scenario can be played without further checks.
/// rules() describes what is checked. A clean scenario has no findings, or only notes.
///
/// Two rules repair what they find. An emission without a usable signal package gets
/// the provider's default package. An object without settings gets those of a new
/// object. All other findings are reported only. Every other emission gets the
/// provider's own record of its package, because data files are read by that record. A
/// superseded package is thus replaced by its successor; this is not a finding.
///
/// What is not played is not checked: the schedule of an emitter that belongs to a
/// network, the position of an emitter that follows another one, and the times of a
/// schedule in broadcast mode. Packages are checked in all schedules.
///
/// Members and link targets that do not belong to the scenario's objects are not
/// checked. Used on the scenario's thread. A new checker accepts every class, knows no
/// deployment and no package folder, and has no findings.
class SIMULATIONDATA_EXPORT ScenarioChecker
{
public:
    // The ids of the rules; rules() describes them.
    static constexpr QLatin1String s_sInvalidSignalPackage{"invalid-signal-package"};
    static constexpr QLatin1String s_sDuplicateId{"duplicate-id"};
    static constexpr QLatin1String s_sInvalidClass{"invalid-class"};
    static constexpr QLatin1String s_sMissingSettings{"missing-settings"};
    static constexpr QLatin1String s_sOverlappingEmissions{"overlapping-emissions"};
    static constexpr QLatin1String s_sEmissionAfterPeriod{"emission-after-period"};
    static constexpr QLatin1String s_sEmissionBeyondPeriod{"emission-beyond-period"};
    static constexpr QLatin1String s_sEmptyGroup{"empty-group"};
    static constexpr QLatin1String s_sNetworkWithoutMembers{"network-without-members"};
    static constexpr QLatin1String s_sNetworkWithoutHead{"network-without-head"};
    static constexpr QLatin1String s_sForeignEmission{"foreign-emission"};
    static constexpr QLatin1String s_sCutLink{"cut-link"};
    static constexpr QLatin1String s_sPositionOutOfRange{"position-out-of-range"};
    static constexpr QLatin1String s_sMovementWithoutSpeed{"movement-without-speed"};
    static constexpr QLatin1String s_sJumpingPosition{"jumping-position"};
    static constexpr QLatin1String s_sJumpAtRestart{"jump-at-restart"};
    static constexpr QLatin1String s_sRangeBeyondBandwidth{"range-beyond-bandwidth"};
    static constexpr QLatin1String s_sDamagedPackage{"damaged-package"};
    static constexpr QLatin1String s_sContradictingPackage{"contradicting-package"};
    static constexpr QLatin1String s_sDeviceWithoutStation{"device-without-station"};
    static constexpr QLatin1String s_sUnknownStation{"unknown-station"};
    static constexpr QLatin1String s_sUnreachedStation{"unreached-station"};

    /// All rules, in the order in which documents list them.
    [[nodiscard]] static std::span<const CheckRule> rules();

    /// The provider is not owned and must outlive the checker. Null disables the rule
    /// about emissions without a usable package.
    ///
    /// The provider should not be the provider that loaded the scenario. A loading
    /// provider that resolves unknown ids to its default package hides these ids
    /// from the check.
    explicit ScenarioChecker(ISignalPackageProvider* a_pProvider);

    /// Sets the classes that emitters may have. The class of an emitter without one
    /// is the empty text. An empty set accepts every class.
    void setKnownClasses(const QSet<QString>& a_classes) { m_knownClasses = a_classes; }

    /// Sets the deployment that receives the scenarios. The check of a scenario then
    /// also checks the deployment, and whether the scenario's emitters reach its
    /// stations. Not owned: it must outlive the checks. Null, the default, means none.
    void setDeployment(const DeploymentDataXml* a_pDeployment) { m_pDeployment = a_pDeployment; }

    /// Sets the folder with the unpacked signal packages, for example
    /// DataStoreFactory::signalPackageStoreDir(). The check of a scenario then also
    /// checks the files of the packages that emissions use. Reads the headers of these
    /// files, and those with a checksum in the descriptor as a whole. Descriptors and
    /// files are read once after each call. Empty, the default, disables this.
    void setPackageFolder(const QString& a_sFolder);

    /// Checks all objects of the scenario, including objects with other owners.
    /// Replaces the findings of the last run. O(n log n) in objects, emissions and way
    /// points. The provider is called once per package id. One trace when there are
    /// findings other than notes.
    ///
    /// With a deployment, the check also costs O(emitters * stations). After a few
    /// seconds of that work, the remaining stations are not judged.
    void check(ScenarioDataXml& a_scenario);

    /// Checks a deployment without a scenario, in the same way.
    void check(const DeploymentDataXml& a_deployment);

    /// Whether the last run found emissions without a usable package, emitters that
    /// share an id, emitters of an unknown class, or missing settings objects.
    /// Repaired findings count, too.
    [[nodiscard]] bool hadInvalidSignalPackages() const { return count(s_sInvalidSignalPackage) != 0; }
    [[nodiscard]] bool hadDuplicateIds() const { return count(s_sDuplicateId) != 0; }
    [[nodiscard]] bool hadInvalidClasses() const { return count(s_sInvalidClass) != 0; }
    [[nodiscard]] bool hadNullPointerSettings() const { return count(s_sMissingSettings) != 0; }

    /// The findings of the last run. Emitters come before networks, each sorted by
    /// id and name, and the deployment comes last. The findings of one object are in the
    /// order of rules(). There is one finding per object and rule, except for one per
    /// package id, class and settings object. A shared id is listed at the first object
    /// that has it. An emission that several schedules share is counted at the first of
    /// them. The same scenario gives the same list.
    [[nodiscard]] const QList<ScenarioFinding>& findings() const { return m_findings; }

private:
    [[nodiscard]] qsizetype count(QLatin1String a_sRule) const;
    void traceFindings(const char* a_szDocument) const;

    ISignalPackageProvider* m_pProvider;
    const DeploymentDataXml* m_pDeployment = nullptr;
    std::shared_ptr<PackageFiles> m_packageFiles; ///< shared with copies; never null
    QSet<QString> m_knownClasses;
    QList<ScenarioFinding> m_findings;
};

} // namespace Simulation

#endif

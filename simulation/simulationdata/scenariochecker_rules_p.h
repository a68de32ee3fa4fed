#ifndef SIMULATIONDATA_SCENARIOCHECKER_RULES_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_RULES_P_H

#include "simulationdata/scenariochecker.h"

#include <QAnyStringView>
#include <QLatin1String>
#include <QList>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Simulation {

class DeploymentDataXml;
class EmissionSettings;
class IPositionSettings;
class ScenarioNetwork;
class SzenarioEmitter;
struct TPos;

using Findings = QList<ScenarioFinding>;

/// A finding of a rule, with the rule's severity. The caller sets the object.
[[nodiscard]] ScenarioFinding ruleFinding(QLatin1String a_sRule, const QString& a_sText,
                                          bool a_bRepaired = false);

/// The place of a rule in ScenarioChecker::rules(), by which findings are sorted.
[[nodiscard]] std::size_t placeOfRule(QAnyStringView a_sRule);

/// The emissions of one object that break a rule in the same way.
struct EmissionTally
{
    qsizetype count = 0;
    std::int64_t first = std::numeric_limits<std::int64_t>::max(); ///< earliest start, ms

    void add(std::int64_t a_iStart);
    /// Begins a sentence: "1 emission, at 500 ms, " or "2 emissions, the first at 500 ms, ".
    [[nodiscard]] QString subject() const;
    /// The form of a word after that subject.
    [[nodiscard]] QLatin1String form(const char* a_szOne, const char* a_szMany) const
    {
        return QLatin1String(count == 1 ? a_szOne : a_szMany);
    }
};

// Each function below checks the rules of one topic and appends a finding for each rule
// that is broken. The settings may be null.

/// Emissions that overlap, or that lie outside the period (scenariochecker_schedules.cpp).
/// A schedule in broadcast mode is not played, so it has no findings. O(n).
void checkTimes(const EmissionSettings& a_schedule, Findings& a_findings);

/// Groups without emissions. O(n).
void checkGroups(const EmissionSettings& a_schedule, Findings& a_findings);

/// Networks without members or head, and emissions of emitters that are no members
/// (scenariochecker_networks.cpp). O(n).
void checkNetwork(const ScenarioNetwork& a_network, Findings& a_findings);

/// Positions out of range, and movements without speed or with jumps
/// (scenariochecker_movements.cpp). Uses no geodesics, because most documents are checked
/// right after they are read. O(n).
void checkPath(IPositionSettings* a_pSettings, Findings& a_findings);

/// Whether the coordinates are those of a place on the globe.
[[nodiscard]] bool isPlace(const TPos& a_position);

/// Everything that is wrong in a deployment, checked without a scenario. Each finding
/// names its object (scenariochecker_deployment.cpp).
[[nodiscard]] Findings deploymentFindings(const DeploymentDataXml& a_deployment);

/// Whether the settings hold a position other than 0/0. A device whose document has no
/// position is at 0/0.
[[nodiscard]] bool isPlaced(IPositionSettings* a_pSettings);

/// The stations, and devices at places of their own, that no emitter reaches
/// (scenariochecker_reach.cpp).
[[nodiscard]] Findings reachFindings(const DeploymentDataXml& a_deployment,
                                     const std::vector<const SzenarioEmitter*>& a_emitters);

} // namespace Simulation

#endif

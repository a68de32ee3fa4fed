#ifndef SIMULATIONDATA_SCENARIOCHECKER_NETWORKS_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_NETWORKS_P_H

#include "simulationdata/scenariochecker.h"

#include <QHash>
#include <QList>
#include <QSet>

#include <memory>

namespace Simulation {

class ScenarioObject;
class SzenarioEmitter;

/// The rule about chains of link targets. One object is used for one run over a
/// scenario, whose links must not change meanwhile. All checks together visit every
/// emitter once.
class LinkRule
{
public:
    /// `a_objects`: the objects of the scenario. They must outlive this object.
    explicit LinkRule(const QSet<std::shared_ptr<ScenarioObject>>& a_objects)
        : m_objects(a_objects)
    {}

    void check(const SzenarioEmitter& a_emitter, QList<ScenarioFinding>& a_findings);

private:
    enum class Chain { Whole, Circle, Leaves };

    Chain chainOf(const SzenarioEmitter& a_emitter);
    bool isInScenario(const SzenarioEmitter& a_emitter);

    const QSet<std::shared_ptr<ScenarioObject>>& m_objects;
    QSet<const ScenarioObject*> m_known;           ///< the same objects; empty before the first link
    QHash<const SzenarioEmitter*, Chain> m_chains; ///< of the emitters that were visited
};

} // namespace Simulation

#endif

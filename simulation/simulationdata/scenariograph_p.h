#ifndef SIMULATIONDATA_SCENARIOGRAPH_P_H
#define SIMULATIONDATA_SCENARIOGRAPH_P_H

#include "referencegraph_p.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenarioobject.h"

#include <QSet>

#include <memory>
#include <vector>

namespace Simulation {

/// Takes scenario objects apart that nothing but each other holds: an emitter
/// that its own schedule names would live for ever. Objects that a caller still
/// holds, in whatever copy of a set or list, stay whole, and so does all they
/// hold. Linear in the objects and emissions reached.
class ScenarioGraph
{
public:
    /// Drops the objects and takes apart what is then left to itself.
    static void release(QSet<std::shared_ptr<ScenarioObject>> a_objects);

private:
    explicit ScenarioGraph(QSet<std::shared_ptr<ScenarioObject>> a_objects);

    ReferenceGraph::Node add(const std::shared_ptr<ScenarioObject>& a_object);
    ReferenceGraph::Node add(const boost::shared_ptr<EmissionSettings::Emission>& a_emission);
    ReferenceGraph::Node add(const boost::shared_ptr<EmissionSettings::Group>& a_group);
    template<typename Container>
    void refer(ReferenceGraph::Node a_from, const Container& a_targets);
    void follow(ReferenceGraph::Node a_node);
    void followSchedule(ReferenceGraph::Node a_node, EmissionSettings& a_settings);
    void takeApart();

    /// One node's object, of one of the three kinds.
    struct Held
    {
        std::shared_ptr<ScenarioObject> object;
        boost::shared_ptr<EmissionSettings::Emission> emission;
        boost::shared_ptr<EmissionSettings::Group> group;

        [[nodiscard]] long useCount() const;
    };

    ReferenceGraph m_graph;
    std::vector<Held> m_held;
};

} // namespace Simulation

#endif

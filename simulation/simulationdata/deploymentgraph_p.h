#ifndef SIMULATIONDATA_DEPLOYMENTGRAPH_P_H
#define SIMULATIONDATA_DEPLOYMENTGRAPH_P_H

#include "referencegraph_p.h"
#include "simulationdata/deploymentobject.h"

#include <QSet>

#include <memory>
#include <vector>

namespace Simulation {

/// Takes deployment objects apart that nothing but each other holds: a station
/// and its devices would live for ever. Objects that a caller still holds, in
/// whatever copy of a set or map, stay whole, and so does all they hold. Linear
/// in the objects reached.
class DeploymentGraph
{
public:
    /// Drops the objects and takes apart what is then left to itself.
    static void release(QSet<std::shared_ptr<DeploymentObject>> a_objects);

private:
    explicit DeploymentGraph(QSet<std::shared_ptr<DeploymentObject>> a_objects);

    ReferenceGraph::Node add(const std::shared_ptr<DeploymentObject>& a_object);
    void follow(ReferenceGraph::Node a_node);
    void takeApart();

    ReferenceGraph m_graph;
    std::vector<std::shared_ptr<DeploymentObject>> m_held; ///< by node
};

} // namespace Simulation

#endif

#include "deploymentgraph_p.h"

#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"

#include <algorithm>
#include <utility>

namespace Simulation {

void DeploymentGraph::release(QSet<std::shared_ptr<DeploymentObject>> a_objects)
{
    a_objects.remove(nullptr);
    if (!a_objects.isEmpty()) {
        DeploymentGraph(std::move(a_objects)).takeApart();
    }
}

DeploymentGraph::DeploymentGraph(QSet<std::shared_ptr<DeploymentObject>> a_objects)
{
    for (const std::shared_ptr<DeploymentObject>& object : std::as_const(a_objects)) {
        add(object);
    }
    a_objects.clear();
    for (ReferenceGraph::Node node = 0; node < m_held.size(); ++node) {
        follow(node);
    }
}

ReferenceGraph::Node DeploymentGraph::add(const std::shared_ptr<DeploymentObject>& a_object)
{
    const auto [node, bNew] = m_graph.add(a_object.get());
    if (bNew) {
        m_held.push_back(a_object);
    }
    return node;
}

void DeploymentGraph::follow(ReferenceGraph::Node a_node)
{
    // A pointer, not a reference: adding moves what is held.
    DeploymentObject* const pObject = m_held[a_node].get();
    if (const auto* pDevice = dynamic_cast<DeploymentDevice*>(pObject)) {
        if (pDevice->m_station) {
            m_graph.addReference(a_node, add(pDevice->m_station));
        }
    } else if (auto* pStation = dynamic_cast<DeploymentStation*>(pObject)) {
        // A set that a clone or a caller shares holds its devices only once.
        pStation->m_devices.detach();
        for (const std::shared_ptr<DeploymentDevice>& device : std::as_const(pStation->m_devices)) {
            m_graph.addReference(a_node, add(device));
        }
    }
}

void DeploymentGraph::takeApart()
{
    std::vector<long> useCounts(m_held.size());
    std::transform(m_held.cbegin(), m_held.cend(), useCounts.begin(),
                   [](const auto& a_held) { return a_held.use_count() - 1; });
    const std::vector<bool> unreachable = m_graph.unreachable(useCounts);
    for (ReferenceGraph::Node node = 0; node < m_held.size(); ++node) {
        if (!unreachable[node]) {
            continue;
        }
        if (auto* pDevice = dynamic_cast<DeploymentDevice*>(m_held[node].get())) {
            pDevice->m_station.reset();
        } else if (auto* pStation = dynamic_cast<DeploymentStation*>(m_held[node].get())) {
            pStation->m_devices.clear();
        }
    }
}

} // namespace Simulation

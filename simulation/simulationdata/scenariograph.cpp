#include "scenariograph_p.h"

#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"

#include <algorithm>
#include <utility>

namespace Simulation {

long ScenarioGraph::Held::useCount() const
{
    if (object) {
        return object.use_count();
    }
    return emission ? emission.use_count() : group.use_count();
}

void ScenarioGraph::release(QSet<std::shared_ptr<ScenarioObject>> a_objects)
{
    if (!a_objects.isEmpty()) {
        ScenarioGraph(std::move(a_objects)).takeApart();
    }
}

ScenarioGraph::ScenarioGraph(QSet<std::shared_ptr<ScenarioObject>> a_objects)
{
    for (const std::shared_ptr<ScenarioObject>& object : std::as_const(a_objects)) {
        if (object) {
            add(object);
        }
    }
    a_objects.clear();
    for (ReferenceGraph::Node node = 0; node < m_held.size(); ++node) {
        follow(node);
    }
}

ReferenceGraph::Node ScenarioGraph::add(const std::shared_ptr<ScenarioObject>& a_object)
{
    const auto [node, bNew] = m_graph.add(a_object.get());
    if (bNew) {
        m_held.push_back({a_object, {}, {}});
    }
    return node;
}

ReferenceGraph::Node ScenarioGraph::add(const boost::shared_ptr<EmissionSettings::Emission>& a_emission)
{
    const auto [node, bNew] = m_graph.add(a_emission.get());
    if (bNew) {
        m_held.push_back({{}, a_emission, {}});
    }
    return node;
}

ReferenceGraph::Node ScenarioGraph::add(const boost::shared_ptr<EmissionSettings::Group>& a_group)
{
    const auto [node, bNew] = m_graph.add(a_group.get());
    if (bNew) {
        m_held.push_back({{}, {}, a_group});
    }
    return node;
}

template<typename Container>
void ScenarioGraph::refer(ReferenceGraph::Node a_from, const Container& a_targets)
{
    for (const auto& target : a_targets) {
        if (target) {
            m_graph.addReference(a_from, add(target));
        }
    }
}

void ScenarioGraph::follow(ReferenceGraph::Node a_node)
{
    const Held held = m_held[a_node];
    if (held.emission) {
        refer(a_node, QList{held.emission->emitter});
        return;
    }
    if (held.group) {
        held.group->groups.detach();
        held.group->emissions.detach();
        refer(a_node, std::as_const(held.group->groups));
        refer(a_node, std::as_const(held.group->emissions));
        return;
    }
    followSchedule(a_node, *held.object->m_pEmissionSettings);
    if (auto* pEmitter = dynamic_cast<SzenarioEmitter*>(held.object.get())) {
        pEmitter->m_linkedEmitters.detach();
        refer(a_node, std::as_const(pEmitter->m_linkedEmitters));
    } else if (auto* pNetwork = dynamic_cast<ScenarioNetwork*>(held.object.get())) {
        pNetwork->m_emitterSet.detach();
        pNetwork->m_emitterList.detach();
        refer(a_node, std::as_const(pNetwork->m_emitterSet));
        refer(a_node, std::as_const(pNetwork->m_emitterList));
    }
}

void ScenarioGraph::followSchedule(ReferenceGraph::Node a_node, EmissionSettings& a_settings)
{
    a_settings.m_emissions.detach();
    a_settings.m_groups.detach();
    refer(a_node, std::as_const(a_settings.m_emissions));
    refer(a_node, std::as_const(a_settings.m_groups));
}

void ScenarioGraph::takeApart()
{
    std::vector<long> useCounts(m_held.size());
    std::transform(m_held.cbegin(), m_held.cend(), useCounts.begin(),
                   [](const Held& a_held) { return a_held.useCount() - 1; });
    const std::vector<bool> unreachable = m_graph.unreachable(useCounts);
    for (ReferenceGraph::Node node = 0; node < m_held.size(); ++node) {
        const Held& held = m_held[node];
        if (!unreachable[node]) {
            continue;
        }
        if (held.emission) {
            held.emission->emitter.reset();
        } else if (held.group) {
            held.group->groups.clear();
            held.group->emissions.clear();
        } else {
            held.object->m_pEmissionSettings->m_emissions.clear();
            held.object->m_pEmissionSettings->m_groups.clear();
            if (auto* pEmitter = dynamic_cast<SzenarioEmitter*>(held.object.get())) {
                pEmitter->m_linkedEmitters.clear();
            } else if (auto* pNetwork = dynamic_cast<ScenarioNetwork*>(held.object.get())) {
                pNetwork->m_emitterSet.clear();
                pNetwork->m_emitterList.clear();
            }
        }
    }
}

} // namespace Simulation

#include "objectreleaser_p.h"

#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"

#include <iterator>

namespace Simulation {

namespace {

/// The pointers of the outermost dropInTurn() on this thread; null while no dropInTurn()
/// runs. A plain pointer has no destructor. It can therefore still be used when objects
/// are destroyed after the thread's other variables.
thread_local std::vector<std::shared_ptr<const void>>* t_pQueue = nullptr;

} // namespace

void ObjectReleaser::dropInTurn(std::vector<std::shared_ptr<const void>> a_pointers)
{
    if (t_pQueue != nullptr) {
        t_pQueue->insert(t_pQueue->end(), std::make_move_iterator(a_pointers.begin()),
                         std::make_move_iterator(a_pointers.end()));
        return;
    }
    t_pQueue = &a_pointers;
    while (!a_pointers.empty()) {
        const std::shared_ptr<const void> pointer = std::move(a_pointers.back());
        a_pointers.pop_back();
    }
    t_pQueue = nullptr;
}

void ObjectReleaser::releaseGroups(QList<boost::shared_ptr<EmissionSettings::Group>>& a_groups)
{
    if (!a_groups.isEmpty()) {
        ObjectReleaser releaser;
        releaser.m_bGroupsOnly = true;
        releaser.take(a_groups);
        releaser.takeApart();
    }
}

/// Distinguishes the classes by casts. A virtual function cannot be added, because the
/// order of the virtual functions of scenario objects is part of the interface.
void ObjectReleaser::visitMembers(ScenarioObject& a_object)
{
    EmissionSettings* const pSchedule = a_object.ScenarioObject::emissionSettings();
    visit(pSchedule->m_emissions);
    visit(pSchedule->m_groups);
    if (auto* pEmitter = dynamic_cast<SzenarioEmitter*>(&a_object)) {
        visit(pEmitter->m_linkedEmitters);
    } else if (auto* pNetwork = dynamic_cast<ScenarioNetwork*>(&a_object)) {
        visit(pNetwork->m_emitterSet);
        visit(pNetwork->m_emitterList);
    }
}

void ObjectReleaser::visitMembers(EmissionSettings::Emission& a_emission)
{
    visit(a_emission.emitter);
}

void ObjectReleaser::visitMembers(EmissionSettings::Group& a_group)
{
    visit(a_group.groups);
    if (!m_bGroupsOnly) {
        visit(a_group.emissions);
    }
}

/// Follows all references, finds the objects that are not reached from outside and
/// empties their members. The objects themselves are freed with this releaser.
void ObjectReleaser::takeApart()
{
    // Each visit appends the objects that it finds for the first time.
    for (Node node = 0; node < m_held.size(); ++node) {
        Held& held = m_held[node];
        held.firstTarget = m_targets.size();
        (this->*held.visitMembers)(held.address());
    }
    markKept();
    m_bEmptying = true;
    for (const Held& held : m_held) {
        if (!held.isKept) {
            (this->*held.visitMembers)(held.address());
        }
    }
}

void ObjectReleaser::markKept()
{
    std::vector<Node> pending;
    const auto keep = [&](Node a_node) {
        if (!std::exchange(m_held[a_node].isKept, true)) {
            pending.push_back(a_node);
        }
    };
    for (Node node = 0; node < m_held.size(); ++node) {
        if (m_held[node].isHeldOutside()) {
            keep(node);
        }
    }
    while (!pending.empty()) {
        const Node next = pending.back() + 1;
        pending.pop_back();
        const std::size_t uiEnd = next < m_held.size() ? m_held[next].firstTarget : m_targets.size();
        for (std::size_t i = m_held[next - 1].firstTarget; i < uiEnd; ++i) {
            keep(m_targets[i]);
        }
    }
}

} // namespace Simulation

#include "scenarionetwork.h"

#include "simulationdata/emissionsettings.h"
#include "simulationdata/szenarioemitter.h"

namespace Simulation {

ScenarioNetwork::ScenarioNetwork(const QString& a_sId)
    : ScenarioObject(a_sId)
{}

ScenarioNetwork::ScenarioNetwork(const QString& a_sId, const std::shared_ptr<ScenarioNetwork>& a_source)
    : ScenarioObject(a_sId, a_source ? a_source->name() : QString(), a_source)
{
    if (a_source) {
        takeFrom(*a_source);
    }
}

ScenarioNetwork::~ScenarioNetwork() = default;

ScenarioObject::ScenarioObjectType ScenarioNetwork::type() const
{
    return ScenarioObjectType::Network;
}

void ScenarioNetwork::copy(std::shared_ptr<ScenarioObject> a_source)
{
    const auto* pNetwork = dynamic_cast<const ScenarioNetwork*>(a_source.get());
    ScenarioObject::copy(a_source);
    if (pNetwork != nullptr) {
        takeFrom(*pNetwork);
    }
}

void ScenarioNetwork::takeFrom(const ScenarioNetwork& a_source)
{
    m_emitterSet = a_source.m_emitterSet;
    m_color = a_source.m_color;
    m_eNetworkType = a_source.m_eNetworkType;
    m_emitterList = a_source.m_emitterList;
}

std::shared_ptr<ScenarioObject> ScenarioNetwork::clone()
{
    const auto clone = std::make_shared<ScenarioNetwork>(id());
    clone->copyFrom(*this);
    clone->takeFrom(*this);
    return clone;
}

bool ScenarioNetwork::containsEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter) const
{
    return m_emitterSet.contains(a_emitter);
}

int ScenarioNetwork::indexForEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter) const
{
    return static_cast<int>(m_emitterList.indexOf(a_emitter));
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::emitterForIndex(int a_iIndex) const
{
    return m_emitterList.value(a_iIndex);
}

bool ScenarioNetwork::addEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    if (!a_emitter || m_emitterSet.contains(a_emitter)) {
        return false;
    }
    m_emitterSet.insert(a_emitter);
    m_emitterList.append(a_emitter);
    return true;
}

bool ScenarioNetwork::removeEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    // Copied, because a_emitter may be an element of the list that changes below.
    const std::shared_ptr<SzenarioEmitter> emitter = a_emitter;
    if (!m_emitterSet.remove(emitter)) {
        return false;
    }
    m_emitterList.removeOne(emitter);
    // A clone shares its groups with its source. The groups of the source must keep
    // their members.
    if (emissionSettings()->removalChangesGroups(emitter)) {
        emissionSettings()->partGroups();
    }
    emissionSettings()->removeEmissions(emitter);
    return true;
}

void ScenarioNetwork::setHeadEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    // Copied, because a_emitter may be an element of the list that changes below.
    const std::shared_ptr<SzenarioEmitter> emitter = a_emitter;
    if (!emitter) {
        return;
    }
    m_emitterSet.insert(emitter);
    m_emitterList.removeAll(emitter);
    m_emitterList.prepend(emitter);
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::headEmitter() const
{
    return m_emitterList.value(0);
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::emitterActiveAt(unsigned int a_uiTime) const
{
    return emissionSettings()->activeEmitterAt(a_uiTime);
}

} // namespace Simulation

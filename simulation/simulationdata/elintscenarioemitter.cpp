#include "elintscenarioemitter.h"

namespace Simulation {

ElintScenarioEmitter::ElintScenarioEmitter(const QString& a_sId, const QString& a_sName)
    : SzenarioEmitter(a_sId, a_sName)
{}

ElintScenarioEmitter::~ElintScenarioEmitter() = default;

ScenarioObject::ScenarioObjectType ElintScenarioEmitter::type() const
{
    return ScenarioObjectType::ElintEmitter;
}

std::shared_ptr<ScenarioObject> ElintScenarioEmitter::clone()
{
    const auto clone = std::make_shared<ElintScenarioEmitter>(id(), name());
    clone->copyFrom(*this);
    clone->SetEDWFile(m_sEDWFile);
    return clone;
}

bool ElintScenarioEmitter::isActiveAt(unsigned int a_uiTime) const
{
    return isReadyAt(a_uiTime);
}

SzenarioEmitter::Transmission ElintScenarioEmitter::transmissionAt(unsigned int a_uiTime) const
{
    Transmission transmission = SzenarioEmitter::transmissionAt(a_uiTime);
    transmission.isActive = isReadyAt(a_uiTime);
    return transmission;
}

} // namespace Simulation

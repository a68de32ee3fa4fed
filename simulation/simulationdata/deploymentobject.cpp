#include "deploymentobject.h"

#include "simulationdata/positionsettingsfixed.h"

namespace Simulation {

DeploymentObject::DeploymentObject()
    : DeploymentObject(QString())
{}

DeploymentObject::DeploymentObject(const QString& a_sId)
    : m_sId(a_sId)
    , m_pPositionSettings(std::make_unique<PositionSettingsFixed>(TPos{}))
{}

DeploymentObject::~DeploymentObject() = default;

void DeploymentObject::copy(std::shared_ptr<DeploymentObject> a_source)
{
    if (a_source && a_source.get() != this) {
        takeFrom(*a_source);
    }
}

void DeploymentObject::takeFrom(const DeploymentObject& a_source)
{
    m_sId = a_source.m_sId;
    // setName() is not used, because it would set the id of a station.
    m_sName = a_source.name();
    m_sIconId = a_source.m_sIconId;
    m_pPositionSettings.reset(a_source.m_pPositionSettings ? a_source.m_pPositionSettings->clone() : nullptr);
}

TPos DeploymentObject::position()
{
    IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->getPosition() : TPos{};
}

TPos DeploymentObject::positionAt(unsigned int a_uiTime)
{
    IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->getPositionAt(a_uiTime) : TPos{};
}

double DeploymentObject::headingAt(unsigned int a_uiTime) const
{
    const IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->headingAt(a_uiTime) : 0.0;
}

double DeploymentObject::speedAt(unsigned int a_uiTime) const
{
    const IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->speedAt(a_uiTime) : 0.0;
}

void DeploymentObject::setPosition(TPos a_position)
{
    if (m_pPositionSettings) {
        m_pPositionSettings->setPosition(a_position);
    } else {
        m_pPositionSettings = std::make_unique<PositionSettingsFixed>(a_position);
    }
}

void DeploymentObject::setPositionSettings(IPositionSettings* a_pSettings)
{
    if (a_pSettings != m_pPositionSettings.get()) {
        m_pPositionSettings.reset(a_pSettings);
    }
}

} // namespace Simulation

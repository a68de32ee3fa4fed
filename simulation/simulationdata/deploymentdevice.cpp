#include "deploymentdevice.h"

#include "objectreleaser_p.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/ipositionsettings.h"

#include <utility>

namespace Simulation {

DeploymentDevice::DeploymentDevice(const QString& a_sId)
    : DeploymentObject(a_sId)
{}

DeploymentDevice::~DeploymentDevice() = default;

DeploymentObject::eTypes DeploymentDevice::type() const
{
    return eTypes::Device;
}

IPositionSettings* DeploymentDevice::positionSettings() const
{
    return m_station ? m_station->positionSettings() : DeploymentObject::positionSettings();
}

void DeploymentDevice::copy(std::shared_ptr<DeploymentObject> a_source)
{
    const auto* pDevice = dynamic_cast<const DeploymentDevice*>(a_source.get());
    if (pDevice == nullptr) {
        DeploymentObject::copy(std::move(a_source));
    } else if (pDevice != this) {
        takeFrom(*pDevice);
    }
}

std::shared_ptr<DeploymentObject> DeploymentDevice::clone()
{
    auto clone = std::make_shared<DeploymentDevice>(id());
    clone->takeFrom(*this);
    return clone;
}

void DeploymentDevice::visitMembers(ObjectReleaser& a_releaser)
{
    a_releaser.visit(m_station);
}

void DeploymentDevice::takeFrom(const DeploymentDevice& a_source)
{
    DeploymentObject::takeFrom(a_source);
    m_station = a_source.m_station;
    m_sMachine = a_source.m_sMachine;
    m_sDeviceType = a_source.m_sDeviceType;
    m_eState = a_source.m_eState;
    m_sConfiguredStationId = a_source.m_sConfiguredStationId;
    m_receiverSettings = a_source.m_receiverSettings;
}

void DeploymentDevice::setStation(std::shared_ptr<DeploymentStation> a_station)
{
    m_station = std::move(a_station);
}

} // namespace Simulation

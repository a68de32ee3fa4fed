#include "deploymentstation.h"

#include "objectreleaser_p.h"
#include "simulationdata/deploymentdevice.h"

#include <utility>

namespace Simulation {

DeploymentStation::DeploymentStation() = default;

DeploymentStation::DeploymentStation(const QString& a_sId)
    : DeploymentObject(a_sId)
{}

DeploymentStation::~DeploymentStation() = default;

DeploymentObject::eTypes DeploymentStation::type() const
{
    return eTypes::Station;
}

QString DeploymentStation::name() const
{
    return id();
}

void DeploymentStation::setName(const QString& a_sName)
{
    setId(a_sName);
}

void DeploymentStation::copy(std::shared_ptr<DeploymentObject> a_source)
{
    const auto* pStation = dynamic_cast<const DeploymentStation*>(a_source.get());
    if (pStation == nullptr) {
        DeploymentObject::copy(std::move(a_source));
    } else if (pStation != this) {
        takeFrom(*pStation);
    }
}

std::shared_ptr<DeploymentObject> DeploymentStation::clone()
{
    auto clone = std::make_shared<DeploymentStation>(id());
    clone->takeFrom(*this);
    return clone;
}

void DeploymentStation::visitMembers(ObjectReleaser& a_releaser)
{
    a_releaser.visit(m_devices);
}

void DeploymentStation::takeFrom(const DeploymentStation& a_source)
{
    DeploymentObject::takeFrom(a_source);
    m_devices = a_source.m_devices;
}

bool DeploymentStation::addDevice(std::shared_ptr<DeploymentDevice> a_device)
{
    const qsizetype iFormer = m_devices.size();
    if (a_device) {
        m_devices.insert(std::move(a_device));
    }
    return m_devices.size() != iFormer;
}

bool DeploymentStation::removeDevice(std::shared_ptr<DeploymentDevice> a_device)
{
    return m_devices.remove(a_device);
}

} // namespace Simulation

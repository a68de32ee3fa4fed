#ifndef SIMULATIONDATA_DEPLOYMENTSTATION_H
#define SIMULATIONDATA_DEPLOYMENTSTATION_H

#include "simulationdata/deploymentobject.h"

#include <QSet>

namespace Simulation {

class DeploymentDevice;

/// A receiving station of a deployment: a fixed site or a moving platform, and its
/// devices. Name and id of a station are one field. A new station is at (0, 0) and
/// has no devices.
class SIMULATIONDATA_EXPORT DeploymentStation : public DeploymentObject
{
public:
    DeploymentStation();
    explicit DeploymentStation(const QString& a_sId);
    ~DeploymentStation() override;

    [[nodiscard]] eTypes type() const override;

    /// Returns the id.
    [[nodiscard]] QString name() const override;
    /// Sets the id.
    void setName(const QString& a_sName) override;

    void copy(std::shared_ptr<DeploymentObject> a_source) override;
    [[nodiscard]] std::shared_ptr<DeploymentObject> clone() override;

    [[nodiscard]] QSet<std::shared_ptr<DeploymentDevice>> devices() const { return m_devices; }
    /// Return whether the set of devices has changed. Null is never added. The
    /// caller sets the device's station.
    bool addDevice(std::shared_ptr<DeploymentDevice> a_device);
    bool removeDevice(std::shared_ptr<DeploymentDevice> a_device);

private:
    void visitMembers(ObjectReleaser& a_releaser) override;
    void takeFrom(const DeploymentStation& a_source);

    QSet<std::shared_ptr<DeploymentDevice>> m_devices;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_DEPLOYMENTDEVICE_H
#define SIMULATIONDATA_DEPLOYMENTDEVICE_H

#include "simulationdata/deploymentobject.h"
#include "simulationdata/receiversettings.h"

namespace Simulation {

class DeploymentStation;

/// A receiver of a deployment. It either belongs to a station and has the station's
/// position, or it has a position of its own. Device and station hold each other.
/// The caller sets both sides: the station of the device, and the device among the
/// station's devices. A new device has no station and is at (0, 0).
class SIMULATIONDATA_EXPORT DeploymentDevice : public DeploymentObject
{
public:
    /// Whether the device runs. The values are part of the interface.
    enum class State : int {
        Unknown = 0,
        Stopped = 1,
        Running = 2,
        Failed = 3,
    };

    explicit DeploymentDevice(const QString& a_sId);
    ~DeploymentDevice() override;

    [[nodiscard]] eTypes type() const override;

    /// The station's position settings while the device has a station, otherwise the
    /// device's own settings.
    [[nodiscard]] IPositionSettings* positionSettings() const override;

    void copy(std::shared_ptr<DeploymentObject> a_source) override;
    [[nodiscard]] std::shared_ptr<DeploymentObject> clone() override;

    /// Null if the device belongs to no station.
    [[nodiscard]] std::shared_ptr<DeploymentStation> station() const { return m_station; }
    void setStation(std::shared_ptr<DeploymentStation> a_station);
    [[nodiscard]] bool hasStation() const { return m_station != nullptr; }

    /// The computer that runs the device.
    [[nodiscard]] QString machine() const { return m_sMachine; }
    void setMachine(const QString& a_sMachine) { m_sMachine = a_sMachine; }
    [[nodiscard]] QString deviceType() const { return m_sDeviceType; }
    void setDeviceType(const QString& a_sType) { m_sDeviceType = a_sType; }
    [[nodiscard]] State state() const { return m_eState; }
    void setState(State a_eState) { m_eState = a_eState; }
    /// The station's id in the device's own configuration. It may differ from the id
    /// of station().
    [[nodiscard]] QString configuredStationId() const { return m_sConfiguredStationId; }
    void setConfiguredStationId(const QString& a_sId) { m_sConfiguredStationId = a_sId; }
    [[nodiscard]] const ReceiverSettings& receiverSettings() const { return m_receiverSettings; }
    [[nodiscard]] ReceiverSettings& receiverSettings() { return m_receiverSettings; }

private:
    void visitMembers(ObjectReleaser& a_releaser) override;
    void takeFrom(const DeploymentDevice& a_source);

    std::shared_ptr<DeploymentStation> m_station;
    QString m_sMachine;
    QString m_sDeviceType;
    State m_eState = State::Unknown;
    QString m_sConfiguredStationId;
    ReceiverSettings m_receiverSettings;
};

} // namespace Simulation

#endif

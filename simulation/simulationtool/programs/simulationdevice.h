#ifndef SIMULATIONTOOL_SIMULATIONDEVICE_H
#define SIMULATIONTOOL_SIMULATIONDEVICE_H

#include "console/loglimit.h"
#include "describe/packageuse.h"
#include "devicereport.h"
#include "serveraddress.h"

#include "simulationdata/scenariotiminghelper.h"
#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationdata/tcpserverconnector.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>

namespace Simulation {
class ISignalPackageProvider;
class ScenarioDataXml;
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

/// A simulation device: registers with the service on every connection, loads the
/// scenarios that it receives, and plays them by the clock that all programs share
/// (VelaOS).
///
/// Reports the result of an order as a message with its state (see DeviceReport). The
/// newest deployment sets the place of the device when it contains a device with this
/// id, or exactly one with this name. Without such a device, or when the deployment
/// cannot be used, the place is that of the configuration. The device registers again
/// when its place has changed.
///
/// Accepts orders only from a service that has confirmed the registration correctly.
/// Reconnects after a lost connection; a running scenario continues meanwhile. Used
/// on one thread.
class SimulationDevice : public QObject
{
    Q_OBJECT

public:
    using Emitters = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;

    /// The provider is not owned and must outlive this object. `a_uiStep` is the time
    /// between two steps (ms, at least 1).
    SimulationDevice(const Simulation::SimulationDeviceConfiguration& a_configuration,
                     Simulation::ISignalPackageProvider& a_provider, std::uint32_t a_uiStep);
    ~SimulationDevice() override;

    /// A remark about the source of the packages, added to the warning about replaced
    /// packages. Empty by default.
    void setPackageRemark(const QString& a_sRemark) { m_sPackageRemark = a_sRemark; }

    /// An error of the packages that is independent of the scenario. It is reported as a
    /// warning with every scenario. Empty by default.
    void setPackageError(const QString& a_sError) { m_sPackageError = a_sError; }

    void connectToService(const ServerAddress& a_server);

    /// Whether the connected service has confirmed the device.
    [[nodiscard]] bool isAccepted() const { return m_bAccepted; }
    [[nodiscard]] Simulation::ScenarioDataState state() const { return m_state.scenarioDataState(); }
    [[nodiscard]] bool isPlaying() const { return m_bPlaying; }

    /// The emitters of the loaded scenario, ordered by id.
    [[nodiscard]] const Emitters& emitters() const { return m_emitters; }
    /// The end of the scenario (ms); 0 when it has none.
    [[nodiscard]] std::uint32_t duration() const;

    /// The last received deployment, unchanged; empty before the first deployment.
    [[nodiscard]] const QByteArray& deployment() const { return m_deployment; }

    /// Plays the due step. The device calls playDue() on a timer; a program that sets the
    /// clock itself must also call playDue().
    void playDue();

Q_SIGNALS:
    /// One line for the log; frequent lines are dropped. The line contains texts of peers,
    /// whose characters may control a terminal.
    void logged(const QString& a_sLine);

    void playBegins();
    /// The step at this scenario time (ms) is due. Of several past steps only the
    /// latest is emitted.
    void stepDue(quint32 a_uiTime);

private:
    void abandonConnection(const QString& a_sError);
    void slotNotConnected();
    void slotConnected();
    void slotDisconnected();
    void slotAccepted(const QString& a_sId, const QString& a_sConfirmation);
    void slotUnregistered(const QString& a_sId);
    void connectOrders();
    void connectRunOrders();
    [[nodiscard]] bool obeys();

    void registerDevice();
    void reportEvent(const QString& a_sEvent);
    void deploy(const QByteArray& a_deployment);
    void load(const QByteArray& a_scenario);
    void unload();
    void setState(Simulation::ScenarioDataState a_eState);
    void reportState();
    void noteLoaded();
    [[nodiscard]] QString startError(quint64 a_uiAhead, std::uint32_t a_uiTime) const;
    void play(quint64 a_uiTimestamp, std::uint32_t a_uiTime);
    void playStep();
    void pause(std::uint32_t a_uiTime);
    void endPlay(const QString& a_sReason);
    void wakeIn(std::uint64_t a_uiMilliseconds);

    const Simulation::SimulationDeviceConfiguration m_undeployed; ///< with the configured place
    Simulation::SimulationDeviceConfiguration m_configuration;
    PackageUse m_packages; ///< declared before m_scenario, which uses it until the end
    QString m_sPackageRemark;
    QString m_sPackageError;
    const std::uint32_t m_uiStep; ///< ms
    LogLimit m_log;

    Simulation::SimulationServiceCommunication m_communication;
    std::unique_ptr<Simulation::TcpServerConnector> m_connector;
    bool m_bAccepted = false;
    bool m_bLoggedIgnoring = false; ///< since the newest connection began
    bool m_bLoggedWaiting = false;  ///< since the newest connection began

    Simulation::SimulationDeviceState m_state;
    DeviceReport m_report;
    std::unique_ptr<Simulation::ScenarioDataXml> m_scenario; ///< null unless loaded
    Emitters m_emitters;
    QByteArray m_deployment;
    QSet<QString> m_jxDevices;

    Simulation::ScenarioTimingHelper m_timing;
    QTimer m_timer; ///< for the next step
    bool m_bPlaying = false;
    bool m_bBegun = false;                   ///< the start time of the play was reached
    std::uint64_t m_uiBegin = 0;             ///< us since 1970
    std::uint32_t m_uiFirst = 0;             ///< scenario time of step 0, in ms
    std::optional<std::uint32_t> m_lastStep; ///< no value before the first step
    std::uint32_t m_uiPlayed = 0;            ///< steps
};

} // namespace SimulationTool

#endif

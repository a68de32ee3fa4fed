#ifndef SIMULATIONTOOL_SIMULATIONSERVICE_H
#define SIMULATIONTOOL_SIMULATIONSERVICE_H

#include "outbox.h"

#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"
#include "simulationdata/simulationservicecommunication.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTcpServer>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>

class QHostAddress;
class QTcpSocket;

namespace SimulationTool {

class ServicePeer;

/// The centre of the simulation. Devices register with it. One program, the
/// controller, receives their states and sends orders, which the service passes on to
/// all devices. The controller is the last program that acquired the service. When the
/// controller releases the service or disconnects, control returns to the program that
/// acquired the service before, unless that program has released it or disconnected.
///
/// The service keeps what a device that registers late needs: the deployment, the
/// scenario, the test mode, and the run of the scenario. A program that becomes the
/// controller receives the states of the devices and the run. A program without
/// control receives the states and the run before every list of devices that it
/// requests. When a device id is registered again, it belongs to the newest peer: a
/// device whose machine lost the connection must not wait until the old connection ends.
///
/// No peer is trusted. A peer is dropped, without effect on the others, when it sends
/// unreadable bytes, does not read, leaves a command unfinished, or registers a device
/// that the service refuses. For a peer that reads slowly, only the newest state of each
/// device, the newest scenario and the newest deployment wait (see Outbox).
/// Limits::AllPendingBytes limits the bytes that the service holds for all peers
/// together: unfinished commands, and commands that wait to be read. When this limit is
/// exceeded, the peer with the most bytes is dropped. Used on one thread.
class SimulationService : public QObject
{
    Q_OBJECT

public:
    using CommandSender = Simulation::SimulationServiceCommunication::CommandSender;

    static constexpr std::chrono::seconds s_timeout{60};

    /// A peer is dropped when it leaves a command unfinished, or does not read
    /// pending bytes, for the timeout.
    explicit SimulationService(std::chrono::milliseconds a_timeout = s_timeout);
    ~SimulationService() override;

    /// Listens on the address. With port 0 the system chooses a port. False, with
    /// errorString(), after an error.
    [[nodiscard]] bool listen(const QHostAddress& a_address, std::uint16_t a_uiPort);
    [[nodiscard]] std::uint16_t port() const { return m_server.serverPort(); }
    [[nodiscard]] QString errorString() const { return m_server.errorString(); }

Q_SIGNALS:
    /// One line for the log. The line contains texts of peers, whose characters may
    /// control a terminal.
    void logged(const QString& a_sLine);

private Q_SLOTS:
    void slotAcceptPeers();
    void slotBoundPending();
    void slotAnswer();

private:
    struct Device
    {
        Simulation::SimulationDeviceConfiguration configuration;
        Simulation::SimulationDeviceState state;
        OutgoingCommandPtr stateUpdate; ///< the command that reports the state
        ServicePeer* peer = nullptr;
    };

    struct LostPeer
    {
        QPointer<ServicePeer> peer; ///< null when the peer was deleted meanwhile
        QString reason;
    };

    /// The pending answers to a peer.
    struct Answer
    {
        bool report = false; ///< the states of the devices, and the run of the scenario
        int lists = 0;       ///< number of device lists to send after the report, one per request
    };

    // Connections of peers
    void schedule(bool& a_bScheduled, const char* a_szSlot);
    void addPeer(QTcpSocket* a_pSocket);
    void pauseIfFull();
    void connectDevice(ServicePeer* a_pPeer);
    void dropLost();
    void drop(ServicePeer* a_pPeer, const QString& a_sReason);
    [[nodiscard]] bool accepts(ServicePeer& a_peer, const QString& a_sCommand, qsizetype a_iBytes) const;
    [[nodiscard]] bool isPendingExceeded() const;

    // Commands of devices
    void registerDevice(ServicePeer* a_pPeer, const QString& a_sId,
                        const Simulation::SimulationDeviceConfiguration& a_configuration);
    [[nodiscard]] QString
    registrationError(const QString& a_sId,
                      const Simulation::SimulationDeviceConfiguration& a_configuration) const;
    void takeOver(const QString& a_sId, ServicePeer* a_pFrom);
    void unregisterDevice(ServicePeer* a_pPeer, const QString& a_sId);
    void updateState(ServicePeer* a_pPeer, const QString& a_sId,
                     const Simulation::SimulationDeviceState& a_state);

    void setState(const QString& a_sId, Device& a_device,
                  const Simulation::SimulationDeviceState& a_state) const;
    static void sendState(ServicePeer* a_pPeer, const QString& a_sId, const Device& a_device);

    // Commands of controllers
    void connectController(ServicePeer* a_pPeer);
    void connectOrders(ServicePeer* a_pPeer);
    [[nodiscard]] ServicePeer* controller() const;
    void acquire(ServicePeer* a_pPeer);
    void release(ServicePeer* a_pPeer);
    void report(ServicePeer* a_pPeer);
    void answer(ServicePeer* a_pPeer, const Answer& a_answer);
    void sendAnswer(ServicePeer* a_pPeer, const Answer& a_answer);
    [[nodiscard]] const OutgoingCommandPtr& deviceList();
    [[nodiscard]] OutgoingCommandPtr passOn(ServicePeer* a_pPeer, const QString& a_sOrder,
                                            OutgoingKind a_eKind, const CommandSender& a_send);
    void loadScenario(ServicePeer* a_pPeer, const QByteArray& a_scenario);
    [[nodiscard]] OutgoingCommandPtr encoded(const CommandSender& a_send,
                                             OutgoingKind a_eKind = OutgoingKind::Other) const;

    QTcpServer m_server;
    QTimer m_acceptAgain;                  ///< retries after the server failed to accept
    QList<ServicePeer*> m_peers;           ///< children
    std::deque<LostPeer> m_lost;           ///< peers to drop, in this order
    QHash<ServicePeer*, Answer> m_answers; ///< pending answers
    QTimer m_dropLost;                     ///< runs while m_lost is not empty
    QList<ServicePeer*> m_controllers;     ///< the last one controls
    QMap<QString, Device> m_devices;       ///< by id
    OutgoingCommandPtr m_deviceList;       ///< the answer to list requests; null = not encoded yet
    const qsizetype m_iMaxPeers;           ///< from the number of files that the process may open
    bool m_bFull = false;                  ///< accepting is paused
    bool m_bAcceptScheduled = false;
    bool m_bBoundScheduled = false;
    bool m_bAnswerScheduled = false;
    const std::chrono::milliseconds m_timeout;

    /// The bytes of unfinished commands and of commands that wait for peers. Shared,
    /// because peers are destroyed after the members of this class.
    const std::shared_ptr<qint64> m_pPending = std::make_shared<qint64>(0);

    // Commands that are kept for devices that register later; null when there is none
    OutgoingCommandPtr m_deployment;
    OutgoingCommandPtr m_scenario;
    OutgoingCommandPtr m_testMode;
    OutgoingCommandPtr m_run; ///< start or pause
};

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_SERVICECONTROLLER_H
#define SIMULATIONTOOL_SERVICECONTROLLER_H

#include "console/interruptibleloop.h"
#include "devicereport.h"
#include "serveraddress.h"

#include "simulationdata/scenariotiminghelper.h"
#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"
#include "simulationdata/simulationservicecommunication.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTcpSocket>
#include <QTimer>
#include <QVector>

#include <chrono>
#include <functional>

namespace SimulationTool {

/// A client that controls the devices of a service, as an editor does. Connects once.
/// An operation runs an event loop until the operation is done. It returns false, with
/// problem(), when the connection fails, or when the service does not answer or makes no
/// progress for the timeout. It also returns false, without problem(), when the process
/// is interrupted. Used on one thread.
class ServiceController : public QObject
{
    Q_OBJECT

public:
    using States = QMap<QString, Simulation::SimulationDeviceState>; ///< by device id
    using CommandSender = Simulation::SimulationServiceCommunication::CommandSender;
    using Answers = QMap<QString, QString>; ///< messages by device id

    /// Time for devices to confirm an order (ms), unless the timeout is shorter.
    static constexpr std::chrono::milliseconds s_confirmation{2000};

    explicit ServiceController(std::chrono::milliseconds a_timeout);
    ~ServiceController() override;

    [[nodiscard]] bool connectToService(const ServerAddress& a_server);

    /// Acquires the service. Without this call the controller is read-only, and receives
    /// the states of the devices and the run of the scenario with every synchronize().
    void acquire();

    /// Sends orders; call synchronize() after them.
    [[nodiscard]] Simulation::SimulationServiceCommunication& communication() { return m_communication; }

    /// Waits until the service has received everything that was sent. For this it requests
    /// the list of devices and waits for the answer. Updates devices().
    [[nodiscard]] bool synchronize();

    /// Sends a scenario and waits until each registered device has loaded it or
    /// failed. False when the service did not receive it. True also when the devices
    /// exceed the timeout: states() shows the unfinished ones.
    [[nodiscard]] bool loadScenario(const QByteArray& a_scenario);

    /// Sends an order and waits until each registered device has answered it, at most
    /// s_confirmation. A message is an answer unless the function returns
    /// OrderOutcome::Unknown for it. False when the service did not receive the
    /// order.
    [[nodiscard]] bool sendAndConfirm(const CommandSender& a_order,
                                      const std::function<OrderOutcome(const QString&)>& a_outcome);
    /// The answers to the last order of sendAndConfirm().
    [[nodiscard]] const Answers& answers() const { return m_answers; }

    /// Waits for a time. False, with problem(), when the connection ended. False also when
    /// the process was interrupted.
    [[nodiscard]] bool idle(std::chrono::milliseconds a_time);

    /// Releases the service, and closes the connection after everything was sent.
    void leave();

    [[nodiscard]] QString problem() const { return m_sError; }
    [[nodiscard]] const QVector<Simulation::SimulationDeviceConfiguration>& devices() const
    {
        return m_devices;
    }
    /// The states reported since the service was acquired or a scenario was sent. Without
    /// control, the states reported with the last device list.
    [[nodiscard]] const States& states() const { return m_states; }
    /// The scenario time as last reported by the service; stopped before the first report.
    [[nodiscard]] const Simulation::ScenarioTimingHelper& timing() const { return m_timing; }

private:
    enum class Waited {
        Done,
        TooLong,
        Failed,
    };

    void connectSignals();
    [[nodiscard]] Waited waitFor(const std::function<bool()>& a_isDone);
    [[nodiscard]] bool areDevicesDone() const;
    void noteState(const QString& a_sId, const Simulation::SimulationDeviceState& a_state);
    void fail(const QString& a_sReason);
    void noteProgress();
    void showTransfer();

    QTcpSocket m_socket;
    Simulation::SimulationServiceCommunication m_communication;
    InterruptibleLoop m_loop;
    std::chrono::milliseconds m_timeout;
    QElapsedTimer m_sinceProgress;
    QTimer m_wakeUp;
    QString m_sServer;
    QString m_sError;
    int m_iAnswers = 0; ///< requested lists not yet received
    QVector<Simulation::SimulationDeviceConfiguration> m_devices;
    bool m_bControls = false;
    States m_states;
    std::function<OrderOutcome(const QString&)> m_outcome; ///< of the pending order
    Answers m_answers;
    QSet<QString> m_done; ///< devices that loaded or failed since the last scenario was sent
    Simulation::ScenarioTimingHelper m_timing;
    qint64 m_iTransfer = 0; ///< bytes to write when the transfer began; 0 = all sent
};

} // namespace SimulationTool

#endif

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

/// A program that controls the devices of a service, as an editor does. It
/// connects once. Its operations run an event loop until they are done, and give
/// false with problem() when the service does not answer, or shows no progress,
/// for a time, or when the process is interrupted.
class ServiceController : public QObject
{
    Q_OBJECT

public:
    using States = QMap<QString, Simulation::SimulationDeviceState>; ///< by device id
    using CommandSender = Simulation::SimulationServiceCommunication::CommandSender;
    using Answers = QMap<QString, QString>; ///< messages by device id

    /// How long devices have to confirm an order (ms), unless the timeout is less.
    static constexpr std::chrono::milliseconds s_confirmation{2000};

    explicit ServiceController(std::chrono::milliseconds a_timeout);
    ~ServiceController() override;

    [[nodiscard]] bool connectToService(const ServerAddress& a_server);

    /// Takes the control. Without it the controller only looks on, and learns the
    /// states and the run with every synchronize().
    void acquire();

    /// For the orders: send them, and then synchronize().
    [[nodiscard]] Simulation::SimulationServiceCommunication& communication() { return m_communication; }

    /// Waits until the service has received all that was sent: nothing but the
    /// answer to a question after it shows that. Also learns the devices.
    [[nodiscard]] bool synchronize();

    /// Sends a scenario and waits until each device that is there has loaded it
    /// or failed. False when the service did not get it. When the devices take
    /// too long the result is true: states() tells who is not done.
    [[nodiscard]] bool loadScenario(const QByteArray& a_scenario);

    /// Sends an order and waits until each device that is there has answered it, at
    /// most s_confirmation. A message is an answer when the function gives anything
    /// but OrderOutcome::Unknown for it. False when the service did not get the
    /// order.
    [[nodiscard]] bool sendAndConfirm(const CommandSender& a_order,
                                      const std::function<OrderOutcome(const QString&)>& a_outcome);
    /// Those to the last order of that kind.
    [[nodiscard]] const Answers& answers() const { return m_answers; }

    /// Lets a time pass. False when the connection ended, with problem(), or the
    /// process was interrupted.
    [[nodiscard]] bool idle(std::chrono::milliseconds a_time);

    /// Releases the service and closes the connection when all has been sent.
    void leave();

    [[nodiscard]] QString problem() const { return m_sProblem; }
    [[nodiscard]] const QVector<Simulation::SimulationDeviceConfiguration>& devices() const
    {
        return m_devices;
    }
    /// Those that were reported since the service was acquired or a scenario sent,
    /// or with the last list when it only looks on.
    [[nodiscard]] const States& states() const { return m_states; }
    /// What the service said of the scenario time, which stands until it does.
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
    void fail(const QString& a_sProblem);
    void noteProgress();
    void showTransfer();

    QTcpSocket m_socket;
    Simulation::SimulationServiceCommunication m_communication;
    InterruptibleLoop m_loop;
    std::chrono::milliseconds m_timeout;
    QElapsedTimer m_sinceProgress;
    QTimer m_wakeUp;
    QString m_sServer;
    QString m_sProblem;
    int m_iAnswers = 0; ///< that are still to come
    QVector<Simulation::SimulationDeviceConfiguration> m_devices;
    bool m_bControls = false;
    States m_states;
    std::function<OrderOutcome(const QString&)> m_outcome; ///< of the order that waits
    Answers m_answers;
    QSet<QString> m_done; ///< that were loaded or failed, since a scenario was sent
    Simulation::ScenarioTimingHelper m_timing;
    qint64 m_iTransfer = 0; ///< bytes that waited when it began; 0 = all have left
};

} // namespace SimulationTool

#endif

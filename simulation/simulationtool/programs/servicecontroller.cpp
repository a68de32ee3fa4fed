#include "servicecontroller.h"

#include "console/interruption.h"
#include "console/loglimit.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace SimulationTool {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::ScenarioDataState;

constexpr qint64 s_iLongTransfer = 4'000'000; ///< bytes
constexpr int s_iPercent = 100;
constexpr int s_iAskAgain = 1000; ///< ms

bool isDone(ScenarioDataState a_eState)
{
    return a_eState == ScenarioDataState::Loaded || a_eState == ScenarioDataState::Failed;
}

} // namespace

ServiceController::ServiceController(std::chrono::milliseconds a_timeout)
    : m_communication(nullptr)
    , m_timeout(a_timeout)
{
    m_communication.setSocket(&m_socket);
    connectSignals();
}

ServiceController::~ServiceController()
{
    m_communication.setSocket(nullptr);
    m_socket.disconnect(this);
}

void ServiceController::connectSignals()
{
    m_wakeUp.setSingleShot(true);
    connect(&m_wakeUp, &QTimer::timeout, this, [this] { m_loop.quit(); });
    connect(&m_socket, &QTcpSocket::connected, this, &ServiceController::noteProgress);
    connect(&m_socket, &QTcpSocket::disconnected, this, [this] { m_loop.quit(); });
    connect(&m_socket, &QTcpSocket::bytesWritten, this, [this] {
        if (m_iTransfer > 0) { // otherwise only a request was written, which is not progress
            showTransfer();
            noteProgress();
        }
    });
    connect(&m_socket, &QTcpSocket::errorOccurred, this, [this] { fail(m_socket.errorString()); });
    m_communication.setStreamErrorHandler([this](const QString& a_sError) {
        fail(QStringLiteral("the answer cannot be read: ") + LogLimit::part(a_sError.simplified()));
    });
    connect(&m_communication, &Communication::responseSimulationDevices, this, [this](const auto& a_devices) {
        m_devices = a_devices;
        m_iAnswers -= m_iAnswers > 0 ? 1 : 0;
        m_loop.quit();
    });
    connect(&m_communication, &Communication::simulationDeviceStateUpdate, this,
            &ServiceController::noteState);
    connect(&m_communication, &Communication::startScenario, this,
            [this](quint64 a_uiTimestamp, uint a_uiTime) {
                m_timing.startScenarioTime(a_uiTimestamp, a_uiTime);
            });
    connect(&m_communication, &Communication::pauseScenario, this,
            [this](uint a_uiTime) { m_timing.pauseScenarioTime(a_uiTime); });
}

bool ServiceController::connectToService(const ServerAddress& a_server)
{
    m_sServer = a_server.text();
    m_socket.connectToHost(a_server.host, a_server.port);
    const Waited eWaited = waitFor([this] { return m_socket.state() == QAbstractSocket::ConnectedState; });
    if (eWaited == Waited::TooLong) {
        fail(QStringLiteral("no answer"));
    }
    // A socket may connect to itself on a local port without a listener.
    if (eWaited == Waited::Done && m_socket.localPort() == m_socket.peerPort() &&
        m_socket.localAddress() == m_socket.peerAddress()) {
        m_socket.abort();
        fail(QStringLiteral("no program listens there"));
        return false;
    }
    return eWaited == Waited::Done;
}

void ServiceController::acquire()
{
    m_bControls = true;
    m_communication.sendCommandAcquireServer();
}

bool ServiceController::synchronize()
{
    if (!m_bControls) { // the service sends all states and the state of the scenario again before its answer
        m_states.clear();
        m_timing.stopScenarioTime();
    }
    ++m_iAnswers;
    m_communication.sendCommandRequestSimulationDevices();
    if (m_communication.hasLostCommands()) {
        fail(QStringLiteral("it is more than can be sent at once"));
        return false;
    }
    m_iTransfer = m_socket.bytesToWrite();
    const Waited eWaited = waitFor([this] { return m_iAnswers == 0; });
    if (eWaited == Waited::TooLong) {
        fail(QStringLiteral("the service does not answer"));
    }
    return eWaited == Waited::Done;
}

bool ServiceController::loadScenario(const QByteArray& a_scenario)
{
    m_states.clear();
    m_done.clear();
    m_communication.sendLoadScenario(a_scenario);
    if (!synchronize()) {
        return false;
    }
    // Devices may leave during the wait, so the list is requested repeatedly.
    QTimer again;
    connect(&again, &QTimer::timeout, this, [this] {
        ++m_iAnswers;
        m_communication.sendCommandRequestSimulationDevices();
    });
    again.start(s_iAskAgain);
    return waitFor([this] { return areDevicesDone(); }) != Waited::Failed;
}

bool ServiceController::areDevicesDone() const
{
    return std::all_of(m_devices.cbegin(), m_devices.cend(), [this](const auto& a_device) {
        return isDone(m_states.value(a_device.id()).scenarioDataState());
    });
}

bool ServiceController::sendAndConfirm(const CommandSender& a_order,
                                       const std::function<OrderOutcome(const QString&)>& a_outcome)
{
    m_answers.clear();
    m_outcome = a_outcome;
    a_order(m_communication);
    if (!synchronize()) {
        return false;
    }
    QElapsedTimer since;
    since.start();
    QTimer enough;
    enough.setSingleShot(true);
    connect(&enough, &QTimer::timeout, this, [this] { m_loop.quit(); });
    enough.start(s_confirmation);
    const auto isDone = [&] {
        return since.hasExpired(s_confirmation.count()) ||
               std::all_of(m_devices.cbegin(), m_devices.cend(),
                           [this](const auto& a_device) { return m_answers.contains(a_device.id()); });
    };
    const bool bConfirmed = waitFor(isDone) != Waited::Failed;
    m_outcome = {};
    return bConfirmed;
}

bool ServiceController::idle(std::chrono::milliseconds a_time)
{
    QTimer over;
    over.setSingleShot(true);
    connect(&over, &QTimer::timeout, this, [this] { m_loop.quit(); });
    over.start(a_time);
    while (over.isActive() && m_sError.isEmpty() && !isInterrupted()) {
        m_loop.run();
    }
    return m_sError.isEmpty() && !isInterrupted();
}

/// Counts progress once for each listed device, so that a device that repeats its
/// states cannot prolong a wait without limit.
void ServiceController::noteState(const QString& a_sId, const Simulation::SimulationDeviceState& a_state)
{
    m_states[a_sId] = a_state;
    if (m_outcome && m_outcome(a_state.message()) != OrderOutcome::Unknown) {
        m_answers[a_sId] = a_state.message();
    }
    const bool bListed = std::any_of(m_devices.cbegin(), m_devices.cend(),
                                     [&](const auto& a_device) { return a_device.id() == a_sId; });
    if (bListed && isDone(a_state.scenarioDataState()) && !m_done.contains(a_sId)) {
        m_done.insert(a_sId);
        noteProgress();
    }
    m_loop.quit();
}

void ServiceController::leave()
{
    if (m_socket.state() != QAbstractSocket::ConnectedState) {
        return;
    }
    m_communication.sendCommandReleaseServer();
    m_socket.disconnectFromHost();
    static_cast<void>(waitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; }));
}

ServiceController::Waited ServiceController::waitFor(const std::function<bool()>& a_isDone)
{
    m_sinceProgress.start();
    while (!a_isDone()) {
        if (!m_sError.isEmpty() || isInterrupted()) {
            return Waited::Failed;
        }
        const qint64 iLeft = m_timeout.count() - m_sinceProgress.elapsed();
        if (iLeft <= 0) {
            return Waited::TooLong;
        }
        m_wakeUp.start(std::chrono::milliseconds(iLeft));
        m_loop.run();
    }
    return Waited::Done;
}

void ServiceController::fail(const QString& a_sReason)
{
    if (m_sError.isEmpty()) {
        m_sError = m_sServer + QStringLiteral(": ") + a_sReason;
    }
    m_loop.quit();
}

void ServiceController::noteProgress()
{
    m_sinceProgress.start();
    m_loop.quit();
}

/// Shows the progress of a long transfer on a terminal.
void ServiceController::showTransfer()
{
    const qint64 iWaiting = m_socket.bytesToWrite();
    if (m_iTransfer >= s_iLongTransfer && ::isatty(STDERR_FILENO) != 0) {
        const auto iPercent = static_cast<int>((m_iTransfer - iWaiting) * s_iPercent / m_iTransfer);
        static_cast<void>(std::fprintf(stderr, "\rSending: %3d %%%s", iPercent, iWaiting == 0 ? "\n" : ""));
    }
    if (iWaiting == 0) {
        m_iTransfer = 0;
    }
}

} // namespace SimulationTool

#include "simulationservice.h"

#include "console/valuetexts.h"
#include "servicepeer.h"

#include <utility>

// The service's handling of controllers and of programs without control.

namespace SimulationTool {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::SimulationDeviceConfiguration;
using Simulation::SimulationDeviceState;

/// Refuses a payload that could not be decompressed, so that it does not replace a
/// valid one.
bool isUsable(ServicePeer* a_pFrom, const char* a_szName, const QByteArray& a_payload)
{
    if (a_payload.isEmpty()) {
        a_pFrom->log(
            QStringLiteral("%1 ignored: it is empty or cannot be decompressed").arg(QLatin1String(a_szName)));
    }
    return !a_payload.isEmpty();
}

} // namespace

void SimulationService::connectController(ServicePeer* a_pPeer)
{
    const Communication* const pFrom = &a_pPeer->communication();
    connect(pFrom, &Communication::commandAcquireServer, this, [this, a_pPeer] { acquire(a_pPeer); });
    connect(pFrom, &Communication::commandReleaseServer, this, [this, a_pPeer] { release(a_pPeer); });
    connect(pFrom, &Communication::commandRequestSimulationDevices, this, [this, a_pPeer] {
        answer(a_pPeer, {false, 1});
    });
    connect(pFrom, &Communication::loadScenario, this,
            [this, a_pPeer](const QByteArray& a_scenario) { loadScenario(a_pPeer, a_scenario); });
}

void SimulationService::connectOrders(ServicePeer* a_pPeer)
{
    const Communication* const pFrom = &a_pPeer->communication();
    // Passes an order on. With `a_pKept`, keeps the command for devices that register
    // late.
    const auto order = [this, a_pPeer](const char* a_szName, OutgoingKind a_eKind,
                                       OutgoingCommandPtr* a_pKept, const CommandSender& a_send) {
        const OutgoingCommandPtr pCommand = passOn(a_pPeer, QLatin1String(a_szName), a_eKind, a_send);
        if (pCommand != nullptr && a_pKept != nullptr) {
            *a_pKept = pCommand;
        }
        return pCommand != nullptr;
    };
    connect(pFrom, &Communication::loadDeployment, this,
            [this, a_pPeer, order](const QByteArray& a_deployment) {
                if (isUsable(a_pPeer, "deployment", a_deployment)) {
                    order("deployment", OutgoingKind::DeploymentLoad, &m_deployment,
                          [&](Communication& a_to) { a_to.sendLoadDeployment(a_deployment); });
                }
            });
    connect(pFrom, &Communication::unloadScenario, this, [this, order] {
        if (order("unload", OutgoingKind::ScenarioUnload, nullptr, &Communication::sendUnloadScenario)) {
            m_scenario.reset();
            m_run.reset();
        }
    });
    connect(pFrom, &Communication::startScenario, this, [this, order](quint64 a_uiTimestamp, uint a_uiTime) {
        order("start", OutgoingKind::ScenarioRun, &m_run,
              [&](Communication& a_to) { a_to.sendStartScenario(a_uiTimestamp, a_uiTime); });
    });
    connect(pFrom, &Communication::pauseScenario, this, [this, order](uint a_uiTime) {
        order("pause", OutgoingKind::ScenarioRun, &m_run,
              [&](Communication& a_to) { a_to.sendPauseScenario(a_uiTime); });
    });
    connect(pFrom, &Communication::stopScenario, this, [this, order] {
        if (order("stop", OutgoingKind::Other, nullptr, &Communication::sendStopScenario)) {
            m_run.reset();
        }
    });
    connect(pFrom, &Communication::testModeOn, this, [this, order](bool a_bOn) {
        order("test mode", OutgoingKind::Other, &m_testMode,
              [&](Communication& a_to) { a_to.sendTestModeOn(a_bOn); });
    });
    connect(pFrom, &Communication::addJxDevice, this,
            [a_pPeer, order](const QString& a_sId, const QByteArray& a_definition) {
                if (isUsable(a_pPeer, "new Jx device", a_definition)) {
                    order("new Jx device", OutgoingKind::Other, nullptr,
                          [&](Communication& a_to) { a_to.sendAddJxDevice(a_sId, a_definition); });
                }
            });
    connect(pFrom, &Communication::removeJxDevice, this, [order](const QString& a_sId) {
        order("removal of a Jx device", OutgoingKind::Other, nullptr,
              [&](Communication& a_to) { a_to.sendRemoveJxDevice(a_sId); });
    });
}

ServicePeer* SimulationService::controller() const
{
    return m_controllers.isEmpty() ? nullptr : m_controllers.constLast();
}

void SimulationService::acquire(ServicePeer* a_pPeer)
{
    if (controller() != a_pPeer) {
        m_controllers.removeAll(a_pPeer);
        m_controllers.append(a_pPeer);
        a_pPeer->log(QStringLiteral("controls"));
        answer(a_pPeer, {true, 0});
    }
}

/// Lists are sent from the event loop, so that several changed records and requests
/// need only one new list. A report is sent immediately when no answer to the peer is
/// pending. Otherwise the report is sent from the event loop as well, so that the states
/// are collected once for a peer that acquires and releases repeatedly.
void SimulationService::answer(ServicePeer* a_pPeer, const Answer& a_answer)
{
    if (const auto it = m_answers.find(a_pPeer); it != m_answers.end()) {
        it->report = it->report || a_answer.report;
        it->lists += a_answer.lists;
        return;
    }
    schedule(m_bAnswerScheduled, "slotAnswer");
    if (a_answer.lists > 0) {
        m_answers.insert(a_pPeer, a_answer);
    } else {
        m_answers.insert(a_pPeer, {});
        sendAnswer(a_pPeer, a_answer);
    }
}

void SimulationService::slotAnswer()
{
    m_bAnswerScheduled = false;
    const QHash<ServicePeer*, Answer> answers = std::exchange(m_answers, {});
    for (auto it = answers.cbegin(); it != answers.cend(); ++it) {
        if (m_peers.contains(it.key())) { // the peer may have been dropped meanwhile
            sendAnswer(it.key(), *it);
        }
    }
}

void SimulationService::sendAnswer(ServicePeer* a_pPeer, const Answer& a_answer)
{
    // The controller receives every change of a state, and a device needs no states.
    const bool bLooksOn = !a_pPeer->isDevice() && controller() != a_pPeer;
    if (a_answer.report || (bLooksOn && a_answer.lists > 0)) {
        report(a_pPeer);
    }
    for (int i = 0; i < a_answer.lists; ++i) {
        a_pPeer->send(deviceList());
    }
}

/// Sends the states of the devices, and the run of the scenario.
void SimulationService::report(ServicePeer* a_pPeer)
{
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it) {
        sendState(a_pPeer, it.key(), *it);
    }
    // Devices receive starts and pauses as orders.
    if (!a_pPeer->isDevice()) {
        a_pPeer->report(QStringLiteral("run"), m_run);
    }
}

void SimulationService::release(ServicePeer* a_pPeer)
{
    const bool bControlled = controller() == a_pPeer;
    m_controllers.removeAll(a_pPeer);
    if (!bControlled) {
        return;
    }
    a_pPeer->log(QStringLiteral("released the control"));
    if (ServicePeer* const pBefore = controller()) {
        pBefore->log(QStringLiteral("controls again"));
        answer(pBefore, {true, 0});
    }
}

const OutgoingCommandPtr& SimulationService::deviceList()
{
    if (m_deviceList == nullptr) {
        QVector<SimulationDeviceConfiguration> devices;
        for (const Device& device : std::as_const(m_devices)) {
            devices.append(device.configuration);
        }
        m_deviceList = encoded([&](Communication& a_to) { a_to.sendResponseSimulationDevices(devices); });
    }
    return m_deviceList;
}

/// Passes an order on to all devices. Returns the command; null when it was not
/// passed on.
OutgoingCommandPtr SimulationService::passOn(ServicePeer* a_pPeer, const QString& a_sOrder,
                                             OutgoingKind a_eKind, const CommandSender& a_send)
{
    OutgoingCommandPtr pCommand = encoded(a_send, a_eKind);
    if (pCommand == nullptr) {
        a_pPeer->log(a_sOrder + QStringLiteral(" ignored: it is too large to be passed on"));
        return nullptr;
    }
    a_pPeer->log(QStringLiteral("%1 passed on to %2")
                     .arg(a_sOrder, counted(static_cast<quint64>(m_devices.size()), "device")));
    for (ServicePeer* const pEach : std::as_const(m_peers)) {
        if (pEach->isDevice()) {
            pEach->send(pCommand);
        }
    }
    return pCommand;
}

void SimulationService::loadScenario(ServicePeer* a_pPeer, const QByteArray& a_scenario)
{
    if (!isUsable(a_pPeer, "scenario", a_scenario)) {
        return;
    }
    // The former states of the devices do not apply to this scenario. The run ends,
    // because loading a scenario stops a device.
    const OutgoingCommandPtr pCommand =
        passOn(a_pPeer, QStringLiteral("scenario"), OutgoingKind::ScenarioLoad,
               [&](Communication& a_to) { a_to.sendLoadScenario(a_scenario); });
    if (pCommand != nullptr) {
        m_scenario = pCommand;
        m_run.reset();
        for (auto it = m_devices.begin(); it != m_devices.end(); ++it) {
            setState(it.key(), *it, SimulationDeviceState());
        }
    }
}

} // namespace SimulationTool

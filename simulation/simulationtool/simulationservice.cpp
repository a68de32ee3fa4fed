#include "simulationservice.h"

#include "devicestatetext.h"
#include "servicepeer.h"
#include "valuetexts.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

#include <sys/resource.h>

namespace SimulationTool {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::SimulationDeviceConfiguration;
using Simulation::SimulationDeviceState;

constexpr int s_iAcceptAgain = 1000;            ///< ms
constexpr qsizetype s_iMaxRecordBytes = 16'384; ///< of a device with its id; ordinary ones have 500
constexpr qsizetype s_iMaxDevices = 4096;       ///< so that the list of all is no larger than a document

/// How many connections the process can have open, after asking for more.
qsizetype maxPeers()
{
    constexpr rlim_t uiWanted = 65'536;
    constexpr rlim_t uiMostOthers = 128; // files, and connections that wait to be taken
    rlimit descriptors{uiWanted, uiWanted};
    static_cast<void>(getrlimit(RLIMIT_NOFILE, &descriptors));
    rlimit raised = descriptors;
    raised.rlim_cur = std::min(uiWanted, descriptors.rlim_max);
    if (raised.rlim_cur > descriptors.rlim_cur && setrlimit(RLIMIT_NOFILE, &raised) == 0) {
        descriptors = raised;
    }
    const rlim_t uiOpen = std::min(uiWanted, descriptors.rlim_cur);
    return static_cast<qsizetype>(uiOpen - std::min(uiMostOthers, uiOpen / 2));
}

/// What could not be decompressed must not take the place of what could.
bool isUsable(ServicePeer* a_pFrom, const char* a_szName, const QByteArray& a_payload)
{
    if (a_payload.isEmpty()) {
        a_pFrom->tell(
            QStringLiteral("%1 ignored: it is empty or cannot be decompressed").arg(QLatin1String(a_szName)));
    }
    return !a_payload.isEmpty();
}

} // namespace

SimulationService::SimulationService()
    : m_iMaxPeers(maxPeers())
{
    connect(&m_server, &QTcpServer::newConnection, this, &SimulationService::acceptPeers);
    connect(&m_server, &QTcpServer::acceptError, this, [this] { m_acceptAgain.start(s_iAcceptAgain); });
    connect(&m_acceptAgain, &QTimer::timeout, &m_server, &QTcpServer::resumeAccepting);
    m_acceptAgain.setSingleShot(true);
}

SimulationService::~SimulationService()
{
    for (ServicePeer* const pPeer : std::as_const(m_peers)) {
        pPeer->close();
    }
}

bool SimulationService::listen(const QHostAddress& a_address, std::uint16_t a_uiPort)
{
    return m_server.listen(a_address, a_uiPort);
}

// Peers come and go

void SimulationService::acceptPeers()
{
    while (QTcpSocket* const pSocket = m_server.nextPendingConnection()) {
        auto* const pPeer = new ServicePeer(pSocket, this);
        m_peers.append(pPeer);
        connect(pPeer, &ServicePeer::told, this, &SimulationService::told);
        connect(pPeer, &ServicePeer::lost, this,
                [this, pPeer](const QString& a_sReason) { drop(pPeer, a_sReason); });
        connectDevice(pPeer);
        connectController(pPeer);
        connectOrders(pPeer);
        pPeer->tell(QStringLiteral("connected"));
    }
    pauseIfFull();
}

/// Before the process runs out of descriptors: then the server would be told
/// again and again of a connection that it cannot accept.
void SimulationService::pauseIfFull()
{
    if (m_peers.size() >= m_iMaxPeers && !std::exchange(m_bFull, true)) {
        m_server.pauseAccepting();
        Q_EMIT told(
            QStringLiteral("no more connections are accepted until one of %1 ends").arg(m_peers.size()));
    }
}

void SimulationService::connectDevice(ServicePeer* a_pPeer)
{
    const Communication* const pFrom = &a_pPeer->communication();
    connect(pFrom, &Communication::registerSimulationDevice, this,
            [this, a_pPeer](const QString& a_sId, const SimulationDeviceConfiguration& a_device) {
                registerDevice(a_pPeer, a_sId, a_device);
            });
    connect(pFrom, &Communication::simulationDeviceStateUpdate, this,
            [this, a_pPeer](const QString& a_sId, const SimulationDeviceState& a_state) {
                updateState(a_pPeer, a_sId, a_state);
            });
    connect(pFrom, &Communication::unregisterSimulationDevice, this,
            [this, a_pPeer](const QString& a_sId) { unregisterDevice(a_pPeer, a_sId); });
}

void SimulationService::connectController(ServicePeer* a_pPeer)
{
    const Communication* const pFrom = &a_pPeer->communication();
    connect(pFrom, &Communication::commandAcquireServer, this, [this, a_pPeer] { acquire(a_pPeer); });
    connect(pFrom, &Communication::commandReleaseServer, this, [this, a_pPeer] { release(a_pPeer); });
    connect(pFrom, &Communication::commandRequestSimulationDevices, this,
            [this, a_pPeer] { listDevices(a_pPeer); });
    connect(pFrom, &Communication::loadScenario, this,
            [this, a_pPeer](const QByteArray& a_scenario) { loadScenario(a_pPeer, a_scenario); });
}

void SimulationService::connectOrders(ServicePeer* a_pPeer)
{
    const Communication* const pFrom = &a_pPeer->communication();
    // Passes an order on, and keeps it for devices that come late.
    const auto order = [this, a_pPeer](const char* a_szName, QByteArray* a_pKept,
                                       const CommandSender& a_send) {
        const QByteArray command = passOn(a_pPeer, QLatin1String(a_szName), a_send);
        if (!command.isEmpty() && a_pKept != nullptr) {
            *a_pKept = command;
        }
        return !command.isEmpty();
    };
    connect(pFrom, &Communication::loadDeployment, this,
            [this, a_pPeer, order](const QByteArray& a_deployment) {
                if (isUsable(a_pPeer, "deployment", a_deployment)) {
                    order("deployment", &m_deployment,
                          [&](Communication& a_to) { a_to.sendLoadDeployment(a_deployment); });
                }
            });
    connect(pFrom, &Communication::unloadScenario, this, [this, order] {
        if (order("unload", nullptr, &Communication::sendUnloadScenario)) {
            m_scenario.clear();
            m_run.clear();
        }
    });
    connect(pFrom, &Communication::startScenario, this, [this, order](quint64 a_uiTimestamp, uint a_uiTime) {
        order("start", &m_run, [&](Communication& a_to) { a_to.sendStartScenario(a_uiTimestamp, a_uiTime); });
    });
    connect(pFrom, &Communication::pauseScenario, this, [this, order](uint a_uiTime) {
        order("pause", &m_run, [&](Communication& a_to) { a_to.sendPauseScenario(a_uiTime); });
    });
    connect(pFrom, &Communication::stopScenario, this, [this, order] {
        if (order("stop", nullptr, &Communication::sendStopScenario)) {
            m_run.clear();
        }
    });
    connect(pFrom, &Communication::testModeOn, this, [this, order](bool a_bOn) {
        order("test mode", &m_testMode, [&](Communication& a_to) { a_to.sendTestModeOn(a_bOn); });
    });
    connect(pFrom, &Communication::addJxDevice, this,
            [a_pPeer, order](const QString& a_sId, const QByteArray& a_definition) {
                if (isUsable(a_pPeer, "new Jx device", a_definition)) {
                    order("new Jx device", nullptr,
                          [&](Communication& a_to) { a_to.sendAddJxDevice(a_sId, a_definition); });
                }
            });
    connect(pFrom, &Communication::removeJxDevice, this, [order](const QString& a_sId) {
        order("removal of a Jx device", nullptr,
              [&](Communication& a_to) { a_to.sendRemoveJxDevice(a_sId); });
    });
}

void SimulationService::drop(ServicePeer* a_pPeer, const QString& a_sReason)
{
    if (!m_peers.removeOne(a_pPeer)) {
        return; // dropped already
    }
    a_pPeer->tell(a_sReason.isEmpty() ? QStringLiteral("left") : QStringLiteral("dropped: ") + a_sReason,
                  true);
    const QSet<QString> ids = a_pPeer->deviceIds();
    for (const QString& sId : ids) {
        unregisterDevice(a_pPeer, sId);
    }
    release(a_pPeer);
    a_pPeer->close();
    a_pPeer->deleteLater(); // this may be a slot on its own signals
    if (std::exchange(m_bFull, false)) {
        m_server.resumeAccepting();
    }
}

// What devices say

void SimulationService::registerDevice(ServicePeer* a_pPeer, const QString& a_sId,
                                       const SimulationDeviceConfiguration& a_configuration)
{
    if (const QString sProblem = registrationProblem(a_sId, a_configuration); !sProblem.isEmpty()) {
        drop(a_pPeer, sProblem);
        return;
    }
    const bool bFirst = !a_pPeer->isDevice();
    Device& device = m_devices[a_sId];
    ServicePeer* const pFormer = std::exchange(device.peer, a_pPeer);
    SimulationDeviceConfiguration listed = a_configuration;
    listed.setId(a_sId); // under which it is looked for, whatever its record says
    if (pFormer == nullptr || listed.toXml() != device.configuration.toXml()) {
        device.configuration = listed;
        m_deviceList.clear();
    }
    if (pFormer != a_pPeer) {
        setState(a_sId, device, SimulationDeviceState());
        a_pPeer->deviceIds().insert(a_sId);
        a_pPeer->tell(QStringLiteral("device %1 registered").arg(a_sId));
    }
    a_pPeer->communication().sendAcceptSimulationDevice(a_sId,
                                                        Communication::createConfirmation(a_configuration));
    if (bFirst) {
        for (const QByteArray& command : {m_deployment, m_scenario, m_testMode, m_run}) {
            a_pPeer->send(command);
        }
    }
    if (pFormer != nullptr && pFormer != a_pPeer) {
        takeOver(a_sId, pFormer);
    }
    send(a_pPeer, QByteArray());
}

QString SimulationService::registrationProblem(const QString& a_sId,
                                               const SimulationDeviceConfiguration& a_configuration) const
{
    if (a_sId.isEmpty()) {
        return QStringLiteral("it registers a device without an id");
    }
    const qsizetype iBytes = a_sId.size() + a_configuration.toXml().size();
    if (iBytes > s_iMaxRecordBytes) {
        return QStringLiteral("it registers a device with a record of %1 bytes, more than %2")
            .arg(QString::number(iBytes), QString::number(s_iMaxRecordBytes));
    }
    return m_devices.size() < s_iMaxDevices || m_devices.contains(a_sId)
               ? QString()
               : QStringLiteral("there are %1 devices already").arg(s_iMaxDevices);
}

/// The former owner of an id stays connected: if it came back at once, the two
/// would take the id from each other for ever.
void SimulationService::takeOver(const QString& a_sId, ServicePeer* a_pFrom)
{
    a_pFrom->deviceIds().remove(a_sId);
    a_pFrom->tell(QStringLiteral("device %1 was registered by another").arg(a_sId));
    a_pFrom->communication().sendUnregisterSimulationDevice(a_sId);
    send(a_pFrom, QByteArray());
}

void SimulationService::unregisterDevice(ServicePeer* a_pPeer, const QString& a_sId)
{
    if (!a_pPeer->deviceIds().remove(a_sId)) {
        return;
    }
    m_devices.remove(a_sId);
    m_deviceList.clear();
    a_pPeer->tell(QStringLiteral("device %1 unregistered").arg(a_sId), !m_peers.contains(a_pPeer));
}

void SimulationService::updateState(ServicePeer* a_pPeer, const QString& a_sId,
                                    const SimulationDeviceState& a_state)
{
    if (!a_pPeer->deviceIds().contains(a_sId)) {
        a_pPeer->tell(QStringLiteral("state of device %1 ignored: not registered by it").arg(a_sId));
        return;
    }
    Device& device = m_devices[a_sId];
    if (device.state.scenarioDataState() != a_state.scenarioDataState()) {
        a_pPeer->tell(QStringLiteral("device %1: %2").arg(a_sId, stateText(a_state.scenarioDataState())));
        setState(a_sId, device, a_state);
    }
    if (ServicePeer* const pController = controller()) {
        send(pController, device.stateUpdate);
    }
}

void SimulationService::setState(const QString& a_sId, Device& a_device, const SimulationDeviceState& a_state)
{
    a_device.state = a_state;
    a_device.stateUpdate =
        encodedCommand([&](Communication& a_to) { a_to.sendSimulationDeviceStateUpdate(a_sId, a_state); });
}

// What controllers say

ServicePeer* SimulationService::controller() const
{
    return m_controllers.isEmpty() ? nullptr : m_controllers.constLast();
}

void SimulationService::acquire(ServicePeer* a_pPeer)
{
    if (controller() != a_pPeer) {
        m_controllers.removeAll(a_pPeer);
        m_controllers.append(a_pPeer);
        a_pPeer->tell(QStringLiteral("controls"));
    }
    report(a_pPeer);
}

/// Tells a controller where things stand.
void SimulationService::report(ServicePeer* a_pPeer)
{
    QByteArray updates;
    for (const Device& device : std::as_const(m_devices)) {
        updates.append(device.stateUpdate);
    }
    // A device has been told already whether the scenario runs.
    send(a_pPeer, a_pPeer->isDevice() ? updates : updates.append(m_run));
}

void SimulationService::release(ServicePeer* a_pPeer)
{
    const bool bControlled = controller() == a_pPeer;
    m_controllers.removeAll(a_pPeer);
    if (!bControlled) {
        return;
    }
    a_pPeer->tell(QStringLiteral("controls no more"));
    if (ServicePeer* const pBefore = controller()) {
        pBefore->tell(QStringLiteral("controls again"));
        report(pBefore);
    }
}

void SimulationService::listDevices(ServicePeer* a_pPeer)
{
    if (m_deviceList.isEmpty()) {
        QVector<SimulationDeviceConfiguration> devices;
        for (const Device& device : std::as_const(m_devices)) {
            devices.append(device.configuration);
        }
        m_deviceList =
            encodedCommand([&](Communication& a_to) { a_to.sendResponseSimulationDevices(devices); });
    }
    send(a_pPeer, m_deviceList);
}

/// Gives the command, or nothing when it was not passed on.
QByteArray SimulationService::passOn(ServicePeer* a_pPeer, const QString& a_sOrder,
                                     const CommandSender& a_send)
{
    if (controller() != a_pPeer) {
        a_pPeer->tell(a_sOrder + QStringLiteral(" ignored: it does not control"));
        return {};
    }
    QByteArray command = encodedCommand(a_send);
    if (command.isEmpty()) {
        a_pPeer->tell(a_sOrder + QStringLiteral(" ignored: it is too large to be passed on"));
        return {};
    }
    QList<ServicePeer*> devices;
    std::copy_if(m_peers.cbegin(), m_peers.cend(), std::back_inserter(devices),
                 [](const ServicePeer* a_pEach) { return a_pEach->isDevice(); });
    a_pPeer->tell(QStringLiteral("%1 passed on to %2")
                      .arg(a_sOrder, counted(static_cast<quint64>(m_devices.size()), "device")));
    for (ServicePeer* const pDevice : std::as_const(devices)) {
        send(pDevice, command);
    }
    return command;
}

void SimulationService::loadScenario(ServicePeer* a_pPeer, const QByteArray& a_scenario)
{
    if (!isUsable(a_pPeer, "scenario", a_scenario)) {
        return;
    }
    // The devices' former states say nothing of this scenario, and they stop.
    const QByteArray command = passOn(a_pPeer, QStringLiteral("scenario"),
                                      [&](Communication& a_to) { a_to.sendLoadScenario(a_scenario); });
    if (!command.isEmpty()) {
        m_scenario = command;
        m_run.clear();
        for (auto it = m_devices.begin(); it != m_devices.end(); ++it) {
            setState(it.key(), *it, SimulationDeviceState());
        }
    }
}

/// Also looks after what was sent before by other means, for which the command
/// is empty.
void SimulationService::send(ServicePeer* a_pPeer, const QByteArray& a_command)
{
    a_pPeer->send(a_command);
    if (a_pPeer->hasLostCommands()) {
        drop(a_pPeer, QStringLiteral("it does not read what it is sent"));
    }
}

} // namespace SimulationTool

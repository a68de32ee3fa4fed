#include "simulationservice.h"

#include "commandkind.h"
#include "console/valuetexts.h"
#include "describe/devicestatetext.h"
#include "servicepeer.h"

#include "simulationdata/simulationlimits.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

#include <sys/resource.h>

namespace SimulationTool {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::Limits;
using Simulation::SimulationDeviceConfiguration;
using Simulation::SimulationDeviceState;

constexpr int s_iAcceptAgain = 1000;                ///< ms
constexpr qsizetype s_iMaxRecordBytes = 16'384;     ///< of a device's list entry; usual: 1000 bytes
constexpr qsizetype s_iMaxDevices = 4096;           ///< so that the list stays within the document limit
constexpr qsizetype s_iMaxCommandBytes = 1'048'576; ///< of a command without a payload

constexpr int s_iBacklog = 4096;      ///< waiting connections; the system's maximum
constexpr int s_iAcceptedAtOnce = 32; ///< before the peers' turn; takes 2 ms
constexpr int s_iDroppedAtOnce = 64;
/// Not 0, because the event loop may delay a timer of 0 ms while sockets have bytes to
/// read.
constexpr std::chrono::milliseconds s_dropInterval(1);

/// The number of connections that the process can open, after raising its limit.
qsizetype maxPeers()
{
    constexpr rlim_t uiWanted = 65'536;
    constexpr rlim_t uiMostOthers = 128; // files, and connections not yet accepted
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

} // namespace

SimulationService::SimulationService(std::chrono::milliseconds a_timeout)
    : m_iMaxPeers(maxPeers())
    , m_timeout(a_timeout)
{
    m_server.setListenBacklogSize(s_iBacklog);
    m_server.setMaxPendingConnections(s_iAcceptedAtOnce);
    connect(&m_server, &QTcpServer::newConnection, this,
            [this] { schedule(m_bAcceptScheduled, "slotAcceptPeers"); });
    connect(&m_server, &QTcpServer::acceptError, this, [this] { m_acceptAgain.start(s_iAcceptAgain); });
    connect(&m_acceptAgain, &QTimer::timeout, this, [this] {
        if (!m_bFull) {
            m_server.resumeAccepting();
        }
    });
    m_acceptAgain.setSingleShot(true);
    connect(&m_dropLost, &QTimer::timeout, this, &SimulationService::dropLost);
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

// Connections of peers

/// Calls a slot once from the event loop, also after several calls of schedule().
void SimulationService::schedule(bool& a_bScheduled, const char* a_szSlot)
{
    if (!std::exchange(a_bScheduled, true)) {
        QMetaObject::invokeMethod(this, a_szSlot, Qt::QueuedConnection);
    }
}

void SimulationService::slotAcceptPeers()
{
    m_bAcceptScheduled = false;
    while (QTcpSocket* const pSocket = m_server.nextPendingConnection()) {
        addPeer(pSocket);
    }
    pauseIfFull();
}

void SimulationService::addPeer(QTcpSocket* a_pSocket)
{
    auto* const pPeer = new ServicePeer(a_pSocket, m_pPending, m_timeout, this);
    m_peers.append(pPeer);
    connect(pPeer, &ServicePeer::logged, this, &SimulationService::logged);
    connect(pPeer, &ServicePeer::lost, this, [this, pPeer](const QString& a_sReason) {
        m_lost.push_back({pPeer, a_sReason});
        if (!m_dropLost.isActive()) {
            m_dropLost.start(s_dropInterval);
        }
    });
    // Queued, because peers must not be deleted while a caller sends to many of them.
    connect(pPeer, &ServicePeer::pendingGrew, this, [this] {
        if (isPendingExceeded()) {
            schedule(m_bBoundScheduled, "slotBoundPending");
        }
    });
    pPeer->communication().setCommandFilter([this, pPeer](const QString& a_sCommand, qsizetype a_iBytes) {
        return accepts(*pPeer, a_sCommand, a_iBytes);
    });
    connectDevice(pPeer);
    connectController(pPeer);
    connectOrders(pPeer);
    pPeer->log(QStringLiteral("connected"));
}

/// Pauses accepting before the process runs out of descriptors: otherwise the server
/// would be notified repeatedly of a connection that it cannot accept.
void SimulationService::pauseIfFull()
{
    if (m_peers.size() >= m_iMaxPeers && !std::exchange(m_bFull, true)) {
        m_server.pauseAccepting();
        Q_EMIT logged(
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

/// Drops a few peers per call, so that the others are served while thousands leave.
void SimulationService::dropLost()
{
    for (int i = 0; i < s_iDroppedAtOnce && !m_lost.empty(); ++i) {
        const LostPeer lost = std::move(m_lost.front());
        m_lost.pop_front();
        if (lost.peer != nullptr) {
            drop(lost.peer, lost.reason);
        }
    }
    if (m_lost.empty()) {
        m_dropLost.stop();
    }
}

void SimulationService::drop(ServicePeer* a_pPeer, const QString& a_sReason)
{
    if (!m_peers.removeOne(a_pPeer)) {
        return; // dropped already
    }
    a_pPeer->log(a_sReason.isEmpty() ? QStringLiteral("left") : QStringLiteral("dropped: ") + a_sReason,
                 true);
    const QSet<QString> ids = a_pPeer->deviceIds();
    for (const QString& sId : ids) {
        unregisterDevice(a_pPeer, sId);
    }
    release(a_pPeer);
    a_pPeer->close();
    a_pPeer->deleteLater(); // the caller may be a slot of the peer's signals
    if (std::exchange(m_bFull, false)) {
        m_server.resumeAccepting();
    }
}

/// Whether a command is to be decoded. Decoding a payload may take much time and
/// memory.
bool SimulationService::accepts(ServicePeer& a_peer, const QString& a_sCommand, qsizetype a_iBytes) const
{
    const CommandKind eKind = commandKind(a_sCommand);
    if (eKind == CommandKind::Useless) {
        return false;
    }
    if (eKind != CommandKind::Request && controller() != &a_peer) {
        a_peer.log(a_sCommand + QStringLiteral(" ignored: it does not control the service"));
        return false;
    }
    if (eKind != CommandKind::OrderWithPayload && a_iBytes > s_iMaxCommandBytes) {
        a_peer.log(QStringLiteral("%1 ignored: it has %2 bytes, more than %3")
                       .arg(a_sCommand, QString::number(a_iBytes), QString::number(s_iMaxCommandBytes)));
        return false;
    }
    return true;
}

/// Whether the pending bytes of all peers exceed the limit. The kept deployment and
/// scenario do not count, because the service holds them in any case.
bool SimulationService::isPendingExceeded() const
{
    qint64 iPending = *m_pPending;
    for (const OutgoingCommandPtr& pKept : {m_deployment, m_scenario}) {
        iPending -= pKept != nullptr && pKept->isWaiting() ? pKept->bytes().size() : 0;
    }
    return iPending > 0 && static_cast<quint64>(iPending) > Limits::value(Limits::AllPendingBytes);
}

/// Drops the peers with the most pending bytes until the limit is no longer exceeded.
void SimulationService::slotBoundPending()
{
    m_bBoundScheduled = false;
    while (isPendingExceeded() && !m_peers.isEmpty()) {
        ServicePeer* const pMost = *std::max_element(
            m_peers.cbegin(), m_peers.cend(), [](const ServicePeer* a_pLeft, const ServicePeer* a_pRight) {
                return a_pLeft->pendingBytes() < a_pRight->pendingBytes();
            });
        if (pMost->pendingBytes() == 0) {
            return; // no peer holds pending bytes
        }
        drop(pMost,
             QStringLiteral("%1, most of them by it: %2")
                 .arg(Limits::exceeded(Limits::AllPendingBytes), QString::number(pMost->pendingBytes())));
    }
}

// Commands of devices

void SimulationService::registerDevice(ServicePeer* a_pPeer, const QString& a_sId,
                                       const SimulationDeviceConfiguration& a_configuration)
{
    if (const QString sError = registrationError(a_sId, a_configuration); !sError.isEmpty()) {
        drop(a_pPeer, sError);
        return;
    }
    const bool bFirst = !a_pPeer->isDevice();
    Device& device = m_devices[a_sId];
    ServicePeer* const pFormer = std::exchange(device.peer, a_pPeer);
    SimulationDeviceConfiguration listed = a_configuration;
    listed.setId(a_sId); // devices are found by this id, even when the record has another id
    if (pFormer == nullptr || listed.toXml() != device.configuration.toXml()) {
        device.configuration = listed;
        m_deviceList.reset();
    }
    if (pFormer != a_pPeer) {
        setState(a_sId, device, SimulationDeviceState());
        a_pPeer->deviceIds().insert(a_sId);
        a_pPeer->log(QStringLiteral("device %1 registered").arg(a_sId));
    }
    const QString sConfirmation = Communication::createConfirmation(a_configuration);
    a_pPeer->report(QStringLiteral("confirmation ") + a_sId, encoded([&](Communication& a_to) {
                        a_to.sendAcceptSimulationDevice(a_sId, sConfirmation);
                    }));
    if (bFirst) {
        for (const OutgoingCommandPtr& pCommand : {m_deployment, m_scenario, m_testMode, m_run}) {
            a_pPeer->send(pCommand);
        }
    }
    if (pFormer != nullptr && pFormer != a_pPeer) {
        takeOver(a_sId, pFormer);
    }
}

QString SimulationService::registrationError(const QString& a_sId,
                                             const SimulationDeviceConfiguration& a_configuration) const
{
    if (a_sId.isEmpty()) {
        return QStringLiteral("it registers a device without an id");
    }
    SimulationDeviceConfiguration listed = a_configuration;
    listed.setId(a_sId);
    // Measures the record as it is sent: escaped in the device list, and with the id in
    // the attributes of a state update.
    const qsizetype iBytes = Communication::encode([&](Communication& a_to) {
                                 a_to.sendResponseSimulationDevices({listed});
                                 a_to.sendSimulationDeviceStateUpdate(a_sId, SimulationDeviceState());
                             }).size();
    if (iBytes == 0 || iBytes > s_iMaxRecordBytes) {
        return QStringLiteral("it registers a device with a record of %1 bytes, more than %2")
            .arg(QString::number(iBytes), QString::number(s_iMaxRecordBytes));
    }
    return m_devices.size() < s_iMaxDevices || m_devices.contains(a_sId)
               ? QString()
               : QStringLiteral("there are %1 devices already").arg(s_iMaxDevices);
}

/// The former owner of an id stays connected. If it were dropped, it would reconnect
/// at once, and both would take the id from each other without end.
void SimulationService::takeOver(const QString& a_sId, ServicePeer* a_pFrom)
{
    a_pFrom->deviceIds().remove(a_sId);
    a_pFrom->log(QStringLiteral("device %1 was registered by another").arg(a_sId));
    a_pFrom->send(encoded([&](Communication& a_to) { a_to.sendUnregisterSimulationDevice(a_sId); },
                          OutgoingKind::Unregistration));
}

void SimulationService::unregisterDevice(ServicePeer* a_pPeer, const QString& a_sId)
{
    if (!a_pPeer->deviceIds().remove(a_sId)) {
        return;
    }
    m_devices.remove(a_sId);
    m_deviceList.reset();
    a_pPeer->log(QStringLiteral("device %1 unregistered").arg(a_sId), !m_peers.contains(a_pPeer));
}

void SimulationService::updateState(ServicePeer* a_pPeer, const QString& a_sId,
                                    const SimulationDeviceState& a_state)
{
    if (!a_pPeer->deviceIds().contains(a_sId)) {
        a_pPeer->log(QStringLiteral("state of device %1 ignored: not registered by it").arg(a_sId));
        return;
    }
    Device& device = m_devices[a_sId];
    if (device.state.scenarioDataState() != a_state.scenarioDataState() ||
        device.state.message() != a_state.message()) {
        const QString sMessage =
            a_state.message().isEmpty() ? QString() : QStringLiteral(", ") + a_state.message();
        a_pPeer->log(
            QStringLiteral("device %1: %2").arg(a_sId, stateText(a_state.scenarioDataState()) + sMessage));
        setState(a_sId, device, a_state);
    }
    if (ServicePeer* const pController = controller()) {
        sendState(pController, a_sId, device);
    }
}

void SimulationService::setState(const QString& a_sId, Device& a_device,
                                 const SimulationDeviceState& a_state) const
{
    a_device.state = a_state;
    a_device.stateUpdate =
        encoded([&](Communication& a_to) { a_to.sendSimulationDeviceStateUpdate(a_sId, a_state); });
}

void SimulationService::sendState(ServicePeer* a_pPeer, const QString& a_sId, const Device& a_device)
{
    a_pPeer->report(QStringLiteral("state ") + a_sId, a_device.stateUpdate);
}

/// A command for one or more peers; null, after one trace message, when the command
/// exceeds Limits::DocumentBytes.
OutgoingCommandPtr SimulationService::encoded(const CommandSender& a_send, OutgoingKind a_eKind) const
{
    QByteArray bytes = Communication::encode(a_send);
    return bytes.isEmpty() ? nullptr
                           : std::make_shared<OutgoingCommand>(std::move(bytes), m_pPending, a_eKind);
}

} // namespace SimulationTool

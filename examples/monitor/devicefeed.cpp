#include "devicefeed.h"

#include <simulationdata/simulationlimits.h>

#include <QSet>
#include <QTcpSocket>

namespace Monitor {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::Limits;
using Simulation::SimulationDeviceConfiguration;
using Simulation::SimulationDeviceState;

constexpr int s_iAskAgain = 2000; ///< ms after an answer

} // namespace

DeviceFeed::DeviceFeed()
    : m_communication(nullptr)
{
    connect(&m_communication, &Communication::responseSimulationDevices, this, &DeviceFeed::takeList);
    // A service may also forward the devices' own commands.
    connect(&m_communication, &Communication::registerSimulationDevice, this,
            [this](const QString& a_sId, const SimulationDeviceConfiguration& a_device) {
                SimulationDeviceConfiguration device = a_device;
                device.setId(a_sId);
                takeDevice(device);
                Q_EMIT updated();
            });
    connect(&m_communication, &Communication::unregisterSimulationDevice, this, [this](const QString& a_sId) {
        removeDevice(a_sId);
        Q_EMIT updated();
    });
    connect(&m_communication, &Communication::simulationDeviceStateUpdate, this, &DeviceFeed::takeState);
    m_communication.setStreamErrorHandler([this](const QString& a_sError) { Q_EMIT unreadable(a_sError); });
    m_askAgain.setSingleShot(true);
    m_askAgain.setInterval(s_iAskAgain);
    connect(&m_askAgain, &QTimer::timeout, &m_communication,
            &Communication::sendCommandRequestSimulationDevices);
}

DeviceFeed::~DeviceFeed() = default;

void DeviceFeed::setSocket(QTcpSocket* a_pSocket)
{
    m_askAgain.stop();
    m_communication.setSocket(nullptr);
    const QStringList former = m_devices.keys();
    for (const QString& sId : former) {
        removeDevice(sId);
    }
    m_states.clear();
    if (a_pSocket == nullptr) {
        return;
    }
    m_communication.setSocket(a_pSocket);
    if (m_bFollowing) {
        m_communication.sendCommandAcquireServer();
    }
    m_communication.sendCommandRequestSimulationDevices();
}

void DeviceFeed::setFollowingStates(bool a_bOn)
{
    if (m_bFollowing == a_bOn) {
        return;
    }
    m_bFollowing = a_bOn;
    if (a_bOn) {
        m_communication.sendCommandAcquireServer();
        return;
    }
    m_communication.sendCommandReleaseServer();
    m_states.clear();
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it) {
        m_model.updateSimulationState(it.key(), SimulationDeviceState());
    }
    Q_EMIT updated();
}

qsizetype DeviceFeed::count(Simulation::ScenarioDataState a_eState) const
{
    if (a_eState == Simulation::ScenarioDataState::None) {
        using Simulation::ScenarioDataState;
        return m_devices.size() - count(ScenarioDataState::Loading) - count(ScenarioDataState::Loaded) -
               count(ScenarioDataState::Failed);
    }
    qsizetype iDevices = 0;
    for (auto it = m_states.cbegin(); it != m_states.cend(); ++it) {
        iDevices += it->scenarioDataState() == a_eState && m_devices.contains(it.key()) ? 1 : 0;
    }
    return iDevices;
}

void DeviceFeed::takeList(const QVector<SimulationDeviceConfiguration>& a_devices)
{
    QSet<QString> ids;
    for (const SimulationDeviceConfiguration& device : a_devices) {
        ids.insert(device.id());
    }
    const QStringList former = m_devices.keys();
    for (const QString& sId : former) {
        if (!ids.contains(sId)) {
            removeDevice(sId);
        }
    }
    for (const SimulationDeviceConfiguration& device : a_devices) {
        takeDevice(device);
    }
    m_states.removeIf([this](const auto& a_state) { return !m_devices.contains(a_state.key()); });
    m_askAgain.start();
    Q_EMIT updated();
}

/// Adds or updates the row of a device. The row of an unchanged device is not updated:
/// the table would redraw the row and reset the device's state.
void DeviceFeed::takeDevice(const SimulationDeviceConfiguration& a_device)
{
    const QString sId = a_device.id();
    const QByteArray record = a_device.toXml();
    const bool bListed = m_devices.contains(sId);
    if ((bListed && m_devices[sId] == record) ||
        (!bListed && static_cast<std::uint64_t>(m_devices.size()) >= Limits::value(Limits::ListedDevices))) {
        return;
    }
    m_devices[sId] = record;
    m_model.registerSimulation(a_device);
    // A state may arrive before its device, because the list arrives only on request.
    if (m_states.contains(sId)) {
        m_model.updateSimulationState(sId, m_states[sId]);
    }
}

void DeviceFeed::removeDevice(const QString& a_sId)
{
    m_states.remove(a_sId);
    if (m_devices.remove(a_sId) > 0) {
        m_model.unregisterSimulation(a_sId);
    }
}

void DeviceFeed::takeState(const QString& a_sId, const SimulationDeviceState& a_state)
{
    if (!m_bFollowing || (!m_states.contains(a_sId) && static_cast<std::uint64_t>(m_states.size()) >=
                                                           Limits::value(Limits::ListedDevices))) {
        return; // sent before the release, or too many states are stored
    }
    m_states[a_sId] = a_state;
    if (m_devices.contains(a_sId)) {
        m_model.updateSimulationState(a_sId, a_state);
        Q_EMIT updated();
    }
}

} // namespace Monitor

#include "simulationservicecommunication_p.h"

#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationdata/xml/xmltext_p.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <utility>

namespace Simulation {

// The commands of the protocol, each reader above its writer. A reader returns false,
// without a signal, when a part is missing or cannot be converted. After its signal a
// reader does not use the receiver, because a slot may have deleted the receiver.

namespace {

using Communication = SimulationServiceCommunication;

constexpr const char* s_szSource = "simulation/simulationdata/simulationservicecommunication";

constexpr QLatin1String s_root("Command");
constexpr QLatin1String s_registerSimulation("RegisterSimulation");
constexpr QLatin1String s_stateUpdate("SimulationDeveiceStateUpdate"); // the spelling is part of the protocol
constexpr QLatin1String s_unregisterSimulation("UnregisterSimulation");
constexpr QLatin1String s_addJxDevice("AddJxDevice");
constexpr QLatin1String s_removeJxDevice("RemoveJxDevice");
constexpr QLatin1String s_acceptSimulationDevice("AcceptSimulationDevice");
constexpr QLatin1String s_loadScenario("LoadScenario");
constexpr QLatin1String s_unloadScenario("UnloadScenario");
constexpr QLatin1String s_loadDeployment("LoadDeployment");
constexpr QLatin1String s_startScenario("StartScenario");
constexpr QLatin1String s_pauseScenario("PauseScenario");
constexpr QLatin1String s_stopScenario("StopScenario");
constexpr QLatin1String s_testMode("TestMode");
constexpr QLatin1String s_responseSimulationDevices("ResponseSimulationDevices");
constexpr QLatin1String s_acquireServer("AcquireServer");
constexpr QLatin1String s_releaseServer("ReleaseServer");
constexpr QLatin1String s_requestSimulationDevices("RequestSimulationDevices");

constexpr QLatin1String s_id("Id");
constexpr QLatin1String s_deviceId("DeviceId");
constexpr QLatin1String s_simulationDevice("SimulationDevice");
constexpr QLatin1String s_state("State");
constexpr QLatin1String s_jxDeviceDescriptor("JxDeviceDescriptor");
constexpr QLatin1String s_confirmation("Confirmation");
constexpr QLatin1String s_scenarioData("ScenarioData");
constexpr QLatin1String s_deploymentData("DeploymentData");
constexpr QLatin1String s_timestamp("Timestamp");
constexpr QLatin1String s_scenarioTime("ScenarioTime");
constexpr QLatin1String s_on("On");
constexpr QLatin1String s_device("Device");
constexpr QLatin1String s_data("Data");

/// Creates a document that contains the command alone. Returns the command's element.
XmlElement newCommand(QLatin1String a_name)
{
    return XmlElement::create(s_root).appendChild(a_name);
}

XmlElement newCommand(QLatin1String a_name, QLatin1String a_attribute, const QString& a_sId)
{
    XmlElement command = newCommand(a_name);
    command.setAttribute(a_attribute, a_sId);
    return command;
}

/// Reads a command without parts.
template<auto Signal>
bool readBare(ReceivedCommand& a_received)
{
    Q_EMIT(a_received.receiver()->*Signal)();
    return true;
}

/// Reads a command whose only part is a payload.
template<auto Signal, const QLatin1String& Name>
bool readPayload(ReceivedCommand& a_received)
{
    if (!a_received.element().hasChildText(Name)) {
        return false;
    }
    Q_EMIT(a_received.receiver()->*Signal)(a_received.takePayload(Name));
    return true;
}

bool readRegisterSimulation(ReceivedCommand& a_received)
{
    const XmlElement& element = a_received.element();
    SimulationDeviceConfiguration device;
    if (!element.hasChildText(s_simulationDevice) || !device.fromXml(element.childUtf8(s_simulationDevice))) {
        return false;
    }
    Q_EMIT a_received.receiver()->registerSimulationDevice(element.attribute(s_id), device);
    return true;
}

} // namespace

void Communication::sendRegisterSimulationDevice(const QString& a_sId,
                                                 const SimulationDeviceConfiguration& a_device)
{
    XmlElement command = newCommand(s_registerSimulation, s_id, a_sId);
    command.setChildUtf8(s_simulationDevice, a_device.toXml());
    sendCommand(command);
}

static bool readStateUpdate(ReceivedCommand& a_received)
{
    const XmlElement& element = a_received.element();
    SimulationDeviceState state;
    if (!element.hasChildText(s_state) || !state.fromXml(element.childUtf8(s_state))) {
        return false;
    }
    Q_EMIT a_received.receiver()->simulationDeviceStateUpdate(element.attribute(s_id), state);
    return true;
}

void Communication::sendSimulationDeviceStateUpdate(const QString& a_sId,
                                                    const SimulationDeviceState& a_state)
{
    XmlElement command = newCommand(s_stateUpdate, s_id, a_sId);
    command.setChildUtf8(s_state, a_state.toXml());
    sendCommand(command);
}

static bool readUnregisterSimulation(ReceivedCommand& a_received)
{
    Q_EMIT a_received.receiver()->unregisterSimulationDevice(a_received.element().attribute(s_id));
    return true;
}

void Communication::sendUnregisterSimulationDevice(const QString& a_sId)
{
    sendCommand(newCommand(s_unregisterSimulation, s_id, a_sId));
}

static bool readAddJxDevice(ReceivedCommand& a_received)
{
    const XmlElement& element = a_received.element();
    if (!element.hasAttribute(s_deviceId) || !element.hasChildText(s_jxDeviceDescriptor)) {
        return false;
    }
    const QString sDeviceId = element.attribute(s_deviceId);
    Q_EMIT a_received.receiver()->addJxDevice(sDeviceId, a_received.takePayload(s_jxDeviceDescriptor));
    return true;
}

void Communication::sendAddJxDevice(const QString& a_sDeviceId, const QByteArray& a_jxDefinition)
{
    sendPayload(newCommand(s_addJxDevice, s_deviceId, a_sDeviceId), s_jxDeviceDescriptor, a_jxDefinition);
}

static bool readRemoveJxDevice(ReceivedCommand& a_received)
{
    if (!a_received.element().hasAttribute(s_deviceId)) {
        return false;
    }
    Q_EMIT a_received.receiver()->removeJxDevice(a_received.element().attribute(s_deviceId));
    return true;
}

void Communication::sendRemoveJxDevice(const QString& a_sDeviceId)
{
    sendCommand(newCommand(s_removeJxDevice, s_deviceId, a_sDeviceId));
}

static bool readAcceptSimulationDevice(ReceivedCommand& a_received)
{
    const XmlElement& element = a_received.element();
    if (!element.hasChildText(s_confirmation)) {
        return false;
    }
    Q_EMIT a_received.receiver()->acceptSimulationDevice(element.attribute(s_id),
                                                         element.childText(s_confirmation));
    return true;
}

void Communication::sendAcceptSimulationDevice(const QString& a_sId, const QString& a_sConfirmation)
{
    XmlElement command = newCommand(s_acceptSimulationDevice, s_id, a_sId);
    command.setChildText(s_confirmation, a_sConfirmation);
    sendCommand(command);
}

static constexpr auto readLoadScenario = readPayload<&Communication::loadScenario, s_scenarioData>;

void Communication::sendLoadScenario(const QByteArray& a_scenarioData)
{
    sendPayload(newCommand(s_loadScenario), s_scenarioData, a_scenarioData);
}

static constexpr auto readUnloadScenario = readBare<&Communication::unloadScenario>;

void Communication::sendUnloadScenario()
{
    sendCommand(newCommand(s_unloadScenario));
}

static constexpr auto readLoadDeployment = readPayload<&Communication::loadDeployment, s_deploymentData>;

void Communication::sendLoadDeployment(const QByteArray& a_deploymentData)
{
    sendPayload(newCommand(s_loadDeployment), s_deploymentData, a_deploymentData);
}

static bool readStartScenario(ReceivedCommand& a_received)
{
    bool bTimestamp = false;
    bool bTime = false;
    const quint64 uiTimestamp = a_received.element().childText(s_timestamp).toULongLong(&bTimestamp);
    const uint uiTime = a_received.element().childUnsigned(s_scenarioTime, &bTime);
    if (!bTimestamp || !bTime) {
        return false;
    }
    Q_EMIT a_received.receiver()->startScenario(uiTimestamp, uiTime);
    return true;
}

void Communication::sendStartScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime)
{
    XmlElement command = newCommand(s_startScenario);
    command.setChildText(s_timestamp, QString::number(a_uiTimestamp));
    command.setChildText(s_scenarioTime, QString::number(a_uiScenarioTime));
    sendCommand(command);
}

static bool readPauseScenario(ReceivedCommand& a_received)
{
    bool bTime = false;
    const uint uiTime = a_received.element().childUnsigned(s_scenarioTime, &bTime);
    if (bTime) {
        Q_EMIT a_received.receiver()->pauseScenario(uiTime);
    }
    return bTime;
}

void Communication::sendPauseScenario(uint a_uiScenarioTime)
{
    XmlElement command = newCommand(s_pauseScenario);
    command.setChildText(s_scenarioTime, QString::number(a_uiScenarioTime));
    sendCommand(command);
}

static constexpr auto readStopScenario = readBare<&Communication::stopScenario>;

void Communication::sendStopScenario()
{
    sendCommand(newCommand(s_stopScenario));
}

static bool readTestMode(ReceivedCommand& a_received)
{
    bool bValid = false;
    const bool bOn = a_received.element().childBool(s_on, &bValid);
    if (bValid) {
        Q_EMIT a_received.receiver()->testModeOn(bOn);
    }
    return bValid;
}

void Communication::sendTestModeOn(bool a_bOn)
{
    XmlElement command = newCommand(s_testMode);
    command.setChildText(s_on, boolText(a_bOn));
    sendCommand(command);
}

/// A device is added even when its record lacks fields or is not XML; missing fields get
/// their default values. One trace reports all records that are not XML, because there
/// may be many.
static bool readResponseSimulationDevices(ReceivedCommand& a_received)
{
    QVector<SimulationDeviceConfiguration> devices;
    qsizetype iUnreadable = 0;
    for (XmlElement element = a_received.element().firstChild(s_device); !element.isNull();
         element = element.nextSibling(s_device)) {
        SimulationDeviceConfiguration device;
        const QByteArray record = element.childUtf8(s_data);
        if (XmlElement::parse(record).isNull()) {
            ++iUnreadable;
        } else {
            static_cast<void>(device.fromXml(record));
        }
        devices.append(device);
    }
    if (iUnreadable > 0) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot read %1 of %2 device records")
                .arg(QString::number(iUnreadable), QString::number(devices.size()));
        });
    }
    Q_EMIT a_received.receiver()->responseSimulationDevices(devices);
    return true;
}

void Communication::sendResponseSimulationDevices(const QVector<SimulationDeviceConfiguration>& a_devices)
{
    XmlElement command = newCommand(s_responseSimulationDevices);
    for (const SimulationDeviceConfiguration& device : a_devices) {
        command.appendChild(s_device).setChildUtf8(s_data, device.toXml());
    }
    sendCommand(command);
}

static constexpr auto readAcquireServer = readBare<&Communication::commandAcquireServer>;

void Communication::sendCommandAcquireServer()
{
    sendCommand(newCommand(s_acquireServer));
}

static constexpr auto readReleaseServer = readBare<&Communication::commandReleaseServer>;

void Communication::sendCommandReleaseServer()
{
    sendCommand(newCommand(s_releaseServer));
}

static constexpr auto readRequestSimulationDevices =
    readBare<&Communication::commandRequestSimulationDevices>;

void Communication::sendCommandRequestSimulationDevices()
{
    sendCommand(newCommand(s_requestSimulationDevices));
}

namespace {

struct Command
{
    QLatin1String name;
    bool (*read)(ReceivedCommand&) = nullptr;
};

constexpr std::array<Command, 17> s_commands{{
    {s_registerSimulation, readRegisterSimulation},
    {s_unregisterSimulation, readUnregisterSimulation},
    {s_loadScenario, readLoadScenario},
    {s_loadDeployment, readLoadDeployment},
    {s_unloadScenario, readUnloadScenario},
    {s_startScenario, readStartScenario},
    {s_pauseScenario, readPauseScenario},
    {s_stopScenario, readStopScenario},
    {s_acquireServer, readAcquireServer},
    {s_releaseServer, readReleaseServer},
    {s_addJxDevice, readAddJxDevice},
    {s_removeJxDevice, readRemoveJxDevice},
    {s_stateUpdate, readStateUpdate},
    {s_testMode, readTestMode},
    {s_acceptSimulationDevice, readAcceptSimulationDevice},
    {s_requestSimulationDevices, readRequestSimulationDevices},
    {s_responseSimulationDevices, readResponseSimulationDevices},
}};

} // namespace

std::optional<PeekedNames> peekedNames(const QByteArray& a_document)
{
    constexpr qsizetype iShort = 16'384;
    constexpr qsizetype iPiece = 1024; // enough for the names that our senders write
    constexpr qsizetype iMost = 262'144;
    if (a_document.size() <= iShort) {
        return std::nullopt;
    }
    QXmlStreamReader reader;
    reader.setNamespaceProcessing(false); // the names have no prefixes
    PeekedNames names;
    for (qsizetype i = 0; i < std::min(iMost, a_document.size()); i += iPiece) {
        reader.addData(a_document.mid(i, iPiece));
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement) {
                continue;
            }
            if (!names.root.isEmpty()) {
                names.command = reader.name().toString();
                return names;
            }
            names.root = reader.name().toString();
        }
        if (reader.error() != QXmlStreamReader::PrematureEndOfDocumentError) {
            break;
        }
    }
    return names;
}

ReceivedCommand::ReceivedCommand(XmlElement a_element, bool a_bCompressed, Communication* a_pReceiver)
    : m_element(std::move(a_element))
    , m_bCompressed(a_bCompressed)
    , m_pReceiver(a_pReceiver)
{}

QByteArray ReceivedCommand::takePayload(QLatin1String a_name)
{
    QByteArray text = m_element.childUtf8(a_name);
    m_element = XmlElement();
    QString sError;
    QByteArray data = uncompressPayload(std::move(text), m_bCompressed, &sError);
    if (!sError.isEmpty()) {
        traceError(s_szSource, [&] { return QStringLiteral("Cannot decode %1: %2").arg(a_name, sError); });
    }
    return data;
}

bool ReceivedCommand::process()
{
    const QString sName = m_element.tagName();
    const auto it = std::find_if(s_commands.begin(), s_commands.end(),
                                 [&](const Command& a_command) { return a_command.name == sName; });
    return it != s_commands.end() && it->read(*this);
}

} // namespace Simulation

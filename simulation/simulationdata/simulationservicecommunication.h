#ifndef SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_H
#define SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

#include <functional>
#include <utility>

class QTcpSocket;
class XmlSeparator;

namespace Simulation {

class XmlElement;

/// One end of the protocol by which editors, the simulation service and
/// simulation devices talk over TCP. Both ends are of this class: every command
/// has a slot that sends it and a signal for its arrival.
///
/// Lives on the thread of the socket's event loop. Signals come from the event
/// loop, never out of a read or a send; the object may be deleted in a slot on
/// one of them. Commands that are unknown, incomplete or broken are traced and
/// passed over. What cannot be parsed as a stream of documents is traced once,
/// reported to the stream error handler, and ends the reading until the next
/// connection or setSocket().
///
/// Texts that are sent lose the characters that XML forbids.
class SIMULATIONDATA_EXPORT SimulationServiceCommunication : public QObject
{
    Q_OBJECT

public:
    /// `a_pSocket` may be null, see setSocket(). There is no parent.
    explicit SimulationServiceCommunication(QTcpSocket* a_pSocket);
    ~SimulationServiceCommunication() override;

    /// Talks over that socket from now on; it is not owned and may die first.
    ///
    /// Null ends the talk: nothing is received over the socket in use any more,
    /// not even commands that have arrived and wait for the event loop, and what
    /// is sent goes nowhere. The socket's read buffer is without bound again, so
    /// the socket notices its end unread, too: close it, or read it. A socket that
    /// was set before begins afresh. Another
    /// socket takes the sending over, while the earlier one is still listened to;
    /// set null between to end it.
    ///
    /// When the socket connects anew, a half command of the old connection is
    /// forgotten: it may be set once for all its connections.
    void setSocket(QTcpSocket* a_pSocket);

    /// Null also when it has died.
    [[nodiscard]] QTcpSocket* socket() const;

    /// Whether scenarios, deployments and device descriptors are compressed:
    /// true at first. Both ends must agree: the commands do not carry it.
    /// Without compression only Latin-1 text without control characters arrives
    /// as it was.
    void setCompression(bool a_bOn) { m_bCompression = a_bOn; }

    /// Whether a command could not be handed to the socket whole since it was
    /// set or has connected: the peer does not read, is gone, or would refuse
    /// the command for its size. It lacks that command, so drop it.
    [[nodiscard]] bool hasLostCommands() const { return m_bLostCommands; }

    /// Decides whether a command that has arrived is processed, by its name on the
    /// wire, for example "LoadScenario", and the bytes of its document. The name is
    /// empty when the first 256 KiB of a larger document do not show it.
    using CommandFilter = std::function<bool(const QString& a_sCommand, qsizetype a_iBytes)>;

    /// Has the filter asked once about every command, known or not, before its
    /// parts are looked at and its payload is decoded: a receiver that refuses it
    /// spares itself their time and memory, which may be a thousand times those
    /// of the document. A refused command is traced and not signalled. Without a
    /// filter, or with an empty one, all commands are processed.
    ///
    /// The filter is called from the event loop, on the thread of the socket. It
    /// may send, but must neither delete this object nor set a filter or a socket.
    void setCommandFilter(CommandFilter a_filter) { m_filter = std::move(a_filter); }

    /// Takes the error text, which may quote what the peer sent and be long.
    using StreamErrorHandler = std::function<void(const QString& a_sError)>;

    /// Has the handler called when nothing more is read over the socket in use,
    /// because what it receives is not a stream of documents or exceeds a limit:
    /// once for each connection, from the event loop, after the signals of all
    /// commands that were received before. The handler may close the socket, set
    /// another one, or delete this object later. An empty one is not called.
    void setStreamErrorHandler(StreamErrorHandler a_handler) { m_streamErrorHandler = std::move(a_handler); }

    /// How much is held of a document that has begun to arrive over the socket in
    /// use, and whose end has not (bytes): 0 between documents and without a
    /// socket.
    [[nodiscard]] qint64 unfinishedBytes() const;

    /// Sends commands through the slots of the object that it is given.
    using CommandSender = std::function<void(SimulationServiceCommunication&)>;

    /// Returns the bytes that the slots called by the function would write to a
    /// socket, so that a command for many peers is built and compressed once.
    /// Compresses unless the function calls setCompression(false). Empty, after
    /// one trace, when a command exceeds Limits::DocumentBytes.
    [[nodiscard]] static QByteArray encode(const CommandSender& a_send);

    /// Writes bytes of encode() to the socket, like the slots that send. A caller
    /// that gives them in pieces sends nothing else in between.
    void sendEncoded(const QByteArray& a_bytes);

    /// The text by which the service confirms a device, 28 characters: made
    /// from its id, machine, machine id and type. The device compares it with
    /// its own.
    [[nodiscard]] static QString createConfirmation(const SimulationDeviceConfiguration& a_device);

    // The order of signals and slots is part of the interface: keep it.
Q_SIGNALS:
    void registerSimulationDevice(const QString& a_sId, const SimulationDeviceConfiguration& a_device);
    void simulationDeviceStateUpdate(const QString& a_sId, const SimulationDeviceState& a_state);
    void unregisterSimulationDevice(const QString& a_sId);

    /// The descriptor is empty when it could not be decompressed, and so are a
    /// scenario and a deployment.
    void addJxDevice(const QString& a_sDeviceId, const QByteArray& a_jxDefinition);
    void removeJxDevice(const QString& a_sDeviceId);

    /// The confirmation is as received: compare it with createConfirmation().
    void acceptSimulationDevice(const QString& a_sId, const QString& a_sConfirmation);
    void loadScenario(const QByteArray& a_scenarioData);
    void unloadScenario();
    void loadDeployment(const QByteArray& a_deploymentData);

    /// At the timestamp (us since 1970) the scenario time is the given one (ms).
    void startScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime);
    void pauseScenario(uint a_uiScenarioTime);
    void stopScenario();
    void testModeOn(bool a_bOn);

    /// Fields that a device's record lacks have the values of a default one.
    void responseSimulationDevices(const QVector<SimulationDeviceConfiguration>& a_devices);
    void commandAcquireServer();
    void commandReleaseServer();
    void commandRequestSimulationDevices();

public Q_SLOTS:
    void sendRegisterSimulationDevice(const QString& a_sId, const SimulationDeviceConfiguration& a_device);
    void sendSimulationDeviceStateUpdate(const QString& a_sId, const SimulationDeviceState& a_state);
    void sendUnregisterSimulationDevice(const QString& a_sId);
    void sendAddJxDevice(const QString& a_sDeviceId, const QByteArray& a_jxDefinition);
    void sendRemoveJxDevice(const QString& a_sDeviceId);
    void sendAcceptSimulationDevice(const QString& a_sId, const QString& a_sConfirmation);
    void sendLoadScenario(const QByteArray& a_scenarioData);
    void sendUnloadScenario();
    void sendLoadDeployment(const QByteArray& a_deploymentData);
    void sendStartScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime);
    void sendPauseScenario(uint a_uiScenarioTime);
    void sendStopScenario();
    void sendTestModeOn(bool a_bOn);
    void sendResponseSimulationDevices(const QVector<SimulationDeviceConfiguration>& a_devices);
    void sendCommandAcquireServer();
    void sendCommandReleaseServer();
    void sendCommandRequestSimulationDevices();

private Q_SLOTS:
    // The names of these parameters are part of the interface.
    // NOLINTBEGIN(readability-identifier-naming)
    void slotXmlReceived(const QByteArray& Xml);
    void slotErrorOccured(const QString& sErrorString);
    // NOLINTEND(readability-identifier-naming)

private:
    [[nodiscard]] bool isRefused(const QString& a_sCommand, qsizetype a_iBytes) const;
    void dropSeparators(const QTcpSocket* a_pSocket);
    [[nodiscard]] bool isSending() const { return m_pSeparator != nullptr || m_pEncoded != nullptr; }
    void sendCommand(const XmlElement& a_command);
    void sendPayload(XmlElement a_command, const QString& a_sName, const QByteArray& a_data);

    QPointer<QTcpSocket> m_pSocket;
    XmlSeparator* m_pSeparator = nullptr; ///< child
    QByteArray* m_pEncoded = nullptr;     ///< where encode() has the commands written; not owned
    CommandFilter m_filter;               ///< empty = all commands are processed
    StreamErrorHandler m_streamErrorHandler;
    bool m_bCompression = true;
    bool m_bLostCommands = false;
};

} // namespace Simulation

#endif

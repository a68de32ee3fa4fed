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

/// One end of the TCP protocol between editors, the simulation service and
/// simulation devices. Both ends use this class: every command has a slot that sends
/// it and a signal for its arrival.
///
/// Lives on the thread of the socket's event loop. Signals are emitted from the event
/// loop, never inside a read or a send; a slot may delete the object. Unknown,
/// incomplete and invalid commands are traced and skipped. Bytes that are not a
/// stream of documents are an error: it is traced once, passed to the stream error
/// handler, and ends the reading until the next connection or setSocket().
///
/// Characters that XML forbids are removed from the texts that are sent.
class SIMULATIONDATA_EXPORT SimulationServiceCommunication : public QObject
{
    Q_OBJECT

public:
    /// `a_pSocket` may be null, see setSocket(). There is no parent.
    explicit SimulationServiceCommunication(QTcpSocket* a_pSocket);
    ~SimulationServiceCommunication() override;

    /// Sends and receives over that socket from now on. The socket is not owned and
    /// may be deleted first.
    ///
    /// Null ends the communication: no command is received over the current socket
    /// any more, not even one that has arrived and waits for the event loop, and
    /// nothing is sent. The socket's read buffer has no limit then, so the socket
    /// detects the end of its connection even with unread bytes: close it, or read it.
    /// Setting the same socket again starts with an empty stream. When another socket
    /// replaces the current one, commands are sent over the new one and still received
    /// over both; set null in between to end the former.
    ///
    /// A socket may be set once for all its connections: a new connection drops an
    /// unfinished command of the old one.
    void setSocket(QTcpSocket* a_pSocket);

    /// The socket in use; null if none is set or it has been deleted.
    [[nodiscard]] QTcpSocket* socket() const;

    /// Whether scenarios, deployments and device descriptors are compressed; true by
    /// default. Both ends must use the same value, because commands do not contain it.
    /// Without compression only Latin-1 text without control characters arrives
    /// unchanged.
    void setCompression(bool a_bOn) { m_bCompression = a_bOn; }

    /// Whether a command could not be passed completely to the socket since the socket
    /// was set or has connected: the peer does not read, has disconnected, or would
    /// refuse the command because of its size. The peer lacks that command, so close
    /// the connection.
    [[nodiscard]] bool hasLostCommands() const { return m_bLostCommands; }

    /// Decides whether a command that has arrived is processed, by its name on the
    /// wire, for example "LoadScenario", and the bytes of its document. The name is
    /// empty when the first 256 KiB of a larger document do not show it.
    using CommandFilter = std::function<bool(const QString& a_sCommand, qsizetype a_iBytes)>;

    /// Sets a filter that is asked once about every command, known or not, before its
    /// parts are read and its payload is decoded. Refusing a command saves their time
    /// and memory, which may be a thousand times those of the document. A refused
    /// command is traced and not signalled. Without a filter, or with an empty one, all
    /// commands are processed.
    ///
    /// The filter is called from the event loop, on the thread of the socket. It
    /// may send, but must neither delete this object nor set a filter or a socket.
    void setCommandFilter(CommandFilter a_filter) { m_filter = std::move(a_filter); }

    /// Receives the error text, which may be long and quote bytes of the peer.
    using StreamErrorHandler = std::function<void(const QString& a_sError)>;

    /// Sets a handler that is called when reading from the socket in use has ended,
    /// because its bytes are not a stream of documents or exceed a limit. It is called
    /// once for each connection, from the event loop, after the signals of all commands
    /// that were received before. The handler may close the socket, set another
    /// socket or handler, or delete this object later. An empty handler is not called.
    void setStreamErrorHandler(StreamErrorHandler a_handler) { m_streamErrorHandler = std::move(a_handler); }

    /// The number of bytes held of a document that has arrived only in part over the
    /// socket in use; 0 between documents and without a socket.
    [[nodiscard]] qint64 unfinishedBytes() const;

    /// Sends commands through the slots of the given object.
    using CommandSender = std::function<void(SimulationServiceCommunication&)>;

    /// Returns the bytes that the slots called by the function would write to a
    /// socket, so that a command for many peers is built and compressed once.
    /// Compresses unless the function calls setCompression(false). Empty, after
    /// one trace, when a command exceeds Limits::DocumentBytes.
    [[nodiscard]] static QByteArray encode(const CommandSender& a_send);

    /// Writes bytes of encode() to the socket, like the slots that send. A caller that
    /// passes them in pieces must not send anything else in between.
    void sendEncoded(const QByteArray& a_bytes);

    /// The text with which the service confirms a device: 28 characters, made from the
    /// device's id, machine, machine id and type. The device compares it with the text
    /// that it has made itself.
    [[nodiscard]] static QString createConfirmation(const SimulationDeviceConfiguration& a_device);

    // The order of signals and slots is part of the interface and must not change.
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

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
/// Lives on the thread of the socket's event loop. Signals are emitted from the
/// event loop, never inside a read or a send, so a slot may delete the object.
/// Unknown, incomplete and invalid commands are traced and skipped.
///
/// Bytes that are not a stream of documents are an error. The error is traced once
/// and passed to the stream error handler. After the error, nothing is read until
/// the next connection or setSocket().
///
/// Characters that XML forbids are removed from the texts that are sent.
class SIMULATIONDATA_EXPORT SimulationServiceCommunication : public QObject
{
    Q_OBJECT

public:
    /// `a_pSocket` may be null, see setSocket(). The object has no parent.
    explicit SimulationServiceCommunication(QTcpSocket* a_pSocket);
    ~SimulationServiceCommunication() override;

    /// Sends and receives over the socket from now on. The socket is not owned and
    /// may be deleted before this object.
    ///
    /// Null ends the communication. No command is sent or received over the current
    /// socket any more. Commands that have arrived and wait for the event loop are not
    /// received, either. The socket's read buffer then has no limit, so the socket
    /// detects the end of its connection even with unread bytes. Close the socket, or
    /// read from it.
    ///
    /// Setting the same socket again starts with an empty stream. When another
    /// socket replaces the current one, commands are sent over the new socket and
    /// received over both. Set null in between to end the communication over the
    /// former socket.
    ///
    /// One socket may be used for several connections without setting it again. A
    /// new connection drops an unfinished command of the old one.
    void setSocket(QTcpSocket* a_pSocket);

    /// The socket in use; null if none is set or it has been deleted.
    [[nodiscard]] QTcpSocket* socket() const;

    /// Sets whether scenarios, deployments and device descriptors are compressed;
    /// true by default. Both ends must use the same value, because a command does not
    /// contain this value. Without compression, only Latin-1 text without control
    /// characters arrives unchanged.
    void setCompression(bool a_bOn) { m_bCompression = a_bOn; }

    /// Whether a command was lost since the socket was set or last connected. A lost
    /// command was not passed completely to the socket: the peer does not read, has
    /// disconnected, or would refuse the command because of its size. The peer lacks
    /// the lost command, so close the connection.
    [[nodiscard]] bool hasLostCommands() const { return m_bLostCommands; }

    /// Decides whether a received command is processed. The arguments are the name
    /// of the command in the protocol, for example "LoadScenario", and the number of
    /// bytes of its document. The name is empty when it is not within the first
    /// 256 KiB of a larger document.
    using CommandFilter = std::function<bool(const QString& a_sCommand, qsizetype a_iBytes)>;

    /// Sets a filter that is called once for every command, known or not. The filter
    /// is called before the parts of the command are read and its payload is decoded.
    /// Refusing a command saves the time and memory of these two steps, which may be a
    /// thousand times those for the document itself. A refused command is traced and
    /// not signalled. Without a filter, or with an empty one, all commands are
    /// processed.
    ///
    /// The filter is called from the event loop, on the thread of the socket. It may
    /// send commands. It must neither delete this object nor set a filter or a
    /// socket.
    void setCommandFilter(CommandFilter a_filter) { m_filter = std::move(a_filter); }

    /// Receives the error text, which may be long and contain bytes of the peer.
    using StreamErrorHandler = std::function<void(const QString& a_sError)>;

    /// Sets a handler that is called when reading from the socket in use has ended
    /// because of an error. The bytes are then not a stream of documents or exceed a
    /// limit. The handler is called once for each connection, from the event loop,
    /// after the signals of all commands received before. The handler may close the
    /// socket, set another socket or handler, or call deleteLater() on this object. An
    /// empty handler is not called.
    void setStreamErrorHandler(StreamErrorHandler a_handler) { m_streamErrorHandler = std::move(a_handler); }

    /// The number of bytes of a partly received document on the socket in use. 0
    /// between documents and without a socket.
    [[nodiscard]] qint64 unfinishedBytes() const;

    /// A function that sends commands through the slots of the given object.
    using CommandSender = std::function<void(SimulationServiceCommunication&)>;

    /// Calls the function and returns the bytes that its commands would write to a
    /// socket. A command for many peers is thus built and compressed once.
    /// Compresses unless the function calls setCompression(false). Empty, after one
    /// trace, when a command exceeds Limits::DocumentBytes.
    [[nodiscard]] static QByteArray encode(const CommandSender& a_send);

    /// Writes bytes of encode() to the socket, like the slots that send. When the
    /// bytes are passed in pieces, no other command may be sent in between.
    void sendEncoded(const QByteArray& a_bytes);

    /// Returns the text with which the service confirms a device. It has 28
    /// characters and is made from the device's id, machine, machine id and type.
    /// The device makes the same text and compares both.
    [[nodiscard]] static QString createConfirmation(const SimulationDeviceConfiguration& a_device);

    // The order of signals and slots is part of the interface and must not change.
Q_SIGNALS:
    void registerSimulationDevice(const QString& a_sId, const SimulationDeviceConfiguration& a_device);
    void simulationDeviceStateUpdate(const QString& a_sId, const SimulationDeviceState& a_state);
    void unregisterSimulationDevice(const QString& a_sId);

    /// A descriptor that could not be decompressed is empty. The same applies to
    /// scenarios and deployments.
    void addJxDevice(const QString& a_sDeviceId, const QByteArray& a_jxDefinition);
    void removeJxDevice(const QString& a_sDeviceId);

    /// The confirmation is unchecked: compare it with createConfirmation().
    void acceptSimulationDevice(const QString& a_sId, const QString& a_sConfirmation);
    void loadScenario(const QByteArray& a_scenarioData);
    void unloadScenario();
    void loadDeployment(const QByteArray& a_deploymentData);

    /// The scenario time is `a_uiScenarioTime` (ms) at `a_uiTimestamp` (us since
    /// 1970).
    void startScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime);
    void pauseScenario(uint a_uiScenarioTime);
    void stopScenario();
    void testModeOn(bool a_bOn);

    /// A field that is missing in a device's record has its default value.
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
    XmlSeparator* m_pSeparator = nullptr; ///< a child of this object
    QByteArray* m_pEncoded = nullptr;     ///< target of encode(), not owned; null = bytes are sent
    CommandFilter m_filter;               ///< empty = all commands are processed
    StreamErrorHandler m_streamErrorHandler;
    bool m_bCompression = true;
    bool m_bLostCommands = false;
};

} // namespace Simulation

#endif

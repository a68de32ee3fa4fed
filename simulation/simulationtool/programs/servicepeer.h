#ifndef SIMULATIONTOOL_SERVICEPEER_H
#define SIMULATIONTOOL_SERVICEPEER_H

#include "console/loglimit.h"
#include "outbox.h"
#include "stallwatch.h"

#include "simulationdata/simulationservicecommunication.h"

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>

#include <chrono>
#include <memory>

class QTcpSocket;

namespace SimulationTool {

/// One connection of the service: an editor, or a program with one or more devices. After
/// the signal lost() the owner closes and deletes the peer. Used on the service's thread.
///
/// Every peer is read and written in small pieces, so that a peer with much traffic
/// does not delay the others.
class ServicePeer : public QObject
{
    Q_OBJECT

public:
    /// Takes ownership of a connected socket. `a_pTotal` counts the pending bytes of all
    /// peers (see pendingBytes()); a command for several peers counts once. The peer is
    /// lost when it does not read pending bytes or leaves a command unfinished for the
    /// timeout.
    ServicePeer(QTcpSocket* a_pSocket, std::shared_ptr<qint64> a_pTotal, std::chrono::milliseconds a_timeout,
                QObject* a_pParent);
    ~ServicePeer() override;

    [[nodiscard]] Simulation::SimulationServiceCommunication& communication() { return m_communication; }

    /// Queues a command after the waiting ones. Nothing is sent before the event loop
    /// runs again.
    void send(const OutgoingCommandPtr& a_pCommand);

    /// Queues a report, which replaces a waiting report with the same key (see Outbox).
    /// Nothing is sent before the event loop runs again.
    void report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand);

    /// The bytes that the service holds for this peer: an unfinished received command, and
    /// commands that the peer has not read yet.
    [[nodiscard]] qint64 pendingBytes() const { return m_iUnfinished + m_outbox.bytes(); }

    /// Ends the connection at once. Afterwards no bytes are received and no signal is
    /// emitted.
    void close();

    /// Logs an event of the peer. Frequent lines are dropped (see LogLimit), except a
    /// final one.
    void log(const QString& a_sText, bool a_bFinal = false);

    // The ids of the devices registered over this connection; maintained by the
    // owner.
    [[nodiscard]] QSet<QString>& deviceIds() { return m_deviceIds; }
    [[nodiscard]] bool isDevice() const { return !m_deviceIds.isEmpty(); }

Q_SIGNALS:
    void logged(const QString& a_sLine);

    /// The pending bytes of all peers may have increased.
    void pendingGrew();

    /// The connection has ended, or must be closed after an error. The reason is empty
    /// when the peer closed the connection; everything that the peer sent before has then
    /// been received.
    void lost(const QString& a_sReason);

private Q_SLOTS:
    void slotDisconnected();
    void slotWrite();

private:
    void connectSocket();
    void noteReceived();
    void scheduleWrite();
    void fillSocket();
    [[nodiscard]] bool isConnected() const;

    QTcpSocket* m_pSocket; ///< child
    Simulation::SimulationServiceCommunication m_communication;
    QString m_sName;
    QSet<QString> m_deviceIds;
    LogLimit m_log;
    const std::shared_ptr<qint64> m_pTotal; ///< pending bytes of all peers
    qint64 m_iUnfinished = 0;               ///< bytes of an unfinished command
    Outbox m_outbox;
    StallWatch m_receiving;
    StallWatch m_sending;
    bool m_bWriteScheduled = false;
    bool m_bWriting = false; ///< true: bytesWritten must not fill the socket, so that a turn ends
};

} // namespace SimulationTool

#endif

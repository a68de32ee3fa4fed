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

/// One connection of the service: an editor, or a program with one device or
/// more. It ends with lost(); its owner then closes and deletes it.
///
/// Every peer is read from and written to a little at a time, so that one that
/// sends or is sent much delays no other.
class ServicePeer : public QObject
{
    Q_OBJECT

public:
    /// Takes a connected socket over. `a_pTotal` counts the bytes that wait for
    /// all peers. The peer is lost when for the given time it reads nothing of
    /// what waits for it, or leaves a command unfinished.
    ServicePeer(QTcpSocket* a_pSocket, std::shared_ptr<qint64> a_pTotal, std::chrono::milliseconds a_timeout,
                QObject* a_pParent);
    ~ServicePeer() override;

    [[nodiscard]] Simulation::SimulationServiceCommunication& communication() { return m_communication; }

    /// Has a command leave after those that wait. Nothing is sent before control
    /// is back in the event loop.
    void send(const OutgoingCommandPtr& a_pCommand);

    /// The same for a report, which supersedes one of the same key that waits.
    void report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand);

    /// What this peer makes us hold: of a command that it has not finished, and
    /// of those that wait for it to read (bytes).
    [[nodiscard]] qint64 pendingBytes() const { return m_iUnfinished + m_outbox.bytes(); }

    /// Ends the connection at once. Nothing is received or told any more.
    void close();

    /// Tells what happens to it; what comes too often is left out unless it is
    /// final.
    void tell(const QString& a_sText, bool a_bFinal = false);

    // The devices that are registered through it, by id; kept by the owner.
    [[nodiscard]] QSet<QString>& deviceIds() { return m_deviceIds; }
    [[nodiscard]] bool isDevice() const { return !m_deviceIds.isEmpty(); }

Q_SIGNALS:
    void told(const QString& a_sLine);

    /// More bytes wait for all peers than before.
    void pendingGrew();

    /// The reason is empty when the peer just left. What it sent before has been
    /// received.
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
    const std::shared_ptr<qint64> m_pTotal; ///< bytes that wait for all peers
    qint64 m_iUnfinished = 0;               ///< bytes of a command without its end
    Outbox m_outbox;
    StallWatch m_receiving;
    StallWatch m_sending;
    bool m_bWriteScheduled = false;
    bool m_bWriting = false;
};

} // namespace SimulationTool

#endif

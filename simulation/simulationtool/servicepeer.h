#ifndef SIMULATIONTOOL_SERVICEPEER_H
#define SIMULATIONTOOL_SERVICEPEER_H

#include "loglimit.h"

#include "simulationdata/simulationservicecommunication.h"

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>

class QTcpSocket;

namespace SimulationTool {

/// One connection of the service: an editor, or a program with one device or
/// more. It ends with lost(); its owner then closes and deletes it.
class ServicePeer : public QObject
{
    Q_OBJECT

public:
    /// Takes a connected socket over.
    ServicePeer(QTcpSocket* a_pSocket, QObject* a_pParent);

    [[nodiscard]] Simulation::SimulationServiceCommunication& communication() { return m_communication; }

    /// Queues an encoded command; see hasLostCommands().
    void send(const QByteArray& a_command);

    /// Whether it did not get something that it should have got, because it does
    /// not read: it is of no use any more. One that has gone lacks nothing.
    [[nodiscard]] bool hasLostCommands() const;

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

    /// The reason is empty when the peer just left. What it sent before has been
    /// received.
    void lost(const QString& a_sReason);

private Q_SLOTS:
    void slotUnreadable(const QString& a_sReason);
    void slotDisconnected();

private:
    [[nodiscard]] bool isConnected() const;

    QTcpSocket* m_pSocket; ///< child
    Simulation::SimulationServiceCommunication m_communication;
    QString m_sName;
    QSet<QString> m_deviceIds;
    LogLimit m_log;
    bool m_bLostCommands = false;
};

} // namespace SimulationTool

#endif

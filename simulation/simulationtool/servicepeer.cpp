#include "servicepeer.h"

#include "serveraddress.h"
#include "terminaltext.h"

#include "simulationdata/simulationlimits.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxLine = 300; ///< characters
constexpr qint64 s_iWindow = 10'000;  ///< ms

} // namespace

ServicePeer::ServicePeer(QTcpSocket* a_pSocket, QObject* a_pParent)
    : QObject(a_pParent)
    , m_pSocket(a_pSocket)
    , m_communication(a_pSocket)
    , m_sName(addressText(a_pSocket->peerAddress(), a_pSocket->peerPort()))
{
    m_pSocket->setParent(this);
    connect(&m_log, &LogLimit::told, this,
            [this](const QString& a_sLine) { Q_EMIT told(m_sName + QStringLiteral(": ") + a_sLine); });
    // Commands are small, and a machine that was switched off says nothing.
    m_pSocket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_pSocket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    // What was received just before the end still waits in the event loop.
    connect(m_pSocket, &QTcpSocket::disconnected, this, &ServicePeer::slotDisconnected, Qt::QueuedConnection);
    // The part that reads the stream says when it gives up; what it belongs to
    // would only be silent from then on.
    for (const QObject* const pPart : m_communication.children()) {
        connect(pPart, SIGNAL(errorOccured(QString)), this, SLOT(slotUnreadable(QString)),
                Qt::QueuedConnection);
    }
}

bool ServicePeer::isConnected() const
{
    return m_pSocket->state() == QAbstractSocket::ConnectedState;
}

void ServicePeer::send(const QByteArray& a_command)
{
    if (!isConnected() || a_command.isEmpty()) {
        return;
    }
    const auto uiPending = static_cast<std::uint64_t>(m_pSocket->bytesToWrite() + a_command.size());
    if (uiPending > Simulation::Limits::value(Simulation::Limits::PendingBytes) ||
        m_pSocket->write(a_command) != a_command.size()) {
        m_bLostCommands = true;
    }
}

bool ServicePeer::hasLostCommands() const
{
    return isConnected() && (m_bLostCommands || m_communication.hasLostCommands());
}

void ServicePeer::close()
{
    disconnect();
    m_communication.disconnect();
    m_communication.setSocket(nullptr);
    m_pSocket->disconnect();
    m_pSocket->abort();
}

void ServicePeer::tell(const QString& a_sText, bool a_bFinal)
{
    m_log.tell(shortened(a_sText, s_iMaxLine), a_bFinal);
}

void ServicePeer::slotUnreadable(const QString& a_sReason)
{
    Q_EMIT lost(a_sReason.simplified());
}

void ServicePeer::slotDisconnected()
{
    const QAbstractSocket::SocketError eError = m_pSocket->error();
    const bool bLeft = eError == QAbstractSocket::RemoteHostClosedError;
    Q_EMIT lost(bLeft ? QString() : m_pSocket->errorString());
}

} // namespace SimulationTool

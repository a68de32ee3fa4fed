#include "servicepeer.h"

#include "console/terminaltext.h"
#include "console/valuetexts.h"
#include "serveraddress.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <utility>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxLine = 300; ///< characters
constexpr quint64 s_uiMsPerSecond = 1000;

/// Bytes read from one peer before the others' turn: about 250 of the shortest
/// commands, which take 3 ms.
constexpr qint64 s_iReadBytes = 8192;

/// Bytes written to one peer before the others' turn.
constexpr qint64 s_iWriteBytes = 65'536;

} // namespace

ServicePeer::ServicePeer(QTcpSocket* a_pSocket, std::shared_ptr<qint64> a_pTotal,
                         std::chrono::milliseconds a_timeout, QObject* a_pParent)
    : QObject(a_pParent)
    , m_pSocket(a_pSocket)
    , m_communication(nullptr)
    , m_sName(addressText(a_pSocket->peerAddress(), a_pSocket->peerPort()))
    , m_pTotal(std::move(a_pTotal))
    , m_outbox(m_pTotal)
    , m_receiving(a_timeout)
    , m_sending(a_timeout)
{
    connect(&m_log, &LogLimit::logged, this,
            [this](const QString& a_sLine) { Q_EMIT logged(m_sName + QStringLiteral(": ") + a_sLine); });
    const QString sTime = counted(static_cast<quint64>(a_timeout.count()) / s_uiMsPerSecond, "second");
    connect(&m_receiving, &StallWatch::stalled, this,
            [this, sTime] { Q_EMIT lost(QStringLiteral("it left a command unfinished for ") + sTime); });
    connect(&m_sending, &StallWatch::stalled, this,
            [this, sTime] { Q_EMIT lost(QStringLiteral("it has not read pending data for ") + sTime); });
    connectSocket();
}

ServicePeer::~ServicePeer()
{
    *m_pTotal -= m_iUnfinished;
}

void ServicePeer::connectSocket()
{
    m_pSocket->setParent(this);
    // Small commands must not be delayed, and a machine that was switched off without
    // closing the connection must be detected.
    m_pSocket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_pSocket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    m_pSocket->setReadBufferSize(s_iReadBytes);
    m_communication.setSocket(m_pSocket);
    // The communication's slot was connected first, so it has already read the received
    // bytes when this slot runs.
    connect(m_pSocket, &QTcpSocket::readyRead, this, &ServicePeer::noteReceived);
    connect(m_pSocket, &QTcpSocket::bytesWritten, this, [this] {
        m_sending.note(!m_outbox.isEmpty() || m_pSocket->bytesToWrite() > 0);
        if (!m_bWriting) {
            fillSocket();
        }
    });
    // Queued, because bytes received just before the end are still waiting in the
    // event loop.
    connect(m_pSocket, &QTcpSocket::disconnected, this, &ServicePeer::slotDisconnected, Qt::QueuedConnection);
    m_communication.setStreamErrorHandler(
        [this](const QString& a_sError) { Q_EMIT lost(a_sError.simplified()); });
}

bool ServicePeer::isConnected() const
{
    return m_pSocket->state() == QAbstractSocket::ConnectedState;
}

void ServicePeer::noteReceived()
{
    const qint64 iBefore = std::exchange(m_iUnfinished, m_communication.unfinishedBytes());
    *m_pTotal += m_iUnfinished - iBefore;
    m_receiving.note(m_iUnfinished > 0);
    if (m_iUnfinished > iBefore) {
        Q_EMIT pendingGrew();
    }
}

void ServicePeer::send(const OutgoingCommandPtr& a_pCommand)
{
    if (isConnected()) {
        m_outbox.append(a_pCommand);
        scheduleWrite();
    }
}

void ServicePeer::report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand)
{
    if (isConnected()) {
        m_outbox.report(a_sKey, a_pCommand);
        scheduleWrite();
    }
}

/// Uses a queued call, because the event loop may delay a timer while sockets have
/// bytes to read.
void ServicePeer::scheduleWrite()
{
    if (m_outbox.isEmpty()) {
        return;
    }
    Q_EMIT pendingGrew();
    if (m_bWriteScheduled) {
        return;
    }
    if (!m_sending.isWaiting()) {
        m_sending.note(true);
    }
    m_bWriteScheduled = true;
    QMetaObject::invokeMethod(this, "slotWrite", Qt::QueuedConnection);
}

/// Fills the socket's buffer up to s_iWriteBytes, flushes the socket, and fills the
/// buffer again. The rest follows whenever the socket has written something.
void ServicePeer::slotWrite()
{
    m_bWriteScheduled = false;
    if (isConnected()) {
        m_bWriting = true;
        fillSocket();
        m_pSocket->flush();
        m_bWriting = false;
        fillSocket();
    }
}

void ServicePeer::fillSocket()
{
    const qint64 iRoom = s_iWriteBytes - m_pSocket->bytesToWrite();
    if (iRoom > 0 && !m_outbox.isEmpty()) {
        m_communication.sendEncoded(m_outbox.take(iRoom));
        if (m_communication.hasLostCommands()) {
            Q_EMIT lost(QStringLiteral("a command could not be sent whole"));
        }
    }
}

void ServicePeer::close()
{
    disconnect();
    m_communication.disconnect();
    m_communication.setSocket(nullptr);
    m_pSocket->disconnect();
    m_pSocket->abort();
    m_outbox.clear();
    *m_pTotal -= std::exchange(m_iUnfinished, 0);
    m_receiving.note(false);
    m_sending.note(false);
}

void ServicePeer::log(const QString& a_sText, bool a_bFinal)
{
    m_log.log(shortened(a_sText, s_iMaxLine), a_bFinal);
}

void ServicePeer::slotDisconnected()
{
    const QAbstractSocket::SocketError eError = m_pSocket->error();
    const bool bLeft = eError == QAbstractSocket::RemoteHostClosedError;
    Q_EMIT lost(bLeft ? QString() : m_pSocket->errorString());
}

} // namespace SimulationTool

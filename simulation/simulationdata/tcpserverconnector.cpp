#include "tcpserverconnector.h"

#include "trace_p.h"

#include <QHostAddress>
#include <QMetaObject>
#include <QPointer>
#include <QTcpSocket>

#include <sys/socket.h>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/tcpserverconnector";

/// Attempts on a local port come from changing local ports, and one of them may
/// be the very port: then the two ends of one socket shake hands. That would
/// also keep the server from listening there.
bool isOwnPeer(const QTcpSocket& a_socket)
{
    return a_socket.localPort() == a_socket.peerPort() && a_socket.localAddress() == a_socket.peerAddress();
}

/// Ends the connection with a reset: an orderly end would leave the port in use
/// for another minute.
void abortAtOnce(QTcpSocket& a_socket)
{
    constexpr linger noWaiting{1, 0};
    setsockopt(static_cast<int>(a_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &noWaiting,
               sizeof(noWaiting));
    a_socket.abort();
}

} // namespace

TcpServerConnector::TcpServerConnector(const QString& a_sServer)
    : TcpServerConnector(a_sServer.section(u':', 0, 0), a_sServer.section(u':', 1, 1).toUShort())
{}

TcpServerConnector::TcpServerConnector(const QString& a_sHost, unsigned short a_uiPort)
    : m_sHost(a_sHost)
    , m_uiPort(a_uiPort)
    , m_pSocket(new QTcpSocket(this))
{
    connect(m_pSocket, &QTcpSocket::connected, this, &TcpServerConnector::slotConnected);
    connect(m_pSocket, &QTcpSocket::errorOccurred, this, &TcpServerConnector::slotError);
    connect(m_pSocket, &QTcpSocket::disconnected, this, &TcpServerConnector::slotDisconnected);
}

TcpServerConnector::~TcpServerConnector()
{
    // What the socket still has to say must not reach half an object.
    m_pSocket->disconnect(this);
    m_pSocket->disconnectFromHost();
    if (m_bEmitting) {
        // The socket is in the middle of a signal and goes on when it returns.
        m_pSocket->setParent(nullptr);
        m_pSocket->deleteLater();
    }
}

bool TcpServerConnector::isConnected() const
{
    return m_pSocket->state() == QAbstractSocket::ConnectedState;
}

void TcpServerConnector::connectToServer()
{
    trace(ErrorHandler::TraceProgress, s_szSource, [this] { return tryText(); });
    queueStart();
}

void TcpServerConnector::disconnectFromServer()
{
    m_pSocket->disconnectFromHost();
}

void TcpServerConnector::slotConnected()
{
    if (isOwnPeer(*m_pSocket)) {
        traceError(s_szSource, [this] {
            return QStringLiteral("Error while connecting to: %1:%2; the socket met itself")
                .arg(m_sHost, QString::number(m_uiPort));
        });
        abortAtOnce(*m_pSocket);
        return;
    }
    m_bAnnounced = true;
    if (emitGuarded(&TcpServerConnector::connectedToServer)) {
        trace(ErrorHandler::TraceProgress, s_szSource, [this] {
            return QStringLiteral("Connected to: %1:%2").arg(m_sHost, QString::number(m_uiPort));
        });
    }
}

void TcpServerConnector::slotError()
{
    if (isConnected()) {
        return; // disconnected() follows
    }
    traceError(s_szSource, [this] {
        return QStringLiteral("Error while connecting to: %1:%2; %3")
            .arg(m_sHost, QString::number(m_uiPort), m_pSocket->errorString());
    });
    traceError(s_szSource, [this] { return tryText(); });
    queueStart();
}

void TcpServerConnector::slotDisconnected()
{
    // The spelling is part of the interface: logs are searched for it.
    trace(ErrorHandler::TraceProgress, s_szSource, [this] {
        return QStringLiteral("Disconneted from: %1:%2").arg(m_sHost, QString::number(m_uiPort));
    });
    if (!std::exchange(m_bAnnounced, false) || emitGuarded(&TcpServerConnector::disconnectedFromServer)) {
        connectToServer();
    }
}

void TcpServerConnector::slotStartConnection()
{
    m_bStartQueued = false;
    // A socket that is connecting or closing would answer with an error at once
    // and so call for the next start; its own end calls for one anyway.
    const QAbstractSocket::SocketState eState = m_pSocket->state();
    if (eState == QAbstractSocket::UnconnectedState || eState == QAbstractSocket::BoundState) {
        m_pSocket->connectToHost(m_sHost, m_uiPort, QIODevice::ReadWrite);
    }
}

QString TcpServerConnector::tryText() const
{
    return QStringLiteral("Try to connect to: %1:%2").arg(m_sHost, QString::number(m_uiPort));
}

/// One start is enough, however many causes there are.
void TcpServerConnector::queueStart()
{
    if (!m_bStartQueued) {
        m_bStartQueued = true;
        QMetaObject::invokeMethod(this, "slotStartConnection", Qt::QueuedConnection);
    }
}

/// False when a receiver has deleted this object.
bool TcpServerConnector::emitGuarded(void (TcpServerConnector::*a_pSignal)())
{
    const QPointer<TcpServerConnector> guard(this);
    const bool bBefore = std::exchange(m_bEmitting, true);
    Q_EMIT(this->*a_pSignal)();
    if (guard) {
        m_bEmitting = bBefore;
    }
    return !guard.isNull();
}

} // namespace Simulation

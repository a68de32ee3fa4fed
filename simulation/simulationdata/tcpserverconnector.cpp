#include "tcpserverconnector.h"

#include "simulationdata/io/trace_p.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>

#include <algorithm>
#include <chrono>
#include <sys/socket.h>
#include <utility>

namespace Simulation {

namespace {

using namespace std::chrono_literals;

constexpr const char* s_szSource = "simulation/simulationdata/tcpserverconnector";

constexpr int s_iAtOnce = 3; ///< the first attempts of a series, made without a pause before them
constexpr std::chrono::milliseconds s_firstPause = 50ms;
constexpr std::chrono::milliseconds s_longestPause = 2s;
constexpr std::chrono::milliseconds s_kept = s_longestPause; ///< a longer connection ends a series

/// The pause before the next attempt of a series: 0 before the first three
/// attempts, then 50 ms * 2^(failures - 3), at most 2 s.
std::chrono::milliseconds pauseAfter(int a_iFailures)
{
    std::chrono::milliseconds pause = a_iFailures < s_iAtOnce ? 0ms : s_firstPause;
    for (int i = s_iAtOnce; i < a_iFailures && pause < s_longestPause; ++i) {
        pause *= 2;
    }
    return std::min(pause, s_longestPause);
}

/// Whether the socket is connected with itself. Attempts on a port of this machine use
/// changing source ports. When the source port equals the target port, TCP connects the
/// socket with itself. Such a connection would prevent the server from listening on the
/// port.
bool isOwnPeer(const QTcpSocket& a_socket)
{
    return a_socket.localPort() == a_socket.peerPort() && a_socket.localAddress() == a_socket.peerAddress();
}

/// Ends the connection with a reset: an orderly close would keep the port in use
/// for another minute (TIME_WAIT).
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
    , m_start(this)
{
    m_start.setSingleShot(true);
    connect(&m_start, &QTimer::timeout, this, &TcpServerConnector::slotStartConnection);
    connect(m_pSocket, &QTcpSocket::connected, this, &TcpServerConnector::slotConnected);
    connect(m_pSocket, &QTcpSocket::errorOccurred, this, &TcpServerConnector::slotError);
    connect(m_pSocket, &QTcpSocket::disconnected, this, &TcpServerConnector::slotDisconnected);
    // When an application aborts an attempt through socket(), the socket emits only
    // this signal.
    connect(m_pSocket, &QTcpSocket::stateChanged, this, [this](QAbstractSocket::SocketState a_eState) {
        if (a_eState == QAbstractSocket::UnconnectedState) {
            startAgain();
        }
    });
}

TcpServerConnector::~TcpServerConnector()
{
    // Signals of the socket must not reach a partly destroyed object.
    m_pSocket->disconnect(this);
    m_pSocket->disconnectFromHost();
    if (m_bEmitting) {
        // The socket is emitting a signal and is still used after the slot returns.
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
    // A slot may call this function at every signal. Such calls must not bypass the
    // pauses. While a signal is emitted, the socket is connected or the next attempt is
    // already scheduled.
    if (!m_bEmitting) {
        m_iFailures = 0;
        m_sReason.clear();
        m_start.start(0);
    }
}

void TcpServerConnector::disconnectFromServer()
{
    m_pSocket->disconnectFromHost();
}

void TcpServerConnector::slotConnected()
{
    if (isOwnPeer(*m_pSocket)) {
        traceFailure(QStringLiteral("the socket connected to itself"));
        abortAtOnce(*m_pSocket);
        return;
    }
    m_bAnnounced = true;
    m_sReason.clear();
    m_connection.start();
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
    traceFailure(m_pSocket->errorString());
    startAgain();
}

void TcpServerConnector::slotDisconnected()
{
    if (!std::exchange(m_bAnnounced, false)) {
        return; // the socket was connected with itself
    }
    // The spelling "Disconneted" is part of the interface: logs are searched for it.
    trace(ErrorHandler::TraceProgress, s_szSource, [this] {
        return QStringLiteral("Disconneted from: %1:%2").arg(m_sHost, QString::number(m_uiPort));
    });
    if (emitGuarded(&TcpServerConnector::disconnectedFromServer)) {
        trace(ErrorHandler::TraceProgress, s_szSource, [this] { return tryText(); });
    }
}

void TcpServerConnector::slotStartConnection()
{
    // connectToHost() on a socket that is connecting or closing would immediately report
    // an error, and the error would schedule another start. That start is not needed: the
    // next start is scheduled when the socket becomes unconnected.
    const QAbstractSocket::SocketState eState = m_pSocket->state();
    if (eState == QAbstractSocket::UnconnectedState || eState == QAbstractSocket::BoundState) {
        m_pSocket->connectToHost(m_sHost, m_uiPort, QIODevice::ReadWrite);
    }
}

QString TcpServerConnector::tryText() const
{
    return QStringLiteral("Try to connect to: %1:%2").arg(m_sHost, QString::number(m_uiPort));
}

/// Traces a failure unless its reason equals that of the previous failure. Otherwise
/// every attempt would write a trace as long as there is no server.
void TcpServerConnector::traceFailure(const QString& a_sReason)
{
    if (m_sReason == a_sReason) {
        return;
    }
    m_sReason = a_sReason;
    traceError(s_szSource, [&] {
        return QStringLiteral("Error while connecting to: %1:%2; %3")
            .arg(m_sHost, QString::number(m_uiPort), a_sReason);
    });
    traceError(s_szSource, [this] { return tryText(); });
}

/// Schedules the next attempt after a failed one or a lost connection. Several
/// signals report the same failure; only the first has an effect.
void TcpServerConnector::startAgain()
{
    if (m_start.isActive()) {
        return;
    }
    const bool bKept = m_bAnnounced && m_connection.hasExpired(s_kept.count());
    m_iFailures = bKept ? 0 : m_iFailures + 1;
    m_start.start(pauseAfter(m_iFailures));
}

/// Emits a signal; false when a receiver has deleted this object.
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

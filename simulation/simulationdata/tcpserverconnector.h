#ifndef SIMULATIONDATA_TCPSERVERCONNECTOR_H
#define SIMULATIONDATA_TCPSERVERCONNECTOR_H

#include "simulationdata/simulationdata_export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

class QTcpSocket;

namespace Simulation {

/// Keeps a client's TCP connection to the simulation service open. After every
/// failed attempt and every loss of the connection a new attempt follows, without
/// limit. Deleting the connector stops it.
///
/// A series of attempts begins with three attempts without a pause. The fourth waits
/// 50 ms, and each further attempt waits twice as long as the previous one, at most
/// 2 s. A connection that lasted 2 s ends the series, and its loss begins a new series.
/// A shorter connection counts as a failed attempt, so that a port that accepts and
/// closes does not keep a processor busy. connectToServer() also begins a new series,
/// except in a slot connected to the connector's own signals: there the series continues.
///
/// The first failure of a series is traced. A later failure is traced only when its
/// reason differs from that of the previous failure.
///
/// The connector is used on its own thread, which runs an event loop. A slot connected
/// to the connector's own signals may delete it. A new connector does nothing until
/// connectToServer().
class SIMULATIONDATA_EXPORT TcpServerConnector : public QObject
{
    Q_OBJECT

public:
    /// Takes host and port separated by a colon, for example "localhost:4000". Text
    /// after a second colon is ignored. The port is 0 when it is missing or not a
    /// number of 16 bits.
    explicit TcpServerConnector(const QString& a_sServer);
    TcpServerConnector(const QString& a_sHost, unsigned short a_uiPort);

    /// Closes the connection; unsent bytes are lost.
    ~TcpServerConnector() override;

    [[nodiscard]] bool isConnected() const;

    /// The socket, owned by the connector. All connections use the same socket.
    [[nodiscard]] QTcpSocket* socket() { return m_pSocket; }

Q_SIGNALS:
    void connectedToServer();

    /// The connection is lost; a new attempt follows.
    void disconnectedFromServer();

public Q_SLOTS:
    /// Starts an attempt from the event loop, without the pause of the series. Has
    /// no effect while the socket is connected or connecting. Also has no effect in
    /// a slot connected to the connector's own signals, because the series continues
    /// by itself.
    ///
    /// When no process listens on a local port, an attempt can connect the socket
    /// with itself. This counts as a failed attempt.
    void connectToServer();

    /// Closes the connection; a new attempt follows.
    void disconnectFromServer();

private Q_SLOTS:
    void slotConnected();
    void slotError();
    void slotDisconnected();
    void slotStartConnection();

private:
    [[nodiscard]] QString tryText() const;
    void traceFailure(const QString& a_sReason);
    void startAgain();
    bool emitGuarded(void (TcpServerConnector::*a_pSignal)());

    QString m_sHost;
    unsigned short m_uiPort = 0;
    QTcpSocket* m_pSocket = nullptr; ///< child
    QTimer m_start;                  ///< pause before the next attempt
    QElapsedTimer m_connection;      ///< time since connectedToServer()
    int m_iFailures = 0;             ///< failed attempts of the series
    QString m_sReason;               ///< reason traced last; null in a new series and after connecting
    bool m_bAnnounced = false;       ///< whether connectedToServer() was the last signal
    bool m_bEmitting = false;        ///< whether this object is emitting a signal
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_TCPSERVERCONNECTOR_H
#define SIMULATIONDATA_TCPSERVERCONNECTOR_H

#include "simulationdata/simulationdata_export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

class QTcpSocket;

namespace Simulation {

/// Keeps a client's TCP connection to the simulation service: every failed
/// attempt and every loss is followed by a new attempt, without end. Whoever
/// wants it to stop deletes the connector.
///
/// The first three attempts of a series follow each other at once. The fourth
/// waits 50 ms, and each further one twice as long as the one before, at most
/// 2 s. A connection that lasted 2 s ends the series, so the attempts after its
/// loss begin at once. A shorter connection counts as a failed attempt: a port
/// that accepts and closes must not keep a processor busy. connectToServer()
/// begins a series, too, except in a slot on the connector's own signals: there
/// the series continues.
///
/// The first failure of a series is traced, and so is one for another reason
/// than the failure before it. Further failures for the same reason are not.
///
/// Lives on the thread of the event loop that owns it. It may be deleted in a
/// slot on its own signals. A new connector waits for connectToServer().
class SIMULATIONDATA_EXPORT TcpServerConnector : public QObject
{
    Q_OBJECT

public:
    /// Host and port divided by a colon, as in "localhost:4000"; what follows a
    /// second colon is not looked at. Port 0 when there is none or it is no
    /// number of 16 bits.
    explicit TcpServerConnector(const QString& a_sServer);
    TcpServerConnector(const QString& a_sHost, unsigned short a_uiPort);

    /// Closes the connection; what was not sent yet is lost.
    ~TcpServerConnector() override;

    [[nodiscard]] bool isConnected() const;

    /// The socket, the same one through all connections; the connector owns it.
    [[nodiscard]] QTcpSocket* socket() { return m_pSocket; }

Q_SIGNALS:
    void connectedToServer();

    /// A new attempt follows.
    void disconnectedFromServer();

public Q_SLOTS:
    /// Starts an attempt from the event loop, without waiting for the next one of
    /// the series, unless the socket is connected or about to be. In a slot on the
    /// connector's own signals it changes nothing: the series continues by itself.
    /// A connection of the socket with itself, which attempts on a local port that
    /// nobody listens on can end in, is a failed attempt.
    void connectToServer();

    /// Closes the connection, after which a new attempt follows.
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
    QTimer m_start;                  ///< runs until the next attempt
    QElapsedTimer m_connection;      ///< since connectedToServer()
    int m_iFailures = 0;             ///< of the series
    QString m_sReason;               ///< of the failure that was traced last; null at the begin of a series
    bool m_bAnnounced = false;       ///< connectedToServer() was the last signal
    bool m_bEmitting = false;        ///< a signal of this object, inside one of the socket
};

} // namespace Simulation

#endif

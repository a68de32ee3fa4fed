#include "simulationdata/tcpserverconnector.h"
#include "tracecollector.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Simulation;

namespace {

constexpr const char* s_szSource = " (simulation/simulationdata/tcpserverconnector)";

QString traced(const char* a_szText, quint16 a_uiPort, const char* a_szEnd = "")
{
    return QStringLiteral("%1: 127.0.0.1:%2%3%4")
        .arg(QLatin1String(a_szText), QString::number(a_uiPort), QLatin1String(a_szEnd),
             QLatin1String(s_szSource));
}

/// A port without a server.
quint16 freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

/// A listening server and a connector to it that has not started yet.
struct Road
{
    Road()
    {
        server.listen(QHostAddress::LocalHost);
        connector = std::make_unique<TcpServerConnector>(QStringLiteral("127.0.0.1"), server.serverPort());
    }
    QTcpServer server;
    std::unique_ptr<TcpServerConnector> connector;
};

using Pauses = QList<int>;

/// Records the connector's pause (ms; -1 = none) each time its socket emits the signal.
/// Then ends the pause.
template<typename Signal>
void notePauses(TcpServerConnector& a_connector, Signal a_signal, Pauses& a_pauses)
{
    auto* const pStart = a_connector.findChild<QTimer*>();
    QObject::connect(a_connector.socket(), a_signal, &a_connector, [pStart, &a_pauses] {
        a_pauses += pStart->isActive() ? pStart->interval() : -1;
        pStart->start(0);
    });
}

} // namespace

class TestTcpServerConnector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void address();
    void cycle();
    void startsAreOne();
    void failedAttempts();
    void pauses();
    void hangingUp_data();
    void hangingUp();
    void abortedAttempt();
    void deletedInSlot();
};

void TestTcpServerConnector::metaObject()
{
    const QMetaObject& meta = TcpServerConnector::staticMetaObject;
    QCOMPARE(meta.className(), "Simulation::TcpServerConnector");
    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods.append(meta.method(i).methodSignature());
    }
    QCOMPARE(methods, (QByteArrayList{"connectedToServer()", "disconnectedFromServer()", "connectToServer()",
                                      "disconnectFromServer()", "slotConnected()", "slotError()",
                                      "slotDisconnected()", "slotStartConnection()"}));
}

void TestTcpServerConnector::address()
{
    const TraceCollector traces(ErrorHandler::TraceProgress);
    const auto tried = [](const char* a_szAddress) {
        TraceCollector::lines().clear();
        TcpServerConnector connector(QString::fromLatin1(a_szAddress));
        connector.connectToServer(); // the attempt must not start inside the call
        const bool bAtOnce = connector.socket()->state() != QAbstractSocket::UnconnectedState;
        return bAtOnce ? QString() : TraceCollector::lines().join(u' ').section(u' ', 4, 4);
    };
    QCOMPARE(tried("localhost:4000"), QStringLiteral("localhost:4000"));
    QCOMPARE(tried("localhost"), QStringLiteral("localhost:0"));
    QCOMPARE(tried("h:1:2"), QStringLiteral("h:1"));
    QCOMPARE(tried("h:65537"), QStringLiteral("h:0"));
    QCOMPARE(tried("%2:1"), QStringLiteral("%2:1"));
}

/// The connector connects again after the server disconnects, and after
/// disconnectFromServer().
void TestTcpServerConnector::cycle()
{
    Road road;
    const quint16 uiPort = road.server.serverPort();
    const TraceCollector traces(ErrorHandler::TraceProgress | ErrorHandler::TraceError);
    const QSignalSpy connected(road.connector.get(), &TcpServerConnector::connectedToServer);
    const QSignalSpy disconnected(road.connector.get(), &TcpServerConnector::disconnectedFromServer);
    QVERIFY(!road.connector->isConnected());
    road.connector->connectToServer();
    QTRY_COMPARE(connected.count(), 1);
    QVERIFY(road.connector->isConnected());
    // An error of a connected socket is not a failed attempt.
    Q_EMIT road.connector->socket()->errorOccurred(QAbstractSocket::NetworkError);
    QVERIFY(!road.connector->findChild<QTimer*>()->isActive());

    QTRY_VERIFY(road.server.hasPendingConnections());
    road.server.nextPendingConnection()->disconnectFromHost();
    QTRY_COMPARE(connected.count(), 2);
    QCOMPARE(disconnected.count(), 1);

    road.connector->disconnectFromServer();
    QTRY_COMPARE(connected.count(), 3);
    QCOMPARE(disconnected.count(), 2);

    const QStringList round{traced("Try to connect to", uiPort), traced("Connected to", uiPort),
                            traced("Disconneted from", uiPort)};
    QCOMPARE(TraceCollector::lines(), round + round + round.first(2));

    road.connector.reset(); // emits no signal and traces no line
    QCOMPARE(disconnected.count(), 2);
    QCOMPARE(TraceCollector::lines().size(), 8);
}

void TestTcpServerConnector::startsAreOne()
{
    Road road;
    const TraceCollector traces(ErrorHandler::TraceError);
    const QSignalSpy connected(road.connector.get(), &TcpServerConnector::connectedToServer);
    road.connector->connectToServer();
    road.connector->connectToServer();
    QCoreApplication::processEvents();
    road.connector->connectToServer(); // has no effect while connecting
    QTRY_COMPARE(connected.count(), 1);
    road.connector->connectToServer(); // has no effect while connected
    QTest::qWait(20);
    QVERIFY(road.connector->isConnected());
    QCOMPARE(connected.count(), 1);
    QCOMPARE(TraceCollector::lines(), QStringList());
}

/// In the first attempt the socket connects to itself, because it is bound to the
/// server's port. Further attempts are refused until a server listens. Only the first
/// failure for each reason is traced.
void TestTcpServerConnector::failedAttempts()
{
    const quint16 uiPort = freePort();
    const TraceCollector traces(ErrorHandler::TraceError);
    TcpServerConnector connector(QStringLiteral("127.0.0.1"), uiPort);
    const QSignalSpy connected(&connector, &TcpServerConnector::connectedToServer);
    const QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    const QSignalSpy errors(connector.socket(), &QTcpSocket::errorOccurred);
    QVERIFY(connector.socket()->bind(QHostAddress::LocalHost, uiPort));
    connector.connectToServer();
    QTRY_VERIFY(errors.size() >= 4);
    QCOMPARE(connected.count() + disconnected.count(), 0);
    const auto failed = [uiPort](const char* a_szReason) {
        return QStringList{traced("Error while connecting to", uiPort, a_szReason),
                           traced("Try to connect to", uiPort)};
    };
    const QStringList refused = failed("; Connection refused");
    QCOMPARE(TraceCollector::lines(), failed("; the socket connected to itself") + refused);
    connector.connectToServer(); // a new request traces the failure again
    QTRY_COMPARE(TraceCollector::lines().mid(2), refused + refused);

    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, uiPort));
    QTRY_COMPARE(connected.count(), 1);
}

void TestTcpServerConnector::pauses()
{
    const TraceCollector traces;
    const Pauses series{0, 0, 50, 100, 200, 400, 800, 1600, 2000, 2000};
    TcpServerConnector connector(QStringLiteral("127.0.0.1"), freePort());
    Pauses pauses;
    notePauses(connector, &QTcpSocket::errorOccurred, pauses);
    connect(connector.socket(), &QTcpSocket::errorOccurred, this, [&] {
        if (pauses.size() == series.size()) {
            connector.connectToServer(); // restarts the series of pauses
        }
    });
    connector.connectToServer();
    QTRY_VERIFY(pauses.size() >= 2 * series.size());
    QCOMPARE(pauses.first(2 * series.size()), series + series);
}

void TestTcpServerConnector::hangingUp_data()
{
    QTest::addColumn<bool>("asks");
    QTest::newRow("the application waits") << false;
    QTest::newRow("the application connects in every slot") << true;
}

/// The pauses also grow if the server ends each connection immediately. A connection that
/// lasts long enough resets the pauses.
void TestTcpServerConnector::hangingUp()
{
    QFETCH(const bool, asks);
    constexpr int iKept = 2100; // duration of the lasting connection, ms
    constexpr qsizetype iShort = 5;
    Road road;
    Pauses pauses;
    for (const auto pSignal :
         {&TcpServerConnector::connectedToServer, &TcpServerConnector::disconnectedFromServer}) {
        if (asks) {
            connect(road.connector.get(), pSignal, road.connector.get(),
                    &TcpServerConnector::connectToServer);
        }
    }
    notePauses(*road.connector, &QTcpSocket::disconnected, pauses);
    connect(&road.server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket* const pPeer = road.server.nextPendingConnection();
        auto* const pEnd = new QTimer(pPeer);
        connect(pEnd, &QTimer::timeout, pPeer, &QTcpSocket::abort);
        pEnd->start(pauses.size() == iShort ? iKept : 0);
    });
    road.connector->connectToServer();
    QTRY_VERIFY(pauses.size() >= iShort + 4);
    QCOMPARE(pauses.first(iShort + 4), (Pauses{0, 0, 50, 100, 200, 0, 0, 0, 50}));
}

/// When the socket is aborted while it connects, the connector tries again.
void TestTcpServerConnector::abortedAttempt()
{
    Road road;
    const QSignalSpy connected(road.connector.get(), &TcpServerConnector::connectedToServer);
    const QTcpSocket& socket = *road.connector->socket();
    road.connector->connectToServer();
    while (socket.state() == QAbstractSocket::UnconnectedState) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCOMPARE(socket.state(), QAbstractSocket::ConnectingState);
    road.connector->socket()->abort();
    QTRY_COMPARE(connected.count(), 1);
}

void TestTcpServerConnector::deletedInSlot()
{
    for (const auto pSignal :
         {&TcpServerConnector::connectedToServer, &TcpServerConnector::disconnectedFromServer}) {
        Road road;
        connect(road.connector.get(), pSignal, this, [&road] { road.connector.reset(); });
        connect(&road.server, &QTcpServer::newConnection, this,
                [&road] { road.server.nextPendingConnection()->close(); });
        road.connector->connectToServer();
        QTRY_VERIFY(road.connector == nullptr);
        QTest::qWait(20);
    }
}

QTEST_GUILESS_MAIN(TestTcpServerConnector)
#include "tst_tcpserverconnector.moc"

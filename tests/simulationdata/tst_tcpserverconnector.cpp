#include "simulationdata/tcpserverconnector.h"
#include "tracecollector.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

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

/// A port that nobody listens on.
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
        connector.connectToServer(); // never at once
        const bool bAtOnce = connector.socket()->state() != QAbstractSocket::UnconnectedState;
        return bAtOnce ? QString() : TraceCollector::lines().join(u' ').section(u' ', 4, 4);
    };
    QCOMPARE(tried("localhost:4000"), QStringLiteral("localhost:4000"));
    QCOMPARE(tried("localhost"), QStringLiteral("localhost:0"));
    QCOMPARE(tried("h:1:2"), QStringLiteral("h:1"));
    QCOMPARE(tried("h:65537"), QStringLiteral("h:0"));
    QCOMPARE(tried("%2:1"), QStringLiteral("%2:1"));
}

/// Both a server that hangs up and our own hanging up end in a new connection.
void TestTcpServerConnector::cycle()
{
    Road road;
    const quint16 uiPort = road.server.serverPort();
    const TraceCollector traces(ErrorHandler::TraceProgress);
    const QSignalSpy connected(road.connector.get(), &TcpServerConnector::connectedToServer);
    const QSignalSpy disconnected(road.connector.get(), &TcpServerConnector::disconnectedFromServer);
    QVERIFY(!road.connector->isConnected());
    road.connector->connectToServer();
    QTRY_COMPARE(connected.count(), 1);
    QVERIFY(road.connector->isConnected());

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

    road.connector.reset(); // silently
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
    road.connector->connectToServer(); // while connecting
    QTRY_COMPARE(connected.count(), 1);
    road.connector->connectToServer(); // while connected
    QTest::qWait(20);
    QVERIFY(road.connector->isConnected());
    QCOMPARE(connected.count(), 1);
    QCOMPARE(TraceCollector::lines(), QStringList());
}

/// The first attempt comes from the very port that it seeks and meets itself,
/// the others are refused, and all go on until there is a server.
void TestTcpServerConnector::failedAttempts()
{
    const quint16 uiPort = freePort();
    const TraceCollector traces(ErrorHandler::TraceError);
    TcpServerConnector connector(QStringLiteral("127.0.0.1"), uiPort);
    const QSignalSpy connected(&connector, &TcpServerConnector::connectedToServer);
    const QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    QVERIFY(connector.socket()->bind(QHostAddress::LocalHost, uiPort));
    connector.connectToServer();
    QTRY_VERIFY(TraceCollector::lines().size() >= 20);
    QCOMPARE(connected.count() + disconnected.count(), 0);
    const QStringList pair{traced("Error while connecting to", uiPort, "; Connection refused"),
                           traced("Try to connect to", uiPort)};
    QCOMPARE(TraceCollector::lines().first(5),
             QStringList(traced("Error while connecting to", uiPort, "; the socket met itself")) + pair +
                 pair);

    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, uiPort));
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

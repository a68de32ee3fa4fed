#include "programs/outbox.h"
#include "programs/simulationservice.h"
#include "tracecollector.h"

#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationlimits.h"

#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>

#include <memory>
#include <vector>

// A service inside the test, with peers that do not behave.

using namespace SimulationTool;
using namespace std::chrono_literals;
using Simulation::Limits;

namespace {

constexpr int s_iTimeout = 100'000; ///< ms

const QByteArray s_acquire("<Command><AcquireServer/></Command>");
const QByteArray s_release("<Command><ReleaseServer/></Command>");
const QByteArray s_ask("<Command><RequestSimulationDevices/></Command>");
const QByteArray s_start("<Command><StartScenario><Timestamp>1</Timestamp><ScenarioTime>2</ScenarioTime></"
                         "StartScenario></Command>");

QByteArray registration(const QByteArray& a_id)
{
    return "<Command><RegisterSimulation Id=\"" + a_id + "\"><SimulationDevice>" +
           Simulation::SimulationDeviceConfiguration().toXml().replace('<', "&lt;") +
           "</SimulationDevice></RegisterSimulation></Command>";
}

/// A connection to the service that sends and receives plain bytes.
struct Peer
{
    explicit Peer(const SimulationService& a_service, int a_iConnectMs = s_iTimeout)
    {
        socket.connectToHost(QHostAddress::LocalHost, a_service.port());
        bConnected = socket.waitForConnected(a_iConnectMs);
    }

    /// Whether the text arrives. What has arrived up to its end is forgotten.
    bool receives(const QByteArray& a_text)
    {
        const bool bReceived = QTest::qWaitFor(
            [&] {
                received += socket.readAll();
                return received.contains(a_text);
            },
            s_iTimeout);
        received = received.mid(received.indexOf(a_text) + a_text.size());
        return bReceived;
    }

    /// Whether the service serves it: it answers what was sent before, too.
    bool isServed()
    {
        socket.write(s_ask);
        return receives("ResponseSimulationDevices");
    }

    [[nodiscard]] QString name() const { return QStringLiteral("127.0.0.1:%1: ").arg(socket.localPort()); }

    QTcpSocket socket;
    QByteArray received;
    bool bConnected = false;
};

/// A service whose lines are kept.
struct LoggedService
{
    explicit LoggedService(std::chrono::milliseconds a_timeout = SimulationService::s_timeout)
        : service(a_timeout)
    {
        QObject::connect(&service, &SimulationService::told, &service,
                         [this](const QString& a_sLine) { lines.append(a_sLine); });
        static_cast<void>(service.listen(QHostAddress::LocalHost, 0));
    }

    bool logs(const QString& a_sText)
    {
        return QTest::qWaitFor([&] { return !lines.filter(a_sText).isEmpty(); }, s_iTimeout);
    }

    SimulationService service;
    QStringList lines;
};

} // namespace

class TestSimulationService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ErrorHandler::Instance().setTraceMask(0); }
    void cleanup() { Limits::setValue(Limits::AllPendingBytes, 0); }
    void outbox_data();
    void outbox();
    void outboxCounts();
    void controllerIsNotEvicted();
    void stalledPeer_data();
    void stalledPeer();
    void slowButSteadyPeer();
    void allPendingBytes();
    void keptBytesBlameNobody();
    void statesOnceForManyRequests();
    void notDecodedWithoutControl();
    void tooLargeCommand();
    void burstOfConnections();
};

void TestSimulationService::outbox_data()
{
    QTest::addColumn<QString>("actions"); // "order", "key=report", or how many bytes are taken
    QTest::addColumn<QString>("taken");
    QTest::newRow("in order") << "ab k=cd ef 99"
                              << "abcdef";
    QTest::newRow("newest report in the place of the first") << "k=1 ab k=2 l=3 k=4 99"
                                                             << "4ab3";
    QTest::newRow("longer and shorter reports") << "k=1 k=22222 l=3 k=4 99"
                                                << "43";
    QTest::newRow("a report that has left") << "k=1 ab 1 k=2 99"
                                            << "1 ab2";
    QTest::newRow("a report that has begun to leave") << "k=123 2 k=456 k=789 99"
                                                      << "12 3789";
    QTest::newRow("in pieces") << "abcde fg 2 2 2 2"
                               << "ab cd ef g";
    QTest::newRow("nothing") << "9 a 9 9"
                             << " a ";
}

void TestSimulationService::outbox()
{
    QFETCH(const QString, actions);
    QFETCH(const QString, taken);
    const auto pTotal = std::make_shared<qint64>(0);
    Outbox outbox(pTotal);
    QStringList all;
    for (const QString& sAction : actions.split(u' ')) {
        const auto command = [&](const QString& a_sText) {
            return std::make_shared<OutgoingCommand>(a_sText.toLatin1(), pTotal);
        };
        if (const int iBytes = sAction.toInt(); iBytes > 0) {
            all.append(QString::fromLatin1(outbox.take(iBytes)));
        } else if (sAction.contains(u'=')) {
            outbox.report(sAction.section(u'=', 0, 0), command(sAction.section(u'=', 1)));
        } else {
            outbox.append(command(sAction));
        }
    }
    QCOMPARE(all.join(u' '), taken);
    QVERIFY(outbox.isEmpty());
    QCOMPARE(outbox.bytes(), 0);
    QCOMPARE(*pTotal, 0);
}

void TestSimulationService::outboxCounts()
{
    const auto pTotal = std::make_shared<qint64>(0);
    {
        const auto pCommand = std::make_shared<OutgoingCommand>(QByteArray(1'000'000, 'x'), pTotal);
        std::vector<std::unique_ptr<Outbox>> outboxes;
        for (int i = 0; i < 200; ++i) {
            outboxes.push_back(std::make_unique<Outbox>(pTotal));
            outboxes.back()->append(pCommand);
            outboxes.back()->append(pCommand);
            QVERIFY(outboxes.back()->bytes() > 1'000'000 && outboxes.back()->bytes() < 1'001'000);
        }
        QVERIFY(*pTotal > 1'000'000 && *pTotal < 1'100'000); // the bytes are shared
        QCOMPARE(outboxes[0]->take(3'000'000).size(), 2'000'000);
        outboxes[1]->clear();
    }
    QCOMPARE(*pTotal, 0);
}

/// Another peer takes the control and gives it back again and again, while the
/// controller is busy and does not read.
void TestSimulationService::controllerIsNotEvicted()
{
    LoggedService logged;
    Peer devices(logged.service);
    Peer controller(logged.service);
    Peer attacker(logged.service);
    for (int i = 0; i < 100; ++i) {
        devices.socket.write(registration("device-" + QByteArray::number(i)));
    }
    QVERIFY(devices.isServed());
    controller.socket.setReadBufferSize(1);
    controller.socket.write(s_acquire);
    QVERIFY(logged.logs(controller.name() + QStringLiteral("controls")));
    attacker.socket.write((s_acquire + s_release).repeated(10'000)); // 330 MB of states
    QVERIFY(attacker.isServed());
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")), QStringList());
    controller.socket.setReadBufferSize(0);
    QVERIFY(controller.isServed());
    controller.socket.write(s_acquire + s_start);
    QVERIFY(devices.receives("StartScenario"));
}

void TestSimulationService::stalledPeer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason"); // empty = it stays
    QTest::newRow("half a command") << QByteArray("<Command><Load")
                                    << "dropped: it left a command unfinished for 1 second";
    QTest::newRow("silent") << QByteArray() << QString();
    QTest::newRow("whole command") << s_acquire << QString();
    QTest::newRow("asks and does not read")
        << s_ask.repeated(4000) << "dropped: it does not read what it is sent, for 1 second";
}

void TestSimulationService::stalledPeer()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, reason);
    LoggedService logged(1s);
    Peer devices(logged.service);
    for (int i = 0; i < 100; ++i) {
        devices.socket.write(registration("device-" + QByteArray::number(i)));
    }
    QVERIFY(devices.isServed());
    Peer bad(logged.service);
    bad.socket.setReadBufferSize(1);
    bad.socket.write(bytes);
    if (reason.isEmpty()) {
        QTest::qWait(1500);
        QCOMPARE(logged.lines.filter(QStringLiteral("dropped")), QStringList());
    } else {
        QVERIFY2(logged.logs(bad.name() + reason), qPrintable(logged.lines.join(u'\n')));
    }
    QVERIFY(devices.isServed());
}

/// Every byte is progress.
void TestSimulationService::slowButSteadyPeer()
{
    LoggedService logged(1s);
    Peer slow(logged.service);
    for (const char cByte : s_ask.chopped(1)) {
        slow.socket.write(&cByte, 1);
        QTest::qWait(30);
    }
    slow.socket.write(">");
    QVERIFY(slow.receives("ResponseSimulationDevices"));
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")), QStringList());
}

/// The one with the most is dropped, and the others are not.
void TestSimulationService::allPendingBytes()
{
    constexpr int iLimit = 1'000'000;
    Limits::setValue(Limits::AllPendingBytes, iLimit);
    LoggedService logged;
    const QByteArray begin("<Command><LoadScenario><ScenarioData>");
    const QByteArray end("</ScenarioData></LoadScenario></Command>");
    Peer small(logged.service);
    Peer middle(logged.service);
    Peer large(logged.service);
    small.socket.write(begin + QByteArray(iLimit / 10, 'A'));
    middle.socket.write(begin + QByteArray(iLimit * 4 / 10, 'A'));
    large.socket.write(begin + QByteArray(iLimit * 7 / 10, 'A'));
    QVERIFY(
        logged.logs(large.name() + QStringLiteral("dropped: bytes that wait for all peers limit of 1000000 "
                                                  "exceeded")));
    small.socket.write(end);
    middle.socket.write(end);
    QVERIFY(small.isServed() && middle.isServed());
    // What the dropped one held is free again.
    small.socket.write(begin + QByteArray(iLimit * 9 / 10, 'A') + end);
    QVERIFY(small.isServed());
    Limits::setValue(Limits::AllPendingBytes, UINT64_MAX); // without a bound
    middle.socket.write(begin + QByteArray(2'000'000, 'A') + end);
    QVERIFY(middle.isServed());
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")).size(), 1);
}

/// What the service keeps of devices waits for nobody, and their ids are bounded as
/// they are sent.
void TestSimulationService::keptBytesBlameNobody()
{
    Limits::setValue(Limits::AllPendingBytes, 100'000);
    LoggedService logged;
    Peer honest(logged.service);
    QVERIFY(honest.isServed());
    Peer devices(logged.service);
    for (int i = 0; i < 100; ++i) {
        devices.socket.write(registration(QByteArray::number(i) + QByteArray(2000, 'x')));
        QVERIFY(devices.receives("AcceptSimulationDevice"));
    }
    QVERIFY(honest.socket.state() == QAbstractSocket::ConnectedState);
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")), QStringList());
    Peer large(logged.service);
    large.socket.write(registration(QByteArray("&quot;").repeated(3000)));
    QVERIFY(logged.logs(large.name() + QStringLiteral("dropped: it registers a device with a record of")));
}

/// Whoever asks often makes the states be gathered once for many requests.
void TestSimulationService::statesOnceForManyRequests()
{
    constexpr int iDevices = 100;
    constexpr int iRequests = 2000;
    LoggedService logged;
    Peer devices(logged.service);
    for (int i = 0; i < iDevices; ++i) {
        devices.socket.write(registration("device-" + QByteArray::number(i)));
    }
    QVERIFY(devices.isServed());
    Peer peer(logged.service);
    peer.socket.write((s_acquire + s_release).repeated(iRequests) + s_acquire.repeated(iRequests) + s_ask);
    QVERIFY(QTest::qWaitFor(
        [&] {
            peer.received += peer.socket.readAll();
            return peer.received.contains("ResponseSimulationDevices");
        },
        s_iTimeout));
    // Of 2 * iRequests at once some 200 fit into one turn of the event loop.
    const qsizetype iStates = peer.received.count("<SimulationDeveiceStateUpdate");
    QVERIFY2(iStates >= iDevices && iStates < iDevices * iRequests / 10,
             qPrintable(QString::number(iStates)));
}

void TestSimulationService::notDecodedWithoutControl()
{
    LoggedService logged;
    Peer stranger(logged.service);
    Peer controller(logged.service);
    const QByteArray damaged(
        "<Command><LoadScenario><ScenarioData>AAAA</ScenarioData></LoadScenario></Command>");
    const TraceCollector traces;
    stranger.socket.write(damaged);
    QVERIFY(stranger.isServed());
    QCOMPARE(TraceCollector::lines().filter(QStringLiteral("Cannot decode")).size(), 0);
    QCOMPARE(logged.lines.filter(QStringLiteral("LoadScenario ignored: it does not control")).size(), 1);
    controller.socket.write(s_acquire + damaged);
    QVERIFY(controller.isServed());
    QCOMPARE(TraceCollector::lines().filter(QStringLiteral("Cannot decode")).size(), 1);
    QCOMPARE(logged.lines.filter(QStringLiteral("scenario ignored: it is empty")).size(), 1);
}

void TestSimulationService::tooLargeCommand()
{
    LoggedService logged;
    Peer peer(logged.service);
    peer.socket.write("<Command><AcquireServer>" + QByteArray(1 << 20, 'x') + "</AcquireServer></Command>");
    QVERIFY(peer.isServed());
    QCOMPARE(logged.lines.filter(QStringLiteral("AcquireServer ignored: it has 1048626 bytes")).size(), 1);
    QCOMPARE(logged.lines.filter(QStringLiteral("controls")).size(), 0);
}

/// The service is busy meanwhile: its event loop does not run.
void TestSimulationService::burstOfConnections()
{
    constexpr int iPeers = 300;
    constexpr int iMuchShorter = 900; // ms; a connection that finds no room is tried again after 1 s
    LoggedService logged;
    std::vector<std::unique_ptr<Peer>> peers;
    for (int i = 0; i < iPeers; ++i) {
        peers.push_back(std::make_unique<Peer>(logged.service, iMuchShorter));
        QVERIFY2(peers.back()->bConnected, qPrintable(QString::number(i)));
    }
    QTRY_COMPARE_WITH_TIMEOUT(logged.lines.filter(QStringLiteral("connected")).size(), iPeers, s_iTimeout);
    QVERIFY(peers.front()->isServed() && peers.back()->isServed());
}

QTEST_GUILESS_MAIN(TestSimulationService)
#include "tst_simulationservice.moc"

#include "programs/outbox.h"
#include "programs/simulationservice.h"
#include "tracecollector.h"

#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/simulationservicecommunication.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QRandomGenerator>
#include <QSet>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

// Runs a service in the test's process, with misbehaving peers.

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

QByteArray registration(const QByteArray& a_id, const QString& a_sName = {})
{
    Simulation::SimulationDeviceConfiguration configuration;
    configuration.setName(a_sName);
    return "<Command><RegisterSimulation Id=\"" + a_id + "\"><SimulationDevice>" +
           configuration.toXml().replace('<', "&lt;") + "</SimulationDevice></RegisterSimulation></Command>";
}

/// Runs the event loop until the condition holds. There is no fixed pause between two
/// turns, because the service reads only a few bytes of a peer in each turn.
template<typename Condition>
bool waitFor(const Condition& a_condition)
{
    QDeadlineTimer deadline(s_iTimeout);
    QEventLoop loop;
    QTimer wakeUp; // ends a wait without events, so that the deadline is noticed
    wakeUp.start(10);
    while (!a_condition() && !deadline.hasExpired()) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return a_condition();
}

/// A connection to the service that sends and receives plain bytes.
struct Peer
{
    explicit Peer(const SimulationService& a_service, int a_iConnectMs = s_iTimeout)
    {
        socket.connectToHost(QHostAddress::LocalHost, a_service.port());
        bConnected = socket.waitForConnected(a_iConnectMs);
    }

    /// Waits until the text arrives. Removes everything up to the end of the text from
    /// the received bytes.
    bool receives(const QByteArray& a_text)
    {
        const bool bReceived = waitFor([&] {
            received += socket.readAll();
            return received.contains(a_text);
        });
        received = received.mid(received.indexOf(a_text) + a_text.size());
        return bReceived;
    }

    /// Whether the service answers this peer. The service answers after it has handled
    /// everything that the peer sent before.
    bool isServed()
    {
        socket.write(s_ask);
        return receives("ResponseSimulationDevices") && receives("</Command>");
    }

    [[nodiscard]] QString name() const { return QStringLiteral("127.0.0.1:%1: ").arg(socket.localPort()); }

    QTcpSocket socket;
    QByteArray received;
    bool bConnected = false;
};

// The commands of the outbox tests are short texts. The first letter is the kind:
// L(oad), U(nload), S(tart), P(ause), D(eployment), R(emoved registration). Other
// letters, such as X for a stop, have no kind.

OutgoingKind kindOf(QChar a_cFirst)
{
    switch (a_cFirst.toLatin1()) {
    case 'L':
        return OutgoingKind::ScenarioLoad;
    case 'U':
        return OutgoingKind::ScenarioUnload;
    case 'S':
    case 'P':
        return OutgoingKind::ScenarioRun;
    case 'D':
        return OutgoingKind::DeploymentLoad;
    case 'R':
        return OutgoingKind::Unregistration;
    default:
        return OutgoingKind::Other;
    }
}

/// Simulates how a device handles the short commands of the outbox tests.
struct ModelDevice
{
    void receive(const QString& a_sCommand)
    {
        const char cFirst = a_sCommand.front().toLatin1();
        if (cFirst == 'C' || cFirst == 'R') {
            bAccepted = cFirst == 'C';
        } else if (bAccepted && cFirst == 'J') {
            others.append(a_sCommand);
        } else if (bAccepted) {
            sEvent = a_sCommand;
            if (cFirst == 'D') {
                sDeployment = a_sCommand;
            } else if (cFirst == 'L' || cFirst == 'U') {
                sScenario = cFirst == 'L' ? a_sCommand : QString();
                sRun.clear();
            } else {
                sRun = cFirst == 'S' && sScenario.isEmpty() ? QString() : a_sCommand;
            }
            if (cFirst == 'S' || cFirst == 'P') {
                met.insert(a_sCommand + sScenario);
            }
        }
    }

    [[nodiscard]] QString state() const
    {
        const QString sAccepted = bAccepted ? QStringLiteral("accepted") : QStringLiteral("not accepted");
        return QStringList({sAccepted, sScenario, sRun, sDeployment, sEvent}).join(u' ') + others.join(u' ');
    }

    QSet<QString> met; ///< each start and pause, with the scenario at that time
    bool bAccepted = false;
    QString sScenario;
    QString sRun;
    QString sDeployment;
    QString sEvent;
    QStringList others;
};

/// A service whose log lines are kept.
struct LoggedService
{
    explicit LoggedService(std::chrono::milliseconds a_timeout = SimulationService::s_timeout)
        : service(a_timeout)
    {
        QObject::connect(&service, &SimulationService::logged, &service,
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
    void supersededCommands();
    void controllerIsNotEvicted();
    void stalledPeer_data();
    void stalledPeer();
    void slowButSteadyPeer();
    void allPendingBytes();
    void slowDeviceIsSentNewestScenario();
    void keptBytesBlameNobody();
    void statesOnceForManyRequests();
    void listOnceForManyChanges();
    void notDecodedWithoutControl();
    void tooLargeCommand();
    void burstOfConnections();
};

void TestSimulationService::outbox_data()
{
    QTest::addColumn<QString>("actions"); // "order", "key=report", or the number of bytes to take
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
    QTest::newRow("newest scenario") << "L1 a L22 L3 b 99"
                                     << "aL3b";
    QTest::newRow("starts of a scenario, not a stop") << "S0 L1 S1 P1 X1 L2 S2 99"
                                                      << "S0X1L2S2";
    QTest::newRow("unload") << "L1 S1 U1 S2 L2 99"
                            << "U1S2L2";
    QTest::newRow("a scenario that has begun to leave") << "L1 1 S1 L2 S2 L3 99"
                                                        << "L 1S1L3";
    QTest::newRow("a scenario that has left") << "L1 2 S1 L2 99"
                                              << "L1 S1L2";
    QTest::newRow("a deployment that has begun to leave") << "D1 1 D2 L1 S1 D3 99"
                                                          << "D 1L1S1D3";
    QTest::newRow("deployments and scenarios") << "D1 L1 D2 L2 S2 D3 99"
                                               << "L2S2D3";
    QTest::newRow("before an unregistration") << "k=1 L1 S1 D1 R1 k=2 L2 D2 k=3 L3 99"
                                              << "1L1S1D1R13D2L3";
    QTest::newRow("a report that leaves before an unregistration") << "k=1 R1 k=2 1 k=3 99"
                                                                   << "1 R13";
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
            return std::make_shared<OutgoingCommand>(a_sText.toLatin1(), pTotal, kindOf(a_sText.front()));
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
        QVERIFY(*pTotal > 1'000'000 && *pTotal < 1'100'000); // all outboxes share the bytes
        QCOMPARE(outboxes[0]->take(3'000'000).size(), 2'000'000);
        outboxes[1]->clear();
    }
    QCOMPARE(*pTotal, 0);
}

/// Commands may be superseded while a device reads slowly. The device ends in the same
/// state as after all commands. Each start or pause applies to the scenario
/// to which it would apply if no command were superseded.
void TestSimulationService::supersededCommands()
{
    constexpr quint32 uiSequences = 3000;
    constexpr int iCommands = 40;
    const QString sKinds = QStringLiteral("LLLLUSSPXDDJCR");
    for (quint32 uiSeed = 1; uiSeed <= uiSequences; ++uiSeed) {
        QRandomGenerator random(uiSeed);
        const auto pTotal = std::make_shared<qint64>(0);
        Outbox outbox(pTotal);
        QStringList all;
        QByteArray taken;
        for (int i = 0; i < iCommands; ++i) {
            const QChar cKind = i == 0 ? u'C' : sKinds[random.bounded(int(sKinds.size()))];
            all.append(cKind + QString::number(i));
            const auto pCommand =
                std::make_shared<OutgoingCommand>(all.constLast().toLatin1() + ' ', pTotal, kindOf(cKind));
            if (cKind == u'C') {
                outbox.report(QStringLiteral("confirmation"), pCommand);
            } else {
                outbox.append(pCommand);
            }
            if (random.bounded(6) == 0) {
                taken += outbox.take(random.bounded(20));
            }
        }
        taken += outbox.take(1000);
        ModelDevice quick;
        ModelDevice slow;
        for (const QString& sCommand : std::as_const(all)) {
            quick.receive(sCommand);
        }
        const QStringList arrived = QString::fromLatin1(taken).split(u' ', Qt::SkipEmptyParts);
        for (const QString& sCommand : arrived) {
            slow.receive(sCommand);
        }
        const QString sWhat = all.join(u' ') + QStringLiteral(" -> ") + arrived.join(u' ');
        QVERIFY2(slow.state() == quick.state(), qPrintable(sWhat));
        QVERIFY2(quick.met.contains(slow.met), qPrintable(sWhat));
        QCOMPARE(*pTotal, 0);
    }
}

/// Another peer acquires and releases the service repeatedly, while the controller is
/// busy and does not read.
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
    // With a separate report after each release, the controller would receive 330 MB of
    // states.
    attacker.socket.write((s_acquire + s_release).repeated(10'000));
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
    QTest::addColumn<QString>("reason"); // empty = not dropped
    QTest::newRow("half a command") << QByteArray("<Command><Load")
                                    << "dropped: it left a command unfinished for 1 second";
    QTest::newRow("silent") << QByteArray() << QString();
    QTest::newRow("whole command") << s_acquire << QString();
    QTest::newRow("asks and does not read")
        << s_ask.repeated(4000) << "dropped: it has not read pending data for 1 second";
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

/// A peer that keeps sending bytes is not dropped.
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

/// The peer with the most pending bytes is dropped, and the others are not.
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
    // The dropped peer's bytes no longer count.
    small.socket.write(begin + QByteArray(iLimit * 9 / 10, 'A') + end);
    QVERIFY(small.isServed());
    Limits::setValue(Limits::AllPendingBytes, UINT64_MAX); // without limit
    middle.socket.write(begin + QByteArray(2'000'000, 'A') + end);
    QVERIFY(middle.isServed());
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")).size(), 1);
}

/// A device reads slowly while a controller sends many scenarios and deployments. The
/// service keeps only the newest ones and sends them to the device.
void TestSimulationService::slowDeviceIsSentNewestScenario()
{
    constexpr int iLoads = 20;
    // Size of one scenario or deployment. The system buffers some of them instead of
    // the service.
    constexpr qsizetype iBytes = 500'000;
    Limits::setValue(Limits::AllPendingBytes, 6 * iBytes);
    LoggedService logged;
    Peer device(logged.service);
    Peer controller(logged.service);
    device.socket.write(registration("slow"));
    QVERIFY(device.isServed());
    device.socket.setReadBufferSize(1);
    controller.socket.write(s_acquire);
    QRandomGenerator random(1);
    QByteArray document(iBytes, '\0');
    for (int i = 0; i < iLoads; ++i) {
        random.generate(document.begin(), document.end());
        controller.socket.write(Simulation::SimulationServiceCommunication::encode(
            [&](auto& a_to) { a_to.sendLoadScenario(document); }));
        controller.socket.write(Simulation::SimulationServiceCommunication::encode(
            [&](auto& a_to) { a_to.sendLoadDeployment(document); }));
        QVERIFY(controller.isServed());
    }
    QCOMPARE(logged.lines.filter(QStringLiteral("dropped")), QStringList());
    controller.socket.write(s_start);
    device.socket.setReadBufferSize(0);
    QVERIFY(waitFor([&] {
        device.received += device.socket.readAll();
        return device.received.contains("StartScenario");
    }));
    const QByteArray newest = qCompress(document).toBase64();
    QVERIFY(device.received.count("<ScenarioData>") < iLoads);
    QCOMPARE(device.received.count(newest), 2); // as a scenario and as a deployment
}

/// The service keeps the records of devices. These records do not count as pending bytes
/// of a peer. The limit of an id applies to its encoded form.
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

/// The service sends the states once for all requests that it reads in one turn of the
/// event loop.
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
    // About 200 of the 2 * iRequests fit into one turn of the event loop.
    const qsizetype iStates = peer.received.count("<SimulationDeveiceStateUpdate");
    QVERIFY2(iStates >= iDevices && iStates < iDevices * iRequests / 10,
             qPrintable(QString::number(iStates)));
}

/// Each request is answered. All requests of one turn get the same list.
void TestSimulationService::listOnceForManyChanges()
{
    LoggedService logged;
    Peer peer(logged.service);
    peer.socket.write(registration("a"));
    QVERIFY(peer.isServed());
    peer.socket.write(s_ask + registration("a", QStringLiteral("first")) + s_ask +
                      registration("a", QStringLiteral("second")) + s_ask); // in one turn
    QTRY_COMPARE_WITH_TIMEOUT((peer.received += peer.socket.readAll()).count("</ResponseSimulationDevices>"),
                              3, s_iTimeout);
    QCOMPARE(peer.received.count("second"), 3);
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
    QCOMPARE(
        logged.lines.filter(QStringLiteral("LoadScenario ignored: it does not control the service")).size(),
        1);
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

/// The service is busy during the burst: its event loop does not run.
void TestSimulationService::burstOfConnections()
{
    constexpr int iPeers = 300;
    // If the queue of new connections is full, the system repeats an attempt after 1 s.
    constexpr int iMuchShorter = 900; // ms
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

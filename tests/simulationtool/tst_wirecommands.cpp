#include "filesizelimit.h"
#include "kpbase/errorhandler.h"
#include "simulationdata/scenariotiminghelper.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationtool/toolprocess.h"
#include "simulationtool/toolrun.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <vector>

#include <sys/resource.h>

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::ScenarioDataState;
using Simulation::SimulationDeviceConfiguration;
using Simulation::SimulationDeviceState;

const QString s_sBuiltIn = QStringLiteral(":/DefaultData/Default.sce.exp");
QString s_sRepository; ///< made once for all tests

SimulationDeviceConfiguration deviceOf(const QString& a_sId)
{
    SimulationDeviceConfiguration device;
    device.setId(a_sId);
    device.setName(a_sId);
    return device;
}

/// A client in the test's process. The client records what it receives from the service.
struct Peer
{
    explicit Peer(const QString& a_sPort)
        : communication(&socket)
    {
        note(&Communication::acceptSimulationDevice, "accept");
        note(&Communication::unregisterSimulationDevice, "unregister");
        note(&Communication::loadScenario, "scenario");
        note(&Communication::loadDeployment, "deployment");
        note(&Communication::unloadScenario, "unload");
        note(&Communication::startScenario, "start");
        note(&Communication::pauseScenario, "pause");
        note(&Communication::stopScenario, "stop");
        note(&Communication::testModeOn, "test");
        note(&Communication::addJxDevice, "add");
        note(&Communication::removeJxDevice, "remove");
        QObject::connect(&communication, &Communication::simulationDeviceStateUpdate,
                         [this](const QString& a_sId, const SimulationDeviceState& a_state) {
                             received +=
                                 QStringLiteral("%1=%2 ").arg(a_sId).arg(int(a_state.scenarioDataState()));
                         });
        QObject::connect(&communication, &Communication::responseSimulationDevices,
                         [this](const auto& a_devices) {
                             ids.clear();
                             for (const auto& device : a_devices) {
                                 ids.append(device.id());
                             }
                             ++iAnswers;
                         });
        socket.connectToHost(QStringLiteral("127.0.0.1"), a_sPort.toUShort());
        socket.waitForConnected(s_iToolTimeout);
    }

    template<typename Signal>
    void note(Signal a_signal, const char* a_szName)
    {
        QObject::connect(&communication, a_signal,
                         [this, a_szName] { received += QLatin1String(a_szName) + u' '; });
    }

    void registerAs(const QString& a_sId)
    {
        communication.sendRegisterSimulationDevice(a_sId, deviceOf(a_sId));
    }

    void report(const QString& a_sId, ScenarioDataState a_eState, const QString& a_sMessage = QString())
    {
        SimulationDeviceState state;
        state.setScenarioDataState(a_eState);
        state.setMessage(a_sMessage);
        communication.sendSimulationDeviceStateUpdate(a_sId, state);
    }

    /// Waits until the service has received everything and has answered. Returns false
    /// after the timeout.
    bool synchronize()
    {
        const int iBefore = iAnswers;
        communication.sendCommandRequestSimulationDevices();
        return QTest::qWaitFor([&] { return iAnswers > iBefore; }, s_iToolTimeout);
    }

    /// The text received since the last call.
    QString take() { return std::exchange(received, QString()).trimmed(); }

    QTcpSocket socket;
    Communication communication;
    QString received;
    QStringList ids; ///< in the last answer
    int iAnswers = 0;
};

ToolResult runControl(const QString& a_sServer, const QStringList& a_arguments)
{
    return runTool(QStringList{QStringLiteral("control"), QStringLiteral("--server"), a_sServer} +
                   a_arguments);
}

/// Starts a device, by default with a repository that has all packages.
std::unique_ptr<Tool> startDevice(const QString& a_sId, const QString& a_sServer,
                                  const QStringList& a_options = {QStringLiteral("--repository"),
                                                                  s_sRepository})
{
    return std::make_unique<Tool>(QStringList{QStringLiteral("device"), QStringLiteral("--id"), a_sId,
                                              QStringLiteral("--server"), a_sServer, QStringLiteral("--step"),
                                              QStringLiteral("50")} +
                                  a_options);
}

} // namespace

class TestWireCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void road();
    void serviceIsRestarted();
    void deviceWaits();
    void deviceLacksPackages();
    void lateDevice();
    void newestControls();
    void newestRegisters();
    void badPeer_data();
    void badPeer();
    void wrongConfirmation();
    void serviceThatRepeatsOrders();
    void lostLogReader();
    void logLinesHaveTimes();
    void oddStart_data();
    void oddStart();
    void pauseOfNothing();
    void loadReportsDevices_data();
    void loadReportsDevices();
    void refused_data();
    void refused();
    void nobodyAnswers();
    void orders_data();
    void orders();
    void confirmations_data();
    void confirmations();
    void deployments();
    void onlookers();
    void demo();
    void demoReportsErrors();
    void demoWithoutRoom();

private:
    QTemporaryDir m_folder;
};

void TestWireCommands::initTestCase()
{
    ErrorHandler::Instance().setTraceMask(0);
    // The test must not use this machine's settings.
    qputenv("SIMULATION_CONFIG_DIR", TEST_DATA_DIR);
    QVERIFY(m_folder.isValid());
    s_sRepository = m_folder.filePath(QStringLiteral("packages"));
    QCOMPARE(runTool({QStringLiteral("repository"), QStringLiteral("init"), s_sRepository}).code, 0);
}

void TestWireCommands::road()
{
    Service service;
    const auto first = startDevice(QStringLiteral("rx-1"), service.address());
    const auto second = startDevice(QStringLiteral("rx-2"), service.address());
    QVERIFY(first->says(QStringLiteral("rx-1: accepted")) && second->says(QStringLiteral("rx-2: accepted")));

    const ToolResult loaded = runControl(service.address(), {QStringLiteral("load"), s_sBuiltIn});
    QCOMPARE(loaded.err, QString());
    QCOMPARE(loaded.code, 0);
    QCOMPARE(simplifiedLines(loaded.out).mid(2),
             QStringList({QStringLiteral("rx-1 rx-1 loaded -"), QStringLiteral("rx-2 rx-2 loaded -"),
                          QStringLiteral("Scenario sent, loaded by 2 of 2 devices")}));

    QCOMPARE(runControl(service.address(), {QStringLiteral("start"), QStringLiteral("5s")}).code, 0);
    for (Tool* const pDevice : {first.get(), second.get()}) {
        QVERIFY(pDevice->says(QStringLiteral("plays from 5000 ms")));
        QVERIFY(pDevice->says(QStringLiteral("pilot-boat     yes          156.800000"), 3));
    }
    // Without a time, pause uses the current scenario time, and the next start
    // continues there.
    const ToolResult paused = runControl(service.address(), {QStringLiteral("pause")});
    QCOMPARE(paused.code, 0);
    const uint uiTime = paused.out.section(u' ', 2, 2).toUInt();
    QVERIFY2(uiTime > 5050 && uiTime < 5000 + s_iToolTimeout, qPrintable(paused.out));
    QVERIFY(first->says(QStringLiteral("paused at %1 ms").arg(uiTime)));
    const ToolResult resumed = runControl(service.address(), {QStringLiteral("start")});
    QVERIFY2(resumed.out.endsWith(QStringLiteral("\nStarted at %1 ms, 2 devices\n").arg(uiTime)),
             qPrintable(resumed.out));
    QVERIFY(second->says(QStringLiteral("plays from %1 ms").arg(uiTime)));

    QCOMPARE(runControl(service.address(), {QStringLiteral("stop")}).code, 0);
    QVERIFY(first->says(QStringLiteral("stopped: ")));
    QCOMPARE(runControl(service.address(), {QStringLiteral("unload")}).code, 0);
    QVERIFY(second->says(QStringLiteral("state: no scenario")));

    QCOMPARE(second->codeAfter(SIGINT), 0);
    QVERIFY(service.says(QStringLiteral("device rx-2 unregistered")));
    const ToolResult listed = runControl(service.address(), {QStringLiteral("devices")});
    QVERIFY(listed.out.contains(QStringLiteral("rx-1")) &&
            listed.out.endsWith(QStringLiteral("\n1 device\n")));
    QCOMPARE(service.codeAfter(SIGTERM), 0);
}

void TestWireCommands::serviceIsRestarted()
{
    auto service = std::make_unique<Service>();
    const QString sAddress = service->address();
    const auto first = startDevice(QStringLiteral("rx-1"), sAddress);
    const auto second = startDevice(QStringLiteral("rx-2"), sAddress);
    QVERIFY(first->says(QStringLiteral("accepted")) && second->says(QStringLiteral("accepted")));
    QCOMPARE(runControl(sAddress, {QStringLiteral("load"), s_sBuiltIn}).code, 0);
    QCOMPARE(runControl(sAddress, {QStringLiteral("start")}).code, 0);
    QVERIFY(first->says(QStringLiteral("plays from 0 ms")));

    QCOMPARE(service->codeAfter(SIGKILL), -1);
    QVERIFY(first->says(QStringLiteral("connection lost")) &&
            second->says(QStringLiteral("connection lost")));
    service = std::make_unique<Service>(service->port());
    QCOMPARE(service->address(), sAddress);
    for (Tool* const pDevice : {first.get(), second.get()}) {
        QVERIFY(pDevice->says(QStringLiteral(": accepted"), 2));
        QVERIFY(!pDevice->text().contains(QStringLiteral("stopped")));
    }
    QVERIFY(service->says(QStringLiteral("device rx-1: loaded")));
    QCOMPARE(runControl(sAddress, {QStringLiteral("load"), s_sBuiltIn}).code, 0);
}

/// The device logs one line when it begins to wait, and one line when the service
/// listens.
void TestWireCommands::deviceWaits()
{
    constexpr int iMostLines = 10;
    QString sPort;
    {
        const Service ended;
        sPort = ended.port();
    }
    Tool device({QStringLiteral("device"), QStringLiteral("--trace"), QStringLiteral("--id"),
                 QStringLiteral("rx"), QStringLiteral("--server"), QStringLiteral("127.0.0.1:") + sPort});
    QVERIFY(device.says(QStringLiteral("rx: waits for the service: Connection refused")));
    QTest::qWait(500);
    QVERIFY2(device.text().count(u'\n') <= iMostLines, qPrintable(device.text().left(1000)));
    const Service service(sPort);
    QVERIFY(device.says(QStringLiteral("rx: connected")) && device.says(QStringLiteral("rx: accepted")));
    QCOMPARE(device.text().count(QStringLiteral("waits for")), 1);
}

/// The device runs without the missing packages. The editor receives the reason. The
/// exit code reports the missing packages.
void TestWireCommands::deviceLacksPackages()
{
    const QString sRepository = m_folder.filePath(QStringLiteral("too-large"));
    QCOMPARE(runTool({QStringLiteral("repository"), QStringLiteral("init"), sRepository}).code, 0);
    QFile file(sRepository + QStringLiteral("/SignalPackages/TuK-Default/Rect 10kHz/Signal.sdf"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(300'000));
    Service service;
    const auto device = [&] {
        const FileSizeLimit limit(290'000);
        return startDevice(QStringLiteral("rx"), service.address(),
                           {QStringLiteral("--repository"), sRepository});
    }();
    QVERIFY(device->says(QStringLiteral("could not be copied to the cache folder")));
    QVERIFY(device->says(QStringLiteral("accepted")));
    const ToolResult loaded = runControl(service.address(), {QStringLiteral("load"), s_sBuiltIn});
    QVERIFY2(loaded.out.contains(QStringLiteral("some packages could not be copied to the cache")),
             qPrintable(loaded.out));
    QCOMPARE(device->codeAfter(SIGTERM), 1);
}

void TestWireCommands::lateDevice()
{
    const Service service;
    Peer editor(service.port());
    editor.communication.sendCommandAcquireServer();
    editor.communication.sendLoadDeployment("<d/>");
    editor.communication.sendLoadScenario("<s/>");
    editor.communication.sendTestModeOn(true);
    editor.communication.sendStartScenario(1, 2);
    QVERIFY(editor.synchronize());

    const auto toldLate = [&](const QString& a_sId) {
        Peer late(service.port());
        const QSignalSpy scenarios(&late.communication, &Communication::loadScenario);
        const QSignalSpy starts(&late.communication, &Communication::startScenario);
        late.registerAs(a_sId);
        late.registerAs(a_sId + u'b'); // the same peer receives no order twice
        const bool bWhole = late.synchronize() &&
                            (scenarios.isEmpty() || scenarios[0][0] == QByteArray("<s/>")) &&
                            (starts.isEmpty() || starts[0] == QVariantList({1ULL, 2U}));
        return bWhole && late.ids == QStringList({a_sId, a_sId + u'b'}) ? late.take() : QString();
    };
    QCOMPARE(toldLate(QStringLiteral("a")), QStringLiteral("accept deployment scenario test start accept"));
    editor.communication.sendPauseScenario(7);
    // A lost connection unregisters its devices.
    QVERIFY(QTest::qWaitFor([&] { return editor.synchronize() && editor.ids.isEmpty(); }, s_iToolTimeout));
    QCOMPARE(toldLate(QStringLiteral("b")), QStringLiteral("accept deployment scenario test pause accept"));
    editor.communication.sendLoadScenario("<s/>"); // a new scenario does not run yet
    QVERIFY(editor.synchronize());
    QCOMPARE(toldLate(QStringLiteral("c")), QStringLiteral("accept deployment scenario test accept"));
    editor.communication.sendUnloadScenario();
    QVERIFY(editor.synchronize());
    QCOMPARE(toldLate(QStringLiteral("d")), QStringLiteral("accept deployment test accept"));
}

void TestWireCommands::newestControls()
{
    Service service;
    Peer device(service.port());
    Peer first(service.port());
    Peer second(service.port());
    device.registerAs(QStringLiteral("rx"));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded);
    QVERIFY(device.synchronize());
    // Sends every order of a controller from the peer. Returns the orders that the
    // device received.
    const auto ordered = [&](Peer& a_peer) {
        device.take();
        a_peer.communication.sendLoadDeployment("d");
        // The unload order would supersede a scenario that was sent before it.
        a_peer.communication.sendUnloadScenario();
        a_peer.communication.sendLoadScenario("s");
        a_peer.communication.sendStartScenario(1, 2);
        a_peer.communication.sendPauseScenario(3);
        a_peer.communication.sendStopScenario();
        a_peer.communication.sendTestModeOn(false);
        a_peer.communication.sendAddJxDevice(QStringLiteral("j"), "x");
        a_peer.communication.sendRemoveJxDevice(QStringLiteral("j"));
        return a_peer.synchronize() && device.synchronize() ? device.take() : QStringLiteral("no answer");
    };
    const QString sAll = QStringLiteral("deployment unload scenario start pause stop test add remove");
    QCOMPARE(ordered(first), QString());
    // A peer without control receives the state with the list of devices.
    QCOMPARE(first.take(), QStringLiteral("rx=2"));
    first.communication.sendCommandAcquireServer();
    QVERIFY(first.synchronize());
    QCOMPARE(first.take(), QStringLiteral("rx=2"));
    QCOMPARE(ordered(first), sAll);
    first.communication.sendStartScenario(1, 2);
    QVERIFY(first.synchronize());

    second.communication.sendCommandAcquireServer();
    QVERIFY(second.synchronize());
    QCOMPARE(second.take(), QStringLiteral("rx=0 start")); // the new scenario reset the state
    QCOMPARE(ordered(first), QString());
    device.report(QStringLiteral("rx"), ScenarioDataState::Failed);
    device.report(QStringLiteral("other"), ScenarioDataState::Failed); // not a device of this peer
    QVERIFY(device.synchronize() && second.synchronize() && first.synchronize());
    QCOMPARE(second.take(), QStringLiteral("rx=3"));
    QCOMPARE(first.take(), QStringLiteral("rx=0 start rx=3 start"));

    second.communication.sendCommandReleaseServer();
    QVERIFY(second.synchronize());
    QCOMPARE(ordered(second), QString());
    QCOMPARE(ordered(first), sAll);
    second.communication.sendCommandAcquireServer();
    QVERIFY(second.synchronize());
    second.socket.abort();
    QVERIFY(service.says(QStringLiteral("controls again"), 2));
    QCOMPARE(ordered(first), sAll);
    // An order sent just before the disconnection is passed on.
    device.take();
    first.communication.sendStopScenario();
    first.socket.disconnectFromHost();
    QTRY_COMPARE_WITH_TIMEOUT(device.received, QStringLiteral("stop "), s_iToolTimeout);
}

void TestWireCommands::newestRegisters()
{
    const Service service;
    Peer former(service.port());
    Peer newest(service.port());
    former.registerAs(QStringLiteral("rx"));
    QVERIFY(former.synchronize());
    newest.registerAs(QStringLiteral("rx"));
    QVERIFY(newest.synchronize() && former.synchronize());
    QCOMPARE(former.take(), QStringLiteral("accept unregister rx=0"));         // rx now belongs to "newest"
    former.communication.sendUnregisterSimulationDevice(QStringLiteral("rx")); // has no effect any more
    newest.communication.sendCommandAcquireServer();
    newest.communication.sendStopScenario();
    QVERIFY(former.synchronize() && newest.synchronize());
    QCOMPARE(newest.ids, QStringList({QStringLiteral("rx")}));
    QCOMPARE(newest.take(), QStringLiteral("accept rx=0 stop"));
    QCOMPARE(former.take(), QStringLiteral("rx=0")); // the state, but no order
}

void TestWireCommands::badPeer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<QString>("logged");

    const QByteArray payload = "<Command><LoadScenario><ScenarioData>" + QByteArray(1 << 20, 'A');
    QTest::newRow("garbage") << QByteArray("GET / HTTP/1.1\r\n\r\n") << false << "dropped: ";
    QTest::newRow("zero bytes") << QByteArray(64, '\0') << false << "dropped: ";
    QTest::newRow("malformed behind a command")
        << QByteArray("<Command><StopScenario/></Command><Command></Stop>") << false << "dropped: ";
    QTest::newRow("a million levels")
        << QByteArray("<a>").repeated(1'000'000) << false << "dropped: nesting depth";
    QTest::newRow("gone in a payload") << payload << true << "left";
    QTest::newRow("silent in a payload") << payload << false << "connected";
    QTest::newRow("silent") << QByteArray() << false << "connected";
    QTest::newRow("unknown command") << QByteArray("<Command><Explode/></Command>") << false << "connected";
    QTest::newRow("device without an id") << QByteArray("<Command><RegisterSimulation><SimulationDevice>") +
                                                 deviceOf(QString()).toXml().replace('<', "&lt;") +
                                                 "</SimulationDevice></RegisterSimulation></Command>"
                                          << false << "dropped: it registers a device without an id";
    QTest::newRow("record without bounds")
        << QByteArray("<Command><RegisterSimulation Id=\"x\"><SimulationDevice>") +
               deviceOf(QString(100'000, u'n')).toXml().replace('<', "&lt;") +
               "</SimulationDevice></RegisterSimulation></Command>"
        << false << "dropped: it registers a device with a record of";
}

void TestWireCommands::badPeer()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, closes);
    QFETCH(const QString, logged);

    Service service;
    Peer device(service.port());
    Peer editor(service.port());
    device.registerAs(QStringLiteral("rx"));
    editor.communication.sendCommandAcquireServer();
    QVERIFY(device.synchronize() && editor.synchronize());

    QTcpSocket bad;
    bad.connectToHost(QStringLiteral("127.0.0.1"), service.port().toUShort());
    QVERIFY(bad.waitForConnected(s_iToolTimeout));
    const QString sName = QStringLiteral("127.0.0.1:%1: ").arg(bad.localPort());
    bad.write(bytes);
    if (closes) {
        QVERIFY(bad.waitForBytesWritten(s_iToolTimeout));
        bad.abort();
    }
    QVERIFY2(service.says(sName + logged), qPrintable(service.text()));
    if (logged.startsWith(QStringLiteral("dropped"))) {
        QTRY_COMPARE_WITH_TIMEOUT(bad.state(), QAbstractSocket::UnconnectedState, s_iToolTimeout);
    }
    device.take();
    editor.communication.sendStartScenario(1, 2);
    QVERIFY(editor.synchronize() && device.synchronize());
    QCOMPARE(device.take(), QStringLiteral("start"));
    QCOMPARE(editor.ids, QStringList({QStringLiteral("rx")}));
    QCOMPARE(service.text().count(QStringLiteral("dropped")),
             logged.startsWith(QStringLiteral("dropped")) ? 1 : 0);
}

void TestWireCommands::wrongConfirmation()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const auto device =
        startDevice(QStringLiteral("rx"), QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    QVERIFY(QTest::qWaitFor([&] { return server.hasPendingConnections(); }, s_iToolTimeout));
    Communication communication(server.nextPendingConnection());
    SimulationDeviceConfiguration registered;
    connect(&communication, &Communication::registerSimulationDevice,
            [&](const QString& /*a_sId*/, const SimulationDeviceConfiguration& a_device) {
                registered = a_device;
            });
    const QSignalSpy states(&communication, &Communication::simulationDeviceStateUpdate);
    QTRY_COMPARE_WITH_TIMEOUT(registered.id(), QStringLiteral("rx"), s_iToolTimeout);
    QVERIFY(!registered.machine().isEmpty() && !registered.machineId().isEmpty());

    communication.sendLoadScenario("<Scenario/>");
    QVERIFY(device->says(QStringLiteral("has not confirmed the device are ignored")));
    communication.sendAcceptSimulationDevice(
        QStringLiteral("rx"), Communication::createConfirmation(deviceOf(QStringLiteral("rx"))));
    communication.sendLoadScenario("<Scenario/>");
    QVERIFY(device->says(QStringLiteral("wrong confirmation")));
    QCOMPARE(states.count(), 0);
    communication.sendAcceptSimulationDevice(QStringLiteral("rx"),
                                             Communication::createConfirmation(registered));
    communication.sendLoadScenario("<Nonsense/>");
    QTRY_COMPARE_WITH_TIMEOUT(states.count(), 3, s_iToolTimeout); // none, loading, failed
    QCOMPARE(states[2][1].value<SimulationDeviceState>().scenarioDataState(), ScenarioDataState::Failed);
    QCOMPARE(device->text().count(QStringLiteral("state: loading")), 1);
    communication.sendLoadDeployment("<d/>");
    QVERIFY(device->says(QStringLiteral("rx: not deployed: deployment of 4 bytes: line 1, column 4")));
    communication.socket()->write("no command");
    QVERIFY(device->says(QStringLiteral("cannot be read")) &&
            device->says(QStringLiteral("rx: connected"), 2));
}

void TestWireCommands::serviceThatRepeatsOrders()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const auto device =
        startDevice(QStringLiteral("rx"), QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    QVERIFY(QTest::qWaitFor([&] { return server.hasPendingConnections(); }, s_iToolTimeout));
    QTcpSocket* const pSocket = server.nextPendingConnection();
    Communication communication(pSocket);
    connect(&communication, &Communication::registerSimulationDevice,
            [&](const QString& a_sId, const SimulationDeviceConfiguration& a_device) {
                communication.sendAcceptSimulationDevice(a_sId, Communication::createConfirmation(a_device));
                pSocket->setReadBufferSize(1); // the peer does not read the answers
            });
    QVERIFY(device->says(QStringLiteral("rx: accepted")));
    pSocket->write(QByteArray("<Command><UnloadScenario/></Command>").repeated(60'000) + "no command");
    QVERIFY(QTest::qWaitFor([&] { return server.hasPendingConnections(); }, s_iToolTimeout));
    QVERIFY(device->says(QStringLiteral(" lines dropped")));
    QVERIFY(device->text().count(u'\n') < 110);
}

void TestWireCommands::lostLogReader()
{
    QProcess service;
    service.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  {QStringLiteral("service"), QStringLiteral("--port"), QStringLiteral("0")});
    QVERIFY(service.waitForReadyRead(s_iToolTimeout));
    const QString sPort = QString::fromUtf8(service.readLine()).section(u' ', -1).trimmed();
    service.closeReadChannel(QProcess::StandardError);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(Peer(sPort).synchronize());
    }
    service.kill();
    QVERIFY(service.waitForFinished(s_iToolTimeout));
}

void TestWireCommands::logLinesHaveTimes()
{
    const QByteArray zone = qgetenv("TZ");
    const auto restore = qScopeGuard([&] { qputenv("TZ", zone); });
    qputenv("TZ", "IST-5:30"); // needs no data about time zones
    const QDateTime begin = QDateTime::currentDateTimeUtc();
    Service service;
    const auto device = startDevice(QStringLiteral("rx"), service.address());
    QVERIFY(device->says(QStringLiteral("accepted")));
    for (Tool* const pTool : std::initializer_list<Tool*>{&service, device.get()}) {
        const QStringList lines = pTool->text().split(u'\n', Qt::SkipEmptyParts);
        QVERIFY(lines.size() >= 2);
        for (const QString& line : lines.mid(pTool == &service ? 1 : 0)) {
            const QString sTime = line.section(u' ', 0, 0);
            QVERIFY2(sTime.size() == 29 && sTime.endsWith(QStringLiteral("+05:30")), qPrintable(line));
            const QDateTime time = QDateTime::fromString(sTime, Qt::ISODateWithMs);
            QVERIFY2(time >= begin && time <= QDateTime::currentDateTimeUtc(), qPrintable(line));
        }
    }
}

void TestWireCommands::oddStart_data()
{
    QTest::addColumn<quint64>("ahead"); // us
    QTest::addColumn<uint>("time");
    QTest::addColumn<QString>("logged");
    QTest::newRow("past the end") << quint64{0} << UINT_MAX
                                  << "rx: not started: the scenario ends at 60000 ms, before 4294967295 ms";
    QTest::newRow("later") << quint64{3600'500'000} << 0U << "rx: starts in 3600 s\n";
    QTest::newRow("soon") << quint64{1'500'000} << 0U << "rx: plays from 0 ms\n";
    QTest::newRow("never") << (quint64{1} << 62) << 0U << "rx: not started: the start is ";
}

void TestWireCommands::oddStart()
{
    QFETCH(const quint64, ahead);
    QFETCH(const uint, time);
    QFETCH(const QString, logged);
    const Service service;
    const auto device = startDevice(QStringLiteral("rx"), service.address());
    QVERIFY(device->says(QStringLiteral("accepted")));
    QCOMPARE(runControl(service.address(), {QStringLiteral("load"), s_sBuiltIn}).code, 0);
    Peer editor(service.port());
    editor.communication.sendCommandAcquireServer();
    editor.communication.sendStartScenario(Simulation::ScenarioTimingHelper::currentTimeStamp() + ahead,
                                           time);
    QVERIFY2(device->says(logged), qPrintable(device->text()));
    QCOMPARE(device->text().contains(QStringLiteral("plays from")), logged.contains(QStringLiteral("plays")));
}

/// A pause applies only to a device that plays or is paused. Any other device continues
/// to report the result of its last order.
void TestWireCommands::pauseOfNothing()
{
    const Service service;
    const auto device = startDevice(QStringLiteral("rx"), service.address());
    QVERIFY(device->says(QStringLiteral("accepted")));
    const auto control = [&](const char* a_szOrder) {
        return runControl(service.address(), QString::fromLatin1(a_szOrder).split(u' '));
    };
    const QString sNothing = QStringLiteral("rx: not paused: no scenario plays\n");
    QCOMPARE(control("start").code, 1);
    QCOMPARE(control("pause").code, 0);
    QVERIFY2(device->says(sNothing), qPrintable(device->text()));
    QVERIFY(control("status").out.contains(QStringLiteral("not started: no scenario is loaded")));

    QCOMPARE(control("load :/DefaultData/Default.sce.exp").code, 0);
    QCOMPARE(control("start 59900").code, 0); // ms; plays for a tenth of a second
    QVERIFY(device->says(QStringLiteral("the scenario has ended")));
    QCOMPARE(control("pause 59950").code, 0);
    QVERIFY(device->says(sNothing, 2));

    QCOMPARE(control("start 0").code, 0);
    for (const char* const szOrder : {"pause 500", "pause 700"}) {
        QCOMPARE(control(szOrder).code, 0);
    }
    QVERIFY(device->says(QStringLiteral("rx: paused at 500 ms: ")));
    QVERIFY(device->says(QStringLiteral("rx: paused at 700 ms\n")));
    QCOMPARE(device->text().count(QStringLiteral("not paused")), 2);
}

void TestWireCommands::loadReportsDevices_data()
{
    QTest::addColumn<ScenarioDataState>("state");
    QTest::addColumn<QString>("logged");
    QTest::newRow("fails") << ScenarioDataState::Failed << "rx rx failed -";
    QTest::newRow("never ends") << ScenarioDataState::Loading << "rx rx loading -";
}

void TestWireCommands::loadReportsDevices()
{
    QFETCH(const ScenarioDataState, state);
    QFETCH(const QString, logged);
    const Service service;
    Peer device(service.port());
    connect(&device.communication, &Communication::loadScenario,
            [&] { device.report(QStringLiteral("rx"), state); });
    device.registerAs(QStringLiteral("rx"));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded); // state of an earlier scenario
    QVERIFY(device.synchronize());
    QTimer again; // a repeated state is not progress
    connect(&again, &QTimer::timeout, [&] { device.report(QStringLiteral("rx"), state); });
    again.start(200);
    Tool control({QStringLiteral("control"), QStringLiteral("load"), s_sBuiltIn, QStringLiteral("--server"),
                  service.address(), QStringLiteral("--timeout"), QStringLiteral("2")});
    QVERIFY(control.says(QStringLiteral("loaded by 0 of 1 device\n")));
    QCOMPARE(control.codeAfter(0), 1);
    QVERIFY2(simplifiedLines(control.text()).contains(logged), qPrintable(control.text()));
}

void TestWireCommands::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("logged");
    const auto row = [](const char* a_szName, const char* a_szArguments, const char* a_szLogged) {
        QTest::newRow(a_szName) << QString::fromUtf8(a_szArguments).split(u' ')
                                << QString::fromLatin1(a_szLogged);
    };
    row("no action", "control", "control: an action is needed");
    row("unknown action", "control explode", "control: there is no action \"explode\"");
    row("no file", "control load", "control: load takes one FILE, 0 given");
    row("too much", "control stop now", "control: stop takes nothing, 1 given");
    row("no time", "control start soon", "control: start needs a time from 0 to 4294967295 ms");
    row("no port", "control stop --server host:0", "control: the port of --server needs");
    row("no host", "control stop --server :57400", "control: --server needs HOST:PORT");
    row("half an address", "control stop --server [::1", "control: --server needs HOST:PORT");
    row("no address", "control stop --server a:b:c", "control: --server needs HOST:PORT");
    row("no timeout", "control stop --timeout 0",
        "control: --timeout needs a whole number of seconds from 1");
    row("missing scenario", "control load missing", "missing: No such file");
    row("folder", "control load /", "/: ");
    row("no scenario", "control load DIR/deployment", "line 1, column");
    row("half a scenario", "control load DIR/half", "half: line 1");
    row("no deployment", "control deploy DIR/half",
        "the root element is \"Scenario\", not \"SimulationDeployment\"");
    row("half a deployment", "control deploy DIR/deployment", "deployment: line 1, column");
    row("service port", "service --port 65536", "service: --port needs a whole number from 0 to 65535");
    row("service address", "service --address here", "service: --address needs an IP address");
    row("service timeout", "service --timeout 0",
        "service: --timeout needs a whole number of seconds from 1");
    row("foreign address", "service --port 0 --address 192.0.2.1", "service: cannot listen on 192.0.2.1:0");
    row("device without id", "device", "device: --id must be given");
    row("unprintable id", "device --id \x01", "device: --id needs at most 255 characters");
    row("line separator", "device --id a\u2028b", "device: --id needs at most 255 characters");
    row("step", "device --id a --step 0", "device: --step needs a time from 1 to 4294967295 ms");
    row("longitude", "device --id a --longitude 180.5",
        "device: --longitude needs a number of degrees from -180 to 180, not \"180.5\"");
    row("latitude", "device --id a --latitude nan", "device: --latitude needs a number of degrees");
    row("empty station", "device --id a --station ", "device: --station must be given and must not be empty");
    row("repository", "device --id a --repository missing", "missing: No such folder");
    row("demo", "demo fast", "demo: takes no arguments");
}

void TestWireCommands::refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(const QString, logged);
    const QTemporaryDir folder;
    const auto write = [&](const QString& a_sName, const QByteArray& a_content) {
        QFile file(folder.filePath(a_sName));
        return file.open(QIODevice::WriteOnly) && file.write(a_content) == a_content.size();
    };
    QVERIFY(write(QStringLiteral("half"), "<Scenario><Emitter>"));
    QVERIFY(write(QStringLiteral("deployment"), "<SimulationDeployment>"));
    arguments.replaceInStrings(QStringLiteral("DIR"), folder.path());
    const ToolResult result = runTool(arguments);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
    QVERIFY2(result.err.contains(logged) && result.err.count(u'\n') == 1, qPrintable(result.err));
}

void TestWireCommands::nobodyAnswers()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    const QString sAddress = QStringLiteral("127.0.0.1:%1").arg(silent.serverPort());
    const QStringList stop{QStringLiteral("stop"), QStringLiteral("--timeout"), QStringLiteral("1")};
    const ToolResult noAnswer = runControl(sAddress, stop);
    QCOMPARE(noAnswer.err,
             QStringLiteral("simulationtool: control: %1: the service does not answer\n").arg(sAddress));
    QCOMPARE(noAnswer.code, 2);
    connect(&silent, &QTcpServer::newConnection, [&] { silent.nextPendingConnection()->write("garbage"); });
    Tool control({QStringLiteral("control"), QStringLiteral("stop"), QStringLiteral("--server"), sAddress});
    QVERIFY(control.says(sAddress + QStringLiteral(": the answer cannot be read: ")));
    QCOMPARE(control.codeAfter(0), 2);
    silent.close();
    const ToolResult nobody = runControl(sAddress, stop);
    QCOMPARE(nobody.err, QStringLiteral("simulationtool: control: %1: Connection refused\n").arg(sAddress));
    QCOMPARE(nobody.code, 2);

    const Service service;
    const ToolResult nothing = runControl(service.address(), {QStringLiteral("pause")});
    QVERIFY(nothing.err.contains(QStringLiteral("reports no running scenario")));
    QCOMPARE(nothing.code, 2);
}

/// The limit of open files is lowered step by step. The signal shapes fail first,
/// because they are opened last.
void TestWireCommands::demoReportsErrors()
{
    for (rlim_t uiFiles = 40; uiFiles > 10; --uiFiles) {
        QProcess process;
        process.setChildProcessModifier([uiFiles] {
            const rlimit limit{uiFiles, uiFiles};
            setrlimit(RLIMIT_NOFILE, &limit);
        });
        process.start(QStringLiteral(SIMULATIONTOOL_PATH), {QStringLiteral("demo")});
        QVERIFY(process.waitForFinished(s_iToolTimeout));
        const QString sError = QString::fromUtf8(process.readAllStandardError());
        QCOMPARE(process.exitCode(), sError.isEmpty() ? 0 : 1);
        if (!sError.isEmpty()) {
            QVERIFY2(
                sError.contains(QStringLiteral("its signal shape file is refused: Too many open files")) &&
                    sError.contains(QStringLiteral("demo: could not play it with all packages: ")),
                qPrintable(sError));
            return;
        }
    }
    QFAIL("the demo needs fewer files than expected");
}

void TestWireCommands::demoWithoutRoom()
{
    const FileSizeLimit limit(1'000);
    const ToolResult result = runTool({QStringLiteral("demo")});
    QCOMPARE(result.code, 1);
    QVERIFY2(
        result.err.startsWith(QStringLiteral("simulationtool: demo: could not make a repository in /")) &&
            result.err.contains(QStringLiteral(": File too large. Remove the cause")),
        qPrintable(result.err));
}

void TestWireCommands::orders_data()
{
    QTest::addColumn<QStringList>("device"); // options of the device; "-": no device runs
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("last");
    const QStringList whole{QStringLiteral("--repository"), s_sRepository};
    const QStringList nothing{QStringLiteral("--name"), QStringLiteral("rx")};
    const QStringList nobody{QStringLiteral("-")};
    const QStringList load{QStringLiteral("load"), s_sBuiltIn};
    const QStringList start{QStringLiteral("start")};
    const QString sLater =
        QStringLiteral("no device is registered; the service keeps it for devices that register later");
    QTest::newRow("nothing loaded") << whole << start << "rx rx not started: no scenario is loaded"
                                    << "Not started at 0 ms, confirmed by 0 of 1 device";
    QTest::newRow("no device to start")
        << nobody << start << QString() << QStringLiteral("Not started at 0 ms: ") + sLater;
    QTest::newRow("no device to load")
        << nobody << load << QString() << QStringLiteral("Scenario not loaded: ") + sLater;
    QTest::newRow("no device to stop") << nobody << QStringList{QStringLiteral("stop")} << QString()
                                       << "Stop sent, but no device is registered";
    QTest::newRow("replaced packages")
        << nothing << load
        << "rx rx loaded warning: no repository is configured: 2 of 3 packages replaced by the default "
           "package: b696e61d-dcae-42b4-b794-4a4adb8476c0, 9a567123-d88f-4177-9b57-b02c1ec104f7"
        << "Scenario sent, loaded by 1 of 1 device, with replaced packages by 1";
}

/// An error of a device is shown to the user who gave the order.
void TestWireCommands::orders()
{
    QFETCH(const QStringList, device);
    QFETCH(const QStringList, order);
    QFETCH(const QString, line);
    QFETCH(const QString, last);
    const Service service;
    std::unique_ptr<Tool> running;
    if (device.constFirst() != u'-') {
        running = startDevice(QStringLiteral("rx"), service.address(), device);
        QVERIFY(running->says(QStringLiteral("accepted")));
    }
    const ToolResult result = runControl(service.address(), order);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 1);
    const QStringList lines = simplifiedLines(result.out);
    QCOMPARE(lines.constLast(), last);
    QVERIFY2(line.isEmpty() ? lines.size() == 1 : lines.contains(line), qPrintable(result.out));

    const ToolResult json = runControl(service.address(), order + QStringList{QStringLiteral("--json")});
    QCOMPARE(json.code, 1);
    const QJsonObject report = QJsonDocument::fromJson(json.out.toUtf8()).object();
    QCOMPARE(report.value(QStringLiteral("device_count")), QJsonValue(running != nullptr ? 1 : 0));
    QCOMPARE(report.value(QStringLiteral("devices")).toArray().size(), running != nullptr ? 1 : 0);
}

void TestWireCommands::confirmations_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("last");
    QTest::addColumn<int>("code");
    const QString sNot = QStringLiteral("did not confirm");
    const QString sNone = QStringLiteral("Not started at 70 ms, confirmed by 0 of 1 device");
    QTest::newRow("plays") << "plays from 70 ms; scenario \"x\", 1 emitter"
                           << "plays from 70 ms"
                           << "Started at 70 ms, 1 device" << 0;
    QTest::newRow("another start") << "plays from 7 ms" << sNot << sNone << 1;
    QTest::newRow("scenario named so") << "scenario \"plays from 70 ms\", 1 emitter" << sNot << sNone << 1;
    QTest::newRow("hostile reason") << QString::fromUtf16(u"not started: \u202e") << "not started: \\u{202e}"
                                    << sNone << 1;
    QTest::newRow("no message") << QString() << sNot << sNone << 1;
}

/// Only the device's own message confirms its start.
void TestWireCommands::confirmations()
{
    QFETCH(const QString, message);
    QFETCH(const QString, line);
    QFETCH(const QString, last);
    QFETCH(const int, code);
    const Service service;
    Peer device(service.port());
    connect(&device.communication, &Communication::startScenario,
            [&] { device.report(QStringLiteral("rx"), ScenarioDataState::Loaded, message); });
    device.registerAs(QStringLiteral("rx"));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded, QStringLiteral("plays from 70 ms"));
    QVERIFY(device.synchronize());
    Tool control({QStringLiteral("control"), QStringLiteral("start"), QStringLiteral("70"),
                  QStringLiteral("--server"), service.address()});
    QVERIFY(control.says(QStringLiteral("1 device\n")));
    QCOMPARE(control.codeAfter(0), code);
    const QStringList lines = simplifiedLines(control.text());
    QVERIFY2(lines.contains(QStringLiteral("rx rx ") + line), qPrintable(control.text()));
    QCOMPARE(lines.constLast(), last);
}

void TestWireCommands::deployments()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("deployment")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "<SimulationDeployment FileFormatVersion='1' Name='Harbour'>"
        "<Device ID='by-id'><Station>pier</Station></Device>"
        "<Device ID='other' Name='North'><Position><Fixed><Lon>10.5</Lon><Lat>54.25</Lat></Fixed>"
        "</Position></Device>"
        "<Device ID='t-1' Name='twin'/><Device ID='t-2' Name='twin'/>"
        "<Station ID='pier'><Position><Fixed><Lon>9.5</Lon><Lat>-53.5</Lat></Fixed></Position></Station>"
        "</SimulationDeployment>");
    file.close();
    Service service;
    std::vector<std::unique_ptr<Tool>> devices;
    const auto add = [&](const char* a_szId, const char* a_szName) {
        devices.push_back(
            startDevice(QLatin1String(a_szId), service.address(),
                        {QStringLiteral("--name"), QLatin1String(a_szName), QStringLiteral("--type"),
                         QStringLiteral("DF"), QStringLiteral("--station"), QStringLiteral("hut"),
                         QStringLiteral("--longitude"), QStringLiteral("-1.25")}));
        QVERIFY(devices.back()->says(QStringLiteral("accepted")));
    };
    add("by-id", "twin"); // the id takes precedence over the name
    add("by-name", "North");
    const QStringList deploy{QStringLiteral("deploy"), file.fileName()};
    QCOMPARE(runControl(service.address(), deploy).code, 0);
    add("ambiguous", "twin");
    add("stranger", "nobody");
    const ToolResult result = runControl(service.address(), deploy);
    QCOMPARE(result.code, 1);
    QCOMPARE(
        simplifiedLines(result.out).mid(2),
        QStringList({QStringLiteral("ambiguous twin not deployed: deployment \"Harbour\" has 2 devices of "
                                    "its name and none of its id"),
                     QStringLiteral("by-id twin deployed: at station \"pier\""),
                     QStringLiteral("by-name North deployed: at 10.5, 54.25, without a station, found by "
                                    "its name"),
                     QStringLiteral("stranger nobody not deployed: deployment \"Harbour\" has no device "
                                    "of its id or name"),
                     QStringLiteral("Deployed, confirmed by 2 of 4 devices")}));
    // The service has received the new places; the other devices are unchanged.
    const QStringList listed =
        simplifiedLines(runControl(service.address(), {QStringLiteral("devices")}).out);
    const auto row = [&](const char* a_szBegin, const char* a_szEnd) {
        return std::any_of(listed.cbegin(), listed.cend(), [&](const QString& a_sLine) {
            return a_sLine.startsWith(QLatin1String(a_szBegin)) && a_sLine.endsWith(QLatin1String(a_szEnd));
        });
    };
    QVERIFY2(row("by-id twin no scenario DF pier ", " 9.5 -53.5") && row("by-name North", " 10.5 54.25") &&
                 row("stranger nobody no scenario DF hut ", " -1.25 0"),
             qPrintable(listed.join(u'\n')));
    QCOMPARE(service.text().count(QStringLiteral(" registered")), 4);
    QVERIFY(!service.text().contains(QStringLiteral("dropped")));
    // The places of a former deployment do not apply after a new one.
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<SimulationDeployment FileFormatVersion='1' Name='Sea'/>");
    file.close();
    QCOMPARE(runControl(service.address(), deploy).code, 1);
    const QString sDevices = runControl(service.address(), {QStringLiteral("devices")}).out;
    QVERIFY2(simplifiedLines(sDevices).filter(QStringLiteral(" hut ")).size() == 4, qPrintable(sDevices));
}

/// Commands that do not acquire the service show everything. The control stays with the
/// editor.
void TestWireCommands::onlookers()
{
    Service service;
    Peer editor(service.port());
    Peer device(service.port());
    editor.communication.sendCommandAcquireServer();
    device.registerAs(QStringLiteral("rx"));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loading);
    QVERIFY(editor.synchronize() && device.synchronize());
    Tool watch(
        {QStringLiteral("control"), QStringLiteral("watch"), QStringLiteral("--server"), service.address()});
    QVERIFY(watch.says(QStringLiteral("  rx: loading\n")) &&
            watch.says(QStringLiteral("  scenario: not running\n")));
    QVERIFY(QDateTime::fromString(watch.text().section(u' ', 0, 0), Qt::ISODateWithMs).isValid());

    const QString sMessage = QStringLiteral("plays from 5 ms; scenario \"Quay\", 1 emitter");
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded, sMessage);
    editor.communication.sendStartScenario(Simulation::ScenarioTimingHelper::currentTimeStamp(), 5);
    QVERIFY(watch.says(QStringLiteral("  rx: loaded, ") + sMessage + u'\n') &&
            watch.says(QStringLiteral("  scenario: running at ")));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded, QStringLiteral("the scenario has ended"));
    QVERIFY(device.synchronize());
    const ToolResult over = runControl(service.address(), {QStringLiteral("status")});
    QVERIFY2(over.out.contains(QStringLiteral(" ms, but no device reports that it plays\n")),
             qPrintable(over.out));
    device.report(QStringLiteral("rx"), ScenarioDataState::Loaded, sMessage);
    editor.communication.sendPauseScenario(77);
    QVERIFY(editor.synchronize() && device.synchronize());
    const ToolResult paused = runControl(service.address(), {QStringLiteral("status")});
    QCOMPARE(paused.code, 0);
    const QStringList shown = simplifiedLines(paused.out);
    QVERIFY2(shown.contains(QStringLiteral("Scenario Quay")) &&
                 shown.contains(QStringLiteral("Time paused at 77 ms")) &&
                 shown.contains(QStringLiteral("rx - loaded ") + sMessage),
             qPrintable(paused.out));

    const ToolResult json =
        runControl(service.address(), {QStringLiteral("status"), QStringLiteral("--json")});
    const QJsonObject status = QJsonDocument::fromJson(json.out.toUtf8()).object();
    QCOMPARE(status.value(QStringLiteral("run")), QJsonValue(QStringLiteral("paused")));
    QCOMPARE(status.value(QStringLiteral("scenario_time_ms")), QJsonValue(77));
    QCOMPARE(
        status.value(QStringLiteral("devices")).toArray().at(0).toObject().value(QStringLiteral("report")),
        QJsonValue(sMessage));

    Tool lines({QStringLiteral("control"), QStringLiteral("watch"), QStringLiteral("--json"),
                QStringLiteral("--server"), service.address()});
    QVERIFY(lines.says(QStringLiteral("\n"), 2));
    const QList<QByteArray> objects = lines.text().toUtf8().split('\n');
    const QJsonObject first = QJsonDocument::fromJson(objects.at(0)).object();
    QCOMPARE(first.value(QStringLiteral("id")), QJsonValue(QStringLiteral("rx")));
    QCOMPARE(first.value(QStringLiteral("state")), QJsonValue(QStringLiteral("loaded")));
    QCOMPARE(QJsonDocument::fromJson(objects.at(1)).object().value(QStringLiteral("scenario_time_ms")),
             QJsonValue(77));
    QCOMPARE(lines.codeAfter(SIGTERM), 0);

    device.socket.disconnectFromHost();
    QVERIFY(watch.says(QStringLiteral("  rx: not registered any more\n")));
    QCOMPARE(watch.text().count(QStringLiteral("  scenario: running")), 1);
    QCOMPARE(watch.codeAfter(SIGINT), 0);
    QCOMPARE(service.text().count(QStringLiteral("controls")), 1);
}

void TestWireCommands::demo()
{
    const ToolResult result = runTool({QStringLiteral("demo")});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    const QStringList lines = simplifiedLines(result.out);
    QVERIFY(lines.contains(QStringLiteral("device-2 deployment \"Harbour\": 1 station, 2 devices")));
    QVERIFY(lines.contains(QStringLiteral("editor receives: loaded by 2 devices")));
    QVERIFY(
        lines.contains(QStringLiteral("demo device-1 played 11 steps, device-2 11, with the same values")));
    QVERIFY(lines.constLast().startsWith(QStringLiteral("All 9 steps of the demo done")));
    QVERIFY2(result.out.contains(QStringLiteral("5000  pilot-boat     yes          156.800000")),
             qPrintable(result.out));
}

QTEST_GUILESS_MAIN(TestWireCommands)
#include "tst_wirecommands.moc"

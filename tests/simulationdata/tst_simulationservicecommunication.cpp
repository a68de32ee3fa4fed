#include "simulationdata/simulationlimits.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationdata/xmlelement.h"
#include "tracecollector.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Simulation;

namespace {

constexpr int s_iCommands = 17;
constexpr int s_iQuietTime = 20; // ms; an unwanted event would arrive in this time
constexpr const char* s_szSource = " (simulation/simulationdata/simulationservicecommunication)";

using Send = std::function<void(SimulationServiceCommunication&)>;

SimulationDeviceConfiguration device(const char* a_szId)
{
    SimulationDeviceConfiguration configuration;
    configuration.setId(QString::fromUtf8(a_szId));
    configuration.setPositionLongitude(7.5);
    return configuration;
}

SimulationDeviceState loadedState()
{
    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataState::Loaded);
    return state;
}

/// The document of device(), escaped so that another document can contain it as text.
QByteArray escapedDevice(const char* a_szId)
{
    return QByteArray("&lt;Simulation::SimulationDeviceConfiguration&gt;\n    &lt;Id&gt;")
        .append(a_szId)
        .append("&lt;/Id&gt;\n    &lt;Name/&gt;\n    &lt;StationId/&gt;\n    &lt;StationName/&gt;\n"
                "    &lt;Machine/&gt;\n    &lt;MachineId/&gt;\n    &lt;DeviceType/&gt;\n"
                "    &lt;PositionLongitude&gt;7.5&lt;/PositionLongitude&gt;\n"
                "    &lt;PositionLatitude&gt;0&lt;/PositionLatitude&gt;\n"
                "&lt;/Simulation::SimulationDeviceConfiguration&gt;\n");
}

QByteArray packed(const QByteArray& a_data)
{
    return qCompress(a_data).toBase64();
}

QByteArray inRoot(const QByteArray& a_command)
{
    return "<Command>\n" + a_command + "</Command>\n";
}

QByteArray bare(const char* a_szName)
{
    return inRoot(QByteArray("    <") + a_szName + "/>\n");
}

QByteArray scenarioCommand(const QByteArray& a_text)
{
    return inRoot("    <LoadScenario>\n        <ScenarioData>" + a_text +
                  "</ScenarioData>\n    </LoadScenario>\n");
}

QString textOf(const QVariant& a_argument)
{
    QStringList ids;
    for (const auto& entry : a_argument.value<QVector<SimulationDeviceConfiguration>>()) {
        ids.append(entry.id());
    }
    if (!ids.isEmpty()) {
        return ids.join(u' ');
    }
    if (a_argument.metaType() == QMetaType::fromType<SimulationDeviceState>()) {
        return QString::number(
            static_cast<int>(a_argument.value<SimulationDeviceState>().scenarioDataState()));
    }
    return a_argument.toString() + a_argument.value<SimulationDeviceConfiguration>().id();
}

/// Records all signals of a communication, as "name(argument,argument)".
class Log
{
public:
    explicit Log(SimulationServiceCommunication& a_communication)
    {
        const QMetaObject* const pMeta = a_communication.metaObject();
        for (int i = 0; i < s_iCommands; ++i) {
            const QMetaMethod method = pMeta->method(pMeta->methodOffset() + i);
            m_names.append(QString::fromLatin1(method.name()));
            m_spies.push_back(std::make_unique<QSignalSpy>(&a_communication, method));
        }
    }

    /// The entries are in the order in which the signals are declared, not emitted.
    [[nodiscard]] QStringList entries() const
    {
        QStringList entries;
        for (qsizetype i = 0; i < m_names.size(); ++i) {
            for (const QVariantList& arguments : *m_spies[static_cast<std::size_t>(i)]) {
                QStringList texts;
                for (const QVariant& argument : arguments) {
                    texts.append(textOf(argument));
                }
                entries.append(m_names.at(i) + u'(' + texts.join(u',') + u')');
            }
        }
        return entries;
    }

private:
    QStringList m_names;
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};

/// Two connected sockets. The near socket has a communication. The far socket sends and
/// receives bytes.
struct Wire
{
    Wire()
    {
        server.listen(QHostAddress::LocalHost);
        reconnect();
        communication = std::make_unique<SimulationServiceCommunication>(near.get());
    }

    void reconnect()
    {
        near->abort();
        near->connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(near->waitForConnected());
        QVERIFY(server.waitForNewConnection(5000));
        far = server.nextPendingConnection();
    }

    void sendBytes(const QByteArray& a_bytes) const { far->write(a_bytes); }

    QTcpServer server;
    std::unique_ptr<QTcpSocket> near = std::make_unique<QTcpSocket>();
    std::unique_ptr<SimulationServiceCommunication> communication;
    QTcpSocket* far = nullptr; ///< the server's socket
};

} // namespace

Q_DECLARE_METATYPE(Send)

class TestSimulationServiceCommunication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void metaObject();
    void confirmation();
    void commands_data();
    void commands();
    void refused_data();
    void refused();
    void payloads_data();
    void payloads();
    void filteredCommands_data();
    void filteredCommands();
    void unfinishedBytes();
    void cleanedTexts();
    void reconnection();
    void replacedSocket();
    void deletedInSlot();
    void socketDiesFirst();
    void lossWithUnreadBytes();
    void tooLarge();
    void encoded();
    void streamError();
};

void TestSimulationServiceCommunication::cleanup()
{
    Limits::setValue(Limits::InflatedBytes, 0);
    Limits::setValue(Limits::DocumentBytes, 0);
}

void TestSimulationServiceCommunication::metaObject()
{
    const QMetaObject& meta = SimulationServiceCommunication::staticMetaObject;
    QCOMPARE(meta.className(), "Simulation::SimulationServiceCommunication");
    const QStringList signalNames =
        QStringLiteral("registerSimulationDevice(a_sId,a_device) simulationDeviceStateUpdate(a_sId,a_state) "
                       "unregisterSimulationDevice(a_sId) addJxDevice(a_sDeviceId,a_jxDefinition) "
                       "removeJxDevice(a_sDeviceId) acceptSimulationDevice(a_sId,a_sConfirmation) "
                       "loadScenario(a_scenarioData) unloadScenario() loadDeployment(a_deploymentData) "
                       "startScenario(a_uiTimestamp,a_uiScenarioTime) pauseScenario(a_uiScenarioTime) "
                       "stopScenario() testModeOn(a_bOn) responseSimulationDevices(a_devices) "
                       "commandAcquireServer() commandReleaseServer() commandRequestSimulationDevices()")
            .split(u' ');
    QStringList expected = signalNames;
    for (const QString& sName : signalNames) {
        expected.append(QStringLiteral("send") + sName.at(0).toUpper() + sName.mid(1));
    }
    expected << QStringLiteral("slotXmlReceived(Xml)") << QStringLiteral("slotErrorOccured(sErrorString)");

    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        methods.append(QString::fromLatin1(method.name() + '(' + method.parameterNames().join(',') + ')'));
    }
    QCOMPARE(methods, expected);
}

void TestSimulationServiceCommunication::confirmation()
{
    SimulationDeviceConfiguration configuration = device("d1");
    configuration.setMachine(QStringLiteral("pc"));
    configuration.setMachineId(QStringLiteral("m-1"));
    configuration.setDeviceType(QStringLiteral("Receiver"));
    QCOMPARE(SimulationServiceCommunication::createConfirmation(configuration),
             QStringLiteral("MmiC8/A9HMbhZkG4uv5ZFAjbmVQ="));
    configuration.setDeviceType(QStringLiteral("Jammer"));
    QCOMPARE(SimulationServiceCommunication::createConfirmation(configuration),
             QStringLiteral("MCYHjwXIIekuJSucY2Na0hzBeRc="));
}

void TestSimulationServiceCommunication::commands_data()
{
    QTest::addColumn<Send>("send");
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("signal");

    using Peer = SimulationServiceCommunication;
    const auto row = [](const QByteArray& a_signal, const QByteArray& a_command, const Send& a_send) {
        QTest::newRow(a_signal.constData()) << a_send << inRoot(a_command) << QString::fromUtf8(a_signal);
    };
    row("registerSimulationDevice(a & b,d1)",
        "    <RegisterSimulation Id=\"a &amp; b\">\n        <SimulationDevice>" + escapedDevice("d1") +
            "</SimulationDevice>\n    </RegisterSimulation>\n",
        [](Peer& a_peer) { a_peer.sendRegisterSimulationDevice(QStringLiteral("a & b"), device("d1")); });
    row("simulationDeviceStateUpdate(d1,2)",
        "    <SimulationDeveiceStateUpdate Id=\"d1\">\n        "
        "<State>&lt;Simulation::SimulationDeviceState&gt;\n"
        "    &lt;ScenarioDataState&gt;2&lt;/ScenarioDataState&gt;\n"
        "&lt;/Simulation::SimulationDeviceState&gt;\n</State>\n    </SimulationDeveiceStateUpdate>\n",
        [](Peer& a_peer) { a_peer.sendSimulationDeviceStateUpdate(QStringLiteral("d1"), loadedState()); });
    row("unregisterSimulationDevice(d1)", "    <UnregisterSimulation Id=\"d1\"/>\n",
        [](Peer& a_peer) { a_peer.sendUnregisterSimulationDevice(QStringLiteral("d1")); });
    row("addJxDevice(,<Jx/>)",
        "    <AddJxDevice DeviceId=\"\">\n        <JxDeviceDescriptor>" + packed("<Jx/>") +
            "</JxDeviceDescriptor>\n    </AddJxDevice>\n",
        [](Peer& a_peer) { a_peer.sendAddJxDevice(QString(), "<Jx/>"); });
    row("removeJxDevice(j\xC3\xA4)", "    <RemoveJxDevice DeviceId=\"j\xC3\xA4\"/>\n",
        [](Peer& a_peer) { a_peer.sendRemoveJxDevice(QString::fromUtf8("j\xC3\xA4")); });
    row("acceptSimulationDevice(d1,a+/=)",
        "    <AcceptSimulationDevice Id=\"d1\">\n        <Confirmation>a+/=</Confirmation>\n"
        "    </AcceptSimulationDevice>\n",
        [](Peer& a_peer) {
            a_peer.sendAcceptSimulationDevice(QStringLiteral("d1"), QStringLiteral("a+/="));
        });
    row("loadScenario(<S/>)",
        "    <LoadScenario>\n        <ScenarioData>" + packed("<S/>") +
            "</ScenarioData>\n    </LoadScenario>\n",
        [](Peer& a_peer) { a_peer.sendLoadScenario("<S/>"); });
    row("unloadScenario()", "    <UnloadScenario/>\n", &Peer::sendUnloadScenario);
    row("loadDeployment()",
        "    <LoadDeployment>\n        <DeploymentData>AAAAAA==</DeploymentData>\n    </LoadDeployment>\n",
        [](Peer& a_peer) { a_peer.sendLoadDeployment(QByteArray()); });
    row("startScenario(18446744073709551615,4294967295)",
        "    <StartScenario>\n        <Timestamp>18446744073709551615</Timestamp>\n"
        "        <ScenarioTime>4294967295</ScenarioTime>\n    </StartScenario>\n",
        [](Peer& a_peer) { a_peer.sendStartScenario(~quint64(0), ~0U); });
    row("pauseScenario(7)",
        "    <PauseScenario>\n        <ScenarioTime>7</ScenarioTime>\n    </PauseScenario>\n",
        [](Peer& a_peer) { a_peer.sendPauseScenario(7); });
    row("stopScenario()", "    <StopScenario/>\n", &Peer::sendStopScenario);
    for (const bool bOn : {false, true}) {
        const QByteArray text = bOn ? "true" : "false";
        row("testModeOn(" + text + ")", "    <TestMode>\n        <On>" + text + "</On>\n    </TestMode>\n",
            [bOn](Peer& a_peer) { a_peer.sendTestModeOn(bOn); });
    }
    row("responseSimulationDevices(d1 d2)",
        "    <ResponseSimulationDevices>\n        <Device>\n            <Data>" + escapedDevice("d1") +
            "</Data>\n        </Device>\n        <Device>\n            <Data>" + escapedDevice("d2") +
            "</Data>\n        </Device>\n    </ResponseSimulationDevices>\n",
        [](Peer& a_peer) {
            a_peer.sendResponseSimulationDevices({device("d1"), device("d2")});
        });
    row("responseSimulationDevices()", "    <ResponseSimulationDevices/>\n",
        [](Peer& a_peer) { a_peer.sendResponseSimulationDevices({}); });
    row("commandAcquireServer()", "    <AcquireServer/>\n", &Peer::sendCommandAcquireServer);
    row("commandReleaseServer()", "    <ReleaseServer/>\n", &Peer::sendCommandReleaseServer);
    row("commandRequestSimulationDevices()", "    <RequestSimulationDevices/>\n",
        &Peer::sendCommandRequestSimulationDevices);
}

/// A command is sent as exactly the bytes of its row. When the same bytes are received,
/// the signal of the command is emitted.
void TestSimulationServiceCommunication::commands()
{
    QFETCH(Send, send);
    QFETCH(QByteArray, document);
    QFETCH(QString, signal);
    Wire wire;
    const Log log(*wire.communication);
    QCOMPARE(SimulationServiceCommunication::encode(send), document);
    send(*wire.communication);
    QTRY_VERIFY(wire.far->bytesAvailable() >= document.size());
    QCOMPARE(wire.far->readAll(), document);

    const TraceCollector traces;
    wire.sendBytes(document);
    QTRY_COMPARE(log.entries(), QStringList(signal));
    const QByteArray name = XmlElement::parse(document).firstChild().tagName().toUtf8();
    QCOMPARE(TraceCollector::lines(),
             QStringList(QString::fromUtf8("Processed Command/Update: " + name + s_szSource)));
}

void TestSimulationServiceCommunication::refused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("trace"); // a progress trace; an error trace for another root

    const auto incomplete = [](const QByteArray& a_command, const char* a_szTag) {
        QTest::newRow(a_command.constData())
            << "<Command>" + a_command + "</Command>"
            << QStringLiteral("Invalid or incomplete command/update: ") + QLatin1String(a_szTag);
    };
    incomplete("<RegisterSimulation Id='d'/>", "RegisterSimulation");
    incomplete("<RegisterSimulation><SimulationDevice>&lt;A&gt;&lt;Id&gt;d&lt;/Id&gt;&lt;/A&gt;"
               "</SimulationDevice></RegisterSimulation>",
               "RegisterSimulation");
    incomplete("<SimulationDeveiceStateUpdate/>", "SimulationDeveiceStateUpdate");
    incomplete("<AddJxDevice><JxDeviceDescriptor/></AddJxDevice>", "AddJxDevice");
    incomplete("<AddJxDevice DeviceId='j'/>", "AddJxDevice");
    incomplete("<RemoveJxDevice Id='j'/>", "RemoveJxDevice");
    incomplete("<AcceptSimulationDevice Id='d'/>", "AcceptSimulationDevice");
    incomplete("<LoadScenario>AAAAAA==</LoadScenario>", "LoadScenario");
    incomplete("<StartScenario><Timestamp>1</Timestamp></StartScenario>", "StartScenario");
    incomplete("<StartScenario><ScenarioTime>1</ScenarioTime></StartScenario>", "StartScenario");
    incomplete("<PauseScenario><ScenarioTime>-1</ScenarioTime></PauseScenario>", "PauseScenario");
    incomplete("<TestMode><On>TRUE</On></TestMode>", "TestMode");
    incomplete("<Stopscenario/>", "Stopscenario");
    incomplete("", "");
    incomplete("<Unknown/><StopScenario/>", "Unknown");
    QTest::newRow("another root") << QByteArray("<Commands><StopScenario/></Commands>")
                                  << QStringLiteral("Invalid xml: Commands");
}

/// A refused document emits no signal and traces one line. The next command is
/// received.
void TestSimulationServiceCommunication::refused()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, trace);
    Wire wire;
    const Log log(*wire.communication);
    const bool bCommand = trace.contains(u'/');
    const TraceCollector traces(bCommand ? ErrorHandler::TraceProgress : ErrorHandler::TraceError);
    wire.sendBytes(document);
    QTRY_COMPARE(TraceCollector::lines(), QStringList(trace + QLatin1String(s_szSource)));
    wire.sendBytes(bare("UnloadScenario"));
    QTRY_COMPARE(log.entries(), QStringList(QStringLiteral("unloadScenario()")));
}

void TestSimulationServiceCommunication::payloads_data()
{
    QTest::addColumn<bool>("compression");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<bool>("undecodable");

    constexpr int iLimit = 100'000;
    const QByteArray fits(iLimit, 'x');
    const QByteArray latin("<S a='\xE4'>\r\n\t\xA0</S>");
    const QByteArray lying = (QByteArray("\x7F\xFF\xFF\xFF", 4) + qCompress("<S/>").mid(4)).toBase64();
    QTest::newRow("at the limit") << true << packed(fits) << fits << false;
    QTest::newRow("beyond the limit") << true << packed(fits + 'x') << QByteArray() << true;
    QTest::newRow("claims gigabytes") << true << lying << QByteArray("<S/>") << false;
    QTest::newRow("cut off") << true << packed(fits).chopped(8) << QByteArray() << true;
    QTest::newRow("peer does not compress")
        << true << QByteArray("&lt;?xml?>&lt;S/>") << QByteArray() << true;
    QTest::newRow("off, Latin-1") << false << QByteArray("&lt;S a='\xC3\xA4'>&#13;\n\t\xC2\xA0&lt;/S>")
                                  << latin << false;
    QTest::newRow("off, but peer compresses") << false << packed("<S/>") << packed("<S/>") << false;
}

void TestSimulationServiceCommunication::payloads()
{
    QFETCH(bool, compression);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);
    QFETCH(bool, undecodable);
    Limits::setValue(Limits::InflatedBytes, 100'000);
    Wire wire;
    wire.communication->setCompression(compression);
    const QSignalSpy scenarios(wire.communication.get(), &SimulationServiceCommunication::loadScenario);
    const TraceCollector traces;
    wire.sendBytes(scenarioCommand(text));
    QTRY_COMPARE(scenarios.count(), 1);
    QCOMPARE(scenarios.constFirst().constFirst().toByteArray(), expected);
    QCOMPARE(TraceCollector::lines().size(), undecodable ? 2 : 1);
    QCOMPARE(TraceCollector::lines().constFirst().startsWith(QStringLiteral("Cannot decode ScenarioData: ")),
             undecodable);
}

void TestSimulationServiceCommunication::filteredCommands_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("signal"); // emitted if the filter accepts the command
    const QByteArray blanks(100'000, ' ');
    QTest::newRow("small payload") << scenarioCommand("damaged") << "LoadScenario"
                                   << "loadScenario()";
    QTest::newRow("large payload") << scenarioCommand(packed("<S/>") + blanks) << "LoadScenario"
                                   << "loadScenario(<S/>)";
    QTest::newRow("large, after a long comment")
        << "<!--" + blanks + "-->" + scenarioCommand(packed("<S/>")) << "LoadScenario"
        << "loadScenario(<S/>)";
    QTest::newRow("bare") << bare("StopScenario") << "StopScenario"
                          << "stopScenario()";
    QTest::newRow("unknown") << bare("Unknown") << "Unknown" << QString();
    QTest::newRow("no command") << QByteArray("<Command/>") << QString() << QString();
    QTest::newRow("large, another root")
        << "<Commands><StopScenario/>" + blanks + "</Commands>" << QStringLiteral("-") << QString();
}

void TestSimulationServiceCommunication::filteredCommands()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, name);
    QFETCH(const QString, signal);
    Wire wire;
    const Log log(*wire.communication);
    QStringList asked;
    bool bPasses = false;
    wire.communication->setCommandFilter([&](const QString& a_sCommand, qsizetype a_iBytes) {
        asked.append(a_sCommand + u' ' + QString::number(a_iBytes));
        return bPasses;
    });
    const TraceCollector traces(ErrorHandler::TraceProgress | ErrorHandler::TraceError);
    const QStringList question =
        name == u'-' ? QStringList() : QStringList(name + u' ' + QString::number(document.trimmed().size()));
    wire.sendBytes(document);
    QTRY_COMPARE(TraceCollector::lines(),
                 QStringList((name == u'-' ? QStringLiteral("Invalid xml: Commands")
                                           : QStringLiteral("Refused command/update: ") + name) +
                             QLatin1String(s_szSource)));
    QCOMPARE(asked, question);
    QCOMPARE(log.entries(), QStringList());
    bPasses = true;
    wire.sendBytes(document + bare("UnloadScenario"));
    QTRY_VERIFY(log.entries().contains(QStringLiteral("unloadScenario()")));
    QCOMPARE(asked.mid(0, question.size() * 2), question + question);
    QCOMPARE(log.entries().contains(signal), !signal.isEmpty());
}

void TestSimulationServiceCommunication::unfinishedBytes()
{
    Wire wire;
    QCOMPARE(wire.communication->unfinishedBytes(), 0);
    wire.sendBytes(bare("StopScenario") + "<Command><StopScenario/>");
    QTRY_COMPARE(wire.communication->unfinishedBytes(), 24);
    wire.sendBytes("</Command>");
    QTRY_COMPARE(wire.communication->unfinishedBytes(), 0);
    wire.communication->setSocket(nullptr);
    QCOMPARE(wire.communication->unfinishedBytes(), 0);
}

/// Characters that XML forbids are removed. Otherwise the peer could not read the rest of
/// the stream.
void TestSimulationServiceCommunication::cleanedTexts()
{
    const TraceCollector traces;
    Wire wire;
    SimulationServiceCommunication peer(wire.far);
    const Log log(*wire.communication);
    const QString sBad = QStringLiteral("a\x01") + QChar(0xFFFF) + QChar(0xD800) + u'b';
    peer.sendRegisterSimulationDevice(sBad, device("d\x02\x1F"));
    peer.sendAcceptSimulationDevice(sBad, sBad);
    peer.sendRemoveJxDevice(sBad);
    QTRY_COMPARE(log.entries(), (QStringList{QStringLiteral("registerSimulationDevice(ab,d)"),
                                             QStringLiteral("removeJxDevice(ab)"),
                                             QStringLiteral("acceptSimulationDevice(ab,ab)")}));
}

/// When the same socket connects again, an unfinished document and an error of the old
/// connection are discarded.
void TestSimulationServiceCommunication::reconnection()
{
    Wire wire;
    const Log log(*wire.communication);
    const TraceCollector traces;
    for (const QByteArray& left : {QByteArray("<Command><Load"), "<Command></Oops>" + bare("LoadScenario")}) {
        wire.sendBytes(left);
        QTest::qWait(s_iQuietTime);
        wire.reconnect();
    }
    QCOMPARE(TraceCollector::lines().filter(QLatin1String(s_szSource)).size(), 1);
    wire.sendBytes(bare("StopScenario"));
    QTRY_COMPARE(log.entries(), QStringList(QStringLiteral("stopScenario()")));

    wire.sendBytes("<Command><Load");
    QTest::qWait(s_iQuietTime);
    wire.communication->setSocket(wire.near.get());
    wire.sendBytes(bare("UnloadScenario"));
    QTRY_COMPARE(log.entries().size(), 2);
}

void TestSimulationServiceCommunication::replacedSocket()
{
    const TraceCollector traces;
    Wire wire;
    Wire other;
    const Log log(*wire.communication);
    other.communication->setSocket(nullptr);
    wire.communication->setSocket(other.near.get());
    QCOMPARE(wire.communication->socket(), other.near.get());
    wire.sendBytes(bare("StopScenario"));
    other.sendBytes(bare("UnloadScenario"));
    QTRY_COMPARE(log.entries().size(), 2);

    wire.sendBytes("<Command><Load");
    QTest::qWait(s_iQuietTime);
    // Commands are received over both sockets. Setting a socket again discards its
    // unfinished command.
    wire.communication->setSocket(wire.near.get());
    wire.sendBytes(bare("StopScenario"));
    QTRY_COMPARE(log.entries().size(), 3);
    wire.communication->setSocket(other.near.get());

    // Both commands are sent together. The slot of the first one ends the reception, so
    // the second one is not delivered.
    connect(wire.communication.get(), &SimulationServiceCommunication::unloadScenario, this,
            [&wire] { wire.communication->setSocket(nullptr); });
    other.sendBytes(bare("UnloadScenario") + bare("StopScenario"));
    QTRY_COMPARE(wire.communication->socket(), nullptr);
    QTest::qWait(s_iQuietTime);
    QCOMPARE(log.entries().size(), 4);
}

void TestSimulationServiceCommunication::deletedInSlot()
{
    Wire wire;
    connect(wire.communication.get(), &SimulationServiceCommunication::loadScenario, this,
            [&wire] { wire.communication.reset(); });
    const TraceCollector traces;
    wire.sendBytes(scenarioCommand(packed("<S/>")) + bare("StopScenario"));
    QTRY_COMPARE(TraceCollector::lines().size(), 1);
    QVERIFY(wire.communication == nullptr);
    QTest::qWait(s_iQuietTime);
    QCOMPARE(TraceCollector::lines().size(), 1);
}

void TestSimulationServiceCommunication::socketDiesFirst()
{
    const TraceCollector traces;
    Wire wire;
    wire.sendBytes("<Command><Load");
    QTest::qWait(s_iQuietTime);
    wire.near.reset();
    QCOMPARE(wire.communication->socket(), nullptr);
    QVERIFY(!wire.communication->hasLostCommands());
    wire.communication->sendStopScenario();
    QVERIFY(wire.communication->hasLostCommands());
    wire.communication->setSocket(nullptr);
    QVERIFY(!wire.communication->hasLostCommands());
}

/// The socket detects that its peer has disconnected, even if nobody reads the received
/// bytes.
void TestSimulationServiceCommunication::lossWithUnreadBytes()
{
    constexpr qsizetype iBytes = qsizetype{4} * 1024 * 1024;
    const TraceCollector traces;
    for (const bool bFaulty : {true, false}) {
        Wire wire;
        const QSignalSpy lost(wire.near.get(), &QTcpSocket::disconnected);
        qint64 iMostWaiting = 0;
        connect(wire.near.get(), &QTcpSocket::readyRead, this,
                [&] { iMostWaiting = std::max(iMostWaiting, wire.near->bytesAvailable()); });
        if (!bFaulty) {
            wire.communication->setSocket(nullptr);
        }
        wire.sendBytes("</a>" + QByteArray(iBytes, 'x'));
        wire.far->disconnectFromHost();
        QTRY_COMPARE(lost.count(), 1);
        QVERIFY2(!bFaulty || iMostWaiting <= 65'536, QByteArray::number(iMostWaiting).constData());
        // Only the first run traces a line.
        QCOMPARE(TraceCollector::lines().filter(QLatin1String(s_szSource)).size(), 1);
    }
}

void TestSimulationServiceCommunication::tooLarge()
{
    Limits::setValue(Limits::DocumentBytes, 200);
    Wire wire;
    wire.communication->setCompression(false);
    const TraceCollector traces;
    wire.communication->sendLoadScenario(QByteArray(200, 'x'));
    QVERIFY(wire.communication->hasLostCommands());
    QCOMPARE(TraceCollector::lines(),
             QStringList(QStringLiteral("Not sent: LoadScenario of 298 bytes, document bytes limit of 200 "
                                        "exceeded") +
                         QLatin1String(s_szSource)));
    wire.communication->sendStopScenario();
    QTRY_COMPARE(wire.far->bytesAvailable(), bare("StopScenario").size());
    wire.reconnect();
    QVERIFY(!wire.communication->hasLostCommands());

    // A command that is lost in a slot of connected() counts for the new connection. This
    // also applies if the slot is called before the communication's own slot.
    wire.communication->setSocket(nullptr);
    connect(wire.near.get(), &QTcpSocket::connected, wire.communication.get(),
            [&wire] { wire.communication->sendLoadScenario(QByteArray(200, 'x')); });
    wire.communication->setSocket(wire.near.get());
    wire.reconnect();
    QVERIFY(wire.communication->hasLostCommands());
}

void TestSimulationServiceCommunication::encoded()
{
    Wire wire;
    const QByteArray bytes = SimulationServiceCommunication::encode([](SimulationServiceCommunication& a_to) {
        a_to.sendStopScenario();
        a_to.setCompression(false);
        a_to.sendLoadScenario("<S/>");
    });
    QCOMPARE(bytes, bare("StopScenario") + scenarioCommand("&lt;S/&gt;"));
    constexpr qsizetype iPiece = 10;
    for (qsizetype i = 0; i < bytes.size(); i += iPiece) {
        wire.communication->sendEncoded(bytes.mid(i, iPiece));
    }
    QTRY_COMPARE(wire.far->bytesAvailable(), bytes.size());
    QCOMPARE(wire.far->readAll(), bytes);
    QVERIFY(!wire.communication->hasLostCommands());

    Limits::setValue(Limits::DocumentBytes, 50);
    const TraceCollector traces;
    QCOMPARE(SimulationServiceCommunication::encode([](SimulationServiceCommunication& a_to) {
                 a_to.sendStopScenario();
                 a_to.sendLoadScenario("<S/>");
             }),
             QByteArray());
    QCOMPARE(TraceCollector::lines().size(), 1);
    wire.near->abort();
    wire.communication->sendEncoded(bytes);
    QVERIFY(wire.communication->hasLostCommands());
}

/// The handler is called once for each connection with an error in its stream. The
/// commands before the error are delivered first. The handler is not called after the
/// owner has removed the socket.
void TestSimulationServiceCommunication::streamError()
{
    Wire wire;
    QStringList events;
    connect(wire.communication.get(), &SimulationServiceCommunication::stopScenario, this,
            [&] { events.append(QStringLiteral("stop")); });
    wire.communication->setStreamErrorHandler([&](const QString& a_sError) {
        events.append(a_sError);
        wire.near->abort();
    });
    for (int i = 0; i < 2; ++i) {
        wire.sendBytes(bare("StopScenario") + "<a>\xC3(" + bare("StopScenario"));
        QTRY_COMPARE(events.size(), 2);
        QTest::qWait(s_iQuietTime);
        QCOMPARE(events, QStringList({QStringLiteral("stop"),
                                      QStringLiteral("Encountered incorrectly encoded content.")}));
        events.clear();
        wire.reconnect();
    }
    wire.sendBytes(bare("StopScenario") + "</a>");
    QObject::connect(wire.near.get(), &QTcpSocket::readyRead, wire.communication.get(),
                     [&wire] { wire.communication->setSocket(nullptr); });
    QTRY_VERIFY(wire.communication->socket() == nullptr);
    QTest::qWait(s_iQuietTime);
    QCOMPARE(events, QStringList());
}

QTEST_GUILESS_MAIN(TestSimulationServiceCommunication)
#include "tst_simulationservicecommunication.moc"

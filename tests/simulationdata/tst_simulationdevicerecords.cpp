#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"
#include "tracecollector.h"

#include <QTest>

#include <limits>

using namespace Simulation;

namespace {

const QByteArray s_document("<Simulation::SimulationDeviceConfiguration>\n"
                            "    <Id>d &amp; 1</Id>\n"
                            "    <Name>M\xC3\xBCnster</Name>\n"
                            "    <StationId>s1</StationId>\n"
                            "    <StationName/>\n"
                            "    <Machine>pc</Machine>\n"
                            "    <MachineId>m-1</MachineId>\n"
                            "    <DeviceType>Receiver</DeviceType>\n"
                            "    <PositionLongitude>7.12346</PositionLongitude>\n"
                            "    <PositionLatitude>-51.5</PositionLatitude>\n"
                            "</Simulation::SimulationDeviceConfiguration>\n");

SimulationDeviceConfiguration configuration()
{
    SimulationDeviceConfiguration device;
    device.setId(QStringLiteral("d & 1"));
    device.setName(QString::fromUtf8("M\xC3\xBCnster"));
    device.setStationId(QStringLiteral("s1"));
    device.setMachine(QStringLiteral("pc"));
    device.setMachineId(QStringLiteral("m-1"));
    device.setDeviceType(QStringLiteral("Receiver"));
    device.setPositionLongitude(7.123456789);
    device.setPositionLatitude(-51.5);
    return device;
}

} // namespace

class TestSimulationDeviceRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationDocument();
    void incompleteConfiguration();
    void base();
    void states();
    void messages_data();
    void messages();
};

void TestSimulationDeviceRecords::configurationDocument()
{
    QCOMPARE(configuration().toXml(), s_document);
    SimulationDeviceConfiguration device;
    QCOMPARE(device.positionLatitude(), 0.0);
    QVERIFY(device.fromXml(s_document));
    QCOMPARE(device.stationName(), QString());
    QCOMPARE(device.positionLongitude(), 7.12346);
    QCOMPARE(device.toXml(), s_document);

    device.setPositionLatitude(std::numeric_limits<double>::quiet_NaN());
    QVERIFY(device.toXml().contains("<PositionLatitude>0</PositionLatitude>"));
}

/// A missing or invalid field keeps its value; all other fields are read.
void TestSimulationDeviceRecords::incompleteConfiguration()
{
    QList<QByteArray> documents;
    const QList<QByteArray> lines = s_document.split('\n');
    for (qsizetype i = 1; i < lines.size() - 2; ++i) {
        documents.append(QByteArray(s_document).replace(lines.at(i) + '\n', ""));
    }
    documents.append(QByteArray(s_document).replace("-51.5", "abc"));
    documents.append(QByteArray(s_document).replace("-51.5", "nan"));
    QCOMPARE(documents.size(), 11);
    for (const QByteArray& document : documents) {
        SimulationDeviceConfiguration device = configuration();
        device.setPositionLongitude(7.12346);
        QVERIFY2(!device.fromXml(document), document.constData());
        QCOMPARE(device.toXml(), s_document);
        SimulationDeviceConfiguration fresh;
        QVERIFY(!fresh.fromXml(document));
        // At most one line differs. A document without the station name gives no
        // difference, because the name is empty.
        int iDifferent = 0;
        for (const QByteArray& line : fresh.toXml().split('\n')) {
            iDifferent += lines.contains(line) ? 0 : 1;
        }
        QVERIFY2(iDifferent <= 1, fresh.toXml().constData());
    }
}

void TestSimulationDeviceRecords::base()
{
    const QByteArray base("<Other version='2'><Name>old</Name><Id/></Other>");
    const QByteArray merged = configuration().toXml(base);
    QVERIFY(merged.startsWith("<Other version=\"2\">\n    <Name>old</Name>\n    <Id/>\n    <StationId>s1<"));
    QCOMPARE(merged.count("Name>"), 2); // start and end tag of one name; <StationName/> does not match
    SimulationDeviceConfiguration read;
    QVERIFY(read.fromXml(merged));
    QCOMPARE(read.name(), QStringLiteral("old"));
    QCOMPARE(read.machine(), QStringLiteral("pc"));

    const TraceCollector traces;
    QCOMPARE(configuration().toXml(QByteArray("")), QByteArray());
    QCOMPARE(SimulationDeviceState().toXml(QByteArray("<A><B></A>")), QByteArray());
    QCOMPARE(TraceCollector::lines().size(), 2);
}

void TestSimulationDeviceRecords::states()
{
    const auto document = [](const char* a_szText) {
        return QByteArray("<Simulation::SimulationDeviceState>\n    <ScenarioDataState>") + a_szText +
               "</ScenarioDataState>\n</Simulation::SimulationDeviceState>\n";
    };
    SimulationDeviceState state;
    QCOMPARE(state.toXml(), document("0"));
    for (const char* const szText : {"3", "77", "-1"}) { // values of newer peers are kept
        QVERIFY(state.fromXml(document(szText)));
        QCOMPARE(state.toXml(), document(szText));
    }
    for (const char* const szText : {"two", "2147483648", "", "<A>2</A>"}) {
        QVERIFY(!state.fromXml(document(szText)));
        QCOMPARE(static_cast<int>(state.scenarioDataState()), -1);
    }
    QVERIFY(!state.fromXml("<A><B><ScenarioDataState>2</ScenarioDataState></B></A>"));
}

void TestSimulationDeviceRecords::messages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");
    const QString sLongest(SimulationDeviceState::s_iMaxMessage, u'm');
    const QString sShorter = sLongest.chopped(1);
    const QString sWide = QString::fromUcs4(U"\U0001F4E1");
    QTest::newRow("markup") << "<a> & \"b\""
                            << "<a> & \"b\"";
    QTest::newRow("longest") << sLongest << sLongest;
    QTest::newRow("too long") << sLongest + u'x' << sLongest;
    QTest::newRow("cut in a character") << sShorter + sWide << sShorter;
}

/// The message is written after the state and is cut at its maximum length. Reading a
/// record without a message removes the former message.
void TestSimulationDeviceRecords::messages()
{
    QFETCH(const QString, text);
    QFETCH(const QString, kept);
    const QByteArray bare = SimulationDeviceState().toXml();
    SimulationDeviceState state;
    state.setMessage(text);
    QCOMPARE(state.message(), kept);
    const QByteArray xml = state.toXml();
    QVERIFY(xml.startsWith(bare.left(bare.indexOf("</Simulation")) + "    <Message>"));

    // A peer may send a message that is too long.
    const QByteArray sent = QByteArray(bare).replace(
        "</Simulation", "<Message>" + text.toHtmlEscaped().toUtf8() + "</Message></Simulation");
    SimulationDeviceState read;
    QVERIFY(read.fromXml(sent));
    QCOMPARE(read.toXml(), xml);
    QVERIFY(!read.fromXml("<A><Message>new</Message></A>"));
    QCOMPARE(read.message(), kept);
    QVERIFY(read.fromXml(bare));
    QCOMPARE(read.message(), QString());
}

QTEST_GUILESS_MAIN(TestSimulationDeviceRecords)
#include "tst_simulationdevicerecords.moc"

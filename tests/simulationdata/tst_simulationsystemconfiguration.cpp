#include "simulationdata/simulationsystemconfiguration.h"

#include "velaappstartup/cfgcenter.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

using namespace Simulation;

namespace {

constexpr double s_dTolerance = 1e-9; // degrees

int s_iTraces = 0;

void countTrace(QtMsgType /*a_eType*/, const QMessageLogContext& /*a_context*/, const QString& /*a_sText*/)
{
    ++s_iTraces;
}

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

} // namespace

class TestSimulationSystemConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void values();
    void refusedPorts();
    void coordinates_data();
    void coordinates();

private:
    void load(const QByteArray& a_text);

    QTemporaryDir m_folder;
    SimulationSystemConfiguration m_configuration;
};

void TestSimulationSystemConfiguration::load(const QByteArray& a_text)
{
    QFile file(m_folder.filePath(u8("Simulation.ini")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(a_text), a_text.size());
    file.close();
    CfgCenter::SetFolder(m_folder.path());
    m_configuration.loadConfiguation();
}

void TestSimulationSystemConfiguration::defaults()
{
    // The first pass has no settings file. The second pass has an empty settings file.
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(m_configuration.simulationServerAddress(), u8("127.0.0.1"));
        QCOMPARE(m_configuration.simulationCacheDirectory(), QDir::tempPath());
        QCOMPARE(m_configuration.simulationServerPort(), quint16{57401});
        QCOMPARE(m_configuration.simulationServicePort(), quint16{57400});
        QCOMPARE(m_configuration.simulationSupervisorPort(), quint16{57409});
        QCOMPARE(m_configuration.signalPackageStoreDir(), QString());
        QCOMPARE(m_configuration.defaultScenario(), QString());
        QVERIFY(!m_configuration.initializeDataStore());
        load("");
    }
}

void TestSimulationSystemConfiguration::values()
{
    load("SimulationServer=10.0.0.1\nSimulationCache=/cache\n"
         "[Ports]\nSimulationServer=1\nSimulationService=2\nSimulationEditor=65535\n"
         "[SimulationRepository]\nFileSystem\\Repository=/repository\n");
    const SimulationSystemConfiguration copy = m_configuration;
    load(""); // a copy does not change with the original
    QCOMPARE(copy.simulationServerAddress(), u8("10.0.0.1"));
    QCOMPARE(copy.simulationCacheDirectory(), u8("/cache"));
    QCOMPARE(copy.simulationServerPort(), quint16{1});
    QCOMPARE(copy.simulationServicePort(), quint16{2});
    QCOMPARE(copy.simulationSupervisorPort(), quint16{65535});
    QCOMPARE(copy.signalPackageStoreDir(), u8("/repository\\SignalPackages"));
    QCOMPARE(copy.fileStoreDir(), u8("/repository\\Files"));
    QCOMPARE(copy.iconStoreDir(), u8("/repository\\Icons"));
    QCOMPARE(copy.radarStoreDir(), u8("/repository\\Radar"));
    QCOMPARE(copy.defaultSignalPackage(), u8("/repository/SignalPackages/TuK-Default/Default"));
    QCOMPARE(copy.defaultScenario(), u8("/repository/Files/Tessaro/Default.scexml"));
}

void TestSimulationSystemConfiguration::refusedPorts()
{
    for (const char* const szValue : {"0", "65536", "4294967295", "99999999999", "-1", "http"}) {
        load(QByteArray("[Ports]\nSimulationService=") + szValue);
        s_iTraces = 0;
        const QtMessageHandler previous = qInstallMessageHandler(countTrace);
        const std::uint16_t uiPort = m_configuration.simulationServicePort();
        qInstallMessageHandler(previous);
        QVERIFY2(uiPort == 57400 && s_iTraces == 1, szValue);
    }
}

void TestSimulationSystemConfiguration::coordinates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<bool>("result");

    QTest::newRow("decimal") << u8("Coord 48.1 11.5") << 48.1 << 11.5 << false;
    QTest::newRow("decimal, signs and a tabulator") << u8("Coord\t-48.1 -11.5") << -48.1 << -11.5 << false;
    QTest::newRow("decimal, no numbers") << u8("Coord nan x") << 0.0 << 0.0 << false;
    // With letters, each number has a fixed place in the text. In decimal degrees the
    // longitude is first. In degrees, minutes and seconds the latitude is first.
    QTest::newRow("letters") << u8("E011.500000 N48.100000") << 48.1 << 11.5 << true;
    QTest::newRow("letters, comma") << u8("W011,500000 S48,100000") << -48.1 << -11.5 << true;
    QTest::newRow("letters, narrow") << u8("N48.1 E11.5") << 0.0 << 0.0 << true;
    QTest::newRow("places") << u8("N048 30 36.00 E11 15 18.00") << 48.51 << 11.255 << true;
    QTest::newRow("places, south-west") << u8("S048\xC2\xB0"
                                              "30'36.00 W11\xC2\xB0"
                                              "15'18.00")
                                        << -48.51 << -11.255 << true;
    QTest::newRow("places, whole seconds") << u8("N048 30 36.99 W11 15 18.99") << 48.51 << -11.255 << true;
    QTest::newRow("places, cut off") << u8("N048 30 36.00 E1") << 48.51 << 1.0 << true;
    QTest::newRow("places, endless seconds") << u8("N048 30 1e999 E11 15   nan") << 48.5 << 11.25 << true;
    QTest::newRow("no coordinates") << u8("somewhere over there, far away") << 0.0 << 0.0 << true;
}

void TestSimulationSystemConfiguration::coordinates()
{
    QFETCH(QString, text);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(bool, result);
    for (const QLocale& locale : {QLocale(QLocale::German), QLocale::c()}) { // decimal comma and point
        QLocale::setDefault(locale);
        double dLatitude = 77.0;
        double dLongitude = 77.0;
        QCOMPARE(SimulationSystemConfiguration::coordsFromConfigurationString(text, dLatitude, dLongitude),
                 result);
        QVERIFY2(qAbs(dLatitude - latitude) < s_dTolerance, qPrintable(QString::number(dLatitude)));
        QVERIFY2(qAbs(dLongitude - longitude) < s_dTolerance, qPrintable(QString::number(dLongitude)));
    }
}

QTEST_GUILESS_MAIN(TestSimulationSystemConfiguration)
#include "tst_simulationsystemconfiguration.moc"

#include "crt/crt.h"
#include "geodesy/geodesy.h"
#include "kpbase/errorhandler.h"
#include "kpbase/velaos.h"
#include "simulationdata/io/trace_p.h"
#include "velaappstartup/cfgcenter.h"

#include <cmath>
#include <limits>
#include <thread>

#include <QDateTime>
#include <QTest>

namespace {

constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();

constexpr double s_dDistanceTolerance = 1e-6; // km
constexpr double s_dAngleTolerance = 1e-8;    // degrees
constexpr double s_dLastAzimuthDigit = 3e-6;  // degrees, 0.01"

QStringList s_traced;

void collectTrace(QtMsgType a_eType, const QMessageLogContext& a_context, const QString& a_sMessage)
{
    if (a_eType == QtWarningMsg && qstrcmp(a_context.category, "simulation.trace") == 0) {
        s_traced.append(a_sMessage);
    }
}

QList<int> fiveNumbers()
{
    return {Crt::rand(), Crt::rand(), Crt::rand(), Crt::rand(), Crt::rand()};
}

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void azimuth_data();
    void azimuth();
    void publishedLine();
    void outsideTheGlobe();
    void destination();
    void randomNumbers();
    void traceMask();
    void clock();
    void machineId();
};

void TestPlatform::azimuth_data()
{
    QTest::addColumn<double>("fromLongitude");
    QTest::addColumn<double>("fromLatitude");
    QTest::addColumn<double>("toLongitude");
    QTest::addColumn<double>("toLatitude");
    QTest::addColumn<double>("expected");

    QTest::newRow("north") << 9.0 << 10.0 << 9.0 << 11.0 << 0.0;
    QTest::newRow("west") << 9.0 << 0.0 << 8.0 << 0.0 << 270.0;
    QTest::newRow("a hair west of north") << 0.0 << 0.0 << -1e-300 << 80.0 << 0.0;
    QTest::newRow("over the date line") << 179.0 << 0.0 << -179.0 << 0.0 << 90.0;
    QTest::newRow("one turn apart") << 9.0 << 48.0 << 369.0 << 48.0 << 0.0;
    QTest::newRow("the pole twice") << 0.0 << 90.0 << 77.0 << 90.0 << 0.0;
    QTest::newRow("not a number") << s_dNan << 48.0 << 9.0 << 40.0 << 0.0;
}

void TestPlatform::azimuth()
{
    QFETCH(double, fromLongitude);
    QFETCH(double, fromLatitude);
    QFETCH(double, toLongitude);
    QFETCH(double, toLatitude);
    QFETCH(double, expected);
    const double dAzimuth = Geodesy::azimuth({fromLongitude, fromLatitude}, {toLongitude, toLatitude});
    QVERIFY(dAzimuth >= 0.0 && dAzimuth < 360.0);
    QVERIFY2(std::fabs(dAzimuth - expected) <= s_dAngleTolerance, qPrintable(QString::number(dAzimuth)));
}

/// The test line of the Australian geodetic manual, Flinders Peak to Buninyong. The
/// minor axis of the manual's ellipsoid differs from that of WGS 84 by 0.1 mm.
void TestPlatform::publishedLine()
{
    using Geodesy::decimalDegrees;
    const Geodesy::Point from{decimalDegrees(144, 25, 29.52440), -decimalDegrees(37, 57, 3.72030)};
    const Geodesy::Point to{decimalDegrees(143, 55, 35.38390), -decimalDegrees(37, 39, 10.15610)};
    QVERIFY(std::fabs(Geodesy::distance(from, to) - 54.972271) <= s_dDistanceTolerance);
    QVERIFY(std::fabs(Geodesy::azimuth(from, to) - decimalDegrees(306, 52, 5.37)) <= s_dLastAzimuthDigit);
}

void TestPlatform::outsideTheGlobe()
{
    const Geodesy::Point inside{9.0, 48.0};
    for (const Geodesy::Point& outside :
         {Geodesy::Point{9.0, 90.1}, {9.0, -1e300}, {9.0, s_dNan}, {s_dNan, 48.0}, {s_dInfinity, 48.0}}) {
        QVERIFY(std::isnan(Geodesy::distance(outside, inside)));
        QVERIFY(std::isnan(Geodesy::distance(inside, outside)));
        const Geodesy::Point end = Geodesy::destination(outside, 10.0, 5.0);
        QVERIFY(std::isnan(end.longitude) && std::isnan(end.latitude));
    }
    QVERIFY(std::isnan(Geodesy::destination(inside, 75.0, s_dInfinity).latitude));
    QVERIFY(std::isnan(Geodesy::destination(inside, s_dNan, 1.0).latitude));
}

void TestPlatform::destination()
{
    const Geodesy::Point start{179.9, 48.0};
    const Geodesy::Point end = Geodesy::destination(start, 75.0, 250.0);
    QVERIFY(end.longitude < -170.0 && end.longitude >= -180.0);
    QVERIFY(std::fabs(Geodesy::distance(start, end) - 250.0) <= s_dDistanceTolerance);
    QVERIFY(std::fabs(Geodesy::azimuth(start, end) - 75.0) <= s_dAngleTolerance);
    const Geodesy::Point far = Geodesy::destination(start, 1e300, 1e300);
    QVERIFY(std::fabs(far.longitude) <= 180.0 && std::fabs(far.latitude) <= 90.0);
}

void TestPlatform::randomNumbers()
{
    const QList<int> expected{41, 18467, 6334, 26500, 19169};
    Crt::srand(7);
    QVERIFY(fiveNumbers() != expected);
    QList<int> inThread;
    std::thread([&inThread] { inThread = fiveNumbers(); }).join();
    QCOMPARE(inThread, expected);
    Crt::srand(1);
    QCOMPARE(fiveNumbers(), expected);
}

void TestPlatform::traceMask()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    QCOMPARE(handler.traceMask(), static_cast<unsigned int>(ErrorHandler::TraceError));
    const QtMessageHandler oldHandler = qInstallMessageHandler(collectTrace);
    int iFormatted = 0;
    const auto message = [&iFormatted] {
        return QStringLiteral("refused %1, try ").append(QString::number(++iFormatted));
    };
    handler.setTraceMask(ErrorHandler::TraceProgress);
    Simulation::traceError("simulation/simulationdata/some", message, 12);
    handler.setTraceMask(ErrorHandler::TraceError);
    Simulation::traceError("simulation/simulationdata/some", message, 13);
    qInstallMessageHandler(oldHandler);
    QCOMPARE(s_traced, QStringList{QStringLiteral("refused %1, try 1 (simulation/simulationdata/some:13)")});
}

void TestPlatform::clock()
{
    constexpr std::uint64_t uiBeyond32Bits = 0x1234'5678'9ABCULL;
    VelaOS::Get().setClock([] { return uiBeyond32Bits; });
    QCOMPARE(VelaOS::Get().timestamp(), uiBeyond32Bits);
    VelaOS::Get().setClock({});
    const qint64 iBefore = QDateTime::currentMSecsSinceEpoch();
    const auto iNow = static_cast<qint64>(VelaOS::Get().timestamp() / 1000);
    QVERIFY(iBefore <= iNow && iNow <= QDateTime::currentMSecsSinceEpoch());
}

void TestPlatform::machineId()
{
    QVERIFY(!CfgCenter::GetMachineId().isEmpty());
}

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"

#include "kpbase/coord.h"

#include <cmath>
#include <limits>

#include <QTest>

namespace {

constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr int s_iUtm = Coord::s_iFormatUtm;
constexpr int s_iMgrs = Coord::s_iFormatMgrs;
constexpr int s_iLocator = Coord::s_iFormatMaidenhead;

// Tolerances (degrees): half a cell of the text's grid, plus rounding.
constexpr double s_dMetre = 1.5e-5;
constexpr double s_dDecimetre = 1.5e-6;
constexpr double s_dLocator = 1.0 / 24.0 + 1e-9;

bool isNear(const Coord& a_coord, double a_dLongitude, double a_dLatitude, double a_dTolerance)
{
    // A metre of longitude is more degrees near the poles.
    const double dStretch = 1.0 / std::cos(qDegreesToRadians(a_dLatitude));
    return std::fabs(a_coord.first() - a_dLongitude) <= a_dTolerance * dStretch &&
           std::fabs(a_coord.second() - a_dLatitude) <= a_dTolerance;
}

} // namespace

class TestCoord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
    void readsBack();
    void bandEdges();
    void reads_data();
    void reads();
};

void TestCoord::text_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("expected");

    // The example of GeographicLib's manual: 38n 444140.54 3684706.36.
    QTest::newRow("published UTM") << 44.4 << 33.3 << s_iUtm << "38S 0444141 3684706";
    QTest::newRow("published MGRS") << 44.4 << 33.3 << s_iMgrs << "38S-MB-441405-847063";
    QTest::newRow("published locator") << -72.727260 << 41.714775 << s_iLocator << "FN31PR";
    QTest::newRow("one-digit zone") << -177.0 << 0.0 << s_iMgrs << "01N-EA-000000-000000";
    QTest::newRow("minus zero is north") << 9.0 << -0.0 << s_iUtm << "32N 0500000 0000000";
    QTest::newRow("minus zero, MGRS") << 9.0 << -0.0 << s_iMgrs << "32N-NF-000000-000000";
    QTest::newRow("just south of the equator") << 9.0 << -1e-9 << s_iUtm << "32M 0500000 9999999";
    QTest::newRow("Norway's wide zone") << 5.32 << 60.39 << s_iUtm << "32V 0297230 6700510";
    QTest::newRow("locator's last cell") << 179.999 << 90.0 << s_iLocator << "RR99XX";
    QTest::newRow("locator on the date line") << 180.0 << 0.0 << s_iLocator << "AJ00AA";
    QTest::newRow("UTM ends at 84") << 10.0 << 84.0 << s_iUtm << "";
    QTest::newRow("MGRS ends at -80") << 10.0 << -80.1 << s_iMgrs << "";
    QTest::newRow("unknown format") << 10.0 << 48.0 << 5 << "";
    for (const int iFormat : {s_iUtm, s_iMgrs, s_iLocator}) {
        QTest::addRow("%d, latitude 91", iFormat) << 10.0 << 91.0 << iFormat << "";
        QTest::addRow("%d, longitude nan", iFormat) << s_dNan << 10.0 << iFormat << "";
        QTest::addRow("%d, infinite", iFormat) << s_dInfinity << -s_dInfinity << iFormat << "";
    }
}

void TestCoord::text()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(int, format);
    QTEST(Coord(longitude, latitude).GetString(format), "expected");
}

/// The positions cover four quadrants, both sides of the equator, the end of a band, a
/// wide zone and both ends of the grid.
void TestCoord::readsBack()
{
    for (const Coord& coord :
         {Coord(11.58, 48.14), Coord(-79.387, 43.642), Coord(151.2, -33.87), Coord(-68.3, -54.8),
          Coord(9.0, 0.0), Coord(9.0, -1e-9), Coord(9.0, 47.9999999), Coord(15.0, 78.0),
          Coord(10.0, 83.9999999), Coord(10.0, -80.0)}) {
        Coord read;
        QVERIFY(read.SetString(coord.GetString(s_iUtm), s_iUtm));
        QVERIFY(isNear(read, coord.first(), coord.second(), s_dMetre));
        QVERIFY(read.SetString(coord.GetString(s_iMgrs), s_iMgrs));
        QVERIFY(isNear(read, coord.first(), coord.second(), s_dDecimetre));
        QVERIFY(read.SetString(coord.GetString(s_iLocator), s_iLocator));
        QVERIFY(isNear(read, coord.first(), coord.second(), s_dLocator));
    }
}

/// Near the edge of a band, the UTM and MGRS texts have the same band letter.
void TestCoord::bandEdges()
{
    for (int iEdge = -72; iEdge <= 72; iEdge += 8) {
        for (const double dBeside : {-90.0, 90.0}) {
            const double dLatitude = std::nextafter(static_cast<double>(iEdge), dBeside);
            const Coord coord(9.0, dLatitude);
            const QString sUtm = coord.GetString(s_iUtm);
            QCOMPARE(sUtm.left(3), coord.GetString(s_iMgrs).left(3));
            Coord read;
            QVERIFY(read.SetString(sUtm, s_iUtm));
            QVERIFY(isNear(read, 9.0, dLatitude, s_dMetre));
        }
    }
}

void TestCoord::reads_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("readable");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");

    QTest::newRow("fn31pr") << s_iLocator << true << -74.0 + 15.5 / 12.0 << 41.0 + 17.5 / 24.0;
    QTest::newRow("32n-nf-000000-000000") << s_iMgrs << true << 9.0 << 0.0;
    // The band letter determines only the hemisphere.
    QTest::newRow("32x 0500000 0000000") << s_iUtm << true << 9.0 << 0.0;
    for (const int iFormat : {s_iUtm, s_iMgrs, s_iLocator, 0}) {
        for (const QString& sText :
             {QString(), QString(1000, u'9'), QStringLiteral("\u0663\u0662U-\u00DF")}) {
            QTest::newRow(sText.toUtf8()) << iFormat << false << 0.0 << 0.0;
        }
    }
    for (const char* szText : {"61U 0691608 5334757", "32I 0691608 5334757", "32U 9999999 5334757",
                               "32U -691608 5334757", "32U 0691608 53347571"}) {
        QTest::newRow(szText) << s_iUtm << false << 0.0 << 0.0;
    }
    // The first text has a square of another zone, the second a polar position, and the
    // third too few digits.
    for (const char* szText : {"32U-AA-916083-347572", "00U-12-916083-347572", "32U-PU-91608-34757"}) {
        QTest::newRow(szText) << s_iMgrs << false << 0.0 << 0.0;
    }
    for (const char* szText : {"SA00AA", "AA00AY", "AAA0AA"}) {
        QTest::newRow(szText) << s_iLocator << false << 0.0 << 0.0;
    }
}

/// The name of the row is the text to read. An invalid text sets the position to (0, 0).
void TestCoord::reads()
{
    QFETCH(int, format);
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    Coord coord(11.0, 48.0);
    QTEST(coord.SetString(QString::fromUtf8(QTest::currentDataTag()), format), "readable");
    QVERIFY(isNear(coord, longitude, latitude, s_dDecimetre));
}

QTEST_GUILESS_MAIN(TestCoord)
#include "tst_coord.moc"

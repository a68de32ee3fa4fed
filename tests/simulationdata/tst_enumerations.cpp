#include "simulationdata/enumerations.h"
#include "simulationdata/position.h"
#include "simulationdata/tpos.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include <QTest>

using namespace Simulation;

// Positions of one type are passed as the other type, so both need the same layout.
static_assert(sizeof(TPos) == sizeof(Units::Position_t));
static_assert(offsetof(TPos, latitude) == offsetof(Units::Position_t, latitude));

constexpr float s_fNan = std::numeric_limits<float>::quiet_NaN();

class TestEnumerations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts();
    void modulationsFromText();
    void frequencies();
    void geodesics();
};

/// Checks every value, and one number beyond each end. The check includes the numbers of
/// the values, because documents store these numbers.
void TestEnumerations::texts()
{
    QString sTexts;
    for (int i = -1; i <= 6; ++i) {
        sTexts += stringForPositionSettingsType(static_cast<PositionSettingsType>(i)) + u',' +
                  stringForFrequencySettingsType(static_cast<FrequencySettingsType>(i)) + u',' +
                  stringForNetworkType(static_cast<NetworkType>(i)) + u',' +
                  analogModulationToString(static_cast<AnalogModulations>(i)) + u'\n';
    }
    QCOMPARE(sTexts, QStringLiteral(",,Star,None\n"
                                    "Fixed Position,Fixed Frequency,Hierarchical,CW\n"
                                    "Movement,Slow Frequency Hopper,Star,AM\n"
                                    ",Frequency Chirp,Star,FM\n"
                                    ",Fast Frequency Hopper,Star,LSB\n"
                                    ",,Star,USB\n"
                                    ",,Star,Digital\n"
                                    ",,Star,None\n"));
}

void TestEnumerations::modulationsFromText()
{
    for (int i = 0; i <= 5; ++i) {
        const auto eModulation = static_cast<AnalogModulations>(i);
        QCOMPARE(analogModulationFromString(analogModulationToString(eModulation)), eModulation);
    }
    for (const QString& sOther :
         {QStringLiteral("None"), QStringLiteral("usb"), QStringLiteral("FM "), QString()}) {
        QCOMPARE(analogModulationFromString(sOther), AnalogModulations::CW);
    }
}

void TestEnumerations::frequencies()
{
    QVERIFY(compareFrequency(100.0F, 100.0005F));
    QVERIFY(!compareFrequency(100.0F, 100.002F));
    QVERIFY(!compareFrequency(100.002F, 100.0F));
    QVERIFY(!compareFrequency(0.0F, 0.001F));
    QVERIFY(compareFrequency(0.0F, std::nextafter(0.001F, 0.0F)));
    QVERIFY(!compareFrequency(1e9F, std::nextafter(1e9F, 2e9F)));
    QVERIFY(!compareFrequency(s_fNan, s_fNan));
}

/// Longitude and latitude must not be swapped when they are passed to the geodesy library.
void TestEnumerations::geodesics()
{
    constexpr double dTolerance = 1e-6;              // degrees or kilometres
    constexpr double dDegreeOfEquator = 111.319491;  // km, WGS 84
    constexpr double dDegreeOfMeridian = 110.574389; // km, the first from the equator, WGS 84
    const TPos origin{0.0, 0.0};
    const TPos east{1.0, 0.0};
    const TPos south{0.0, -1.0};
    QVERIFY(std::fabs(azimuth(origin, east) - 90.0) <= dTolerance);
    QVERIFY(std::fabs(azimuth(origin, south) - 180.0) <= dTolerance);
    QVERIFY(std::fabs(distance(origin, east) - dDegreeOfEquator) <= dTolerance);
    QVERIFY(std::fabs(distance(origin, south) - dDegreeOfMeridian) <= dTolerance);
    const TPos reached = position({10.0, 0.0}, 270.0, dDegreeOfEquator);
    QVERIFY(std::fabs(reached.longitude - 9.0) <= dTolerance);
    QVERIFY(std::fabs(reached.latitude) <= dTolerance);
}

QTEST_GUILESS_MAIN(TestEnumerations)
#include "tst_enumerations.moc"

#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/transmittersettings.h"

#include <QTest>

using namespace Simulation;

using NoiseSetter = void (*)(ScenarioNoiseSettings&);
Q_DECLARE_METATYPE(NoiseSetter)

class TestValueSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void transmitterDefaults();
    void antennaDirection();
    void noiseDefaults();
    void noiseEquality_data();
    void noiseEquality();
};

void TestValueSettings::transmitterDefaults()
{
    TransmitterSettings settings;
    QCOMPARE(settings.getPower(), 1.0F);
    QCOMPARE(settings.getAntennaType(), QStringLiteral("Default"));
    QCOMPARE(settings.getAntennaGain(), 0.0F);
    QCOMPARE(settings.getAntennaHeight(), 2.0F);
    QCOMPARE(settings.getAntennaDirection(), 0.0F);
}

void TestValueSettings::antennaDirection()
{
    TransmitterSettings settings;
    const float pairs[][2] = {
        {359.5F, 359.5F}, {360.0F, 0.0F}, {725.0F, 5.0F}, {-90.0F, -90.0F}, {-725.0F, -725.0F}};
    for (const auto& pair : pairs) {
        settings.setAntennaDirection(pair[0]);
        QCOMPARE(settings.getAntennaDirection(), pair[1]);
    }
}

void TestValueSettings::noiseDefaults()
{
    ScenarioNoiseSettings settings;
    QCOMPARE(settings.noiseDensity(), -35.0);
    QCOMPARE(settings.noiseDeviation(), -45.0);
    QCOMPARE(settings.frequencyDependentNoiseDensity(), -35.0);
    QCOMPARE(settings.frequencyDependentNoiseGranularity(), 0.4);
    QCOMPARE(settings.frequencyDependentNoiseVariability(), 0.0);
}

void TestValueSettings::noiseEquality_data()
{
    QTest::addColumn<NoiseSetter>("change");
    QTest::addColumn<bool>("equal");
    using Noise = ScenarioNoiseSettings;
    const auto row = [](const char* a_szName, NoiseSetter a_change, bool a_bEqual) {
        QTest::newRow(a_szName) << a_change << a_bEqual;
    };
    row(
        "nothing", [](Noise&) {}, true);
    row(
        "density, within the tolerance", [](Noise& a_noise) { a_noise.setNoiseDensity(-35.00000000003); },
        true);
    row(
        "density", [](Noise& a_noise) { a_noise.setNoiseDensity(-35.0000000001); }, false);
    row(
        "deviation", [](Noise& a_noise) { a_noise.setNoiseDeviation(45.0); }, false);
    row(
        "dependent density", [](Noise& a_noise) { a_noise.setFrequencyDependentNoiseDensity(-35.01); },
        false);
    row(
        "granularity", [](Noise& a_noise) { a_noise.setFrequencyDependentNoiseGranularity(0.0); }, false);
    row(
        "variability, nothing is near 0",
        [](Noise& a_noise) { a_noise.setFrequencyDependentNoiseVariability(1e-300); }, false);
}

void TestValueSettings::noiseEquality()
{
    QFETCH(NoiseSetter, change);
    QFETCH(bool, equal);
    ScenarioNoiseSettings settings;
    change(settings);
    QCOMPARE(settings == ScenarioNoiseSettings(), equal);
    QCOMPARE(ScenarioNoiseSettings() == settings, equal);
    settings.setDefaults();
    QVERIFY(settings == ScenarioNoiseSettings());
}

QTEST_GUILESS_MAIN(TestValueSettings)

#include "tst_valuesettings.moc"

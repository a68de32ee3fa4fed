#include "kpbase/velaos.h"
#include "simulationdata/scenariotiminghelper.h"

#include <QTest>

#include <cstdint>

using namespace Simulation;

class TestScenarioTimingHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { VelaOS::Get().setClock({}); }
    void lifecycle();
    void arithmetic();
};

namespace {

constexpr std::uint64_t s_uiStart = 1'700'000'000'000'900; // us, late in its millisecond

void setNow(std::uint64_t a_uiNow)
{
    VelaOS::Get().setClock([a_uiNow] { return a_uiNow; });
}

} // namespace

void TestScenarioTimingHelper::lifecycle()
{
    ScenarioTimingHelper timing;
    setNow(s_uiStart);
    QVERIFY(timing.isPaused() && timing.isStopped());
    QCOMPARE(timing.scenarioTime(), 0U);
    QCOMPARE(timing.startTimestamp(), 0ULL);

    timing.startScenarioTime(ScenarioTimingHelper::currentTimeStamp(), 5000);
    setNow(s_uiStart + 2'000'000);
    QVERIFY(!timing.isPaused() && !timing.isStopped());
    QCOMPARE(timing.scenarioTime(), 7000U);
    QCOMPARE(timing.startTimestamp(), s_uiStart - 5'000'000);
    QCOMPARE(timing.scenarioStartTime(), 0U);

    timing.pauseScenarioTime(1234);
    QVERIFY(timing.isPaused() && !timing.isStopped());
    QCOMPARE(timing.scenarioTime(), 1234U);
    timing.stopScenarioTime();
    QVERIFY(timing.isPaused() && timing.isStopped());
    QCOMPARE(timing.scenarioTime(), 0U);
}

void TestScenarioTimingHelper::arithmetic()
{
    ScenarioTimingHelper timing;
    timing.startScenarioTime(s_uiStart, 0xFFFF'FFFFU); // the offset (ms) exceeds 2^32 us
    setNow(s_uiStart + 100);
    QCOMPARE(timing.scenarioTime(), 0xFFFF'FFFFU);
    setNow(s_uiStart + 2000);
    QCOMPARE(timing.scenarioTime(), 1U);

    // The time spans the end of a millisecond. Unlike scenarioTime(),
    // calculateCurrentScenarioTime() truncates both timestamps to milliseconds.
    timing.startScenarioTime(s_uiStart, 0);
    setNow(s_uiStart + 100);
    QCOMPARE(timing.scenarioTime(), 0U);
    QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(s_uiStart, 0), 1U);
    QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(s_uiStart, 7), 0xFFFF'FFFAU);
}

QTEST_GUILESS_MAIN(TestScenarioTimingHelper)
#include "tst_scenariotiminghelper.moc"

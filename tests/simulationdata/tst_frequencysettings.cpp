#include "crt/crt.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/limits.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <tuple>

#include <QRegularExpression>
#include <QTest>

using namespace Simulation;

namespace {

using Chirp = FrequencySettings_Chirp;
using FastHopper = FrequencySettings_FastHopper;
using SlowHopper = FrequencySettings_SlowHopper;
using Maker = std::function<IFrequencySettings*()>;
using Change = std::function<void(IFrequencySettings&)>;

constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint32_t s_uiMax = 0xFFFFFFFF;
constexpr std::uint64_t s_uiTimeEnd = std::uint64_t{1} << 32;

/// A number in [0, a_uiBound), the same on every machine.
unsigned int below(std::mt19937& a_random, unsigned int a_uiBound)
{
    return static_cast<unsigned int>(a_random() % a_uiBound);
}

QString text(const QList<HRActivity>& a_activities)
{
    QString sText;
    for (const HRActivity& activity : a_activities) {
        sText += QStringLiteral("%1+%2@%3 ")
                     .arg(QString::number(activity.start), QString::number(activity.duration),
                          QString::number(activity.frequency, 'g', 17));
    }
    return sText.trimmed();
}

/// A hopper whose channels are the numbers 0 .. count - 1.
FastHopper numberedHopper(std::uint32_t a_uiCount, std::uint32_t a_uiRate, std::uint32_t a_uiSeed = 0)
{
    FastHopper hopper;
    hopper.setMinimumFrequency(0.0);
    hopper.setMaximumFrequency(a_uiCount);
    hopper.setHoppCount(a_uiCount);
    hopper.setHoppRate(a_uiRate);
    hopper.setHoppSet(a_uiSeed);
    hopper.setTimeslotOffset(0.0F);
    return hopper;
}

SlowHopper slowHopper(const QList<FrequencyStep>& a_steps,
                      EndBehaviourType a_eEnd = EndBehaviourType::Restart)
{
    SlowHopper hopper;
    hopper.setFrequencySteps(a_steps);
    hopper.setEndBehavior(a_eEnd);
    return hopper;
}

/// A slow hopper that walks its table step by step: slow, but plain to see.
struct WalkedTable
{
    QList<FrequencyStep> steps;
    EndBehaviourType end = EndBehaviourType::Restart;
    std::uint64_t length = 0; ///< as last asked for, 0 after a reset

    [[nodiscard]] std::uint64_t sum() const
    {
        std::uint64_t uiSum = 0;
        for (const FrequencyStep& step : steps) {
            uiSum += step.duration;
        }
        return uiSum;
    }

    [[nodiscard]] double frequencyAt(std::uint64_t a_uiTime) const
    {
        std::uint64_t uiBegin = 0;
        for (const FrequencyStep& step : steps) {
            if (uiBegin <= a_uiTime && a_uiTime < uiBegin + step.duration) {
                return step.frequency;
            }
            uiBegin += step.duration;
        }
        const bool bAgain = end == EndBehaviourType::Restart && uiBegin != 0;
        return bAgain ? frequencyAt(a_uiTime % uiBegin) : steps.last().frequency;
    }

    QList<HRActivity> activities(std::uint64_t a_uiStart, std::uint64_t a_uiLength)
    {
        length = length != 0 ? length : sum();
        if (a_uiStart > length && end == EndBehaviourType::Stop) {
            return {{a_uiStart, a_uiLength, steps.last().frequency}};
        }
        if (a_uiStart > length && end == EndBehaviourType::Inactive) {
            return {};
        }
        if (sum() == 0) {
            return {{a_uiStart, a_uiLength, steps.last().frequency}};
        }
        QList<HRActivity> answer;
        const std::uint64_t uiOffset = a_uiStart % length;
        const std::uint64_t uiBase = a_uiStart - uiOffset;
        const std::uint64_t uiEnd = std::min(a_uiStart + a_uiLength, s_uiTimeEnd) - uiBase;
        std::uint64_t uiBegin = 0;
        for (qsizetype i = 0; uiBegin < uiEnd; i = (i + 1) % steps.size()) {
            const std::uint64_t uiFrom = std::max(uiBegin, uiOffset);
            std::uint64_t uiStepEnd = uiBegin + steps[i].duration;
            const bool bLast = uiStepEnd == length && end != EndBehaviourType::Restart;
            uiStepEnd = bLast ? uiEnd : uiStepEnd;
            if (uiStepEnd > uiOffset) {
                const std::uint64_t uiTo = std::min(uiStepEnd, uiEnd);
                answer.append({uiBase + uiFrom, uiTo - uiFrom, steps[i].frequency});
            }
            if (bLast) {
                break;
            }
            uiBegin += steps[i].duration;
        }
        return answer;
    }
};

} // namespace

Q_DECLARE_METATYPE(Maker)
Q_DECLARE_METATYPE(Change)

class TestFrequencySettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void defaults_data();
    void defaults();
    void equality_data();
    void equality();
    void otherClassesDiffer();
    void randomOffsets();
    void chirpFrequency_data();
    void chirpFrequency();
    void activities_data();
    void activities();
    void answersStopAtTheLimit_data();
    void answersStopAtTheLimit();
    void channelOrder_data();
    void channelOrder();
    void tooManyChannels();
    void tooManyChannelsTogether();
    void slowHopperEditing();
    void slowHopperKeepsLengthOverInsertAndRemove();
    void slowHopperBeyond32Bits();
    void slowHopperMatchesWalk();
    void emptyTable();
};

void TestFrequencySettings::cleanup()
{
    Limits::setValue(Limits::AnswerActivities, 0);
    Limits::setValue(Limits::HopChannels, 0);
}

void TestFrequencySettings::defaults_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("halfSpan");
    QTest::addColumn<bool>("timeDependent");
    QTest::newRow("fixed") << Maker([] { return new FrequencySettingsFixed; }) << 0 << 0.0 << false;
    QTest::newRow("slow hopper") << Maker([] { return new SlowHopper; }) << 1 << 0.0 << true;
    QTest::newRow("chirp") << Maker([] { return new Chirp; }) << 2 << 1e6 << true;
    QTest::newRow("fast hopper") << Maker([] { return new FastHopper; }) << 3 << 1e6 << false;
}

void TestFrequencySettings::defaults()
{
    QFETCH(Maker, make);
    QFETCH(double, halfSpan);
    const std::unique_ptr<IFrequencySettings> settings(make());
    QTEST(static_cast<int>(settings->getType()), "type");
    QTEST(settings->isTimeDependend(), "timeDependent");
    QVERIFY(settings->isActiveAt(s_uiMax));
    QCOMPARE(settings->activeUntil(), s_uiMax);
    for (const double dCenter : {25e6, 31e6}) {
        QCOMPARE(settings->getCenterFrequency(), dCenter);
        QCOMPARE(settings->getMinimumFrequency(), dCenter - halfSpan);
        QCOMPARE(settings->getMaximumFrequency(), dCenter + halfSpan);
        const double dNow = settings->getFrequencyAt(12345);
        QVERIFY(dNow >= dCenter - halfSpan && dNow <= dCenter + halfSpan);
        settings->setCenterFrequency(31e6);
    }
}

void TestFrequencySettings::equality_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("stillEqual");
    const Maker fixed([] { return new FrequencySettingsFixed; });
    const Maker chirp([] { return new Chirp; });
    const Maker fast([] { return new FastHopper; });
    const Maker slow([] { return new SlowHopper(slowHopper({{1e6, 100}, {2e6, 200}})); });
    const auto row = [](const char* a_szName, const Maker& a_make, bool a_bEqual, auto a_change) {
        QTest::newRow(a_szName) << a_make << Change(a_change) << a_bEqual;
    };
    const auto asChirp = [](IFrequencySettings& a_s) -> Chirp& { return dynamic_cast<Chirp&>(a_s); };
    const auto asFast = [](IFrequencySettings& a_s) -> FastHopper& { return dynamic_cast<FastHopper&>(a_s); };
    const auto asSlow = [](IFrequencySettings& a_s) -> SlowHopper& { return dynamic_cast<SlowHopper&>(a_s); };
    row("same float", fixed, true, [](auto& a_s) { a_s.setCenterFrequency(25'000'000.9); });
    row("next float but one", fixed, false, [](auto& a_s) { a_s.setCenterFrequency(25'000'004.0); });
    row("not a number", fixed, false, [](auto& a_s) { a_s.setCenterFrequency(s_dNan); });
    row("chirp start", chirp, false, [=](auto& a_s) { asChirp(a_s).setStartFrequency(1e6); });
    row("chirp stop", chirp, false, [=](auto& a_s) { asChirp(a_s).setStopFrequency(1e6); });
    row("chirp duration", chirp, false, [=](auto& a_s) { asChirp(a_s).setDuration(1001); });
    row("chirp offset", chirp, true, [=](auto& a_s) { asChirp(a_s).setTimeslotOffset(0.123F); });
    row("hopper minimum", fast, false, [=](auto& a_s) { asFast(a_s).setMinimumFrequency(1e6); });
    row("hopper maximum", fast, false, [=](auto& a_s) { asFast(a_s).setMaximumFrequency(1e6); });
    row("hopper count", fast, false, [=](auto& a_s) { asFast(a_s).setHoppCount(999); });
    row("hopper rate", fast, false, [=](auto& a_s) { asFast(a_s).setHoppRate(99); });
    row("hopper set", fast, false, [=](auto& a_s) { asFast(a_s).setHoppSet(1); });
    row("hopper offset", fast, true, [=](auto& a_s) { asFast(a_s).setTimeslotOffset(0.123F); });
    row("step frequency", slow, false, [=](auto& a_s) { asSlow(a_s).setFrequency(1, 3e6); });
    row("step duration", slow, false, [=](auto& a_s) { asSlow(a_s).setDuration(1, 201); });
    row("step count", slow, false, [=](auto& a_s) { asSlow(a_s).insertStep(-1); });
    row("end behaviour", slow, true, [=](auto& a_s) { asSlow(a_s).setEndBehavior(EndBehaviourType::Stop); });
}

void TestFrequencySettings::equality()
{
    QFETCH(Maker, make);
    QFETCH(Change, change);
    QFETCH(bool, stillEqual);
    const std::unique_ptr<IFrequencySettings> original(make());
    const std::unique_ptr<IFrequencySettings> changed(original->clone());
    QVERIFY(original->equal(changed.get()));
    QVERIFY(!original->equal(nullptr));
    change(*changed);
    QCOMPARE(original->equal(changed.get()), stillEqual);
    QCOMPARE(changed->equal(original.get()), stillEqual);

    // The clone of the changed object shows the change in every answer.
    const std::unique_ptr<IFrequencySettings> clone(changed->clone());
    QCOMPARE(clone->equal(changed.get()), !std::isnan(changed->getCenterFrequency()));
    for (const unsigned int uiStart : {0U, 250U, 301U, 5000U}) {
        QCOMPARE(text(clone->calculateHRActivities(uiStart, 500, 1e5)),
                 text(changed->calculateHRActivities(uiStart, 500, 1e5)));
    }
}

void TestFrequencySettings::otherClassesDiffer()
{
    SlowHopper slow;
    FrequencySettingsFixed fixed;
    QVERIFY(!slow.equal(&fixed));
    QVERIFY(!fixed.equal(&slow));
}

void TestFrequencySettings::randomOffsets()
{
    Crt::srand(1); // 41, 18467, 6334, 26500, 19169
    const Chirp chirp;
    QCOMPARE(chirp.getTimeslotOffset(), 0.41F);
    const FastHopper hopper;
    QCOMPARE(hopper.getTimeslotOffset(), 0.67F);
    QCOMPARE(Chirp(chirp).getTimeslotOffset(), 0.41F);              // a copy draws nothing
    const std::unique_ptr<IFrequencySettings> clone(chirp.clone()); // draws 6334
    QCOMPARE(dynamic_cast<Chirp&>(*clone).getTimeslotOffset(), 0.41F);
    QCOMPARE(Crt::rand(), 26500);

    // Building the channel list restarts the sequence; a copied list does not.
    const auto next = [](const FastHopper& a_hopper) {
        Crt::srand(1);
        std::ignore = a_hopper.getFrequencyAt(0);
        return Crt::rand();
    };
    const int iAfterBuild = next(hopper);
    QVERIFY(iAfterBuild != 41);
    QCOMPARE(next(FastHopper(hopper)), 41);
    const std::unique_ptr<IFrequencySettings> hopperClone(hopper.clone());
    QCOMPARE(next(dynamic_cast<FastHopper&>(*hopperClone)), iAfterBuild);
}

void TestFrequencySettings::chirpFrequency_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::addColumn<unsigned int>("duration");
    QTest::addColumn<float>("offset");
    QTest::addColumn<unsigned int>("time");
    QTest::addColumn<double>("expected");
    QTest::newRow("begin") << 0.0 << 1000.0 << 1000U << 0.0F << 0U << 0.0;
    QTest::newRow("end begins again") << 0.0 << 1000.0 << 1000U << 0.0F << 1000U << 0.0;
    QTest::newRow("middle") << 0.0 << 1000.0 << 1000U << 0.0F << 3500U << 500.0;
    QTest::newRow("downward") << 1000.0 << 0.0 << 1000U << 0.0F << 250U << 750.0;
    QTest::newRow("shifted") << 0.0 << 1000.0 << 1000U << 0.25F << 750U << 500.0;
    // 2^32 - 250 ms leaves 46 ms of a sweep.
    QTest::newRow("before the shift")
        << 0.0 << 1000.0 << 1000U << 0.25F << 0U << double(46.0F / 1000.0F) * 1000.0;
    // The time is a multiple of 256 in single precision, 2^32 here.
    QTest::newRow("latest time") << 0.0 << 1000.0 << 1000U << 0.0F << s_uiMax << 0.0;
    QTest::newRow("no duration") << 7.0 << 1000.0 << 0U << 0.5F << 10U << 7.0;
    QTest::newRow("offset not a number") << 7.0 << 9.0 << 1000U << float(s_dNan) << 10U << 7.0;
    QTest::newRow("infinite offset") << 7.0 << 9.0 << 1000U << float(-s_dInfinity) << 10U << 7.0;
}

void TestFrequencySettings::chirpFrequency()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    QFETCH(unsigned int, duration);
    QFETCH(float, offset);
    QFETCH(unsigned int, time);
    Chirp chirp;
    chirp.setStartFrequency(start);
    chirp.setStopFrequency(stop);
    chirp.setDuration(duration);
    chirp.setTimeslotOffset(offset);
    QTEST(chirp.getFrequencyAt(time), "expected");
    QCOMPARE(chirp.getMinimumFrequency(), std::min(start, stop));
    QCOMPARE(chirp.getMaximumFrequency(), std::max(start, stop));
}

void TestFrequencySettings::activities_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<unsigned int>("start");
    QTest::addColumn<unsigned int>("length");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<QString>("expected");

    const auto chirp = [](double a_dStart, double a_dStop, unsigned int a_uiDuration) {
        return Maker([=] {
            auto pChirp = std::make_unique<Chirp>();
            pChirp->setStartFrequency(a_dStart);
            pChirp->setStopFrequency(a_dStop);
            pChirp->setDuration(a_uiDuration);
            pChirp->setTimeslotOffset(0.0F);
            return pChirp.release();
        });
    };
    const auto fast = [](unsigned int a_uiCount, unsigned int a_uiRate, float a_fOffset) {
        return Maker([=] {
            auto pHopper = std::make_unique<FastHopper>(numberedHopper(a_uiCount, a_uiRate));
            pHopper->setTimeslotOffset(a_fOffset);
            return pHopper.release();
        });
    };
    const auto slow = [](const QList<FrequencyStep>& a_steps, EndBehaviourType a_eEnd) {
        return Maker([=] { return new SlowHopper(slowHopper(a_steps, a_eEnd)); });
    };
    const QList<FrequencyStep> steps{{1.0, 100}, {2.0, 200}};
    const QList<FrequencyStep> noTime{{1.0, 0}, {2.0, 0}};
    const auto eRestart = EndBehaviourType::Restart;
    const auto eStop = EndBehaviourType::Stop;
    const auto eInactive = EndBehaviourType::Inactive;
    const Maker fixed([] { return new FrequencySettingsFixed; });
    QTest::newRow("fixed") << fixed << 5U << 7U << 1.0 << "5+7@25000000";

    QTest::newRow("chirp pieces round up") << chirp(0, 128, 128) << 0U << 8U << 2.5 << "0+3@0 3+3@3 6+3@6";
    QTest::newRow("chirp at the end of time")
        << chirp(0, 256, 256) << s_uiMax << 9U << 4.0 << "4294967295+4@0";
    QTest::newRow("chirp without a window") << chirp(0, 128, 128) << 5U << 0U << 1.0 << "";
    QTest::newRow("chirp piece beyond 32 bits")
        << chirp(0, 128, 128) << 0U << 50U << 1e30 << "0+4294967295@0";
    QTest::newRow("chirp without a sweep") << chirp(5, 5, 100) << 9U << 50U << 1.0 << "9+50@5";
    QTest::newRow("chirp without a duration") << chirp(5, 6, 0) << 9U << 50U << 1.0 << "9+50@5";
    QTest::newRow("chirp, resolution 0") << chirp(0, 128, 128) << 9U << 50U << 0.0 << "9+50@9";
    QTest::newRow("chirp, negative resolution") << chirp(0, 128, 128) << 9U << 50U << -3.0 << "9+50@9";
    QTest::newRow("chirp, resolution not a number") << chirp(0, 128, 128) << 9U << 50U << s_dNan << "9+50@9";
    QTest::newRow("chirp from infinity") << chirp(s_dInfinity, 0, 100) << 0U << 50U << 1.0 << "0+50@nan";

    // Channel order 0 2 1 3, 10 ms each.
    QTest::newRow("hops") << fast(4, 100, 0.0F) << 5U << 20U << 1.0 << "5+0@0 5+5@0 10+10@2 20+5@1";
    QTest::newRow("hops after an offset") << fast(4, 100, 0.5F) << 0U << 20U << 1.0 << "0+5@0 5+10@0 15+5@2";
    QTest::newRow("window within the offset") << fast(4, 100, 0.5F) << 0U << 4U << 1.0 << "0+5@0";
    QTest::newRow("window begins in the offset")
        << fast(4, 100, 0.5F) << 13U << 10U << 1.0 << "13+5@2 15+8@2";
    QTest::newRow("hops at the end of time")
        << fast(4, 100, 0.0F) << s_uiMax - 4 << 99U << 1.0 << "4294967291+0@0 4294967291+5@0";
    QTest::newRow("hops without channels") << fast(0, 100, 0.0F) << 5U << 20U << 1.0 << "5+20@0";
    QTest::newRow("hops without a rate") << fast(4, 0, 0.0F) << 5U << 20U << 1.0 << "5+20@0";
    QTest::newRow("hops, offset not a number")
        << fast(4, 100, float(s_dNan)) << 5U << 5U << 1.0 << "5+0@0 5+5@0";
    QTest::newRow("hops begin after the window")
        << fast(1, 4000, 3e9F) << 0U << s_uiMax << 1.0 << "0+3000000000@0";

    QTest::newRow("steps begin again")
        << slow(steps, eRestart) << 250U << 200U << 1.0 << "250+50@2 300+100@1 400+50@2";
    QTest::newRow("last step is stretched")
        << slow(steps, eStop) << 50U << 400U << 1.0 << "50+50@1 100+350@2";
    QTest::newRow("stretched from within") << slow(steps, eInactive) << 250U << 400U << 1.0 << "250+400@2";
    QTest::newRow("exactly at the end") << slow(steps, eStop) << 300U << 50U << 1.0 << "300+50@1";
    QTest::newRow("stopped") << slow(steps, eStop) << 301U << 50U << 1.0 << "301+50@2";
    QTest::newRow("inactive") << slow(steps, eInactive) << 301U << 50U << 1.0 << "";
    QTest::newRow("step without duration")
        << slow({{1.0, 10}, {9.0, 0}, {2.0, 10}}, eRestart) << 5U << 10U << 1.0 << "5+5@1 10+0@9 10+5@2";
    QTest::newRow("no step has a duration") << slow(noTime, eRestart) << 5U << 10U << 1.0 << "5+10@2";
    QTest::newRow("steps at the end of time") // 2^32 - 1 is a multiple of 5
        << slow({{1.0, 2}, {2.0, 3}}, eRestart) << s_uiMax - 4 << s_uiMax << 1.0
        << "4294967291+1@1 4294967292+3@2 4294967295+1@1";
}

void TestFrequencySettings::activities()
{
    QFETCH(Maker, make);
    QFETCH(unsigned int, start);
    QFETCH(unsigned int, length);
    QFETCH(double, resolution);
    Limits::setValue(Limits::AnswerActivities, 100); // no row comes near
    const std::unique_ptr<IFrequencySettings> settings(make());
    QTEST(text(settings->calculateHRActivities(start, length, resolution)), "expected");
}

void TestFrequencySettings::answersStopAtTheLimit_data()
{
    QTest::addColumn<Maker>("make");
    QTest::newRow("chirp") << Maker([] { return new Chirp; });
    QTest::newRow("fast hopper") << Maker([] { return new FastHopper; });
    QTest::newRow("slow hopper") << Maker([] { return new SlowHopper; });
    QTest::newRow("steps without duration") << Maker([] {
        QList<FrequencyStep> steps(1000, FrequencyStep{1.0, 0});
        steps.first().duration = 1;
        return new SlowHopper(slowHopper(steps));
    });
}

void TestFrequencySettings::answersStopAtTheLimit()
{
    QFETCH(Maker, make);
    constexpr qsizetype iLimit = 50;
    const std::unique_ptr<IFrequencySettings> settings(make());
    Limits::setValue(Limits::AnswerActivities, 100);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("activities in one answer.*100")));
    const QList<HRActivity> longer = settings->calculateHRActivities(7, s_uiMax, 2000.0);
    QCOMPARE(longer.size(), 2 * iLimit);
    Limits::setValue(Limits::AnswerActivities, iLimit);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("activities in one answer.*50")));
    QCOMPARE(text(settings->calculateHRActivities(7, s_uiMax, 2000.0)), text(longer.first(iLimit)));
}

void TestFrequencySettings::channelOrder_data()
{
    QTest::addColumn<unsigned int>("seed");
    QTest::addColumn<QList<double>>("expected");
    QTest::newRow("seed 0, 4 channels") << 0U << QList<double>{0, 2, 1, 3};
    QTest::newRow("seed 0, 8 channels") << 0U << QList<double>{0, 5, 1, 4, 7, 3, 2, 6};
    QTest::newRow("seed 1, 8 channels") << 1U << QList<double>{4, 5, 0, 7, 6, 2, 3, 1};
}

void TestFrequencySettings::channelOrder()
{
    QFETCH(unsigned int, seed);
    QFETCH(QList<double>, expected);
    const auto uiCount = static_cast<unsigned int>(expected.size());
    const auto order = [=](const FastHopper& a_hopper, unsigned int a_uiHop) {
        QList<double> channels;
        for (unsigned int uiChannel = 0; uiChannel < uiCount; ++uiChannel) {
            channels.append(a_hopper.getFrequencyAt(uiChannel * a_uiHop));
        }
        return channels;
    };
    FastHopper hopper = numberedHopper(uiCount, 1000, seed);
    QCOMPARE(order(hopper, 1), expected);
    QCOMPARE(order(hopper, uiCount + 1), expected); // each channel again, a round later
    hopper.setHoppRate(100);
    QCOMPARE(order(hopper, 10), expected);
    hopper.setTimeslotOffset(0.5F);
    QCOMPARE(hopper.getFrequencyAt(5), expected.first());
    hopper.setCenterFrequency(hopper.getCenterFrequency() + 100.0);
    QCOMPARE(hopper.getFrequencyAt(5), expected.first() + 100.0);
    hopper.setHoppSet(seed + 2);
    hopper.setCenterFrequency(hopper.getCenterFrequency() - 100.0);
    hopper.setTimeslotOffset(0.0F);
    QVERIFY(order(hopper, 10) != expected);
}

void TestFrequencySettings::tooManyChannels()
{
    FastHopper hopper = numberedHopper(8, 1000);
    Limits::setValue(Limits::HopChannels, 8);
    QCOMPARE(hopper.getFrequencyAt(1), 5.0);
    hopper.setHoppCount(s_uiMax);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("4294967295.*hop channels.*8")));
    QCOMPARE(hopper.getFrequencyAt(1), 0.0);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); // said once, not with each query
    QCOMPARE(text(hopper.calculateHRActivities(3, 40, 1.0)), QStringLiteral("3+40@0"));
    QCOMPARE(hopper.getHoppCount(), s_uiMax);
}

/// Thousands of hoppers together may not take what one may not.
void TestFrequencySettings::tooManyChannelsTogether()
{
    Limits::setValue(Limits::AllHopChannels, 20);
    auto pFirst = std::make_unique<FastHopper>(numberedHopper(8, 1000));
    const FastHopper second = numberedHopper(8, 1000);
    const FastHopper third = numberedHopper(8, 1000);
    QVERIFY(pFirst->getFrequencyAt(1) > 0.0 && second.getFrequencyAt(1) > 0.0);
    const FastHopper copy = second; // shares the list
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("all hoppers limit of 20 exceeded")));
    QCOMPARE(third.getFrequencyAt(1), 0.0);
    QCOMPARE(copy.getFrequencyAt(1), second.getFrequencyAt(1));
    pFirst.reset();
    QCOMPARE(third.getFrequencyAt(1), second.getFrequencyAt(1));
    Limits::setValue(Limits::AllHopChannels, 0);
}

void TestFrequencySettings::slowHopperEditing()
{
    SlowHopper hopper = slowHopper({{1.0, 100}, {2.0, 200}, {3.0, 300}});
    const auto table = [&hopper] {
        QString sTable;
        for (const FrequencyStep& step : hopper.getFrequencySteps()) {
            sTable +=
                QStringLiteral("%1:%2 ").arg(QString::number(step.frequency), QString::number(step.duration));
        }
        return sTable.trimmed();
    };
    const QString sBefore = table();
    for (const int iRow : {std::numeric_limits<int>::min(), -1, 3, std::numeric_limits<int>::max()}) {
        QCOMPARE(hopper.getFrequency(iRow), -1.0);
        QCOMPARE(hopper.getDuration(iRow), 0U);
        QCOMPARE(hopper.getTime(iRow), iRow < 0 ? 0U : 600U);
        hopper.setFrequency(iRow, 9.0);
        hopper.setDuration(iRow, 9);
        hopper.setTime(iRow, 9999);
        hopper.removeStep(iRow);
        QCOMPARE(table(), sBefore);
    }
    hopper.insertStep(3);
    hopper.removeStep(0);
    hopper.setTime(0, 50);
    hopper.setTime(2, 100); // not after the beginning of step 1
    QCOMPARE(table(), sBefore);

    hopper.setTime(1, 150);
    hopper.setTime(2, 300);
    QCOMPARE(table(), QStringLiteral("1:150 2:150 3:300"));
    QCOMPARE(hopper.getTime(2), 300U);
    hopper.insertStep(0);
    hopper.insertStep(-1);
    QCOMPARE(table(), QStringLiteral("1:150 1:150 2:150 3:300 3:300"));
    QCOMPARE(hopper.getFrequencyAt(449), 2.0);
    hopper.removeStep(1);
    QCOMPARE(table(), QStringLiteral("1:150 2:150 3:300 3:300"));
    QCOMPARE(hopper.getFrequencyAt(449), 3.0);
    hopper.setFrequencySteps(hopper.getFrequencySteps());
    hopper.setCenterFrequency(11.0);
    QCOMPARE(table(), QStringLiteral("11:150 12:150 13:300 13:300"));
    QCOMPARE(hopper.getMaximumFrequency(), 13.0);
}

void TestFrequencySettings::slowHopperKeepsLengthOverInsertAndRemove()
{
    SlowHopper hopper = slowHopper({{1.0, 0}, {2.0, 100}}, EndBehaviourType::Inactive);
    QCOMPARE(hopper.activeUntil(), 100U);
    hopper.insertStep(1);
    QCOMPARE(hopper.activeUntil(), 100U);
    QVERIFY(hopper.isActiveAt(200));
    hopper.setDuration(-1, 0); // resets the length although nothing changes
    QCOMPARE(hopper.activeUntil(), 200U);
    hopper.removeStep(2);
    hopper.removeStep(1);
    QCOMPARE(hopper.activeUntil(), 200U);
    // The length is not 0, but a whole cycle advances by nothing.
    QCOMPARE(text(hopper.calculateHRActivities(10, 20, 1.0)), QStringLiteral("10+20@1"));
    hopper.setEndBehavior(EndBehaviourType::Inactive);
    QVERIFY(!hopper.isActiveAt(1));
}

void TestFrequencySettings::slowHopperBeyond32Bits()
{
    SlowHopper hopper =
        slowHopper({{1.0, s_uiMax}, {2.0, s_uiMax}, {3.0, 10}, {4.0, 10}}, EndBehaviourType::Inactive);
    QCOMPARE(hopper.activeUntil(), s_uiMax);
    QVERIFY(hopper.isActiveAt(s_uiMax));
    QCOMPARE(hopper.getFrequencyAt(s_uiMax), 2.0);
    QCOMPARE(hopper.getTime(3), 8U); // modulo 2^32
    hopper.setTime(3, s_uiMax);
    QCOMPARE(hopper.getDuration(2), 1U);
    QCOMPARE(text(hopper.calculateHRActivities(s_uiMax - 1, 5, 1.0)),
             QStringLiteral("4294967294+2@1")); // step 0 ends the length, so it is the last
}

void TestFrequencySettings::slowHopperMatchesWalk()
{
    std::mt19937 random(19690720);
    for (int i = 0; i < 1500; ++i) {
        WalkedTable walked;
        const unsigned int uiSteps = 1 + below(random, 12);
        for (unsigned int uiStep = 0; uiStep < uiSteps; ++uiStep) {
            walked.steps.append(
                {static_cast<double>(uiStep + 1), below(random, 3) == 0 ? 0 : below(random, 40)});
        }
        walked.end = static_cast<EndBehaviourType>(below(random, 3));
        SlowHopper hopper = slowHopper(walked.steps, walked.end);
        for (int iQuery = 0; iQuery < 6; ++iQuery) {
            const auto uiSum = static_cast<unsigned int>(walked.sum());
            const unsigned int uiStart =
                below(random, 5) == 0 ? s_uiMax - below(random, 100) : below(random, 3 * uiSum + 2);
            const unsigned int uiLength = 1 + below(random, 2 * uiSum + 20);
            QCOMPARE(hopper.getFrequencyAt(uiStart), walked.frequencyAt(uiStart));
            QCOMPARE(hopper.isActiveAt(uiStart),
                     walked.end != EndBehaviourType::Inactive || uiStart <= uiSum);
            QCOMPARE(text(hopper.calculateHRActivities(uiStart, uiLength, 1.0)),
                     text(walked.activities(uiStart, uiLength)));
            // These keep the length that was just asked for, so it goes stale.
            if (below(random, 2) == 0) {
                const auto iRow =
                    static_cast<int>(below(random, static_cast<unsigned int>(walked.steps.size())));
                hopper.insertStep(iRow);
                walked.steps.insert(iRow, FrequencyStep(walked.steps[iRow]));
            } else if (walked.steps.size() > 1) {
                hopper.removeStep(1);
                walked.steps.removeAt(1);
            }
        }
    }
}

void TestFrequencySettings::emptyTable()
{
    SlowHopper hopper = slowHopper({});
    for (const auto eEnd : {EndBehaviourType::Stop, EndBehaviourType::Restart, EndBehaviourType::Inactive}) {
        hopper.setEndBehavior(eEnd);
        hopper.insertStep(-1);
        hopper.insertStep(0);
        hopper.removeStep(0);
        hopper.setTime(1, 5);
        hopper.setCenterFrequency(5.0);
        QCOMPARE(hopper.rows(), 0);
        QCOMPARE(hopper.getTime(1), 0U);
        QCOMPARE(hopper.getCenterFrequency(), -1.0);
        QCOMPARE(hopper.getMinimumFrequency(), -1.0);
        QCOMPARE(hopper.getMaximumFrequency(), -1.0);
        QCOMPARE(hopper.getFrequencyAt(7), -1.0);
        QVERIFY(hopper.isActiveAt(0));
        QCOMPARE(hopper.isActiveAt(1), eEnd != EndBehaviourType::Inactive);
        QCOMPARE(text(hopper.calculateHRActivities(0, 9, 1.0)), QStringLiteral("0+9@-1"));
    }
}

QTEST_GUILESS_MAIN(TestFrequencySettings)
#include "tst_frequencysettings.moc"

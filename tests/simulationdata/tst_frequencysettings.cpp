#include "crt/crt.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/simulationlimits.h"

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
FastHopper numberedHopper(std::uint32_t a_uiCount, std::uint32_t a_uiRate, float a_fOffset = 0.0F)
{
    FastHopper hopper;
    hopper.setMinimumFrequency(0.0);
    hopper.setMaximumFrequency(a_uiCount);
    hopper.setHoppCount(a_uiCount);
    hopper.setHoppRate(a_uiRate);
    hopper.setTimeslotOffset(a_fOffset);
    return hopper;
}

Chirp chirpOf(double a_dStart, double a_dStop, unsigned int a_uiDuration, float a_fOffset = 0.0F)
{
    Chirp chirp;
    chirp.setStartFrequency(a_dStart);
    chirp.setStopFrequency(a_dStop);
    chirp.setDuration(a_uiDuration);
    chirp.setTimeslotOffset(a_fOffset);
    return chirp;
}

SlowHopper slowHopper(const QList<FrequencyStep>& a_steps,
                      EndBehaviourType a_eEnd = EndBehaviourType::Restart)
{
    SlowHopper hopper;
    hopper.setFrequencySteps(a_steps);
    hopper.setEndBehavior(a_eEnd);
    return hopper;
}

/// A reference model of the slow hopper. The model visits each step of its table in
/// turn. This takes long, but is easy to verify.
struct WalkedTable
{
    QList<FrequencyStep> steps;
    EndBehaviourType end = EndBehaviourType::Restart;
    std::uint64_t length = 0; ///< as last computed, 0 after a reset

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
Q_DECLARE_METATYPE(Chirp)

class TestFrequencySettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void equality();
    void randomOffsets();
    void chirpFrequency_data();
    void chirpFrequency();
    void activities_data();
    void activities();
    void answersStopAtTheLimit();
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

void TestFrequencySettings::equality()
{
    const auto sees = []<class T>(const T& a_original, const auto& a_change) {
        const std::unique_ptr<IFrequencySettings> changed(a_original.clone());
        const bool bSame = a_original.equal(changed.get());
        a_change(dynamic_cast<T&>(*changed));
        // A clone of the changed object gives the same activities.
        const std::unique_ptr<IFrequencySettings> clone(changed->clone());
        return bSame && !a_original.equal(changed.get()) && !changed->equal(&a_original) &&
               text(clone->calculateHRActivities(250, 500, 1e5)) ==
                   text(changed->calculateHRActivities(250, 500, 1e5));
    };
    const FrequencySettingsFixed fixed;
    QVERIFY(!sees(fixed, [](auto& a_s) { a_s.setCenterFrequency(25'000'000.9); })); // equal as a float
    QVERIFY(sees(fixed, [](auto& a_s) { a_s.setCenterFrequency(25'000'004.0); }));
    QVERIFY(sees(fixed, [](auto& a_s) { a_s.setCenterFrequency(s_dNan); }));
    const Chirp chirp;
    QVERIFY(sees(chirp, [](Chirp& a_s) { a_s.setStartFrequency(1e6); }));
    QVERIFY(sees(chirp, [](Chirp& a_s) { a_s.setStopFrequency(1e6); }));
    QVERIFY(sees(chirp, [](Chirp& a_s) { a_s.setDuration(1001); }));
    QVERIFY(!sees(chirp, [](Chirp& a_s) { a_s.setTimeslotOffset(0.123F); }));
    const FastHopper fast;
    QVERIFY(sees(fast, [](FastHopper& a_s) { a_s.setMinimumFrequency(1e6); }));
    QVERIFY(sees(fast, [](FastHopper& a_s) { a_s.setMaximumFrequency(1e6); }));
    QVERIFY(sees(fast, [](FastHopper& a_s) { a_s.setHoppCount(999); }));
    QVERIFY(sees(fast, [](FastHopper& a_s) { a_s.setHoppRate(99); }));
    QVERIFY(sees(fast, [](FastHopper& a_s) { a_s.setHoppSet(1); }));
    const SlowHopper slow = slowHopper({{1e6, 100}, {2e6, 200}});
    QVERIFY(sees(slow, [](SlowHopper& a_s) { a_s.setFrequency(1, 3e6); }));
    QVERIFY(sees(slow, [](SlowHopper& a_s) { a_s.setDuration(1, 201); }));
    QVERIFY(sees(slow, [](SlowHopper& a_s) { a_s.insertStep(-1); }));
    for (const auto eEnd : {EndBehaviourType::Stop, EndBehaviourType::Inactive}) {
        QVERIFY(!sees(slow, [=](SlowHopper& a_s) { a_s.setEndBehavior(eEnd); }));
        const std::unique_ptr<IFrequencySettings> clone(slowHopper({{1e6, 100}}, eEnd).clone());
        QCOMPARE(dynamic_cast<SlowHopper&>(*clone).getEndBehavior(), eEnd);
    }
}

void TestFrequencySettings::randomOffsets()
{
    Crt::srand(1); // sequence 41, 18467, 6334, 26500, 19169
    const Chirp chirp;
    QCOMPARE(chirp.getTimeslotOffset(), 0.41F);
    const FastHopper hopper;
    QCOMPARE(hopper.getTimeslotOffset(), 0.67F);
    QCOMPARE(Chirp(chirp).getTimeslotOffset(), 0.41F);              // a copy draws no number
    const std::unique_ptr<IFrequencySettings> clone(chirp.clone()); // draws 6334
    QCOMPARE(dynamic_cast<Chirp&>(*clone).getTimeslotOffset(), 0.41F);
    QCOMPARE(Crt::rand(), 26500);

    // Building the channel list restarts the random sequence. A hopper with a copied
    // list does not restart it.
    const auto next = [](const FastHopper& a_hopper) {
        Crt::srand(1);
        std::ignore = a_hopper.getFrequencyAt(0);
        return Crt::rand();
    };
    QVERIFY(next(hopper) != 41);
    QCOMPARE(next(FastHopper(hopper)), 41);
}

void TestFrequencySettings::chirpFrequency_data()
{
    QTest::addColumn<Chirp>("chirp");
    QTest::addColumn<unsigned int>("time");
    QTest::addColumn<double>("expected");
    QTest::newRow("downward") << chirpOf(1000, 0, 1000) << 250U << 750.0;
    QTest::newRow("shifted") << chirpOf(0, 1000, 1000, 0.25F) << 750U << 500.0;
    // The shifted time is 2^32 - 250 ms, which is 46 ms after the start of a sweep.
    QTest::newRow("before the shift") << chirpOf(0, 1000, 1000, 0.25F) << 0U << double(46.0F / 1000.0F) * 1e3;
    // In single precision, times of this size are multiples of 256. The latest time
    // becomes 2^32.
    QTest::newRow("latest time") << chirpOf(0, 1000, 1000) << s_uiMax << 0.0;
    QTest::newRow("no duration") << chirpOf(7, 1000, 0, 0.5F) << 10U << 7.0;
    QTest::newRow("offset not a number") << chirpOf(7, 9, 1000, float(s_dNan)) << 10U << 7.0;
}

void TestFrequencySettings::chirpFrequency()
{
    QFETCH(Chirp, chirp);
    QFETCH(unsigned int, time);
    QFETCH(double, expected);
    QCOMPARE(chirp.getFrequencyAt(time), expected);
    chirp.setCenterFrequency(chirp.getCenterFrequency() + 100.0);
    QCOMPARE(chirp.getFrequencyAt(time), expected + 100.0);
}

void TestFrequencySettings::activities_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<unsigned int>("start");
    QTest::addColumn<unsigned int>("length");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<QString>("expected");

    const auto chirp = [](double a_dStart, double a_dStop, unsigned int a_uiDuration) {
        return Maker([=] { return new Chirp(chirpOf(a_dStart, a_dStop, a_uiDuration)); });
    };
    const auto fast = [](unsigned int a_uiCount, unsigned int a_uiRate, float a_fOffset) {
        return Maker([=] { return new FastHopper(numberedHopper(a_uiCount, a_uiRate, a_fOffset)); });
    };

    QTest::newRow("chirp pieces round up") << chirp(0, 128, 128) << 0U << 8U << 2.5 << "0+3@0 3+3@3 6+3@6";
    QTest::newRow("chirp at the end of time")
        << chirp(0, 256, 256) << s_uiMax << 9U << 4.0 << "4294967295+4@0";
    QTest::newRow("chirp piece beyond 32 bits")
        << chirp(0, 128, 128) << 0U << 50U << 1e30 << "0+4294967295@0";
    QTest::newRow("chirp without a duration") << chirp(5, 6, 0) << 9U << 50U << 1.0 << "9+50@5";
    QTest::newRow("chirp, resolution not a number") << chirp(0, 128, 128) << 9U << 50U << s_dNan << "9+50@9";
    QTest::newRow("chirp from infinity") << chirp(s_dInfinity, 0, 100) << 0U << 50U << 1.0 << "0+50@nan";

    // Channel order 0 2 1 3, 10 ms each.
    QTest::newRow("hops") << fast(4, 100, 0.0F) << 5U << 20U << 1.0 << "5+0@0 5+5@0 10+10@2 20+5@1";
    QTest::newRow("window begins in the offset")
        << fast(4, 100, 0.5F) << 13U << 10U << 1.0 << "13+5@2 15+8@2";
    QTest::newRow("hops at the end of time")
        << fast(4, 100, 0.0F) << s_uiMax - 4 << 99U << 1.0 << "4294967291+0@0 4294967291+5@0";
    const Maker slow([] { return new SlowHopper(slowHopper({{1.0, 2}, {2.0, 3}})); });
    QTest::newRow("steps at the end of time") // the period of 5 ms divides 2^32 - 1
        << slow << s_uiMax - 4 << s_uiMax << 1.0 << "4294967291+1@1 4294967292+3@2 4294967295+1@1";
    const Maker stops([] {
        return new SlowHopper(slowHopper({{1.0, 2}, {2.0, 3}}, EndBehaviourType::Stop));
    });
    QTest::newRow("no window, inside a step") << stops << 1U << 0U << 1.0 << "1+0@1";
    QTest::newRow("no window, inside the last step") << stops << 3U << 0U << 1.0 << "";
    QTest::newRow("no window, inside the last step of a cycle") << slow << 3U << 0U << 1.0 << "3+0@2";
    QTest::newRow("hops without a rate") << fast(4, 0, 0.0F) << 5U << 20U << 1.0 << "5+20@0";
    QTest::newRow("hops begin after the window")
        << fast(1, 4000, 3e9F) << 0U << s_uiMax << 1.0 << "0+3000000000@0";
}

void TestFrequencySettings::activities()
{
    QFETCH(Maker, make);
    QFETCH(unsigned int, start);
    QFETCH(unsigned int, length);
    QFETCH(double, resolution);
    Limits::setValue(Limits::AnswerActivities, 100); // more activities than any row has
    const std::unique_ptr<IFrequencySettings> settings(make());
    QTEST(text(settings->calculateHRActivities(start, length, resolution)), "expected");
}

void TestFrequencySettings::answersStopAtTheLimit()
{
    QList<FrequencyStep> steps(1000, FrequencyStep{1.0, 0});
    steps.first().duration = 1;
    const Chirp chirp;
    const FastHopper fast;
    const SlowHopper slow;
    const SlowHopper noDurations = slowHopper(steps);
    for (const IFrequencySettings* pSettings :
         std::initializer_list<const IFrequencySettings*>{&chirp, &fast, &slow, &noDurations}) {
        const auto limited = [=](qsizetype a_iLimit) {
            Limits::setValue(Limits::AnswerActivities, static_cast<std::uint64_t>(a_iLimit));
            const QString sWarning = QStringLiteral("activities in one answer.*%1").arg(a_iLimit);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(sWarning));
            return pSettings->calculateHRActivities(7, s_uiMax, 2000.0);
        };
        const QList<HRActivity> longer = limited(100);
        QCOMPARE(longer.size(), 100);
        QCOMPARE(text(limited(50)), text(longer.first(50)));
    }
}

void TestFrequencySettings::channelOrder()
{
    const auto order = [](const FastHopper& a_hopper, unsigned int a_uiHop) {
        QList<double> channels;
        for (unsigned int uiChannel = 0; uiChannel < 8; ++uiChannel) {
            channels.append(a_hopper.getFrequencyAt(uiChannel * a_uiHop));
        }
        return channels;
    };
    const QList<double> seed0{0, 5, 1, 4, 7, 3, 2, 6};
    FastHopper hopper = numberedHopper(8, 1000);
    QCOMPARE(order(hopper, 1), seed0);
    QCOMPARE(order(hopper, 9), seed0); // the same channels again in the next round
    hopper.setHoppRate(100);
    QCOMPARE(order(hopper, 10), seed0);
    hopper.setCenterFrequency(hopper.getCenterFrequency() + 100.0);
    QCOMPARE(hopper.getFrequencyAt(5), 100.0);
    hopper.setCenterFrequency(hopper.getCenterFrequency() - 100.0);
    // Each setter is called after a query has built the list.
    QCOMPARE(order(hopper, 10), seed0);
    hopper.setHoppSet(1);
    QCOMPARE(order(hopper, 10), (QList<double>{4, 5, 0, 7, 6, 2, 3, 1}));
    hopper.setMaximumFrequency(16.0);
    QCOMPARE(order(hopper, 10), (QList<double>{8, 10, 0, 14, 12, 4, 6, 2}));
    hopper.setMinimumFrequency(8.0);
    QCOMPARE(order(hopper, 10), (QList<double>{12, 13, 8, 15, 14, 10, 11, 9}));
    hopper.setHoppCount(1);
    QCOMPARE(hopper.getFrequencyAt(10), 8.0);
}

void TestFrequencySettings::tooManyChannels()
{
    FastHopper hopper = numberedHopper(8, 1000);
    Limits::setValue(Limits::HopChannels, 8);
    QCOMPARE(hopper.getFrequencyAt(1), 5.0);
    hopper.setHoppCount(s_uiMax);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("4294967295.*hop channels.*8")));
    QCOMPARE(hopper.getFrequencyAt(1), 0.0);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); // traced once, not by each query
    const FastHopper copy(hopper);
    QCOMPARE(copy.getFrequencyAt(1), 0.0);
    QCOMPARE(text(hopper.calculateHRActivities(3, 40, 1.0)), QStringLiteral("3+40@0"));
}

/// The channels of all hoppers together are limited, however few channels each hopper
/// has.
void TestFrequencySettings::tooManyChannelsTogether()
{
    Limits::setValue(Limits::AllHopChannels, 20);
    auto pFirst = std::make_unique<FastHopper>(numberedHopper(8, 1000));
    const FastHopper second = numberedHopper(8, 1000);
    const FastHopper third = numberedHopper(8, 1000);
    QVERIFY(pFirst->getFrequencyAt(1) > 0.0 && second.getFrequencyAt(1) > 0.0);
    const auto pCopy = std::make_unique<FastHopper>(second); // shares the channel list
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("all hoppers limit of 20 exceeded")));
    QCOMPARE(third.getFrequencyAt(1), 0.0);
    QCOMPARE(pCopy->getFrequencyAt(1), second.getFrequencyAt(1));
    pFirst.reset();
    QCOMPARE(third.getFrequencyAt(1), second.getFrequencyAt(1));
    Limits::setValue(Limits::AllHopChannels, 0);
}

void TestFrequencySettings::slowHopperEditing()
{
    SlowHopper hopper = slowHopper({{1.0, 100}, {2.0, 200}, {3.0, 300}});
    const auto table = [&hopper] {
        QStringList steps;
        for (const FrequencyStep& step : hopper.getFrequencySteps()) {
            steps += QString::number(step.frequency) + u':' + QString::number(step.duration);
        }
        return steps.join(u' ');
    };
    const QString sBefore = table();
    for (const int iRow : {std::numeric_limits<int>::min(), -1, 3, std::numeric_limits<int>::max()}) {
        QVERIFY(hopper.getFrequency(iRow) == -1.0 && hopper.getDuration(iRow) == 0);
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
    hopper.setTime(2, 100); // refused: not after the beginning of step 1
    QCOMPARE(table(), sBefore);

    hopper.setTime(1, 150);
    hopper.setTime(2, 300);
    QCOMPARE(table(), QStringLiteral("1:150 2:150 3:300"));
    hopper.insertStep(0);
    hopper.insertStep(-1);
    QCOMPARE(table(), QStringLiteral("1:150 1:150 2:150 3:300 3:300"));
    QCOMPARE(hopper.getFrequencyAt(449), 2.0);
    hopper.removeStep(1);
    QCOMPARE(table(), QStringLiteral("1:150 2:150 3:300 3:300"));
    QCOMPARE(hopper.getFrequencyAt(449), 3.0);
    hopper.setCenterFrequency(11.0);
    QCOMPARE(table(), QStringLiteral("11:150 12:150 13:300 13:300"));
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
    hopper.insertStep(-1);
    hopper.setCenterFrequency(1.0); // every setter resets the length
    QCOMPARE(hopper.activeUntil(), 300U);
    hopper.removeStep(3);
    hopper.setFrequencySteps(hopper.getFrequencySteps());
    QCOMPARE(hopper.activeUntil(), 200U);
    hopper.removeStep(2);
    hopper.removeStep(1);
    QCOMPARE(hopper.activeUntil(), 200U);
    // The former length applies, although the durations of the remaining steps add up
    // to 0.
    QCOMPARE(text(hopper.calculateHRActivities(10, 20, 1.0)), QStringLiteral("10+20@1"));
    hopper.setEndBehavior(EndBehaviourType::Inactive);
    QVERIFY(!hopper.isActiveAt(1));
}

void TestFrequencySettings::slowHopperBeyond32Bits()
{
    SlowHopper hopper =
        slowHopper({{1.0, s_uiMax}, {2.0, s_uiMax}, {3.0, 10}, {4.0, 10}}, EndBehaviourType::Inactive);
    QCOMPARE(hopper.activeUntil(), s_uiMax);
    QCOMPARE(hopper.getFrequencyAt(s_uiMax), 2.0);
    QCOMPARE(hopper.getTime(3), 8U); // modulo 2^32
    hopper.setTime(3, s_uiMax);
    QCOMPARE(hopper.getDuration(2), 1U);
    QCOMPARE(text(hopper.calculateHRActivities(s_uiMax - 1, 5, 1.0)),
             QStringLiteral("4294967294+2@1")); // step 0 fills the whole length; no step follows
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
            const unsigned int uiLength = below(random, 2 * uiSum + 20);
            QCOMPARE(hopper.getFrequencyAt(uiStart), walked.frequencyAt(uiStart));
            QCOMPARE(hopper.isActiveAt(uiStart),
                     walked.end != EndBehaviourType::Inactive || uiStart <= uiSum);
            QCOMPARE(text(hopper.calculateHRActivities(uiStart, uiLength, 1.0)),
                     text(walked.activities(uiStart, uiLength)));
            // These operations keep the computed length, which then differs from the
            // sum of the steps.
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
        QVERIFY(hopper.rows() == 0 && hopper.getTime(1) == 0);
        QVERIFY(hopper.getMinimumFrequency() == -1.0 && hopper.getMaximumFrequency() == -1.0);
        QCOMPARE(hopper.getCenterFrequency(), -1.0);
        QCOMPARE(hopper.getFrequencyAt(7), -1.0);
        QVERIFY(hopper.isActiveAt(0));
        QCOMPARE(hopper.isActiveAt(1), eEnd != EndBehaviourType::Inactive);
        QCOMPARE(text(hopper.calculateHRActivities(0, 9, 1.0)), QStringLiteral("0+9@-1"));
    }
}

QTEST_GUILESS_MAIN(TestFrequencySettings)
#include "tst_frequencysettings.moc"

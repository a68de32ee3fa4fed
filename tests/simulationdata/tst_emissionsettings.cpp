#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include <QTest>

using namespace Simulation;

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;
using GroupPtr = boost::shared_ptr<EmissionSettings::Group>;
using EmitterPtr = std::shared_ptr<SzenarioEmitter>;

constexpr long long s_iLowest = std::numeric_limits<long long>::min();
constexpr long long s_iHighest = std::numeric_limits<long long>::max();
constexpr unsigned int s_uiForEver = 0xFFFFFFFF;

namespace Simulation {

bool operator==(const HRActivity& a_first, const HRActivity& a_second)
{
    return a_first.start == a_second.start && a_first.duration == a_second.duration &&
           a_first.frequency == a_second.frequency;
}

} // namespace Simulation

namespace {

EmissionPtr emission(std::int64_t a_iStart, std::int64_t a_iDuration, const EmitterPtr& a_emitter = nullptr)
{
    EmissionPtr created = EmissionSettings::createEmission();
    created->start = a_iStart;
    created->duration = a_iDuration;
    created->emitter = a_emitter;
    return created;
}

GroupPtr group(const QList<EmissionPtr>& a_emissions, const QList<GroupPtr>& a_groups = {})
{
    GroupPtr created = EmissionSettings::createGroup();
    created->emissions = a_emissions;
    created->groups = a_groups;
    return created;
}

EmitterPtr emitter(const char* a_szId)
{
    return std::make_shared<SzenarioEmitter>(QLatin1String(a_szId), QString());
}

/// Two emissions, (100, 150] and (200, 210] ms.
EmissionSettings twoEmissions(long long a_iPeriod = 0)
{
    EmissionSettings settings;
    settings.setDuration(a_iPeriod);
    settings.addEmission(emission(200, 10));
    settings.addEmission(emission(100, 50));
    return settings;
}

/// Computes the activities in the simplest way: it visits every emission of every
/// period.
QList<HRActivity> naiveActivities(const EmissionSettings& a_settings, const SzenarioEmitter* a_pEmitter,
                                  std::int64_t a_iFrom, std::int64_t a_iLength)
{
    const std::int64_t iEnd = a_iFrom + a_iLength;
    std::int64_t iBase = a_iFrom - a_iFrom % a_settings.duration();
    const QList<EmissionPtr>& all = a_settings.emissions();
    qsizetype i = 0;
    while (i < all.size() && all.at(i)->start < a_iFrom - iBase) {
        ++i;
    }
    i = std::max<qsizetype>(i - 1, 0);
    QList<HRActivity> result;
    while (all.at(i)->start + iBase < iEnd) {
        const std::int64_t iStart = all.at(i)->start + iBase;
        if (a_pEmitter == nullptr || all.at(i)->emitter.get() == a_pEmitter) {
            result.append({static_cast<std::uint64_t>(iStart),
                           static_cast<std::uint64_t>(std::min(all.at(i)->duration, iEnd - iStart)), 0.0});
        }
        if (++i == all.size()) {
            if (a_settings.duration() >= iEnd - iBase) {
                break;
            }
            i = 0;
            iBase += a_settings.duration();
        }
    }
    return result;
}

} // namespace

class TestEmissionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusals();
    void lookup_data();
    void lookup();
    void order();
    void addingMany();
    void replacing();
    void continuous();
    void removingGroups();
    void circles();
    void longChains();
    void removingMany();
    void activities();
    void activitiesAgainstNaiveWalk();
    void hostileNumbers_data();
    void hostileNumbers();
    void answerLimit();
};

void TestEmissionSettings::refusals()
{
    EmissionSettings settings;
    for (const long long iUnlimited : {0LL, -5LL, s_iLowest}) {
        settings.setDuration(1000);
        settings.setDuration(iUnlimited);
        QCOMPARE(settings.duration(), s_iHighest);
    }
    settings.addEmission(nullptr);
    settings.addGroup(nullptr);
    QVERIFY(settings.emissions().isEmpty() && settings.groups().isEmpty());
}

void TestEmissionSettings::lookup_data()
{
    QTest::addColumn<long long>("period");
    QTest::addColumn<unsigned int>("time");
    QTest::addColumn<long long>("start"); // of the emission that is found; -1 = no emission
    QTest::addColumn<long long>("timeActive");
    for (const long long iPeriod : {0LL, 1000LL}) {
        const unsigned int uiShift = iPeriod == 0 ? 0 : 3000;
        const auto row = [&](const char* a_szName, unsigned int a_uiTime, long long a_iStart,
                             long long a_iActive) {
            QTest::addRow("%s, period %lld", a_szName, iPeriod)
                << iPeriod << a_uiTime + uiShift << a_iStart << a_iActive;
        };
        row("at the start it is not on yet", 100, -1, -1);
        row("just after the start", 101, 100, 1);
        row("at the end it is still on", 150, 100, 50);
        row("just after the end", 151, -1, -1);
        row("second start, the first long over", 200, -1, -1);
    }
    QTest::newRow("last time there is, in an emission") << 4294967145LL << s_uiForEver << 100LL << 50LL;
}

void TestEmissionSettings::lookup()
{
    QFETCH(long long, period);
    QFETCH(unsigned int, time);
    QFETCH(long long, start);
    QFETCH(long long, timeActive);
    EmissionSettings settings = twoEmissions(period);
    const auto package = std::make_shared<SignalPackage>();
    settings.replaceSignalPackage(nullptr, package);
    const EmissionPtr found = settings.emissionAt(time);
    QCOMPARE(found ? found->start : -1LL, start);
    QCOMPARE(settings.timeActiveAt(time), timeActive);
    QCOMPARE(settings.signalPackageAt(time), start >= 0 ? package : nullptr);
}

void TestEmissionSettings::order()
{
    EmissionSettings settings;
    const EmissionPtr old = emission(100, 1000);
    const EmissionPtr fresh = emission(100, 10);
    const EmissionPtr late = emission(300, 10);
    settings.addEmissions({old, late, late}); // "late" is added twice
    settings.addEmission(fresh);
    QCOMPARE(settings.emissions(), (QList{fresh, old, late, late}));
    QCOMPARE(settings.emissionAt(120), old); // the last of the emissions with equal starts
    late->start = 100;
    settings.updateEmission(settings.emissions().constLast());
    QCOMPARE(settings.emissions(), (QList{late, fresh, old}));
}

void TestEmissionSettings::addingMany()
{
    std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed,cert-msc51-cpp): the same every time
    QList<EmissionPtr> added;
    EmissionSettings oneByOne = twoEmissions();
    EmissionSettings atOnce = oneByOne;
    for (int i = 0; i < 300; ++i) {
        added.append(emission(static_cast<std::int64_t>(random() % 40) * 10, 5));
    }
    for (auto it = added.crbegin(); it != added.crend(); ++it) {
        oneByOne.addEmission(*it);
    }
    added.insert(7, nullptr);
    atOnce.addEmissions(added);
    QCOMPARE(atOnce.emissions(), oneByOne.emissions());
}

void TestEmissionSettings::replacing()
{
    const EmitterPtr first = emitter("first");
    const EmitterPtr second = emitter("second");
    EmissionSettings settings;
    settings.addEmissions(
        {emission(0, 1, first), emission(1, 1), emission(2, 1, second), emission(3, 1, first)});
    // The arguments may refer to members of these settings.
    settings.replaceEmitter(settings.emissions().constFirst()->emitter, settings.emissions().at(2)->emitter);
    settings.removeEmissions(settings.emissions().constFirst()->emitter);
    QVERIFY(settings.emissions().size() == 1 && !settings.emissions().constFirst()->emitter);
}

void TestEmissionSettings::continuous()
{
    EmissionSettings settings = twoEmissions(700);
    settings.addGroup(group(settings.emissions()));
    const auto own = std::make_shared<SignalPackage>();
    settings.replaceSignalPackage(nullptr, own);
    settings.replaceEmitter(nullptr, emitter("sender"));
    for (const auto& given : {std::shared_ptr<SignalPackage>(), std::make_shared<SignalPackage>()}) {
        settings.makeContinousActive(settings.emissions().constFirst()->emitter, given);
        QVERIFY(settings.emissions().size() == 1 && settings.groups().isEmpty());
        const EmissionPtr all = settings.emissions().constFirst();
        QVERIFY(all->start == 0 && all->duration == 700 && all->emitter->id() == u"sender");
        QCOMPARE(all->signalPackage, given ? given : own);
    }
}

void TestEmissionSettings::removingGroups()
{
    EmissionSettings settings = twoEmissions();
    const EmissionPtr only = settings.emissions().constFirst();
    const EmissionPtr other = settings.emissions().constLast();
    const GroupPtr inner = group({only, only});
    const GroupPtr middle = group({}, {inner, inner});
    const GroupPtr outer = group({}, {middle});
    const GroupPtr mixed = group({other}, {inner, outer});
    for (const GroupPtr& added : {outer, mixed, inner, middle, inner}) {
        settings.addGroup(added);
    }
    settings.removeEmission(only);
    QCOMPARE(settings.groups(), QList{mixed});
    QVERIFY(mixed->groups.isEmpty());
    QCOMPARE(settings.emissions(), QList{other});

    const GroupPtr held = group({other});
    const GroupPtr self = group({other});
    self->groups = {self, held};
    mixed->groups = {held, self};
    settings.addGroup(held);
    settings.addGroup(self);
    settings.removeGroup(held);
    settings.removeGroup(self);
    QCOMPARE(settings.groups(), QList{mixed});
    QVERIFY(mixed->groups.isEmpty());
    QVERIFY(self->groups.isEmpty()); // otherwise the group would hold itself and leak
}

/// Groups that hold each other are freed when no settings contain them any more.
void TestEmissionSettings::circles()
{
    const GroupPtr outside = group({emission(0, 1)});
    boost::weak_ptr<EmissionSettings::Group> watched;
    {
        EmissionSettings keeper;
        {
            EmissionSettings settings;
            const GroupPtr first = group({}, {outside});
            const GroupPtr second = group({}, {first});
            const GroupPtr hidden = group({}, {second, second}); // not in the list of the settings
            first->groups.append(hidden);
            first->groups.append(first);
            watched = first;
            settings.addGroup(first);
            settings.addGroup(second);
            settings.addGroup(outside);
            keeper = settings;
            settings.clearAll();
        }
        QVERIFY(keeper.groups().size() == 3);
        EmissionSettings assignedOver;
        assignedOver = keeper;
        keeper = EmissionSettings();
        QVERIFY(!watched.expired());
        assignedOver.makeContinousActive(nullptr, nullptr);
        QVERIFY(watched.expired());
    }
}

/// A document can build chains of a million objects. Their destruction must not
/// recurse.
void TestEmissionSettings::longChains()
{
    constexpr int iLength = 1'000'000;
    EmissionSettings settings;
    GroupPtr next = group({});
    settings.addGroup(next);
    for (int i = 0; i < iLength; ++i) {
        next = group({}, {std::move(next)});
    }
    settings.addGroup(next);
    next.reset();
    // Removes the innermost group from the list, but not from the group that holds it,
    // because that group is not in the list.
    settings.clearEmptyGroups();
    QCOMPARE(settings.groups().size(), 1);
    settings.clearAll();

    EmitterPtr last = emitter("last");
    for (int i = 0; i < iLength; ++i) {
        const EmitterPtr holder = emitter("holder");
        holder->emissionSettings()->addEmission(emission(0, 1, last));
        last = holder;
    }
}

void TestEmissionSettings::removingMany()
{
    constexpr int iCount = 100'000; // takes hours if each step costs O(n)
    const EmitterPtr gone = emitter("gone");
    const EmitterPtr stays = emitter("stays");
    EmissionSettings settings;
    const GroupPtr all = group({});
    QList<EmissionPtr> emissions;
    for (int i = iCount; i-- > 0;) {
        emissions.append(emission(i, 1, i == 5 ? stays : gone));
        // Each emission has its own group, which is the only member of a parent group.
        // Removing the emission removes both groups. The group `all` contains every
        // parent group.
        settings.addGroup(group({emissions.constLast()}));
        settings.addGroup(group({}, {settings.groups().constLast()}));
        all->groups.append(settings.groups().constLast());
    }
    all->emissions = emissions;
    settings.addGroup(all);
    settings.addEmissions(emissions);
    settings.removeEmissions(gone);
    QCOMPARE(settings.emissions().size(), 1);
    QCOMPARE(settings.groups().size(), 3);
    QCOMPARE(all->emissions, settings.emissions());
    QCOMPARE(all->groups.size(), 1);
    settings.removeEmissions(stays);
    QVERIFY(settings.groups().isEmpty());
}

void TestEmissionSettings::activities()
{
    using List = QList<HRActivity>;
    EmissionSettings settings = twoEmissions();
    const auto in = [&](unsigned int a_uiStart, unsigned int a_uiLength) {
        return settings.calculateHRActivities(nullptr, a_uiStart, a_uiLength);
    };
    QCOMPARE(in(0, 1000), (List{{100, 50, 0}, {200, 10, 0}}));
    QCOMPARE(in(120, 10), (List{{100, 30, 0}})); // the start is not clipped to the window
    QCOMPARE(in(180, 10), (List{{100, 50, 0}})); // an emission that has ended is included
    QCOMPARE(in(200, 5), (List{{100, 50, 0}, {200, 5, 0}}));
    settings.setDuration(300);
    QCOMPARE(in(310, 400), (List{{400, 50, 0}, {500, 10, 0}, {700, 10, 0}}));
    settings.setDuration(150); // shorter than the schedule
    QCOMPARE(in(150, 210), (List{{250, 50, 0}, {350, 10, 0}}));
    settings.setBroadcast(true);
    QCOMPARE(in(150, 210), (List{{150, 210, 0}}));
    settings.clearAll();
    QVERIFY(in(150, 210).isEmpty());
}

void TestEmissionSettings::activitiesAgainstNaiveWalk()
{
    std::mt19937 random(20); // NOLINT(bugprone-random-generator-seed,cert-msc51-cpp): the same every time
    const auto below = [&random](unsigned int a_uiBound) {
        return static_cast<unsigned int>(random() % a_uiBound);
    };
    const std::vector<EmitterPtr> emitters{nullptr, emitter("a"), emitter("b"), emitter("silent")};
    for (int iRound = 0; iRound < 3000; ++iRound) {
        EmissionSettings settings;
        const unsigned int uiPeriod = below(5) == 0 ? 0 : 1 + below(400);
        settings.setDuration(uiPeriod);
        QList<EmissionPtr> emissions;
        for (unsigned int i = 0; i <= below(8); ++i) {
            // Some emissions start after the end of the period, as if the period had
            // been shortened later.
            emissions.append(emission(below(uiPeriod == 0 || below(9) == 0 ? 900 : uiPeriod), below(60),
                                      emitters[below(3)]));
        }
        settings.addEmissions(emissions);
        const unsigned int uiStart = below(3) == 0 ? 0 : below(5000);
        const unsigned int uiLength = below(2000);
        for (const EmitterPtr& filter : emitters) {
            QCOMPARE(settings.calculateHRActivities(filter.get(), uiStart, uiLength),
                     naiveActivities(settings, filter.get(), uiStart, uiLength));
        }
    }
}

void TestEmissionSettings::hostileNumbers_data()
{
    QTest::addColumn<long long>("start");
    QTest::addColumn<long long>("duration");
    QTest::addColumn<long long>("period");
    QTest::addColumn<bool>("active");    // at 1000 ms
    QTest::addColumn<long long>("stop"); // end of the only activity in [0, 2000); -1 = no activity
    QTest::newRow("negative duration") << 10LL << -1LL << 0LL << false << 10LL;
    QTest::newRow("negative start, reaches in") << -50LL << 1050LL << 0LL << true << 1000LL;
    QTest::newRow("lowest start, longest duration") << s_iLowest << s_iHighest << 0LL << false << 0LL;
    QTest::newRow("low start, longest duration") << -999LL << s_iHighest << 0LL << true << 2000LL;
    QTest::newRow("highest start") << s_iHighest << s_iHighest << 0LL << false << -1LL;
    QTest::newRow("start and end beyond the range") << 1LL << s_iHighest << s_iHighest << true << 2000LL;
}

void TestEmissionSettings::hostileNumbers()
{
    QFETCH(long long, start);
    QFETCH(long long, duration);
    QFETCH(long long, period);
    QFETCH(bool, active);
    EmissionSettings settings;
    settings.setDuration(period);
    settings.addEmission(emission(start, duration));
    QCOMPARE(settings.timeActiveAt(1000), active ? 1000 - start : -1LL);
    const QList<HRActivity> found = settings.calculateHRActivities(nullptr, 0, 2000);
    QVERIFY(found.size() <= 1);
    QTEST(found.isEmpty() ? -1LL : static_cast<long long>(found[0].start + found[0].duration), "stop");
    const QList<HRActivity> late = settings.calculateHRActivities(nullptr, s_uiForEver, s_uiForEver);
    QVERIFY(std::all_of(late.cbegin(), late.cend(), [](const HRActivity& a_activity) {
        return a_activity.start + a_activity.duration <= 2ULL * s_uiForEver;
    }));
}

void TestEmissionSettings::answerLimit()
{
    const EmitterPtr rare = emitter("rare");
    EmissionSettings settings;
    settings.setDuration(1);
    settings.addEmission(emission(0, 1, rare));
    constexpr qsizetype iLimit = 1000;
    Limits::setValue(Limits::AnswerActivities, iLimit);
    QCOMPARE(settings.calculateHRActivities(nullptr, 0, s_uiForEver).size(), iLimit);
    settings.addEmissions(QList<EmissionPtr>(100'000, emission(0, 1)));
    // A period without an activity must take no more time than a period with one.
    QCOMPARE(settings.calculateHRActivities(rare.get(), 0, s_uiForEver).size(), iLimit);
    QVERIFY(settings.calculateHRActivities(emitter("silent").get(), 0, s_uiForEver).isEmpty());
    Limits::setValue(Limits::AnswerActivities, 0);
}

QTEST_GUILESS_MAIN(TestEmissionSettings)

#include "tst_emissionsettings.moc"

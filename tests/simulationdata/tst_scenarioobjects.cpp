#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/transmittersettings.h"

#include <functional>

#include <QTest>

using namespace Simulation;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using NetworkPtr = std::shared_ptr<ScenarioNetwork>;
using EmitterChange = std::function<void(SzenarioEmitter&)>;
Q_DECLARE_METATYPE(EmitterChange)

namespace {

EmitterPtr emitter(const QString& a_sId)
{
    return std::make_shared<SzenarioEmitter>(a_sId, a_sId.toUpper());
}

/// Makes an emitter send in (start, start + duration] ms.
void send(EmissionSettings* a_pSchedule, const EmitterPtr& a_emitter, std::int64_t a_iStart,
          std::int64_t a_iDuration)
{
    const auto emission = EmissionSettings::createEmission();
    emission->start = a_iStart;
    emission->duration = a_iDuration;
    emission->emitter = a_emitter;
    emission->signalPackage = std::make_shared<SignalPackage>();
    a_pSchedule->addEmission(emission);
}

/// Links an emitter to its target on both sides, as a document does.
void link(const EmitterPtr& a_emitter, const EmitterPtr& a_target)
{
    a_emitter->setLinkTargetEmitter(a_target);
    a_target->addLinkedEmitter(a_emitter);
}

/// Frequency settings that end after their only step of 1000 ms.
IFrequencySettings* endingFrequency()
{
    auto* pSettings = new FrequencySettings_SlowHopper;
    pSettings->setEndBehavior(EndBehaviourType::Inactive);
    return pSettings;
}

/// A movement that ends within one minute.
IPositionSettings* endingMovement()
{
    auto* pSettings = new PositionSettingsPtp(TPos{8.0, 48.0}, 0.001);
    pSettings->setEndBehavior(EndBehaviourType::Inactive);
    return pSettings;
}

/// Whether transmissionAt() gives the same results as the three queries for its parts.
bool isTransmissionWhole(const SzenarioEmitter& a_emitter, unsigned int a_uiTime)
{
    const SzenarioEmitter::Transmission whole = a_emitter.transmissionAt(a_uiTime);
    return whole.isActive == a_emitter.isActiveAt(a_uiTime) &&
           whole.timeActive == a_emitter.timeActiveAt(a_uiTime) &&
           whole.signalPackage == a_emitter.signalPackageAt(a_uiTime);
}

QString bursts(const SzenarioEmitter& a_emitter, unsigned int a_uiStart, unsigned int a_uiEnd)
{
    QStringList texts;
    const QList<HRActivity> activities = a_emitter.calculateBursts(a_uiStart, a_uiEnd, 1000.0);
    for (const HRActivity& activity : activities) {
        texts.append(QStringLiteral("%1+%2@%3")
                         .arg(QString::number(activity.start), QString::number(activity.duration),
                              QString::number(activity.frequency)));
    }
    return texts.join(u' ');
}

/// Everything that a copy takes from an emitter, as text.
QString description(const SzenarioEmitter& a_emitter)
{
    const EmissionSettings* pSchedule = a_emitter.ScenarioObject::emissionSettings();
    const auto* pElint = dynamic_cast<const ElintScenarioEmitter*>(&a_emitter);
    const QStringList texts{a_emitter.id(), a_emitter.name(), a_emitter.description()};
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8|")
               .arg(texts.join(u'|'), QString::number(a_emitter.isActive()),
                    QString::number(pSchedule->isBroadcast()), QString::number(pSchedule->emissions().size()),
                    QString::number(a_emitter.frequencySettings()->getCenterFrequency()),
                    a_emitter.getClass(),
                    QString::number(static_cast<double>(a_emitter.getTranmitterSettings()->getPower())),
                    QString::number(a_emitter.getPositionSettings()->getPosition().latitude)) +
           QString::number(a_emitter.linkedEmitter().size()) + u'|' +
           (pElint != nullptr ? pElint->getEDWFile() : QString());
}

} // namespace

class TestScenarioObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutSettings();
    void copies();
    void copyBesides();
    void clonesOfLocalObjects();
    void networkCopies();
    void clonedGroups();
    void membership();
    void followsNetwork();
    void followsLinks();
    void linkCircles();
    void affected();
    void longChain();
    void active_data();
    void active();
    void elintActive();
    void speakers();
    void burstWindows_data();
    void burstWindows();
    void burstsInNetwork();
};

/// The sanitizers report a double deletion or a leak.
void TestScenarioObjects::withoutSettings()
{
    const EmitterPtr bare = emitter(QStringLiteral("bare"));
    bare->setFrequencySettings(bare->frequencySettings());
    bare->setPositionSettings(bare->getPositionSettings());
    bare->setTransmitterSettings(bare->getTranmitterSettings());
    QCOMPARE(bare->frequencySettings()->getCenterFrequency(), 25e6);
    bare->emissionSettings()->setBroadcast(true);
    QVERIFY(bare->isActiveAt(1));
    bare->setPositionSettings(nullptr);
    QVERIFY(!bare->isActiveAt(1));
    QVERIFY(bare->getPositionAt(1).longitude == 0.0 && bare->getPositionAt(1).latitude == 0.0);
    bare->setPositionSettings(new PositionSettingsFixed(TPos{}));
    bare->setFrequencySettings(nullptr);
    bare->setTransmitterSettings(nullptr);
    QVERIFY(!bare->isActiveAt(1));
    QCOMPARE(bare->getFrequencyAt(1), 0.0);
    QVERIFY(bare->calculateBursts(0, 100, 1.0).isEmpty());
    const EmitterPtr copy = std::static_pointer_cast<SzenarioEmitter>(bare->clone());
    QVERIFY(!copy->frequencySettings() && !copy->getTranmitterSettings() && copy->positionSettings());
    bare->setPositionSettings(nullptr);
    copy->copy(bare);
    QVERIFY(!copy->positionSettings());
    copy->copy(nullptr);
    copy->addLinkedEmitter(nullptr);

    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"), nullptr);
    network->setFrequencySettings(nullptr);
    bare->setScenarioNetwork(network);
    QCOMPARE(bare->getFrequencyAt(1), 0.0);
    QVERIFY(!network->addEmitter(nullptr) && !network->removeEmitter(nullptr));
}

void TestScenarioObjects::copies()
{
    const EmitterPtr source = emitter(QStringLiteral("e"));
    source->setDescription(QStringLiteral("text"));
    source->setActive(false);
    source->setVisibleOnMap(true);
    source->setVisibleOnTimeline(true);
    source->emissionSettings()->setBroadcast(true);
    send(source->emissionSettings(), nullptr, 1, 1);
    source->frequencySettings()->setCenterFrequency(5e6);
    source->setClass(QStringLiteral("class"));
    source->getTranmitterSettings()->setPower(9.0F);
    source->positionSettings()->setPosition(TPos{1.0, 2.0});
    source->addLinkedEmitter(emitter(QStringLiteral("l")));
    const auto clone = std::static_pointer_cast<SzenarioEmitter>(source->clone());
    const auto elint = std::make_shared<ElintScenarioEmitter>(QStringLiteral("x"), QString());
    elint->SetEDWFile(QStringLiteral("edw"));
    elint->copy(source);
    // The constructor uses the id and name that it is given. It copies the visibility of
    // the source, but not the active flag.
    const SzenarioEmitter constructed(QStringLiteral("c"), QStringLiteral("C"), source);
    QVERIFY(constructed.isVisibleOnMap() && constructed.isVisibleOnTimeline());
    QVERIFY(!clone->isVisibleOnMap() && !clone->isVisibleOnTimeline());

    // The copied settings are independent of the source.
    source->frequencySettings()->setCenterFrequency(1.0);
    source->getTranmitterSettings()->setPower(1234.0F);
    source->positionSettings()->setPosition(TPos{77.0, 77.0});
    source->emissionSettings()->clearAll();
    const QString sExpected = QStringLiteral("e|E|text|0|1|1|5e+06|class|9|2|1|");
    QCOMPARE(description(*clone), sExpected);
    QCOMPARE(description(*elint), sExpected + QStringLiteral("edw"));
    const auto elintClone = std::static_pointer_cast<SzenarioEmitter>(elint->clone());
    QCOMPARE(description(*elintClone), description(*elint));
    QCOMPARE(description(constructed), QStringLiteral("c|C|text|1|1|1|5e+06|class|9|2|1|"));
}

void TestScenarioObjects::copyBesides()
{
    const EmitterPtr source = emitter(QStringLiteral("e"));
    const EmitterPtr target = emitter(QStringLiteral("target"));
    link(source, target);
    const auto clone = std::static_pointer_cast<SzenarioEmitter>(source->clone());
    const SzenarioEmitter constructed(QStringLiteral("c"), QString(), source);
    QVERIFY(clone->linkTargetEmitter() == target && constructed.linkTargetEmitter() == target);
    // From an object of another class, copy() takes only the fields that all objects
    // have.
    source->setClass(QStringLiteral("kept"));
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    source->copy(network);
    QCOMPARE(source->id() + source->getClass(), QStringLiteral("nkept"));
    network->addEmitter(target);
    network->copy(target);
    QVERIFY(network->id() == u"target" && network->containsEmitter(target));
    // A follower that has copied its link target does not hold itself.
    source->copy(target);
    QVERIFY(source->linkedEmitter().isEmpty());
    source->copy(source);
    QCOMPARE(source->id(), QStringLiteral("target"));
}

/// Objects outside any std::shared_ptr can be cloned.
void TestScenarioObjects::clonesOfLocalObjects()
{
    const EmitterPtr target = emitter(QStringLiteral("target"));
    SzenarioEmitter plain(QStringLiteral("e"), QStringLiteral("E"));
    plain.setLinkTargetEmitter(target);
    const auto plainClone = std::static_pointer_cast<SzenarioEmitter>(plain.clone());
    QCOMPARE(description(*plainClone), description(plain));
    QCOMPARE(plainClone->linkTargetEmitter(), target);
    ElintScenarioEmitter elint(QStringLiteral("x"), QString());
    elint.SetEDWFile(QStringLiteral("edw"));
    QCOMPARE(description(*std::static_pointer_cast<SzenarioEmitter>(elint.clone())), description(elint));
    ScenarioNetwork network(QStringLiteral("n"));
    network.addEmitter(target);
    const auto networkClone = std::static_pointer_cast<ScenarioNetwork>(network.clone());
    QVERIFY(networkClone->id() == u"n" && networkClone->containsEmitter(target));
}

void TestScenarioObjects::networkCopies()
{
    const auto source = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    source->setName(QStringLiteral("Net"));
    source->setColor(Qt::red);
    source->setNetworkType(NetworkType::Star);
    source->emissionSettings()->setBroadcast(true);
    const EmitterPtr first = emitter(QStringLiteral("1"));
    const EmitterPtr second = emitter(QStringLiteral("2"));
    source->addEmitter(first);
    source->setHeadEmitter(second);
    const auto clone = std::dynamic_pointer_cast<ScenarioNetwork>(source->clone());
    QVERIFY(clone->id() == u"n" && clone->name() == u"Net" && clone->color() == QColor(Qt::red) &&
            clone->networkType() == NetworkType::Star && clone->emissionSettings()->isBroadcast());
    QCOMPARE(clone->emitterList(), (QList{second, first}));
    clone->removeEmitter(first);
    source->copy(source);
    QCOMPARE(source->emitterList().size(), 2);
    QCOMPARE(ScenarioNetwork(QStringLiteral("other"), source).emitterList(), (QList{second, first}));
}

/// A cloned network shares the groups of its source. When one of the two networks loses
/// a member whose emissions are in these groups, that network gets its own groups. The
/// other network keeps the shared groups unchanged.
void TestScenarioObjects::clonedGroups()
{
    for (const bool bFromClone : {true, false}) {
        const auto source = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
        const EmitterPtr gone = emitter(QStringLiteral("gone"));
        const EmitterPtr stays = emitter(QStringLiteral("stays"));
        const EmitterPtr silent = emitter(QStringLiteral("silent"));
        const EmitterPtr loose = emitter(QStringLiteral("loose")); // its emission is in no group
        EmissionSettings* const pSchedule = source->emissionSettings();
        for (const EmitterPtr& member : {gone, stays}) {
            source->addEmitter(member);
            send(pSchedule, member, 0, 10);
        }
        const auto inner = EmissionSettings::createGroup();
        const auto outer = EmissionSettings::createGroup();
        inner->name = QStringLiteral("inner");
        inner->emissions = pSchedule->emissions();
        outer->groups = {inner, outer};                          // a circle
        outer->emissions = {pSchedule->emissions().constLast()}; // the emission of "gone"
        pSchedule->addGroup(inner);
        pSchedule->addGroup(outer);
        for (const EmitterPtr& member : {silent, loose}) {
            source->addEmitter(member);
        }
        send(pSchedule, loose, 0, 10);

        const auto clone = std::static_pointer_cast<ScenarioNetwork>(source->clone());
        QCOMPARE(clone->emissionSettings()->groups(), pSchedule->groups());
        const auto& loser = bFromClone ? clone : source;
        const auto& keeper = bFromClone ? source : clone;
        // A group that loses no member remains the same object, which an editor may
        // hold.
        QVERIFY(loser->removeEmitter(silent) && loser->removeEmitter(loose));
        QCOMPARE(loser->emissionSettings()->emissions().size(), 2);
        QCOMPARE(loser->emissionSettings()->groups(), (QList{inner, outer}));
        QVERIFY(loser->removeEmitter(gone));
        const auto kept = keeper->emissionSettings()->groups();
        QVERIFY(kept == (QList{inner, outer}) && keeper->containsEmitter(gone));
        QVERIFY(inner->emissions.size() == 2 && outer->emissions.size() == 1);
        const auto left = loser->emissionSettings()->groups();
        QVERIFY(left.size() == 2 && left[0]->name == u"inner" && left[0]->emissions.size() == 1);
        QVERIFY(left[1]->groups == left && left[1]->emissions.isEmpty());
        // The removal of `gone` gave `loser` its own groups. The next removal changes the
        // groups of each network and does not copy them again.
        QVERIFY(loser->removeEmitter(stays) && keeper->removeEmitter(stays));
        QVERIFY(left[0]->emissions.isEmpty() && inner->emissions.size() == 1);
        // A destroyed schedule frees a circle of groups only if no other object holds
        // the circle. This function holds the circle and must break it.
        outer->groups.clear();
    }
}

void TestScenarioObjects::membership()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    const EmitterPtr a = emitter(QStringLiteral("a"));
    const EmitterPtr b = emitter(QStringLiteral("b"));
    const EmitterPtr c = emitter(QStringLiteral("c"));
    QVERIFY(network->addEmitter(a) && network->addEmitter(b));
    QVERIFY(!network->addEmitter(a));
    QVERIFY(!a->hasNetwork()); // the caller sets the member's network
    network->setHeadEmitter(b);
    QCOMPARE(network->emitterList(), (QList{b, a}));
    network->setHeadEmitter(c);
    QCOMPARE(network->emitterList(), (QList{c, b, a}));
    QVERIFY(!network->emitterForIndex(3) && !network->emitterForIndex(-1));

    send(network->emissionSettings(), c, 0, 10);
    send(network->emissionSettings(), a, 20, 10);
    QCOMPARE(network->emitterActiveAt(5), c);
    QVERIFY(network->removeEmitter(network->emissionSettings()->emissions().constFirst()->emitter));
    QVERIFY(!network->removeEmitter(c));
    QVERIFY(!network->emitterActiveAt(5));
    QCOMPARE(network->emitterActiveAt(25), a);
    QCOMPARE(network->emitterList(), (QList{b, a}));
}

void TestScenarioObjects::followsNetwork()
{
    auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    network->frequencySettings()->setCenterFrequency(99e6);
    const EmitterPtr member = emitter(QStringLiteral("m"));
    EmissionSettings* pOwn = member->emissionSettings();
    member->setScenarioNetwork(network);
    QCOMPARE(member->emissionSettings(), network->emissionSettings());
    QCOMPARE(member->getFrequencyAt(0), 99e6);
    // The members do not keep the network alive.
    network.reset();
    QVERIFY(!member->hasNetwork());
    QCOMPARE(member->emissionSettings(), pOwn);
    QCOMPARE(member->getFrequencyAt(0), 25e6);
}

void TestScenarioObjects::followsLinks()
{
    const EmitterPtr leader = emitter(QStringLiteral("leader"));
    const EmitterPtr middle = emitter(QStringLiteral("middle"));
    EmitterPtr last = emitter(QStringLiteral("last"));
    leader->setPositionSettings(endingMovement());
    middle->positionSettings()->setPosition(TPos{1.0, 2.0});
    link(middle, leader);
    link(last, middle);
    QCOMPARE(last->positionSettings(), leader->positionSettings());
    QCOMPARE(last->getPositionAt(0).latitude, 48.0);
    QVERIFY(last->headingAt(1) > 0.0);
    leader->setPositionSettings(new PositionSettingsFixed(TPos{5.0, 6.0}));
    QCOMPARE(last->getPositionAt(0).latitude, 6.0);
    middle->setLinkTargetEmitter(nullptr);
    QCOMPARE(last->getPositionAt(0).latitude, 2.0);
    EmitterPtr target = emitter(QStringLiteral("gone"));
    last->setLinkTargetEmitter(target);
    QVERIFY(last->isLinked());
    target.reset(); // its followers do not keep it alive
    QVERIFY(!last->isLinked());
}

void TestScenarioObjects::linkCircles()
{
    for (int iCase = 0; iCase < 30; ++iCase) {
        const int iTail = iCase / 6;
        const int iSize = iTail + 1 + iCase % 6;
        QList<EmitterPtr> emitters;
        for (int i = 0; i < iSize; ++i) {
            emitters.append(emitter(QString::number(i)));
            emitters.constLast()->positionSettings()->setPosition(TPos{0.0, static_cast<double>(i)});
        }
        for (int i = 0; i < iSize; ++i) {
            emitters.at(i)->setLinkTargetEmitter(emitters.at(i + 1 < iSize ? i + 1 : iTail));
        }
        for (int i = 0; i < iSize; ++i) {
            QCOMPARE(emitters.at(i)->getPositionAt(0).latitude, static_cast<double>(i));
        }
    }
}

void TestScenarioObjects::affected()
{
    const EmitterPtr a = emitter(QStringLiteral("a"));
    const EmitterPtr b = emitter(QStringLiteral("b"));
    const EmitterPtr c = emitter(QStringLiteral("c"));
    const EmitterPtr d = emitter(QStringLiteral("d"));
    a->addLinkedEmitter(a);
    link(b, a);
    link(c, b);
    link(d, b);
    link(c, a);
    link(a, c); // a circle
    QCOMPARE(a->affectedLinkedEmitter(), (QSet{b, c, d}));
    QCOMPARE(c->affectedLinkedEmitter(), (QSet{a, b, d}));
    // Linked emitters hold each other, so their owner unlinks them.
    c->removeLinkedEmitter(a);
}

/// Queries and destruction must not recurse along a chain of links.
void TestScenarioObjects::longChain()
{
    constexpr int iLength = 200'000; // 100 times the depth that the stack allows
    EmitterPtr leader = emitter(QStringLiteral("leader"));
    leader->positionSettings()->setPosition(TPos{3.0, 4.0});
    std::weak_ptr<SzenarioEmitter> last;
    {
        EmitterPtr end = leader;
        for (int i = 0; i < iLength; ++i) {
            const EmitterPtr next = emitter(QStringLiteral("e"));
            link(next, end);
            end = next;
        }
        last = end;
    }
    QCOMPARE(last.lock()->getPositionAt(0).latitude, 4.0);
    QCOMPARE(leader->affectedLinkedEmitter().size(), iLength);
    leader.reset();
    QVERIFY(last.expired());
}

void TestScenarioObjects::active_data()
{
    QTest::addColumn<EmitterChange>("change");
    QTest::addColumn<bool>("inNetwork");
    QTest::addColumn<bool>("active"); // at 500 ms; the emitter's own emission is (0, 1000] ms
    const auto row = [](const char* a_szName, bool a_bAlone, bool a_bMember, const EmitterChange& a_change) {
        QTest::addRow("%s, alone", a_szName) << a_change << false << a_bAlone;
        QTest::addRow("%s, in a network", a_szName) << a_change << true << a_bMember;
    };
    row("sending", true, true, [](SzenarioEmitter&) {});
    row("flag off", false, false, [](SzenarioEmitter& a_emitter) { a_emitter.setActive(false); });
    row("broadcast", true, true, [](SzenarioEmitter& a_emitter) {
        a_emitter.emissionSettings()->clearAll();
        a_emitter.emissionSettings()->setBroadcast(true);
    });
    row("emission of nobody", true, false, [](SzenarioEmitter& a_emitter) {
        a_emitter.emissionSettings()->emissions().constFirst()->emitter.reset();
    });
    // A member uses the network's frequency, so it stays active.
    row("frequency over", false, true, [](SzenarioEmitter& a_emitter) {
        auto* pHopper = static_cast<FrequencySettings_SlowHopper*>(endingFrequency());
        pHopper->setFrequencySteps({{25e6, 400}});
        a_emitter.setFrequencySettings(pHopper);
    });
    row("movement over", false, false, [](SzenarioEmitter& a_emitter) {
        auto* pMovement = static_cast<PositionSettingsPtp*>(endingMovement());
        pMovement->setMovementSpeed(1, 1e6F);
        a_emitter.setPositionSettings(pMovement);
    });
    const auto memberRow = [](const char* a_szName, const EmitterChange& a_change) {
        QTest::newRow(a_szName) << a_change << true << false;
    };
    memberRow("network off", [](SzenarioEmitter& a_emitter) { a_emitter.network()->setActive(false); });
    memberRow("network without a frequency",
              [](SzenarioEmitter& a_emitter) { a_emitter.network()->setFrequencySettings(nullptr); });
}

void TestScenarioObjects::active()
{
    QFETCH(EmitterChange, change);
    QFETCH(bool, inNetwork);
    const EmitterPtr subject = emitter(QStringLiteral("e"));
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    if (inNetwork) {
        subject->setScenarioNetwork(network);
    }
    send(subject->emissionSettings(), subject, 0, 1000);
    change(*subject);
    QTEST(subject->isActiveAt(500), "active");
    QVERIFY(isTransmissionWhole(*subject, 500));
    subject->emissionSettings()->clearAll();
}

void TestScenarioObjects::elintActive()
{
    ElintScenarioEmitter elint(QStringLiteral("x"), QString());
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    QVERIFY(elint.isActiveAt(0)); // without any schedule
    network->setActive(false);
    elint.setScenarioNetwork(network);
    QVERIFY(elint.isActiveAt(0) && elint.transmissionAt(0).isActive);
    elint.setScenarioNetwork(nullptr);
    elint.setFrequencySettings(endingFrequency());
    QVERIFY(elint.isActiveAt(999) && !elint.isActiveAt(1001));
    elint.setActive(false);
    QVERIFY(!elint.isActiveAt(999));
}

void TestScenarioObjects::speakers()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    const EmitterPtr first = emitter(QStringLiteral("1"));
    const EmitterPtr second = emitter(QStringLiteral("2"));
    EmissionSettings* pSchedule = network->emissionSettings();
    for (const EmitterPtr& member : {first, second}) {
        network->addEmitter(member);
        member->setScenarioNetwork(network);
    }
    send(pSchedule, first, 0, 100);
    send(pSchedule, second, 200, 100);
    const auto package = pSchedule->emissions().constFirst()->signalPackage;
    for (const bool bBroadcast : {false, true}) {
        pSchedule->setBroadcast(bBroadcast);
        QVERIFY(first->isActiveAt(50));
        QCOMPARE(second->isActiveAt(50), bBroadcast);
        QVERIFY(first->signalPackageAt(50) == package && !second->signalPackageAt(50) &&
                !first->signalPackageAt(150));
        QCOMPARE(first->timeActiveAt(50), 50LL);
        QCOMPARE(second->timeActiveAt(50), -1LL);
        for (const unsigned int uiTime : {0U, 50U, 150U, 250U}) {
            QVERIFY(isTransmissionWhole(*first, uiTime) && isTransmissionWhole(*second, uiTime));
        }
    }
}

void TestScenarioObjects::burstWindows_data()
{
    QTest::addColumn<unsigned int>("start");
    QTest::addColumn<unsigned int>("end");
    QTest::addColumn<QString>("expected");
    // The emissions are 100+300 and 1000+500 (start + duration, ms). The frequency steps
    // take 250, 0 and 250 ms.
    QTest::newRow("all") << 0U << 2000U << QStringLiteral("100+150@10 250+150@30 1000+250@10 1250+250@30");
    QTest::newRow("cut in front and behind")
        << 200U << 1100U << QStringLiteral("200+50@10 250+150@30 1000+100@10");
    QTest::newRow("backwards") << 300U << 200U << QString();
    QTest::newRow("up to the end of time") << 1400U << 0xFFFFFFFFU << QStringLiteral("1400+100@30");
}

void TestScenarioObjects::burstWindows()
{
    QFETCH(unsigned int, start);
    QFETCH(unsigned int, end);
    SzenarioEmitter subject(QStringLiteral("e"), QString());
    auto* pHopper = new FrequencySettings_SlowHopper;
    pHopper->setFrequencySteps({{10.0, 250}, {20.0, 0}, {30.0, 250}});
    subject.setFrequencySettings(pHopper);
    send(subject.emissionSettings(), nullptr, 100, 300);
    send(subject.emissionSettings(), nullptr, 1000, 500);
    QTEST(bursts(subject, start, end), "expected");
}

void TestScenarioObjects::burstsInNetwork()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    network->frequencySettings()->setCenterFrequency(7.0);
    const EmitterPtr member = emitter(QStringLiteral("m"));
    member->setScenarioNetwork(network);
    send(network->emissionSettings(), member, 0, 10);
    send(network->emissionSettings(), nullptr, 20, 10);
    send(network->emissionSettings(), member, 40, 10);
    QCOMPARE(bursts(*member, 5, 45), QStringLiteral("5+5@7 40+5@7"));
    network->emissionSettings()->setBroadcast(true);
    QCOMPARE(bursts(*member, 5, 45), QStringLiteral("5+40@7"));
    network->emissionSettings()->clearAll();
}

QTEST_GUILESS_MAIN(TestScenarioObjects)

#include "tst_scenarioobjects.moc"

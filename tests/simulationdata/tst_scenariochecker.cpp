#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "tracecollector.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTest>

#include <algorithm>

using namespace Simulation;
using namespace Qt::StringLiterals;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using ObjectSet = QSet<std::shared_ptr<ScenarioObject>>;

namespace {

/// Knows the ids that it is told, and counts how often it is asked.
class Packages : public UnresolvedSignalPackageProvider
{
public:
    explicit Packages(const QStringList& a_known, const QString& a_sDefault = {})
        : m_known(a_known)
        , m_default(signalPackage(a_sDefault))
    {}

    bool validSignalPackageId(const QString& a_sId) override
    {
        ++m_asked[a_sId];
        return m_known.contains(a_sId);
    }
    std::shared_ptr<SignalPackage> defaultSignalPackage() override { return m_default; }
    [[nodiscard]] const QHash<QString, int>& asked() const { return m_asked; }

private:
    QStringList m_known;
    std::shared_ptr<SignalPackage> m_default;
    QHash<QString, int> m_asked;
};

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;

/// Adds emissions at 1000 ms, 2000 ms and so on, of packages with these ids;
/// "-" is none.
QList<EmissionPtr> addEmissions(ScenarioObject& a_object, const QStringList& a_ids)
{
    QList<EmissionPtr> emissions;
    UnresolvedSignalPackageProvider ids;
    for (const QString& id : a_ids) {
        emissions.append(EmissionSettings::createEmission());
        emissions.last()->start = 1000 * emissions.size();
        emissions.last()->signalPackage = id == u"-" ? nullptr : ids.signalPackage(id);
    }
    a_object.ScenarioObject::emissionSettings()->addEmissions(emissions);
    return emissions;
}

QStringList idsOf(const ScenarioObject& a_object)
{
    QStringList ids;
    for (const EmissionPtr& emission : a_object.ScenarioObject::emissionSettings()->emissions()) {
        ids.append(emission->signalPackage ? emission->signalPackage->id() : u"-"_s);
    }
    return ids;
}

EmitterPtr emitter(const QString& a_sId, const QString& a_sClass = {}, const QString& a_sName = {})
{
    auto created = std::make_shared<SzenarioEmitter>(a_sId, a_sName);
    created->setClass(a_sClass);
    return created;
}

QStringList textsOf(const ScenarioChecker& a_checker)
{
    QStringList texts;
    for (const ScenarioFinding& finding : a_checker.findings()) {
        texts.append(u"%1 %2 %3%4: %5"_s.arg(finding.objectId, finding.objectName, finding.ruleId,
                                             finding.repaired ? u"*"_s : QString(), finding.text));
    }
    return texts;
}

} // namespace

class TestScenarioChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packages_data();
    void packages();
    void schedules_data();
    void schedules();
    void settings();
    void orderAndFlags();
    void effort_data();
    void effort();
};

void TestScenarioChecker::packages_data()
{
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("repaired");

    QTest::newRow("all known") << QStringList{u"a"_s, u"b"_s} << u"a"_s << QStringList{}
                               << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("several and one")
        << QStringList{u"y"_s, u"b"_s, u"x%1"_s, u"y"_s} << u"a"_s
        << QStringList{u"1 emission, at 3000 ms, uses the signal package \"x%1\", which the provider does "
                       "not know: it gets the default package \"a\"."_s,
                       u"2 emissions, the first at 1000 ms, use the signal package \"y\", which the provider "
                       "does not know: they get the default package \"a\"."_s}
        << QStringList{u"a"_s, u"b"_s, u"a"_s, u"a"_s};
    QTest::newRow("none")
        << QStringList{u"-"_s, u"-"_s} << u"a"_s
        << QStringList{u"2 emissions, the first at 1000 ms, name no signal package: they get "
                       "the default package \"a\"."_s}
        << QStringList{u"a"_s, u"a"_s};
    QTest::newRow("no default package") << QStringList{u"-"_s, u"a"_s} << QString()
                                        << QStringList{u"1 emission, at 1000 ms, names no signal package: it "
                                                       u"stays as it is, for the provider "
                                                       "has no default package."_s}
                                        << QStringList{u"-"_s, u"a"_s};
    QTest::newRow("unknown default package")
        << QStringList{u"z"_s, u"z"_s} << u"z"_s
        << QStringList{u"2 emissions, the first at 1000 ms, use the signal package \"z\", which the provider "
                       "does not know: they stay as they are, for the provider does not know its default "
                       "package \"z\" either."_s}
        << QStringList{u"z"_s, u"z"_s};
}

void TestScenarioChecker::packages()
{
    QFETCH(QStringList, ids);
    QFETCH(QString, fallback);
    QFETCH(QStringList, texts);
    QFETCH(QStringList, repaired);
    const EmitterPtr sender = emitter(u"e"_s);
    const QList<EmissionPtr> emissions = addEmissions(*sender, ids);
    const auto untouched = emissions.at(1)->signalPackage;
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({sender});
    Packages provider({u"a"_s, u"b"_s}, fallback);

    ScenarioChecker off(nullptr);
    off.check(scenario);
    QVERIFY(off.findings().isEmpty());
    QCOMPARE(idsOf(*sender), ids);

    ScenarioChecker checker(&provider);
    checker.check(scenario);
    QStringList found;
    for (const ScenarioFinding& finding : checker.findings()) {
        found.append(finding.text);
        QCOMPARE(finding.repaired, repaired != ids);
    }
    QCOMPARE(found, texts);
    QCOMPARE(checker.hadInvalidSignalPackages(), !texts.isEmpty());
    QCOMPARE(idsOf(*sender), repaired);
    QVERIFY(ids.at(1) != repaired.at(1) || emissions.at(1)->signalPackage == untouched);
    for (const int iTimes : provider.asked()) {
        QCOMPARE(iTimes, 1);
    }
    // What was repaired is in order; what was not is found again.
    checker.check(scenario);
    QCOMPARE(checker.findings().size(), repaired == ids ? texts.size() : 0);
}

void TestScenarioChecker::schedules_data()
{
    QTest::addColumn<QString>("fallback");

    QTest::newRow("repaired") << u"a"_s;
    QTest::newRow("left as they are") << QString();
}

/// Every object's own schedule is looked at, a member's too; what several share
/// counts once.
void TestScenarioChecker::schedules()
{
    QFETCH(QString, fallback);
    const EmitterPtr member = emitter(u"m"_s);
    const auto network = std::make_shared<ScenarioNetwork>(u"n"_s);
    const auto twin = std::make_shared<ScenarioNetwork>(u"n"_s);
    network->addEmitter(member);
    member->setScenarioNetwork(network);
    const QList<EmissionPtr> own = addEmissions(*member, {u"x"_s, u"x"_s});
    const QList<EmissionPtr> shared = addEmissions(*network, {u"x"_s}) << own.first();
    network->ScenarioObject::emissionSettings()->addEmission(own.first());
    twin->ScenarioObject::emissionSettings()->addEmissions(shared);
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({network, member, twin});
    Packages provider({u"a"_s}, fallback);
    ScenarioChecker checker(&provider);
    checker.check(scenario);
    QStringList counts;
    for (const ScenarioFinding& finding : checker.findings()) {
        counts.append(finding.objectId + u' ' + finding.text.section(u',', 0, 0));
    }
    QCOMPARE(counts, QStringList({u"m 2 emissions"_s, u"n 1 emission"_s}));
}

void TestScenarioChecker::settings()
{
    const EmitterPtr first = emitter(u"1"_s);
    const EmitterPtr second = emitter(u"2"_s);
    const EmitterPtr whole = emitter(u"3"_s);
    const auto network = std::make_shared<ScenarioNetwork>(u"0"_s);
    first->setLinkTargetEmitter(second);
    second->setLinkTargetEmitter(first); // a circle
    whole->setLinkTargetEmitter(whole);
    network->addEmitter(first);
    first->setScenarioNetwork(network);
    for (const EmitterPtr& bare : {first, second}) {
        bare->setFrequencySettings(nullptr);
        bare->setPositionSettings(nullptr);
        bare->setTransmitterSettings(nullptr);
    }
    network->setFrequencySettings(nullptr);
    const auto* const pPosition = whole->ownPositionSettings();
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({first, second, whole, network});
    ScenarioChecker checker(nullptr);
    checker.check(scenario);

    QStringList expected;
    for (const char* const szObject : {"1 ", "2 ", "0 "}) {
        for (const char* const szKind : {"frequency", "position", "transmitter"}) {
            expected.append(QLatin1String(szObject) + u" missing-settings*: The "_s + QLatin1String(szKind) +
                            u" settings are missing: those of a new object take their place."_s);
        }
    }
    QCOMPARE(textsOf(checker), expected.mid(0, 7));
    QVERIFY(checker.hadNullPointerSettings() && !checker.hadInvalidClasses());
    const EmitterPtr fresh = emitter({});
    for (const EmitterPtr& repaired : {first, second}) {
        QVERIFY(fresh->frequencySettings()->equal(repaired->frequencySettings()));
        QVERIFY(fresh->ownPositionSettings()->equal(repaired->ownPositionSettings()));
        QCOMPARE(repaired->getTranmitterSettings()->getAntennaType(), u"Default"_s);
    }
    QVERIFY(fresh->frequencySettings()->equal(network->frequencySettings()));
    QCOMPARE(whole->ownPositionSettings(), pPosition);
}

/// Objects are found in whatever order their set has; some have the same id and
/// name. Every run starts afresh.
void TestScenarioChecker::orderAndFlags()
{
    const auto addBad = [](ObjectSet& a_objects, const std::shared_ptr<ScenarioObject>& a_object,
                           const QString& a_sName) {
        a_object->setName(a_sName);
        a_object->setFrequencySettings(nullptr);
        addEmissions(*a_object, {u"x"_s, u"-"_s});
        a_objects.insert(a_object);
    };
    const QStringList expected{
        u"a A invalid-signal-package"_s, u"a A invalid-signal-package"_s, u"a A invalid-class"_s,
        u"a A invalid-class"_s,          u"a A missing-settings*"_s,      u"a A missing-settings*"_s,
        u"a B invalid-signal-package"_s, u"a B invalid-signal-package"_s, u"a B missing-settings*"_s,
        u"0 N invalid-signal-package"_s, u"0 N invalid-signal-package"_s, u"0 N missing-settings*"_s};
    Packages provider({});
    ScenarioChecker checker(&provider);
    checker.setKnownClasses({u"Boat"_s, u"Car"_s});
    QStringList texts;
    for (int iRun = 0; iRun < 5; ++iRun) {
        ObjectSet objects;
        addBad(objects, std::make_shared<ScenarioNetwork>(u"0"_s), u"N"_s);
        addBad(objects, emitter(u"a"_s, u"Boat"_s), u"B"_s);
        addBad(objects, emitter(u"a"_s), u"A"_s);
        const auto elint = std::make_shared<ElintScenarioEmitter>(u"a"_s, QString());
        elint->setClass(u"Radar"_s);
        addBad(objects, elint, u"A"_s);
        ScenarioDataXml scenario(nullptr);
        scenario.setScenarioObjects(objects);
        const TraceCollector traces;
        checker.check(scenario);
        QStringList rules = textsOf(checker);
        QVERIFY(texts.isEmpty() || texts == rules);
        texts = rules;
        std::for_each(rules.begin(), rules.end(),
                      [](QString& a_sText) { a_sText = a_sText.section(u':', 0, 0); });
        QCOMPARE(rules, expected);
        QCOMPARE(TraceCollector::lines(),
                 QStringList{u"The check of a scenario found 6 invalid-signal-package, 2 invalid-class, "
                             "4 missing-settings (simulation/simulationdata/scenariochecker)"_s});
        QVERIFY(checker.hadInvalidSignalPackages() && checker.hadInvalidClasses() &&
                checker.hadNullPointerSettings());
    }
    ScenarioDataXml clean(nullptr);
    clean.setScenarioObjects({emitter(u"a"_s, u"Car"_s)});
    const TraceCollector traces;
    checker.check(clean);
    QVERIFY(checker.findings().isEmpty() && TraceCollector::lines().isEmpty());
    QVERIFY(!checker.hadInvalidSignalPackages() && !checker.hadInvalidClasses() &&
            !checker.hadNullPointerSettings());
}

void TestScenarioChecker::effort_data()
{
    QTest::addColumn<bool>("emissions");
    QTest::addColumn<QString>("fallback");

    QTest::newRow("emissions that are repaired") << true << u"a"_s;
    QTest::newRow("emissions that stay") << true << QString();
    QTest::newRow("emitters in a circle, nothing known of them") << false << u"a"_s;
}

/// Ten times the work takes about ten times as long, not a hundred times.
void TestScenarioChecker::effort()
{
    QFETCH(bool, emissions);
    QFETCH(QString, fallback);
    Packages provider({u"a"_s}, fallback);
    ScenarioChecker checker(&provider);
    checker.setKnownClasses({u"Boat"_s});
    const auto measure = [&](int a_iCount) {
        ObjectSet objects;
        EmitterPtr previous = emitter(u"0"_s, u"Boat"_s);
        const EmitterPtr first = previous;
        QStringList ids;
        for (int i = 0; i < a_iCount; ++i) {
            ids.append(u"x%1"_s.arg(i));
            if (!emissions) {
                const EmitterPtr next = emitter(ids.last(), ids.last());
                next->setPositionSettings(nullptr);
                next->setLinkTargetEmitter(previous);
                objects.insert(next);
                previous = next;
            }
        }
        first->setLinkTargetEmitter(previous);
        addEmissions(*first, ids);
        ScenarioDataXml scenario(nullptr);
        scenario.setScenarioObjects(objects << first);
        QElapsedTimer timer;
        timer.start();
        checker.check(scenario);
        return timer.nsecsElapsed();
    };
    constexpr int s_iCount = 10'000;
    const TraceCollector traces; // keeps the output short
    const double dOnce = static_cast<double>(std::min(measure(s_iCount), measure(s_iCount)));
    const double dTenTimes = static_cast<double>(std::min(measure(10 * s_iCount), measure(10 * s_iCount)));
    QCOMPARE(checker.findings().size(), (emissions ? 1 : 3) * 10 * s_iCount);
    QVERIFY2(dTenTimes < 40 * dOnce, qPrintable(QString::number(dTenTimes / dOnce)));
}

QTEST_GUILESS_MAIN(TestScenarioChecker)

#include "tst_scenariochecker.moc"

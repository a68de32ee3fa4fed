#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecache.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "tracecollector.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <ctime>

using namespace Simulation;
using namespace Qt::StringLiterals;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using ObjectSet = QSet<std::shared_ptr<ScenarioObject>>;

namespace {

/// A provider that has the packages with the given ids and counts the queries for each id.
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

/// Adds one emission for each package id, at 1000 ms, 2000 ms and so on; "-" means
/// no package.
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

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The findings as "id rule: text".
QStringList textsOf(const ScenarioChecker& a_checker)
{
    QStringList texts;
    for (const ScenarioFinding& finding : a_checker.findings()) {
        texts.append(finding.objectId + u' ' + finding.ruleId + u": "_s + finding.text);
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
    void objects();
    void packageFiles_data();
    void packageFiles();
    void effort_data();
    void effort();
};

void TestScenarioChecker::packages_data()
{
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("after");

    QTest::newRow("repaired")
        << QStringList{u"y"_s, u"b"_s, u"x%1"_s, u"y"_s, u"-"_s} << u"a"_s
        << QStringList{u"1 emission, at 5000 ms, has no signal package: it gets the default package \"a\"."_s,
                       u"1 emission, at 3000 ms, uses the signal package \"x%1\", which the provider does "
                       "not know: it gets the default package \"a\"."_s,
                       u"2 emissions, the first at 1000 ms, use the signal package \"y\", which the provider "
                       "does not know: they get the default package \"a\"."_s}
        << QStringList{u"a"_s, u"b"_s, u"a"_s, u"a"_s, u"a"_s};
    QTest::newRow("no default package") << QStringList{u"-"_s, u"b"_s} << QString()
                                        << QStringList{u"1 emission, at 1000 ms, has no signal package: it "
                                                       u"is not changed, because the provider "
                                                       "has no default package."_s}
                                        << QStringList{u"-"_s, u"b"_s};
    QTest::newRow("unknown default package")
        << QStringList{u"y"_s, u"z"_s} << u"z"_s
        << QStringList{u"1 emission, at 1000 ms, uses the signal package \"y\", which the provider does not "
                       "know: it gets the default package \"z\"."_s}
        << QStringList{u"z"_s, u"z"_s};
}

void TestScenarioChecker::packages()
{
    QFETCH(QStringList, ids);
    QFETCH(QString, fallback);
    QFETCH(QStringList, texts);
    QFETCH(QStringList, after);
    const EmitterPtr sender = emitter(u"e"_s);
    const auto kept = addEmissions(*sender, ids).at(1)->signalPackage;
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({sender});
    ScenarioChecker(nullptr).check(scenario);
    QCOMPARE(idsOf(*sender), ids);

    Packages provider({u"a"_s, u"b"_s}, fallback);
    ScenarioChecker checker(&provider);
    checker.check(scenario);
    QStringList found;
    for (const ScenarioFinding& finding : checker.findings()) {
        found.append(finding.text);
        QCOMPARE(finding.repaired, after != ids);
    }
    QCOMPARE(found, texts);
    QCOMPARE(idsOf(*sender), after);
    QCOMPARE(sender->ScenarioObject::emissionSettings()->emissions().at(1)->signalPackage, kept);
    for (const int iTimes : provider.asked()) {
        QCOMPARE(iTimes, 1);
    }
    // The next check lists only findings that were not repaired.
    checker.check(scenario);
    QCOMPARE(checker.findings().size(), after == ids ? texts.size() : 0);
}

/// Objects that break rules in many ways. Among them are network members, emitters
/// linked in a circle, and an emission shared by two networks of the same id and name.
/// Every run lists the same findings, whatever the order of the set.
void TestScenarioChecker::objects()
{
    const QStringList expected{u"a A invalid-signal-package: 1 emission"_s,
                               u"a A duplicate-id: 3 emitters have this id"_s,
                               u"a A invalid-class: The class \"\" is not known"_s,
                               u"a A invalid-class: The class \"Radar\" is not known"_s,
                               u"a A missing-settings*: The frequency"_s,
                               u"a A missing-settings*: The position"_s,
                               u"a A missing-settings*: The transmitter"_s,
                               u"a A cut-link: The link to \"a\" leads into a circle"_s,
                               u"a B invalid-signal-package: 2 emissions"_s,
                               u"a B cut-link: The link to \"a\" leads into a circle"_s,
                               u"0 N invalid-signal-package: 1 emission"_s,
                               u"0 N missing-settings*: The frequency"_s,
                               u"0 N network-without-members: No member of the network refers to it"_s,
                               u"0 N foreign-emission: 2 emissions"_s};
    const EmitterPtr fresh = emitter({});
    Packages provider({});
    ScenarioChecker checker(&provider);
    checker.setKnownClasses({u"Boat"_s, u"Car"_s});
    for (int iRun = 0; iRun < 5; ++iRun) {
        const EmitterPtr bare = emitter(u"a"_s, {}, u"A"_s);
        const EmitterPtr whole = emitter(u"a"_s, u"Boat"_s, u"B"_s);
        const auto elint = std::make_shared<ElintScenarioEmitter>(u"a"_s, u"A"_s);
        const auto network = std::make_shared<ScenarioNetwork>(u"0"_s);
        network->setName(u"N"_s);
        elint->setClass(u"Radar"_s);
        bare->setLinkTargetEmitter(whole);
        whole->setLinkTargetEmitter(bare);
        for (const EmitterPtr& member : {whole, bare}) {
            member->setScenarioNetwork(network);
            network->addEmitter(member);
        }
        bare->setFrequencySettings(nullptr);
        bare->setPositionSettings(nullptr);
        bare->setTransmitterSettings(nullptr);
        network->setFrequencySettings(nullptr);
        const auto* const pPosition = whole->ownPositionSettings();
        addEmissions(*elint, {u"x"_s});
        network->emissionSettings()->addEmission(addEmissions(*whole, {u"x"_s, u"x"_s}).first());
        addEmissions(*network, {u"x"_s});
        const auto twin = std::make_shared<ScenarioNetwork>(u"0"_s, network);
        twin->setFrequencySettings(fresh->frequencySettings()->clone());
        ScenarioDataXml scenario(nullptr);
        scenario.setScenarioObjects({network, whole, bare, elint, twin});
        const TraceCollector traces;
        checker.check(scenario);
        QStringList texts;
        for (const ScenarioFinding& finding : checker.findings()) {
            const QString sText =
                u"%1 %2 %3%4: %5"_s.arg(finding.objectId, finding.objectName, finding.ruleId,
                                        finding.repaired ? u"*"_s : QString(), finding.text);
            texts.append(sText.left(sText.indexOf(QRegularExpression(u",| settings|: it|: a reader"_s))));
        }
        QCOMPARE(texts, expected);
        QVERIFY(checker.hadInvalidSignalPackages() && checker.hadInvalidClasses() &&
                checker.hadNullPointerSettings() && checker.hadDuplicateIds());
        QCOMPARE(
            TraceCollector::lines(),
            QStringList{u"The check of a scenario found 3 invalid-signal-package, 1 duplicate-id, "
                        "2 invalid-class, 4 missing-settings, 1 network-without-members, 1 foreign-emission, "
                        "2 cut-link (simulation/simulationdata/scenariochecker)"_s});
        QVERIFY(fresh->frequencySettings()->equal(bare->frequencySettings()));
        QVERIFY(fresh->ownPositionSettings()->equal(bare->ownPositionSettings()));
        QCOMPARE(bare->getTranmitterSettings()->getAntennaType(), u"Default"_s);
        QVERIFY(network->frequencySettings() != nullptr && whole->ownPositionSettings() == pPosition);
    }
    ScenarioDataXml clean(nullptr);
    clean.setScenarioObjects({emitter(u"a"_s, u"Car"_s)});
    const TraceCollector traces;
    checker.check(clean);
    QVERIFY(checker.findings().isEmpty() && TraceCollector::lines().isEmpty());
    QVERIFY(!checker.hadInvalidSignalPackages() && !checker.hadInvalidClasses() &&
            !checker.hadNullPointerSettings() && !checker.hadDuplicateIds());
}

void TestScenarioChecker::packageFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("from"); ///< replaced in the file; empty: the last byte is cut off
    QTest::addColumn<QByteArray>("to");   ///< empty: the file is removed
    QTest::addColumn<QString>("text");

    const QString sDamaged = u"e damaged-package: The signal package \"%1\" is damaged: "_s;
    const QString sContradicts =
        u"e contradicting-package: The signal package \"%1\" contradicts its descriptor: "_s;
    QTest::newRow("whole") << u"other"_s << QByteArray() << QByteArray("x") << QString();
    QTest::newRow("missing") << u"Signal.wav"_s << QByteArray("RIFF") << QByteArray()
                             << sDamaged + u"Signal.wav missing, but the descriptor describes it"_s;
    QTest::newRow("truncated") << u"Signal.ssf"_s << QByteArray() << QByteArray("x")
                               << sDamaged + u"Signal.ssf truncated by 1 byte"_s;
    QTest::newRow("changed") << u"Signal.wav"_s << QByteArray("\1\0") << QByteArray("\1\1")
                             << sContradicts + u"Signal.wav has the checksum "_s;
    QTest::newRow("other length") << u"Signal.xml"_s << QByteArray("<Duration>10000")
                                  << QByteArray("<Duration>9998")
                                  << sContradicts +
                                         u"Signal.ssf lasts 10000 ms, the descriptor says 9998 ms. Put"_s;
    QTest::newRow("rounded length") << u"Signal.xml"_s << QByteArray("<Duration>10000")
                                    << QByteArray("<Duration>9999") << QString();
    QTest::newRow("no audio described")
        << u"Signal.xml"_s << QByteArray("<Name>Signal.wav</Name>") << QByteArray("<Name/>") << QString();
}

/// The files of the built-in package, which a cache unpacks.
void TestScenarioChecker::packageFiles()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QString, text);
    const QTemporaryDir folder;
    SignalPackageCache cache(folder.filePath(u"package"_s), QString());
    QVERIFY(cache.prepareCacheForUse());
    const QString sPath = folder.filePath(u"package/"_s + file);
    QByteArray bytes = contentOf(sPath);
    if (from.isEmpty()) {
        bytes.chop(1);
    } else {
        QVERIFY(bytes.contains(from));
        bytes.replace(bytes.lastIndexOf(from), from.size(), to);
    }
    QFile changed(sPath);
    QVERIFY(changed.remove() || bytes.isEmpty());
    if (!to.isEmpty()) {
        QVERIFY(changed.open(QIODevice::WriteOnly) && changed.write(bytes) == bytes.size());
        changed.close();
    }

    const EmitterPtr sender = emitter(u"e"_s);
    const QString sId = cache.defaultSignalPackage()->id();
    addEmissions(*sender, {sId, sId, u"unknown"_s, u"-"_s});
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({sender});
    const TraceCollector traces; // keeps the output short
    ScenarioChecker checker(nullptr);
    checker.setPackageFolder(folder.path());
    checker.check(scenario);
    const QString sFound = textsOf(checker).join(u'|');
    QVERIFY2(text.isEmpty() ? sFound.isEmpty()
                            : checker.findings().size() == 1 && sFound.startsWith(text.arg(sId)),
             qPrintable(sFound));
    checker.setPackageFolder({});
    checker.check(scenario);
    QVERIFY(checker.findings().isEmpty());
}

void TestScenarioChecker::effort_data()
{
    QTest::addColumn<int>("emissions");
    QTest::addColumn<int>("emitters");
    QTest::addColumn<qint64>("period");

    const qint64 iUnlimited = EmissionSettings::s_iUnlimited;
    QTest::newRow("emissions") << 10'000 << 1 << iUnlimited;
    QTest::newRow("emissions with a period of 1 ms") << 10'000 << 1 << qint64{1};
    QTest::newRow("emitters in a circle") << 1 << 2'000 << iUnlimited;
}

/// Ten times as many objects take about 10 times the processor time; a quadratic
/// check would take 100 times. Processor time does not depend on other programs.
void TestScenarioChecker::effort()
{
    QFETCH(int, emissions);
    QFETCH(int, emitters);
    QFETCH(qint64, period);
    Packages provider({});
    ScenarioChecker checker(&provider);
    checker.setKnownClasses({u"Boat"_s});
    const auto measure = [&](int a_iFactor) {
        const EmitterPtr first = emitter(u"first"_s);
        QStringList ids;
        for (int i = 0; i < a_iFactor * emissions; ++i) {
            ids.append(QString::number(i));
        }
        addEmissions(*first, ids);
        first->emissionSettings()->setDuration(period);
        ObjectSet objects{first};
        EmitterPtr previous = first;
        for (int i = 1; i < a_iFactor * emitters; ++i) {
            const EmitterPtr next = emitter(QString::number(i), QString::number(i));
            next->setPositionSettings(nullptr);
            next->setLinkTargetEmitter(previous);
            objects.insert(next);
            previous = next;
        }
        first->setLinkTargetEmitter(previous);
        ScenarioDataXml scenario(nullptr);
        scenario.setScenarioObjects(objects);
        const std::clock_t begin = std::clock();
        checker.check(scenario);
        return static_cast<double>(std::clock() - begin);
    };
    const TraceCollector traces; // keeps the output short
    const double dOnce = std::min(measure(1), measure(1));
    const double dRatio = measure(10) / dOnce;
    QCOMPARE(checker.findings().size(), qsizetype{10} * (emissions + 3 * emitters) - (period == 1 ? 0 : 1));
    QVERIFY2(dRatio < 40, qPrintable(QString::number(dRatio)));
}

QTEST_GUILESS_MAIN(TestScenarioChecker)

#include "tst_scenariochecker.moc"

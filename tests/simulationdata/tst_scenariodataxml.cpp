#include "kpbase/velaos.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "velaappstartup/cfgcenter.h"

#include <QColor>
#include <QFile>
#include <QLocale>
#include <QTest>

using namespace Simulation;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using NetworkPtr = std::shared_ptr<ScenarioNetwork>;
using ObjectSet = QSet<std::shared_ptr<ScenarioObject>>;

namespace {

QByteArray scenario(const QByteArray& a_children, const QByteArray& a_attributes = "FileFormatVersion='4'")
{
    return "<Scenario " + a_attributes + ">" + a_children + "</Scenario>";
}

/// Returns the object with this id and class. Returns null if there is no such object or
/// more than one.
template<typename Object>
std::shared_ptr<Object> find(const ObjectSet& a_objects, const char* a_szId)
{
    QList<std::shared_ptr<Object>> found;
    for (const auto& object : a_objects) {
        if (object->id() == QLatin1String(a_szId)) {
            found.append(std::dynamic_pointer_cast<Object>(object));
        }
    }
    found.removeAll(nullptr);
    return found.size() == 1 ? found.constFirst() : nullptr;
}

template<typename Object = SzenarioEmitter>
std::shared_ptr<Object> find(const ScenarioDataXml& a_document, const char* a_szId)
{
    return find<Object>(a_document.scenarioObjects(), a_szId);
}

/// The schedule as text: "id:start+duration emitter package; ...", then the groups
/// as "g<id><name>(members); ...".
QString schedule(const EmissionSettings& a_settings)
{
    QStringList texts;
    for (const auto& emission : a_settings.emissions()) {
        texts.append(QStringLiteral("%1:%2+%3 %4 %5")
                         .arg(QString::number(emission->id), QString::number(emission->start),
                              QString::number(emission->duration),
                              emission->emitter ? emission->emitter->id() : QStringLiteral("-"),
                              emission->signalPackage ? emission->signalPackage->id() : QStringLiteral("-")));
    }
    for (const auto& group : a_settings.groups()) {
        QStringList members;
        for (const auto& emission : group->emissions) {
            members.append(QString::number(emission->id));
        }
        for (const auto& member : group->groups) {
            members.append(u'g' + QString::number(member->id));
        }
        texts.append(
            QStringLiteral("g%1%2(%3)").arg(QString::number(group->id), group->name, members.join(u' ')));
    }
    return texts.join(QStringLiteral("; "));
}

QByteArray golden()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("the reference document is missing");
}

boost::shared_ptr<EmissionSettings::Emission>
addEmission(EmissionSettings* a_pSettings, std::uint32_t a_uiId, std::int64_t a_iStart,
            const EmitterPtr& a_emitter, const std::shared_ptr<SignalPackage>& a_package = nullptr)
{
    auto emission = EmissionSettings::createEmission();
    emission->id = a_uiId;
    emission->start = a_iStart;
    emission->duration = 100;
    emission->emitter = a_emitter;
    emission->signalPackage = a_package;
    a_pSettings->addEmission(emission);
    return emission;
}

} // namespace

/// Tests the reading and writing of every element of a scenario document.
class TestScenarioDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goldenDocument();
    void writtenDocument();
    void decimalComma();
    void persistentId();
    void missingElements();
    void badNumbers();
    void versions();
    void olderTiming_data();
    void olderTiming();
    void olderNetwork();
    void references_data();
    void references();
    void heads();
    void defaults();
    void schedules_data();
    void schedules();
    void numbersAreUnique();
    void withoutSettings();
    void texts_data();
    void texts();
    void objectTexts();
};

void TestScenarioDataXml::goldenDocument()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(golden()));
    QCOMPARE(document.errorString(), QString());
    QVERIFY(!document.isOlderFileVersion());
    QCOMPARE(document.getName() + document.getAuthor() + document.getPersistantId() +
                 document.getDescription(),
             QStringLiteral("RichM\u00FCllerRich-1-machineEverything"));
    QCOMPARE(document.getDuration(), 60000U);
    QCOMPARE(document.getNoiseSettings().noiseDeviation(), -45.0);
    QCOMPARE(document.getNoiseSettings().frequencyDependentNoiseVariability(), 1.23457e6);
    QCOMPARE(document.scenarioObjects().size(), 4);

    const auto chirp = find(document, "c");
    const auto hopper = find(document, "f");
    const auto elint = find<ElintScenarioEmitter>(document, "a");
    const auto network = find<ScenarioNetwork>(document, "c");
    QVERIFY(chirp && hopper && elint && network);
    QCOMPARE(document.getDefaultEmitter(), chirp);

    QCOMPARE(chirp->description(), QStringLiteral("two\nlines\r\n & \U0001F4E1"));
    QVERIFY(chirp->isActive() && chirp->getClass() == u"Radar" && chirp->name() == u"Chirp \"<&>'");
    const TransmitterSettings* pTransmitter = chirp->getTranmitterSettings();
    QVERIFY(pTransmitter->getPower() == 12.5F && pTransmitter->getAntennaType() == u"Dish" &&
            pTransmitter->getAntennaGain() == -3.25F && pTransmitter->getAntennaHeight() == 30.0F &&
            pTransmitter->getAntennaDirection() == 270.0F);
    const auto* pChirp = dynamic_cast<FrequencySettings_Chirp*>(chirp->frequencySettings());
    QVERIFY(pChirp->getStartFrequency() == 433925000.0 && pChirp->getStopFrequency() == 2e6 &&
            pChirp->getDuration() == 0xFFFFFFFF && pChirp->getTimeslotOffset() == 0.125F);
    QCOMPARE(chirp->positionSettings()->getPosition().longitude, 8.1234567890123);
    const auto* pFast = dynamic_cast<FrequencySettings_FastHopper*>(hopper->frequencySettings());
    QVERIFY(!hopper->isActive() && pFast->getMinimumFrequency() == 30e6 &&
            pFast->getMaximumFrequency() == 88e6);
    QVERIFY(pFast->getHoppCount() == 4294967295 && pFast->getHoppRate() == 300 && pFast->getHoppSet() == 7 &&
            pFast->getTimeslotOffset() == 0.5F);
    QCOMPARE(elint->getEDWFile(), QStringLiteral("dir\\pulses.edw"));
    QCOMPARE(elint->frequencySettings()->getCenterFrequency(), 1.5e6);
    QCOMPARE(elint->linkTargetEmitter(), hopper);
    QCOMPARE(hopper->linkedEmitter(), QSet<EmitterPtr>{elint});
    QCOMPARE(elint->emissionSettings()->duration(), 500LL);
    QCOMPARE(schedule(*elint->emissionSettings()), QStringLiteral("3:0+100 a p-1"));

    QVERIFY(network->name() == u"Net" && network->color() == QColor(0x12, 0xAB, 0xEF));
    QCOMPARE(network->networkType(), NetworkType::Star);
    QCOMPARE(network->emitterList(), (QList<EmitterPtr>{hopper, chirp}));
    QVERIFY(chirp->network() == network && hopper->network() == network && !elint->hasNetwork());
    QVERIFY(network->emissionSettings()->isBroadcast());
    QCOMPARE(network->emissionSettings()->duration(), 0x7FFFFFFFFFFFFFFFLL);
    QCOMPARE(schedule(*network->emissionSettings()),
             QStringLiteral("9:-9223372036854775808+100 - -; 4:10+100 f p-2; g1(g2); g2Inner(4)"));
}

void TestScenarioDataXml::writtenDocument()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(golden()));
    // Numbers are written with 6 digits, positions with 14.
    const auto chirp = find(document, "c");
    dynamic_cast<FrequencySettings_Chirp*>(chirp->frequencySettings())->setStartFrequency(433925100.0);
    chirp->positionSettings()->setPosition({8.123456789012345, -48.5});
    document.setScenarioObjects(document.scenarioObjects() + ObjectSet{nullptr});
    QCOMPARE(document.toXml(), golden());
    QCOMPARE(document.toXml(), golden()); // writing does not change the document
    ScenarioDataXml without(nullptr);     // references to packages need a provider
    QVERIFY(without.fromXml(golden()));
    QCOMPARE(without.toXml().count("SignalPackage=\"\""), 3);
}

void TestScenarioDataXml::decimalComma()
{
    QLocale::setDefault(QLocale(QLocale::German));
    writtenDocument();
    goldenDocument();
    QLocale::setDefault(QLocale::c());
}

void TestScenarioDataXml::persistentId()
{
    VelaOS::Get().setClock([] { return std::uint64_t{1700000000999999}; });
    const QString sExpected = QStringLiteral("100%2 sure-1700000000-") + CfgCenter::GetMachineId();
    ScenarioDataXml document(nullptr);
    document.setName(QStringLiteral("100%2 sure"));
    QVERIFY(document.getPersistantId().isEmpty());
    const QByteArray xml = document.toXml();
    QCOMPARE(document.getPersistantId(), sExpected);
    VelaOS::Get().setClock({});
    QCOMPARE(document.toXml(), xml); // the id is built only once
    QVERIFY(
        xml.contains("Uid=\"" + sExpected.toUtf8() + "\" Duration=\"0\">\n    <Description></Description>"));
}

void TestScenarioDataXml::missingElements()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(
        scenario("<Emitter/><Emitter ID='e'/><Emitter ID='p' Active='TRUE'><Position><X/></Position>"
                 "<Frequency/><Transmitter><Antenna/></Transmitter></Emitter>"
                 "<Emitter ID='s'><Frequency><SlowHopper EndBehavior='STOP'/></Frequency></Emitter>"
                 "<Network ID='n'><Color>nothing</Color><NetworkType>star</NetworkType></Network>"
                 "<Unknown><Emitter ID='u'/></Unknown>",
                 "FileFormatVersion='4' Description='attribute'")));
    QCOMPARE(document.errorString(), QString());
    QCOMPARE(document.getDescription(), QStringLiteral("attribute"));
    QCOMPARE(document.scenarioObjects().size(), 4);
    const auto emitter = find(document, "e");
    QVERIFY(emitter && !emitter->isActive() && emitter->name().isEmpty());
    QCOMPARE(emitter->frequencySettings()->getCenterFrequency(), 25e6);
    const auto bare = find(document, "p");
    QVERIFY(bare->isActive() && !bare->frequencySettings() && !bare->positionSettings());
    const auto* pHopper =
        dynamic_cast<FrequencySettings_SlowHopper*>(find(document, "s")->frequencySettings());
    QCOMPARE(pHopper->rows(), 1);
    QVERIFY(pHopper->getFrequency(0) == 25e6 && pHopper->getDuration(0) == 1000 &&
            pHopper->getEndBehavior() == EndBehaviourType::Stop);
    const auto network = find<ScenarioNetwork>(document, "n");
    QCOMPARE(network->color(), QColor(Qt::black));
    QCOMPARE(network->networkType(), NetworkType::Hierarchical);
    QVERIFY(document.fromXml(scenario("<Description>child</Description>", "Description='attribute'")));
    QCOMPARE(document.getDescription(), QStringLiteral("child"));
}

void TestScenarioDataXml::badNumbers()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(
        scenario("<NoiseSettings><Density>nan</Density><Deviation>1,5</Deviation></NoiseSettings>"
                 "<Emitter ID='e'><Transmitter><Power>1e39</Power><Antenna "
                 "Type='T'><Gain>inf</Gain><Direction>725</Direction>"
                 "</Antenna></Transmitter><Frequency><Chirp><StartFrequency>1e999</"
                 "StartFrequency><Duration>-1</Duration>"
                 "<TimeslotOffset>1e300</TimeslotOffset></Chirp></Frequency>"
                 "<EmissionSettings Duration='9223372036854775808'><Emission ID='4294967296' StartTime='x' "
                 "Duration='1.5'/>"
                 "</EmissionSettings></Emitter>",
                 "FileFormatVersion='four' Duration='4294967296'")));
    QCOMPARE(document.getDuration(), 0U);
    QCOMPARE(document.getNoiseSettings().noiseDensity(), 0.0);
    QCOMPARE(document.getNoiseSettings().noiseDeviation(), 0.0);
    const auto emitter = find(document, "e");
    QCOMPARE(emitter->getTranmitterSettings()->getPower(), 0.0F);
    QCOMPARE(emitter->getTranmitterSettings()->getAntennaDirection(), 5.0F);
    const auto* pChirp = dynamic_cast<FrequencySettings_Chirp*>(emitter->frequencySettings());
    QVERIFY(pChirp->getStartFrequency() == 0.0 && pChirp->getStopFrequency() == 26e6 &&
            pChirp->getDuration() == 0 && pChirp->getTimeslotOffset() == 0.0F);
    QCOMPARE(emitter->emissionSettings()->duration(), 0x7FFFFFFFFFFFFFFFLL);
    QCOMPARE(schedule(*emitter->emissionSettings()), QStringLiteral("0:0+0 - -"));
}

void TestScenarioDataXml::versions()
{
    ScenarioDataXml document(nullptr);
    QString sOlder;
    for (const char* szVersion : {"", "four", "3", "4", "5"}) {
        QVERIFY(document.fromXml(scenario({}, "FileFormatVersion='" + QByteArray(szVersion) + "'")));
        sOlder += document.isOlderFileVersion() ? u'o' : u'-';
        QVERIFY(document.toXml().contains("FileFormatVersion=\"4\""));
    }
    QCOMPARE(sOlder, QStringLiteral("ooo--"));
    QVERIFY(document.fromXml("<Scenario/>") && document.isOlderFileVersion());
}

void TestScenarioDataXml::olderTiming_data()
{
    QTest::addColumn<QByteArray>("timing");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<long long>("period");
    const auto row = [](const char* a_szName, const QByteArray& a_timing, const char* a_szExpected,
                        long long a_iPeriod) {
        QTest::newRow(a_szName) << a_timing << QString::fromLatin1(a_szExpected) << a_iPeriod;
    };
    constexpr long long iUnlimited = 0x7FFFFFFFFFFFFFFF;
    const char* szAlways = "0:0+9223372036854775807 e old";
    row("continuous", "<Contionus/>", szAlways, iUnlimited);
    row("continuous, no such spelling", "<Continuous/>", "", iUnlimited);
    row("manual",
        "<Manual><Activity InactiveDuration='10' ActiveDuration='5'/><Activity ActiveDuration='7'/>"
        "<Activity InactiveDuration='4294967295' ActiveDuration='4294967295'/></Manual>",
        "1:10+5 e old; 2:15+7 e old; 3:4294967317+4294967295 e old", 8589934612);
    row("manual with groups",
        "<Manual><Groups><Group ID='1'><EmissionId>2</EmissionId><GroupId>7</GroupId></Group>"
        "<Group ID='7'><EmissionId>1</EmissionId></Group></Groups>"
        "<Activity InactiveDuration='1' ActiveDuration='1'/><Activity InactiveDuration='1' "
        "ActiveDuration='1'/></Manual>",
        "1:1+1 e old; 2:3+1 e old; g1(2 g7); g7(1)", 4);
    row("continuous, older spelling", "<Contious><X/></Contious>", szAlways, iUnlimited);
    row("manual, empty", "<Manual/>", "", iUnlimited);
}

void TestScenarioDataXml::olderTiming()
{
    QFETCH(QByteArray, timing);
    QFETCH(long long, period);
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(scenario("<Emitter ID='e'><SignalPackage>old</SignalPackage><Timing>" + timing +
                                          "</Timing></Emitter>",
                                      "FileFormatVersion='3'")));
    const EmissionSettings* pSettings = find(document, "e")->emissionSettings();
    QTEST(schedule(*pSettings), "expected");
    QCOMPARE(pSettings->duration(), period);
}

void TestScenarioDataXml::olderNetwork()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(scenario(
        "<Network ID='n'><SignalPackage>old</SignalPackage><Activity><Manual><Activity InactiveDuration='1' "
        "ActiveDuration='2'/></Manual></Activity><Emitter>a</Emitter><Emitter Head=''>b</Emitter></Network>"
        "<Network ID='m'><Activity><Contious/></Activity></Network><Emitter ID='b'/>",
        "FileFormatVersion='2'")));
    const EmissionSettings* pSettings = find<ScenarioNetwork>(document, "n")->emissionSettings();
    QCOMPARE(schedule(*pSettings), QStringLiteral("1:1+2 b old"));
    QCOMPARE(pSettings->duration(), 3LL);
    QCOMPARE(schedule(*find<ScenarioNetwork>(document, "m")->emissionSettings()),
             QStringLiteral("0:0+9223372036854775807 - -"));
}

void TestScenarioDataXml::references_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<QString>("objects"); // type, id and name, then ">target" or "[members]"; sorted
    const auto row = [](const char* a_szName, const char* a_szChildren, const char* a_szObjects) {
        QTest::newRow(a_szName) << QByteArray(a_szChildren) << QString::fromLatin1(a_szObjects);
    };
    row("link forward", "<Emitter ID='a' LinkTarget='b'/><Emitter ID='b' Name='B'/>", "1a>b, 1bB");
    row("link to an unknown id", "<Emitter ID='a' LinkTarget='b'/>", "1a>b, 1b");
    row("link to an ELINT emitter that comes later",
        "<Emitter ID='a' LinkTarget='b'/><ElintEmitter ID='b' Name='B'/>", "1a>b, 2bB");
    row("ELINT emitter in a network first",
        "<Network ID='n'><Emitter>b</Emitter></Network><ElintEmitter "
        "ID='b'><EDWFile>f</EDWFile></ElintEmitter>",
        "0n[b], 2b");
    row("emission with an unknown emitter",
        "<Emitter ID='a'><EmissionSettings><Emission Emitter='z'/><Emission "
        "Emitter=''/><Emission/></EmissionSettings>"
        "</Emitter>",
        "1a, 1z");
    row("an id twice",
        "<Emitter ID='a' Name='A'/><ElintEmitter ID='a' Name='Again'><EDWFile>f</EDWFile></ElintEmitter>",
        "1aAgain");
    row("of a network and an emitter",
        "<Network ID='a' Name='N'><Emitter>a</Emitter></Network><Emitter ID='a' Name='E' LinkTarget='a'/>",
        "0aN[a], 1aE>a");
    row("member of two networks",
        "<Network ID='m'><Emitter>a</Emitter><Emitter>a</Emitter></Network><Network "
        "ID='n'><Emitter>a</Emitter>"
        "<Emitter/></Network>",
        "0m[a], 0n[a], 1a");
    row("links in a circle", "<Emitter ID='a' LinkTarget='b'/><Emitter ID='b' LinkTarget='a'/>",
        "1a>b, 1b>a");
    row("an empty id", "<Emitter ID='' Name='E'/>", "1E");
    row("a network twice", "<Network ID='n' Name='1'/><Network ID='n' Name='2'/>", "0n1[], 0n2[]");
}

void TestScenarioDataXml::references()
{
    QFETCH(QByteArray, children);
    QFETCH(QString, objects);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(scenario(children)));
    QStringList texts;
    for (const auto& object : document.scenarioObjects()) {
        QString sText = QString::number(static_cast<int>(object->type())) + object->id() + object->name();
        if (const auto emitter = std::dynamic_pointer_cast<SzenarioEmitter>(object)) {
            if (emitter->isLinked()) {
                sText += u'>' + emitter->linkTargetEmitter()->id();
                QVERIFY(document.scenarioObjects().contains(emitter->linkTargetEmitter()));
                QVERIFY(emitter->linkTargetEmitter() == emitter ||
                        emitter->linkTargetEmitter()->linkedEmitter().contains(emitter));
            }
        } else if (const auto network = std::dynamic_pointer_cast<ScenarioNetwork>(object)) {
            sText += u'[';
            for (const EmitterPtr& member : network->emitterList()) {
                sText += member->id();
                QVERIFY(member->hasNetwork() && document.scenarioObjects().contains(member));
            }
            sText += u']';
        }
        texts.append(sText);
    }
    texts.sort();
    QCOMPARE(texts.join(QStringLiteral(", ")), objects);
}

void TestScenarioDataXml::heads()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(
        document.fromXml(scenario("<Network ID='n'><Emitter>a</Emitter><Emitter Head='false'>b</Emitter>"
                                  "<Emitter>c</Emitter><Emitter Head='true'>d</Emitter><Emitter>e</Emitter>"
                                  "<Emitter Head=''>b</Emitter></Network>")));
    QString sOrder;
    for (const EmitterPtr& member : find<ScenarioNetwork>(document, "n")->emitterList()) {
        sOrder += member->id();
    }
    QCOMPARE(sOrder, QStringLiteral("bdace"));
    QCOMPARE(document.toXml().count("Head="), 1);
}

void TestScenarioDataXml::defaults()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(scenario("<Emitter ID='z' Default='false'/><Emitter ID='m'/>"
                                      "<Emitter ID='a' Default=''/><Emitter ID='z' Default='true'/>")));
    QCOMPARE(document.getDefaultEmitter(), find(document, "z"));
    QCOMPARE(document.toXml().count("Default=\"true\""), 2);
    document.setDefaultEmitter(find(document, "m"));
    QCOMPARE(document.toXml().count("Default=\"true\""), 1);
    ObjectSet fewer = document.scenarioObjects();
    fewer.remove(document.getDefaultEmitter());
    document.setScenarioObjects(fewer);
    QVERIFY(!document.getDefaultEmitter());
}

void TestScenarioDataXml::schedules_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* a_szName, const char* a_szChildren, const char* a_szExpected) {
        QTest::newRow(a_szName) << QByteArray(a_szChildren) << QString::fromLatin1(a_szExpected);
    };
    row("equal starts keep their order",
        "<Emission ID='1' StartTime='5'/><Emission ID='2' StartTime='5'/><Emission ID='3' StartTime='5'/>",
        "1:5+0 - -; 2:5+0 - -; 3:5+0 - -");
    row("groups before emissions",
        "<Groups><Group "
        "ID='1'><EmissionId>8</EmissionId><EmissionId>9</EmissionId></Group></Groups><Emission ID='8'/>",
        "8:0+0 - -; g1(8)");
    row("equal group numbers",
        "<Groups><Group ID='1' Name='A'/><Group ID='1' Name='B'/><Group ID='2'><GroupId>1</GroupId>"
        "</Group></Groups>",
        "g1A(); g1B(); g2(g1)");
    row("groups in a circle",
        "<Groups><Group ID='1'><GroupId>2</GroupId></Group><Group ID='2'><GroupId>3</GroupId></Group>"
        "<Group ID='3'><GroupId>1</GroupId><GroupId>4</GroupId></Group><Group ID='4'/></Groups>",
        "g1(g2); g2(g3); g3(g4); g4()");
    row("two ways to one group",
        "<Groups><Group ID='1'><GroupId>2</GroupId><GroupId>3</GroupId></Group><Group "
        "ID='2'><GroupId>4</GroupId></Group>"
        "<Group ID='3'><GroupId>4</GroupId></Group><Group ID='4'/></Groups>",
        "g1(g2 g3); g2(g4); g3(g4); g4()");
    row("group in itself", "<Groups><Group ID='1'><GroupId>1</GroupId></Group></Groups>", "g1()");
    row("group of unknown numbers",
        "<Groups><Group ID='1'><GroupId>7</GroupId><EmissionId>x</EmissionId></Group></Groups>", "g1()");
}

void TestScenarioDataXml::schedules()
{
    QFETCH(QByteArray, children);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(
        scenario("<Emitter ID='e'><EmissionSettings>" + children + "</EmissionSettings></Emitter>")));
    const QString sRead = schedule(*find(document, "e")->emissionSettings());
    QTEST(sRead, "expected");
    QVERIFY(document.fromXml(document.toXml()));
    QCOMPARE(schedule(*find(document, "e")->emissionSettings()).count(u';'), sRead.count(u';'));
}

void TestScenarioDataXml::numbersAreUnique()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QString());
    EmissionSettings* pSettings = emitter->emissionSettings();
    const auto group = EmissionSettings::createGroup();
    for (const std::uint32_t uiId : {2U, 0U, 2U, 1U, 0U}) {
        group->emissions.append(addEmission(pSettings, uiId, pSettings->emissions().size(), nullptr));
    }
    group->emissions.append(EmissionSettings::createEmission()); // not in the schedule
    group->emissions.removeFirst();
    pSettings->addGroup(group);
    pSettings->addGroup(group); // the list has the group twice, the document once
    pSettings->addGroup(EmissionSettings::createGroup());
    const QString sBefore = schedule(*pSettings);
    ScenarioDataXml document(nullptr);
    document.setScenarioObjects({emitter});
    ScenarioDataXml again(nullptr);
    QVERIFY(again.fromXml(document.toXml()));
    QCOMPARE(
        schedule(*find(again, "e")->emissionSettings()),
        QStringLiteral("2:0+100 - -; 3:1+100 - -; 4:2+100 - -; 1:3+100 - -; 5:4+100 - -; g1(3 4 1 5); g2()"));
    QCOMPARE(schedule(*pSettings), sBefore);
}

void TestScenarioDataXml::withoutSettings()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QString());
    emitter->setFrequencySettings(nullptr);
    emitter->setPositionSettings(nullptr);
    emitter->setTransmitterSettings(nullptr);
    QCOMPARE(
        ScenarioDataXml::xmlForObjects({emitter, nullptr}, nullptr),
        QStringLiteral("<?xml version=\"1.0\"?>\n"
                       "<ScenarioObjects>\n"
                       "    <Emitter ID=\"e\" Name=\"\" Active=\"true\">\n"
                       "        <Description></Description>\n"
                       "        <Class></Class>\n"
                       "        <EmissionSettings Broadcast=\"false\" Duration=\"9223372036854775807\">\n"
                       "            <Groups/>\n"
                       "        </EmissionSettings>\n"
                       "    </Emitter>\n"
                       "</ScenarioObjects>\n"));
}

void TestScenarioDataXml::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("readBack");
    const auto row = [](const char* a_szName, const QString& a_sText, const QString& a_sReadBack) {
        QTest::newRow(a_szName) << a_sText << a_sReadBack;
    };
    const auto kept = [](const char* a_szName, const QString& a_sText) {
        QTest::newRow(a_szName) << a_sText << a_sText;
    };
    kept("markup", QStringLiteral("<a b='c'>&amp;]]>\"</a>%1 100%2"));
    kept("white space", QStringLiteral(" \t\n x \n\t "));
    kept("carriage returns", QStringLiteral("\r\ra\r\nb\n\rc\r"));
    kept("beyond 16 bits", QStringLiteral("\U0001F4E1\U0010FFFF \uFFFD\uD7FF\uE000"));
    row("controls", QStringLiteral("a\x01\x02\x1F\x0B") + QChar(0) + u'b', QStringLiteral("ab"));
    row("non-characters", QStringLiteral("a") + QChar(0xFFFE) + QChar(0xFFFF) + u'b', QStringLiteral("ab"));
    row("lone surrogates",
        QChar(0xDC00) + QStringLiteral("a") + QChar(0xD83D) + QChar(0xD83D) + QChar(0xDCE1) + u'b' +
            QChar(0xD800),
        QStringLiteral("a\U0001F4E1b"));
    kept("only a carriage return", QStringLiteral("\r"));
    kept("line separators", QStringLiteral("\u0085\u2028\u00A0"));
}

/// Every text of the model is read back as it was written, except for the characters
/// that XML forbids. This applies to attributes and elements.
void TestScenarioDataXml::texts()
{
    QFETCH(QString, text);
    QFETCH(QString, readBack);
    UnresolvedSignalPackageProvider provider;
    const auto network = std::make_shared<ScenarioNetwork>(text);
    const auto emitter = std::make_shared<ElintScenarioEmitter>(text, text);
    auto* pMovement = new PositionSettingsPtp(TPos{}, 0.01);
    MovementPoint point = pMovement->getPoint(1);
    point.name = text;
    pMovement->setPoint(1, point);
    emitter->setPositionSettings(pMovement);
    emitter->setDescription(text);
    emitter->setClass(text);
    emitter->SetEDWFile(text);
    emitter->getTranmitterSettings()->setAntennaType(text);
    network->setName(text);
    network->setDescription(text);
    network->addEmitter(emitter);
    const auto group = EmissionSettings::createGroup();
    group->name = text;
    network->emissionSettings()->addGroup(group);
    addEmission(network->emissionSettings(), 1, 0, emitter, provider.signalPackage(text));
    ScenarioDataXml document(&provider);
    document.setScenarioObjects({network, emitter});
    document.setName(text);
    document.setAuthor(text);
    document.setDescription(text);
    document.setPersistantId(text);

    ScenarioDataXml again(&provider);
    QVERIFY(again.fromXml(document.toXml()));
    QCOMPARE(again.errorString(), QString());
    QCOMPARE(again.scenarioObjects().size(), 2); // an id is cleaned in the same way at every place
    QCOMPARE(again.toXml(), document.toXml());
    QStringList texts{again.getName(), again.getDescription()};
    for (const auto& object : again.scenarioObjects()) {
        texts << object->id() << object->name() << object->description();
        if (const auto elint = std::dynamic_pointer_cast<ElintScenarioEmitter>(object)) {
            texts << elint->getClass() << elint->getEDWFile()
                  << elint->getTranmitterSettings()->getAntennaType()
                  << dynamic_cast<PositionSettingsPtp*>(elint->positionSettings())->getPoint(1).name
                  << elint->emissionSettings()->groups().constFirst()->name // the network's schedule
                  << elint->signalPackageAt(1)->id();
        }
    }
    QCOMPARE(texts, QStringList(14, readBack));
}

void TestScenarioDataXml::objectTexts()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(golden()));
    const QString sText = ScenarioDataXml::xmlForObjects(document.scenarioObjects(), &provider);
    ScenarioDataXml copy(&provider);
    copy.setScenarioObjects(ScenarioDataXml::objectsForXml(sText, &provider));
    QCOMPARE(copy.scenarioObjects().size(), 4);
    QCOMPARE(ScenarioDataXml::xmlForObjects(copy.scenarioObjects(), &provider), sText);
    // Reading one object creates the emitters to which it refers.
    copy.setScenarioObjects(ScenarioDataXml::objectsForXml(
        ScenarioDataXml::xmlForObjects({find<ElintScenarioEmitter>(document, "a")}, &provider), &provider));
    QVERIFY(copy.scenarioObjects().size() == 2 && find(copy, "a")->linkTargetEmitter() == find(copy, "f"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Scenario refused")));
    QVERIFY(ScenarioDataXml::objectsForXml(QString(), &provider).isEmpty());
    const auto latin = ScenarioDataXml::objectsForXml(
        QStringLiteral(
            "<?xml version='1.0' encoding='ISO-8859-1'?><x><Emitter ID='e' Name='\u00FC\u20AC'/></x>"),
        nullptr);
    QCOMPARE((*latin.cbegin())->name(), QStringLiteral("\u00FC\u20AC"));
}

QTEST_GUILESS_MAIN(TestScenarioDataXml)

#include "tst_scenariodataxml.moc"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "tracecollector.h"

#include <QRegularExpression>
#include <QTest>

using namespace Simulation;
using namespace Qt::StringLiterals;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using ObjectSet = QSet<std::shared_ptr<ScenarioObject>>;

namespace {

/// A provider that knows no id. The id of a package gives its bandwidth (Hz).
class Bandwidths : public UnresolvedSignalPackageProvider
{
public:
    std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) override
    {
        auto package = UnresolvedSignalPackageProvider::signalPackage(a_sId);
        if (package) {
            package->setSignalBandwidth(a_sId.toFloat());
        }
        return package;
    }
};

/// The findings as "id rule: text".
QStringList textsOf(const ScenarioChecker& a_checker)
{
    QStringList texts;
    for (const ScenarioFinding& finding : a_checker.findings()) {
        texts.append(finding.objectId + u' ' + finding.ruleId + u": "_s + finding.text);
    }
    return texts;
}

/// The findings for a scenario and a deployment, which may be empty.
QStringList findingsOf(const QByteArray& a_scenario, const QByteArray& a_deployment)
{
    DeploymentDataXml deployment;
    ScenarioChecker checker(nullptr);
    if (!a_deployment.isEmpty()) {
        if (!deployment.fromXml(a_deployment) || !deployment.errorString().isEmpty()) {
            return {deployment.errorString()};
        }
        checker.setDeployment(&deployment);
    }
    Bandwidths packages;
    ScenarioDataXml scenario(&packages);
    if (!scenario.fromXml(a_scenario) || !scenario.errorString().isEmpty()) {
        return {scenario.errorString()};
    }
    checker.check(scenario);
    return textsOf(checker);
}

/// Adds a row: a scenario that breaks a rule, given by the root element's content, the
/// replacement that makes it good, and the text of the one finding.
void add(const char* a_szName, const QByteArray& a_broken, const char* a_szFrom, const char* a_szTo,
         const QString& a_sText)
{
    QByteArray good = a_broken;
    good.replace(a_szFrom, a_szTo);
    QVERIFY(good != a_broken);
    QTest::newRow(a_szName) << a_broken << good << a_sText;
}

const QByteArray s_members = "<Emitter ID='e'/><Emitter ID='f'/>";

void addSchedules()
{
    const QByteArray overlap = "<EmissionSettings Broadcast='false' Duration='9000'>"
                               "<Emission StartTime='0' Duration='5000' Emitter='e'/>"
                               "<Emission StartTime='1000' Duration='1' Emitter='e'/>"
                               "<Emission StartTime='5000' Duration='9' Emitter='e'/></EmissionSettings>";
    const QString sOverlap =
        u" overlapping-emissions: 1 emission, at 1000 ms, begins before an earlier one has "
        "ended and cuts it off: shorten the earlier one or move the later one."_s;
    add("emissions overlap", "<Emitter ID='e'>" + overlap + "</Emitter>", "'5000' Emitter", "'1000' Emitter",
        u"e"_s + sOverlap);
    add("a long emission, in broadcast mode", "<Emitter ID='e'>" + overlap + "</Emitter>", "'false'",
        "'true'", u"e"_s + sOverlap);
    add("emissions overlap in a network",
        s_members + "<Network ID='n'>" + overlap + "<Emitter>e</Emitter></Network>", "'1000' D", "'5009' D",
        u"n"_s + sOverlap);
    add("not played in a network", "<Emitter ID='e'>" + overlap + "</Emitter>", "</Emitter>",
        "</Emitter><Network ID='n'><Emitter>e</Emitter></Network>", u"e"_s + sOverlap);
    const QByteArray late =
        "<Emitter ID='e'><EmissionSettings Duration='500'><Emission StartTime='500' "
        "Duration='0'/><Emission StartTime='700' Duration='1'/></EmissionSettings></Emitter>";
    QTest::newRow("after the period")
        << late << QByteArray(late).replace("'500'>", "'701'>")
        << u"e emission-after-period: 2 emissions, the first at 500 ms, begin after the period of 500 ms and "
           "are never sent: begin earlier or lengthen the period."_s;
    const QByteArray beyond = "<Emitter ID='e'><EmissionSettings Duration='500'><Emission StartTime='400' "
                              "Duration='101'/></EmissionSettings></Emitter>";
    const QString sBeyond =
        u"e emission-beyond-period: 1 emission, at 400 ms, ends after the period of 500 ms, "
        "with which the schedule starts again: shorten the emission or lengthen the period."_s;
    add("beyond the period", beyond, "'101'", "'100'", sBeyond);
    add("beyond the period, without end", beyond, "'101'", "'9223372036854775807'", sBeyond);
    add("beyond the period, unlimited period", beyond, "'500'", "'0'", sBeyond);
    add("groups without emissions",
        "<Emitter ID='e'><EmissionSettings><Emission ID='1' Duration='9'/><Groups>"
        "<Group ID='7' Name='Outer'><GroupId>8</GroupId></Group>"
        "<Group ID='8'><EmissionId>2</EmissionId></Group></Groups></EmissionSettings></Emitter>",
        "<EmissionId>2", "<EmissionId>1",
        u"e empty-group: 2 groups, the first of them \"Outer\" (7), name no emission: add emissions or "
        "remove the groups."_s);
}

void addNetworks()
{
    add("no members", s_members + "<Network ID='n'/>", "'n'/>", "'n'><Emitter>e</Emitter></Network>",
        u"n network-without-members: The network has no members and no head, so nothing is sent: add "
        "emitters or remove the network."_s);
    add("members of another network",
        s_members +
            "<Network ID='m'><EmissionSettings><Emission Emitter='e'/></EmissionSettings><Emitter>e</Emitter>"
            "</Network><Network ID='n'><Emitter>e</Emitter></Network>",
        "<Network ID='n'><Emitter>e", "<Network ID='n'><Emitter>f",
        u"m network-without-members: No member of the network refers to it, so nothing is sent: add emitters "
        "that are in no other network."_s);
    add("head of another network",
        s_members + "<Network ID='m'><Emitter Head='true'>e</Emitter><Emitter>f</Emitter></Network>"
                    "<Network ID='n'><Emitter>e</Emitter></Network>",
        "<Emitter Head='true'>e</Emitter><Emitter>f", "<Emitter>e</Emitter><Emitter Head='true'>f",
        u"m network-without-head: The head of the network, \"e\", refers to another network or to none: make "
        "a member the head."_s);
    add("emission of a stranger",
        s_members +
            "<Network ID='n'><EmissionSettings><Emission StartTime='3' Emitter='f'/></EmissionSettings>"
            "<Emitter>e</Emitter></Network>",
        "r='f'/>", "r='e'/>",
        u"n foreign-emission: 1 emission, at 3 ms, names no member of the network and is never sent: name a "
        "member."_s);
    add("link to itself", "<Emitter ID='e' LinkTarget='e'/><Emitter ID='f'/>", "t='e'", "t='f'",
        u"e cut-link: The link to \"e\" leads into a circle, so the emitter stays at its own position: "
        "remove a link of the circle."_s);
}

void addPaths()
{
    const QByteArray site =
        "<Emitter ID='e'><Position><Fixed><Lon>180.5</Lon><Lat>-90</Lat></Fixed></Position>"
        "</Emitter>";
    const QString sPlace =
        u"e position-out-of-range: The position (longitude 180.5, latitude -90) is outside of "
        "-180 to 180 and -90 to 90 degrees."_s;
    add("out of range", site, "180.5", "180", sPlace);
    add("out of range, but following", site, "'e'>", "'e' LinkTarget='f'>", sPlace);
    const QByteArray way = "<Emitter ID='e'><Position><Movement EndBehavior='STOP'>"
                           "<Position Major='true' Speed='0'><Lon>178</Lon><Lat>9</Lat></Position>"
                           "<Position Major='false'><Lon>179</Lon><Lat>9</Lat></Position>"
                           "<Position Major='true' Speed='50'><Lon>180</Lon><Lat>9</Lat></Position>"
                           "</Movement></Position></Emitter>";
    add("no speed", QByteArray(way).replace("'50'", "'0'"), "'0'", "'1'",
        u"e movement-without-speed: 2 legs, the first to point 2, have no speed above 0 km/h and take no "
        u"time: "
        "give the point a speed."_s);
    add("over the date line", QByteArray(way).replace(">180<", ">-179<"), "-179", "179.5",
        u"e jumping-position: The leg to point 3 is faster than 40000 km/h or crosses the date line, where "
        "the way runs round the globe: correct the speed, or divide the movement."_s);
    add("too fast", QByteArray(way).replace("'50'", "'40001'"), "40001", "40000",
        u"e jumping-position: 2 legs, the first to point 2, are faster than 40000 km/h or cross the date "
        u"line, "
        "where the way runs round the globe: correct the speed, or divide the movement."_s);
    add("restart elsewhere", QByteArray(way).replace("STOP", "RESTART"), "178", "180",
        u"e jump-at-restart: The movement restarts at another place than it ends, so the position jumps "
        u"back: "
        "end it where it begins if this is not meant."_s);
    add("range beyond the bandwidth",
        "<Emitter ID='e'><Frequency><Chirp><StartFrequency>2e6</StartFrequency><StopFrequency>1e6"
        "</StopFrequency></Chirp></Frequency><EmissionSettings>"
        "<Emission Duration='9' SignalPackage='999999'/><Emission StartTime='9' SignalPackage='5000000'/>"
        "<Emission StartTime='10' SignalPackage=''/></EmissionSettings></Emitter>",
        "999999", "1000000",
        u"e range-beyond-bandwidth: The frequencies cover 1e+06 Hz, the signal package \"999999\" 999999 Hz: "
        "the signal is moved through the range and does not fill it."_s);
}

EmitterPtr emitter(const QString& a_sId)
{
    return std::make_shared<SzenarioEmitter>(a_sId, QString());
}

} // namespace

/// Every rule of the checker: that it fires, and that it stays silent on the nearest
/// good case.
class TestScenarioCheckerRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
    void rules_data();
    void rules();
    void deployments_data();
    void deployments();
    void reach_data();
    void reach();
    void targetOutside();
    void cleanDocuments();
};

/// The rules are listed in documents, and scripts use their ids.
void TestScenarioCheckerRules::table()
{
    QSet<QString> ids;
    for (const CheckRule& rule : ScenarioChecker::rules()) {
        QVERIFY2(QRegularExpression(u"^[a-z]+(-[a-z]+)*$"_s).match(rule.id).hasMatch(), rule.id.data());
        QVERIFY2(rule.summary.endsWith(u'.') && rule.reason.endsWith(u'.'), rule.id.data());
        ids.insert(rule.id);
    }
    QCOMPARE(ids.size(), std::ssize(ScenarioChecker::rules()));
}

/// For each rule a scenario that breaks it, and the nearest one that does not.
void TestScenarioCheckerRules::rules_data()
{
    QTest::addColumn<QByteArray>("broken"); ///< the root element's content
    QTest::addColumn<QByteArray>("good");   ///< no findings
    QTest::addColumn<QString>("text");      ///< the one finding in the broken scenario
    addSchedules();
    addNetworks();
    addPaths();
}

void TestScenarioCheckerRules::rules()
{
    QFETCH(QByteArray, broken);
    QFETCH(QByteArray, good);
    QFETCH(QString, text);
    const TraceCollector traces;
    // The position of an emitter that follows in a circle is its own, at 0/0.
    QCOMPARE(findingsOf("<Scenario>" + broken + "</Scenario>", {}), QStringList{text});
    const bool bNote = text.contains(u" jump-at-restart") || text.contains(u" range-beyond-bandwidth");
    QCOMPARE(TraceCollector::lines().size(), bNote ? 0 : 1);
    QString sGood = findingsOf("<Scenario>" + good + "</Scenario>", {}).join(u'|');
    QVERIFY2(sGood.isEmpty(), qPrintable(sGood));
}

void TestScenarioCheckerRules::deployments_data()
{
    QTest::addColumn<QByteArray>("content"); ///< the root element's content
    QTest::addColumn<QStringList>("findings");

    const QByteArray station = "<Station ID='s'><Position><Fixed><Lon>180</Lon><Lat>-90</Lat></Fixed>"
                               "</Position></Station>";
    const QByteArray device = "<Device ID='d' Name='D'><Station>s</Station></Device>";
    const QStringList noPlace{u"d device-without-station: The device has neither a station nor a position of "
                              "its own: give it one of them."_s};
    QTest::newRow("in order") << station + device << QStringList();
    QTest::newRow("no station") << QByteArray("<Device ID='d' Name='D'/>") << noPlace;
    const QByteArray placed = "<Device ID='d' Name='D'><Position><Fixed><Lon>0</Lon><Lat>1</Lat></Fixed>"
                              "</Position></Device>";
    QTest::newRow("no station, but a position") << placed << QStringList();
    const QByteArray way =
        QByteArray(placed)
            .replace("<Fixed>", "<Movement EndBehavior='STOP'><Position Major='true'/>"
                                "<Position Major='true' Speed='9'>") // the path begins at 0/0
            .replace("</Fixed>", "</Position></Movement>");
    QTest::newRow("no station, but a way") << way << QStringList();
    QTest::newRow("a way without speed")
        << QByteArray(way).replace("'9'", "'0'")
        << QStringList{u"d movement-without-speed: The leg to point 2 has no speed above 0 km/h and takes no "
                       "time: give the point a speed."_s};
    QTest::newRow("no station, position 0/0") << QByteArray(placed).replace("<Lat>1", "<Lat>0") << noPlace;
    QTest::newRow("station that is not described")
        << device
        << QStringList{
               u"d unknown-station: The deployment does not describe the station \"s\" of the device: "
               "describe it, or name another one."_s};
    QTest::newRow("ids twice") << station + device + device + station
                               << QStringList{
                                      u"d duplicate-id: 2 elements \"Device\" have this id: they were "
                                      "read as one. Give each its own id."_s,
                                      u"s duplicate-id: 2 elements \"Station\" have this id: they were "
                                      "read as one. Give each its own id."_s};
    QTest::newRow("latitude of a station")
        << QByteArray(station).replace("-90", "91")
        << QStringList{
               u"s position-out-of-range: The position (longitude 180, latitude 91) is outside of -180 "
               "to 180 and -90 to 90 degrees."_s};
}

/// A deployment has the same findings alone and with a scenario.
void TestScenarioCheckerRules::deployments()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, findings);
    const TraceCollector traces; // keeps the output short
    const QByteArray xml =
        "<SimulationDeployment FileFormatVersion='1'>" + content + "</SimulationDeployment>";
    DeploymentDataXml deployment;
    QVERIFY(deployment.fromXml(xml) && deployment.errorString().isEmpty());
    ScenarioChecker checker(nullptr);
    checker.check(deployment);
    QCOMPARE(textsOf(checker), findings);
    QCOMPARE(findingsOf("<Scenario/>", xml), findings);
}

void TestScenarioCheckerRules::reach_data()
{
    QTest::addColumn<QByteArray>("from"); ///< replaced in the scenario and in the deployment
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<bool>("reached");

    // Station and emitter are a degree of latitude apart, 111.3 km. With antennas at 7 m
    // and 2 m the line of sight ends at 4.12 (2.65 + 1.41) = 16.7 km.
    QTest::newRow("a degree apart") << QByteArray() << QByteArray() << false;
    QTest::newRow("16.69 km apart") << QByteArray("53.5<") << QByteArray("54.35<") << true;
    QTest::newRow("16.80 km apart") << QByteArray("53.5<") << QByteArray("54.349<") << false;
    QTest::newRow("emitter on a mountain") << QByteArray("d>2<") << QByteArray("d>600<") << true;
    QTest::newRow("emitter on a lower mountain") << QByteArray("d>2<") << QByteArray("d>580<") << false;
    QTest::newRow("receiver on a mountain") << QByteArray("t>7<") << QByteArray("t>655<") << true;
    QTest::newRow("short wave") << QByteArray("30000000") << QByteArray("29999999") << true;
    QTest::newRow("ship that passes by") << QByteArray("54.5<") << QByteArray("52.6<") << true;
    QTest::newRow("place without emitter") << QByteArray("<Lat>54.5") << QByteArray("<Lat>91") << true;
    QTest::newRow("described by nothing") << QByteArray("Station ID") << QByteArray("Tower ID") << true;
}

/// The emitter of a movement that stays at 54.5 degrees, unless a row moves its end to
/// the other side of the station.
void TestScenarioCheckerRules::reach()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(bool, reached);
    QByteArray scenario =
        "<Scenario><Emitter ID='e'><Transmitter><Antenna><HeightOverGround>2</HeightOverGround></Antenna>"
        "</Transmitter><Frequency><Fixed>30000000</Fixed></Frequency><Position><Movement EndBehavior='STOP'>"
        "<Position Major='true'><Lon>9.95</Lon><Lat>54.5000</Lat></Position>"
        "<Position Major='true' Speed='9'><Lon>9.95</Lon><Lat>54.5</Lat></Position>"
        "</Movement></Position></Emitter></Scenario>";
    QByteArray deployment =
        "<SimulationDeployment FileFormatVersion='1'><Device ID='d'><ReceiverSettings><AntennaHeight>7"
        "</AntennaHeight></ReceiverSettings><Station>s</Station></Device><Station ID='s'><Position><Fixed>"
        "<Lon>9.95</Lon><Lat>53.5</Lat></Fixed></Position></Station></SimulationDeployment>";
    const QByteArray before = scenario + deployment;
    if (!from.isEmpty()) {
        scenario.replace(from, to);
        deployment.replace(from, to);
        QVERIFY(scenario + deployment != before);
    }
    const TraceCollector traces; // keeps the output short
    const QStringList findings = findingsOf(scenario, deployment)
                                     .filter(QRegularExpression(u"^s unreached-station: With the highest "
                                                                "antenna at 7 m the horizon is 10.9 km away "
                                                                "and hides every emitter"_s));
    QCOMPARE(findings.isEmpty(), reached);
}

/// A link to an emitter that the scenario does not hold. The emitter holds the followers
/// of its own.
void TestScenarioCheckerRules::targetOutside()
{
    const EmitterPtr outside = emitter(u"outside"_s);
    const EmitterPtr first = emitter(u"first"_s);
    const EmitterPtr second = emitter(u"second"_s);
    first->setLinkTargetEmitter(outside);
    second->setLinkTargetEmitter(first);
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({first, second});
    const TraceCollector traces; // keeps the output short
    ScenarioChecker checker(nullptr);
    checker.check(scenario);
    QCOMPARE(checker.findings().size(), 2);
    QCOMPARE(
        textsOf(checker).constLast(),
        u"second cut-link: The link to \"first\" leads to an emitter that is not in the scenario and that "
        "a saved document lacks: add that emitter or remove the link."_s);
    QCOMPARE(checker.findings().constFirst().severity, Severity::Error);
    scenario.setScenarioObjects({first, second, outside});
    checker.check(scenario);
    QVERIFY(checker.findings().isEmpty());
}

/// What the library makes, and the documents of the repository, have notes at most.
void TestScenarioCheckerRules::cleanDocuments()
{
    const TraceCollector traces; // the first trace would show a finding
    // The documents free circles of objects, so they end after all other holders.
    ScenarioDataXml made(nullptr);
    DeploymentDataXml harbour;
    SzenarioEmitter author({}, {});
    QList<EmitterPtr> emitters{std::make_shared<ElintScenarioEmitter>(u"elint"_s, QString())};
    for (IFrequencySettings* const pSettings :
         QList<IFrequencySettings*>{author.frequencySettings()->clone(), new FrequencySettings_Chirp,
                                    new FrequencySettings_FastHopper, new FrequencySettings_SlowHopper}) {
        emitters.append(emitter(QString::number(emitters.size())));
        emitters.last()->setFrequencySettings(pSettings);
        emitters.last()->setPositionSettings(new PositionSettingsPtp({9.95, 53.54}, 0.01));
        emitters.last()->emissionSettings()->makeContinousActive(emitters.last(),
                                                                 Bandwidths().signalPackage(u"10000"_s));
        emitters.last()->emissionSettings()->setDuration(emitters.size() * 1000);
    }
    const auto network = std::make_shared<ScenarioNetwork>(u"n"_s);
    network->addEmitter(emitters.constLast());
    emitters.constLast()->setScenarioNetwork(network);
    network->emissionSettings()->makeContinousActive(emitters.constLast(), nullptr);
    made.setScenarioObjects(ObjectSet(emitters.cbegin(), emitters.cend()) + ObjectSet{network});

    const auto pier = std::make_shared<DeploymentStation>(u"pier"_s);
    const auto receiver = std::make_shared<DeploymentDevice>(u"rx-7"_s);
    pier->setPosition({9.95, 53.54});
    receiver->setStation(pier);
    pier->addDevice(receiver);
    harbour.setDevices({receiver});
    harbour.setStations({pier});

    Bandwidths packages;
    ScenarioChecker checker(nullptr);
    checker.setDeployment(&harbour);
    checker.check(made);
    QStringList notes;
    for (const ScenarioFinding& finding : checker.findings()) {
        notes.append(finding.ruleId);
        QCOMPARE(finding.severity, Severity::Note);
    }
    QCOMPARE(notes.count(ScenarioChecker::s_sJumpAtRestart), 4);
    QCOMPARE(notes.count(ScenarioChecker::s_sRangeBeyondBandwidth), 2);
    for (const QString& file :
         {u":/DefaultData/Default.sce.exp"_s, QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce")}) {
        ScenarioDataXml read(&packages);
        QVERIFY(read.fromXmlFile(file) && read.errorString().isEmpty());
        checker.check(read);
    }
    QCOMPARE(TraceCollector::lines(), QStringList());
}

QTEST_GUILESS_MAIN(TestScenarioCheckerRules)

#include "tst_scenariochecker_rules.moc"

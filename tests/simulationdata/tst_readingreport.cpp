#include "kpzip/archive.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/readingreport.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <memory>
#include <utility>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Simulation;

namespace {

const QString s_sMistakes = QStringLiteral(TEST_DATA_DIR "/mistakes/");

/// Knows the given packages only. Any other id gets the default package, as in a
/// repository.
class Repository : public UnresolvedSignalPackageProvider
{
public:
    explicit Repository(QSet<QString> a_ids)
        : m_ids(std::move(a_ids))
    {}

    bool validSignalPackageId(const QString& a_sId) override { return m_ids.contains(a_sId); }
    std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) override
    {
        return m_ids.contains(a_sId) ? UnresolvedSignalPackageProvider::signalPackage(a_sId)
                                     : defaultSignalPackage();
    }
    std::shared_ptr<SignalPackage> defaultSignalPackage() override
    {
        return UnresolvedSignalPackageProvider::signalPackage(QStringLiteral("default"));
    }

private:
    QSet<QString> m_ids;
};

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ReadingReport scenarioReport(const QByteArray& a_xml, ISignalPackageProvider& a_provider)
{
    ScenarioDataXml document(&a_provider);
    static_cast<void>(document.fromXml(a_xml));
    return document.report();
}

ReadingReport deploymentReport(const QByteArray& a_xml)
{
    DeploymentDataXml document;
    static_cast<void>(document.fromXml(a_xml));
    return document.report();
}

/// The report about a file below "mistakes"; its folder names the kind of document.
ReadingReport reportOf(const QString& a_sFile)
{
    const QByteArray xml = contentOf(s_sMistakes + a_sFile);
    if (a_sFile.startsWith(u"scenario/")) {
        Repository repository({QStringLiteral("voice-fm"), QStringLiteral("weather")});
        return scenarioReport(xml, repository);
    }
    return a_sFile.startsWith(u"deployment/") ? deploymentReport(xml) : SignalPackageFile::report(xml);
}

/// One line per entry, "line rule", in any order.
QStringList linesOf(const ReadingReport& a_report)
{
    QStringList lines;
    for (const ReadingEntry& entry : a_report.entries()) {
        lines.append(QStringLiteral("%1 %2").arg(QString::number(entry.line), entry.rule));
    }
    return lines;
}

/// The entries that the "expect" comments of a document announce, in the form of
/// linesOf().
QStringList expectedLines(const QByteArray& a_xml)
{
    static const QRegularExpression s_comment(QStringLiteral("<!-- expect: ([a-z-]+) line ([0-9]+) -->"));
    QStringList lines;
    auto comments = s_comment.globalMatch(QString::fromLatin1(a_xml));
    while (comments.hasNext()) {
        const QRegularExpressionMatch comment = comments.next();
        lines.append(comment.captured(2) + u' ' + comment.captured(1));
    }
    return lines;
}

/// Sorted text, so that a failure shows both lists as a whole.
QString sorted(QStringList a_lines)
{
    a_lines.sort();
    return a_lines.join(QStringLiteral(", "));
}

QStringList mistakeFiles()
{
    QStringList files;
    for (const char* szFolder : {"scenario", "deployment", "signalpackage"}) {
        const QString sFolder = QLatin1String(szFolder) + u'/';
        const QStringList names = QDir(s_sMistakes + sFolder).entryList({QStringLiteral("*.xml")});
        for (const QString& sName : names) {
            files.append(sFolder + sName);
        }
    }
    return files;
}

/// Texts that a writer has to write so that they are read back. None is only blanks.
QStringList oddTexts()
{
    return {QString(),
            QStringLiteral("a/b[c]@d"),
            QStringLiteral(" blank before and after "),
            QStringLiteral("\"quoted\" & 'quoted' <b>"),
            QStringLiteral("two\r\nlines\tand a tab"),
            QString::fromUtf8("Mol\u00E9nk\u00F6pfe \u6E2F \U0001F4E1"),
            QStringLiteral("12 MHz"),
            QString(5000, u'x')};
}

} // namespace

/// What the readers report about documents: every mistake that is planted in the files
/// below "mistakes", and nothing in the documents that the writers write. A file holds one
/// mistake, and names each rule and line in a comment. The files "original.xml" are the
/// clean documents from which the others were made.
class TestReadingReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void mistakes_data();
    void mistakes();
    void everyRuleHasAMistake();
    void suggestions_data();
    void suggestions();
    void places_data();
    void places();
    void bounded();
    void anotherReading();
    void keptFiles();
    void defaultPackages();
    void writtenEmitters_data();
    void writtenEmitters();
    void writtenNetwork();
    void writtenMovements_data();
    void writtenMovements();
    void writtenDeployment();
    void writtenDescriptors();

private:
    static QString reportOfWritten(const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                                   const QString& a_sText = QString());
};

void TestReadingReport::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("simulation.trace=false"));
}

void TestReadingReport::mistakes_data()
{
    QTest::addColumn<QString>("file");
    const QStringList files = mistakeFiles();
    QVERIFY(files.contains(u"scenario/original.xml") && files.contains(u"deployment/original.xml") &&
            files.contains(u"signalpackage/original.xml"));
    for (const QString& sFile : files) {
        QTest::newRow(qPrintable(sFile)) << sFile;
    }
}

void TestReadingReport::mistakes()
{
    QFETCH(QString, file);
    const QStringList expected = expectedLines(contentOf(s_sMistakes + file));
    QCOMPARE(expected.isEmpty(), file.endsWith(u"/original.xml"));
    const ReadingReport report = reportOf(file);
    QCOMPARE(sorted(linesOf(report)), sorted(expected));
    for (const ReadingEntry& entry : report.entries()) {
        QVERIFY(!entry.message.isEmpty());
    }
}

void TestReadingReport::everyRuleHasAMistake()
{
    QSet<QString> planted;
    const QStringList files = mistakeFiles();
    for (const QString& sFile : files) {
        const QStringList lines = expectedLines(contentOf(s_sMistakes + sFile));
        for (const QString& sLine : lines) {
            planted.insert(sLine.section(u' ', 1));
        }
    }
    QSet<QString> rules;
    for (const CheckRule& rule : ReadingReport::rules()) {
        rules.insert(rule.id);
    }
    QCOMPARE(planted, rules);
}

void TestReadingReport::suggestions_data()
{
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("suggestion");
    const auto row = [](const char* a_szFile, QLatin1String a_sRule, const char* a_szSuggestion) {
        QTest::newRow(a_szFile) << QString(a_sRule) << QString::fromLatin1(a_szSuggestion);
    };
    row("scenario/misspelled-frequency.xml", ReadingReport::s_sUnknownElement, "Frequency");
    row("scenario/lower-case-emitter.xml", ReadingReport::s_sUnknownElement, "Emitter");
    row("scenario/misspelled-hop-count.xml", ReadingReport::s_sUnknownElement, "HoppCount");
    row("scenario/lower-case-active.xml", ReadingReport::s_sUnknownAttribute, "Active");
    row("scenario/misspelled-dwell-time.xml", ReadingReport::s_sUnknownAttribute, "DWellTime");
    row("scenario/end-behavior-in-lower-case.xml", ReadingReport::s_sUnknownValue, "STOP");
    row("scenario/network-type-unknown.xml", ReadingReport::s_sUnknownValue, "");
    row("scenario/unknown-link-target.xml", ReadingReport::s_sInventedObject, "tower");
    row("scenario/unknown-member.xml", ReadingReport::s_sInventedObject, "beacon");
    row("scenario/member-on-its-own-line.xml", ReadingReport::s_sInventedObject, "beacon");
    row("scenario/unknown-emitter-of-emission.xml", ReadingReport::s_sInventedObject, "beacon");
    row("deployment/misspelled-receiver-settings.xml", ReadingReport::s_sUnknownElement, "ReceiverSettings");
    row("deployment/persistent-id-in-plain-spelling.xml", ReadingReport::s_sUnknownAttribute, "PersistantId");
    row("deployment/unknown-station.xml", ReadingReport::s_sInventedObject, "north");
    row("signalpackage/misspelled-metadata.xml", ReadingReport::s_sUnknownElement, "MetaData");
    row("signalpackage/modulation-in-lower-case.xml", ReadingReport::s_sUnknownValue, "FM");
}

void TestReadingReport::suggestions()
{
    QFETCH(QString, rule);
    QFETCH(QString, suggestion);
    const ReadingReport report = reportOf(QString::fromLatin1(QTest::currentDataTag()));
    QStringList found;
    for (const ReadingEntry& entry : report.entries()) {
        if (entry.rule == rule) {
            found.append(entry.suggestion);
        }
    }
    QCOMPARE(found, QStringList{suggestion});
}

void TestReadingReport::places_data()
{
    QTest::addColumn<QByteArray>("root"); ///< the content of a scenario of an older version
    QTest::addColumn<QString>("place");   ///< line, column, path and text of its only entry
    const auto add = [](const char* a_szRow, const QByteArray& a_root, const char* a_szPlace) {
        QTest::addRow("%s", a_szRow) << a_root << QString::fromUtf8(a_szPlace);
    };
    add("element", "\n  <Emiter/>", "2:3 Scenario/Emiter Emiter");
    add("attribute", "<Network\n Coulor='1'/>", "2:2 Scenario/Network/@Coulor Coulor");
    add("text of an element", "<Emitter ID='a'><Frequency><Fixed>1 MHz</Fixed></Frequency></Emitter>",
        "1:67 Scenario/Emitter[a]/Frequency/Fixed 1 MHz");
    add("line ends of two characters", "\r\n\r\n<Emiter/>", "3:1 Scenario/Emiter Emiter");
    add("characters above ASCII before it", "<!-- \xC3\xA9\xF0\x9F\x98\x80 --><Emiter/>",
        "1:44 Scenario/Emiter Emiter");
    add("text beside elements", "<Network>\n about </Network>", "2:2 Scenario/Network about");
    add("inside markup", "<Network><Color>r<!-- -->ose<![CDATA[!]]></Color></Network>",
        "1:49 Scenario/Network/Color rose!");
    add("id like a path", "<Emitter ID='a/b[c]\\'><X/></Emitter>",
        "1:55 Scenario/Emitter[a\\/b\\[c\\]\\\\]/X X");
    add("control characters", "<Network><Color>\t&#9;x\xC2\x9B</Color></Network>",
        "1:49 Scenario/Network/Color \t\tx\xC2\x9B");
    add("reference that is resolved at the end", "<Network><Emitter>b</Emitter></Network>",
        "1:51 Scenario/Network/Emitter b");
}

/// Where an entry is and what it shows.
void TestReadingReport::places()
{
    QFETCH(const QByteArray, root);
    QFETCH(const QString, place);
    const QByteArray xml = "<Scenario FileFormatVersion='3'>" + root + "</Scenario>";
    UnresolvedSignalPackageProvider provider;
    QStringList places;
    const ReadingReport report = scenarioReport(xml, provider);
    for (const ReadingEntry& entry : report.entries()) {
        if (entry.rule != ReadingReport::s_sOlderVersion) {
            places.append(QStringLiteral("%1:%2 %3 %4")
                              .arg(QString::number(entry.line), QString::number(entry.column), entry.path,
                                   entry.found));
        }
    }
    QCOMPARE(places, QStringList{place});
}

/// Of many entries the first are listed, whenever they are found, and all are counted.
/// Texts are shortened.
void TestReadingReport::bounded()
{
    constexpr int iEntries = 3000;
    QByteArray members;
    QByteArray unknown;
    for (int i = 0; i < iEntries; ++i) {
        members +=
            "<Emitter>" + QByteArray::number(i) + QByteArray(i == 0 ? 100'000 : 0, 'x') + "</Emitter>\n";
        unknown += "<X/>\n";
    }
    UnresolvedSignalPackageProvider provider;
    // The members are reported last, after all elements, but come first in the document.
    const ReadingReport report = scenarioReport("<Scenario FileFormatVersion='3'><Network>" + members +
                                                    "</Network>" + unknown + "</Scenario>",
                                                provider);
    QCOMPARE(report.entries().size(), ReadingReport::s_iMaximumEntries);
    QCOMPARE(report.count(ReadingReport::s_sInventedObject), iEntries);
    QCOMPARE(report.count(ReadingReport::s_sUnknownElement), iEntries);
    QCOMPARE(report.unlisted(), 2 * iEntries + 1 - ReadingReport::s_iMaximumEntries);
    QCOMPARE(report.entries().first().rule, ReadingReport::s_sOlderVersion);
    QCOMPARE(report.entries().last().line, ReadingReport::s_iMaximumEntries - 1);
    // That the document breaks off is always listed.
    const ReadingReport broken = scenarioReport("<Scenario FileFormatVersion='3'>" + unknown, provider);
    QCOMPARE(broken.entries().size(), ReadingReport::s_iMaximumEntries);
    QCOMPARE(broken.entries().last().rule, ReadingReport::s_sBrokenOff);
    for (const ReadingEntry& entry : report.entries()) {
        QVERIFY(entry.found.size() + entry.path.size() + entry.suggestion.size() < 300);
    }
}

/// A report belongs to the last reading, also to one that is refused.
void TestReadingReport::anotherReading()
{
    Repository repository({QStringLiteral("voice-fm"), QStringLiteral("weather")});
    const QByteArray clean = contentOf(s_sMistakes + QStringLiteral("scenario/original.xml"));
    const QByteArray otherRoot = contentOf(s_sMistakes + QStringLiteral("deployment/original.xml"));
    ScenarioDataXml scenario(&repository);
    QVERIFY(scenario.report().isEmpty());
    QVERIFY(!scenario.fromXml(otherRoot));
    QCOMPARE(scenario.report().count(ReadingReport::s_sOtherRoot), 1);
    QVERIFY(scenario.fromXml(clean));
    QVERIFY(scenario.report().isEmpty());

    DeploymentDataXml deployment;
    QVERIFY(deployment.report().isEmpty());
    QVERIFY(!deployment.fromXml(clean));
    QCOMPARE(deployment.report().count(ReadingReport::s_sOtherRoot), 1);
    QVERIFY(deployment.fromXml(otherRoot));
    QVERIFY(deployment.report().isEmpty());
}

/// Documents that earlier writers wrote.
void TestReadingReport::keptFiles()
{
    UnresolvedSignalPackageProvider provider;
    for (const char* szFile : {TEST_DATA_DIR "/scenarios/Rich.sce", ":/DefaultData/Default.sce.exp"}) {
        const QByteArray xml = contentOf(QString::fromLatin1(szFile));
        QVERIFY2(!xml.isEmpty(), szFile);
        QCOMPARE(sorted(linesOf(scenarioReport(xml, provider))), QString());
    }
    const QByteArray deployment = contentOf(QStringLiteral(TEST_DATA_DIR "/deployments/Full.xml"));
    QVERIFY(!deployment.isEmpty());
    QCOMPARE(sorted(linesOf(deploymentReport(deployment))), QString());
}

/// Their descriptors hold elements that the library's own writer does not write.
void TestReadingReport::defaultPackages()
{
    QTemporaryDir folder;
    const QString sZip = folder.filePath(QStringLiteral("packages.zip"));
    QVERIFY(QFile::copy(QStringLiteral(":/DefaultData/TuK-Default.zip"), sZip));
    KPZip::Archive archive(sZip);
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QVERIFY(archive.extractToFolder(QString(), folder.path()));
    const QDir packages(folder.filePath(QStringLiteral("TuK-Default")));
    const QStringList names = packages.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCOMPARE(names.size(), 3);
    for (const QString& sName : names) {
        const QByteArray descriptor = contentOf(packages.filePath(sName + QStringLiteral("/Signal.xml")));
        QVERIFY2(!descriptor.isEmpty(), qPrintable(sName));
        QCOMPARE(sorted(linesOf(SignalPackageFile::report(descriptor))), QString());
    }
}

/// Writes the objects to a document with that text in its header, and reads it back.
QString TestReadingReport::reportOfWritten(const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                                           const QString& a_sText)
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    document.setName(a_sText);
    document.setAuthor(a_sText);
    document.setDescription(a_sText);
    document.setScenarioObjects(a_objects);
    const QByteArray xml = document.toXml();
    return xml.isEmpty() ? QStringLiteral("nothing is written")
                         : sorted(linesOf(scenarioReport(xml, provider)));
}

void TestReadingReport::writtenEmitters_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("fixed") << static_cast<int>(FrequencySettingsType::Fixed);
    QTest::newRow("slow hopper") << static_cast<int>(FrequencySettingsType::SlowHopper);
    QTest::newRow("chirp") << static_cast<int>(FrequencySettingsType::Chirp);
    QTest::newRow("fast hopper") << static_cast<int>(FrequencySettingsType::FastHopper);
}

/// Emitters of each kind with each text and the default values of their settings.
void TestReadingReport::writtenEmitters()
{
    QFETCH(int, type);
    const auto settings = [type]() -> IFrequencySettings* {
        switch (static_cast<FrequencySettingsType>(type)) {
        case FrequencySettingsType::SlowHopper:
            return new FrequencySettings_SlowHopper;
        case FrequencySettingsType::Chirp:
            return new FrequencySettings_Chirp;
        case FrequencySettingsType::FastHopper:
            return new FrequencySettings_FastHopper;
        case FrequencySettingsType::Fixed:
            break;
        }
        return new FrequencySettingsFixed;
    };
    const QStringList texts = oddTexts();
    for (const QString& sText : texts) {
        const auto emitter = std::make_shared<SzenarioEmitter>(sText, sText);
        emitter->setClass(sText);
        emitter->setDescription(sText);
        emitter->setFrequencySettings(settings());
        const auto elint = std::make_shared<ElintScenarioEmitter>(QStringLiteral("elint"), sText);
        elint->SetEDWFile(sText);
        elint->setFrequencySettings(settings());
        elint->setLinkTargetEmitter(emitter);
        emitter->addLinkedEmitter(elint);
        QCOMPARE(reportOfWritten({emitter, elint}, sText), QString());
    }
}

/// A network whose schedule has emissions with and without emitter and package, and
/// groups with and without name.
void TestReadingReport::writtenNetwork()
{
    const auto head = std::make_shared<SzenarioEmitter>(QStringLiteral(" head "), QString());
    const auto member = std::make_shared<SzenarioEmitter>(QStringLiteral("member"), QString());
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("member"));
    network->setColor(QColor());
    network->setNetworkType(NetworkType::Hierarchical);
    for (const auto& emitter : {head, member}) {
        network->addEmitter(emitter);
        emitter->setScenarioNetwork(network);
    }
    const auto package = std::make_shared<SignalPackage>();
    package->setId(QStringLiteral("{p}"));
    const auto inner = EmissionSettings::createGroup();
    const auto outer = EmissionSettings::createGroup();
    outer->name = QStringLiteral("Outer");
    outer->groups.append(inner);
    EmissionSettings& schedule = *network->emissionSettings();
    for (int i = 0; i < 3; ++i) {
        const auto emission = EmissionSettings::createEmission();
        emission->start = i - 1; // also before the start of the period
        emission->emitter = i == 0 ? nullptr : head;
        emission->signalPackage = i == 1 ? nullptr : package;
        schedule.addEmission(emission);
        inner->emissions.append(emission);
    }
    schedule.addGroup(outer);
    schedule.addGroup(inner);
    QCOMPARE(reportOfWritten({head, member, network}), QString());
    QCOMPARE(reportOfWritten({std::make_shared<ScenarioNetwork>(QString())}), QString());
}

void TestReadingReport::writtenMovements_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("offset");
    QTest::newRow("default") << 50.0 << 0.01;
    QTest::newRow("more digits than written") << 1.0 / 3.0 << 0.01;
    QTest::newRow("rounded up") << 16.6666667 << 30.0;
    QTest::newRow("rounded down") << 33.3333333 << 30.0;
    QTest::newRow("longest time") << 1e-7 << 1.0;
    QTest::newRow("standing") << 0.0 << 1.0;
    QTest::newRow("same place") << 12.0 << 0.0;
}

/// Times follow from speeds, which are written with fewer digits than they have.
void TestReadingReport::writtenMovements()
{
    QFETCH(double, speed);
    QFETCH(double, offset);
    for (const EndBehaviourType eBehavior :
         {EndBehaviourType::Stop, EndBehaviourType::Restart, EndBehaviourType::Inactive}) {
        auto movement = std::make_unique<PositionSettingsPtp>(TPos{8.1234567890123, 48.5}, offset);
        QVector<MovementPoint> points = movement->getMovments();
        MovementPoint minor;
        minor.position = {8.2, 48.6};
        minor.dwellTime = 1000; // only way points dwell
        minor.speed = 7.0;
        points.insert(1, minor);
        points.last().speed = speed;
        points.last().dwellTime = 5000;
        points.last().name = QStringLiteral("End & \"start\"");
        movement->setMovements(points);
        movement->setEndBehavior(eBehavior);
        const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QString());
        emitter->setPositionSettings(movement.release());
        QCOMPARE(reportOfWritten({emitter}), QString());
    }
}

void TestReadingReport::writtenDeployment()
{
    const QStringList texts = oddTexts();
    for (const QString& sText : texts) {
        DeploymentDataXml document;
        document.setName(sText);
        document.setAuthor(sText);
        document.setDescription(sText);
        const auto station = std::make_shared<DeploymentStation>(sText);
        station->setIconId(sText);
        station->setPositionSettings(new PositionSettingsPtp({8.1, 48.5}, 0.01));
        const auto onStation = std::make_shared<DeploymentDevice>(sText);
        onStation->setConfiguredStationId(sText);
        onStation->setMachine(sText);
        onStation->setStation(station);
        station->addDevice(onStation);
        const auto alone = std::make_shared<DeploymentDevice>(QStringLiteral("alone"));
        alone->setName(sText);
        alone->setDeviceType(sText);
        const auto withoutPosition = std::make_shared<DeploymentDevice>(QStringLiteral("without"));
        withoutPosition->setPositionSettings(nullptr);
        document.setDevices({onStation, alone, withoutPosition});
        document.setStations({station});
        QCOMPARE(sorted(linesOf(deploymentReport(document.toXml()))), QString());
    }
    QCOMPARE(sorted(linesOf(deploymentReport(DeploymentDataXml().toXml()))), QString());
}

void TestReadingReport::writtenDescriptors()
{
    const QStringList texts = oddTexts();
    for (const QString& sText : texts) {
        for (int i = 0; i <= 6; ++i) { // 6 is no modulation and written as "None"
            SignalPackage package;
            package.setId(sText);
            package.setUpdateIds({sText, QStringLiteral("former")});
            package.setName(sText);
            package.setAuthor(sText);
            package.setAnalogModulation(static_cast<AnalogModulations>(i));
            package.setDigitalModulation(sText);
            const QByteArray descriptor = SignalPackageFile::writeSignalPackageDescriptor(package);
            QCOMPARE(sorted(linesOf(SignalPackageFile::report(descriptor))), QString());
        }
    }
}

QTEST_GUILESS_MAIN(TestReadingReport)

#include "tst_readingreport.moc"

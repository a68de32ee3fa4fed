#include "filesizelimit.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "tracecollector.h"

#include <memory>
#include <vector>

#include <QBuffer>
#include <QFile>
#include <QLoggingCategory>
#include <QStringConverter>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Simulation;

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;
using ObjectPtr = std::shared_ptr<ScenarioObject>;

namespace {

/// Every kind of reference circle: an emitter in its own schedule, emitters that are
/// linked to each other, and a network whose schedule names its members.
const QByteArray s_circles =
    "<?xml version='1.0'?>"
    "<Scenario Name='Circles' FileFormatVersion='4'><Description>D</Description>"
    "<Emitter ID='a' Name='A' Active='true' LinkTarget='b' Default='true'><Description>\xC3\xA4</Description>"
    "<EmissionSettings><Emission ID='1' StartTime='0' Duration='9' Emitter='a' SignalPackage='p'/>"
    "<Emission ID='2' StartTime='20' Emitter='b'/><Groups><Group "
    "ID='1'><EmissionId>1</EmissionId><GroupId>2</GroupId></Group>"
    "<Group ID='2'><EmissionId>1</EmissionId></Group></Groups></EmissionSettings></Emitter>"
    "<Emitter ID='b' Name='B' LinkTarget='a'><EmissionSettings><Emission ID='1' "
    "Emitter='a'/></EmissionSettings>"
    "</Emitter>"
    "<Network ID='n'><EmissionSettings><Emission ID='1' Emitter='b'/></EmissionSettings><Emitter>a</Emitter>"
    "<Emitter>b</Emitter></Network></Scenario>";

ObjectPtr find(const ScenarioDataXml& a_document, const char* a_szId)
{
    for (const ObjectPtr& object : a_document.scenarioObjects()) {
        if (object->id() == QLatin1String(a_szId)) {
            return object;
        }
    }
    return nullptr;
}

EmitterPtr findEmitter(const ScenarioDataXml& a_document, const char* a_szId)
{
    return std::dynamic_pointer_cast<SzenarioEmitter>(find(a_document, a_szId));
}

/// Counts the objects of a document that are still alive.
class Watch
{
public:
    explicit Watch(const ScenarioDataXml& a_document)
    {
        for (const ObjectPtr& object : a_document.scenarioObjects()) {
            m_objects.emplace_back(object);
        }
    }

    [[nodiscard]] int alive() const
    {
        int iAlive = 0;
        for (const std::weak_ptr<ScenarioObject>& object : m_objects) {
            iAlive += object.expired() ? 0 : 1;
        }
        return iAlive;
    }

private:
    std::vector<std::weak_ptr<ScenarioObject>> m_objects;
};

QByteArray repeated(const QByteArray& a_text, int a_iCount)
{
    return a_text.repeated(a_iCount);
}

} // namespace

/// Tests refused, broken and hostile documents, files, and the lifetime of the objects.
class TestScenarioDataXmlRobustness : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void refused_data();
    void refused();
    void secondLoad();
    void brokenOff_data();
    void brokenOff();
    void cutAtEveryByte();
    void changedAtEveryByte();
    void encodings_data();
    void encodings();
    void hostile_data();
    void hostile();
    void manyReferences();
    void devices();
    void files();
    void neverOverAPipe();
    void neverAHalfFile_data();
    void neverAHalfFile();
    void loadAndDrop();
    void keptEmitter();
    void keptSet();
    void keptSchedule();
    void sharedObjects();
    void replacedObjects();
    void outsideDocuments();
    void equalNames();
    void tooManyObjects();
    void tooLargeToSave();
    void sharedIds_data();
    void sharedIds();
    void networksOfOneId();
    void scheduleAgain();
    void foreignEntity();
};

void TestScenarioDataXmlRobustness::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("simulation.trace=false"));
}

void TestScenarioDataXmlRobustness::refused_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("error");
    QTest::newRow("other root")
        << QByteArray("<?xml version='1.0'?>\n  <Deployment/>")
        << QStringLiteral("line 2, column 15: the root element is \"Deployment\", not \"Scenario\"");
    QTest::newRow("root in lower case") << QByteArray("<scenario/>") << QStringLiteral("line 1,");
    QTest::newRow("root with a prefix")
        << QByteArray("<s:Scenario xmlns:s='s'/>") << QStringLiteral("line 1,");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("line 1,");
    QTest::newRow("no XML") << QByteArray("Scenario") << QStringLiteral("line 1,");
    QTest::newRow("cut before the root")
        << QByteArray("<?xml version='1.0'?>\n<!-- a comment -->\n<Scen") << QStringLiteral("line 3,");
    QTest::newRow("unknown encoding") << QByteArray("<?xml version='1.0' encoding='Klingon'?><Scenario/>")
                                      << QStringLiteral("line 1, column 1: cannot decode");
    QTest::newRow("long document type")
        << "<!DOCTYPE Scenario [" + repeated("<!ELEMENT e ANY>", 10000) + "]><Scenario/>"
        << QStringLiteral("line 1, column 1: bytes of a document type limit");
    QByteArray entities = "<!DOCTYPE Scenario [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int i = 1; i < 30; ++i) {
        entities += "<!ENTITY e" + QByteArray::number(i) + " '" +
                    repeated("&e" + QByteArray::number(i - 1) + ";", 10) + "'>";
    }
    QTest::newRow("entities within entities")
        << entities + "]><Scenario><Description>&e29;</Description></Scenario>"
        << QStringLiteral("line 1, column 1: entity declarations limit of 0");
}

/// A refused document leaves the former content unchanged, byte for byte.
void TestScenarioDataXmlRobustness::refused()
{
    QFETCH(QByteArray, xml);
    QFETCH(QString, error);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(s_circles));
    const QByteArray before = document.toXml();
    const Watch watch(document);
    QVERIFY(!document.fromXml(xml));
    QVERIFY2(document.errorString().startsWith(error), qPrintable(document.errorString()));
    QCOMPARE(document.errorString().count(QStringLiteral("line ")), 1);
    QCOMPARE(document.toXml(), before);
    QCOMPARE(watch.alive(), 3);
    QVERIFY(document.getDefaultEmitter());
    QVERIFY(document.fromXml(s_circles));
    QCOMPARE(document.errorString(), QString());
}

void TestScenarioDataXmlRobustness::secondLoad()
{
    ScenarioDataXml document(nullptr);
    ScenarioNoiseSettings noise;
    noise.setNoiseDensity(1.0);
    document.setNoiseSettings(noise);
    document.setDuration(5);
    document.setAuthor(QStringLiteral("me"));
    QVERIFY(document.fromXml(s_circles));
    const Watch watch(document);
    const QByteArray once = document.toXml();
    QVERIFY(document.fromXml(once));
    QCOMPARE(watch.alive(), 0);
    QCOMPARE(document.toXml(), once);
    QVERIFY(document.getNoiseSettings() == ScenarioNoiseSettings());
    QVERIFY(document.getDuration() == 0 && document.getAuthor().isEmpty());
    QVERIFY(document.fromXml("<Scenario/>"));
    QVERIFY(document.scenarioObjects().isEmpty() && !document.getDefaultEmitter() &&
            document.getName().isEmpty());
    QVERIFY(document.getDescription().isEmpty() && document.getPersistantId().isEmpty());
}

void TestScenarioDataXmlRobustness::brokenOff_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* a_szName, const QByteArray& a_rest, const char* a_szError) {
        QTest::newRow(a_szName) << a_rest << QString::fromLatin1(a_szError);
    };
    row("cut", "\n<Emitter ID='late", "line 2,");
    row("wrong end", "\n</Emitter></Scenario>", "line 2,");
    row("second root", "</Scenario>\n<Scenario/>", "line 2,");
    row("text after the root", "</Scenario>\nx", "line 2,");
    row("unknown entity", "\n&nothing;</Scenario>", "line 2,");
    row("character that XML forbids", "\n\x01</Scenario>", "line 2,");
    row("attribute twice", "\n<Emitter ID='x' ID='y'/></Scenario>", "line 2,");
    row("bytes that are not UTF-8", "\n<x>\xFF</x></Scenario>", "line 2, column 4: the bytes");
    row("such bytes after the root", "</Scenario>\n\xFF", "line 2, column 1: the bytes");
    // A value that is cut off is not used.
    row("cut class", "\n<Emitter ID='e'><Class>D", "line 2,");
    row("cut frequency", "\n<Emitter ID='e'><Frequency><Fixed>1", "line 2,");
    row("cut position", "\n<Emitter ID='e'><Position><Movement><Position><Lat>1", "line 2,");
    row("cut text of the scenario", "\n<Description>E", "line 2,");
    row("a million unknown elements in each other", "\n" + repeated("<x>", 1'000'000),
        "line 2, column 766: nesting depth limit of 256 exceeded");
    QByteArray attributes = "\n<Unknown";
    for (int i = 0; i < 100'000; ++i) {
        attributes += " a" + QByteArray::number(i) + "=''";
    }
    row("100,000 attributes", attributes + "/></Scenario>",
        "line 2, column 1: attributes of one element limit of 4096 exceeded");
}

void TestScenarioDataXmlRobustness::brokenOff()
{
    QFETCH(QByteArray, rest);
    QFETCH(QString, error);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(
        "<Scenario Name='N' Description='D'><Emitter ID='e' LinkTarget='t'><Class>C</Class></Emitter>" +
        rest));
    QVERIFY2(document.errorString().startsWith(error), qPrintable(document.errorString()));
    QCOMPARE(document.getName(), QStringLiteral("N"));
    QCOMPARE(findEmitter(document, "e")->getClass(), QStringLiteral("C"));
    QVERIFY(findEmitter(document, "e")->isLinked()); // references are resolved despite the error
    QCOMPARE(findEmitter(document, "e")->getFrequencyAt(0), 25e6);
    QCOMPARE(findEmitter(document, "e")->getPositionAt(0).latitude, 0.0);
    QCOMPARE(document.getDescription(), QStringLiteral("D"));
    QVERIFY(document.fromXml(document.toXml()) && document.errorString().isEmpty());
}

void TestScenarioDataXmlRobustness::cutAtEveryByte()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    for (const QByteArray& xml : {s_circles, file.readAll().trimmed()}) {
        const qsizetype iRootEnd = xml.indexOf('>', xml.indexOf("<Scenario")) + 1;
        for (qsizetype i = 0; i < xml.size(); ++i) {
            QCOMPARE(document.fromXml(xml.first(i)), i >= iRootEnd);
            QVERIFY(!document.errorString().isEmpty());
        }
        QVERIFY(document.fromXml(xml));
        QCOMPARE(document.errorString(), QString());
    }
}

/// If any single byte is wrong, reading succeeds or fails. It does not crash, hang or
/// leak.
void TestScenarioDataXmlRobustness::changedAtEveryByte()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    for (qsizetype i = 0; i < s_circles.size(); ++i) {
        for (const char c : {'<', '"', '-', '9', '\0', '\x80'}) {
            QByteArray xml = s_circles;
            xml[i] = c;
            if (document.fromXml(xml)) {
                const QByteArray written = document.toXml();
                QVERIFY(document.fromXml(written));
                QVERIFY2(document.errorString().isEmpty(), qPrintable(document.errorString()));
            } else {
                QVERIFY(!document.errorString().isEmpty());
            }
        }
    }
}

void TestScenarioDataXmlRobustness::encodings_data()
{
    QTest::addColumn<QByteArray>("xml");
    const auto text = [](const char* a_szDeclaration) {
        return QString::fromLatin1(a_szDeclaration) + QStringLiteral("<Scenario Name=\"M\u00FCller\"/>");
    };
    QStringEncoder utf16le(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    QStringEncoder utf16be(QStringConverter::Utf16BE, QStringConverter::Flag::WriteBom);
    QTest::newRow("UTF-8") << text("").toUtf8();
    QTest::newRow("UTF-8 with a mark")
        << "\xEF\xBB\xBF" + text("<?xml version='1.0' encoding='utf-8'?>").toUtf8();
    QTest::newRow("UTF-16, little-endian")
        << QByteArray(utf16le.encode(text("<?xml version='1.0' encoding='UTF-16'?>")));
    QTest::newRow("UTF-16, big-endian") << QByteArray(utf16be.encode(text("")));
    QTest::newRow("Latin-1") << text("<?xml version='1.0' encoding='ISO-8859-1'?>").toLatin1();
}

void TestScenarioDataXmlRobustness::encodings()
{
    QFETCH(QByteArray, xml);
    ScenarioDataXml document(nullptr);
    QVERIFY2(document.fromXml(xml), qPrintable(document.errorString()));
    QCOMPARE(document.errorString(), QString());
    QCOMPARE(document.getName(), QStringLiteral("M\u00FCller"));
    QVERIFY(document.toXml().startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
}

void TestScenarioDataXmlRobustness::hostile_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("objects");
    const auto row = [](const char* a_szName, const QByteArray& a_children, int a_iObjects) {
        QTest::newRow(a_szName) << "<Scenario FileFormatVersion='4'>" + a_children + "</Scenario>"
                                << a_iObjects;
    };
    row("longest hop list",
        "<Emitter "
        "ID='a'><Frequency><FastHopper><HoppCount>4294967295</HoppCount></FastHopper></Frequency></Emitter>",
        1);
    row("positions that are no numbers",
        "<Emitter ID='a'><Position><Movement><Position Major='true' "
        "Speed='nan'><Lon>nan</Lon><Lat>-inf</Lat></Position>"
        "<Position><Lon>1e308</Lon><Lat>-1e308</Lat></Position></Movement></Position></Emitter>",
        1);
    row("times out of all range",
        "<Emitter ID='a'><EmissionSettings Duration='1'><Emission StartTime='-9223372036854775808' "
        "Duration='-9223372036854775808'/><Emission StartTime='9223372036854775807' "
        "Duration='9223372036854775807'/></EmissionSettings></Emitter>",
        1);
    QByteArray groups;
    constexpr int iGroups = 50'000;
    for (int i = 0; i < iGroups; ++i) {
        groups += "<Group ID='" + QByteArray::number(i + 1) + "'><GroupId>" +
                  QByteArray::number((i + 1) % iGroups + 1) + "</GroupId></Group>";
    }
    row("a long circle of groups",
        "<Emitter ID='a'><EmissionSettings><Groups>" + groups + "</Groups></EmissionSettings></Emitter>", 1);
    row("children in texts",
        "<Emitter ID='a'><Class>C<b><Class>D</Class></b></Class></Emitter><Network ID='n'><Emitter>"
        "a<x/></Emitter></Network>",
        2);
    row("heads only", "<Network ID='n'>" + repeated("<Emitter Head=''>a</Emitter>", 100'000) + "</Network>",
        2);
}

/// All queries for a time return valid results, even for objects of hostile documents.
void TestScenarioDataXmlRobustness::hostile()
{
    QFETCH(QByteArray, xml);
    Limits::setValue(Limits::AnswerActivities, 100);
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(xml));
    QTEST(static_cast<int>(document.scenarioObjects().size()), "objects");
    const EmitterPtr emitter = findEmitter(document, "a");
    QVERIFY(emitter);
    for (const unsigned int uiTime : {0U, 1U, 1000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        const TPos position = emitter->getPositionAt(uiTime);
        QVERIFY(qIsFinite(position.longitude) && qIsFinite(position.latitude));
        QVERIFY(qIsFinite(emitter->getFrequencyAt(uiTime)));
        QVERIFY(qIsFinite(emitter->headingAt(uiTime)));
        QVERIFY(emitter->timeActiveAt(uiTime) >= -1);
        QCOMPARE(emitter->isActiveAt(uiTime), false); // no element has the attribute "Active"
        QVERIFY(emitter->calculateBursts(uiTime, 0xFFFFFFFF, 1.0).size() <= 100);
    }
    QVERIFY(document.fromXml(document.toXml()));
    QVERIFY(document.errorString().isEmpty());
    Limits::setValue(Limits::AnswerActivities, 0);
}

/// 100,000 members, emissions and links that refer to later elements would take
/// hours if one step cost O(n).
void TestScenarioDataXmlRobustness::manyReferences()
{
    constexpr int iCount = 100'000;
    QByteArray members;
    QByteArray emissions;
    QByteArray emitters;
    for (int i = 0; i < iCount; ++i) {
        const QByteArray id = QByteArray::number(i);
        members += "<Emitter" + QByteArray(i % 2 == 0 ? " Head=''" : "") + ">" + id + "</Emitter>";
        emissions +=
            "<Emission ID='7' StartTime='" + QByteArray::number(iCount - i) + "' Emitter='" + id + "'/>";
        emitters += "<Emitter ID='" + id + "' LinkTarget='leader'/>";
    }
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml("<Scenario><Network ID='n'><EmissionSettings>" + emissions +
                             "<Groups><Group ID='1'/></Groups>" + "</EmissionSettings>" + members +
                             "</Network>" + emitters + "</Scenario>"));
    QCOMPARE(document.scenarioObjects().size(), iCount + 2);
    QCOMPARE(findEmitter(document, "leader")->linkedEmitter().size(), iCount);
    const auto network = std::dynamic_pointer_cast<ScenarioNetwork>(find(document, "n"));
    QCOMPARE(network->headEmitter()->id(), QString::number(iCount - 2));
    QCOMPARE(network->emissionSettings()->emissions().constFirst()->emitter->id(),
             QString::number(iCount - 1));
}

void TestScenarioDataXmlRobustness::devices()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(!document.fromXml(static_cast<QIODevice*>(nullptr)));
    QVERIFY(!document.errorString().isEmpty());
    QBuffer buffer;
    QVERIFY(!document.fromXml(&buffer)); // the buffer is not open
    document.toXml(static_cast<QIODevice*>(nullptr));
    buffer.setData("skipped" + s_circles);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    buffer.seek(7);
    QVERIFY(document.fromXml(&buffer));
    QCOMPARE(document.getName(), QStringLiteral("Circles"));
    document.toXml(&buffer); // the buffer is not writable, so an error is traced
    QBuffer target;
    QVERIFY(target.open(QIODevice::WriteOnly));
    document.toXml(&target);
    QCOMPARE(target.data(), document.toXml());
}

void TestScenarioDataXmlRobustness::files()
{
    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("scenario.sce"));
    ScenarioDataXml document(nullptr);
    QVERIFY(!document.fromXmlFile(sFile));
    QVERIFY(!document.fromXmlFile(folder.path()));
    QCOMPARE(document.errorString(), QStringLiteral("is a folder"));
    QVERIFY(!document.fromXmlFile(QString()));
    QVERIFY(!document.toXmlFile(folder.filePath(QStringLiteral("missing/scenario.sce"))));
    QVERIFY(!document.toXmlFile(folder.path()));
    QVERIFY(!document.toXmlFile(QString()));
    QVERIFY(document.fromXml(s_circles));
    QVERIFY(document.toXmlFile(sFile));
    ScenarioDataXml again(nullptr);
    QVERIFY(again.fromXmlFile(sFile));
    QCOMPARE(again.toXml(), document.toXml());
    Limits::setValue(Limits::DocumentBytes, 100);
    QVERIFY(!again.fromXmlFile(sFile));
    QCOMPARE(again.errorString(), QStringLiteral("document bytes limit of 100 exceeded"));
    Limits::setValue(Limits::DocumentBytes, 0);
}

/// A pipe is not replaced by a file, because other programs may use it. Saving does not
/// wait for the pipe's reader.
void TestScenarioDataXmlRobustness::neverOverAPipe()
{
    QTemporaryDir folder;
    const QString sPipe = folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(sPipe).constData(), S_IRUSR | S_IWUSR), 0);
    ScenarioDataXml document(nullptr);
    QVERIFY(!document.toXmlFile(sPipe));
    QVERIFY(QFileInfo::exists(sPipe) && !QFileInfo(sPipe).isFile());
}

void TestScenarioDataXmlRobustness::neverAHalfFile_data()
{
    QTest::addColumn<int>("size"); // length of the description, characters
    QTest::addColumn<int>("room"); // largest file size, bytes

    QTest::newRow("large document") << (1 << 20) << (1 << 16);
    QTest::newRow("document that fits into a buffer") << 3'000 << 1'000;
}

/// A write that fails midway leaves the old file unchanged and no temporary file.
void TestScenarioDataXmlRobustness::neverAHalfFile()
{
    QFETCH(int, size);
    QFETCH(int, room);
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("scenario.sce"));
    QFile device(folder.filePath(QStringLiteral("device")));
    ScenarioDataXml document(nullptr);
    QVERIFY(document.toXmlFile(sFile) && device.open(QIODevice::WriteOnly));
    QFile file(sFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();

    document.setDescription(QString(size, u'x'));
    QLoggingCategory::setFilterRules({});
    const TraceCollector traces;
    {
        const FileSizeLimit limit(static_cast<rlim_t>(room));
        QVERIFY(!document.toXmlFile(sFile));
        document.toXml(&device);
        device.close();
    }
    QCOMPARE(TraceCollector::lines(),
             QStringList({QStringLiteral("Cannot save \"%1\": File too large "
                                         "(simulation/simulationdata/documentfile)")
                              .arg(sFile),
                          QStringLiteral("Cannot write a scenario: File too large "
                                         "(simulation/simulationdata/scenariodataxml)")}));
    initTestCase();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void TestScenarioDataXmlRobustness::loadAndDrop()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml reused(&provider);
    for (int i = 0; i < 3000; ++i) {
        QVERIFY(reused.fromXml(s_circles));
        const Watch watch(reused);
        {
            ScenarioDataXml fresh(&provider);
            QVERIFY(fresh.fromXml(s_circles));
            const Watch freshWatch(fresh);
            fresh.setScenarioObjects({});
            QCOMPARE(freshWatch.alive(), 0);
            fresh.setScenarioObjects(ScenarioDataXml::objectsForXml(QString::fromUtf8(s_circles), &provider));
        }
        QCOMPARE(watch.alive(), 3);
    }
}

void TestScenarioDataXmlRobustness::keptEmitter()
{
    auto document = std::make_unique<ScenarioDataXml>(nullptr);
    QVERIFY(document->fromXml(s_circles));
    const Watch watch(*document);
    EmitterPtr kept = findEmitter(*document, "a");
    document.reset();
    QCOMPARE(watch.alive(), 2); // the network holds its emitters, but they do not hold the network
    QVERIFY(!kept->hasNetwork());
    QCOMPARE(kept->emissionSettings()->groups().size(), 2);
    QCOMPARE(kept->emissionSettings()->activeEmitterAt(5), kept);
    kept->emissionSettings()->clearAll();
    kept->removeLinkedEmitter(kept->linkTargetEmitter());
    kept.reset();
    QCOMPARE(watch.alive(), 0);
}

void TestScenarioDataXmlRobustness::keptSet()
{
    auto document = std::make_unique<ScenarioDataXml>(nullptr);
    QVERIFY(document->fromXml(s_circles));
    const Watch watch(*document);
    const QByteArray before = document->toXml();
    QSet<ObjectPtr> kept = document->scenarioObjects();
    QList<EmitterPtr> members =
        std::dynamic_pointer_cast<ScenarioNetwork>(find(*document, "n"))->emitterList();
    document.reset();
    QCOMPARE(watch.alive(), 3);
    ScenarioDataXml other(nullptr);
    QVERIFY(other.fromXml(before.left(before.indexOf('>', before.indexOf("<Scenario")) + 1)));
    other.setDescription(QStringLiteral("D"));
    other.setScenarioObjects(kept);
    other.setDefaultEmitter(findEmitter(other, "a"));
    QCOMPARE(other.toXml(), before);
    kept.clear();
    other.setScenarioObjects({});
    QCOMPARE(watch.alive(), 2); // the copy of the member list holds its emitters
    other.setScenarioObjects({members.constFirst()});
    members.clear();
    QCOMPARE(watch.alive(), 2);
    QVERIFY(other.fromXml("<Scenario/>"));
    QCOMPARE(watch.alive(), 0);
}

void TestScenarioDataXmlRobustness::keptSchedule()
{
    auto document = std::make_unique<ScenarioDataXml>(nullptr);
    QVERIFY(document->fromXml(s_circles));
    const Watch watch(*document);
    EmissionSettings kept = *find(*document, "n")->emissionSettings();
    EmissionSettings own = *findEmitter(*document, "a")->ScenarioObject::emissionSettings();
    document.reset();
    QCOMPARE(watch.alive(), 2);
    QCOMPARE(own.groups().constFirst()->groups, QList{own.groups().constLast()});
    EmitterPtr b = kept.emissions().constFirst()->emitter;
    EmitterPtr a = own.emissions().constFirst()->emitter->linkTargetEmitter()->linkTargetEmitter();
    QCOMPARE(b->id() + a->id(), QStringLiteral("ba"));
    kept.clearAll();
    own.clearAll();
    QCOMPARE(a->emissionSettings()->emissions().size(), 2);
    ScenarioDataXml last(nullptr);
    last.setScenarioObjects({a, b}); // the document's destructor releases the objects
    a.reset();
    b.reset();
    QCOMPARE(watch.alive(), 2);
}

void TestScenarioDataXmlRobustness::sharedObjects()
{
    auto first = std::make_unique<ScenarioDataXml>(nullptr);
    ScenarioDataXml second(nullptr);
    QVERIFY(first->fromXml(s_circles));
    const Watch watch(*first);
    second.setScenarioObjects({find(*first, "b")});
    first.reset();
    QCOMPARE(watch.alive(), 2);
    QCOMPARE(findEmitter(second, "b")->emissionSettings()->emissions().constFirst()->emitter->id(),
             QStringLiteral("a"));
    second.setScenarioObjects({});
    QCOMPARE(watch.alive(), 0);
}

void TestScenarioDataXmlRobustness::replacedObjects()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(s_circles));
    const Watch watch(document);
    document.setScenarioObjects(document.scenarioObjects());
    QVERIFY(watch.alive() == 3 && document.getDefaultEmitter());
    document.setScenarioObjects({find(document, "n")});
    QCOMPARE(watch.alive(), 3); // the network holds its members
    QVERIFY(!document.getDefaultEmitter());
    QVERIFY(document.toXml().contains("<Emitter>b</Emitter>"));
}

/// releaseObjects() also releases objects that no document holds any more.
void TestScenarioDataXmlRobustness::outsideDocuments()
{
    QSet<ObjectPtr> objects = ScenarioDataXml::objectsForXml(QString::fromUtf8(s_circles), nullptr);
    ScenarioDataXml document(nullptr);
    document.setScenarioObjects(objects);
    const Watch watch(document);
    EmitterPtr a = findEmitter(document, "a");
    document.setScenarioObjects({});
    document.setDefaultEmitter(a);
    ScenarioDataXml::releaseObjects(std::move(objects));
    QCOMPARE(watch.alive(), 2); // the default emitter and its link target
    document.setDefaultEmitter(nullptr);
    QCOMPARE(watch.alive(), 2);
    ScenarioDataXml::releaseObject(std::move(a));
    QCOMPARE(watch.alive(), 0);
}

/// Objects with equal ids and names are always written in the same order.
void TestScenarioDataXmlRobustness::equalNames()
{
    QByteArray xml = "<Scenario Uid='u'>";
    for (const char* szColor : {"#000003", "#000001", "#000004", "#000002"}) {
        xml += QByteArray("<Network><Color>") + szColor + "</Color></Network>";
    }
    xml += "</Scenario>";
    ScenarioDataXml first(nullptr);
    QVERIFY(first.fromXml(xml));
    for (int i = 0; i < 5; ++i) {
        ScenarioDataXml again(nullptr);
        QVERIFY(again.fromXml(xml));
        QCOMPARE(again.toXml(), first.toXml());
    }
}

void TestScenarioDataXmlRobustness::tooManyObjects()
{
    Limits::setValue(Limits::ScenarioObjects, 3);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml("<Scenario>\n<Emitter ID='a' LinkTarget='x'/><Network/><Emitter ID='b'/>\n"
                             "<Emitter ID='a' Name='A'/><Network/></Scenario>"));
    const QString sError = document.errorString();
    QVERIFY2(sError.startsWith(QStringLiteral("line 3,")), qPrintable(sError));
    QVERIFY(sError.endsWith(QStringLiteral("objects of one scenario limit of 3 exceeded")));
    QCOMPARE(document.scenarioObjects().size(), 3);
    QCOMPARE(findEmitter(document, "a")->name(), QStringLiteral("A"));
    QVERIFY(!findEmitter(document, "a")->isLinked()); // its link target would exceed the limit
    Limits::setValue(Limits::ScenarioObjects, 1);
    QVERIFY(document.fromXml("<Scenario><Emitter ID='a' LinkTarget='x'/></Scenario>"));
    QCOMPARE(document.errorString(), QStringLiteral("objects of one scenario limit of 1 exceeded"));
    Limits::setValue(Limits::ScenarioObjects, 0);
}

/// A linked emitter is written with the path of its target, so a small document can
/// become a large file. A document above the limit must not replace the small file.
void TestScenarioDataXmlRobustness::tooLargeToSave()
{
    QByteArray xml = "<Scenario><Emitter ID='path'><Position><Movement>" +
                     repeated("<Position Major='true'/>", 200) + "</Movement></Position></Emitter>";
    for (int i = 0; i < 200; ++i) {
        xml += "<Emitter ID='f" + QByteArray::number(i) + "' LinkTarget='path'/>";
    }
    xml += "</Scenario>";
    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("small.sce"));
    QFile file(sFile);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size());
    file.close();
    Limits::setValue(Limits::DocumentBytes, 1'000'000);
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXmlFile(sFile) && document.errorString().isEmpty());
    QVERIFY(document.toXml().isEmpty());
    const QString sTooLarge = document.errorString();
    QVERIFY2(sTooLarge.endsWith(QStringLiteral("limit of 1000000 exceeded")), qPrintable(sTooLarge));
    QVERIFY(!document.toXmlFile(sFile) && document.errorString() == sTooLarge);
    QVERIFY(ScenarioDataXml::xmlForObjects(document.scenarioObjects(), nullptr).isEmpty());
    QCOMPARE(QFileInfo(sFile).size(), xml.size());
    document.setScenarioObjects({});
    document.setDescription(QStringLiteral("x").repeated(1'000'000));
    QVERIFY(document.toXml().isEmpty());
    Limits::setValue(Limits::DocumentBytes, 0);
    QVERIFY(document.toXml().size() > 1'000'000 && document.errorString().isEmpty());
    QVERIFY(!document.toXmlFile(folder.path()));
    QCOMPARE(document.errorString(), QStringLiteral("is a folder"));
    document.toXml(nullptr);
    QCOMPARE(document.errorString(), QStringLiteral("no device was given"));
}

void TestScenarioDataXmlRobustness::sharedIds_data()
{
    QTest::addColumn<QString>("objects"); // for each object, the letter of its class, then its id
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("readBack"); // number of objects

    const QString sEnd =
        QStringLiteral(": only one object of each id is read back; give every object its own id");
    QTest::newRow("none") << "ea eb" << QString() << 2;
    QTest::newRow("two emitters") << "ea ea" << QStringLiteral("2 emitters have the id \"a\"") + sEnd << 1;
    QTest::newRow("ids that differ in a character that XML forbids")
        << "ea ea\x1b" << QStringLiteral("2 emitters have the id \"a\"") + sEnd << 1;
    QTest::newRow("emitters of both kinds")
        << "ea xa xb" << QStringLiteral("2 emitters have the id \"a\"") + sEnd << 2;
    QTest::newRow("networks stay apart") << "ea na na" << QString() << 3;
    QTest::newRow("many") << "e%5 e%5 e%1 e%1 e%1 e3 e3 e4 e4 e2 e2"
                          << QStringLiteral("3 emitters have the id \"%1\", 2 emitters have the id \"%5\", "
                                            "2 emitters have the id \"2\", 2 more ids are shared") +
                                 sEnd
                          << 5;
}

/// Emitters that share an id are all written, but they are read as one emitter. Saving
/// reports such ids.
void TestScenarioDataXmlRobustness::sharedIds()
{
    QFETCH(QString, objects);
    QFETCH(QString, expected);
    QSet<ObjectPtr> all;
    for (const QString& sObject : objects.split(u' ')) {
        const QString sId = sObject.mid(1);
        if (sObject[0] == u'n') {
            all.insert(std::make_shared<ScenarioNetwork>(sId));
        } else if (sObject[0] == u'x') {
            all.insert(std::make_shared<ElintScenarioEmitter>(sId, QString()));
        } else {
            all.insert(std::make_shared<SzenarioEmitter>(sId, QString()));
        }
    }
    ScenarioDataXml document(nullptr);
    document.setScenarioObjects(all);
    QLoggingCategory::setFilterRules(QString());
    const TraceCollector traces;
    QTemporaryDir folder;
    QVERIFY(document.toXmlFile(folder.filePath(QStringLiteral("shared.sce"))));
    QCOMPARE(document.errorString(), expected);
    QVERIFY(!ScenarioDataXml::xmlForObjects(all, nullptr).isEmpty());
    QStringList expectedTraces;
    if (!expected.isEmpty()) {
        for (const char* szWhat : {"Scenario", "Objects"}) {
            expectedTraces.append(QLatin1String(szWhat) + QStringLiteral(" written: ") + expected +
                                  QStringLiteral(" (simulation/simulationdata/scenariodataxml)"));
        }
    }
    initTestCase(); // disables traces again
    QCOMPARE(TraceCollector::lines(), expectedTraces);
    QVERIFY(document.fromXml(document.toXml()) && document.errorString().isEmpty());
    QTEST(static_cast<int>(document.scenarioObjects().size()), "readBack");
    QCOMPARE(document.mergedIds().isEmpty(), expected.isEmpty());
    document.setScenarioObjects({std::make_shared<SzenarioEmitter>(QStringLiteral("a"), QString())});
    QVERIFY(document.mergedIds().isEmpty()); // the merged ids belonged to the former objects
}

/// No element refers to a network by its id, so a network may share its id with
/// another network or an emitter.
void TestScenarioDataXmlRobustness::networksOfOneId()
{
    const QByteArray xml = "<Scenario Uid='u'><Emitter ID='a' Name='E'/><Emitter ID='b'/>"
                           "<Network ID='a' Name='1'><Emitter>b</Emitter></Network>"
                           "<Network ID='a' Name='2'><Emitter>a</Emitter></Network></Scenario>";
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(xml));
    const QByteArray saved = document.toXml();
    QVERIFY(document.errorString().isEmpty());
    ScenarioDataXml again(nullptr);
    QVERIFY(again.fromXml(saved) && again.errorString().isEmpty() && again.mergedIds().isEmpty());
    QStringList objects;
    for (const ObjectPtr& object : again.scenarioObjects()) {
        const auto network = std::dynamic_pointer_cast<ScenarioNetwork>(object);
        const auto head = network ? network->headEmitter() : nullptr;
        objects.append(object->id() + object->name() + (head ? u'>' + head->id() + head->name() : QString()));
    }
    objects.sort();
    QCOMPARE(objects, (QStringList{QStringLiteral("a1>b"), QStringLiteral("a2>aE"), QStringLiteral("aE"),
                                   QStringLiteral("b")}));
}

/// A repeated schedule element replaces the former one. Adding up all of them would
/// take quadratic time.
void TestScenarioDataXmlRobustness::scheduleAgain()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml(
        "<Scenario><Emitter ID='e'><Timing><Manual><Activity ActiveDuration='5'/></Manual>"
        "</Timing><EmissionSettings><Emission ID='7'/></EmissionSettings></Emitter></Scenario>"));
    QCOMPARE(findEmitter(document, "e")->emissionSettings()->emissions().size(), 2);
    QVERIFY(document.fromXml(
        "<Scenario>" +
        repeated("<Emitter ID='e'><EmissionSettings><Emission ID='7'/></EmissionSettings></Emitter>",
                 20'000) +
        "<Emitter ID='m'><Timing>" + repeated("<Manual><Activity/></Manual>", 20'000) +
        "</Timing></Emitter></Scenario>"));
    QCOMPARE(findEmitter(document, "e")->emissionSettings()->emissions().size(), 1);
    QCOMPARE(findEmitter(document, "m")->emissionSettings()->emissions().size(), 1);
}

/// An external document type may define entities. Such an entity is read as an empty
/// text, and the rest of the document is read.
void TestScenarioDataXmlRobustness::foreignEntity()
{
    ScenarioDataXml document(nullptr);
    QVERIFY(document.fromXml("<!DOCTYPE Scenario SYSTEM 'x.dtd'><Scenario><Emitter ID='a'><Description>x&e;y"
                             "</Description><Class>c</Class></Emitter><Emitter ID='b'/></Scenario>"));
    QCOMPARE(findEmitter(document, "a")->description(), QStringLiteral("xy"));
    QCOMPARE(findEmitter(document, "a")->getClass(), QStringLiteral("c"));
    QCOMPARE(document.scenarioObjects().size(), 2);
}

QTEST_GUILESS_MAIN(TestScenarioDataXmlRobustness)

#include "tst_scenariodataxml_robustness.moc"

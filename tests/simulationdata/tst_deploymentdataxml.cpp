#include "kpbase/velaos.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/simulationlimits.h"
#include "tracecollector.h"
#include "velaappstartup/cfgcenter.h"

#include <QBuffer>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Simulation;

using DevicePtr = std::shared_ptr<DeploymentDevice>;
using StationPtr = std::shared_ptr<DeploymentStation>;

namespace {

/// The reference document, with every element: a device at a moving station, a
/// device with its own position, and a device without a position.
QByteArray fullXml()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/deployments/Full.xml"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("the reference document is missing");
}

/// Two devices at one station; each device and the station hold each other.
const QByteArray s_circles = "<SimulationDeployment FileFormatVersion='1' PersistantId='p'>"
                             "<Device ID='a'><Station>s</Station></Device>"
                             "<Device ID='b'><Station>s</Station></Device></SimulationDeployment>";

QString positionText(DeploymentObject& a_object)
{
    const TPos position = a_object.position();
    return a_object.positionSettings() != nullptr
               ? QStringLiteral("%1,%2").arg(position.longitude).arg(position.latitude)
               : QStringLiteral("nowhere");
}

/// The devices and then the stations as text, each as "key=name values".
QString summary(const DeploymentDataXml& a_document)
{
    QStringList texts;
    for (auto it = a_document.devices().cbegin(); it != a_document.devices().cend(); ++it) {
        DeploymentDevice& device = **it;
        const ReceiverSettings& receiver = device.receiverSettings();
        texts.append(QStringLiteral("%1 %2 %3/%4 %5 ")
                         .arg(it.key() + u'=' + device.name(), device.iconId() + device.machine(),
                              QString::number(receiver.antennaHeight), QString::number(receiver.antennaGain),
                              device.deviceType() + device.configuredStationId()) +
                     (device.hasStation() ? u'@' + device.station()->id() : positionText(device)));
    }
    for (auto it = a_document.stations().cbegin(); it != a_document.stations().cend(); ++it) {
        QStringList members;
        for (const DevicePtr& device : (*it)->devices()) {
            members.append(device->id());
        }
        members.sort();
        texts.append(
            QStringLiteral("%1=%2 %3 [%4] %5")
                .arg(it.key(), (*it)->name(), (*it)->iconId(), members.join(u' '), positionText(**it)));
    }
    return texts.join(QStringLiteral("; "));
}

/// Counts the objects of a document that are still alive.
class Watch
{
public:
    explicit Watch(const DeploymentDataXml& a_document)
    {
        m_objects.insert(m_objects.end(), a_document.devices().cbegin(), a_document.devices().cend());
        m_objects.insert(m_objects.end(), a_document.stations().cbegin(), a_document.stations().cend());
    }

    [[nodiscard]] auto alive() const
    {
        return std::count_if(m_objects.cbegin(), m_objects.cend(),
                             [](const auto& a_object) { return !a_object.expired(); });
    }

private:
    std::vector<std::weak_ptr<DeploymentObject>> m_objects;
};

DeploymentDataXml circles()
{
    DeploymentDataXml document;
    return document.fromXml(s_circles) ? document : DeploymentDataXml();
}

} // namespace

class TestDeploymentDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ErrorHandler::Instance().setTraceMask(0); } // avoids thousands of traces
    void fullDocument();
    void writtenDocument();
    void decimalComma();
    void persistentId();
    void readings_data();
    void readings();
    void olderDocuments();
    void refused();
    void files();
    void cutAtEveryByte();
    void tooDeep();
    void tooMany();
    void copiesShareObjects();
    void callersKeepObjects();
    void replacedObjects();
    void sharedIds();
    void mergedIds();
};

void TestDeploymentDataXml::fullDocument()
{
    DeploymentDataXml document;
    QVERIFY(document.fromXml(fullXml()) && document.errorString().isEmpty());
    QCOMPARE(document.name() + document.author() + document.persistantId() + document.description(),
             QStringLiteral("Field & testM\u00FCllerp-1two\r\nlines"));
    QCOMPARE(document.fileFormatVersion(), 1U);
    // The configured station of a device is written but not read.
    QCOMPARE(summary(document),
             QStringLiteral("alone=Alone dishpc-2 12.3457/-3.5 DF 8.12346,-48.5; lost=  7/0  nowhere; "
                            "mobile=On board pc-1 7/0 Receiver @ship; ship=ship boat [mobile] 9.5,50"));
    QCOMPARE(document.devices()[QStringLiteral("alone")]->position().longitude, 8.1234567890123);
    const StationPtr ship = document.stations()[QStringLiteral("ship")];
    QCOMPARE(document.devices()[QStringLiteral("mobile")]->station(), ship);
    const auto* pPath = dynamic_cast<PositionSettingsPtp*>(ship->positionSettings());
    QVERIFY(pPath != nullptr && pPath->getEndBehavior() == EndBehaviourType::Stop);
    QCOMPARE(pPath->getPoint(0).name, QStringLiteral("port"));

    document.devices()[QStringLiteral("mobile")]->setConfiguredStationId(QStringLiteral("boat"));
    QCOMPARE(document.toXml(), fullXml());
    QCOMPARE(document.toXml(), fullXml()); // writing does not change the document
}

void TestDeploymentDataXml::writtenDocument()
{
    DeploymentDataXml document; // destroyed last, so that it releases the objects
    const auto ship = std::make_shared<DeploymentStation>(QStringLiteral("ship"));
    ship->setIconId(QStringLiteral("boat"));
    auto path = std::make_unique<PositionSettingsPtp>(TPos{9.5, 50.0}, 0.0);
    path->setEndBehavior(EndBehaviourType::Stop);
    path->setMovements({{{9.5, 50.0}, 0, 10, true, QStringLiteral("port"), 0.0},
                        {{9.75, 50.0}, 0, 0, true, QString(), 0.0}});
    ship->setPositionSettings(path.release());
    const auto mobile = std::make_shared<DeploymentDevice>(QStringLiteral("mobile"));
    mobile->setName(QStringLiteral("On board"));
    mobile->setMachine(QStringLiteral("pc-1"));
    mobile->setDeviceType(QStringLiteral("Receiver"));
    mobile->setConfiguredStationId(QStringLiteral("boat"));
    mobile->setStation(ship);
    ship->addDevice(mobile);
    const auto alone = std::make_shared<DeploymentDevice>(QStringLiteral("alone"));
    alone->setName(QStringLiteral("Alone\u0001"));
    alone->setIconId(QStringLiteral("dish"));
    alone->setMachine(QStringLiteral("pc-2"));
    alone->setDeviceType(QStringLiteral("DF"));
    alone->receiverSettings() = {12.345678, -3.5};
    alone->setPosition({8.123456789012345, -48.5});
    const auto lost = std::make_shared<DeploymentDevice>(QStringLiteral("lost"));
    lost->setPositionSettings(nullptr);

    document.setName(QStringLiteral("Field & test"));
    document.setAuthor(QStringLiteral("M\u00FCller"));
    document.setPersistantId(QStringLiteral("p-1"));
    document.setDescription(QStringLiteral("two\r\nlines"));
    document.setDevices({mobile, alone, lost, nullptr});
    document.setStations({ship, nullptr});
    QCOMPARE(document.toXml(), fullXml());
}

void TestDeploymentDataXml::decimalComma()
{
    QLocale::setDefault(QLocale(QLocale::German));
    fullDocument();
    writtenDocument();
    QLocale::setDefault(QLocale::c());
}

void TestDeploymentDataXml::persistentId()
{
    VelaOS::Get().setClock([] { return std::uint64_t{1700000000999999}; });
    DeploymentDataXml document;
    document.setName(QStringLiteral("Field %2 test"));
    const QByteArray xml = document.toXml();
    VelaOS::Get().setClock({});
    QCOMPARE(document.persistantId(),
             QStringLiteral("Field %2 test-1700000000-") + CfgCenter::GetMachineId());
    QVERIFY(xml.contains("PersistantId=\"" + document.persistantId().toUtf8() + '"'));
    QCOMPARE(document.toXml(), xml); // the id is built only once
}

void TestDeploymentDataXml::readings_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* a_szName, const char* a_szChildren, const char* a_szExpected) {
        QTest::newRow(a_szName) << QByteArray(a_szChildren) << QString::fromLatin1(a_szExpected);
    };
    const char* const szBare = "a=  7/0  0,0";
    row("unknown elements",
        "<X><Device ID='x'/></X><Device ID='a'><X><Machine>m</Machine></X><ReceiverSettings><X/>"
        "</ReceiverSettings><Position><X/><Fixed><X/><Lat>1</Lat></Fixed></Position></Device>",
        "a=  7/0  0,1");
    row("without ids", "<Device Name='x'><Station>s</Station></Device><Station Name='y'/>", "");
    row("empty ids", "<Device ID=''/><Station ID=''/>", "=  7/0  0,0; =  [] 0,0");
    row("device twice",
        "<Device ID='a' Name='A'><Machine>m</Machine></Device><Device "
        "ID='a'><DeviceType>t</DeviceType></Device>",
        "a=A m 7/0 t 0,0");
    row("device at two stations",
        "<Device ID='a'><Station>s</Station></Device><Device ID='a'><Station>t</Station></Device>",
        "a=  7/0  @t; s=s  [] 0,0; t=t  [a] 0,0");
    row("station without an id", "<Device ID='a'><Station/></Device>", "a=  7/0  @; =  [a] 0,0");
    row("station of the device's id",
        "<Device ID='a' Name='A'><Station>a</Station></Device><Station ID='a'/>",
        "a=A  7/0  @a; a=a  [a] 0,0");
    row("station first",
        "<Station ID='s'><IconId>i</IconId></Station><Device ID='a'><Station>s</Station></Device>",
        "a=  7/0  @s; s=s i [a] 0,0");
    row("station without a name", "<Station ID='s'/><Station ID='t' Name=''/>", "s=s  [] 0,0; t=t  [] 0,0");
    row("station with another name",
        "<Station ID='s' Name='n'/><Station ID='s'><IconId>i</IconId></Station><Device "
        "ID='a'><Station>s</Station>"
        "</Device>",
        "a=  7/0  @n; s=n i [a] 0,0");
    row("position without a known form", "<Station ID='s'><Position><Orbit/></Position></Station>",
        "s=s  [] nowhere");
    row("coordinates of older documents",
        "<Station ID='s'><Position><Latitude>1</Latitude></Position></Station>", "s=s  [] nowhere");
    row("no numbers",
        "<Device ID='a'><ReceiverSettings><AntennaHeight>high</AntennaHeight><AntennaGain>1e999</AntennaGain>"
        "</ReceiverSettings></Device>",
        "a=  0/0  0,0");
    // A value that is cut off is not used.
    row("cut text", "<Device ID='a'><Machine>m</Machine><Machine>x", "a= m 7/0  0,0");
    row("cut number", "<Device ID='a'><ReceiverSettings><AntennaHeight>1", szBare);
    row("cut position", "<Device ID='a'><Position><Unknown>", szBare);
    row("cut coordinate", "<Device ID='a'><Position><Fixed><Lon>1</Lon><Lat>4", szBare);
    row("cut station", "<Device ID='a'><Station>s", szBare);
}

void TestDeploymentDataXml::readings()
{
    QFETCH(const QByteArray, children);
    QFETCH(const QString, expected);
    const bool bCut = QByteArray(QTest::currentDataTag()).startsWith("cut");
    DeploymentDataXml document;
    QVERIFY(document.fromXml("<SimulationDeployment FileFormatVersion='1'>" + children +
                             (bCut ? "" : "</SimulationDeployment>")));
    QCOMPARE(summary(document), expected);
    QCOMPARE(document.errorString().isEmpty(), !bCut);
}

void TestDeploymentDataXml::olderDocuments()
{
    const QByteArray children =
        "<Device ID='a'><Position><Longitude>8.5</Longitude><X/><Latitude>48</Latitude></Position>"
        "</Device><Device ID='b'><Position><Latitude>x</Latitude></Position></Device>"
        "<Station ID='s'><Position><Fixed><Lon>1</Lon></Fixed></Position></Station>";
    for (const char* szVersion : {"", " FileFormatVersion='0'", " FileFormatVersion='one'"}) {
        DeploymentDataXml document;
        QVERIFY(document.fromXml(QByteArray("<SimulationDeployment Description='D'") + szVersion + '>' +
                                 children + "</SimulationDeployment>"));
        QVERIFY(document.fileFormatVersion() == 0 && document.description() == u"D");
        QCOMPARE(summary(document), QStringLiteral("a=  7/0  8.5,48; b=  7/0  0,0; s=s  [] 0,0"));
        QVERIFY(document.toXml().contains("FileFormatVersion=\"1\""));
        // The version of the former document has no effect.
        QVERIFY(document.fromXml(fullXml()));
        QVERIFY(document.fromXml(QByteArray("<SimulationDeployment><Device ID='a'><Position><Longitude>2")));
        QCOMPARE(summary(document), QStringLiteral("a=  7/0  0,0"));
    }
}

/// A refused document leaves the former content unchanged and traces one line with
/// the reason.
void TestDeploymentDataXml::refused()
{
    DeploymentDataXml document;
    QVERIFY(document.fromXml(fullXml()));
    const QByteArray before = document.toXml();
    const Watch watch(document);
    const TraceCollector traces;
    QString sError;
    for (const char* szXml : {"", "<?xml version='1.0'?>\n<Scenario/>"}) {
        QVERIFY(!document.fromXml(szXml) && watch.alive() == 4);
        sError = document.errorString();
        QCOMPARE(document.toXml(), before);
    }
    QCOMPARE(sError, QStringLiteral("line 2, column 11: the root element is \"Scenario\", not "
                                    "\"SimulationDeployment\""));
    QCOMPARE(TraceCollector::lines().size(), 2);
    QCOMPARE(
        TraceCollector::lines().constLast(),
        QStringLiteral("Deployment refused: %1 (simulation/simulationdata/deploymentdataxml)").arg(sError));
}

void TestDeploymentDataXml::files()
{
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("deployment.xml"));
    DeploymentDataXml document;
    QVERIFY(!document.fromXmlFile(sFile) && !document.fromXml(static_cast<QIODevice*>(nullptr)));
    QVERIFY(document.fromXml(fullXml()));
    document.devices()[QStringLiteral("mobile")]->setConfiguredStationId(QStringLiteral("boat"));
    QVERIFY(document.toXmlFile(sFile) && !document.toXmlFile(folder.path()));
    DeploymentDataXml again;
    QVERIFY(again.fromXmlFile(sFile));
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    document.toXml(&buffer);
    QVERIFY(buffer.data() == fullXml() && buffer.reset());
    QVERIFY(again.fromXml(&buffer) && again.errorString().isEmpty());

    // A document that is too large to be read back does not replace a file.
    Limits::setValue(Limits::DocumentBytes, 1000);
    const TraceCollector traces;
    QVERIFY(document.toXml().isEmpty() && !document.toXmlFile(sFile));
    QCOMPARE(TraceCollector::lines(),
             QStringList(2, QStringLiteral("Cannot write a deployment: document bytes limit of 1000 exceeded "
                                           "(simulation/simulationdata/deploymentdataxml)")));
    Limits::setValue(Limits::DocumentBytes, 0);
    QVERIFY(again.fromXmlFile(sFile));
}

void TestDeploymentDataXml::cutAtEveryByte()
{
    DeploymentDataXml document;
    const QByteArray xml = fullXml().trimmed();
    const qsizetype iRootEnd = xml.indexOf('>', xml.indexOf("<SimulationDeployment")) + 1;
    for (qsizetype i = 0; i < xml.size(); ++i) {
        QCOMPARE(document.fromXml(xml.first(i)), i >= iRootEnd);
        QVERIFY(!document.errorString().isEmpty());
    }
    QVERIFY(document.fromXml(xml) && document.errorString().isEmpty());
}

void TestDeploymentDataXml::tooDeep()
{
    for (const QByteArray& start :
         {QByteArray(), QByteArray("<Device ID='b'>"), QByteArray("<Device ID='b'><Position>")}) {
        DeploymentDataXml document;
        QVERIFY(document.fromXml("<SimulationDeployment><Device ID='a'/>" + start +
                                 QByteArray("<x>").repeated(1'000'000)));
        QVERIFY(document.errorString().endsWith(QStringLiteral("nesting depth limit of 256 exceeded")));
        QVERIFY(document.devices().contains(QStringLiteral("a")));
    }
}

void TestDeploymentDataXml::tooMany()
{
    Limits::setValue(Limits::DeploymentObjects, 3);
    DeploymentDataXml document;
    for (const char* szFourth :
         {"<Device ID='d'/>", "<Station ID='d'/>", "<Device ID='a'><Station>d</Station></Device>"}) {
        QVERIFY(
            document.fromXml(QByteArray("<SimulationDeployment><Device ID='a'><Station>s</Station></Device>"
                                        "<Station ID='s'/><Device ID='b'/>\n<Device ID='b'/>") +
                             szFourth + "<Device ID='a' Name='late'/></SimulationDeployment>"));
        const QString sError = document.errorString();
        QVERIFY2(sError.startsWith(QStringLiteral("line 2,")) &&
                     sError.endsWith(QStringLiteral("objects of one deployment limit of 3 exceeded")),
                 qPrintable(sError));
        QCOMPARE(summary(document), QStringLiteral("a=  7/0  @s; b=  7/0  0,0; s=s  [a] 0,0"));
    }
    Limits::setValue(Limits::DeploymentObjects, 0);
}

/// The objects live until the last copy of the document is destroyed. The copies may be
/// destroyed in any order.
void TestDeploymentDataXml::copiesShareObjects()
{
    auto first = std::make_unique<DeploymentDataXml>(circles());
    auto second = std::make_unique<DeploymentDataXml>(*first);
    DeploymentDataXml third;
    third = *second;
    third = *&third;
    const Watch watch(third);
    QCOMPARE(watch.alive(), 3);
    QCOMPARE(third.toXml(), first->toXml());
    second->setDevices({}); // each copy has its own maps
    QCOMPARE(first->devices().size(), 2);
    first.reset();
    QCOMPARE(watch.alive(), 3);
    third = DeploymentDataXml();
    QCOMPARE(watch.alive(), 3); // the station of the second document holds the devices
    QCOMPARE(second->stations().first()->devices().size(), 2);
    second.reset();
    QCOMPARE(watch.alive(), 0);
}

void TestDeploymentDataXml::callersKeepObjects()
{
    // A caller keeps a device, and with it all objects that the device holds.
    auto document = std::make_unique<DeploymentDataXml>(circles());
    const Watch watch(*document);
    DevicePtr device = document->devices().first();
    document.reset();
    QCOMPARE(watch.alive(), 3);
    QCOMPARE(device->station()->devices().size(), 2);
    DeploymentDataXml::releaseObject(std::move(device));
    QCOMPARE(watch.alive(), 0);

    // A caller keeps the map of stations and a station's set of devices. The devices
    // are released by the next document that gets them.
    document = std::make_unique<DeploymentDataXml>(circles());
    const Watch again(*document);
    auto stations = document->stations();
    QSet<DevicePtr> members = stations.first()->devices();
    QVERIFY(document->fromXml("<SimulationDeployment/>"));
    QVERIFY(document->devices().isEmpty() && again.alive() == 3);
    document->setStations({stations.first()});
    stations.clear();
    document.reset();
    QCOMPARE(again.alive(), 3);
    QCOMPARE((*members.constBegin())->station()->devices().size(), 2);
    DeploymentDataXml last;
    last.setDevices(members);
    members.clear();
    QVERIFY(last.fromXml(s_circles));
    QCOMPARE(again.alive(), 0);
}

void TestDeploymentDataXml::replacedObjects()
{
    DeploymentDataXml document = circles();
    const Watch watch(document);
    DevicePtr device = document.devices().first();
    document.setDevices({device});
    QCOMPARE(watch.alive(), 3); // the station holds both devices
    device->setId(QStringLiteral("z"));
    document.setStations({});
    QVERIFY(document.devices().contains(QStringLiteral("a")) && watch.alive() == 3);
    // Only the device refers to the station. The station is therefore read back without
    // values.
    QVERIFY(document.fromXml(document.toXml()));
    QCOMPARE(summary(document), QStringLiteral("z=  7/0  @s; s=s  [z] 0,0"));
    DeploymentDataXml::releaseObject(std::move(device));
    QCOMPARE(watch.alive(), 0);
}

/// The writer reports ids that several objects share. The objects have the same id from
/// the start, or get it later.
void TestDeploymentDataXml::sharedIds()
{
    const auto device = [](const char* a_szId) {
        return std::make_shared<DeploymentDevice>(QString::fromLatin1(a_szId));
    };
    const QString sEnd =
        QStringLiteral(": only one object of each id is read back; give every object its own id");
    const auto a = std::make_shared<DeploymentStation>(QStringLiteral("a"));
    const auto b = std::make_shared<DeploymentStation>(QStringLiteral("b"));
    const DevicePtr twin = device("a");
    DeploymentDataXml document;
    document.setDevices({twin, device("a"), device("b")});
    document.setStations({a, b});
    const TraceCollector traces;
    QVERIFY(!document.toXml().isEmpty());
    const QString sDevices = QStringLiteral("2 devices have the id \"a\"") + sEnd;
    QCOMPARE(document.errorString(), sDevices);
    QCOMPARE(
        TraceCollector::lines(),
        QStringList{QStringLiteral("Deployment written: %1 (simulation/simulationdata/deploymentdataxml)")
                        .arg(sDevices)});

    document.setDevices({twin, device("b")});
    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("shared.xml"));
    QVERIFY(document.toXmlFile(sFile) && document.errorString().isEmpty());
    twin->setId(QStringLiteral("b"));
    b->setName(QStringLiteral("a"));
    QVERIFY(document.toXmlFile(sFile));
    QCOMPARE(document.errorString(), QStringLiteral("2 devices have the id \"b\"%1; 2 stations have the id "
                                                    "\"a\"%1")
                                         .arg(sEnd));
    QVERIFY(!document.toXmlFile(folder.path()) && document.errorString() == u"is a folder");
}

/// Elements that share an id are read as one object. The document keeps such ids
/// until other objects are set. A device and a station may share an id.
void TestDeploymentDataXml::mergedIds()
{
    using Ids = QMap<QString, qsizetype>;
    const QString sA = QStringLiteral("a");
    const QString sB = QStringLiteral("b");
    const Ids devices{{sA, 3}};
    const Ids stations{{sB, 2}};
    DeploymentDataXml document;
    QVERIFY(document.fromXml("<SimulationDeployment><Device ID='a'><Station>a</Station></Device>"
                             "<Device ID='a'/><Device ID='b'><Station>c</Station></Device><Device ID='a'/>"
                             "<Station ID='a'/><Station ID='b'/><Station ID='b'/></SimulationDeployment>"));
    QVERIFY(document.mergedDeviceIds() == devices && document.mergedStationIds() == stations);
    QVERIFY(document.isStationDescribed(sA) && !document.isStationDescribed(QStringLiteral("c")));
    DeploymentDataXml copy;
    copy = document;
    copy.setDevices({});
    QVERIFY(copy.mergedDeviceIds().isEmpty() && copy.mergedStationIds() == stations);
    copy.setStations({});
    QVERIFY(copy.mergedStationIds().isEmpty() && !copy.isStationDescribed(sA));
    QVERIFY(document.mergedDeviceIds() == devices);
    QVERIFY(document.fromXml("<SimulationDeployment><Device ID='a'/></SimulationDeployment>"));
    QVERIFY(document.mergedDeviceIds().isEmpty() && document.mergedStationIds().isEmpty());
}

QTEST_GUILESS_MAIN(TestDeploymentDataXml)
#include "tst_deploymentdataxml.moc"

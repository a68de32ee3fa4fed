#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/positionsettingsptp.h"

#include <QTest>

using namespace Simulation;

using DevicePtr = std::shared_ptr<DeploymentDevice>;
using StationPtr = std::shared_ptr<DeploymentStation>;

namespace {

bool isAt(const TPos& a_position, double a_dLongitude, double a_dLatitude)
{
    return a_position.longitude == a_dLongitude && a_position.latitude == a_dLatitude;
}

/// A device with every value set, without a station.
DevicePtr fullDevice()
{
    auto device = std::make_shared<DeploymentDevice>(QStringLiteral("d"));
    device->setName(QStringLiteral("Device"));
    device->setIconId(QStringLiteral("icon"));
    device->setMachine(QStringLiteral("machine"));
    device->setDeviceType(QStringLiteral("type"));
    device->setState(DeploymentDevice::State::Failed);
    device->setConfiguredStationId(QStringLiteral("configured"));
    device->receiverSettings() = {12.5, -3.0};
    device->setPositionSettings(std::make_unique<PositionSettingsPtp>(TPos{8.0, 48.0}, 0.5).release());
    return device;
}

/// Returns the values of a device that a document saves, followed by the device's state.
QByteArray valuesOf(const DevicePtr& a_device)
{
    DeploymentDataXml document;
    document.setPersistantId(QStringLiteral("p"));
    document.setDevices({a_device});
    return document.toXml() + QByteArray::number(static_cast<int>(a_device->state()));
}

} // namespace

class TestDeployment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newObjects();
    void membership();
    void positionOfStation();
    void withoutPosition();
    void copies();
    void released();
};

void TestDeployment::newObjects()
{
    const auto device = std::make_shared<DeploymentDevice>(QStringLiteral("d"));
    QVERIFY(device->type() == DeploymentObject::eTypes::Device && !device->hasStation());
    QVERIFY(device->receiverSettings().antennaHeight == 7.0 && device->receiverSettings().antennaGain == 0.0);
    QVERIFY(device->state() == DeploymentDevice::State::Unknown && isAt(device->position(), 0.0, 0.0));
    DeploymentStation station;
    QVERIFY(station.id().isEmpty() && station.devices().isEmpty() && isAt(station.position(), 0.0, 0.0));
    QCOMPARE(station.type(), DeploymentObject::eTypes::Station);
    station.setName(QStringLiteral("renamed")); // a station's name is its id
    QCOMPARE(station.id() + station.name(), QStringLiteral("renamedrenamed"));
}

void TestDeployment::membership()
{
    const auto device = fullDevice();
    DeploymentStation station;
    QVERIFY(!station.addDevice(nullptr) && !station.removeDevice(device));
    QVERIFY(station.addDevice(device) && !station.addDevice(device));
    QCOMPARE(station.devices(), QSet<DevicePtr>{device});
    QVERIFY(!device->hasStation()); // the device's station is set separately
    QVERIFY(station.removeDevice(device) && station.devices().isEmpty());
}

void TestDeployment::positionOfStation()
{
    const auto station = std::make_shared<DeploymentStation>(QStringLiteral("s"));
    const auto device = fullDevice();
    device->setStation(station);
    QVERIFY(device->hasStation() && isAt(device->position(), 0.0, 0.0));
    station->setPosition({9.0, 50.0});
    QVERIFY(isAt(device->position(), 9.0, 50.0) && isAt(device->positionAt(7), 9.0, 50.0));
    QCOMPARE(device->speedAt(0), 0.0);

    auto movement = std::make_unique<PositionSettingsPtp>(TPos{9.0, 50.0}, 0.0);
    MovementPoint north = movement->getPoint(1);
    north.position = {9.0, 51.0};
    north.dwellTime = 1000;
    movement->setPoint(1, north);
    const unsigned int uiHalf = movement->getArivalTime(1, nullptr, nullptr) / 2;
    station->setPositionSettings(movement.release());
    const TPos half = device->positionAt(uiHalf);
    QVERIFY2(half.longitude == 9.0 && qAbs(half.latitude - 50.5) < 1e-6,
             qPrintable(QString::number(half.latitude)));
    QCOMPARE(device->headingAt(uiHalf), 0.0);
    // Only the first point has been reached. No leg leads to it, so there is no
    // speed.
    QCOMPARE(device->speedAt(uiHalf), -1.0);

    // setPosition() moves the device's own path as a whole. It does not move the
    // station.
    device->setPosition({1.0, 2.0});
    QVERIFY(isAt(device->position(), 9.0, 50.0));
    device->setStation(nullptr);
    const auto* pPath = dynamic_cast<PositionSettingsPtp*>(device->positionSettings());
    QVERIFY(pPath != nullptr && isAt(pPath->getPoint(1).position, 1.5, 2.5));
}

void TestDeployment::withoutPosition()
{
    const auto station = std::make_shared<DeploymentStation>();
    const auto device = fullDevice();
    device->setStation(station);
    station->setPositionSettings(nullptr);
    for (DeploymentObject* pObject :
         {static_cast<DeploymentObject*>(station.get()), static_cast<DeploymentObject*>(device.get())}) {
        QVERIFY(pObject->positionSettings() == nullptr);
        QVERIFY(isAt(pObject->position(), 0.0, 0.0) && isAt(pObject->positionAt(5), 0.0, 0.0));
        QVERIFY(pObject->headingAt(5) == 0.0 && pObject->speedAt(5) == 0.0);
    }
    QVERIFY(std::static_pointer_cast<DeploymentObject>(station->clone())->positionSettings() == nullptr);
    station->setPosition({3.0, 4.0});
    QCOMPARE(station->positionSettings()->getType(), PositionSettingsType::Fixed);
    station->setPositionSettings(station->positionSettings());
    QVERIFY(isAt(device->position(), 3.0, 4.0));
}

void TestDeployment::copies()
{
    const auto device = fullDevice();
    const QByteArray values = valuesOf(device);
    const auto station = std::make_shared<DeploymentStation>(QStringLiteral("s"));
    device->setStation(station);
    station->addDevice(device);
    const auto copy = std::make_shared<DeploymentDevice>(QStringLiteral("x"));
    copy->copy(device);
    copy->copy(copy);
    copy->copy(nullptr);
    for (const auto& other : {std::dynamic_pointer_cast<DeploymentDevice>(device->clone()), copy}) {
        QVERIFY(other && other->station() == station && station->devices() == QSet<DevicePtr>{device});
        other->setStation(nullptr);
        QCOMPARE(valuesOf(other), values);
        other->setPosition({0.0, 0.0}); // the copy has position settings of its own
    }
    device->setStation(nullptr);
    QCOMPARE(valuesOf(device), values);

    station->copy(station);
    const auto other = std::dynamic_pointer_cast<DeploymentStation>(station->clone());
    QVERIFY(other && other->id() == u"s" && other->devices() == QSet<DevicePtr>{device});
    station->removeDevice(device);
    QCOMPARE(other->devices().size(), 1);

    // From an object of the other class, copy() takes the fields that both classes have.
    other->copy(device);
    QCOMPARE(other->id() + other->name() + other->iconId(), QStringLiteral("ddicon"));
    QVERIFY(isAt(other->position(), 8.0, 48.0) && other->devices().size() == 1);
    device->copy(station);
    QCOMPARE(device->id() + device->name() + device->machine(), QStringLiteral("ssmachine"));
}

/// Releases a station and a device that hold each other. Neither was ever in a
/// document. A clone of the station also holds the device.
void TestDeployment::released()
{
    StationPtr station = std::make_shared<DeploymentStation>(QStringLiteral("s"));
    DevicePtr device = fullDevice();
    device->setStation(station);
    station->addDevice(device);
    StationPtr clone = std::dynamic_pointer_cast<DeploymentStation>(station->clone());
    const std::weak_ptr<DeploymentStation> watch = station;
    DeploymentDataXml::releaseObjects({device, station, nullptr});
    station.reset();
    device.reset();
    QVERIFY(!watch.expired()); // the clone holds the device, which holds the station
    QCOMPARE((*clone->devices().constBegin())->station()->devices().size(), 1);
    DeploymentDataXml::releaseObject(std::move(clone));
    QVERIFY(watch.expired());
    DeploymentDataXml::releaseObject(nullptr);
}

QTEST_GUILESS_MAIN(TestDeployment)
#include "tst_deployment.moc"

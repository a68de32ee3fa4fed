#include "deploymentdataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/simulationlimits.h"

#include <QHash>

namespace Simulation {

namespace {

const XmlField<ReceiverSettings> s_receiverNumbers[] = {
    {QLatin1String("AntennaHeight"),
     [](XmlWriter& a_writer, const ReceiverSettings& a_settings) {
         a_writer.number(a_settings.antennaHeight);
     },
     [](XmlReader& a_reader, const XmlText& a_text, ReceiverSettings& a_settings) {
         a_settings.antennaHeight = a_reader.number(a_text, s_notNegative);
     }},
    {QLatin1String("AntennaGain"),
     [](XmlWriter& a_writer, const ReceiverSettings& a_settings) { a_writer.number(a_settings.antennaGain); },
     [](XmlReader& a_reader, const XmlText& a_text, ReceiverSettings& a_settings) {
         a_settings.antennaGain = a_reader.number(a_text);
     }},
};

/// The attributes of a device or station. They may have any order, and the object is
/// found by its id before its name is set.
struct ObjectAttributes
{
    const XmlText* pId = nullptr;
    const XmlText* pName = nullptr;
};

const XmlAttributeField<ObjectAttributes> s_objectAttributes[] = {
    {s_sId, [](XmlReader& /*a_reader*/, const XmlText& a_value,
               ObjectAttributes& a_attributes) { a_attributes.pId = &a_value; }},
    {s_sName,
     [](XmlReader& /*a_reader*/, const XmlText& a_value, ObjectAttributes& a_attributes) {
         a_attributes.pName = &a_value;
     },
     XmlOccurs::Once},
};

void writePosition(XmlWriter& a_writer, IPositionSettings* a_pSettings)
{
    // Without settings the element stays empty. An object with an empty or missing
    // element is read at (0, 0).
    a_writer.startElement(s_sPosition);
    writePositionSettings(a_writer, a_pSettings);
    a_writer.endElement();
}

/// Writes the start of a device's or station's element: its attributes and its icon.
void writeObjectStart(XmlWriter& a_writer, QLatin1String a_sElement, const DeploymentObject& a_object)
{
    a_writer.startElement(a_sElement);
    a_writer.attribute(s_sId, a_object.id());
    a_writer.attribute(s_sName, a_object.name());
    a_writer.textElement(s_sIconId, a_object.iconId());
}

/// Reports a device that has neither a station nor a position, and the position of a
/// device that has a station. The offsets are those of the device and of its position
/// (-1: there is none).
void reportPlace(XmlReader& a_reader, qsizetype a_iDevice, qsizetype a_iPosition, bool a_bStation)
{
    if (a_reader.deviations() != nullptr && a_iPosition >= 0 && a_bStation) {
        a_reader.deviations()->add(ReadingReport::s_sIgnoredValue, a_iPosition, [](ReadingEntry& a_entry) {
            a_entry.found = QStringLiteral("Position");
            a_entry.message =
                QStringLiteral("The device stands where its station stands: its own position is ignored.");
        });
    }
    if (a_reader.isCompletenessExpected() && a_iPosition < 0 && !a_bStation && !a_reader.hasError()) {
        a_reader.deviations()->add(ReadingReport::s_sMissingElement, a_iDevice, [](ReadingEntry& a_entry) {
            a_entry.message =
                QStringLiteral("One of the elements Station, Position is missing: the device is at "
                               "latitude 0 and longitude 0.");
        });
    }
}

/// Reports a station whose name is not its id.
void reportOtherName(XmlReader& a_reader, const XmlText& a_name, const QString& a_sId)
{
    if (a_name.string() == a_sId || a_reader.deviations() == nullptr) {
        return;
    }
    a_reader.deviations()->add(ReadingReport::s_sDerivedValue, a_name.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_name.bytes);
        a_entry.message =
            QStringLiteral("The name of a station is its id: the name becomes the id. Write the same "
                           "text for both.");
    });
}

} // namespace

/// The deployment while it is read, and the stations that devices name.
struct DeploymentDataXml::Reading
{
    /// A device while it is read.
    struct Device
    {
        Reading& reading;
        const std::shared_ptr<DeploymentDevice>& device;
        qsizetype position = -1; ///< offset of its own position; -1: there is none
    };
    /// A station while it is read.
    struct Station
    {
        const DeploymentDataXml& deployment;
        DeploymentStation& station;
    };

    /// A station that a device names, and where.
    struct Named
    {
        QString id;
        qsizetype offset;
    };

    static void readStationOf(XmlReader& a_reader, Device& a_device);
    void reportInvented(XmlReader& a_reader) const;

    DeploymentDataXml& deployment;
    std::vector<Named> named; ///< only when deviations are reported
};

/// The station may have its own element before or after the device's, which fills the same
/// object. A device that names several stations gets the last one.
void DeploymentDataXml::Reading::readStationOf(XmlReader& a_reader, Device& a_device)
{
    const auto text = a_reader.text();
    if (!text) {
        return;
    }
    const QString sId = text->string();
    DeploymentDataXml& deployment = a_device.reading.deployment;
    const auto station = deployment.objectForId(a_reader, deployment.m_stations, sId);
    if (!station) {
        return;
    }
    if (a_reader.deviations() != nullptr) {
        a_device.reading.named.push_back({sId, text->offset});
    }
    const auto& device = a_device.device;
    if (const auto former = device->station(); former && former != station) {
        former->removeDevice(device);
    }
    station->addDevice(device);
    device->setStation(station);
}

/// Reports the stations that devices name and no element describes.
void DeploymentDataXml::Reading::reportInvented(XmlReader& a_reader) const
{
    constexpr qsizetype iMostIds = 20'000;
    constexpr int iMostSuggestions = 20; // comparing with all ids costs O(n) for each
    int iSuggestions = 0;
    const QStringList described = deployment.m_stationElements.keys().mid(0, iMostIds);
    for (const Named& station : named) {
        if (deployment.m_stationElements.contains(station.id)) {
            continue;
        }
        a_reader.deviations()->add(
            ReadingReport::s_sInventedObject, station.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(station.id.toUtf8());
                a_entry.message =
                    QStringLiteral("No element describes this station: one without data is created, at "
                                   "latitude 0 and longitude 0.");
                a_entry.suggestion = ++iSuggestions <= iMostSuggestions
                                         ? similarName(a_entry.found.trimmed(), described)
                                         : QString();
            });
    }
}

void DeploymentDataXml::readChildren(XmlReader& a_reader)
{
    static const XmlChild<Reading> s_children[] = {
        {s_sDevice,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.deployment.readDevice(a_childReader, a_reading);
         },
         XmlOccurs::AnyTimes},
        {s_sStation,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.deployment.readStation(a_childReader);
         },
         XmlOccurs::AnyTimes},
        {s_sDescription,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.deployment.m_sDescription =
                 readText(a_childReader, a_reading.deployment.m_sDescription);
         }},
    };
    Reading reading{*this, {}};
    readXmlChildren(a_reader, reading, s_children);
    reading.reportInvented(a_reader);
}

/// The object with the given id, created if there is none. If the deployment is full,
/// returns null and raises an error in the reader, which ends the reading.
template<typename Object>
std::shared_ptr<Object> DeploymentDataXml::objectForId(XmlReader& a_reader,
                                                       QMap<QString, std::shared_ptr<Object>>& a_objects,
                                                       const QString& a_sId) const
{
    const auto found = a_objects.constFind(a_sId);
    if (found != a_objects.constEnd()) {
        return *found;
    }
    const auto uiObjects = static_cast<std::uint64_t>(m_devices.size() + m_stations.size());
    if (uiObjects >= Limits::value(Limits::DeploymentObjects)) {
        a_reader.raiseError(Limits::exceeded(Limits::DeploymentObjects));
        return nullptr;
    }
    return *a_objects.insert(a_sId, std::make_shared<Object>(a_sId));
}

TPos DeploymentDataXml::readPosition(XmlReader& a_reader)
{
    // In version 0 the numbers have longer names.
    static const XmlField<TPos> s_fields[] = {
        {s_sLongitude, s_coordinateFields[0].write, s_coordinateFields[0].read},
        {s_sLatitude, s_coordinateFields[1].write, s_coordinateFields[1].read},
    };
    TPos position;
    readXmlChildren(a_reader, position, s_fields);
    return position;
}

void DeploymentDataXml::readObjectPosition(XmlReader& a_reader, DeploymentObject& a_object) const
{
    if (m_uiFileFormatVersion == 0) {
        const TPos position = readPosition(a_reader);
        if (!a_reader.hasError()) {
            a_object.setPosition(position);
        }
        return;
    }
    std::unique_ptr<IPositionSettings> settings = readPositionSettings(a_reader, true);
    // After an error the position may be incomplete, and therefore wrong.
    if (!a_reader.hasError()) {
        a_object.setPositionSettings(settings.release());
    }
}

void DeploymentDataXml::readDevice(XmlReader& a_reader, Reading& a_reading)
{
    using Device = Reading::Device;
    static const XmlChild<Device> s_children[] = {
        {s_sIconId,
         [](XmlReader& a_childReader, Device& a_device) {
             a_device.device->setIconId(readText(a_childReader, a_device.device->iconId()));
         },
         XmlOccurs::Once},
        {s_sMachine,
         [](XmlReader& a_childReader, Device& a_device) {
             a_device.device->setMachine(readText(a_childReader, a_device.device->machine()));
         },
         XmlOccurs::Once},
        // This element is written for other programs. It is not read, because only the
        // device itself sets the configured id.
        {s_sConfiguredStationId,
         [](XmlReader& a_childReader, Device& /*a_device*/) { (void)a_childReader.text(); }, XmlOccurs::Once},
        {s_sDeviceType,
         [](XmlReader& a_childReader, Device& a_device) {
             a_device.device->setDeviceType(readText(a_childReader, a_device.device->deviceType()));
         },
         XmlOccurs::Once},
        {s_sReceiverSettings,
         [](XmlReader& a_childReader, Device& a_device) {
             readXmlChildren(a_childReader, a_device.device->receiverSettings(), s_receiverNumbers);
         },
         XmlOccurs::Once},
        {s_sStation, &Reading::readStationOf},
        {s_sPosition,
         [](XmlReader& a_childReader, Device& a_device) {
             a_device.position = a_childReader.offset();
             a_device.reading.deployment.readObjectPosition(a_childReader, *a_device.device);
         }},
    };
    const qsizetype iOffset = a_reader.offset();
    ObjectAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_objectAttributes);
    if (attributes.pId == nullptr) {
        reportMissingId(a_reader);
        a_reader.skip();
        return;
    }
    const QString sId = attributes.pId->string();
    const auto device = objectForId(a_reader, m_devices, sId);
    if (!device) {
        return;
    }
    if (++m_deviceElements[sId] > 1) {
        reportMerged(a_reader, *attributes.pId);
    }
    if (attributes.pName != nullptr) {
        device->setName(attributes.pName->string());
    }
    Device reading{a_reading, device};
    readXmlChildren(a_reader, reading, s_children);
    reportPlace(a_reader, iOffset, reading.position, device->hasStation());
}

void DeploymentDataXml::writeDevice(XmlWriter& a_writer, const DeploymentDevice& a_device)
{
    writeObjectStart(a_writer, s_sDevice, a_device);
    a_writer.textElement(s_sMachine, a_device.machine());
    a_writer.textElement(s_sConfiguredStationId, a_device.configuredStationId());
    a_writer.textElement(s_sDeviceType, a_device.deviceType());
    writeReceiverSettings(a_writer, a_device.receiverSettings());
    if (const auto station = a_device.station()) {
        a_writer.textElement(s_sStation, station->id());
    } else {
        writePosition(a_writer, a_device.positionSettings());
    }
    a_writer.endElement();
}

void DeploymentDataXml::writeReceiverSettings(XmlWriter& a_writer, const ReceiverSettings& a_settings)
{
    a_writer.startElement(s_sReceiverSettings);
    writeXmlFields(a_writer, a_settings, s_receiverNumbers);
    a_writer.endElement();
}

void DeploymentDataXml::readStation(XmlReader& a_reader)
{
    using Station = Reading::Station;
    static const XmlChild<Station> s_children[] = {
        {s_sIconId,
         [](XmlReader& a_childReader, Station& a_station) {
             a_station.station.setIconId(readText(a_childReader, a_station.station.iconId()));
         },
         XmlOccurs::Once},
        {s_sPosition,
         [](XmlReader& a_childReader, Station& a_station) {
             a_station.deployment.readObjectPosition(a_childReader, a_station.station);
         },
         XmlOccurs::Once},
    };
    ObjectAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_objectAttributes);
    if (attributes.pId == nullptr) {
        reportMissingId(a_reader);
        a_reader.skip();
        return;
    }
    const QString sId = attributes.pId->string();
    const auto station = objectForId(a_reader, m_stations, sId);
    if (!station) {
        return;
    }
    if (++m_stationElements[sId] > 1) {
        reportMerged(a_reader, *attributes.pId);
    }
    // A station's name is its id: the attribute "Name" changes the id, but the document
    // still holds the station under the attribute "ID".
    if (attributes.pName != nullptr && !attributes.pName->bytes.isEmpty()) {
        reportOtherName(a_reader, *attributes.pName, sId);
        station->setName(attributes.pName->string());
    }
    Station reading{*this, *station};
    readXmlChildren(a_reader, reading, s_children);
}

void DeploymentDataXml::writeStation(XmlWriter& a_writer, const DeploymentStation& a_station)
{
    writeObjectStart(a_writer, s_sStation, a_station);
    writePosition(a_writer, a_station.positionSettings());
    a_writer.endElement();
}

} // namespace Simulation

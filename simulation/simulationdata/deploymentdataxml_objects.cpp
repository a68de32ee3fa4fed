#include "deploymentdataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QXmlStreamWriter>

#include <array>

namespace Simulation {

namespace {

/// The elements with text that follow the icon in a "Device" element.
const std::array<XmlField<DeploymentDevice>, 3> s_deviceTexts{{
    {QStringLiteral("Machine"), [](const DeploymentDevice& a_device) { return a_device.machine(); },
     [](DeploymentDevice& a_device, QStringView a_sText) { a_device.setMachine(a_sText.toString()); }},
    // This element is written for other programs. It is not read, because only the
    // device itself sets the configured id.
    {QStringLiteral("ConfiguredStationID"),
     [](const DeploymentDevice& a_device) { return a_device.configuredStationId(); },
     [](DeploymentDevice& /*a_device*/, QStringView /*a_sText*/) {}},
    {QStringLiteral("DeviceType"), [](const DeploymentDevice& a_device) { return a_device.deviceType(); },
     [](DeploymentDevice& a_device, QStringView a_sText) { a_device.setDeviceType(a_sText.toString()); }},
}};

const std::array<XmlField<ReceiverSettings>, 2> s_receiverNumbers{{
    {QStringLiteral("AntennaHeight"),
     [](const ReceiverSettings& a_settings) { return numberText(a_settings.antennaHeight); },
     [](ReceiverSettings& a_settings, QStringView a_sText) {
         a_settings.antennaHeight = readDouble(a_sText);
     }},
    {QStringLiteral("AntennaGain"),
     [](const ReceiverSettings& a_settings) { return numberText(a_settings.antennaGain); },
     [](ReceiverSettings& a_settings, QStringView a_sText) { a_settings.antennaGain = readDouble(a_sText); }},
}};

void writePosition(QXmlStreamWriter& a_writer, IPositionSettings* a_pSettings)
{
    // Without settings the element stays empty. An object with an empty or missing
    // element is read at (0, 0).
    a_writer.writeStartElement(s_sPosition);
    CommonDataXml::writePositionSettings(a_pSettings, a_writer);
    a_writer.writeEndElement();
}

/// Begins the element of a device or station. Writes the attributes and the icon, with
/// which both kinds of element begin.
void writeObjectStart(QXmlStreamWriter& a_writer, const QString& a_sElement, const DeploymentObject& a_object)
{
    a_writer.writeStartElement(a_sElement);
    writeXmlAttribute(a_writer, s_sId, a_object.id());
    writeXmlAttribute(a_writer, s_sName, a_object.name());
    writeXmlTextElement(a_writer, s_sIconId, a_object.iconId());
}

} // namespace

/// The object with the given id, created if there is none. If the deployment is full,
/// returns null and raises an error in the reader, which ends the reading.
template<typename Object>
std::shared_ptr<Object> DeploymentDataXml::objectForId(QXmlStreamReader& a_reader,
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

/// Reads an icon or a position, the children that devices and stations have in common.
/// Returns false for any other child.
bool DeploymentDataXml::readObjectChild(QXmlStreamReader& a_reader, QStringView a_sName,
                                        DeploymentObject& a_object) const
{
    if (a_sName == s_sIconId) {
        a_object.setIconId(elementText(a_reader).value_or(a_object.iconId()));
    } else if (a_sName != s_sPosition) {
        return false;
    } else if (m_uiFileFormatVersion == 0) {
        const TPos position = readPosition(a_reader);
        if (!a_reader.hasError()) {
            a_object.setPosition(position);
        }
    } else {
        std::unique_ptr<IPositionSettings> settings(CommonDataXml::readPositionSettings(a_reader));
        // After an error the position may be incomplete, and therefore wrong.
        if (!a_reader.hasError()) {
            a_object.setPositionSettings(settings.release());
        }
    }
    return true;
}

TPos DeploymentDataXml::readPosition(QXmlStreamReader& a_reader)
{
    return readCoordinate(a_reader, s_sLongitude, s_sLatitude);
}

void DeploymentDataXml::readDevice(QXmlStreamReader& a_reader)
{
    const QXmlStreamAttributes attributes = a_reader.attributes();
    if (!attributes.hasAttribute(s_sId)) {
        skipElement(a_reader);
        return;
    }
    const QString sId = attributes.value(s_sId).toString();
    const auto device = objectForId(a_reader, m_devices, sId);
    if (!device) {
        return;
    }
    ++m_deviceElements[sId];
    if (attributes.hasAttribute(s_sName)) {
        device->setName(attributes.value(s_sName).toString());
    }
    forEachChild(a_reader, [&](QStringView a_sName) { return readDeviceChild(a_reader, a_sName, device); });
}

bool DeploymentDataXml::readDeviceChild(QXmlStreamReader& a_reader, QStringView a_sName,
                                        const std::shared_ptr<DeploymentDevice>& a_device)
{
    if (a_sName == s_sReceiverSettings) {
        readReceiverSettings(a_reader, a_device->receiverSettings());
    } else if (a_sName == s_sStation) {
        readDeviceStation(a_reader, a_device);
    } else {
        return readXmlField(a_reader, a_sName, s_deviceTexts, *a_device) ||
               readObjectChild(a_reader, a_sName, *a_device);
    }
    return true;
}

/// Reads the id of the device's station. The station may have its own element earlier or
/// later in the document. That element fills the same object. A device that names
/// several stations gets the last one.
void DeploymentDataXml::readDeviceStation(QXmlStreamReader& a_reader,
                                          const std::shared_ptr<DeploymentDevice>& a_device)
{
    const auto sId = elementText(a_reader);
    const auto station = sId ? objectForId(a_reader, m_stations, *sId) : nullptr;
    if (!station) {
        return;
    }
    if (const auto former = a_device->station(); former && former != station) {
        former->removeDevice(a_device);
    }
    station->addDevice(a_device);
    a_device->setStation(station);
}

void DeploymentDataXml::writeDevice(QXmlStreamWriter& a_writer, const DeploymentDevice& a_device)
{
    writeObjectStart(a_writer, s_sDevice, a_device);
    writeXmlFields(a_writer, s_deviceTexts, a_device);
    writeReceiverSettings(a_writer, a_device.receiverSettings());
    if (const auto station = a_device.station()) {
        writeXmlTextElement(a_writer, s_sStation, station->id());
    } else {
        writePosition(a_writer, a_device.positionSettings());
    }
    a_writer.writeEndElement();
}

void DeploymentDataXml::readReceiverSettings(QXmlStreamReader& a_reader, ReceiverSettings& a_settings)
{
    forEachChild(a_reader, [&](QStringView a_sName) {
        return readXmlField(a_reader, a_sName, s_receiverNumbers, a_settings);
    });
}

void DeploymentDataXml::writeReceiverSettings(QXmlStreamWriter& a_writer, const ReceiverSettings& a_settings)
{
    a_writer.writeStartElement(s_sReceiverSettings);
    writeXmlFields(a_writer, s_receiverNumbers, a_settings);
    a_writer.writeEndElement();
}

void DeploymentDataXml::readStation(QXmlStreamReader& a_reader)
{
    const QXmlStreamAttributes attributes = a_reader.attributes();
    if (!attributes.hasAttribute(s_sId)) {
        skipElement(a_reader);
        return;
    }
    const QString sId = attributes.value(s_sId).toString();
    const auto station = objectForId(a_reader, m_stations, sId);
    if (!station) {
        return;
    }
    ++m_stationElements[sId];
    // A station's name is its id. The attribute "Name" therefore changes the id, but the
    // key of the station in the document remains the value of the attribute "ID".
    if (const auto sName = attributes.value(s_sName); !sName.isEmpty()) {
        station->setName(sName.toString());
    }
    forEachChild(a_reader, [&](QStringView a_sName) { return readObjectChild(a_reader, a_sName, *station); });
}

void DeploymentDataXml::writeStation(QXmlStreamWriter& a_writer, const DeploymentStation& a_station)
{
    writeObjectStart(a_writer, s_sStation, a_station);
    writePosition(a_writer, a_station.positionSettings());
    a_writer.writeEndElement();
}

} // namespace Simulation

#include "deploymentdataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "objectreleaser_p.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/xml/documentformat_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace Simulation {

namespace {

const DocumentKind s_kind("simulation/simulationdata/deploymentdataxml", QStringLiteral("Deployment"),
                          QLatin1String("SimulationDeployment"));

/// The error text of SharedIds for the objects.
template<typename Objects>
QString sharedIdsOf(const Objects& a_objects, const char* a_szNoun)
{
    SharedIds ids;
    for (const auto& object : a_objects) {
        if (object) {
            ids.add(object->id());
        }
    }
    return ids.text(a_szNoun);
}

QMap<QString, qsizetype> severalOf(QMap<QString, qsizetype> a_counts)
{
    a_counts.removeIf([](const auto& a_entry) { return a_entry.value() < 2; });
    return a_counts;
}

template<typename Object>
QMap<QString, std::shared_ptr<Object>> mapOf(const QSet<std::shared_ptr<Object>>& a_objects)
{
    QMap<QString, std::shared_ptr<Object>> map;
    for (const std::shared_ptr<Object>& object : a_objects) {
        if (object) {
            map.insert(object->id(), object);
        }
    }
    return map;
}

} // namespace

DeploymentDataXml::DeploymentDataXml() = default;

DeploymentDataXml::DeploymentDataXml(const DeploymentDataXml& a_other) = default;

DeploymentDataXml& DeploymentDataXml::operator=(const DeploymentDataXml& a_other)
{
    if (this != &a_other) {
        clear();
        m_sName = a_other.m_sName;
        m_sDescription = a_other.m_sDescription;
        m_sAuthor = a_other.m_sAuthor;
        m_sPersistantId = a_other.m_sPersistantId;
        m_uiFileFormatVersion = a_other.m_uiFileFormatVersion;
        m_devices = a_other.m_devices;
        m_stations = a_other.m_stations;
        m_sErrorString = a_other.m_sErrorString;
        m_report = a_other.m_report;
        m_sSharedDevices = a_other.m_sSharedDevices;
        m_sSharedStations = a_other.m_sSharedStations;
        m_deviceElements = a_other.m_deviceElements;
        m_stationElements = a_other.m_stationElements;
    }
    return *this;
}

DeploymentDataXml::~DeploymentDataXml()
{
    clear();
}

void DeploymentDataXml::clear()
{
    m_sSharedDevices.clear();
    m_sSharedStations.clear();
    m_deviceElements.clear();
    m_stationElements.clear();
    ObjectReleaser::release(m_devices, m_stations);
}

bool DeploymentDataXml::fromXmlFile(const QString& a_sFile)
{
    const std::optional<QByteArray> xml = s_kind.load(a_sFile, &m_sErrorString, &m_report);
    return xml && fromXml(*xml);
}

bool DeploymentDataXml::fromXml(QIODevice* a_pDevice)
{
    const std::optional<QByteArray> xml = s_kind.load(a_pDevice, &m_sErrorString, &m_report);
    return xml && fromXml(*xml);
}

bool DeploymentDataXml::fromXml(const QByteArray& a_xml)
{
    return s_kind.read(a_xml, &m_sErrorString, &m_report, [this](XmlReader& a_reader) {
        clear();
        readHeader(a_reader);
        readChildren(a_reader);
        return QString();
    });
}

QMap<QString, qsizetype> DeploymentDataXml::mergedDeviceIds() const
{
    return severalOf(m_deviceElements);
}

QMap<QString, qsizetype> DeploymentDataXml::mergedStationIds() const
{
    return severalOf(m_stationElements);
}

bool DeploymentDataXml::isStationDescribed(const QString& a_sId) const
{
    return m_stationElements.contains(a_sId);
}

QByteArray DeploymentDataXml::toXml()
{
    if (m_sPersistantId.isEmpty()) {
        m_sPersistantId = createPersistentId(m_sName);
    }
    const QByteArray xml =
        s_kind.text([this](XmlWriter& a_writer, const DocumentKind::StillReadable& a_stillReadable) {
            writeHeader(a_writer);
            return std::all_of(m_devices.cbegin(), m_devices.cend(),
                               [&](const auto& a_device) {
                                   writeDevice(a_writer, *a_device);
                                   return a_stillReadable();
                               }) &&
                   std::all_of(m_stations.cbegin(), m_stations.cend(), [&](const auto& a_station) {
                       writeStation(a_writer, *a_station);
                       return a_stillReadable();
                   });
        });
    // Ids may have changed since the objects were set.
    QStringList shared{m_sSharedDevices, sharedIdsOf(m_devices, "devices"), m_sSharedStations,
                       sharedIdsOf(m_stations, "stations")};
    shared.removeAll(QString());
    return s_kind.finished(xml, shared.join(QStringLiteral("; ")), &m_sErrorString);
}

void DeploymentDataXml::toXml(QIODevice* a_pDevice)
{
    s_kind.write(a_pDevice, toXml(), &m_sErrorString);
}

bool DeploymentDataXml::toXmlFile(const QString& a_sFile)
{
    const QByteArray xml = toXml();
    return !xml.isEmpty() && saveDocument(a_sFile, xml, &m_sErrorString);
}

void DeploymentDataXml::setDevices(const QSet<std::shared_ptr<DeploymentDevice>>& a_devices)
{
    m_deviceElements.clear();
    m_sSharedDevices = sharedIdsOf(a_devices, "devices");
    ObjectReleaser::replace(m_devices, mapOf(a_devices));
}

void DeploymentDataXml::setStations(const QSet<std::shared_ptr<DeploymentStation>>& a_stations)
{
    m_stationElements.clear();
    m_sSharedStations = sharedIdsOf(a_stations, "stations");
    ObjectReleaser::replace(m_stations, mapOf(a_stations));
    for (auto station = m_stations.keyBegin(); station != m_stations.keyEnd(); ++station) {
        m_stationElements.insert(*station, 1);
    }
}

void DeploymentDataXml::releaseObjects(QSet<std::shared_ptr<DeploymentObject>>&& a_objects)
{
    ObjectReleaser::release(a_objects);
}

void DeploymentDataXml::releaseObject(std::shared_ptr<DeploymentObject> a_object)
{
    ObjectReleaser::release(a_object);
}

void DeploymentDataXml::readHeader(XmlReader& a_reader)
{
    static const XmlAttributeField<DeploymentDataXml> s_fields[] = {
        {s_sFileFormatVersion,
         [](XmlReader& a_fieldReader, const XmlText& a_value, DeploymentDataXml& a_deployment) {
             a_deployment.m_uiFileFormatVersion = readVersion(a_fieldReader, a_value, s_uiFileFormatVersion);
         }},
        {s_sName,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, DeploymentDataXml& a_deployment) {
             a_deployment.m_sName = a_value.string();
         },
         XmlOccurs::Once},
        {s_sAuthor,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, DeploymentDataXml& a_deployment) {
             a_deployment.m_sAuthor = a_value.string();
         },
         XmlOccurs::Once},
        {s_sPersistantId,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, DeploymentDataXml& a_deployment) {
             a_deployment.m_sPersistantId = a_value.string();
         },
         XmlOccurs::Once},
        {s_sDescription,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, DeploymentDataXml& a_deployment) {
             a_deployment.m_sDescription = a_value.string();
         }},
    };
    m_uiFileFormatVersion = 0;
    m_sName = m_sAuthor = m_sPersistantId = m_sDescription = QString();
    if (a_reader.attribute(s_sFileFormatVersion) == nullptr) {
        reportMissingVersion(a_reader);
    }
    readXmlAttributes(a_reader, *this, s_fields);
}

void DeploymentDataXml::writeHeader(XmlWriter& a_writer) const
{
    a_writer.wholeAttribute(s_sFileFormatVersion, s_uiFileFormatVersion);
    a_writer.attribute(s_sName, m_sName);
    a_writer.attribute(s_sAuthor, m_sAuthor);
    a_writer.attribute(s_sPersistantId, m_sPersistantId);
    a_writer.textElement(s_sDescription, m_sDescription);
}

} // namespace Simulation

#ifndef SIMULATIONDATA_DEPLOYMENTDATAXML_H
#define SIMULATIONDATA_DEPLOYMENTDATAXML_H

#include "simulationdata/readingreport.h"
#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <cstdint>
#include <memory>

class QIODevice;

namespace Simulation {

class DeploymentDevice;
class DeploymentObject;
class DeploymentStation;
class XmlReader;
class XmlWriter;
struct ReceiverSettings;
struct XmlText;

/// The deployment document: the stations and devices of one deployment and its
/// header, read from and written to XML (root "SimulationDeployment", format
/// version 1).
///
/// A value type: copies share the objects but have their own maps. A document holds
/// its objects strongly. The document releases its objects when they are replaced and
/// when the document is read again, assigned or destroyed. Objects without another
/// holder are then freed, even when they hold each other. Used from one thread. A new
/// document is empty.
class SIMULATIONDATA_EXPORT DeploymentDataXml
{
public:
    /// The format version that is written.
    static constexpr std::uint32_t s_uiFileFormatVersion = 1;

    DeploymentDataXml();
    DeploymentDataXml(const DeploymentDataXml& a_other);
    DeploymentDataXml& operator=(const DeploymentDataXml& a_other);
    ~DeploymentDataXml();

    /// Works like ScenarioDataXml::fromXml(), with the root "SimulationDeployment".
    /// Limits::DeploymentObjects counts stations and devices together.
    bool fromXml(const QByteArray& a_xml);
    bool fromXml(QIODevice* a_pDevice);
    bool fromXmlFile(const QString& a_sFile);

    /// Works like ScenarioDataXml::errorString().
    [[nodiscard]] QString errorString() const { return m_sErrorString; }

    /// Works like ScenarioDataXml::report().
    [[nodiscard]] const ReadingReport& report() const { return m_report; }

    /// The ids that occur in several "Device" (or "Station") elements of the
    /// document last read. The value is the number of elements with that id.
    /// Elements with the same id were read as one object: later elements overwrite
    /// earlier ones. A station's id inside a "Device" element does not count. The map
    /// is empty after setDevices() (or setStations()).
    [[nodiscard]] QMap<QString, qsizetype> mergedDeviceIds() const;
    [[nodiscard]] QMap<QString, qsizetype> mergedStationIds() const;
    /// Whether the document last read has a "Station" element with this key, or
    /// setStations() set the station. Otherwise a station that devices name has no data
    /// and is at (0, 0).
    [[nodiscard]] bool isStationDescribed(const QString& a_sId) const;

    /// Work like ScenarioDataXml::toXml() and toXmlFile(). A reader keeps only one
    /// of several devices (or stations) with the same id. So errorString() and one
    /// trace report each id that several objects have now, or had when the objects
    /// were set.
    [[nodiscard]] QByteArray toXml();
    void toXml(QIODevice* a_pDevice);
    [[nodiscard]] bool toXmlFile(const QString& a_sFile);

    [[nodiscard]] QString name() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] QString description() const { return m_sDescription; }
    void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }
    [[nodiscard]] QString author() const { return m_sAuthor; }
    void setAuthor(const QString& a_sAuthor) { m_sAuthor = a_sAuthor; }
    /// The identity that survives renaming. The spelling is part of the interface.
    [[nodiscard]] QString persistantId() const { return m_sPersistantId; }
    void setPersistantId(const QString& a_sId) { m_sPersistantId = a_sId; }
    /// The version of the document last read. 0 when the document names no version,
    /// or when no document was read.
    [[nodiscard]] std::uint32_t fileFormatVersion() const { return m_uiFileFormatVersion; }

    /// The objects by their ids. An object keeps the key that it had when it was
    /// read or set. The document is written in the order of the keys.
    [[nodiscard]] const QMap<QString, std::shared_ptr<DeploymentDevice>>& devices() const
    {
        return m_devices;
    }
    [[nodiscard]] const QMap<QString, std::shared_ptr<DeploymentStation>>& stations() const
    {
        return m_stations;
    }
    /// Replace the objects and key them by their ids. Null is left out. Of several
    /// objects with the same id, only one is kept, chosen arbitrarily; toXml() reports
    /// such ids.
    ///
    /// Also set the stations of all devices with setStations(). Otherwise, reading
    /// the saved document gives such a station without data, at (0, 0). A reader
    /// stops at Limits::DeploymentObjects, so it does not read a larger document
    /// completely.
    void setDevices(const QSet<std::shared_ptr<DeploymentDevice>>& a_devices);
    void setStations(const QSet<std::shared_ptr<DeploymentStation>>& a_stations);

    /// Works like ScenarioDataXml::releaseObjects(), for stations and their devices.
    static void releaseObjects(QSet<std::shared_ptr<DeploymentObject>>&& a_objects);
    static void releaseObject(std::shared_ptr<DeploymentObject> a_object);

private:
    // The document as a whole (deploymentdataxml.cpp)
    void clear();
    void readHeader(XmlReader& a_reader);
    void writeHeader(XmlWriter& a_writer) const;

    // Its objects (deploymentdataxml_objects.cpp)
    struct Reading;
    static void writeDevice(XmlWriter& a_writer, const DeploymentDevice& a_device);
    static void writeReceiverSettings(XmlWriter& a_writer, const ReceiverSettings& a_settings);
    static void writeStation(XmlWriter& a_writer, const DeploymentStation& a_station);
    void readChildren(XmlReader& a_reader);
    void readDevice(XmlReader& a_reader, Reading& a_reading);
    void readStation(XmlReader& a_reader);
    [[nodiscard]] static TPos readPosition(XmlReader& a_reader);
    void readObjectPosition(XmlReader& a_reader, DeploymentObject& a_object) const;

    template<typename Object>
    std::shared_ptr<Object> objectForId(XmlReader& a_reader,
                                        QMap<QString, std::shared_ptr<Object>>& a_objects,
                                        const QString& a_sId) const;

    QString m_sName;
    QString m_sDescription;
    QString m_sAuthor;
    QString m_sPersistantId;
    std::uint32_t m_uiFileFormatVersion = 0;
    QMap<QString, std::shared_ptr<DeploymentDevice>> m_devices;
    QMap<QString, std::shared_ptr<DeploymentStation>> m_stations;
    QString m_sErrorString;
    ReadingReport m_report;
    /// Error texts of setDevices() and setStations() for shared ids; usually empty.
    QString m_sSharedDevices;
    QString m_sSharedStations;
    QMap<QString, qsizetype> m_deviceElements;  ///< "Device" elements per id, as last read
    QMap<QString, qsizetype> m_stationElements; ///< "Station" elements per id; 1 for a station that was set
};

} // namespace Simulation

#endif

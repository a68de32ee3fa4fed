#ifndef SIMULATIONDATA_DEPLOYMENTDATAXML_H
#define SIMULATIONDATA_DEPLOYMENTDATAXML_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <memory>

class QIODevice;
class QXmlStreamAttributes;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class DeploymentDevice;
class DeploymentObject;
class DeploymentStation;
struct ReceiverSettings;

/// The deployment document: the stations and devices of one deployment and its
/// header, read from and written to XML (root "SimulationDeployment", format
/// version 1).
///
/// A value type: copies share the objects, not the maps. A document holds its
/// objects strongly; the last one that does takes apart those that nothing else
/// holds when it is cleared, read again, assigned or destroyed. Used from one
/// thread. A new document is empty.
class SIMULATIONDATA_EXPORT DeploymentDataXml
{
public:
    /// The version that is written.
    static constexpr std::uint32_t s_uiFileFormatVersion = 1;

    DeploymentDataXml();
    DeploymentDataXml(const DeploymentDataXml& a_other);
    DeploymentDataXml& operator=(const DeploymentDataXml& a_other);
    ~DeploymentDataXml();

    /// As ScenarioDataXml::fromXml(), with the root "SimulationDeployment".
    /// Limits::DeploymentObjects counts stations and devices together.
    bool fromXml(const QByteArray& a_xml);
    bool fromXml(QIODevice* a_pDevice);
    bool fromXmlFile(const QString& a_sFile);

    /// As ScenarioDataXml::errorString().
    [[nodiscard]] QString errorString() const { return m_sErrorString; }

    /// The ids that several "Device", or "Station", elements of the document last
    /// read have, each with the number of these elements. They were read as one
    /// object, the later ones over the earlier ones. A device that names a station
    /// does not count. Empty once other devices, or stations, are set.
    [[nodiscard]] QMap<QString, qsizetype> mergedDeviceIds() const;
    [[nodiscard]] QMap<QString, qsizetype> mergedStationIds() const;
    /// Whether the document last read has an element of this station. One that
    /// devices only name is bare, at (0, 0).
    [[nodiscard]] bool isStationDescribed(const QString& a_sId) const;

    /// As ScenarioDataXml::toXml() and toXmlFile(). Devices, or stations, that
    /// share an id, now or when they were set, are reported by errorString() and
    /// one trace: a reader gets one of them.
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
    /// The version of the document last read; 0 of one that names none, and when
    /// none was read.
    [[nodiscard]] std::uint32_t fileFormatVersion() const { return m_uiFileFormatVersion; }

    /// By the id that each had when it was read or set. The document is written
    /// in this order.
    [[nodiscard]] const QMap<QString, std::shared_ptr<DeploymentDevice>>& devices() const
    {
        return m_devices;
    }
    [[nodiscard]] const QMap<QString, std::shared_ptr<DeploymentStation>>& stations() const
    {
        return m_stations;
    }
    /// Replace the objects, keyed by their ids; null is left out, and of several
    /// with one id any one is taken, which the next writing reports. The station of a device belongs among
    /// the stations: one that is only referred to comes back bare, at (0, 0), when the saved document is
    /// read. Beyond Limits::DeploymentObjects that document breaks off for its reader.
    void setDevices(const QSet<std::shared_ptr<DeploymentDevice>>& a_devices);
    void setStations(const QSet<std::shared_ptr<DeploymentStation>>& a_stations);

    /// As ScenarioDataXml::releaseObjects(), for stations and their devices.
    static void releaseObjects(QSet<std::shared_ptr<DeploymentObject>>&& a_objects);
    static void releaseObject(std::shared_ptr<DeploymentObject> a_object);

private:
    // The document as a whole (deploymentdataxml.cpp)
    void clear();
    void readHeader(const QXmlStreamAttributes& a_attributes);
    void writeHeader(QXmlStreamWriter& a_writer) const;
    bool readChild(QXmlStreamReader& a_reader, QStringView a_sName);

    // Its objects (deploymentdataxml_objects.cpp)
    void readDevice(QXmlStreamReader& a_reader);
    bool readDeviceChild(QXmlStreamReader& a_reader, QStringView a_sName,
                         const std::shared_ptr<DeploymentDevice>& a_device);
    void readDeviceStation(QXmlStreamReader& a_reader, const std::shared_ptr<DeploymentDevice>& a_device);
    static void writeDevice(QXmlStreamWriter& a_writer, const DeploymentDevice& a_device);
    static void readReceiverSettings(QXmlStreamReader& a_reader, ReceiverSettings& a_settings);
    static void writeReceiverSettings(QXmlStreamWriter& a_writer, const ReceiverSettings& a_settings);
    void readStation(QXmlStreamReader& a_reader);
    static void writeStation(QXmlStreamWriter& a_writer, const DeploymentStation& a_station);
    bool readObjectChild(QXmlStreamReader& a_reader, QStringView a_sName, DeploymentObject& a_object) const;
    [[nodiscard]] static TPos readPosition(QXmlStreamReader& a_reader);

    template<typename Object>
    std::shared_ptr<Object> objectForId(QXmlStreamReader& a_reader,
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
    QString m_sSharedDevices;                  ///< of those that were set, why not all are held; mostly empty
    QString m_sSharedStations;                 ///< the same
    QMap<QString, qsizetype> m_deviceElements; ///< of the document last read, by their ids
    QMap<QString, qsizetype> m_stationElements; ///< the same
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_H
#define SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// The identity and position of a simulation device. A device sends this record when
/// the device registers. The list of registered devices consists of these records.
/// The service makes its confirmation of a device from the device's record. A plain
/// value; a default object has empty texts and the position 0, 0.
class SIMULATIONDATA_EXPORT SimulationDeviceConfiguration
{
public:
    /// The key under which the device registers.
    [[nodiscard]] QString id() const { return m_sId; }
    void setId(const QString& a_sId) { m_sId = a_sId; }

    [[nodiscard]] QString name() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }

    [[nodiscard]] QString deviceType() const { return m_sDeviceType; }
    void setDeviceType(const QString& a_sDeviceType) { m_sDeviceType = a_sDeviceType; }

    /// The station that the device belongs to.
    [[nodiscard]] QString stationId() const { return m_sStationId; }
    void setStationId(const QString& a_sStationId) { m_sStationId = a_sStationId; }

    [[nodiscard]] QString stationName() const { return m_sStationName; }
    void setStationName(const QString& a_sStationName) { m_sStationName = a_sStationName; }

    /// The name of the computer that the device runs on.
    [[nodiscard]] QString machine() const { return m_sMachine; }
    void setMachine(const QString& a_sMachine) { m_sMachine = a_sMachine; }

    /// The id of the computer that the device runs on.
    [[nodiscard]] QString machineId() const { return m_sMachineId; }
    void setMachineId(const QString& a_sMachineId) { m_sMachineId = a_sMachineId; }

    /// Degrees, east positive.
    [[nodiscard]] double positionLongitude() const { return m_dPositionLongitude; }
    void setPositionLongitude(double a_dLongitude) { m_dPositionLongitude = a_dLongitude; }

    /// Degrees, north positive.
    [[nodiscard]] double positionLatitude() const { return m_dPositionLatitude; }
    void setPositionLatitude(double a_dLatitude) { m_dPositionLatitude = a_dLatitude; }

    /// Returns the record as XML with one child of the root per field. A null base
    /// gives a new document. Otherwise the fields are added to the root of the base
    /// document. A field with an existing child is not written; this is deliberate.
    /// Coordinates have 6 significant digits. Empty, after one trace, when the base
    /// cannot be read.
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Reads the fields from the children of the root; the name of the root is not
    /// checked. A field keeps its value when its child is missing or, for a
    /// coordinate, not a finite number. Returns true when all fields were valid.
    /// When the document cannot be read, no field changes.
    [[nodiscard]] bool fromXml(const QByteArray& a_xml);

private:
    QString m_sId;
    QString m_sName;
    QString m_sDeviceType;
    QString m_sStationId;
    QString m_sStationName;
    QString m_sMachine;
    QString m_sMachineId;
    double m_dPositionLongitude = 0.0;
    double m_dPositionLatitude = 0.0;
};

} // namespace Simulation

#endif

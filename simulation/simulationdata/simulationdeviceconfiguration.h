#ifndef SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_H
#define SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// The identity and position of a simulation device: sent when it registers, in the
/// list of registered devices, and as the base of its confirmation. A plain value;
/// a default object has empty texts and the position 0, 0.
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

    /// The id of that computer.
    [[nodiscard]] QString machineId() const { return m_sMachineId; }
    void setMachineId(const QString& a_sMachineId) { m_sMachineId = a_sMachineId; }

    /// Degrees, east positive.
    [[nodiscard]] double positionLongitude() const { return m_dPositionLongitude; }
    void setPositionLongitude(double a_dLongitude) { m_dPositionLongitude = a_dLongitude; }

    /// Degrees, north positive.
    [[nodiscard]] double positionLatitude() const { return m_dPositionLatitude; }
    void setPositionLatitude(double a_dLatitude) { m_dPositionLatitude = a_dLatitude; }

    /// The record as XML, one child of the root per field. A null base gives a new
    /// document; otherwise the fields are added to the root of the base document. A
    /// field whose child exists already is not written; this is deliberate.
    /// Coordinates have 6 significant digits. Empty, after one trace, when the base
    /// cannot be read.
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Reads the fields from the children of the root, whose name is not checked. A
    /// field whose child is missing or is not a finite number keeps its value. True
    /// when all fields were valid; nothing changes when the document cannot be
    /// read.
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

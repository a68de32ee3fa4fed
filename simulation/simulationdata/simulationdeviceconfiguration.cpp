#include "simulationdeviceconfiguration.h"

#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xmlelement.h"
#include "simulationdeviceconfiguration_record_p.h"

#include <array>
#include <cmath>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationdeviceconfiguration";

struct TextField
{
    QLatin1String name;
    QString (SimulationDeviceConfiguration::*get)() const = nullptr;
    void (SimulationDeviceConfiguration::*set)(const QString&) = nullptr;
};

struct CoordinateField
{
    QLatin1String name;
    double (SimulationDeviceConfiguration::*get)() const = nullptr;
    void (SimulationDeviceConfiguration::*set)(double) = nullptr;
};

using Configuration = SimulationDeviceConfiguration;

/// The fields in the order of the document, the texts before the coordinates.
constexpr std::array<TextField, 7> s_texts{{
    {QLatin1String("Id"), &Configuration::id, &Configuration::setId},
    {QLatin1String("Name"), &Configuration::name, &Configuration::setName},
    {QLatin1String("StationId"), &Configuration::stationId, &Configuration::setStationId},
    {QLatin1String("StationName"), &Configuration::stationName, &Configuration::setStationName},
    {QLatin1String("Machine"), &Configuration::machine, &Configuration::setMachine},
    {QLatin1String("MachineId"), &Configuration::machineId, &Configuration::setMachineId},
    {QLatin1String("DeviceType"), &Configuration::deviceType, &Configuration::setDeviceType},
}};

constexpr std::array<CoordinateField, 2> s_coordinates{{
    {QLatin1String("PositionLongitude"), &Configuration::positionLongitude,
     &Configuration::setPositionLongitude},
    {QLatin1String("PositionLatitude"), &Configuration::positionLatitude,
     &Configuration::setPositionLatitude},
}};

} // namespace

QByteArray SimulationDeviceConfiguration::toXml(const QByteArray& a_base) const
{
    XmlElement root =
        recordRoot(a_base, QStringLiteral("Simulation::SimulationDeviceConfiguration"), s_szSource);
    for (const TextField& field : s_texts) {
        root.setChildText(field.name, (this->*field.get)());
    }
    for (const CoordinateField& field : s_coordinates) {
        root.setChildText(field.name, numberText((this->*field.get)()));
    }
    return root.toByteArray();
}

bool SimulationDeviceConfiguration::fromXml(const QByteArray& a_xml)
{
    const XmlElement root = readRecord(a_xml, s_szSource);
    bool bComplete = true;
    for (const TextField& field : s_texts) {
        const QString sText = root.childText(field.name);
        if (sText.isNull()) {
            bComplete = false;
        } else {
            (this->*field.set)(sText);
        }
    }
    for (const CoordinateField& field : s_coordinates) {
        bool bOk = false;
        const double dDegrees = root.childText(field.name).toDouble(&bOk);
        if (bOk && std::isfinite(dDegrees)) {
            (this->*field.set)(dDegrees);
        } else {
            bComplete = false;
        }
    }
    return bComplete;
}

} // namespace Simulation

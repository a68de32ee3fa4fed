#include "deviceplacement.h"

#include "console/loglimit.h"
#include "console/valuetexts.h"
#include "devicereport.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/simulationdeviceconfiguration.h"

#include <algorithm>
#include <iterator>

namespace SimulationTool {

namespace {

using DevicePointer = std::shared_ptr<Simulation::DeploymentDevice>;

/// The maximum length of a station's id, because the service refuses large records.
constexpr qsizetype s_iMaxStation = 255; ///< characters

QString stationOf(const Simulation::DeploymentDevice& a_device)
{
    return a_device.hasStation() ? a_device.station()->id() : QString();
}

/// The device with this name; null, with an error text, unless there is exactly one.
DevicePointer deviceOfName(const Simulation::DeploymentDataXml& a_deployment, const QString& a_sName,
                           QString& a_sReason)
{
    QList<DevicePointer> named;
    std::copy_if(a_deployment.devices().cbegin(), a_deployment.devices().cend(), std::back_inserter(named),
                 [&](const DevicePointer& a_pEach) { return a_pEach->name() == a_sName; });
    if (named.size() == 1 && !a_sName.isEmpty()) {
        return named.constFirst();
    }
    a_sReason = QStringLiteral("deployment \"%1\" has %2")
                    .arg(LogLimit::part(a_deployment.name()),
                         named.size() > 1
                             ? QStringLiteral("%1 devices of its name and none of its id").arg(named.size())
                             : QStringLiteral("no device of its id or name"));
    return nullptr;
}

} // namespace

QString placeDevice(Simulation::SimulationDeviceConfiguration& a_device,
                    const Simulation::DeploymentDataXml& a_deployment)
{
    QString sReason;
    DevicePointer pPlace = a_deployment.devices().value(a_device.id());
    const bool bById = pPlace != nullptr;
    if (!bById) {
        pPlace = deviceOfName(a_deployment, a_device.name(), sReason);
    }
    const QString sStation = pPlace != nullptr ? stationOf(*pPlace) : QString();
    if (sStation.size() > s_iMaxStation) {
        sReason = QStringLiteral("the id of its station has %1 characters, more than %2")
                      .arg(QString::number(sStation.size()), QString::number(s_iMaxStation));
    }
    if (!sReason.isEmpty()) {
        return DeviceReport::notDeployed(sReason);
    }
    const Simulation::TPos position = pPlace->position();
    a_device.setStationId(sStation);
    a_device.setStationName(sStation); // the station's id is also its name
    a_device.setPositionLongitude(position.longitude);
    a_device.setPositionLatitude(position.latitude);
    const QString sWhere =
        sStation.isEmpty()
            ? QStringLiteral("at %1, %2, without a station")
                  .arg(plainNumber(a_device.positionLongitude()), plainNumber(a_device.positionLatitude()))
            : QStringLiteral("at station \"%1\"").arg(LogLimit::part(sStation));
    return DeviceReport::deployed(bById ? sWhere : sWhere + QStringLiteral(", found by its name"));
}

} // namespace SimulationTool

#include "scenariochecker_rules_p.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/positionsettingsptp.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <memory>

namespace Simulation {

namespace {

using StationSet = QSet<std::shared_ptr<DeploymentStation>>;

/// Adds findings with the object that they are about.
void addFor(const DeploymentObject& a_object, Findings a_found, Findings& a_findings)
{
    for (ScenarioFinding& finding : a_found) {
        finding.objectId = a_object.id();
        finding.objectName = a_object.name();
        a_findings.append(finding);
    }
}

/// The stations that have an element of their own or were set; others are only named by
/// devices.
StationSet describedStations(const DeploymentDataXml& a_deployment)
{
    StationSet described;
    const auto& stations = a_deployment.stations();
    for (auto entry = stations.cbegin(); entry != stations.cend(); ++entry) {
        if (a_deployment.isStationDescribed(entry.key())) {
            described.insert(*entry);
        }
    }
    return described;
}

void checkMergedIds(const QMap<QString, qsizetype>& a_ids, const char* a_szElement, Findings& a_findings)
{
    for (auto entry = a_ids.cbegin(); entry != a_ids.cend(); ++entry) {
        a_findings.append(ruleFinding(ScenarioChecker::s_sDuplicateId,
                                      QStringLiteral("%1 elements \"%2\" have this id: they were read as "
                                                     "one. Give each its own id.")
                                          .arg(QString::number(*entry), QLatin1String(a_szElement))));
        a_findings.last().objectId = entry.key();
    }
}

void checkDevice(const DeploymentDevice& a_device, const StationSet& a_described, Findings& a_findings)
{
    Findings found;
    if (const auto station = a_device.station()) {
        if (!a_described.contains(station)) {
            found.append(ruleFinding(
                ScenarioChecker::s_sUnknownStation,
                QStringLiteral("The deployment does not describe the station \"%1\" of the device: "
                               "describe it, or name another one.")
                    .arg(station->id())));
        }
    } else if (!isPlaced(a_device.positionSettings())) {
        found.append(ruleFinding(ScenarioChecker::s_sDeviceWithoutStation,
                                 QStringLiteral("The device has neither a station nor a position of its own: "
                                                "give it one of them.")));
    } else {
        checkPath(a_device.positionSettings(), found);
    }
    addFor(a_device, found, a_findings);
}

} // namespace

bool isPlaced(IPositionSettings* a_pSettings)
{
    const auto isElsewhere = [](const TPos& a_position) {
        return a_position.longitude != 0.0 || a_position.latitude != 0.0;
    };
    if (const auto* pPath = dynamic_cast<const PositionSettingsPtp*>(a_pSettings)) {
        const auto& points = pPath->givenPoints();
        return std::any_of(points.cbegin(), points.cend(),
                           [&](const MovementPoint& a_point) { return isElsewhere(a_point.position); });
    }
    return a_pSettings != nullptr && isElsewhere(a_pSettings->getPosition());
}

Findings deploymentFindings(const DeploymentDataXml& a_deployment)
{
    Findings findings;
    checkMergedIds(a_deployment.mergedDeviceIds(), "Device", findings);
    checkMergedIds(a_deployment.mergedStationIds(), "Station", findings);
    for (const auto& station : a_deployment.stations()) {
        Findings found;
        checkPath(station->positionSettings(), found);
        addFor(*station, found, findings);
    }
    const StationSet described = describedStations(a_deployment);
    for (const auto& device : a_deployment.devices()) {
        checkDevice(*device, described, findings);
    }
    return findings;
}

} // namespace Simulation

#include "checkfinding.h"

#include "describe/documentloss.h"
#include "describe/scenariofile.h"
#include "programs/repositorypackages.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"

#include <QMap>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace SimulationTool {

namespace {

constexpr double s_dMaxLongitude = 180.0; ///< degrees, east and west
constexpr double s_dMaxLatitude = 90.0;

void findDamagedPackages(CheckFindings& a_findings, const Simulation::ScenarioObject& a_object,
                         RepositoryPackages& a_packages)
{
    QSet<QString> seen;
    for (const auto& emission : a_object.ScenarioObject::emissionSettings()->emissions()) {
        const QString sNamed = emission->signalPackage ? emission->signalPackage->id() : QString();
        if (seen.contains(sNamed) || !a_packages.validSignalPackageId(sNamed)) {
            continue;
        }
        seen.insert(sNamed);
        // The id of a superseded package resolves to the newer package.
        const auto package = a_packages.signalPackage(sNamed);
        const QStringList problems = a_packages.problemsOf(package ? package->id() : sNamed);
        if (!problems.isEmpty()) {
            a_findings.append({a_object.id(), a_object.name(), QStringLiteral("damaged-package"),
                               QStringLiteral("The signal package \"%1\" is damaged: ").arg(sNamed) +
                                   problems.join(QStringLiteral("; ")) +
                                   QStringLiteral(". Put a whole one into the repository.")});
        }
    }
}

bool isPlace(const Simulation::TPos& a_position)
{
    // The comparisons are false for a value that is not a number.
    return std::fabs(a_position.longitude) <= s_dMaxLongitude &&
           std::fabs(a_position.latitude) <= s_dMaxLatitude;
}

/// The first of an object's own positions with a longitude or latitude out of range;
/// no value when all are in range.
std::optional<Simulation::TPos> wrongPosition(Simulation::IPositionSettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return std::nullopt;
    }
    if (const auto* pPath = dynamic_cast<const Simulation::PositionSettingsPtp*>(a_pSettings)) {
        for (const Simulation::MovementPoint& point : pPath->getMovments()) {
            if (!isPlace(point.position)) {
                return point.position;
            }
        }
        return std::nullopt;
    }
    const Simulation::TPos position = a_pSettings->getPosition();
    return isPlace(position) ? std::nullopt : std::make_optional(position);
}

void checkPosition(CheckFindings& a_findings, const auto& a_object,
                   Simulation::IPositionSettings* a_pSettings)
{
    if (const auto position = wrongPosition(a_pSettings)) {
        a_findings.append(
            {a_object.id(), a_object.name(), QStringLiteral("position-out-of-range"),
             QStringLiteral("The position (longitude %1, latitude %2) is outside of -180 to 180 and -90 to "
                            "90 degrees.")
                 .arg(QString::number(position->longitude), QString::number(position->latitude))});
    }
}

/// Whether the settings contain a position other than 0/0. A device whose document has
/// no position is at 0/0.
bool isPlaced(Simulation::IPositionSettings* a_pSettings)
{
    const auto isElsewhere = [](const Simulation::TPos& a_position) {
        return a_position.longitude != 0.0 || a_position.latitude != 0.0;
    };
    if (const auto* pPath = dynamic_cast<const Simulation::PositionSettingsPtp*>(a_pSettings)) {
        const auto& points = pPath->getMovments();
        return std::any_of(points.cbegin(), points.cend(), [&](const Simulation::MovementPoint& a_point) {
            return isElsewhere(a_point.position);
        });
    }
    return a_pSettings != nullptr && isElsewhere(a_pSettings->getPosition());
}

using StationSet = QSet<std::shared_ptr<Simulation::DeploymentStation>>;

/// The stations that have an element of their own; others are only named by devices.
StationSet describedStations(const Simulation::DeploymentDataXml& a_deployment)
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

void findMergedIds(CheckFindings& a_findings, const QMap<QString, qsizetype>& a_ids, const char* a_szElement)
{
    for (auto entry = a_ids.cbegin(); entry != a_ids.cend(); ++entry) {
        a_findings.append({entry.key(),
                           {},
                           QStringLiteral("duplicate-id"),
                           QStringLiteral("%1 elements \"%2\" have this id: they were read as one. Give "
                                          "each its own id.")
                               .arg(QString::number(*entry), QLatin1String(a_szElement))});
    }
}

void checkDevice(CheckFindings& a_findings, const Simulation::DeploymentDevice& a_device,
                 const StationSet& a_described)
{
    const auto addFinding = [&](const QString& a_sText) {
        a_findings.append(
            {a_device.id(), a_device.name(), QStringLiteral("device-without-station"), a_sText});
    };
    const auto station = a_device.station();
    if (station && !a_described.contains(station)) {
        addFinding(QStringLiteral("The deployment does not describe the station \"%1\" of the device.")
                       .arg(station->id()));
    } else if (!station && !isPlaced(a_device.positionSettings())) {
        addFinding(QStringLiteral("The device has neither a station nor a position of its own: give it one "
                                  "of them."));
    } else if (!station) {
        checkPosition(a_findings, a_device, a_device.positionSettings());
    }
}

} // namespace

CheckFindings brokenOffFindings(const QString& a_sError)
{
    if (a_sError.isEmpty()) {
        return {};
    }
    return {{{}, {}, QStringLiteral("broken-off"), documentVerdict(a_sError).text}};
}

CheckFindings unreadFindings(const QByteArray& a_document, const QByteArray& a_written)
{
    const QString sParts =
        a_written.isEmpty() ? QString() : documentLoss(a_document, a_written, Notes::Ignore);
    if (sParts.isEmpty()) {
        return {};
    }
    return {{{},
             {},
             QStringLiteral("not-read"),
             QStringLiteral("Not read: %1. Correct the name or the place.").arg(sParts)}};
}

CheckFindings placeFindings(const Simulation::ScenarioDataXml& a_scenario)
{
    CheckFindings findings;
    for (const auto& emitter : emittersOf(a_scenario)) {
        // An emitter that follows another emitter has the position of that emitter.
        if (!emitter->linkTargetEmitter()) {
            checkPosition(findings, *emitter, emitter->ownPositionSettings());
        }
    }
    return findings;
}

CheckFindings packageFindings(const Simulation::ScenarioDataXml& a_scenario, RepositoryPackages& a_packages)
{
    CheckFindings findings;
    for (const auto& emitter : emittersOf(a_scenario)) {
        findDamagedPackages(findings, *emitter, a_packages);
    }
    for (const auto& network : networksOf(a_scenario)) {
        findDamagedPackages(findings, *network, a_packages);
    }
    return findings;
}

CheckFindings deploymentFindings(const Simulation::DeploymentDataXml& a_deployment)
{
    CheckFindings findings = brokenOffFindings(a_deployment.errorString());
    constexpr std::uint32_t uiKnown = Simulation::DeploymentDataXml::s_uiFileFormatVersion;
    if (a_deployment.fileFormatVersion() > uiKnown) {
        findings.append(
            {{},
             {},
             QStringLiteral("newer-version"),
             QStringLiteral("The file format version is %1, newer than %2, the newest that is "
                            "known: what is new in it was not read.")
                 .arg(QString::number(a_deployment.fileFormatVersion()), QString::number(uiKnown))});
    }
    findMergedIds(findings, a_deployment.mergedDeviceIds(), "Device");
    findMergedIds(findings, a_deployment.mergedStationIds(), "Station");
    for (const auto& station : a_deployment.stations()) {
        checkPosition(findings, *station, station->positionSettings());
    }
    const StationSet described = describedStations(a_deployment);
    for (const auto& device : a_deployment.devices()) {
        checkDevice(findings, *device, described);
    }
    return findings;
}

} // namespace SimulationTool

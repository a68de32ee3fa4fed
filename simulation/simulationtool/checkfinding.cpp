#include "checkfinding.h"

#include "documentloss.h"
#include "repositorypackages.h"
#include "scenariofile.h"

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
#include <QXmlStreamReader>

#include <cmath>
#include <optional>
#include <utility>

namespace SimulationTool {

namespace {

constexpr double s_dMaxLongitude = 180.0; ///< degrees, either way
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
        // An id that a newer package supersedes means that one.
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

/// How often a station or device element has an id, by "Station" or "Device" and
/// the id. Readers make one object of all that share one.
QMap<std::pair<QString, QString>, int> elementIds(const QByteArray& a_document)
{
    QMap<std::pair<QString, QString>, int> counts;
    QXmlStreamReader reader(a_document);
    reader.readNextStartElement();
    while (reader.readNextStartElement()) {
        const QString sElement = reader.qualifiedName().toString();
        const QXmlStreamAttributes attributes = reader.attributes();
        const QLatin1String sId("ID");
        if ((sElement == u"Station" || sElement == u"Device") && attributes.hasAttribute(sId)) {
            ++counts[{sElement, attributes.value(sId).toString()}];
        }
        reader.skipCurrentElement();
    }
    return counts;
}

bool isPlace(const Simulation::TPos& a_position)
{
    // Written so that what is no number is no place.
    return std::fabs(a_position.longitude) <= s_dMaxLongitude &&
           std::fabs(a_position.latitude) <= s_dMaxLatitude;
}

/// The first of an object's own positions that is no place on the earth.
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

void checkDevice(CheckFindings& a_findings, const Simulation::DeploymentDevice& a_device,
                 const QMap<std::pair<QString, QString>, int>& a_elements)
{
    const auto station = a_device.station();
    if (!station) {
        a_findings.append({a_device.id(), a_device.name(), QStringLiteral("device-without-station"),
                           QStringLiteral("The device belongs to no station.")});
        checkPosition(a_findings, a_device, a_device.positionSettings());
        return;
    }
    if (!a_elements.contains({QStringLiteral("Station"), station->id()})) {
        a_findings.append(
            {a_device.id(), a_device.name(), QStringLiteral("device-without-station"),
             QStringLiteral("The deployment does not describe the station \"%1\" of the device.")
                 .arg(station->id())});
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
        // An emitter that follows another one is where that one is.
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

CheckFindings deploymentFindings(const Simulation::DeploymentDataXml& a_deployment,
                                 const QByteArray& a_document)
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
    const auto elements = elementIds(a_document);
    for (auto entry = elements.cbegin(); entry != elements.cend(); ++entry) {
        if (*entry > 1) {
            findings.append({entry.key().second,
                             {},
                             QStringLiteral("duplicate-id"),
                             QStringLiteral("%1 elements \"%2\" have this id: they were read as one. Give "
                                            "each its own id.")
                                 .arg(QString::number(*entry), entry.key().first)});
        }
    }
    for (const auto& station : a_deployment.stations()) {
        checkPosition(findings, *station, station->positionSettings());
    }
    for (const auto& device : a_deployment.devices()) {
        checkDevice(findings, *device, elements);
    }
    return findings;
}

} // namespace SimulationTool

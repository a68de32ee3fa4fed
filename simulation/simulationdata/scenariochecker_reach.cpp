#include "scenariochecker_rules_p.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/transmittersettings.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace Simulation {

namespace {

/// The radio horizon of an antenna at the height h (m) is s_dHorizon * sqrt(h) km. This
/// is sqrt(2 k R h) with the mean radius of the earth R = 6371 km, lengthened by the
/// factor k = 4/3 for the refraction of the standard atmosphere (Recommendation ITU-R
/// P.310). Two antennas see each other within the sum of their horizons. The ground is
/// taken as a smooth sphere, and the error is below 1 % up to heights of 100 km.
constexpr double s_dHorizon = 4.12; // km per square root of a metre
/// Below this frequency (Hz) waves follow the ground and are reflected by the ionosphere,
/// so the line of sight is no limit.
constexpr double s_dLineOfSight = 30e6;
/// A lower bound of the radius of curvature (km) of WGS 84. The smallest one is that of
/// the meridian at the equator, b^2 / a = 6335.4 km.
constexpr double s_dSmallestRadius = 6335.0;
constexpr double s_dRadians = std::numbers::pi / 180.0; ///< per degree
/// An upper bound of the length (km) of a degree, which is 111.694 km along the meridian
/// at the poles of WGS 84 and 111.320 km along the equator.
constexpr double s_dDegree = 111.7;
/// The largest effort of one check, a few seconds of work. The effort is 1 for a straight
/// line and s_iGeodesicEffort for a geodesic. The stations after that are not judged.
constexpr std::int64_t s_iMaximumEffort = 100'000'000;
constexpr std::int64_t s_iGeodesicEffort = 200;

/// The square root of an antenna's height (m). Heights below the ground, and heights that
/// are no numbers, count as 0.
double rootOf(double a_dHeight)
{
    return a_dHeight > 0.0 ? std::sqrt(a_dHeight) : 0.0;
}

/// The places of an object: a site or the points of a movement.
struct Places
{
    explicit Places(IPositionSettings* a_pSettings);

    std::vector<TPos> points;
    /// An upper bound of half of the longest leg (km), which runs straight in degrees: the
    /// object is never farther away from a point.
    double slack = 0.0;
};

Places::Places(IPositionSettings* a_pSettings)
{
    if (const auto* pPath = dynamic_cast<const PositionSettingsPtp*>(a_pSettings)) {
        for (const MovementPoint& point : pPath->givenPoints()) {
            if (!points.empty()) {
                slack = std::max(slack, s_dDegree / 2.0 *
                                            std::hypot(point.position.longitude - points.back().longitude,
                                                       point.position.latitude - points.back().latitude));
            }
            points.push_back(point.position);
        }
    } else if (a_pSettings != nullptr) {
        points.push_back(a_pSettings->getPosition());
    }
    points.erase(
        std::remove_if(points.begin(), points.end(), [](const TPos& a_point) { return !isPlace(a_point); }),
        points.end());
}

/// A position, and the unit vector that has its longitude and latitude as angles.
struct Site
{
    explicit Site(const TPos& a_position);

    TPos position;
    double x;
    double y;
    double z;
};

Site::Site(const TPos& a_position)
    : position(a_position)
    , x(std::cos(a_position.latitude * s_dRadians) * std::cos(a_position.longitude * s_dRadians))
    , y(std::cos(a_position.latitude * s_dRadians) * std::sin(a_position.longitude * s_dRadians))
    , z(std::sin(a_position.latitude * s_dRadians))
{}

/// A lower bound of the distance (km), much cheaper than the distance. Along a geodesic a site's unit vector
/// turns by at most the length of the geodesic divided by the smallest radius of curvature. The chord between
/// two unit vectors is not longer than the angle (rad) between them.
double leastDistance(const Site& a_first, const Site& a_second)
{
    const double dX = a_first.x - a_second.x;
    const double dY = a_first.y - a_second.y;
    const double dZ = a_first.z - a_second.z;
    return s_dSmallestRadius * std::sqrt(dX * dX + dY * dY + dZ * dZ);
}

/// A place from which an emitter sends.
struct Sender
{
    Site site;
    double reach; ///< km to an antenna on the ground, with the slack of a movement
};

/// The places from which the emitters of a scenario send, and the distances from them.
class Senders
{
public:
    explicit Senders(const std::vector<const SzenarioEmitter*>& a_emitters);

    /// Whether there is nothing to judge: some emitter is received everywhere, or none is
    /// at a place.
    [[nodiscard]] bool reachEverything() const { return m_bEverywhere || m_senders.empty(); }

    /// Whether an antenna at one of the places, with a horizon (km), is within reach.
    [[nodiscard]] bool reach(const Places& a_places, double a_dHorizon);

private:
    [[nodiscard]] bool reachSite(const Site& a_site, double a_dOwnReach);

    std::vector<Sender> m_senders;
    bool m_bEverywhere = false;
    std::int64_t m_iEffort = 0; ///< so far
};

Senders::Senders(const std::vector<const SzenarioEmitter*>& a_emitters)
{
    // Emitters that follow the same one have the same settings. Of these only the highest
    // antenna counts.
    QHash<IPositionSettings*, double> roots;
    for (const SzenarioEmitter* const pEmitter : a_emitters) {
        const IFrequencySettings* const pFrequency = pEmitter->getFrequencySettings();
        const TransmitterSettings* const pTransmitter = pEmitter->getTranmitterSettings();
        IPositionSettings* const pPosition = pEmitter->positionSettings();
        if (pFrequency == nullptr || pTransmitter == nullptr || pPosition == nullptr) {
            continue;
        }
        m_bEverywhere = m_bEverywhere || !(pFrequency->getMinimumFrequency() >= s_dLineOfSight);
        double& dRoot = roots[pPosition];
        dRoot = std::max(dRoot, rootOf(static_cast<double>(pTransmitter->getAntennaHeight())));
    }
    if (m_bEverywhere) {
        return;
    }
    for (auto entry = roots.cbegin(); entry != roots.cend(); ++entry) {
        const Places places(entry.key());
        for (const TPos& point : places.points) {
            m_senders.push_back({Site(point), s_dHorizon * entry.value() + places.slack});
        }
    }
}

bool Senders::reach(const Places& a_places, double a_dHorizon)
{
    return std::any_of(a_places.points.cbegin(), a_places.points.cend(), [&](const TPos& a_point) {
        return reachSite(Site(a_point), a_dHorizon + a_places.slack);
    });
}

/// Calculates the geodesics to the senders that a straight line does not rule out.
bool Senders::reachSite(const Site& a_site, double a_dOwnReach)
{
    return std::any_of(m_senders.cbegin(), m_senders.cend(), [&](const Sender& a_sender) {
        const double dReach = a_sender.reach + a_dOwnReach;
        if (++m_iEffort > s_iMaximumEffort) {
            return true;
        }
        if (leastDistance(a_sender.site, a_site) > dReach) {
            return false;
        }
        m_iEffort += s_iGeodesicEffort;
        return distance(a_sender.site.position, a_site.position) <= dReach;
    });
}

/// The finding for an object of a deployment whose highest antenna is at a height (m).
void checkReceiver(const DeploymentObject& a_object, double a_dHeight, Senders& a_senders,
                   Findings& a_findings)
{
    const Places places(a_object.positionSettings());
    const double dHorizon = s_dHorizon * rootOf(a_dHeight);
    if (places.points.empty() || a_senders.reach(places, dHorizon)) {
        return;
    }
    a_findings.append(ruleFinding(
        ScenarioChecker::s_sUnreachedStation,
        QStringLiteral("With the highest antenna at %1 m the horizon is %2 km away and hides every "
                       "emitter: move the %3, or raise its antenna or that of an emitter.")
            .arg(QString::number(a_dHeight), QString::number(dHorizon, 'f', 1),
                 a_object.type() == DeploymentObject::eTypes::Station ? QStringLiteral("station")
                                                                      : QStringLiteral("device"))));
    a_findings.last().objectId = a_object.id();
    a_findings.last().objectName = a_object.name();
}

/// The highest antenna (m) of the devices of a station. A station without devices gets
/// the antenna of a new device.
double heightOf(const DeploymentStation& a_station)
{
    const auto devices = a_station.devices();
    double dHeight = devices.isEmpty() ? ReceiverSettings().antennaHeight : 0.0;
    for (const auto& device : devices) {
        dHeight = std::max(dHeight, device->receiverSettings().antennaHeight);
    }
    return dHeight;
}

} // namespace

Findings reachFindings(const DeploymentDataXml& a_deployment,
                       const std::vector<const SzenarioEmitter*>& a_emitters)
{
    Findings findings;
    Senders senders(a_emitters);
    if (senders.reachEverything()) {
        return findings;
    }
    const auto& stations = a_deployment.stations();
    for (auto entry = stations.cbegin(); entry != stations.cend(); ++entry) {
        if (a_deployment.isStationDescribed(entry.key())) {
            checkReceiver(**entry, heightOf(**entry), senders, findings);
        }
    }
    for (const auto& device : a_deployment.devices()) {
        if (!device->hasStation() && isPlaced(device->positionSettings())) {
            checkReceiver(*device, device->receiverSettings().antennaHeight, senders, findings);
        }
    }
    return findings;
}

} // namespace Simulation

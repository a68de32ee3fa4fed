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
/// A lower bound of the length (km) of a degree of latitude, which is 110.574 km at the
/// equator of WGS 84 and longer elsewhere.
constexpr double s_dDegree = 110.5;
/// The largest number of distances that one check calculates, some seconds of work. The
/// stations after that are not judged.
constexpr std::int64_t s_iMaximumDistances = 1'000'000;

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
    /// Half of the longest leg (km): the object is never farther away from a point.
    double slack = 0.0;
};

Places::Places(IPositionSettings* a_pSettings)
{
    if (const auto* pPath = dynamic_cast<const PositionSettingsPtp*>(a_pSettings)) {
        for (const MovementPoint& point : pPath->givenPoints()) {
            if (!points.empty()) {
                slack = std::max(slack, distance(points.back(), point.position) / 2.0);
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

/// A place from which an emitter sends.
struct Sender
{
    TPos position;
    double reach = 0.0; ///< km to an antenna on the ground, with the slack of a movement
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
    [[nodiscard]] bool reachPoint(const TPos& a_point, double a_dOwnReach);

    std::vector<Sender> m_senders; ///< in ascending order of the latitudes
    double m_dLargestReach = 0.0;  ///< km
    bool m_bEverywhere = false;
    std::int64_t m_iDistances = 0; ///< calculated so far
};

Senders::Senders(const std::vector<const SzenarioEmitter*>& a_emitters)
{
    // Emitters that follow the same one have the same settings. Of these only the highest
    // antenna counts.
    QHash<IPositionSettings*, double> roots;
    for (const SzenarioEmitter* const pEmitter : a_emitters) {
        const IFrequencySettings* const pFrequency = pEmitter->getFrequencySettings();
        const TransmitterSettings* const pTransmitter = pEmitter->getTranmitterSettings();
        if (pFrequency == nullptr || pTransmitter == nullptr || pEmitter->positionSettings() == nullptr) {
            continue;
        }
        m_bEverywhere = m_bEverywhere || !(pFrequency->getMinimumFrequency() >= s_dLineOfSight);
        double& dRoot = roots[pEmitter->positionSettings()];
        dRoot = std::max(dRoot, rootOf(static_cast<double>(pTransmitter->getAntennaHeight())));
    }
    if (m_bEverywhere) {
        return;
    }
    for (auto entry = roots.cbegin(); entry != roots.cend(); ++entry) {
        const Places places(entry.key());
        const double dReach = s_dHorizon * entry.value() + places.slack;
        m_dLargestReach = std::max(m_dLargestReach, dReach);
        for (const TPos& point : places.points) {
            m_senders.push_back({point, dReach});
        }
    }
    std::sort(m_senders.begin(), m_senders.end(), [](const Sender& a_first, const Sender& a_second) {
        return a_first.position.latitude < a_second.position.latitude;
    });
}

bool Senders::reach(const Places& a_places, double a_dHorizon)
{
    return std::any_of(a_places.points.cbegin(), a_places.points.cend(),
                       [&](const TPos& a_point) { return reachPoint(a_point, a_dHorizon + a_places.slack); });
}

/// Calculates the distances from the senders whose latitude alone does not rule them out.
bool Senders::reachPoint(const TPos& a_point, double a_dOwnReach)
{
    const double dDegrees = (m_dLargestReach + a_dOwnReach) / s_dDegree;
    auto sender = std::lower_bound(
        m_senders.cbegin(), m_senders.cend(), a_point.latitude - dDegrees,
        [](const Sender& a_sender, double a_dLatitude) { return a_sender.position.latitude < a_dLatitude; });
    for (; sender != m_senders.cend() && sender->position.latitude <= a_point.latitude + dDegrees; ++sender) {
        if (++m_iDistances > s_iMaximumDistances ||
            distance(sender->position, a_point) <= sender->reach + a_dOwnReach) {
            return true;
        }
    }
    return false;
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

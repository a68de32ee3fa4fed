#include "scenariochecker_rules_p.h"
#include "simulationdata/positionsettingsptp.h"

#include <cmath>

namespace Simulation {

namespace {

constexpr double s_dMaximumLongitude = 180.0; ///< degrees, east and west
constexpr double s_dMaximumLatitude = 90.0;   ///< degrees, north and south
constexpr double s_dHalfTurn = 180.0;         ///< degrees
/// Degrees below which two positions are the same, as in the comparison of points.
constexpr double s_dSamePosition = 1e-10;
/// Degrees below which a jump cannot be noticed, about 11 m.
constexpr double s_dUnnoticed = 1e-4;
/// The speed (km/h) above which a position jumps: about the escape velocity of the earth,
/// 11.2 km/s.
constexpr double s_dJumpingSpeed = 40'000.0;

bool isApart(const TPos& a_first, const TPos& a_second, double a_dDegrees)
{
    return std::fabs(a_first.longitude - a_second.longitude) > a_dDegrees ||
           std::fabs(a_first.latitude - a_second.latitude) > a_dDegrees;
}

/// Points of a movement that break a rule in the same way.
struct PointTally
{
    qsizetype count = 0;
    qsizetype first = 0; ///< number of the point, from 1

    void add(qsizetype a_iNumber)
    {
        ++count;
        first = a_iNumber;
    }
    /// Begins a sentence: "The leg to point 2 " or "2 legs, the first to point 2, ".
    [[nodiscard]] QString subject() const
    {
        return count == 1 ? QStringLiteral("The leg to point %1 ").arg(first)
                          : QStringLiteral("%1 legs, the first to point %2, ").arg(count).arg(first);
    }
    [[nodiscard]] QLatin1String form(const char* a_szOne, const char* a_szMany) const
    {
        return QLatin1String(count == 1 ? a_szOne : a_szMany);
    }
};

struct LegTallies
{
    PointTally withoutSpeed;
    PointTally jumping;
};

/// Judges the legs from the last to the first, because an intermediate point takes the
/// speed of the next point.
LegTallies judgeLegs(const QVector<MovementPoint>& a_points)
{
    LegTallies tallies;
    double dSpeed = a_points.constLast().speed;
    for (qsizetype i = a_points.size() - 1; i > 0; --i) {
        const MovementPoint& to = a_points.at(i);
        const MovementPoint& from = a_points.at(i - 1);
        dSpeed = to.major ? to.speed : dSpeed;
        if (!isApart(from.position, to.position, s_dSamePosition)) {
            continue;
        }
        if (!(dSpeed > 0.0)) { // also a speed that is not a number
            tallies.withoutSpeed.add(i + 1);
        } else if (dSpeed > s_dJumpingSpeed ||
                   std::fabs(to.position.longitude - from.position.longitude) > s_dHalfTurn) {
            tallies.jumping.add(i + 1);
        }
    }
    return tallies;
}

void checkLegs(const PositionSettingsPtp& a_path, Findings& a_findings)
{
    const LegTallies tallies = judgeLegs(a_path.givenPoints());
    if (tallies.withoutSpeed.count != 0) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sMovementWithoutSpeed,
            tallies.withoutSpeed.subject() + tallies.withoutSpeed.form("has", "have") +
                QStringLiteral(" no speed above 0 km/h and ") + tallies.withoutSpeed.form("takes", "take") +
                QStringLiteral(" no time: give the point a speed.")));
    }
    if (tallies.jumping.count != 0) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sJumpingPosition,
            tallies.jumping.subject() + tallies.jumping.form("is", "are") +
                QStringLiteral(" faster than %1 km/h or %2 the date line, where the way runs round "
                               "the globe: correct the speed, or divide the movement.")
                    .arg(QString::number(s_dJumpingSpeed, 'f', 0),
                         tallies.jumping.form("crosses", "cross"))));
    }
}

void checkRestart(const PositionSettingsPtp& a_path, Findings& a_findings)
{
    const QVector<MovementPoint>& points = a_path.givenPoints();
    if (a_path.getEndBehavior() == EndBehaviourType::Restart &&
        isApart(points.constFirst().position, points.constLast().position, s_dUnnoticed)) {
        a_findings.append(
            ruleFinding(ScenarioChecker::s_sJumpAtRestart,
                        QStringLiteral("The movement restarts at another place than it ends, so "
                                       "the position jumps back: end it where it begins if "
                                       "this is not meant.")));
    }
}

void reportPlace(const TPos& a_position, Findings& a_findings)
{
    a_findings.append(
        ruleFinding(ScenarioChecker::s_sPositionOutOfRange,
                    QStringLiteral("The position (longitude %1, latitude %2) is outside of -180 to 180 and "
                                   "-90 to 90 degrees.")
                        .arg(QString::number(a_position.longitude), QString::number(a_position.latitude))));
}

/// The first position that is not a place on the globe.
void checkPlaces(const QVector<MovementPoint>& a_points, Findings& a_findings)
{
    for (const MovementPoint& point : a_points) {
        if (!isPlace(point.position)) {
            reportPlace(point.position, a_findings);
            return;
        }
    }
}

} // namespace

bool isPlace(const TPos& a_position)
{
    // The comparisons are false for a value that is not a number.
    return std::fabs(a_position.longitude) <= s_dMaximumLongitude &&
           std::fabs(a_position.latitude) <= s_dMaximumLatitude;
}

void checkPath(IPositionSettings* a_pSettings, Findings& a_findings)
{
    if (a_pSettings == nullptr) {
        return;
    }
    if (const auto* pPath = dynamic_cast<const PositionSettingsPtp*>(a_pSettings)) {
        checkPlaces(pPath->givenPoints(), a_findings);
        checkLegs(*pPath, a_findings);
        checkRestart(*pPath, a_findings);
    } else if (const TPos position = a_pSettings->getPosition(); !isPlace(position)) {
        reportPlace(position, a_findings);
    }
}

} // namespace Simulation

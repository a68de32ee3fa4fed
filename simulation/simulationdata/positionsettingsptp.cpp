#include "positionsettingsptp.h"

#include "simulationdata/io/numbers_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/positionsettingsptp";

constexpr double s_dDefaultSpeed = 50.0; ///< km/h
constexpr double s_dSecondsPerHour = 3600.0;
constexpr double s_dMillisecondsPerSecond = 1000.0;
constexpr float s_fMillisecondsPerHour = 3'600'000.0F;
constexpr float s_fNoSpeed = -1.0F;
constexpr double s_dMetresPerKilometre = 1000.0;
constexpr double s_dLargestShare = 0.7; ///< largest share of a leg before an inserted point
constexpr double s_dRightAngle = 90.0;
constexpr double s_dHalfTurn = 180.0;
constexpr double s_dFullTurn = 360.0;

std::uint32_t clampToUInt32(std::uint64_t a_uiValue)
{
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(a_uiValue, UINT32_MAX));
}

/// The time (ms) of a leg at a speed (km/h): floor(distance / speed * 3,600,000). 0
/// for a speed of 0 or below.
std::uint32_t travelTime(const TPos& a_from, const TPos& a_to, double a_dSpeed)
{
    if (a_dSpeed <= 0.0) {
        return 0;
    }
    const double dHours = distance(a_from, a_to) / a_dSpeed;
    return toUInt32(std::floor(dHours * s_dSecondsPerHour * s_dMillisecondsPerSecond));
}

/// The share of a leg (a_from to a_to) at which a new point lies: the given distance
/// divided by the length of the leg, both in degrees of the longitude-latitude plane.
/// The share is 1 for a distance that is 0 or not finite. The share is 0 for coincident
/// points: they have no direction, so the new point lies on them.
double shareOfLeg(const TPos& a_from, const TPos& a_to, double a_dDistance)
{
    const double dLength = std::hypot(a_to.longitude - a_from.longitude, a_to.latitude - a_from.latitude);
    if (!(dLength > 0.0)) {
        return 0.0;
    }
    const double dDistance = finiteOrZero(a_dDistance);
    return dDistance == 0.0 ? 1.0 : dDistance / dLength;
}

/// Linear interpolation in degrees; a share outside [0, 1] extrapolates. Longitudes
/// are not taken modulo 360, so a leg over the date line runs the long way round.
TPos pointOnLine(const TPos& a_from, const TPos& a_to, double a_dShare)
{
    return {a_from.longitude + (a_to.longitude - a_from.longitude) * a_dShare,
            a_from.latitude + (a_to.latitude - a_from.latitude) * a_dShare};
}

TPos offsetBy(const TPos& a_position, double a_dDeltaLongitude, double a_dDeltaLatitude)
{
    return {a_position.longitude + a_dDeltaLongitude, a_position.latitude + a_dDeltaLatitude};
}

} // namespace

PositionSettingsPtp::PositionSettingsPtp(const TPos& a_start, double a_dOffset)
{
    MovementPoint start;
    start.position = a_start;
    start.major = true;
    start.speed = 0.0; // unused, because no leg leads to the first point
    MovementPoint end;
    end.position = offsetBy(a_start, a_dOffset, a_dOffset);
    end.major = true;
    end.speed = s_dDefaultSpeed;
    m_movements = {start, end};
    updatePoint();
}

const QVector<MovementPoint>& PositionSettingsPtp::getMovments() const
{
    m_bHandedOut = true;
    return points();
}

void PositionSettingsPtp::setMovements(const QVector<MovementPoint>& a_movements)
{
    if (a_movements.size() < 2) {
        return;
    }
    m_movements = a_movements;
    m_movements.first().major = true;
    MovementPoint& last = m_movements.last();
    if (!last.major) {
        last.major = true;
        last.speed = s_dDefaultSpeed;
    }
    updatePoint();
}

const MovementPoint& PositionSettingsPtp::getPoint(int a_iRow) const
{
    const QVector<MovementPoint>& movements = getMovments();
    return hasRow(a_iRow) ? movements[a_iRow] : movements.last();
}

void PositionSettingsPtp::setPoint(int a_iRow, const MovementPoint& a_point)
{
    if (!hasRow(a_iRow)) {
        return;
    }
    // a_point may be an element of the list, so its derived fields must be up to date
    // before it is copied.
    computeLegs();
    m_movements[a_iRow] = a_point;
    updatePoint();
}

unsigned int PositionSettingsPtp::getArivalTime(int a_iRow, unsigned int* a_pMin, unsigned int* a_pMax) const
{
    const int iRow = std::clamp(a_iRow, 0, static_cast<int>(m_movements.size()));
    if (a_pMin != nullptr) {
        *a_pMin = iRow > 0 ? getDepartureTime(iRow - 1) : 0;
    }
    if (a_pMax != nullptr) {
        *a_pMax = iRow > 0 ? UINT32_MAX : 0;
    }
    return clampToUInt32(arrivals()[static_cast<std::size_t>(iRow)]);
}

void PositionSettingsPtp::setArivalTime(int a_iRow, unsigned int a_uiTime)
{
    if (a_iRow < 1 || !hasRow(a_iRow)) {
        return;
    }
    const QVector<MovementPoint>& movements = points();
    const std::uint64_t uiDeparture =
        arrivals()[static_cast<std::size_t>(a_iRow) - 1] + movements[a_iRow - 1].dwellTime;
    if (a_uiTime < uiDeparture) {
        return;
    }
    // speed = distance / time. The distance is measured from the previous way point,
    // the time from the departure from the previous point. Time and speed are rounded
    // to single precision, as in getMovementSpeed().
    double dDistance = 0.0;
    for (int iRow = a_iRow; iRow > 0; --iRow) {
        dDistance += distance(movements[iRow].position, movements[iRow - 1].position);
        if (movements[iRow - 1].major) {
            break;
        }
    }
    const double dHours =
        static_cast<float>(a_uiTime - uiDeparture) / static_cast<double>(s_fMillisecondsPerHour);
    // A speed of 0 means that the leg takes no time.
    m_movements[a_iRow].speed =
        dHours > 0.0 ? static_cast<double>(static_cast<float>(dDistance / dHours)) : 0.0;
    updatePoint();
}

unsigned int PositionSettingsPtp::getDepartureTime(int a_iRow, unsigned int* a_pMin,
                                                   unsigned int* a_pMax) const
{
    const int iRow = std::clamp(a_iRow, 0, static_cast<int>(m_movements.size()));
    const std::uint64_t uiArrival = arrivals()[static_cast<std::size_t>(iRow)];
    if (a_pMin != nullptr) {
        *a_pMin = clampToUInt32(uiArrival);
    }
    if (a_pMax != nullptr) {
        *a_pMax = UINT32_MAX;
    }
    return clampToUInt32(uiArrival + (hasRow(a_iRow) ? points()[a_iRow].dwellTime : 0));
}

void PositionSettingsPtp::setDepartureTime(int a_iRow, unsigned int a_uiTime)
{
    if (!hasRow(a_iRow)) {
        return;
    }
    const unsigned int uiArrival = getArivalTime(a_iRow);
    m_movements[a_iRow].dwellTime = a_uiTime - uiArrival; // wraps on purpose
    m_arrivals.clear();
}

float PositionSettingsPtp::getMovementSpeed(int a_iRow) const
{
    if (a_iRow < 1 || !hasRow(a_iRow)) {
        return s_fNoSpeed;
    }
    const MovementPoint& from = points()[a_iRow - 1];
    if (from.transitionTime == 0) {
        return s_fNoSpeed;
    }
    // speed (km/h) = distance (km) / time (h), with the time in single precision
    const float fHours = static_cast<float>(from.transitionTime) / s_fMillisecondsPerHour;
    const double dDistance = distance(from.position, points()[a_iRow].position);
    return static_cast<float>(dDistance / static_cast<double>(fHours));
}

void PositionSettingsPtp::setMovementSpeed(int a_iRow, float a_fSpeed)
{
    if (a_iRow < 1 || !hasRow(a_iRow)) {
        return;
    }
    computeLegs();
    m_movements[a_iRow].speed = static_cast<double>(a_fSpeed);
    updatePoint();
}

bool PositionSettingsPtp::canRemoveRow(int a_iRow) const
{
    return a_iRow >= 1 && hasRow(a_iRow);
}

void PositionSettingsPtp::removeRow(int a_iRow)
{
    if (!canRemoveRow(a_iRow)) {
        return;
    }
    computeLegs();
    const MovementPoint& removed = m_movements[a_iRow];
    MovementPoint& before = m_movements[a_iRow - 1];
    // An intermediate point before a removed way point becomes the way point.
    if (removed.major && !before.major) {
        before.major = true;
        before.speed = removed.speed;
        before.dwellTime = removed.dwellTime;
    }
    m_movements.removeAt(a_iRow);
    updatePoint();
}

void PositionSettingsPtp::insertRowAfter(int a_iRow, double a_dDistance, const QString& a_sName)
{
    if (a_iRow < 0) {
        return;
    }
    MovementPoint point;
    point.major = !a_sName.isNull();
    point.name = a_sName;
    point.speed = s_dDefaultSpeed; // an intermediate point gets the speed of the next one

    computeLegs();
    const qsizetype iCount = m_movements.size();
    qsizetype iIndex = iCount;
    const TPos end = m_movements.constLast().position;
    if (iCount < 2) {
        point.position = end;
        point.major = true;
    } else if (a_iRow < iCount - 1) {
        // A new point between two points lies on their line, at most 70 % of the way.
        iIndex = a_iRow + 1;
        const TPos from = m_movements[a_iRow].position;
        const TPos to = m_movements[iIndex].position;
        const double dShare = std::min(shareOfLeg(from, to, a_dDistance), s_dLargestShare);
        point.position = pointOnLine(from, to, dShare);
    } else {
        // A new point after the last one extends the last leg.
        const TPos from = m_movements[iCount - 2].position;
        const double dShare = shareOfLeg(from, end, a_dDistance);
        point.position = pointOnLine(from, end, 1.0 + dShare);
        if (a_sName.isEmpty()) {
            iIndex = iCount - 1;
            std::swap(point.position, m_movements[iIndex].position);
        }
    }
    m_movements.insert(iIndex, point);
    updatePoint();
}

void PositionSettingsPtp::insertRowsAfter(int a_iRow, QVector<MovementPoint> a_points)
{
    if (!hasRow(a_iRow) || a_points.isEmpty()) {
        return;
    }
    computeLegs();
    if (a_iRow == m_movements.size() - 1) {
        // The last new point becomes the end of the path and takes the properties of
        // the old end.
        MovementPoint& oldEnd = m_movements.last();
        MovementPoint& newEnd = a_points.last();
        newEnd.major = true;
        newEnd.speed = oldEnd.speed;
        newEnd.name = oldEnd.name;
        newEnd.dwellTime = oldEnd.dwellTime;
        if (a_iRow != 0) {
            oldEnd.major = false;
            oldEnd.name = QString();
        }
    }
    const auto itGap = m_movements.insert(a_iRow + qsizetype{1}, a_points.size(), MovementPoint());
    std::copy(a_points.cbegin(), a_points.cend(), itGap);
    updatePoint();
}

void PositionSettingsPtp::insertArcAfter(int a_iRow, int a_iCount, int a_iAngle, double a_dRadius)
{
    if (!hasRow(a_iRow) || a_iCount < 1) {
        return;
    }
    if (static_cast<std::uint64_t>(a_iCount) > Limits::value(Limits::ArcPoints)) {
        traceError(s_szSource, [a_iCount] {
            return QStringLiteral("Arc of %1 points refused: %2")
                .arg(QString::number(a_iCount), Limits::exceeded(Limits::ArcPoints));
        });
        return;
    }
    const QVector<MovementPoint>& movements = points();
    const TPos start = movements[a_iRow].position;
    // The centre lies at a right angle to the heading (dBase), on the right for a
    // positive angle. Seen from the centre, the row's point lies in the opposite
    // direction (dBase - 180), and each further point adds angle / (count - 1)
    // degrees. The points lie on geodesics from the centre.
    const double dRadius = a_dRadius / s_dMetresPerKilometre;
    double dBase = a_iAngle > 0 ? s_dRightAngle : -s_dRightAngle;
    if (a_iRow > 0) {
        dBase += azimuth(movements[a_iRow - 1].position, start);
    }
    const TPos centre = Simulation::position(start, dBase, dRadius);
    const double dTurn = a_iCount > 1 ? static_cast<double>(a_iAngle) / (a_iCount - 1) : 0.0;
    QVector<MovementPoint> arc;
    for (int iPoint = 0; iPoint < a_iCount; ++iPoint) {
        const double dBearing = std::fmod(iPoint * dTurn + (dBase - s_dHalfTurn), s_dFullTurn);
        MovementPoint point;
        point.position =
            Simulation::position(centre, dBearing < 0.0 ? dBearing + s_dFullTurn : dBearing, dRadius);
        point.speed = 0.0;
        arc.append(point);
    }
    insertRowsAfter(a_iRow, arc);
}

void PositionSettingsPtp::area(double& a_dWidth, double& a_dHeight) const
{
    TPos low = points().first().position;
    TPos high = low;
    for (const MovementPoint& point : points()) {
        low.longitude = std::min(low.longitude, point.position.longitude);
        low.latitude = std::min(low.latitude, point.position.latitude);
        high.longitude = std::max(high.longitude, point.position.longitude);
        high.latitude = std::max(high.latitude, point.position.latitude);
    }
    // Geodesics along the southern and the western edge of the box.
    a_dWidth = distance(low, {high.longitude, low.latitude});
    a_dHeight = distance(low, {low.longitude, high.latitude});
}

double PositionSettingsPtp::length() const
{
    const QVector<MovementPoint>& movements = points();
    double dLength = 0.0;
    for (qsizetype iRow = 1; iRow < movements.size(); ++iRow) {
        dLength += distance(movements[iRow - 1].position, movements[iRow].position);
    }
    return dLength;
}

PositionSettingsType PositionSettingsPtp::getType()
{
    return PositionSettingsType::Movement;
}

TPos PositionSettingsPtp::getPosition()
{
    return m_movements.constFirst().position;
}

void PositionSettingsPtp::setPosition(const TPos& a_position)
{
    // The times are computed before the move and stay, although the distances change
    // with the latitude.
    computeLegs();
    const TPos first = m_movements.constFirst().position;
    const double dDeltaLongitude = a_position.longitude - first.longitude;
    const double dDeltaLatitude = a_position.latitude - first.latitude;
    for (MovementPoint& point : m_movements) {
        point.position = offsetBy(point.position, dDeltaLongitude, dDeltaLatitude);
    }
}

TPos PositionSettingsPtp::getPositionAt(unsigned int a_uiTime)
{
    const QVector<MovementPoint>& movements = points();
    const auto stretch = stretchAt(a_uiTime);
    if (!stretch) {
        const auto time = timeInNextCycle(a_uiTime);
        return time ? getPositionAt(*time) : movements.last().position;
    }
    const MovementPoint& from = movements[*stretch];
    const std::uint64_t uiLegStart = arrivals()[static_cast<std::size_t>(*stretch)] + from.dwellTime;
    if (a_uiTime < uiLegStart) {
        return from.position;
    }
    // The share of the leg's time that has passed.
    const double dShare = static_cast<double>(a_uiTime - uiLegStart) / from.transitionTime;
    return pointOnLine(from.position, movements[*stretch + 1].position, dShare);
}

double PositionSettingsPtp::headingAt(unsigned int a_uiTime) const
{
    const QVector<MovementPoint>& movements = points();
    auto stretch = stretchAt(a_uiTime);
    if (!stretch) {
        if (const auto time = timeInNextCycle(a_uiTime)) {
            return headingAt(*time);
        }
        if (movements.size() < 2) {
            return 0.0;
        }
        // After the end the heading is that of the last leg.
        stretch = movements.size() - 2;
    }
    return azimuth(movements[*stretch].position, movements[*stretch + 1].position);
}

double PositionSettingsPtp::speedAt(unsigned int a_uiTime) const
{
    if (const auto stretch = stretchAt(a_uiTime)) {
        // The speed is that of the leg to the point reached last, not of the leg after
        // that point.
        return static_cast<double>(getMovementSpeed(static_cast<int>(*stretch)));
    }
    const auto time = timeInNextCycle(a_uiTime);
    return time ? speedAt(*time) : 0.0;
}

bool PositionSettingsPtp::isTimeDependend() const
{
    return true;
}

bool PositionSettingsPtp::isActiveAt(unsigned int a_uiTime) const
{
    return m_eEndBehavior != EndBehaviourType::Inactive || a_uiTime <= arrivals().back();
}

unsigned int PositionSettingsPtp::activeUntil() const
{
    return m_eEndBehavior == EndBehaviourType::Inactive ? clampToUInt32(arrivals().back()) : UINT32_MAX;
}

bool PositionSettingsPtp::equal(const IPositionSettings* a_pOther)
{
    const auto* pOther = dynamic_cast<const PositionSettingsPtp*>(a_pOther);
    return pOther != nullptr &&
           std::equal(points().cbegin(), points().cend(), pOther->points().cbegin(), pOther->points().cend());
}

IPositionSettings* PositionSettingsPtp::clone()
{
    computeLegs(); // the copy then need not compute the legs again
    auto pClone = std::make_unique<PositionSettingsPtp>(*this);
    pClone->m_bHandedOut = false;
    return pClone.release();
}

/// Marks the derived fields of the points as outdated. The next query computes the
/// fields. When a caller may hold a reference to the points, the fields are computed
/// immediately.
void PositionSettingsPtp::updatePoint()
{
    m_bLegsStale = true;
    if (m_bHandedOut) {
        computeLegs();
    }
}

/// Computes the derived fields of the points unless the fields are up to date. Every
/// change except a full replacement of the points calls this function first: the values
/// that an intermediate point inherits must not depend on when they were last read.
///
/// Runs from the last point to the first, because an intermediate point takes the speed
/// of the next point. The next point may be an intermediate point, too.
void PositionSettingsPtp::computeLegs() const
{
    if (!m_bLegsStale) {
        return;
    }
    m_bLegsStale = false;
    m_arrivals.clear();
    m_movements.last().transitionTime = 0;
    for (qsizetype iRow = m_movements.size() - 2; iRow >= 0; --iRow) {
        MovementPoint& point = m_movements[iRow];
        const MovementPoint& next = m_movements[iRow + 1];
        if (!point.major) {
            point.speed = next.speed;
            point.dwellTime = 0;
        }
        point.transitionTime = travelTime(point.position, next.position, next.speed);
    }
}

/// The points with their derived fields. Reading through this function also avoids a
/// copy of the list: a non-const access to the mutable list would detach it.
const QVector<MovementPoint>& PositionSettingsPtp::points() const
{
    computeLegs();
    return m_movements;
}

/// The times (ms) at which the points are reached, one entry for each point. One more
/// entry at the end is the time at which the movement ends. The entries are the running
/// sum of dwell and transition times.
const std::vector<std::uint64_t>& PositionSettingsPtp::arrivals() const
{
    computeLegs();
    if (m_arrivals.empty()) {
        const QVector<MovementPoint>& movements = points();
        m_arrivals.reserve(static_cast<std::size_t>(movements.size()) + 1);
        std::uint64_t uiTime = 0;
        m_arrivals.push_back(uiTime);
        for (const MovementPoint& point : movements) {
            uiTime += std::uint64_t{point.dwellTime} + point.transitionTime;
            m_arrivals.push_back(uiTime);
        }
    }
    return m_arrivals;
}

/// The row of the point at which the emitter dwells or that the emitter left last. No
/// value when the emitter has reached the last point: the dwell time of that point is
/// not part of the cycle.
std::optional<qsizetype> PositionSettingsPtp::stretchAt(unsigned int a_uiTime) const
{
    const std::vector<std::uint64_t>& times = arrivals();
    // The stretch of a row (its dwell time and the leg after it) ends with the
    // arrival at the next row.
    const auto itEnds = times.cbegin() + 1;
    const auto itLast = times.cend() - 1;
    const auto it = std::upper_bound(itEnds, itLast, std::uint64_t{a_uiTime});
    return it != itLast ? std::optional<qsizetype>(it - itEnds) : std::nullopt;
}

/// Maps a scenario time (ms) that is later than the arrival at the last point to the time
/// in the first cycle with the same position. A cycle lasts until that arrival, so the
/// result is the time modulo the arrival time. No value when the movement does not
/// restart or a cycle is 0 ms long.
std::optional<unsigned int> PositionSettingsPtp::timeInNextCycle(unsigned int a_uiTime) const
{
    const std::uint64_t uiCycle = *(arrivals().cend() - 2);
    if (m_eEndBehavior != EndBehaviourType::Restart || uiCycle == 0) {
        return std::nullopt;
    }
    return static_cast<unsigned int>(a_uiTime % uiCycle);
}

bool PositionSettingsPtp::hasRow(int a_iRow) const
{
    return a_iRow >= 0 && a_iRow < m_movements.size();
}

} // namespace Simulation

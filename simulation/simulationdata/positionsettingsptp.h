#ifndef SIMULATIONDATA_POSITIONSETTINGSPTP_H
#define SIMULATIONDATA_POSITIONSETTINGSPTP_H

#include "simulationdata/ipositionsettings.h"
#include "simulationdata/movementpoint.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QVector>

namespace Simulation {

/// A movement from way point to way point. At each point the emitter first dwells,
/// then travels to the next.
///
/// There is always at least one point. After the last point the emitter stays there,
/// restarts from the first point, or becomes inactive. The dwell time of the last
/// point counts only when the emitter becomes inactive. The first query computes the
/// derived values: the transition times, and the speed and dwell time of
/// intermediate points. Reading a document therefore needs no geodetic calculation.
class SIMULATIONDATA_EXPORT PositionSettingsPtp : public IPositionSettings
{
public:
    /// Creates two way points. The second is `a_dOffset` degrees north and east of
    /// `a_start` and is reached at 50 km/h. The movement restarts after its end.
    PositionSettingsPtp(const TPos& a_start, double a_dOffset);

    /// The points in order. The reference is valid as long as the object. The
    /// spelling is part of the interface.
    [[nodiscard]] const QVector<MovementPoint>& getMovments() const;

    /// The points in order, with the values that were set: times, and the speed and dwell
    /// time of intermediate points, may be outdated. Costs no geodesics. The reference is
    /// valid until the points change.
    [[nodiscard]] const QVector<MovementPoint>& givenPoints() const { return m_movements; }

    /// Replaces the points. Ignored for fewer than two points. The first and the
    /// last point become way points. A last point that was not a way point gets the
    /// speed 50 km/h.
    void setMovements(const QVector<MovementPoint>& a_movements);

    /// Returns a point. A row out of range gives the last point. The reference is
    /// valid until the points change.
    [[nodiscard]] const MovementPoint& getPoint(int a_iRow) const;
    /// Ignored for a row out of range.
    void setPoint(int a_iRow, const MovementPoint& a_point);

    /// The behaviour after the last point. Not part of equality.
    [[nodiscard]] EndBehaviourType getEndBehavior() const { return m_eEndBehavior; }
    void setEndBehavior(EndBehaviourType a_eBehavior) { m_eEndBehavior = a_eBehavior; }

    /// When a point is reached (ms, at most 0xFFFFFFFF). 0 for row 0 and below. Rows
    /// after the last give the end of the movement. Pointers that are not null
    /// receive the range that setArivalTime() accepts: from the departure from the
    /// previous point to 0xFFFFFFFF. For row 0 both ends of the range are 0. The
    /// spelling is part of the interface.
    unsigned int getArivalTime(int a_iRow, unsigned int* a_pMin = nullptr,
                               unsigned int* a_pMax = nullptr) const;

    /// Changes the speed of a point so that the point is reached at a time (ms). The
    /// distance is measured from the previous way point, over all intermediate
    /// points. When the time equals the departure from the previous point, the speed
    /// becomes 0 and the leg takes no time. Ignored for row 0, rows out of range,
    /// and times before that departure.
    void setArivalTime(int a_iRow, unsigned int a_uiTime);

    /// When a point is left (ms, at most 0xFFFFFFFF). Pointers that are not null
    /// receive the range from the arrival to 0xFFFFFFFF.
    unsigned int getDepartureTime(int a_iRow, unsigned int* a_pMin = nullptr,
                                  unsigned int* a_pMax = nullptr) const;

    /// Changes the dwell time of a point so that the point is left at a time (ms).
    /// The dwell time becomes this time minus the arrival time, modulo 2^32. An
    /// intermediate point keeps this dwell time only until the points change; then
    /// its dwell time is 0 again. Ignored for a row out of range.
    void setDepartureTime(int a_iRow, unsigned int a_uiTime);

    /// The speed (km/h) on the leg to a point, calculated from the distance and the
    /// transition time of the leg. -1 for row 0, rows out of range, and legs that
    /// take no time.
    [[nodiscard]] float getMovementSpeed(int a_iRow) const;
    /// Sets the speed (km/h) on the leg to a point. Ignored for row 0 and rows out of
    /// range. Has no effect on an intermediate point, which takes the speed of the
    /// next point.
    void setMovementSpeed(int a_iRow, float a_fSpeed);

    /// Inserts a point after a row. The new point is on the straight line (in
    /// degrees) to the next point, `a_dDistance` degrees away but at most at 70 % of
    /// the way. A distance of 0 means 70 %. With a negative distance, the point lies
    /// in the opposite direction. With a name that is not null, the new point is a
    /// way point. Ignored for rows below 0.
    ///
    /// After the last row, the last leg is extended by the distance, or by its own
    /// length when the distance is 0. A named point becomes the new end. Without a
    /// name, the end moves to the new position, and the new point takes the former
    /// position of the end. When there is only one point, the new point is a way
    /// point at the same position.
    void insertRowAfter(int a_iRow, double a_dDistance, const QString& a_sName);

    /// Inserts points after a row. After the last row, the last new point becomes
    /// the end of the path and takes speed, name and dwell time of the old end. The
    /// old end becomes an intermediate point, unless it is the first point. Ignored
    /// for rows out of range.
    void insertRowsAfter(int a_iRow, QVector<MovementPoint> a_points);

    /// Inserts `a_iCount` intermediate points after a row. The points lie on an arc
    /// of `a_dRadius` metres that turns by `a_iAngle` degrees; a positive angle turns
    /// right. The first new point lies on the point of the row. The heading at row 0
    /// counts as north, because no leg leads to that row. Ignored for rows out of
    /// range, and for counts below 1 or above Limits::ArcPoints.
    void insertArcAfter(int a_iRow, int a_iCount, int a_iAngle, double a_dRadius);

    /// Every point but the first can be removed.
    [[nodiscard]] bool canRemoveRow(int a_iRow) const;

    /// Removes a point. Ignored when canRemoveRow() is false. When a removed
    /// way point follows an intermediate point, that point becomes a way point with
    /// the speed and dwell time of the removed one.
    void removeRow(int a_iRow);

    /// The size of the box around all points (km). The width is measured along the
    /// southern edge, the height from south to north.
    void area(double& a_dWidth, double& a_dHeight) const;

    /// The length of the path, km.
    [[nodiscard]] double length() const;

    [[nodiscard]] PositionSettingsType getType() override;
    [[nodiscard]] TPos getPosition() override;

    /// Moves every point by the same number of degrees. Times stay as they are until
    /// the points change.
    void setPosition(const TPos& a_position) override;

    /// Interpolates in degrees, not along the geodesic. After the first query, every
    /// query for a time takes O(log n) in the number of points.
    [[nodiscard]] TPos getPositionAt(unsigned int a_uiTime) override;

    /// The azimuth at the start of the current leg. While the emitter dwells, the
    /// current leg is the next one; after the end, it is the last one.
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const override;

    /// The speed (km/h) of the leg that led to the point where the emitter dwells.
    /// While the emitter travels, it is the speed of the leg before the current one,
    /// deliberately. -1 until the second point is reached and after legs that take
    /// no time. 0 after the end.
    [[nodiscard]] double speedAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;

    /// With the end behaviour Inactive, the movement becomes inactive after the instant
    /// at which it ends; at that instant it is still active.
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;
    [[nodiscard]] unsigned int activeUntil() const override;

    /// Compares the points only.
    [[nodiscard]] bool equal(const IPositionSettings* a_pOther) override;
    [[nodiscard]] IPositionSettings* clone() override;

private:
    void updatePoint();
    void computeLegs() const;
    [[nodiscard]] const QVector<MovementPoint>& points() const;
    [[nodiscard]] const std::vector<std::uint64_t>& arrivals() const;
    [[nodiscard]] std::optional<qsizetype> stretchAt(unsigned int a_uiTime) const;
    [[nodiscard]] std::optional<unsigned int> timeInNextCycle(unsigned int a_uiTime) const;
    [[nodiscard]] bool hasRow(int a_iRow) const;

    mutable QVector<MovementPoint> m_movements;
    EndBehaviourType m_eEndBehavior = EndBehaviourType::Restart;
    mutable bool m_bLegsStale = true;  ///< whether the derived fields of the points are outdated
    mutable bool m_bHandedOut = false; ///< whether a caller may hold a reference to the points
    mutable std::vector<std::uint64_t>
        m_arrivals; ///< ms, arrival at each point and the end; empty = not built
};

} // namespace Simulation

#endif

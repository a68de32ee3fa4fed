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

/// A movement from way point to way point: at each point the emitter first dwells,
/// then travels to the next.
///
/// There is always at least one point. After the last one the movement stays there,
/// restarts, or ends the emitter's activity; the dwell time of the last point counts
/// only when it ends the activity. The derived values (transition times, and speed
/// and dwell time of intermediate points) are computed by the first query, so that
/// reading a document needs no geodesy.
class SIMULATIONDATA_EXPORT PositionSettingsPtp : public IPositionSettings
{
public:
    /// Two way points: `a_start`, and the point `a_dOffset` degrees north and east of
    /// it, reached at 50 km/h. Restarts after its end.
    PositionSettingsPtp(const TPos& a_start, double a_dOffset);

    /// The points in order. The reference is valid as long as the object. The
    /// spelling is part of the interface.
    [[nodiscard]] const QVector<MovementPoint>& getMovments() const;

    /// Replaces the points. Ignored for fewer than two. The first point becomes a way
    /// point, and so does the last, with 50 km/h unless it was one already.
    void setMovements(const QVector<MovementPoint>& a_movements);

    /// A point, or the last one for a row out of range. The reference is valid
    /// until the points change.
    [[nodiscard]] const MovementPoint& getPoint(int a_iRow) const;
    /// Ignored for a row out of range.
    void setPoint(int a_iRow, const MovementPoint& a_point);

    /// What follows the last point. Not part of equality.
    [[nodiscard]] EndBehaviourType getEndBehavior() const { return m_eEndBehavior; }
    void setEndBehavior(EndBehaviourType a_eBehavior) { m_eEndBehavior = a_eBehavior; }

    /// When a point is reached (ms; 0 for row 0 and below, the movement's end for
    /// rows beyond it, at most 0xFFFFFFFF). Pointers that are not null receive the
    /// range that setArivalTime() accepts: from the departure of the point before to
    /// 0xFFFFFFFF; for row 0 both are 0. The spelling is part of the interface.
    unsigned int getArivalTime(int a_iRow, unsigned int* a_pMin = nullptr,
                               unsigned int* a_pMax = nullptr) const;

    /// Changes the speed of a point so that it is reached at a time (ms). The
    /// distance counts from the way point before, over all intermediate points. A
    /// time equal to the departure of the point before sets the speed to 0: the leg
    /// then takes no time. Ignored for row 0, rows out of range, and times before
    /// that departure.
    void setArivalTime(int a_iRow, unsigned int a_uiTime);

    /// When a point is left (ms, at most 0xFFFFFFFF). Pointers that are not null
    /// receive the range from the arrival to 0xFFFFFFFF.
    unsigned int getDepartureTime(int a_iRow, unsigned int* a_pMin = nullptr,
                                  unsigned int* a_pMax = nullptr) const;

    /// Changes the dwell time of a point to the time (ms) since its arrival, modulo
    /// 2^32. The next change of the points resets the dwell time of an intermediate
    /// point to 0. Ignored for a row out of range.
    void setDepartureTime(int a_iRow, unsigned int a_uiTime);

    /// The speed (km/h) of the leg that leads to a point, from its distance and
    /// transition time; -1 for row 0, rows out of range, and legs that take no
    /// time.
    [[nodiscard]] float getMovementSpeed(int a_iRow) const;
    /// Ignored for row 0 and rows out of range. An intermediate point takes the speed
    /// of the next point instead.
    void setMovementSpeed(int a_iRow, float a_fSpeed);

    /// Inserts a point after a row, on the straight line (in degrees) to the next
    /// point, `a_dDistance` degrees away but at most 70 % of the way. 0 means 70 %; a
    /// negative distance lies in the opposite direction. A name that is not null
    /// makes a way point. Ignored for rows below 0.
    ///
    /// After the last row it extends the last leg by the distance, for 0 by the leg's
    /// own length. A named point becomes the new end. Without a name the end itself
    /// moves there, and the new point takes its former place. With a single point the
    /// new one is a way point at the same position.
    void insertRowAfter(int a_iRow, double a_dDistance, const QString& a_sName);

    /// Inserts points after a row. After the last row, the last new point becomes the
    /// end of the path, with speed, name and dwell time of the old end. The old end
    /// becomes an intermediate point unless it is the first point. Ignored for rows
    /// out of range.
    void insertRowsAfter(int a_iRow, QVector<MovementPoint> a_points);

    /// Inserts `a_iCount` intermediate points after a row, on an arc of
    /// `a_dRadius` metres that turns by `a_iAngle` degrees, to the right when
    /// positive. The first of them lies on the row's point; the first row counts
    /// as heading north. Ignored for rows out of range, counts below 1 and above
    /// Limits::ArcPoints.
    void insertArcAfter(int a_iRow, int a_iCount, int a_iAngle, double a_dRadius);

    /// Every point but the first can be removed.
    [[nodiscard]] bool canRemoveRow(int a_iRow) const;

    /// Removes a point; ignored where canRemoveRow() is false. When the point before
    /// a removed way point is intermediate, it becomes a way point with the same
    /// speed and dwell time.
    void removeRow(int a_iRow);

    /// The size of the box around all points, km: west to east along its
    /// southern edge, and south to north.
    void area(double& a_dWidth, double& a_dHeight) const;

    /// The length of the path, km.
    [[nodiscard]] double length() const;

    [[nodiscard]] PositionSettingsType getType() override;
    [[nodiscard]] TPos getPosition() override;

    /// Moves every point by the same amount of degrees. Times stay as they are
    /// until the points change.
    void setPosition(const TPos& a_position) override;

    /// Interpolates in degrees, not along the geodesic. Time queries are
    /// O(log n) in the number of points, after the first one.
    [[nodiscard]] TPos getPositionAt(unsigned int a_uiTime) override;

    /// The azimuth at the start of the current leg. A dwelling emitter faces its next
    /// leg, after the end its last.
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const override;

    /// The speed (km/h) of the leg that led to the point where the emitter dwells or
    /// which it left last, deliberately; -1 until the second point is reached and
    /// after legs that take no time, 0 after the end.
    [[nodiscard]] double speedAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;

    /// With Inactive, the instant at which the movement ends is still active.
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
    mutable bool m_bLegsStale = true;  ///< the derived fields of the points are outdated
    mutable bool m_bHandedOut = false; ///< a caller may hold a reference to the points
    mutable std::vector<std::uint64_t>
        m_arrivals; ///< ms, arrival at each point and the end; empty = not built
};

} // namespace Simulation

#endif

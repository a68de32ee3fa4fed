#ifndef SIMULATIONDATA_IPOSITIONSETTINGS_H
#define SIMULATIONDATA_IPOSITIONSETTINGS_H

#include "simulationdata/enumerations.h"
#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

namespace Simulation {

/// The position behaviour of an emitter, a station or a device: a site or a movement.
///
/// Positions are degrees on WGS 84, longitude first. Times are scenario times in ms
/// since scenario start, 32 bits. An object is owned by its emitter, station or
/// device. Queries may fill caches without a lock, so one object serves one thread
/// at a time. The order of the operations and their const qualifiers are part of the
/// interface.
class SIMULATIONDATA_EXPORT IPositionSettings
{
public:
    virtual ~IPositionSettings() = default;

    [[nodiscard]] virtual PositionSettingsType getType() = 0;

    /// The start position. Setting it moves the whole path.
    [[nodiscard]] virtual TPos getPosition() = 0;
    virtual void setPosition(const TPos& a_position) = 0;

    [[nodiscard]] virtual TPos getPositionAt(unsigned int a_uiTime) = 0;

    /// The heading at a scenario time (ms), degrees clockwise from north, [0, 360).
    [[nodiscard]] virtual double headingAt(unsigned int a_uiTime) const = 0;

    /// The speed at a scenario time (ms), km/h.
    [[nodiscard]] virtual double speedAt(unsigned int a_uiTime) const = 0;

    /// Whether the position changes over time. The spelling is part of the
    /// interface.
    [[nodiscard]] virtual bool isTimeDependend() const = 0;

    /// Whether the movement lets the emitter send at a scenario time (ms).
    [[nodiscard]] virtual bool isActiveAt(unsigned int a_uiTime) const = 0;

    /// The last active scenario time (ms); 0xFFFFFFFF = without end.
    [[nodiscard]] virtual unsigned int activeUntil() const = 0;

    /// Whether `a_pOther` has the same class and the same position or way points.
    /// False for null.
    [[nodiscard]] virtual bool equal(const IPositionSettings* a_pOther) = 0;

    /// A copy that the caller owns.
    [[nodiscard]] virtual IPositionSettings* clone() = 0;

protected:
    IPositionSettings() = default;
    IPositionSettings(const IPositionSettings&) = default;
    IPositionSettings& operator=(const IPositionSettings&) = default;
};

} // namespace Simulation

#endif

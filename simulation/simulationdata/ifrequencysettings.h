#ifndef SIMULATIONDATA_IFREQUENCYSETTINGS_H
#define SIMULATIONDATA_IFREQUENCYSETTINGS_H

#include "simulationdata/enumerations.h"
#include "simulationdata/hractivity.h"
#include "simulationdata/simulationdata_export.h"

#include <QList>

namespace Simulation {

/// The frequency behaviour of an emitter: a fixed carrier, a sweep or a hopper.
///
/// Frequencies are in Hz. Times are scenario times in ms since scenario start, 32
/// bits. An object is owned by its emitter or network. Queries may fill caches
/// without a lock, so one object serves one thread at a time. The order of the
/// operations and their const qualifiers are part of the interface.
class SIMULATIONDATA_EXPORT IFrequencySettings
{
public:
    virtual ~IFrequencySettings() = default;

    [[nodiscard]] virtual FrequencySettingsType getType() = 0;

    /// The centre frequency, Hz. Setting it moves every frequency by the same
    /// amount.
    [[nodiscard]] virtual double getCenterFrequency() const = 0;
    virtual void setCenterFrequency(double a_dFrequency) = 0;

    /// The bounds of the frequencies, Hz.
    [[nodiscard]] virtual double getMinimumFrequency() const = 0;
    [[nodiscard]] virtual double getMaximumFrequency() const = 0;

    /// The frequency at a scenario time (ms), Hz.
    [[nodiscard]] virtual double getFrequencyAt(unsigned int a_uiTime) const = 0;

    /// Whether a display has to follow the frequency over time. The spelling is part
    /// of the interface.
    [[nodiscard]] virtual bool isTimeDependend() const = 0;

    /// Whether the frequency behaviour lets the emitter send at a scenario
    /// time (ms).
    [[nodiscard]] virtual bool isActiveAt(unsigned int a_uiTime) const = 0;

    /// The stretches of constant frequency in the window [a_uiStart, a_uiStart +
    /// a_uiLength) (ms), in ascending order. The comments of the classes describe
    /// gaps and stretches that end after the window. A sweep may move by
    /// `a_dResolution` (Hz) within one stretch. The window is cut off at 2^32 ms. The
    /// answer has at most Limits::AnswerActivities stretches.
    [[nodiscard]] virtual QList<HRActivity>
    calculateHRActivities(unsigned int a_uiStart, unsigned int a_uiLength, double a_dResolution) const = 0;

    /// The last active scenario time (ms); 0xFFFFFFFF = without end.
    [[nodiscard]] virtual unsigned int activeUntil() const = 0;

    /// Whether `a_pOther` has the same class and the same settings. Frequencies are
    /// rounded to float and compared with compareFrequency(). False for null.
    [[nodiscard]] virtual bool equal(const IFrequencySettings* a_pOther) const = 0;

    /// A copy that the caller owns.
    [[nodiscard]] virtual IFrequencySettings* clone() const = 0;

protected:
    IFrequencySettings() = default;
    IFrequencySettings(const IFrequencySettings&) = default;
    IFrequencySettings& operator=(const IFrequencySettings&) = default;
};

} // namespace Simulation

#endif

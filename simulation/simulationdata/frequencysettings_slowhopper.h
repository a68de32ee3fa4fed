#ifndef SIMULATIONDATA_FREQUENCYSETTINGS_SLOWHOPPER_H
#define SIMULATIONDATA_FREQUENCYSETTINGS_SLOWHOPPER_H

#include "simulationdata/ifrequencysettings.h"

#include <cstdint>
#include <vector>

namespace Simulation {

/// One row of a slow hopper's table.
struct FrequencyStep
{
    double frequency = 0.0;    ///< Hz
    unsigned int duration = 0; ///< ms
};

/// Hops through a table of steps that the user edits, each with a frequency and a
/// dwell time.
///
/// After the last step it stays there, restarts, or ends the emitter's activity. A
/// new object has one step, 25 MHz for one second, and restarts. Only
/// setFrequencySteps() can leave the table without steps; its frequency is then -1.
class SIMULATIONDATA_EXPORT FrequencySettings_SlowHopper : public IFrequencySettings
{
public:
    FrequencySettings_SlowHopper();

    /// What follows the last step. Not part of equality. The names of accessor
    /// and type differ on purpose: both are part of the interface.
    [[nodiscard]] EndBehaviourType getEndBehavior() const { return m_eEndBehavior; }
    void setEndBehavior(EndBehaviourType a_eBehavior) { m_eEndBehavior = a_eBehavior; }

    [[nodiscard]] const QList<FrequencyStep>& getFrequencySteps() const { return m_frequencySteps; }
    void setFrequencySteps(const QList<FrequencyStep>& a_steps);

    /// Number of steps.
    [[nodiscard]] int rows() const;

    /// The frequency of a step (Hz); -1 for a row out of range, which the setter
    /// ignores.
    [[nodiscard]] double getFrequency(int a_iRow) const;
    void setFrequency(int a_iRow, double a_dFrequency);

    /// The dwell time of a step (ms); 0 for a row out of range, which the setter
    /// ignores.
    [[nodiscard]] unsigned int getDuration(int a_iRow) const;
    void setDuration(int a_iRow, unsigned int a_uiDuration);

    /// When a step begins, ms since the table's start, modulo 2^32. 0 for row 0
    /// and below, the table's end for rows beyond it.
    [[nodiscard]] unsigned int getTime(int a_iRow) const;

    /// Moves the beginning of a step by changing the dwell time of the step
    /// before. Ignored for row 0, rows out of range, and times that are not
    /// after the beginning of the step before.
    void setTime(int a_iRow, unsigned int a_uiTime);

    // Removing and inserting steps keeps the total length that was last computed:
    // activeUntil() and activities use it until a value is set.

    /// Removes a step. The first one stays: ignored for row 0 and out of range.
    void removeStep(int a_iRow);

    /// Inserts a copy of a step after it; a row below 0 appends a copy of the last
    /// step. Ignored for rows beyond the table.
    void insertStep(int a_iRow);

    [[nodiscard]] FrequencySettingsType getType() override;

    /// The frequency of the first step.
    [[nodiscard]] double getCenterFrequency() const override;
    void setCenterFrequency(double a_dFrequency) override;
    [[nodiscard]] double getMinimumFrequency() const override;
    [[nodiscard]] double getMaximumFrequency() const override;

    /// O(log n) in the number of steps, after the first query.
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;

    /// With Inactive, the instant at which the table ends is still active.
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;

    /// One activity per step in the window, steps without duration included.
    /// `a_dResolution` is not used. A table without duration has one activity, the
    /// window. A window without length inside the last step has none, unless the
    /// table restarts. O(log n + length of the answer).
    [[nodiscard]] QList<HRActivity> calculateHRActivities(unsigned int a_uiStart, unsigned int a_uiLength,
                                                          double a_dResolution) const override;
    [[nodiscard]] unsigned int activeUntil() const override;

    /// Compares the tables only.
    [[nodiscard]] bool equal(const IFrequencySettings* a_pOther) const override;
    [[nodiscard]] IFrequencySettings* clone() const override;

private:
    [[nodiscard]] unsigned int calculateLength() const;
    void resetLength();
    [[nodiscard]] bool hasRow(int a_iRow) const;
    [[nodiscard]] double lastFrequency() const;
    [[nodiscard]] const std::vector<std::uint64_t>& stepTimes() const;

    QList<FrequencyStep> m_frequencySteps;
    EndBehaviourType m_eEndBehavior = EndBehaviourType::Restart;
    mutable unsigned int m_uiLength = 0;            ///< ms; 0 = not computed
    mutable std::vector<std::uint64_t> m_stepTimes; ///< ms, begin of each step and the end; empty = not built
};

} // namespace Simulation

#endif

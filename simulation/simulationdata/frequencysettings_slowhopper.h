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

/// Hops through a table of steps that the user edits. Each step has a frequency and a
/// dwell time.
///
/// After the last step the hopper stays at this step, restarts with the first step, or
/// ends the emitter's activity. A new object has one step, 25 MHz for one second,
/// and restarts. Only setFrequencySteps() can leave the table empty. The frequency
/// of an empty table is -1.
class SIMULATIONDATA_EXPORT FrequencySettings_SlowHopper : public IFrequencySettings
{
public:
    FrequencySettings_SlowHopper();

    /// The behaviour after the last step. Not part of equality. The accessors and the
    /// type spell the word differently; both spellings are part of the interface.
    [[nodiscard]] EndBehaviourType getEndBehavior() const { return m_eEndBehavior; }
    void setEndBehavior(EndBehaviourType a_eBehavior) { m_eEndBehavior = a_eBehavior; }

    [[nodiscard]] const QList<FrequencyStep>& getFrequencySteps() const { return m_frequencySteps; }
    void setFrequencySteps(const QList<FrequencyStep>& a_steps);

    /// Number of steps.
    [[nodiscard]] int rows() const;

    /// The frequency of a step (Hz); -1 for a row out of range. The setter ignores
    /// such a row.
    [[nodiscard]] double getFrequency(int a_iRow) const;
    void setFrequency(int a_iRow, double a_dFrequency);

    /// The dwell time of a step (ms); 0 for a row out of range. The setter ignores
    /// such a row.
    [[nodiscard]] unsigned int getDuration(int a_iRow) const;
    void setDuration(int a_iRow, unsigned int a_uiDuration);

    /// The beginning of a step, in ms since the start of the table, modulo 2^32. 0
    /// for row 0 and below. Rows after the last give the end of the table.
    [[nodiscard]] unsigned int getTime(int a_iRow) const;

    /// Moves the beginning of a step by changing the dwell time of the previous
    /// step. Ignored for row 0 and rows out of range. Also ignored when the time is
    /// not after the beginning of the previous step.
    void setTime(int a_iRow, unsigned int a_uiTime);

    // Removing or inserting a step keeps the total length that was computed last.
    // activeUntil() and activities use that length until a value is set.

    /// Removes a step. Ignored for rows out of range and for row 0, because the first
    /// step cannot be removed.
    void removeStep(int a_iRow);

    /// Inserts a copy of a step after the step. A row below 0 appends a copy of the
    /// last step. Ignored for rows after the last.
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

    /// With the end behaviour Inactive, the hopper becomes inactive after the instant at
    /// which the table ends; at that instant it is still active.
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;

    /// One activity per step in the window, also for steps without duration.
    /// `a_dResolution` is not used. When the table has no duration, the window is
    /// the only activity. A window of length 0 inside the last step has no activity,
    /// unless the table restarts. O(log n + length of the answer).
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
    mutable std::vector<std::uint64_t> m_stepTimes; ///< ms, start of each step, then end; empty = not built
};

} // namespace Simulation

#endif

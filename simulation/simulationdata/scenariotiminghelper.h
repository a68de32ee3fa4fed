#ifndef SIMULATIONDATA_SCENARIOTIMINGHELPER_H
#define SIMULATIONDATA_SCENARIOTIMINGHELPER_H

#include "simulationdata/simulationdata_export.h"

namespace Simulation {

/// Converts the wall clock to the running time of a scenario, in milliseconds since
/// its start. The time is first stopped, then runs, and can be paused or stopped
/// again.
///
/// A plain value that is used by one thread at a time. The clock is that of
/// VelaOS::Get(), in microseconds since 1970, because timestamps are exchanged
/// between machines. Differences of timestamps are taken modulo 2^64 us and times
/// modulo 2^32 ms (49.7 days). So the times are meaningless while the start lies in
/// the future.
///
/// To resume after a pause, start again with the time of the pause:
/// startScenarioTime(currentTimeStamp(), scenarioTime()).
class SIMULATIONDATA_EXPORT ScenarioTimingHelper
{
public:
    /// A new clock is stopped: scenario time 0, paused.
    ScenarioTimingHelper() = default;

    /// The wall clock (us since 1970).
    [[nodiscard]] static unsigned long long currentTimeStamp();

    /// The time since `a_uiStartTimestamp` (us) minus `a_uiOffset` (ms), in ms. The
    /// start and the current timestamp are first truncated to whole milliseconds, so
    /// the result may differ from scenarioTime() by 1.
    [[nodiscard]] static unsigned int calculateCurrentScenarioTime(unsigned long long a_uiStartTimestamp,
                                                                   unsigned int a_uiOffset);

    /// Starts the time. The scenario time is `a_uiOffset` (ms) at `a_uiTimestamp`
    /// (us).
    void startScenarioTime(unsigned long long a_uiTimestamp, unsigned int a_uiOffset);

    /// Pauses the time at `a_uiTime` (ms).
    void pauseScenarioTime(unsigned int a_uiTime);

    /// Stops the time at 0.
    void stopScenarioTime();

    /// The scenario time (ms).
    [[nodiscard]] unsigned int scenarioTime() const;

    /// Always 0 (ms): the offset of a start is part of startTimestamp().
    [[nodiscard]] unsigned int scenarioStartTime() const { return m_uiScenarioStartTime; }

    /// The timestamp (us) at which the scenario time was 0; 0 before the first
    /// start.
    [[nodiscard]] unsigned long long startTimestamp() const { return m_uiStartTimestamp; }

    /// Whether the time is paused or stopped.
    [[nodiscard]] bool isPaused() const { return m_bPaused; }
    [[nodiscard]] bool isStopped() const { return m_bStopped; }

private:
    unsigned long long m_uiStartTimestamp = 0;
    unsigned int m_uiScenarioStartTime = 0;
    unsigned int m_uiPausedTime = 0;
    bool m_bPaused = true;
    bool m_bStopped = true;
};

} // namespace Simulation

#endif

#include "scenariotiminghelper.h"

#include "kpbase/velaos.h"

#include <cstdint>

namespace Simulation {

namespace {

constexpr unsigned long long s_uiMicrosecondsPerMillisecond = 1000;

/// The low 32 bits: the time wraps round every 49.7 days, on purpose.
unsigned int wrapped(unsigned long long a_uiMilliseconds)
{
    return static_cast<std::uint32_t>(a_uiMilliseconds);
}

} // namespace

unsigned long long ScenarioTimingHelper::currentTimeStamp()
{
    return VelaOS::Get().timestamp();
}

unsigned int ScenarioTimingHelper::calculateCurrentScenarioTime(unsigned long long a_uiStartTimestamp,
                                                                unsigned int a_uiOffset)
{
    return wrapped(currentTimeStamp() / s_uiMicrosecondsPerMillisecond -
                   a_uiStartTimestamp / s_uiMicrosecondsPerMillisecond - a_uiOffset);
}

void ScenarioTimingHelper::startScenarioTime(unsigned long long a_uiTimestamp, unsigned int a_uiOffset)
{
    m_bPaused = false;
    m_bStopped = false;
    m_uiScenarioStartTime = 0;
    // Calculated in 64 bits, because an offset of 72 minutes exceeds 2^32 microseconds.
    // When the timestamp is smaller than the offset, the difference wraps round here,
    // and back in scenarioTime().
    m_uiStartTimestamp = a_uiTimestamp - a_uiOffset * s_uiMicrosecondsPerMillisecond;
}

void ScenarioTimingHelper::pauseScenarioTime(unsigned int a_uiTime)
{
    m_bPaused = true;
    m_bStopped = false;
    m_uiPausedTime = a_uiTime;
}

void ScenarioTimingHelper::stopScenarioTime()
{
    m_bPaused = true;
    m_bStopped = true;
    m_uiPausedTime = 0;
}

unsigned int ScenarioTimingHelper::scenarioTime() const
{
    return m_bPaused ? m_uiPausedTime
                     : wrapped((currentTimeStamp() - m_uiStartTimestamp) / s_uiMicrosecondsPerMillisecond);
}

} // namespace Simulation

#include "frequencysettings_slowhopper.h"

#include "ifrequencysettings_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/frequencysettings_slowhopper";

constexpr double s_dNoFrequency = -1.0;
constexpr FrequencyStep s_firstStep{25'000'000.0, 1000};

/// The index of the step that runs at a time (ms from the table's start). The time must be
/// before the table's end. The result is the first step that ends after the time. Steps
/// without duration never run.
std::size_t stepAt(const std::vector<std::uint64_t>& a_stepTimes, std::uint64_t a_uiTime)
{
    const auto itEnds = a_stepTimes.cbegin() + 1;
    return static_cast<std::size_t>(std::upper_bound(itEnds, a_stepTimes.cend(), a_uiTime) - itEnds);
}

bool lowerFrequency(const FrequencyStep& a_first, const FrequencyStep& a_second)
{
    return a_first.frequency < a_second.frequency;
}

bool equalSteps(const FrequencyStep& a_first, const FrequencyStep& a_second)
{
    return a_first.duration == a_second.duration &&
           compareFrequency(static_cast<float>(a_first.frequency), static_cast<float>(a_second.frequency));
}

} // namespace

FrequencySettings_SlowHopper::FrequencySettings_SlowHopper()
    : m_frequencySteps{s_firstStep}
{}

void FrequencySettings_SlowHopper::setFrequencySteps(const QList<FrequencyStep>& a_steps)
{
    resetLength();
    m_frequencySteps = a_steps;
}

int FrequencySettings_SlowHopper::rows() const
{
    return static_cast<int>(m_frequencySteps.size());
}

double FrequencySettings_SlowHopper::getFrequency(int a_iRow) const
{
    return hasRow(a_iRow) ? m_frequencySteps[a_iRow].frequency : s_dNoFrequency;
}

void FrequencySettings_SlowHopper::setFrequency(int a_iRow, double a_dFrequency)
{
    resetLength();
    if (hasRow(a_iRow)) {
        m_frequencySteps[a_iRow].frequency = a_dFrequency;
    }
}

unsigned int FrequencySettings_SlowHopper::getDuration(int a_iRow) const
{
    return hasRow(a_iRow) ? m_frequencySteps[a_iRow].duration : 0;
}

void FrequencySettings_SlowHopper::setDuration(int a_iRow, unsigned int a_uiDuration)
{
    resetLength();
    if (hasRow(a_iRow)) {
        m_frequencySteps[a_iRow].duration = a_uiDuration;
    }
}

unsigned int FrequencySettings_SlowHopper::getTime(int a_iRow) const
{
    const int iRow = std::clamp(a_iRow, 0, rows());
    return static_cast<std::uint32_t>(stepTimes()[static_cast<std::size_t>(iRow)]);
}

void FrequencySettings_SlowHopper::setTime(int a_iRow, unsigned int a_uiTime)
{
    // The times are read before the reset, which drops them. In a table longer than
    // 2^32 ms, times and durations wrap modulo 2^32.
    const std::uint32_t uiBefore = getTime(a_iRow - (a_iRow > 0 ? 1 : 0));
    const std::uint32_t uiCurrent = getTime(a_iRow);
    resetLength();
    if (a_iRow >= 1 && hasRow(a_iRow) && a_uiTime > uiBefore) {
        // The previous step changes its duration by the difference.
        m_frequencySteps[a_iRow - 1].duration += a_uiTime - uiCurrent;
    }
}

void FrequencySettings_SlowHopper::removeStep(int a_iRow)
{
    if (a_iRow >= 1 && hasRow(a_iRow)) {
        m_frequencySteps.removeAt(a_iRow);
        m_stepTimes.clear(); // the length is kept until resetLength()
    }
}

void FrequencySettings_SlowHopper::insertStep(int a_iRow)
{
    if (m_frequencySteps.isEmpty() || a_iRow >= rows()) {
        return;
    }
    const int iSource = a_iRow < 0 ? rows() - 1 : a_iRow;
    const FrequencyStep step = m_frequencySteps[iSource];
    m_frequencySteps.insert(iSource + 1, step);
    m_stepTimes.clear(); // the length is kept until resetLength()
}

FrequencySettingsType FrequencySettings_SlowHopper::getType()
{
    return FrequencySettingsType::SlowHopper;
}

double FrequencySettings_SlowHopper::getCenterFrequency() const
{
    return getFrequency(0);
}

void FrequencySettings_SlowHopper::setCenterFrequency(double a_dFrequency)
{
    resetLength();
    const double dShift = getCenterFrequency() - a_dFrequency;
    for (FrequencyStep& step : m_frequencySteps) {
        step.frequency -= dShift;
    }
}

double FrequencySettings_SlowHopper::getMinimumFrequency() const
{
    const auto it = std::min_element(m_frequencySteps.cbegin(), m_frequencySteps.cend(), lowerFrequency);
    return it != m_frequencySteps.cend() ? it->frequency : s_dNoFrequency;
}

double FrequencySettings_SlowHopper::getMaximumFrequency() const
{
    const auto it = std::max_element(m_frequencySteps.cbegin(), m_frequencySteps.cend(), lowerFrequency);
    return it != m_frequencySteps.cend() ? it->frequency : s_dNoFrequency;
}

double FrequencySettings_SlowHopper::getFrequencyAt(unsigned int a_uiTime) const
{
    const auto& times = stepTimes();
    const std::uint64_t uiCycle = times.back();
    if (a_uiTime < uiCycle) {
        return m_frequencySteps[static_cast<qsizetype>(stepAt(times, a_uiTime))].frequency;
    }
    if (m_eEndBehavior == EndBehaviourType::Restart && uiCycle != 0) {
        return getFrequencyAt(static_cast<std::uint32_t>(a_uiTime % uiCycle));
    }
    return lastFrequency();
}

bool FrequencySettings_SlowHopper::isTimeDependend() const
{
    return true;
}

bool FrequencySettings_SlowHopper::isActiveAt(unsigned int a_uiTime) const
{
    // The hopper is still active at the instant at which the table ends.
    return m_eEndBehavior != EndBehaviourType::Inactive || a_uiTime <= stepTimes().back();
}

QList<HRActivity> FrequencySettings_SlowHopper::calculateHRActivities(unsigned int a_uiStart,
                                                                      unsigned int a_uiLength,
                                                                      double /*a_dResolution*/) const
{
    // After the end the last frequency lasts (Stop), or there is no activity
    // (Inactive).
    const std::uint32_t uiLength = calculateLength();
    if (a_uiStart > uiLength && m_eEndBehavior == EndBehaviourType::Stop) {
        return {{a_uiStart, a_uiLength, lastFrequency()}};
    }
    if (a_uiStart > uiLength && m_eEndBehavior == EndBehaviourType::Inactive) {
        return {};
    }
    const auto& times = stepTimes();
    const std::uint64_t uiCycle = times.back();
    if (uiLength == 0 || uiCycle == 0) {
        return {{a_uiStart, a_uiLength, lastFrequency()}};
    }
    // The walk counts its times from uiBase, the last multiple of the length up to the
    // window's start. The length may differ from the true cycle after steps were inserted
    // or removed. The walk therefore skips whole cycles first and then steps.
    // A window that starts exactly at the end of the length starts the table again,
    // whatever the end behaviour.
    const std::uint64_t uiOffset = a_uiStart % uiLength;
    const std::uint64_t uiBase = a_uiStart - uiOffset;
    const std::uint64_t uiEnd = windowEnd(a_uiStart, a_uiLength) - uiBase;
    std::size_t uiStep = stepAt(times, uiOffset % uiCycle);
    std::uint64_t uiTime = uiOffset / uiCycle * uiCycle + times[uiStep];

    ActivityAnswer answer(s_szSource);
    while (uiTime < uiEnd) {
        const FrequencyStep& step = m_frequencySteps[static_cast<qsizetype>(uiStep)];
        const std::uint64_t uiStepEnd = uiTime + step.duration;
        // The step that ends exactly at the length is the last one, unless the table
        // restarts.
        const bool bLast = uiStepEnd == uiLength && m_eEndBehavior != EndBehaviourType::Restart;
        const std::uint64_t uiFrom = std::max(uiTime, uiOffset);
        const std::uint64_t uiTo = bLast ? uiEnd : std::min(uiStepEnd, uiEnd);
        // The last step lasts until the window's end. A window without length contains
        // no part of it.
        if (bLast && uiTo <= uiOffset) {
            break;
        }
        if (!answer.append({uiBase + uiFrom, uiTo - uiFrom, step.frequency}) || bLast) {
            break;
        }
        uiTime = uiStepEnd;
        uiStep = uiStep + 2 < times.size() ? uiStep + 1 : 0;
    }
    return answer.take();
}

unsigned int FrequencySettings_SlowHopper::activeUntil() const
{
    return m_eEndBehavior == EndBehaviourType::Inactive ? calculateLength() : UINT32_MAX;
}

bool FrequencySettings_SlowHopper::equal(const IFrequencySettings* a_pOther) const
{
    const auto* pOther = dynamic_cast<const FrequencySettings_SlowHopper*>(a_pOther);
    return pOther != nullptr &&
           std::equal(m_frequencySteps.cbegin(), m_frequencySteps.cend(), pOther->m_frequencySteps.cbegin(),
                      pOther->m_frequencySteps.cend(), equalSteps);
}

IFrequencySettings* FrequencySettings_SlowHopper::clone() const
{
    auto pClone = std::make_unique<FrequencySettings_SlowHopper>();
    pClone->m_frequencySteps = m_frequencySteps;
    pClone->m_eEndBehavior = m_eEndBehavior;
    return pClone.release();
}

/// The length of the table in ms, at most 0xFFFFFFFF. Computed by the first query and
/// kept until resetLength(), also when steps are inserted or removed.
unsigned int FrequencySettings_SlowHopper::calculateLength() const
{
    if (m_uiLength == 0) {
        m_uiLength = static_cast<std::uint32_t>(std::min<std::uint64_t>(stepTimes().back(), UINT32_MAX));
    }
    return m_uiLength;
}

void FrequencySettings_SlowHopper::resetLength()
{
    m_uiLength = 0;
    m_stepTimes.clear();
}

bool FrequencySettings_SlowHopper::hasRow(int a_iRow) const
{
    return a_iRow >= 0 && a_iRow < rows();
}

double FrequencySettings_SlowHopper::lastFrequency() const
{
    return getFrequency(rows() - 1);
}

/// The running sum of the durations (ms). There is one entry per step, the time at which
/// the step begins, and a last entry, the time at which the table ends.
const std::vector<std::uint64_t>& FrequencySettings_SlowHopper::stepTimes() const
{
    if (m_stepTimes.empty()) {
        m_stepTimes.reserve(static_cast<std::size_t>(m_frequencySteps.size()) + 1);
        std::uint64_t uiTime = 0;
        m_stepTimes.push_back(uiTime);
        for (const FrequencyStep& step : m_frequencySteps) {
            uiTime += step.duration;
            m_stepTimes.push_back(uiTime);
        }
    }
    return m_stepTimes;
}

} // namespace Simulation

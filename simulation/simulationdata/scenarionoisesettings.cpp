#include "scenarionoisesettings.h"

#include <algorithm>
#include <cmath>

namespace Simulation {

namespace {

constexpr double s_dRelativeTolerance = 1e-12;

/// |a - b| <= 1e-12 * min(|a|, |b|); false for NaN.
bool nearlyEqual(double a_dFirst, double a_dSecond)
{
    return std::fabs(a_dFirst - a_dSecond) <=
           std::min(std::fabs(a_dFirst), std::fabs(a_dSecond)) * s_dRelativeTolerance;
}

} // namespace

bool ScenarioNoiseSettings::operator==(const ScenarioNoiseSettings& a_other) const
{
    return nearlyEqual(m_dNoiseDensity, a_other.m_dNoiseDensity) &&
           nearlyEqual(m_dNoiseDeviation, a_other.m_dNoiseDeviation) &&
           nearlyEqual(m_dFrequencyDependentNoiseDensity, a_other.m_dFrequencyDependentNoiseDensity) &&
           nearlyEqual(m_dFrequencyDependentNoiseGranularity,
                       a_other.m_dFrequencyDependentNoiseGranularity) &&
           nearlyEqual(m_dFrequencyDependentNoiseVariability, a_other.m_dFrequencyDependentNoiseVariability);
}

} // namespace Simulation

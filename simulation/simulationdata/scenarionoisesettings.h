#ifndef SIMULATIONDATA_SCENARIONOISESETTINGS_H
#define SIMULATIONDATA_SCENARIONOISESETTINGS_H

#include "simulationdata/simulationdata_export.h"

namespace Simulation {

/// The background noise of a whole scenario. A plain value. The numbers are stored
/// and sent unchanged; the simulation service defines their units.
class SIMULATIONDATA_EXPORT ScenarioNoiseSettings
{
public:
    /// Restores the default values.
    void setDefaults() { *this = ScenarioNoiseSettings(); }

    [[nodiscard]] double noiseDensity() const { return m_dNoiseDensity; }
    void setNoiseDensity(double a_dDensity) { m_dNoiseDensity = a_dDensity; }

    [[nodiscard]] double noiseDeviation() const { return m_dNoiseDeviation; }
    void setNoiseDeviation(double a_dDeviation) { m_dNoiseDeviation = a_dDeviation; }

    [[nodiscard]] double frequencyDependentNoiseDensity() const { return m_dFrequencyDependentNoiseDensity; }
    void setFrequencyDependentNoiseDensity(double a_dDensity)
    {
        m_dFrequencyDependentNoiseDensity = a_dDensity;
    }

    [[nodiscard]] double frequencyDependentNoiseGranularity() const
    {
        return m_dFrequencyDependentNoiseGranularity;
    }
    void setFrequencyDependentNoiseGranularity(double a_dGranularity)
    {
        m_dFrequencyDependentNoiseGranularity = a_dGranularity;
    }

    [[nodiscard]] double frequencyDependentNoiseVariability() const
    {
        return m_dFrequencyDependentNoiseVariability;
    }
    void setFrequencyDependentNoiseVariability(double a_dVariability)
    {
        m_dFrequencyDependentNoiseVariability = a_dVariability;
    }

    /// Whether all fields are equal within a relative 1e-12; a 0 equals only 0.
    [[nodiscard]] bool operator==(const ScenarioNoiseSettings& a_other) const;

private:
    double m_dNoiseDensity = -35.0;
    double m_dNoiseDeviation = -45.0;
    double m_dFrequencyDependentNoiseDensity = -35.0;
    double m_dFrequencyDependentNoiseGranularity = 0.4;
    double m_dFrequencyDependentNoiseVariability = 0.0;
};

} // namespace Simulation

#endif

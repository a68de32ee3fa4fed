#include "frequencysettingsfixed.h"

#include <cstdint>
#include <memory>

namespace Simulation {

FrequencySettingsType FrequencySettingsFixed::getType()
{
    return FrequencySettingsType::Fixed;
}

double FrequencySettingsFixed::getCenterFrequency() const
{
    return m_dCenterFrequency;
}

void FrequencySettingsFixed::setCenterFrequency(double a_dFrequency)
{
    m_dCenterFrequency = a_dFrequency;
}

double FrequencySettingsFixed::getMinimumFrequency() const
{
    return m_dCenterFrequency;
}

double FrequencySettingsFixed::getMaximumFrequency() const
{
    return m_dCenterFrequency;
}

double FrequencySettingsFixed::getFrequencyAt(unsigned int /*a_uiTime*/) const
{
    return m_dCenterFrequency;
}

bool FrequencySettingsFixed::isTimeDependend() const
{
    return false;
}

bool FrequencySettingsFixed::isActiveAt(unsigned int /*a_uiTime*/) const
{
    return true;
}

QList<HRActivity> FrequencySettingsFixed::calculateHRActivities(unsigned int a_uiStart,
                                                                unsigned int a_uiLength,
                                                                double /*a_dResolution*/) const
{
    return {{a_uiStart, a_uiLength, m_dCenterFrequency}};
}

unsigned int FrequencySettingsFixed::activeUntil() const
{
    return UINT32_MAX;
}

bool FrequencySettingsFixed::equal(const IFrequencySettings* a_pOther) const
{
    const auto* pOther = dynamic_cast<const FrequencySettingsFixed*>(a_pOther);
    return pOther != nullptr && compareFrequency(static_cast<float>(m_dCenterFrequency),
                                                 static_cast<float>(pOther->m_dCenterFrequency));
}

IFrequencySettings* FrequencySettingsFixed::clone() const
{
    return std::make_unique<FrequencySettingsFixed>(*this).release();
}

} // namespace Simulation

#ifndef SIMULATIONDATA_FREQUENCYSETTINGSFIXED_H
#define SIMULATIONDATA_FREQUENCYSETTINGSFIXED_H

#include "simulationdata/ifrequencysettings.h"

namespace Simulation {

/// A constant frequency, active without end. A new object has 25 MHz.
class SIMULATIONDATA_EXPORT FrequencySettingsFixed : public IFrequencySettings
{
public:
    [[nodiscard]] FrequencySettingsType getType() override;
    [[nodiscard]] double getCenterFrequency() const override;
    void setCenterFrequency(double a_dFrequency) override;
    [[nodiscard]] double getMinimumFrequency() const override;
    [[nodiscard]] double getMaximumFrequency() const override;
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;

    /// One activity, the window itself.
    [[nodiscard]] QList<HRActivity> calculateHRActivities(unsigned int a_uiStart, unsigned int a_uiLength,
                                                          double a_dResolution) const override;
    [[nodiscard]] unsigned int activeUntil() const override;
    [[nodiscard]] bool equal(const IFrequencySettings* a_pOther) const override;
    [[nodiscard]] IFrequencySettings* clone() const override;

private:
    double m_dCenterFrequency = 25'000'000.0; ///< Hz
};

} // namespace Simulation

#endif

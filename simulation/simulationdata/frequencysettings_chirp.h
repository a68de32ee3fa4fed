#ifndef SIMULATIONDATA_FREQUENCYSETTINGS_CHIRP_H
#define SIMULATIONDATA_FREQUENCYSETTINGS_CHIRP_H

#include "simulationdata/ifrequencysettings.h"

namespace Simulation {

/// A linear sweep from the start frequency to the stop frequency. The sweep restarts
/// after its duration, without end.
///
/// A stop frequency below the start frequency gives a downward sweep. A new object
/// sweeps from 24 to 26 MHz in one second, at an offset drawn from the thread's random
/// sequence.
class SIMULATIONDATA_EXPORT FrequencySettings_Chirp : public IFrequencySettings
{
public:
    FrequencySettings_Chirp();

    /// How far the sweep is shifted in time, as a fraction of its duration.
    /// Not part of equality. Values outside [0, 1) are kept.
    [[nodiscard]] float getTimeslotOffset() const { return m_fTimeslotOffset; }
    void setTimeslotOffset(float a_fOffset) { m_fTimeslotOffset = a_fOffset; }

    /// Hz.
    [[nodiscard]] double getStartFrequency() const { return m_dStartFrequency; }
    void setStartFrequency(double a_dFrequency) { m_dStartFrequency = a_dFrequency; }

    /// Hz.
    [[nodiscard]] double getStopFrequency() const { return m_dStopFrequency; }
    void setStopFrequency(double a_dFrequency) { m_dStopFrequency = a_dFrequency; }

    /// Length of one sweep (ms); with 0 the frequency stays at the start.
    [[nodiscard]] unsigned int getDuration() const { return m_uiDuration; }
    void setDuration(unsigned int a_uiDuration) { m_uiDuration = a_uiDuration; }

    [[nodiscard]] FrequencySettingsType getType() override;
    [[nodiscard]] double getCenterFrequency() const override;
    void setCenterFrequency(double a_dFrequency) override;
    [[nodiscard]] double getMinimumFrequency() const override;
    [[nodiscard]] double getMaximumFrequency() const override;
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;

    /// Divides the window into pieces of equal length. The frequency moves by about
    /// `a_dResolution` Hz during a piece. Each piece has the frequency at its
    /// beginning. The last piece keeps its full length and may end after the window.
    /// Without a sweep or a positive resolution, the window itself is the only
    /// activity.
    [[nodiscard]] QList<HRActivity> calculateHRActivities(unsigned int a_uiStart, unsigned int a_uiLength,
                                                          double a_dResolution) const override;
    [[nodiscard]] unsigned int activeUntil() const override;
    [[nodiscard]] bool equal(const IFrequencySettings* a_pOther) const override;

    /// Draws one random number, as every new object does. The copy constructor draws
    /// none.
    [[nodiscard]] IFrequencySettings* clone() const override;

private:
    double m_dStartFrequency = 24'000'000.0; ///< Hz
    double m_dStopFrequency = 26'000'000.0;  ///< Hz
    unsigned int m_uiDuration = 1000;        ///< ms
    float m_fTimeslotOffset;                 ///< fraction of a sweep
};

} // namespace Simulation

#endif

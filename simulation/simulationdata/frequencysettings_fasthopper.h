#ifndef SIMULATIONDATA_FREQUENCYSETTINGS_FASTHOPPER_H
#define SIMULATIONDATA_FREQUENCYSETTINGS_FASTHOPPER_H

#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/simulationlimits.h"

#include <memory>
#include <vector>

namespace Simulation {

/// Hops without end over evenly spaced channels, in a pseudo-random order that the
/// seed determines.
///
/// The channels lie in [minimum, maximum); the maximum itself is not a channel. A
/// new object has 1000 channels from 24 to 26 MHz, 100 hops per second, seed 0, and
/// an offset drawn from the thread's random sequence. The spelling "Hopp" is part of
/// the interface.
///
/// The first query that needs the channel list builds it. Building seeds the
/// thread's random sequence, which changes later random offsets. This is deliberate.
class SIMULATIONDATA_EXPORT FrequencySettings_FastHopper : public IFrequencySettings
{
public:
    FrequencySettings_FastHopper();

    /// How far the hops are shifted in time, as a fraction of one hop. Not part
    /// of equality. Values outside [0, 1) are kept.
    [[nodiscard]] float getTimeslotOffset() const { return m_fTimeslotOffset; }
    void setTimeslotOffset(float a_fOffset) { m_fTimeslotOffset = a_fOffset; }

    /// Hz.
    void setMinimumFrequency(double a_dFrequency);
    void setMaximumFrequency(double a_dFrequency);

    /// Number of channels. The hopper stays at its minimum frequency in three cases:
    /// the number is 0, it exceeds Limits::HopChannels, or all hoppers together
    /// exceed Limits::AllHopChannels.
    [[nodiscard]] unsigned int getHoppCount() const { return m_uiHoppCount; }
    void setHoppCount(unsigned int a_uiCount);

    /// Hops per second. With 0 the hopper stays at its first channel.
    [[nodiscard]] unsigned int getHoppRate() const { return m_uiHoppRate; }
    void setHoppRate(unsigned int a_uiRate);

    /// Seed of the channel order.
    [[nodiscard]] unsigned int getHoppSet() const { return m_uiHoppSet; }
    void setHoppSet(unsigned int a_uiSeed);

    [[nodiscard]] FrequencySettingsType getType() override;
    [[nodiscard]] double getCenterFrequency() const override;
    void setCenterFrequency(double a_dFrequency) override;
    [[nodiscard]] double getMinimumFrequency() const override;
    [[nodiscard]] double getMaximumFrequency() const override;
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const override;

    /// Deliberately false: displays show a fast hopper as a band.
    [[nodiscard]] bool isTimeDependend() const override;
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;

    /// The first activity is a lead-in; its length equals the offset. One activity per
    /// hop follows; hops last whole milliseconds here. The lead-in keeps its full
    /// length and may end after the window. The first hop may overlap the lead-in or
    /// leave a gap after it. `a_dResolution` is not used. When the hopper cannot hop,
    /// the window is the only activity.
    [[nodiscard]] QList<HRActivity> calculateHRActivities(unsigned int a_uiStart, unsigned int a_uiLength,
                                                          double a_dResolution) const override;
    [[nodiscard]] unsigned int activeUntil() const override;
    [[nodiscard]] bool equal(const IFrequencySettings* a_pOther) const override;

    /// Draws one random number, as every new object does. The clone builds a channel
    /// list of its own when a query needs the list. The copy constructor draws no
    /// random number, and the copy shares the list.
    [[nodiscard]] IFrequencySettings* clone() const override;

private:
    [[nodiscard]] bool hasChannels() const;
    [[nodiscard]] bool isListBuilt() const;
    void setupFrequencyList() const;
    void traceOnce(Limits::Limit a_eLimit) const;
    void clearFrequencyList();

    double m_dMinimumFrequency = 24'000'000.0; ///< Hz
    double m_dMaximumFrequency = 26'000'000.0; ///< Hz
    unsigned int m_uiHoppCount = 1000;         ///< channels
    unsigned int m_uiHoppRate = 100;           ///< hops per second
    unsigned int m_uiHoppSet = 0;              ///< seed
    float m_fTimeslotOffset;                   ///< fraction of a hop
    /// Hz, in hop order. Null: not built. Copies share the list.
    mutable std::shared_ptr<const std::vector<double>> m_pFrequencyList;
    mutable bool m_bLimitTraced = false; ///< whether an exceeded limit was traced since the last change
};

} // namespace Simulation

#endif

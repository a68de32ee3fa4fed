#ifndef SIMULATIONDATA_POSITIONSETTINGSFIXED_H
#define SIMULATIONDATA_POSITIONSETTINGSFIXED_H

#include "simulationdata/ipositionsettings.h"

namespace Simulation {

/// A site: a constant position, active without end. Heading and speed are 0.
class SIMULATIONDATA_EXPORT PositionSettingsFixed : public IPositionSettings
{
public:
    explicit PositionSettingsFixed(const TPos& a_position);

    [[nodiscard]] PositionSettingsType getType() override;
    [[nodiscard]] TPos getPosition() override;
    void setPosition(const TPos& a_position) override;
    [[nodiscard]] TPos getPositionAt(unsigned int a_uiTime) override;
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const override;
    [[nodiscard]] double speedAt(unsigned int a_uiTime) const override;
    [[nodiscard]] bool isTimeDependend() const override;
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;
    [[nodiscard]] unsigned int activeUntil() const override;

    /// Compares the positions exactly.
    [[nodiscard]] bool equal(const IPositionSettings* a_pOther) override;
    [[nodiscard]] IPositionSettings* clone() override;

private:
    TPos m_position;
};

} // namespace Simulation

#endif

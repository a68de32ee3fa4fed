#ifndef SIMULATIONDATA_TRANSMITTERSETTINGS_H
#define SIMULATIONDATA_TRANSMITTERSETTINGS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Simulation {

/// The transmitter and antenna of one emitter. A plain value. All numbers except the
/// antenna direction are stored and sent unchanged. The simulation service defines
/// their units.
class SIMULATIONDATA_EXPORT TransmitterSettings
{
public:
    [[nodiscard]] float getPower() const { return m_fPower; }
    void setPower(float a_fPower) { m_fPower = a_fPower; }

    [[nodiscard]] QString getAntennaType() const { return m_sAntennaType; }
    void setAntennaType(const QString& a_sType) { m_sAntennaType = a_sType; }

    [[nodiscard]] float getAntennaGain() const { return m_fAntennaGain; }
    void setAntennaGain(float a_fGain) { m_fAntennaGain = a_fGain; }

    [[nodiscard]] float getAntennaHeight() const { return m_fAntennaHeight; }
    void setAntennaHeight(float a_fHeight) { m_fAntennaHeight = a_fHeight; }

    /// Degrees, as stored by setAntennaDirection().
    [[nodiscard]] float getAntennaDirection() const { return m_fAntennaDirection; }
    /// Stores a direction in degrees. Values from 360 up are reduced by whole turns,
    /// in single precision. Smaller values, also negative ones, are stored unchanged.
    void setAntennaDirection(float a_fDirection);

private:
    float m_fPower = 1.0F;
    QString m_sAntennaType = QStringLiteral("Default");
    float m_fAntennaGain = 0.0F;
    float m_fAntennaHeight = 2.0F;
    float m_fAntennaDirection = 0.0F;
};

} // namespace Simulation

#endif

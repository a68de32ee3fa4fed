#ifndef SIMULATIONDATA_SIMULATIONDEVICESTATE_H
#define SIMULATIONDATA_SIMULATIONDEVICESTATE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>

#include <cstdint>

namespace Simulation {

/// How far a device is with its scenario. The numbers are part of the protocol.
enum class ScenarioDataState : std::int32_t {
    None = 0,    ///< no scenario
    Loading = 1, ///< a scenario is being loaded
    Loaded = 2,  ///< the scenario may be started
    Failed = 3,  ///< the scenario could not be loaded
};

/// What a simulation device reports about itself. A plain value; a default
/// object says that there is no scenario.
class SIMULATIONDATA_EXPORT SimulationDeviceState
{
public:
    /// A peer may have sent a number that is none of the four: take it for None.
    [[nodiscard]] ScenarioDataState scenarioDataState() const { return m_eScenarioDataState; }
    void setScenarioDataState(ScenarioDataState a_eState) { m_eScenarioDataState = a_eState; }

    /// The record as XML, by the rules of SimulationDeviceConfiguration::toXml().
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Takes the state from the child of the root, whatever the root's name.
    /// False, and nothing changes, when it is missing or no number of 32 bits.
    [[nodiscard]] bool fromXml(const QByteArray& a_xml);

private:
    ScenarioDataState m_eScenarioDataState = ScenarioDataState::None;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIMULATIONDEVICESTATE_H
#define SIMULATIONDATA_SIMULATIONDEVICESTATE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace Simulation {

/// The progress of a device in loading a scenario. The numbers are part of the
/// protocol.
enum class ScenarioDataState : std::int32_t {
    None = 0,    ///< no scenario
    Loading = 1, ///< a scenario is being loaded
    Loaded = 2,  ///< the scenario may be started
    Failed = 3,  ///< the scenario could not be loaded
};

/// The state that a simulation device reports. A plain value; a default object
/// means that there is no scenario.
class SIMULATIONDATA_EXPORT SimulationDeviceState
{
public:
    /// A peer may send a number that is none of the four; treat it as None.
    [[nodiscard]] ScenarioDataState scenarioDataState() const { return m_eScenarioDataState; }
    void setScenarioDataState(ScenarioDataState a_eState) { m_eScenarioDataState = a_eState; }

    /// The maximum length of a message; longer ones are cut.
    static constexpr qsizetype s_iMaxMessage = 1000; // UTF-16 units

    /// A text that the device adds to its state, for example why a scenario failed
    /// or what it plays; may be empty. A text from a peer may contain any character
    /// and must be cleaned before it is written to a terminal.
    [[nodiscard]] QString message() const { return m_sMessage; }
    void setMessage(const QString& a_sMessage);

    /// The record as XML, by the rules of SimulationDeviceConfiguration::toXml().
    /// An empty message is left out; readers that do not know the element "Message"
    /// skip it.
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Reads the state and the message from the children of the root, whose name is
    /// not checked. A record without a message clears the present one, which
    /// belonged to an earlier report. False, and nothing changes, when the state is
    /// missing or is not a number of 32 bits.
    [[nodiscard]] bool fromXml(const QByteArray& a_xml);

private:
    ScenarioDataState m_eScenarioDataState = ScenarioDataState::None;
    QString m_sMessage; ///< at most s_iMaxMessage units
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIMULATIONDEVICESTATE_H
#define SIMULATIONDATA_SIMULATIONDEVICESTATE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

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

    /// The most that a message holds: longer ones are cut.
    static constexpr qsizetype s_iMaxMessage = 1000; // UTF-16 units

    /// What the device adds about itself in words: why a scenario failed, what it
    /// plays. Empty when it adds nothing. The words are the device's own; one that
    /// came from a peer may hold any character, so do not write it to a terminal
    /// as it is.
    [[nodiscard]] QString message() const { return m_sMessage; }
    void setMessage(const QString& a_sMessage);

    /// The record as XML, by the rules of SimulationDeviceConfiguration::toXml().
    /// An empty message is left out; readers that do not know the element
    /// "Message" pass over it.
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Takes the state and the message from the children of the root, whatever the
    /// root's name. A record without a message clears the former one, which
    /// belonged to another report. False, and nothing changes, when the state is
    /// missing or no number of 32 bits.
    [[nodiscard]] bool fromXml(const QByteArray& a_xml);

private:
    ScenarioDataState m_eScenarioDataState = ScenarioDataState::None;
    QString m_sMessage; ///< at most s_iMaxMessage
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIMULATIONDEVICESTATE_H
#define SIMULATIONDATA_SIMULATIONDEVICESTATE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace Simulation {

/// The progress of a device in loading a scenario. The values are part of the
/// protocol.
enum class ScenarioDataState : std::int32_t {
    None = 0,    ///< no scenario
    Loading = 1, ///< a scenario is being loaded
    Loaded = 2,  ///< the scenario may be started
    Failed = 3,  ///< the scenario could not be loaded
};

/// The state that a simulation device reports. A plain value. A default object is in
/// the state without a scenario.
class SIMULATIONDATA_EXPORT SimulationDeviceState
{
public:
    /// The state. A peer may send a number that is none of the four values; treat it
    /// as None.
    [[nodiscard]] ScenarioDataState scenarioDataState() const { return m_eScenarioDataState; }
    void setScenarioDataState(ScenarioDataState a_eState) { m_eScenarioDataState = a_eState; }

    /// The maximum length of a message; longer messages are truncated.
    static constexpr qsizetype s_iMaxMessage = 1000; // UTF-16 units

    /// A text that the device adds to its state, for example why a scenario failed
    /// or what the device plays. May be empty. A text from a peer may contain any
    /// character: clean it before you write it to a terminal.
    [[nodiscard]] QString message() const { return m_sMessage; }
    void setMessage(const QString& a_sMessage);

    /// Returns the record as XML, like SimulationDeviceConfiguration::toXml(). An
    /// empty message is left out. Readers that do not know the element "Message"
    /// skip it.
    [[nodiscard]] QByteArray toXml(const QByteArray& a_base = QByteArray()) const;

    /// Reads the state and the message from the children of the root; the name of
    /// the root is not checked. A record without a message clears the present
    /// message, because the present message belongs to an earlier report. Returns
    /// false when the state is missing or not a number of 32 bits; no field changes
    /// then.
    [[nodiscard]] bool fromXml(const QByteArray& a_xml);

private:
    ScenarioDataState m_eScenarioDataState = ScenarioDataState::None;
    QString m_sMessage; ///< at most s_iMaxMessage units
};

} // namespace Simulation

#endif

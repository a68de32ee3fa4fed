#include "simulationdevicestate.h"

#include "simulationdata/xmlelement.h"
#include "simulationdeviceconfiguration_record_p.h"

#include <QString>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationdevicestate";

const QString& stateName()
{
    static const QString s_sName = QStringLiteral("ScenarioDataState");
    return s_sName;
}

const QString& messageName()
{
    static const QString s_sName = QStringLiteral("Message");
    return s_sName;
}

} // namespace

void SimulationDeviceState::setMessage(const QString& a_sMessage)
{
    m_sMessage = a_sMessage.left(s_iMaxMessage);
    if (m_sMessage.size() < a_sMessage.size() && m_sMessage.back().isHighSurrogate()) {
        m_sMessage.chop(1); // the first half of a surrogate pair
    }
}

QByteArray SimulationDeviceState::toXml(const QByteArray& a_base) const
{
    XmlElement root = recordRoot(a_base, QStringLiteral("Simulation::SimulationDeviceState"), s_szSource);
    root.setChildText(stateName(), QString::number(static_cast<std::int32_t>(m_eScenarioDataState)));
    if (!m_sMessage.isEmpty()) {
        root.setChildText(messageName(), m_sMessage);
    }
    return root.toByteArray();
}

bool SimulationDeviceState::fromXml(const QByteArray& a_xml)
{
    const XmlElement root = readRecord(a_xml, s_szSource);
    bool bOk = false;
    const std::int32_t iState = root.childText(stateName()).toInt(&bOk);
    if (bOk) {
        m_eScenarioDataState = static_cast<ScenarioDataState>(iState);
        setMessage(root.childText(messageName()));
    }
    return bOk;
}

} // namespace Simulation

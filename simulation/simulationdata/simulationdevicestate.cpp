#include "simulationdevicestate.h"

#include "devicerecord_p.h"
#include "simulationdata/xmlelement.h"

#include <QString>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationdevicestate";

const QString& stateName()
{
    static const QString s_sName = QStringLiteral("ScenarioDataState");
    return s_sName;
}

} // namespace

QByteArray SimulationDeviceState::toXml(const QByteArray& a_base) const
{
    XmlElement root = recordRoot(a_base, QStringLiteral("Simulation::SimulationDeviceState"), s_szSource);
    root.setChildText(stateName(), QString::number(static_cast<std::int32_t>(m_eScenarioDataState)));
    return root.toByteArray();
}

bool SimulationDeviceState::fromXml(const QByteArray& a_xml)
{
    const XmlElement root = readRecord(a_xml, s_szSource);
    bool bOk = false;
    const std::int32_t iState = root.childText(stateName()).toInt(&bOk);
    if (bOk) {
        m_eScenarioDataState = static_cast<ScenarioDataState>(iState);
    }
    return bOk;
}

} // namespace Simulation

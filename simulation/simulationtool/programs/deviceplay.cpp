#include "deviceplay.h"

#include "console/output.h"
#include "repositorypackages.h"
#include "simulationdevice.h"

#include "simulationdata/szenarioemitter.h"
#include "velaappstartup/cfgcenter.h"

#include <QSysInfo>

#include <algorithm>

namespace SimulationTool {

Simulation::SimulationDeviceConfiguration localDevice(const QString& a_sId, const QString& a_sName)
{
    Simulation::SimulationDeviceConfiguration device;
    device.setId(a_sId);
    device.setName(a_sName.isEmpty() ? a_sId : a_sName);
    device.setDeviceType(QStringLiteral("simulationtool"));
    device.setMachine(QSysInfo::machineHostName());
    device.setMachineId(CfgCenter::GetMachineId());
    return device;
}

DevicePlay::DevicePlay(SimulationDevice& a_device, RepositoryPackages* a_pPackages, Output& a_output)
    : m_device(a_device)
    , m_pPackages(a_pPackages)
    , m_output(a_output)
    , m_report(a_output)
{}

DevicePlay::~DevicePlay() = default;

bool DevicePlay::begin()
{
    constexpr std::uint32_t uiAnyTime = 99'999'999; // ms; its digits suffice for more than a day
    QStringList ids;
    std::transform(m_device.emitters().cbegin(), m_device.emitters().cend(), std::back_inserter(ids),
                   [](const auto& a_emitter) { return a_emitter->id(); });
    m_sink = makeTableSink(m_report, ids, m_device.duration() != 0 ? m_device.duration() : uiAnyTime,
                           m_pPackages != nullptr);
    return m_sink->begin() && m_output.finish();
}

bool DevicePlay::add(std::uint32_t a_uiTime)
{
    const auto emitters = m_device.emitters();
    for (const auto& emitter : emitters) {
        if (!m_sink->add(emitter->id(), Moment(*emitter, a_uiTime, m_pPackages))) {
            return false;
        }
    }
    return m_output.finish(); // so that the rows can be read immediately
}

} // namespace SimulationTool

#include "commandkind.h"

#include <QLatin1String>

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

constexpr std::array<QLatin1String, 6> s_requests{
    QLatin1String("RegisterSimulation"),
    QLatin1String("UnregisterSimulation"),
    QLatin1String("SimulationDeveiceStateUpdate"), // the protocol's spelling
    QLatin1String("AcquireServer"),
    QLatin1String("ReleaseServer"),
    QLatin1String("RequestSimulationDevices")};
constexpr std::array<QLatin1String, 6> s_orders{
    QLatin1String("UnloadScenario"), QLatin1String("StartScenario"), QLatin1String("PauseScenario"),
    QLatin1String("StopScenario"),   QLatin1String("TestMode"),      QLatin1String("RemoveJxDevice")};
constexpr std::array<QLatin1String, 3> s_ordersWithPayload{
    QLatin1String("LoadScenario"), QLatin1String("LoadDeployment"), QLatin1String("AddJxDevice")};

template<std::size_t Size>
bool contains(const std::array<QLatin1String, Size>& a_names, const QString& a_sName)
{
    return std::find(a_names.begin(), a_names.end(), a_sName) != a_names.end();
}

} // namespace

CommandKind commandKind(const QString& a_sCommand)
{
    if (contains(s_ordersWithPayload, a_sCommand)) {
        return CommandKind::OrderWithPayload;
    }
    if (contains(s_orders, a_sCommand)) {
        return CommandKind::Order;
    }
    return contains(s_requests, a_sCommand) ? CommandKind::Request : CommandKind::Useless;
}

} // namespace SimulationTool

#ifndef SIMULATIONTOOL_DEVICESTATETEXT_H
#define SIMULATIONTOOL_DEVICESTATETEXT_H

#include "simulationdata/simulationdevicestate.h"

#include <QString>

namespace SimulationTool {

/// "no scenario", "loading", "loaded" or "failed".
[[nodiscard]] inline QString stateText(Simulation::ScenarioDataState a_eState)
{
    switch (a_eState) {
    case Simulation::ScenarioDataState::Loading:
        return QStringLiteral("loading");
    case Simulation::ScenarioDataState::Loaded:
        return QStringLiteral("loaded");
    case Simulation::ScenarioDataState::Failed:
        return QStringLiteral("failed");
    case Simulation::ScenarioDataState::None:
        break;
    }
    return QStringLiteral("no scenario");
}

} // namespace SimulationTool

#endif

#include "scenariofile.h"

#include "output.h"

#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"

#include <QFileInfo>

#include <algorithm>

namespace SimulationTool {

namespace {

template<typename Object>
QList<std::shared_ptr<Object>> objectsOf(const Simulation::ScenarioDataXml& a_scenario)
{
    QList<std::shared_ptr<Object>> objects;
    const auto all = a_scenario.scenarioObjects();
    for (const std::shared_ptr<Simulation::ScenarioObject>& object : all) {
        if (auto wanted = std::dynamic_pointer_cast<Object>(object)) {
            objects.append(std::move(wanted));
        }
    }
    // Ids may occur twice, and a set has no order of its own.
    std::sort(objects.begin(), objects.end(), [](const auto& a_first, const auto& a_second) {
        const int iOrder = a_first->id().compare(a_second->id());
        return iOrder != 0 ? iOrder < 0 : a_first->name() < a_second->name();
    });
    return objects;
}

} // namespace

ExitCode loadScenario(Simulation::ScenarioDataXml& a_scenario, const QString& a_sFile)
{
    const bool bRead = a_scenario.fromXmlFile(a_sFile);
    const QString sReason = a_scenario.errorString();
    if (bRead && sReason.isEmpty()) {
        return ExitCode::Ok;
    }
    complain(QStringLiteral("%1: %2").arg(a_sFile, sReason));
    return bRead ? ExitCode::Findings : ExitCode::Unusable;
}

bool isSameFile(const QString& a_sFirst, const QString& a_sSecond)
{
    const QString sFirst = QFileInfo(a_sFirst).canonicalFilePath();
    return !sFirst.isEmpty() && sFirst == QFileInfo(a_sSecond).canonicalFilePath();
}

QList<std::shared_ptr<Simulation::SzenarioEmitter>> emittersOf(const Simulation::ScenarioDataXml& a_scenario)
{
    return objectsOf<Simulation::SzenarioEmitter>(a_scenario);
}

QList<std::shared_ptr<Simulation::ScenarioNetwork>> networksOf(const Simulation::ScenarioDataXml& a_scenario)
{
    return objectsOf<Simulation::ScenarioNetwork>(a_scenario);
}

} // namespace SimulationTool

#include "controlactions.h"

#include "devicestatetext.h"
#include "output.h"
#include "report.h"
#include "servicecontroller.h"
#include "valuetexts.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFile>

#include <algorithm>

namespace SimulationTool {

namespace {

using Simulation::ScenarioDataState;

constexpr qsizetype s_iMaxIdWidth = 32;
constexpr qsizetype s_iMaxNameWidth = 28;

QString devicesText(const ServiceController& a_controller)
{
    return counted(static_cast<quint64>(a_controller.devices().size()), "device");
}

/// Waits until the service has the order, and says what it was.
ExitCode finishOrder(ServiceController& a_controller, const QString& a_sDone, Output& a_output)
{
    if (!a_controller.synchronize()) {
        return ExitCode::Unusable;
    }
    a_output.write(QStringLiteral("%1, %2\n").arg(a_sDone, devicesText(a_controller)));
    return ExitCode::Ok;
}

ExitCode load(ServiceController& a_controller, const OrderArgument& a_argument, Output& a_output)
{
    if (!a_controller.loadScenario(a_argument.content)) {
        return ExitCode::Unusable;
    }
    QList<ReportRow> rows;
    qsizetype iLoaded = 0;
    for (const auto& device : a_controller.devices()) {
        const ScenarioDataState eState = a_controller.states().value(device.id());
        iLoaded += eState == ScenarioDataState::Loaded ? 1 : 0;
        rows.append({device.id(), device.name(), stateText(eState)});
    }
    Report(a_output).plainTable("devices",
                                {{QStringLiteral("Device"), false, s_iMaxIdWidth, "id"},
                                 {QStringLiteral("Name"), false, s_iMaxNameWidth, "name"},
                                 {QStringLiteral("State"), false, 0, "state"}},
                                rows);
    a_output.write(QStringLiteral("Scenario sent, loaded by %1 of %2\n")
                       .arg(QString::number(iLoaded), devicesText(a_controller)));
    return iLoaded == rows.size() ? ExitCode::Ok : ExitCode::Findings;
}

ExitCode deploy(ServiceController& a_controller, const OrderArgument& a_argument, Output& a_output)
{
    a_controller.communication().sendLoadDeployment(a_argument.content);
    if (!a_controller.synchronize()) {
        return ExitCode::Unusable;
    }
    // Not as the other orders end: a deployment has devices of its own.
    a_output.write(QStringLiteral("Deployment sent to %1\n").arg(devicesText(a_controller)));
    return ExitCode::Ok;
}

ExitCode start(ServiceController& a_controller, const OrderArgument& a_argument, Output& a_output)
{
    // After a pause it goes on, otherwise from the beginning.
    const auto& timing = a_controller.timing();
    const std::uint32_t uiPaused = timing.isPaused() ? timing.scenarioTime() : 0;
    const std::uint32_t uiTime = a_argument.time.value_or(uiPaused);
    a_controller.communication().sendStartScenario(Simulation::ScenarioTimingHelper::currentTimeStamp(),
                                                   uiTime);
    return finishOrder(a_controller, QStringLiteral("Started at %1 ms").arg(uiTime), a_output);
}

ExitCode pause(ServiceController& a_controller, const OrderArgument& a_argument, Output& a_output)
{
    if (!a_argument.time && a_controller.timing().isStopped()) {
        complain(
            QStringLiteral("control: the service does not say that a scenario runs: pause MS pauses anyway"));
        return ExitCode::Unusable;
    }
    const std::uint32_t uiTime = a_argument.time.value_or(a_controller.timing().scenarioTime());
    a_controller.communication().sendPauseScenario(uiTime);
    return finishOrder(a_controller, QStringLiteral("Paused at %1 ms").arg(uiTime), a_output);
}

ExitCode stop(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Output& a_output)
{
    a_controller.communication().sendStopScenario();
    return finishOrder(a_controller, QStringLiteral("Stopped"), a_output);
}

ExitCode unload(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Output& a_output)
{
    a_controller.communication().sendUnloadScenario();
    return finishOrder(a_controller, QStringLiteral("Unloaded"), a_output);
}

ExitCode devices(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Output& a_output)
{
    QList<ReportRow> rows;
    for (const auto& device : a_controller.devices()) {
        rows.append({device.id(), device.name(), device.deviceType(), device.stationName(), device.machine(),
                     numberValue(device.positionLongitude()), numberValue(device.positionLatitude())});
    }
    Report(a_output).plainTable("devices",
                                {{QStringLiteral("Device"), false, s_iMaxIdWidth, "id"},
                                 {QStringLiteral("Name"), false, s_iMaxNameWidth, "name"},
                                 {QStringLiteral("Type"), false, s_iMaxNameWidth, "type"},
                                 {QStringLiteral("Station"), false, s_iMaxNameWidth, "station"},
                                 {QStringLiteral("Machine"), false, s_iMaxNameWidth, "machine"},
                                 {QStringLiteral("Longitude"), true, 0, "longitude"},
                                 {QStringLiteral("Latitude"), true, 0, "latitude"}},
                                rows);
    a_output.write(devicesText(a_controller) + u'\n');
    return ExitCode::Ok;
}

/// Why bytes are no scenario; empty when they are a whole one.
QString scenarioProblem(const QByteArray& a_content)
{
    Simulation::UnresolvedSignalPackageProvider unresolved;
    Simulation::ScenarioDataXml scenario(&unresolved);
    static_cast<void>(scenario.fromXml(a_content));
    return scenario.errorString();
}

/// The same for a deployment.
QString deploymentProblem(const QByteArray& a_content)
{
    Simulation::DeploymentDataXml deployment;
    static_cast<void>(deployment.fromXml(a_content));
    return deployment.errorString();
}

} // namespace

const std::array<ControlAction, 7> s_controlActions{{
    {"load", ControlAction::Takes::Scenario, true, &load},
    {"deploy", ControlAction::Takes::Deployment, true, &deploy},
    {"start", ControlAction::Takes::Time, true, &start},
    {"pause", ControlAction::Takes::Time, true, &pause},
    {"stop", ControlAction::Takes::Nothing, true, &stop},
    {"unload", ControlAction::Takes::Nothing, true, &unload},
    {"devices", ControlAction::Takes::Nothing, false, &devices},
}};

bool readOrderFile(ControlAction::Takes a_eKind, OrderArgument& a_argument)
{
    const auto uiLimit = Simulation::Limits::value(Simulation::Limits::DocumentBytes);
    QFile file(a_argument.file);
    QString sProblem;
    if (file.open(QIODevice::ReadOnly)) {
        a_argument.content = file.read(static_cast<qint64>(uiLimit) + 1);
    }
    if (file.error() != QFileDevice::NoError) {
        sProblem = file.errorString();
    } else if (static_cast<std::uint64_t>(a_argument.content.size()) > uiLimit) {
        sProblem = Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes);
    } else {
        sProblem = a_eKind == ControlAction::Takes::Scenario ? scenarioProblem(a_argument.content)
                                                             : deploymentProblem(a_argument.content);
    }
    if (!sProblem.isEmpty()) {
        complain(QStringLiteral("%1: %2").arg(a_argument.file, sProblem));
    }
    return sProblem.isEmpty();
}

} // namespace SimulationTool

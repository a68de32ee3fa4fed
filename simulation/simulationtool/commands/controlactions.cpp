#include "controlactions.h"

#include "console/output.h"
#include "console/report.h"
#include "controlreport.h"
#include "describe/documentremarks.h"
#include "programs/servicecontroller.h"
#include "statuswatch.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/readingreport.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFile>

namespace SimulationTool {

namespace {

/// Waits until the service has received the sent order, and reports the order as sent.
/// For orders that devices do not confirm.
ExitCode finishOrder(ServiceController& a_controller, const QString& a_sOrder, Report& a_report)
{
    if (!a_controller.synchronize()) {
        return ExitCode::Unusable;
    }
    a_report.value("device_count", a_controller.devices().size());
    if (a_controller.devices().isEmpty()) {
        a_report.line(a_sOrder + QStringLiteral(" sent, but no device is registered"));
        return ExitCode::Findings;
    }
    a_report.line(QStringLiteral("%1 sent to %2").arg(a_sOrder, devicesText(a_controller)));
    return ExitCode::Ok;
}

ExitCode load(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report)
{
    if (!a_controller.loadScenario(a_argument.content)) {
        return ExitCode::Unusable;
    }
    return reportLoading(a_controller, a_report);
}

/// Sends an order and reports which devices confirmed it.
ExitCode confirm(ServiceController& a_controller, const ServiceController::CommandSender& a_send,
                 const ConfirmedOrder& a_order, Report& a_report)
{
    return a_controller.sendAndConfirm(a_send, a_order.outcome)
               ? reportAnswers(a_controller, a_order, a_report)
               : ExitCode::Unusable;
}

ExitCode deploy(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report)
{
    return confirm(
        a_controller, [&](auto& a_to) { a_to.sendLoadDeployment(a_argument.content); },
        {QStringLiteral("Deployed"), QStringLiteral("Not deployed"), &deployOutcome}, a_report);
}

ExitCode start(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report)
{
    // Without a given time, a paused scenario continues at the time of its pause. Any other
    // scenario starts at 0 ms.
    const auto& timing = a_controller.timing();
    const std::uint32_t uiPaused = timing.isPaused() ? timing.scenarioTime() : 0;
    const std::uint32_t uiTime = a_argument.time.value_or(uiPaused);
    a_report.value("scenario_time_ms", qint64{uiTime});
    return confirm(
        a_controller,
        [&](auto& a_to) {
            a_to.sendStartScenario(Simulation::ScenarioTimingHelper::currentTimeStamp(), uiTime);
        },
        {QStringLiteral("Started at %1 ms").arg(uiTime), QStringLiteral("Not started at %1 ms").arg(uiTime),
         [uiTime](const QString& a_sMessage) { return startOutcome(a_sMessage, uiTime); }},
        a_report);
}

ExitCode pause(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report)
{
    if (!a_argument.time && a_controller.timing().isStopped()) {
        complain(QStringLiteral(
            "control: the service reports no running scenario: use \"pause TIME\" to pause anyway"));
        return ExitCode::Unusable;
    }
    const std::uint32_t uiTime = a_argument.time.value_or(a_controller.timing().scenarioTime());
    a_report.value("scenario_time_ms", qint64{uiTime});
    a_controller.communication().sendPauseScenario(uiTime);
    return finishOrder(a_controller, QStringLiteral("Pause at %1 ms").arg(uiTime), a_report);
}

ExitCode stop(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Report& a_report)
{
    a_controller.communication().sendStopScenario();
    return finishOrder(a_controller, QStringLiteral("Stop"), a_report);
}

ExitCode unload(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Report& a_report)
{
    a_controller.communication().sendUnloadScenario();
    return finishOrder(a_controller, QStringLiteral("Unload"), a_report);
}

ExitCode devices(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Report& a_report)
{
    reportDevices(a_controller, a_report);
    return ExitCode::Ok;
}

ExitCode status(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Report& a_report)
{
    reportStatus(a_controller, a_report);
    return ExitCode::Ok;
}

/// Reads the document. Returns the error text for bytes that are not a complete document
/// of the kind, empty when they are, and sets the reader's report.
template<typename Document>
QString errorOf(Document&& a_document, const QByteArray& a_content, Simulation::ReadingReport& a_report)
{
    static_cast<void>(a_document.fromXml(a_content));
    a_report = a_document.report();
    return a_document.errorString();
}

QString documentError(ControlAction::Takes a_eKind, const QByteArray& a_content,
                      Simulation::ReadingReport& a_report)
{
    Simulation::UnresolvedSignalPackageProvider unresolved;
    return a_eKind == ControlAction::Takes::Scenario
               ? errorOf(Simulation::ScenarioDataXml(&unresolved), a_content, a_report)
               : errorOf(Simulation::DeploymentDataXml(), a_content, a_report);
}

ExitCode watch(ServiceController& a_controller, const OrderArgument& /*a_argument*/, Report& a_report)
{
    return StatusWatch(a_controller, a_report).run();
}

} // namespace

const std::array<ControlAction, 9> s_controlActions{{
    {"load", ControlAction::Takes::Scenario, true, &load},
    {"deploy", ControlAction::Takes::Deployment, true, &deploy},
    {"start", ControlAction::Takes::Time, true, &start},
    {"pause", ControlAction::Takes::Time, true, &pause},
    {"stop", ControlAction::Takes::Nothing, true, &stop},
    {"unload", ControlAction::Takes::Nothing, true, &unload},
    {"devices", ControlAction::Takes::Nothing, false, &devices},
    {"status", ControlAction::Takes::Nothing, false, &status},
    {"watch", ControlAction::Takes::Nothing, false, &watch},
}};

ExitCode readOrderFile(ControlAction::Takes a_eKind, OrderArgument& a_argument, bool a_bStrict)
{
    Simulation::ReadingReport report;
    const auto uiLimit = Simulation::Limits::value(Simulation::Limits::DocumentBytes);
    QFile file(a_argument.file);
    QString sError;
    if (file.open(QIODevice::ReadOnly)) {
        a_argument.content = file.read(static_cast<qint64>(uiLimit) + 1);
    }
    if (file.error() != QFileDevice::NoError) {
        sError = file.errorString();
    } else if (static_cast<std::uint64_t>(a_argument.content.size()) > uiLimit) {
        sError = Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes);
    } else {
        sError = documentError(a_eKind, a_argument.content, report);
    }
    if (!sError.isEmpty()) {
        complain(QStringLiteral("%1: %2").arg(a_argument.file, sError));
        return ExitCode::Unusable;
    }
    return complainAbout(report, a_argument.file) && a_bStrict ? ExitCode::Findings : ExitCode::Ok;
}

} // namespace SimulationTool

#include "controlreport.h"

#include "console/report.h"
#include "console/valuetexts.h"
#include "describe/devicestatetext.h"
#include "programs/servicecontroller.h"

#include <algorithm>

namespace SimulationTool {

namespace {

using Simulation::ScenarioDataState;
using Simulation::SimulationDeviceState;

constexpr qsizetype s_iMaxIdWidth = 32;
constexpr qsizetype s_iMaxNameWidth = 28;

const QString s_sUnknown = QStringLiteral("unknown");
const QString s_sForLater = QStringLiteral("no device is registered; the service keeps it for devices that "
                                           "register later");

TextColumn idColumn()
{
    return {QStringLiteral("Device"), false, s_iMaxIdWidth, "id"};
}

TextColumn nameColumn(const QString& a_sTitle, const char* a_szKey)
{
    return {a_sTitle, false, s_iMaxNameWidth, a_szKey};
}

TextColumn column(const QString& a_sTitle, const char* a_szKey)
{
    return {a_sTitle, false, 0, a_szKey};
}

ReportValue stateValue(const ServiceController& a_controller, const QString& a_sId)
{
    const auto state = stateOf(a_controller, a_sId);
    return state ? ReportValue(stateText(state->scenarioDataState()))
                 : ReportValue(s_sUnknown, QJsonValue::Null);
}

/// Reports two counts for programs. People read these counts in the last line of the
/// report.
void writeCounts(const ServiceController& a_controller, const char* a_szKey, qsizetype a_iCount,
                 Report& a_report)
{
    a_report.value(a_szKey, a_iCount);
    a_report.value("device_count", a_controller.devices().size());
}

/// The remark on a device after loading: its warning, a note that it reports nothing
/// about its packages, or its last event.
QString loadingRemark(const SimulationDeviceState& a_state)
{
    const QString sWarning = warningOf(a_state.message());
    if (!sWarning.isEmpty()) {
        return QStringLiteral("warning: ") + sWarning;
    }
    if (a_state.scenarioDataState() == ScenarioDataState::Loaded && a_state.message().isEmpty()) {
        return QStringLiteral("the device does not report whether it has the packages");
    }
    return eventOf(a_state.message());
}

} // namespace

QString devicesText(const ServiceController& a_controller)
{
    return counted(static_cast<quint64>(a_controller.devices().size()), "device");
}

std::optional<SimulationDeviceState> stateOf(const ServiceController& a_controller, const QString& a_sId)
{
    const auto it = a_controller.states().constFind(a_sId);
    return it != a_controller.states().cend() ? std::make_optional(*it) : std::nullopt;
}

QString runKind(const ServiceController& a_controller)
{
    const auto& timing = a_controller.timing();
    if (!timing.isStopped()) {
        return timing.isPaused() ? QStringLiteral("paused") : QStringLiteral("running");
    }
    // When there are devices but no state was received, it is unknown whether a scenario
    // runs: some services report states and runs only to their controller.
    const bool bSilent = a_controller.states().isEmpty() && !a_controller.devices().isEmpty();
    return bSilent ? s_sUnknown : QStringLiteral("stopped");
}

QString runText(const ServiceController& a_controller)
{
    const auto& timing = a_controller.timing();
    if (!timing.isStopped()) {
        const QString sTime = QStringLiteral(" at %1 ms").arg(timing.scenarioTime());
        if (timing.isPaused()) {
            return QStringLiteral("paused") + sTime;
        }
        // The devices may have refused the start or reached the end of the scenario.
        const auto& states = a_controller.states();
        const bool bPlays = std::any_of(states.cbegin(), states.cend(),
                                        [](const auto& a_state) { return reportsPlay(a_state.message()); });
        return QStringLiteral("running") + sTime +
               (bPlays ? QString() : QStringLiteral(", but no device reports that it plays"));
    }
    return runKind(a_controller) == s_sUnknown ? s_sUnknown : QStringLiteral("not running");
}

ExitCode reportAnswers(const ServiceController& a_controller, const ConfirmedOrder& a_order, Report& a_report)
{
    QList<ReportRow> rows;
    qsizetype iDone = 0;
    for (const auto& device : a_controller.devices()) {
        const QString sAnswer = a_controller.answers().value(device.id());
        iDone += a_order.outcome(sAnswer) == OrderOutcome::Done ? 1 : 0;
        rows.append({device.id(), device.name(),
                     sAnswer.isEmpty() ? ReportValue(QStringLiteral("did not confirm"), QJsonValue::Null)
                                       : ReportValue(eventOf(sAnswer))});
    }
    writeCounts(a_controller, "confirmed_count", iDone, a_report);
    a_report.plainTable(
        "devices",
        {idColumn(), nameColumn(QStringLiteral("Name"), "name"), column(QStringLiteral("Answer"), "answer")},
        rows);
    if (rows.isEmpty()) {
        a_report.line(a_order.notDone + QStringLiteral(": ") + s_sForLater);
        return ExitCode::Findings;
    }
    const bool bAll = iDone == rows.size();
    a_report.line(QStringLiteral("%1, %2%3")
                      .arg(iDone == 0 ? a_order.notDone : a_order.done,
                           bAll ? QString() : QStringLiteral("confirmed by %1 of ").arg(iDone),
                           devicesText(a_controller)));
    return bAll ? ExitCode::Ok : ExitCode::Findings;
}

ExitCode reportLoading(const ServiceController& a_controller, Report& a_report)
{
    QList<ReportRow> rows;
    qsizetype iLoaded = 0;
    qsizetype iWarnings = 0;
    for (const auto& device : a_controller.devices()) {
        const SimulationDeviceState state = a_controller.states().value(device.id());
        const bool bLoaded = state.scenarioDataState() == ScenarioDataState::Loaded;
        iLoaded += bLoaded ? 1 : 0;
        iWarnings += bLoaded && !warningOf(state.message()).isEmpty() ? 1 : 0;
        rows.append({device.id(), device.name(), stateText(state.scenarioDataState()), loadingRemark(state)});
    }
    writeCounts(a_controller, "loaded_count", iLoaded, a_report);
    a_report.plainTable("devices",
                        {idColumn(), nameColumn(QStringLiteral("Name"), "name"),
                         column(QStringLiteral("State"), "state"),
                         column(QStringLiteral("Remark"), "remark")},
                        rows);
    if (rows.isEmpty()) {
        a_report.line(QStringLiteral("Scenario not loaded: ") + s_sForLater);
        return ExitCode::Findings;
    }
    a_report.line(QStringLiteral("Scenario sent, loaded by %1 of %2%3")
                      .arg(QString::number(iLoaded), devicesText(a_controller),
                           iWarnings > 0 ? QStringLiteral(", with replaced packages by %1").arg(iWarnings)
                                         : QString()));
    return iLoaded == rows.size() && iWarnings == 0 ? ExitCode::Ok : ExitCode::Findings;
}

void reportDevices(const ServiceController& a_controller, Report& a_report)
{
    QList<ReportRow> rows;
    for (const auto& device : a_controller.devices()) {
        rows.append({device.id(), device.name(), stateValue(a_controller, device.id()), device.deviceType(),
                     device.stationName(), device.machine(), numberValue(device.positionLongitude()),
                     numberValue(device.positionLatitude())});
    }
    a_report.plainTable("devices",
                        {idColumn(),
                         nameColumn(QStringLiteral("Name"), "name"),
                         column(QStringLiteral("State"), "state"),
                         nameColumn(QStringLiteral("Type"), "type"),
                         nameColumn(QStringLiteral("Station"), "station"),
                         nameColumn(QStringLiteral("Machine"), "machine"),
                         {QStringLiteral("Longitude"), true, 0, "longitude"},
                         {QStringLiteral("Latitude"), true, 0, "latitude"}},
                        rows);
    a_report.value("device_count", rows.size());
    a_report.line(devicesText(a_controller));
}

void reportStatus(const ServiceController& a_controller, Report& a_report)
{
    QList<ReportRow> rows;
    QStringList scenarios;
    for (const auto& device : a_controller.devices()) {
        const QString sMessage = a_controller.states().value(device.id()).message();
        scenarios.append(scenarioNameOf(sMessage));
        rows.append({device.id(), device.stationName(), stateValue(a_controller, device.id()), sMessage});
    }
    scenarios.removeAll(QString());
    scenarios.removeDuplicates();
    const auto& timing = a_controller.timing();
    a_report.field("scenario", QStringLiteral("Scenario"), scenarios.join(QStringLiteral(", ")));
    a_report.field("run", QStringLiteral("Time"), {runText(a_controller), runKind(a_controller)});
    a_report.value("scenario_time_ms",
                   timing.isStopped() ? QJsonValue() : QJsonValue(qint64{timing.scenarioTime()}));
    a_report.field("device_count", QStringLiteral("Devices"), countValue(static_cast<quint64>(rows.size())));
    a_report.titledTable("devices", QStringLiteral("Devices"),
                         {idColumn(), nameColumn(QStringLiteral("Station"), "station"),
                          column(QStringLiteral("State"), "state"),
                          column(QStringLiteral("Report"), "report")},
                         rows);
}

} // namespace SimulationTool

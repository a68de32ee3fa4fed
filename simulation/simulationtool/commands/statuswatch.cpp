#include "statuswatch.h"

#include "console/interruption.h"
#include "console/jsonreport.h"
#include "console/output.h"
#include "console/report.h"
#include "controlreport.h"
#include "describe/devicestatetext.h"
#include "programs/servicecontroller.h"

#include "kpbase/velaos.h"

#include <utility>

namespace SimulationTool {

namespace {

constexpr std::chrono::milliseconds s_askAgain{1000};

QString deviceText(const ServiceController& a_controller,
                   const Simulation::SimulationDeviceConfiguration& a_device)
{
    const auto state = stateOf(a_controller, a_device.id());
    QStringList parts{state ? stateText(state->scenarioDataState()) : QStringLiteral("state unknown")};
    if (!a_device.stationName().isEmpty()) {
        parts.append(QStringLiteral("station \"%1\"").arg(a_device.stationName()));
    }
    if (state && !state->message().isEmpty()) {
        parts.append(state->message());
    }
    return parts.join(QStringLiteral(", "));
}

QJsonObject deviceObject(const ServiceController& a_controller,
                         const Simulation::SimulationDeviceConfiguration& a_device)
{
    const auto state = stateOf(a_controller, a_device.id());
    return {{QStringLiteral("id"), a_device.id()},
            {QStringLiteral("registered"), true},
            {QStringLiteral("name"), jsonText(a_device.name())},
            {QStringLiteral("station"), jsonText(a_device.stationName())},
            {QStringLiteral("state"), state ? stateText(state->scenarioDataState()) : QJsonValue()},
            {QStringLiteral("report"), state ? jsonText(state->message()) : QJsonValue()}};
}

/// A text that identifies a run. It changes when the scenario is started, paused or
/// stopped.
QString runMark(const ServiceController& a_controller)
{
    const auto& timing = a_controller.timing();
    return timing.isPaused() ? runText(a_controller) : QString::number(timing.startTimestamp());
}

} // namespace

StatusWatch::StatusWatch(ServiceController& a_controller, Report& a_report)
    : m_controller(a_controller)
    , m_report(a_report)
{}

ExitCode StatusWatch::run()
{
    do {
        if (!showChanges() || !showRun()) {
            return ExitCode::Unusable;
        }
    } while (m_controller.idle(s_askAgain) && m_controller.synchronize());
    if (!m_controller.problem().isEmpty()) {
        return ExitCode::Unusable;
    }
    acceptInterruption(); // interruption is the normal end of a watch
    return ExitCode::Ok;
}

/// False once the output failed.
bool StatusWatch::showChanges()
{
    QMap<QString, QString> devices;
    bool bWritten = true;
    for (const auto& device : m_controller.devices()) {
        const QString sText = deviceText(m_controller, device);
        if (m_devices.value(device.id()) != sText) {
            bWritten = write(device.id(), sText, deviceObject(m_controller, device)) && bWritten;
        }
        devices.insert(device.id(), sText);
    }
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it) {
        if (!devices.contains(it.key())) {
            bWritten = write(it.key(), QStringLiteral("not registered any more"),
                             {{QStringLiteral("id"), it.key()}, {QStringLiteral("registered"), false}}) &&
                       bWritten;
        }
    }
    m_devices = std::move(devices);
    return bWritten;
}

bool StatusWatch::showRun()
{
    const QString sRun = runMark(m_controller);
    if (std::exchange(m_sRun, sRun) == sRun) {
        return true;
    }
    const auto& timing = m_controller.timing();
    return write(QStringLiteral("scenario"), runText(m_controller),
                 {{QStringLiteral("run"), runKind(m_controller)},
                  {QStringLiteral("scenario_time_ms"),
                   timing.isStopped() ? QJsonValue() : QJsonValue(qint64{timing.scenarioTime()})}});
}

bool StatusWatch::write(const QString& a_sWho, const QString& a_sText, QJsonObject a_object)
{
    const QString sTime = timeStamp(VelaOS::Get().timestamp());
    a_object.insert(QStringLiteral("time"), sTime);
    return m_report.event(a_object, QStringLiteral("%1  %2: %3").arg(sTime, a_sWho, a_sText));
}

} // namespace SimulationTool

#include "simulationdevice.h"

#include "console/valuetexts.h"
#include "describe/deploymentdetails.h"
#include "describe/devicestatetext.h"
#include "describe/scenariofile.h"
#include "deviceplacement.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/szenarioemitter.h"

#include <QTcpSocket>

#include <algorithm>
#include <utility>

namespace SimulationTool {

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::ScenarioDataState;
using Simulation::TcpServerConnector;

constexpr std::uint64_t s_uiMaxSleep = 60'000; ///< ms; limited, because the clock may be changed
constexpr qsizetype s_iMaxJxDevices = 4096;
constexpr qsizetype s_iMaxJxId = 1024;                           ///< characters
constexpr std::int64_t s_iMicroseconds = 1000;                   ///< in a millisecond
constexpr std::uint64_t s_uiSecond = 1'000'000;                  ///< us
constexpr std::uint64_t s_uiYear = s_uiSecond * 3600 * 24 * 365; ///< us

/// The description of an unusable document, with its error text.
QString unusable(const char* a_szWhat, const QByteArray& a_content, const QString& a_sReason)
{
    return QStringLiteral("%1 of %2: %3")
        .arg(QLatin1String(a_szWhat), counted(static_cast<quint64>(a_content.size()), "byte"),
             LogLimit::part(a_sReason));
}

} // namespace

SimulationDevice::SimulationDevice(const Simulation::SimulationDeviceConfiguration& a_configuration,
                                   Simulation::ISignalPackageProvider& a_provider, std::uint32_t a_uiStep)
    : m_undeployed(a_configuration)
    , m_configuration(a_configuration)
    , m_packages(a_provider)
    , m_uiStep(a_uiStep)
    , m_communication(nullptr)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &SimulationDevice::playDue);
    connect(&m_communication, &Communication::acceptSimulationDevice, this, &SimulationDevice::slotAccepted);
    connect(&m_communication, &Communication::unregisterSimulationDevice, this,
            &SimulationDevice::slotUnregistered);
    m_communication.setStreamErrorHandler([this](const QString& a_sError) { abandonConnection(a_sError); });
    connect(&m_log, &LogLimit::logged, this, &SimulationDevice::logged);
    connectOrders();
    connectRunOrders();
}

SimulationDevice::~SimulationDevice()
{
    m_communication.setSocket(nullptr);
}

void SimulationDevice::connectToService(const ServerAddress& a_server)
{
    m_communication.setSocket(nullptr);
    m_connector = std::make_unique<TcpServerConnector>(a_server.host, a_server.port);
    // The connector uses this socket for all its connections.
    m_communication.setSocket(m_connector->socket());
    connect(m_connector->socket(), &QTcpSocket::errorOccurred, this, &SimulationDevice::slotNotConnected);
    connect(m_connector.get(), &TcpServerConnector::connectedToServer, this,
            &SimulationDevice::slotConnected);
    connect(m_connector.get(), &TcpServerConnector::disconnectedFromServer, this,
            &SimulationDevice::slotDisconnected);
    m_connector->connectToServer();
}

std::uint32_t SimulationDevice::duration() const
{
    return m_scenario != nullptr ? m_scenario->getDuration() : 0;
}

// Registration

/// Logs only the first failed attempt before the next connection.
void SimulationDevice::slotNotConnected()
{
    if (!m_connector->isConnected() && !std::exchange(m_bLoggedWaiting, true)) {
        m_log.log(QStringLiteral("waits for the service: ") + m_connector->socket()->errorString());
    }
}

void SimulationDevice::slotConnected()
{
    m_bLoggedIgnoring = false;
    m_bLoggedWaiting = false;
    // Detects a service whose machine was switched off without closing the
    // connection.
    m_connector->socket()->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    m_connector->socket()->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_log.log(QStringLiteral("connected"));
    registerDevice();
}

void SimulationDevice::registerDevice()
{
    m_communication.sendRegisterSimulationDevice(m_configuration.id(), m_configuration);
}

void SimulationDevice::slotDisconnected()
{
    m_bAccepted = false;
    m_bLoggedWaiting = true;
    m_log.log(QStringLiteral("connection lost, waits for the service"));
}

/// Aborts the connection, because the rest of its stream cannot be read, and
/// reconnects.
void SimulationDevice::abandonConnection(const QString& a_sError)
{
    m_log.log(QStringLiteral("what the service sends cannot be read: ") +
              LogLimit::part(a_sError.simplified()));
    // Aborts, because an orderly disconnection would wait without limit for a service
    // that does not read. A connection attempt that already runs continues.
    if (m_connector->isConnected()) {
        m_connector->socket()->abort();
    }
}

void SimulationDevice::slotAccepted(const QString& a_sId, const QString& a_sConfirmation)
{
    const bool bBefore = m_bAccepted;
    m_bAccepted = a_sId == m_configuration.id() &&
                  a_sConfirmation == Communication::createConfirmation(m_configuration);
    if (!m_bAccepted) {
        m_log.log(QStringLiteral("the service sent a wrong confirmation: its orders are ignored"));
        m_bLoggedIgnoring = true;
        return;
    }
    if (!bBefore) { // otherwise the service confirms a new place
        m_log.log(QStringLiteral("accepted"));
        reportState();
    }
}

void SimulationDevice::slotUnregistered(const QString& a_sId)
{
    if (m_bAccepted && a_sId == m_configuration.id()) {
        m_bAccepted = false;
        m_log.log(QStringLiteral("another device has registered as %1: this device receives no more orders")
                      .arg(a_sId));
    }
}

/// Whether the service that sent an order has confirmed the device.
bool SimulationDevice::obeys()
{
    if (!m_bAccepted && !std::exchange(m_bLoggedIgnoring, true)) {
        m_log.log(QStringLiteral("orders of a service that has not confirmed the device are ignored"));
    }
    return m_bAccepted;
}

// Orders

void SimulationDevice::connectOrders()
{
    connect(&m_communication, &Communication::loadScenario, this, [this](const QByteArray& a_scenario) {
        if (obeys()) {
            load(a_scenario);
        }
    });
    connect(&m_communication, &Communication::unloadScenario, this, [this] {
        if (obeys()) {
            unload();
            setState(ScenarioDataState::None);
        }
    });
    connect(&m_communication, &Communication::loadDeployment, this, [this](const QByteArray& a_deployment) {
        if (obeys()) {
            deploy(a_deployment);
        }
    });
    connect(&m_communication, &Communication::addJxDevice, this, [this](const QString& a_sId) {
        if (obeys() && m_jxDevices.size() < s_iMaxJxDevices && a_sId.size() <= s_iMaxJxId) {
            m_jxDevices.insert(a_sId);
            m_log.log(QStringLiteral("Jx device %1 added, now %2")
                          .arg(LogLimit::part(a_sId), QString::number(m_jxDevices.size())));
        }
    });
    connect(&m_communication, &Communication::removeJxDevice, this, [this](const QString& a_sId) {
        if (obeys() && m_jxDevices.remove(a_sId)) {
            m_log.log(QStringLiteral("Jx device %1 removed, now %2")
                          .arg(LogLimit::part(a_sId), QString::number(m_jxDevices.size())));
        }
    });
}

void SimulationDevice::connectRunOrders()
{
    connect(&m_communication, &Communication::startScenario, this,
            [this](quint64 a_uiTimestamp, uint a_uiTime) {
                if (obeys()) {
                    play(a_uiTimestamp, a_uiTime);
                }
            });
    connect(&m_communication, &Communication::pauseScenario, this, [this](uint a_uiTime) {
        if (obeys()) {
            pause(a_uiTime);
        }
    });
    connect(&m_communication, &Communication::stopScenario, this, [this] {
        if (obeys()) {
            endPlay(QStringLiteral("stopped"));
            reportState();
        }
    });
    connect(&m_communication, &Communication::testModeOn, this, [this](bool a_bOn) {
        if (obeys()) {
            m_log.log(a_bOn ? QStringLiteral("test mode on") : QStringLiteral("test mode off"));
        }
    });
}

/// Places the device by this deployment alone, because a device that connects late or
/// reads slowly receives only the newest deployment.
void SimulationDevice::deploy(const QByteArray& a_deployment)
{
    m_deployment = a_deployment;
    Simulation::DeploymentDataXml deployment;
    static_cast<void>(deployment.fromXml(a_deployment));
    Simulation::SimulationDeviceConfiguration placed = m_undeployed;
    QString sEvent;
    if (const QString sError = deployment.errorString(); !sError.isEmpty()) {
        sEvent = DeviceReport::notDeployed(unusable("deployment", a_deployment, sError));
    } else {
        m_log.log(QStringLiteral("deployment \"%1\": %2")
                      .arg(LogLimit::part(deployment.name()), deploymentSummary(deployment)));
        sEvent = placeDevice(placed, deployment);
    }
    if (placed.toXml() != m_configuration.toXml()) {
        m_configuration = placed;
        registerDevice(); // before the report, whose receiver then requests the new place
    }
    reportEvent(sEvent);
}

void SimulationDevice::load(const QByteArray& a_scenario)
{
    unload();
    setState(ScenarioDataState::Loading);
    m_connector->socket()->flush(); // sends the state now: reading the scenario may take long
    m_packages.clear();
    m_scenario = std::make_unique<Simulation::ScenarioDataXml>(&m_packages);
    const bool bRead = m_scenario->fromXml(a_scenario);
    const QString sError = m_scenario->errorString();
    if (!bRead || !sError.isEmpty()) {
        m_scenario.reset();
        m_report.event = QStringLiteral("not loaded: ") + unusable("scenario", a_scenario, sError);
        m_log.log(m_report.event);
        setState(ScenarioDataState::Failed);
        return;
    }
    noteLoaded();
    setState(ScenarioDataState::Loaded);
}

void SimulationDevice::noteLoaded()
{
    m_emitters = emittersOf(*m_scenario);
    m_report.scenario = DeviceReport::scenarioText(LogLimit::part(m_scenario->getName()), m_emitters.size());
    m_log.log(m_report.scenario);
    m_report.warning = m_packages.warning();
    if (!m_report.warning.isEmpty() && !m_sPackageRemark.isEmpty()) {
        m_report.warning = m_sPackageRemark + QStringLiteral(": ") + m_report.warning;
    }
    if (!m_sPackageError.isEmpty()) {
        const QString sDivider = m_report.warning.isEmpty() ? QString() : QStringLiteral(", ");
        m_report.warning = m_sPackageError + sDivider + m_report.warning;
    }
    if (m_report.warning.isEmpty()) {
        return;
    }
    m_log.log(QStringLiteral("warning: ") + m_report.warning);
}

void SimulationDevice::unload()
{
    m_timing.stopScenarioTime();
    if (m_bPlaying) {
        endPlay(QStringLiteral("stopped"));
    }
    m_report = {};
    m_emitters.clear();
    m_scenario.reset();
}

void SimulationDevice::setState(ScenarioDataState a_eState)
{
    m_state.setScenarioDataState(a_eState);
    m_log.log(QStringLiteral("state: ") + stateText(a_eState));
    reportState();
}

/// Reports the state if the service has confirmed the device. Otherwise slotAccepted()
/// reports it later.
void SimulationDevice::reportState()
{
    if (m_bAccepted) {
        m_state.setMessage(m_report.message());
        m_communication.sendSimulationDeviceStateUpdate(m_configuration.id(), m_state);
    }
}

void SimulationDevice::reportEvent(const QString& a_sEvent)
{
    m_log.log(a_sEvent);
    m_report.event = a_sEvent;
    reportState();
}

// Playing

/// The error text for a refused start; empty when it is accepted.
QString SimulationDevice::startError(quint64 a_uiAhead, std::uint32_t a_uiTime) const
{
    if (m_scenario == nullptr) {
        return QStringLiteral("no scenario is loaded");
    }
    if (a_uiAhead > s_uiYear) {
        return QStringLiteral("the start is %1 s ahead, more than a year").arg(a_uiAhead / s_uiSecond);
    }
    return duration() != 0 && a_uiTime >= duration()
               ? QStringLiteral("the scenario ends at %1 ms, before %2 ms")
                     .arg(QString::number(duration()), QString::number(a_uiTime))
               : QString();
}

/// A refused start also ends the current play, because the scenario time of the
/// system has changed.
void SimulationDevice::play(quint64 a_uiTimestamp, std::uint32_t a_uiTime)
{
    const quint64 uiNow = Simulation::ScenarioTimingHelper::currentTimeStamp();
    const quint64 uiAhead = a_uiTimestamp > uiNow ? a_uiTimestamp - uiNow : 0;
    if (const QString sStartError = startError(uiAhead, a_uiTime); !sStartError.isEmpty()) {
        endPlay(DeviceReport::notStarted(sStartError));
        reportState();
        return;
    }
    m_report.event = DeviceReport::plays(a_uiTime);
    if (uiAhead >= s_uiSecond) {
        const quint64 uiSeconds = uiAhead / s_uiSecond;
        m_log.log(QStringLiteral("starts in %1 s").arg(uiSeconds));
        m_report.event += QStringLiteral(", in %1 s").arg(uiSeconds);
    }
    reportState();
    m_timing.startScenarioTime(a_uiTimestamp, a_uiTime);
    m_uiBegin = a_uiTimestamp;
    m_uiFirst = a_uiTime;
    m_lastStep.reset();
    m_uiPlayed = 0;
    m_bPlaying = true;
    m_bBegun = false;
    Q_EMIT playBegins();
    playDue();
}

void SimulationDevice::playDue()
{
    if (!m_bPlaying) {
        return;
    }
    // The start may be in the future, deliberately or because clocks of two machines
    // differ. Before the start the scenario time has no meaning.
    const auto iAhead =
        static_cast<std::int64_t>(m_uiBegin - Simulation::ScenarioTimingHelper::currentTimeStamp());
    if (iAhead > 0) {
        wakeIn(static_cast<std::uint64_t>(iAhead / s_iMicroseconds) + 1);
        return;
    }
    if (!std::exchange(m_bBegun, true)) {
        m_log.log(DeviceReport::plays(m_uiFirst));
    }
    playStep();
}

/// Uses the time since the begin, because scenario times wrap at 2^32 ms.
void SimulationDevice::playStep()
{
    const std::uint32_t uiElapsed = m_timing.scenarioTime() - m_uiFirst;
    const std::uint32_t uiStep = uiElapsed / m_uiStep;
    const std::uint32_t uiStepBegin = uiStep * m_uiStep;
    const std::uint32_t uiLeft = duration() - m_uiFirst;
    if (m_lastStep != uiStep && (duration() == 0 || uiStepBegin < uiLeft)) {
        m_lastStep = uiStep;
        ++m_uiPlayed;
        Q_EMIT stepDue(m_uiFirst + uiStepBegin);
    }
    if (duration() != 0 && uiElapsed >= uiLeft) {
        endPlay(QStringLiteral("the scenario has ended"));
        reportState();
    } else if (m_bPlaying) {
        wakeIn(std::uint64_t{m_uiStep} - (uiElapsed - uiStepBegin));
    }
}

/// Without a playing or paused scenario, only logs a line. The last event, for example
/// the error of a refused start, then stays in the report.
void SimulationDevice::pause(std::uint32_t a_uiTime)
{
    if (m_timing.isStopped()) {
        m_log.log(QStringLiteral("not paused: no scenario plays"));
        return;
    }
    endPlay(QStringLiteral("paused at %1 ms").arg(a_uiTime));
    m_timing.pauseScenarioTime(a_uiTime);
    reportState();
}

/// Ends a play and logs the reason, which becomes the event of the next report.
void SimulationDevice::endPlay(const QString& a_sReason)
{
    m_timer.stop();
    m_timing.stopScenarioTime();
    m_report.event = a_sReason;
    const bool bPlayed = std::exchange(m_bPlaying, false);
    const std::uint32_t uiDue = m_lastStep ? *m_lastStep + 1 : 0;
    // After the clock was set back, steps are played again. Then m_uiPlayed may exceed
    // uiDue.
    const std::uint32_t uiLeftOut = uiDue - std::min(uiDue, m_uiPlayed);
    m_log.log(bPlayed ? QStringLiteral("%1: %2 played, %3 left out")
                            .arg(a_sReason, counted(m_uiPlayed, "step"), QString::number(uiLeftOut))
                      : a_sReason);
}

void SimulationDevice::wakeIn(std::uint64_t a_uiMilliseconds)
{
    m_timer.start(static_cast<int>(std::min(a_uiMilliseconds, s_uiMaxSleep)));
}

} // namespace SimulationTool

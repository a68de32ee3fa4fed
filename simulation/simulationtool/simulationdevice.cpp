#include "simulationdevice.h"

#include "deploymentdetails.h"
#include "devicestatetext.h"
#include "scenariofile.h"
#include "valuetexts.h"

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

constexpr std::uint64_t s_uiMaxSleep = 60'000; ///< ms; the clock may be set meanwhile
constexpr qsizetype s_iMaxJxDevices = 4096;
constexpr qsizetype s_iMaxJxId = 1024;                           ///< characters
constexpr std::int64_t s_iMicroseconds = 1000;                   ///< in a millisecond
constexpr std::uint64_t s_uiSecond = 1'000'000;                  ///< us
constexpr std::uint64_t s_uiYear = s_uiSecond * 3600 * 24 * 365; ///< us

} // namespace

SimulationDevice::SimulationDevice(const Simulation::SimulationDeviceConfiguration& a_configuration,
                                   Simulation::ISignalPackageProvider& a_provider, std::uint32_t a_uiStep)
    : m_configuration(a_configuration)
    , m_provider(a_provider)
    , m_uiStep(a_uiStep)
    , m_communication(nullptr)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &SimulationDevice::playDue);
    connect(&m_communication, &Communication::acceptSimulationDevice, this, &SimulationDevice::slotAccepted);
    connect(&m_communication, &Communication::unregisterSimulationDevice, this,
            &SimulationDevice::slotUnregistered);
    connect(&m_log, &LogLimit::told, this, &SimulationDevice::told);
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
    m_communication.setSocket(m_connector->socket()); // for all its connections
    for (const QObject* const pPart : m_communication.children()) {
        connect(pPart, SIGNAL(errorOccured(QString)), this, SLOT(slotUnreadable(QString)),
                Qt::QueuedConnection);
    }
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

/// One line however long it takes.
void SimulationDevice::slotNotConnected()
{
    if (!m_connector->isConnected() && !std::exchange(m_bLoggedWaiting, true)) {
        m_log.tell(QStringLiteral("waits for the service: ") + m_connector->socket()->errorString());
    }
}

void SimulationDevice::slotConnected()
{
    m_bToldIgnoring = false;
    m_bLoggedWaiting = false;
    // A service whose machine was switched off says nothing.
    m_connector->socket()->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    m_connector->socket()->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_log.tell(QStringLiteral("connected"));
    m_communication.sendRegisterSimulationDevice(m_configuration.id(), m_configuration);
}

void SimulationDevice::slotDisconnected()
{
    m_bAccepted = false;
    m_bLoggedWaiting = true;
    m_log.tell(QStringLiteral("connection lost, waits for the service"));
}

/// The rest of this connection would be lost; the next one begins afresh.
void SimulationDevice::slotUnreadable(const QString& a_sReason)
{
    m_log.tell(QStringLiteral("what the service sends cannot be read: ") +
               LogLimit::part(a_sReason.simplified()));
    // An orderly end would wait until all is sent, which a service that does not
    // read puts off for ever. An attempt that is under way already is the next
    // connection.
    if (m_connector->isConnected()) {
        m_connector->socket()->abort();
    }
}

void SimulationDevice::slotAccepted(const QString& a_sId, const QString& a_sConfirmation)
{
    m_bAccepted = a_sId == m_configuration.id() &&
                  a_sConfirmation == Communication::createConfirmation(m_configuration);
    if (!m_bAccepted) {
        m_log.tell(QStringLiteral("the service sent a wrong confirmation: its orders are ignored"));
        m_bToldIgnoring = true;
        return;
    }
    m_log.tell(QStringLiteral("accepted"));
    reportState();
}

void SimulationDevice::slotUnregistered(const QString& a_sId)
{
    if (m_bAccepted && a_sId == m_configuration.id()) {
        m_bAccepted = false;
        m_log.tell(QStringLiteral("another device has registered as %1: no orders come any more").arg(a_sId));
    }
}

/// Whether an order that has come is from a service that confirmed the device.
bool SimulationDevice::obeys()
{
    if (!m_bAccepted && !std::exchange(m_bToldIgnoring, true)) {
        m_log.tell(QStringLiteral("orders of a service that has not confirmed the device are ignored"));
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
            m_log.tell(QStringLiteral("Jx device %1 added, now %2")
                           .arg(LogLimit::part(a_sId), QString::number(m_jxDevices.size())));
        }
    });
    connect(&m_communication, &Communication::removeJxDevice, this, [this](const QString& a_sId) {
        if (obeys() && m_jxDevices.remove(a_sId)) {
            m_log.tell(QStringLiteral("Jx device %1 removed, now %2")
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
            m_timing.pauseScenarioTime(a_uiTime);
            endPlay(QStringLiteral("paused at %1 ms").arg(a_uiTime));
        }
    });
    connect(&m_communication, &Communication::stopScenario, this, [this] {
        if (obeys()) {
            m_timing.stopScenarioTime();
            endPlay(QStringLiteral("stopped"));
        }
    });
    connect(&m_communication, &Communication::testModeOn, this, [this](bool a_bOn) {
        if (obeys()) {
            m_log.tell(a_bOn ? QStringLiteral("test mode on") : QStringLiteral("test mode off"));
        }
    });
}

void SimulationDevice::tellUnusable(const QString& a_sWhat, const QByteArray& a_content,
                                    const QString& a_sReason)
{
    m_log.tell(QStringLiteral("%1 of %2: %3")
                   .arg(a_sWhat, counted(static_cast<quint64>(a_content.size()), "byte"),
                        LogLimit::part(a_sReason)));
}

/// Keeps what came, and says what it is.
void SimulationDevice::deploy(const QByteArray& a_deployment)
{
    m_deployment = a_deployment;
    Simulation::DeploymentDataXml deployment;
    static_cast<void>(deployment.fromXml(a_deployment));
    if (const QString sError = deployment.errorString(); !sError.isEmpty()) {
        tellUnusable(QStringLiteral("deployment"), a_deployment, sError);
        return;
    }
    m_log.tell(QStringLiteral("deployment \"%1\": %2")
                   .arg(LogLimit::part(deployment.name()), deploymentSummary(deployment)));
}

void SimulationDevice::load(const QByteArray& a_scenario)
{
    unload();
    setState(ScenarioDataState::Loading);
    m_connector->socket()->flush(); // reading may take a while
    m_scenario = std::make_unique<Simulation::ScenarioDataXml>(&m_provider);
    const bool bRead = m_scenario->fromXml(a_scenario);
    const QString sError = m_scenario->errorString();
    if (!bRead || !sError.isEmpty()) {
        m_scenario.reset();
        tellUnusable(QStringLiteral("scenario"), a_scenario, sError);
        setState(ScenarioDataState::Failed);
        return;
    }
    m_emitters = emittersOf(*m_scenario);
    m_log.tell(QStringLiteral("scenario \"%1\" with %2")
                   .arg(LogLimit::part(m_scenario->getName()),
                        counted(static_cast<quint64>(m_emitters.size()), "emitter")));
    setState(ScenarioDataState::Loaded);
}

void SimulationDevice::unload()
{
    m_timing.stopScenarioTime();
    if (m_bPlaying) {
        endPlay(QStringLiteral("stopped"));
    }
    m_emitters.clear();
    m_scenario.reset();
}

void SimulationDevice::setState(ScenarioDataState a_eState)
{
    m_state.setScenarioDataState(a_eState);
    m_log.tell(QStringLiteral("state: ") + stateText(a_eState));
    reportState();
}

void SimulationDevice::reportState()
{
    m_communication.sendSimulationDeviceStateUpdate(m_configuration.id(), m_state);
}

// Playing

/// Whether there is something to play, says so if not.
bool SimulationDevice::canPlay(quint64 a_uiTimestamp, std::uint32_t a_uiTime)
{
    const quint64 uiNow = Simulation::ScenarioTimingHelper::currentTimeStamp();
    const quint64 uiAhead = a_uiTimestamp > uiNow ? a_uiTimestamp - uiNow : 0;
    if (m_scenario == nullptr) {
        m_log.tell(QStringLiteral("nothing to start: no scenario is loaded"));
    } else if (uiAhead > s_uiYear) {
        m_log.tell(
            QStringLiteral("start refused: it is %1 s ahead, more than a year").arg(uiAhead / s_uiSecond));
    } else if (duration() != 0 && a_uiTime >= duration()) {
        endPlay(QStringLiteral("nothing to play from %1 ms: the scenario ends at %2 ms")
                    .arg(QString::number(a_uiTime), QString::number(duration())));
    } else {
        if (uiAhead >= s_uiSecond) {
            m_log.tell(QStringLiteral("starts in %1 s").arg(uiAhead / s_uiSecond));
        }
        return true;
    }
    return false;
}

void SimulationDevice::play(quint64 a_uiTimestamp, std::uint32_t a_uiTime)
{
    if (!canPlay(a_uiTimestamp, a_uiTime)) {
        return;
    }
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
    // The clocks of two machines differ a little, and the start may be meant for
    // later: before it the scenario time means nothing.
    const auto iAhead =
        static_cast<std::int64_t>(m_uiBegin - Simulation::ScenarioTimingHelper::currentTimeStamp());
    if (iAhead > 0) {
        wakeIn(static_cast<std::uint64_t>(iAhead / s_iMicroseconds) + 1);
        return;
    }
    if (!std::exchange(m_bBegun, true)) {
        m_log.tell(QStringLiteral("plays from %1 ms").arg(m_uiFirst));
    }
    playStep();
}

/// Scenario times wrap round at 2^32 ms, so what counts is the time since the
/// begin.
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
        endPlay(QStringLiteral("the scenario is over"));
    } else if (m_bPlaying) {
        wakeIn(std::uint64_t{m_uiStep} - (uiElapsed - uiStepBegin));
    }
}

void SimulationDevice::endPlay(const QString& a_sReason)
{
    m_timer.stop();
    const bool bPlayed = std::exchange(m_bPlaying, false);
    const std::uint32_t uiDue = m_lastStep ? *m_lastStep + 1 : 0;
    // A clock that was set back has some steps played twice.
    const std::uint32_t uiLeftOut = uiDue - std::min(uiDue, m_uiPlayed);
    m_log.tell(bPlayed ? QStringLiteral("%1: %2 played, %3 left out")
                             .arg(a_sReason, counted(m_uiPlayed, "step"), QString::number(uiLeftOut))
                       : a_sReason);
}

void SimulationDevice::wakeIn(std::uint64_t a_uiMilliseconds)
{
    m_timer.start(static_cast<int>(std::min(a_uiMilliseconds, s_uiMaxSleep)));
}

} // namespace SimulationTool

#include "demoroad.h"

#include "console/interruption.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "describe/deploymentdetails.h"
#include "deviceplay.h"
#include "playsink.h"
#include "repositorycfg.h"
#include "repositoryfolder.h"

#include "kpbase/velaos.h"
#include "simulationdata/datastorefactory.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/szenarioemitter.h"

#include <QFile>
#include <QHostAddress>
#include <QTimer>

#include <algorithm>

namespace SimulationTool {

namespace {

using Simulation::ScenarioDataState;

constexpr std::chrono::milliseconds s_timeout(10'000);
constexpr std::uint32_t s_uiStep = 1000;         ///< ms
constexpr std::uint32_t s_uiEnd = 10'000;        ///< ms, the time of the last step
constexpr std::uint32_t s_uiShownEvery = 5000;   ///< ms
constexpr std::uint64_t s_uiMicroseconds = 1000; ///< in a millisecond
constexpr Simulation::TPos s_pier{9.95, 53.54};  ///< position of the demo's station (degrees, longitude
                                                 ///< first)
constexpr int s_iWhoWidth = -8;                  ///< characters, left-aligned

} // namespace

DemoRoad::DemoRoad(Report& a_report)
    : m_report(a_report)
    , m_uiClock(VelaOS::Get().timestamp())
    , m_controller(s_timeout)
{
    VelaOS::Get().setClock([this] { return m_uiClock.load(); });
    connect(&m_service, &SimulationService::logged, this,
            [this](const QString& a_sLine) { log(QStringLiteral("service"), a_sLine); });
    m_devices[0].id = QStringLiteral("device-1");
    m_devices[1].id = QStringLiteral("device-2");
}

DemoRoad::~DemoRoad()
{
    m_service.disconnect(this);
    for (Device& device : m_devices) {
        device.device.reset();
    }
    VelaOS::Get().setClock({});
}

void DemoRoad::log(const QString& a_sWho, const QString& a_sLine)
{
    m_report.record("events", {{QStringLiteral("who"), a_sWho}, {QStringLiteral("text"), a_sLine}},
                    QStringLiteral("%1  ").arg(a_sWho, s_iWhoWidth) + a_sLine);
}

bool DemoRoad::waitFor(const std::function<bool(const SimulationDevice&)>& a_isDone)
{
    QTimer tooLong;
    tooLong.setSingleShot(true);
    connect(&tooLong, &QTimer::timeout, this, [this] { m_loop.quit(); });
    tooLong.start(s_timeout);
    const auto isDone = [&] {
        return std::all_of(m_devices.cbegin(), m_devices.cend(),
                           [&](const Device& a_device) { return a_isDone(*a_device.device); });
    };
    while (!isDone() && tooLong.isActive() && !isInterrupted()) {
        m_loop.run();
    }
    return isDone();
}

bool DemoRoad::makeRepository()
{
    RepositoryCfg cfg(m_folder.path());
    if (!m_folder.isValid()) {
        m_sError = QStringLiteral("in a temporary folder: %1. Choose another place (TMPDIR)")
                       .arg(m_folder.errorString());
        return false;
    }
    QString sReason;
    if (!Simulation::DataStoreFactory::initializeDataStore(&cfg, &sReason) || !sReason.isEmpty()) {
        m_sError = QStringLiteral("in %1: %2. Remove the cause or choose another place (TMPDIR)")
                       .arg(m_folder.path(), sReason);
        return false;
    }
    // packageStoreOf() is not called earlier, because initializeDataStore() makes the folder
    // of the packages.
    const QString sStore = packageStoreOf(m_folder.path());
    const auto uiPackages = static_cast<quint64>(Simulation::SignalPackageFolder::list(sStore).size());
    log(QStringLiteral("demo"),
        QStringLiteral("repository with %1 in a temporary folder").arg(counted(uiPackages, "package")));
    return true;
}

bool DemoRoad::startService()
{
    if (!m_service.listen(QHostAddress::LocalHost, 0)) {
        return false;
    }
    m_address = {QHostAddress(QHostAddress::LocalHost).toString(), m_service.port()};
    log(QStringLiteral("service"), QStringLiteral("listening on ") + m_address.text());
    return true;
}

void DemoRoad::addDevice(Device& a_device)
{
    a_device.device =
        std::make_unique<SimulationDevice>(localDevice(a_device.id, QString()), a_device.packages, s_uiStep);
    connect(a_device.device.get(), &SimulationDevice::logged, this,
            [this, &a_device](const QString& a_sLine) {
                log(a_device.id, a_sLine);
                m_loop.quit(); // so that waitFor() checks its condition
            });
    connect(a_device.device.get(), &SimulationDevice::stepDue, this,
            [this, &a_device](quint32 a_uiTime) { notePlayed(a_device, a_uiTime); });
    a_device.device->connectToService(m_address);
}

bool DemoRoad::startDevices()
{
    for (Device& device : m_devices) {
        if (!device.packages.open(m_folder.path(), QString()) || !device.packages.isComplete()) {
            return false;
        }
        addDevice(device);
    }
    return waitFor([](const SimulationDevice& a_device) { return a_device.isAccepted(); });
}

bool DemoRoad::acquire()
{
    if (!m_controller.connectToService(m_address)) {
        return false;
    }
    m_controller.acquire();
    if (!m_controller.synchronize()) {
        return false;
    }
    const auto uiDevices = static_cast<quint64>(m_controller.devices().size());
    log(QStringLiteral("editor"),
        QStringLiteral("acquired the service, %1").arg(counted(uiDevices, "device")));
    return uiDevices == m_devices.size();
}

/// Deploys both devices at one station.
bool DemoRoad::deploy()
{
    // Destroyed last, because its destructor releases only objects without another owner.
    Simulation::DeploymentDataXml deployment;
    const auto station = std::make_shared<Simulation::DeploymentStation>(QStringLiteral("pier"));
    station->setPosition(s_pier);
    QSet<std::shared_ptr<Simulation::DeploymentDevice>> devices;
    for (const Device& device : m_devices) {
        const auto deployed = std::make_shared<Simulation::DeploymentDevice>(device.id);
        deployed->setStation(station);
        station->addDevice(deployed);
        devices.insert(deployed);
    }
    deployment.setName(QStringLiteral("Harbour"));
    deployment.setDevices(devices);
    deployment.setStations({station});
    const QByteArray xml = deployment.toXml();
    log(QStringLiteral("editor"),
        QStringLiteral("sends a deployment of %1").arg(deploymentSummary(deployment)));
    m_controller.communication().sendLoadDeployment(xml);
    return m_controller.synchronize() &&
           waitFor([&](const SimulationDevice& a_device) { return a_device.deployment() == xml; });
}

bool DemoRoad::loadScenario()
{
    QFile file(QStringLiteral(":/DefaultData/Default.sce.exp"));
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray scenario = file.readAll();
    log(QStringLiteral("editor"), QStringLiteral("sends the built-in scenario, %1")
                                      .arg(counted(static_cast<quint64>(scenario.size()), "byte")));
    if (!m_controller.loadScenario(scenario)) {
        return false;
    }
    const auto& states = m_controller.states();
    const auto iLoaded = std::count_if(states.cbegin(), states.cend(), [](const auto& a_state) {
        return a_state.scenarioDataState() == ScenarioDataState::Loaded;
    });
    log(QStringLiteral("editor"),
        QStringLiteral("receives: loaded by %1").arg(counted(static_cast<quint64>(iLoaded), "device")));
    return iLoaded == std::ssize(m_devices);
}

/// Keeps all values of a step. For the first device, also shows the rows of a step every
/// 5 s of scenario time.
void DemoRoad::notePlayed(Device& a_device, std::uint32_t a_uiTime)
{
    QStringList values{QString::number(a_uiTime)};
    const auto emitters = a_device.device->emitters();
    for (const auto& emitter : emitters) {
        const Moment moment(*emitter, a_uiTime, &a_device.packages);
        values << emitter->id() << yesNo(moment.active) << plainNumber(moment.frequency)
               << plainNumber(moment.position.longitude) << plainNumber(moment.position.latitude)
               << moment.packageId << shortNumber(moment.level.value_or(-1.0F));
        if (&a_device == m_devices.data() && moment.active && a_uiTime % s_uiShownEvery == 0) {
            static_cast<void>(m_sink->add(emitter->id(), moment));
        }
    }
    a_device.steps.append(values.join(u' '));
}

bool DemoRoad::play()
{
    QStringList ids;
    for (const auto& emitter : m_devices[0].device->emitters()) {
        ids.append(emitter->id());
    }
    m_sink = makeTableSink(m_report, ids, s_uiEnd, true);
    log(QStringLiteral("editor"), QStringLiteral("starts the scenario, a second from now"));
    m_controller.communication().sendStartScenario(m_uiClock + s_uiStep * s_uiMicroseconds, 0);
    if (!m_controller.synchronize() ||
        !waitFor([](const SimulationDevice& a_device) { return a_device.isPlaying(); })) {
        return false;
    }
    log(QStringLiteral("demo"), QStringLiteral("moves the clock to %1 ms; what device-1 sends, every %2 ms:")
                                    .arg(s_uiEnd)
                                    .arg(s_uiShownEvery));
    if (!m_sink->begin()) {
        return false;
    }
    for (std::uint32_t uiTime = 0; uiTime <= s_uiEnd; uiTime += s_uiStep) {
        m_uiClock += s_uiStep * s_uiMicroseconds;
        for (const Device& device : m_devices) {
            device.device->playDue();
        }
    }
    const qsizetype iSteps = s_uiEnd / s_uiStep + 1;
    const bool bSame = m_devices[0].steps == m_devices[1].steps;
    log(QStringLiteral("demo"), QStringLiteral("device-1 played %1, device-2 %2, with %3 values")
                                    .arg(counted(static_cast<quint64>(m_devices[0].steps.size()), "step"),
                                         QString::number(m_devices[1].steps.size()),
                                         bSame ? QStringLiteral("the same") : QStringLiteral("DIFFERENT")));
    bool bFound = false;
    for (Device& device : m_devices) {
        bFound = device.packages.finish() != ExitCode::Ok || bFound;
    }
    if (bFound) {
        m_sError = QStringLiteral("with all packages: standard error names those that are broken or missing. "
                                  "Remove the cause, then run the demo again");
    }
    return !bFound && bSame && m_devices[0].steps.size() == iSteps;
}

bool DemoRoad::pauseAndStop()
{
    log(QStringLiteral("editor"), QStringLiteral("pauses at %1 ms, then stops").arg(s_uiEnd));
    m_controller.communication().sendPauseScenario(s_uiEnd);
    m_controller.communication().sendStopScenario();
    return m_controller.synchronize() &&
           waitFor([](const SimulationDevice& a_device) { return !a_device.isPlaying(); });
}

bool DemoRoad::unload()
{
    log(QStringLiteral("editor"), QStringLiteral("unloads the scenario and leaves"));
    m_controller.communication().sendUnloadScenario();
    const bool bUnloaded = m_controller.synchronize() && waitFor([](const SimulationDevice& a_device) {
                               return a_device.state() == ScenarioDataState::None;
                           });
    m_controller.leave();
    return bUnloaded;
}

} // namespace SimulationTool

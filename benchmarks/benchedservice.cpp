#include "benchedservice.h"

#include "simulationdata/simulationdeviceconfiguration.h"

#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <unistd.h>

using namespace Simulation;

namespace {

constexpr int s_iTimeoutMs = 10'000;
constexpr int s_iOverdueMs = 5000;
constexpr double s_dNsPerMs = 1e6;

const QString s_sHost = QStringLiteral("127.0.0.1");

/// Runs the event loop until the condition holds. False when it does not hold within
/// the time (ms).
template<typename Condition>
bool runUntil(const Condition& a_condition, int a_iMilliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    QEventLoop loop;
    QTimer wakeUp; // ends the wait for events at the timeout
    wakeUp.start(a_iMilliseconds);
    while (!a_condition() && elapsed.elapsed() < a_iMilliseconds) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return a_condition();
}

QByteArray processFile(qint64 a_iProcess, const char* a_szName)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(a_iProcess).arg(QLatin1String(a_szName)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void runFor(int a_iMilliseconds)
{
    runUntil([] { return false; }, a_iMilliseconds);
}

BenchedService::BenchedService()
{
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                    {QStringLiteral("service"), QStringLiteral("--port"), QStringLiteral("0"),
                     QStringLiteral("--address"), s_sHost});
    while (!m_process.canReadLine() && m_process.waitForReadyRead(s_iTimeoutMs)) {
    }
    m_uiPort = m_process.readLine().trimmed().split(' ').last().toUShort();
}

BenchedService::~BenchedService()
{
    m_process.terminate();
    if (!m_process.waitForFinished(s_iTimeoutMs)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

double BenchedService::processorTime() const
{
    constexpr qsizetype iUserTime = 11; // index among the fields after the program's name
    const QByteArray text = processFile(m_process.processId(), "stat");
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() <= iUserTime + 1) {
        return -1.0;
    }
    const double dTicks = fields[iUserTime].toDouble() + fields[iUserTime + 1].toDouble();
    return dTicks * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double BenchedService::peakMemory() const
{
    constexpr double dKibiPerMebi = 1024.0;
    const QList<QByteArray> lines = processFile(m_process.processId(), "status").split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:")) {
            return line.simplified().split(' ').value(1).toDouble() / dKibiPerMebi;
        }
    }
    return -1.0;
}

BenchedPeers::BenchedPeers(quint16 a_uiPort)
    : m_uiPort(a_uiPort)
{
    for (int i = 0; i < s_iDevices; ++i) {
        addDevice(i);
    }
    QObject::connect(&m_controller, &QTcpSocket::readyRead, &m_controller, [this] { noteNews(); });
    QObject::connect(&m_controller, &QTcpSocket::disconnected, &m_controller, [this] { ++m_iEvictions; });
    runUntil([this] { return isReady(); }, s_iTimeoutMs);
}

void BenchedPeers::addDevice(int a_iIndex)
{
    m_devices.push_back(std::make_unique<Device>());
    Device* const pDevice = m_devices.back().get();
    SimulationServiceCommunication* const pService = &pDevice->communication;
    QObject::connect(pService, &SimulationServiceCommunication::acceptSimulationDevice,
                     [this] { ++m_iAccepted; });
    QObject::connect(pService, &SimulationServiceCommunication::startScenario,
                     [this, pDevice](quint64 a_uiStart) { noteStart(*pDevice, a_uiStart); });
    QObject::connect(&pDevice->socket, &QTcpSocket::connected, pService, [pService, a_iIndex] {
        SimulationDeviceConfiguration configuration;
        configuration.setId(QString::number(a_iIndex));
        pService->sendRegisterSimulationDevice(configuration.id(), configuration);
    });
    pDevice->socket.connectToHost(s_sHost, m_uiPort);
}

void BenchedPeers::noteStart(Device& a_device, quint64 a_uiStart)
{
    if (a_uiStart == m_uiStart && a_device.start != a_uiStart) {
        a_device.start = a_uiStart;
        ++m_iStarted;
        m_dLastArrival = static_cast<double>(m_sinceStart.nsecsElapsed()) / s_dNsPerMs;
    }
}

std::optional<double> BenchedPeers::start()
{
    if (m_controller.state() == QAbstractSocket::UnconnectedState) {
        m_controller.connectToHost(s_sHost, m_uiPort);
        runUntil([this] { return m_controller.state() == QAbstractSocket::ConnectedState; }, s_iTimeoutMs);
    }
    ++m_uiStart;
    m_iStarted = 0;
    m_sinceStart.start();
    m_controller.write("<Command><AcquireServer/></Command><Command><StartScenario><Timestamp>" +
                       QByteArray::number(m_uiStart) +
                       "</Timestamp><ScenarioTime>0</ScenarioTime></StartScenario></Command>");
    m_controller.flush();
    const bool bAll = runUntil([this] { return m_iStarted == s_iDevices; }, s_iOverdueMs);
    return bAll ? std::optional(m_dLastArrival) : std::nullopt;
}

/// Searches the received bytes for the state of the first device only. Parsing
/// everything would be slower than the service.
void BenchedPeers::noteNews()
{
    constexpr qsizetype iUpdateBytes = 512; // at least the size of an update
    const QByteArray device("SimulationDeveiceStateUpdate Id=\"0\"");
    const QByteArray state("ScenarioDataState&gt;");
    m_received = m_received.right(iUpdateBytes) + m_controller.readAll();
    const qsizetype iDevice = m_received.lastIndexOf(device);
    const qsizetype iState = iDevice >= 0 ? m_received.indexOf(state, iDevice) + state.size() : 0;
    if (iState > state.size() && iState < m_received.size()) {
        m_iKnown = m_received[iState] - '0';
    }
}

std::optional<double> BenchedPeers::news()
{
    m_iReported = m_iReported == 1 ? 2 : 1;
    SimulationDeviceState state;
    state.setScenarioDataState(static_cast<ScenarioDataState>(m_iReported));
    QElapsedTimer sinceReport;
    sinceReport.start();
    m_devices.front()->communication.sendSimulationDeviceStateUpdate(QStringLiteral("0"), state);
    const bool bKnown = runUntil([this] { return m_iKnown == m_iReported; }, s_iOverdueMs);
    const double dMs = static_cast<double>(sinceReport.nsecsElapsed()) / s_dNsPerMs;
    return bKnown ? std::optional(dMs) : std::nullopt;
}

#include "kpbase/errorhandler.h"
#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationservicecommunication.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTcpSocket>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <vector>

#include <unistd.h>

// What a service with 200 idle devices costs: processor time over some seconds,
// beside that of the same process while the devices registered.

using namespace Simulation;

namespace {

constexpr int s_iDevices = 200;
constexpr int s_iIdleMs = 5000;
constexpr int s_iTimeoutMs = 10'000;

/// Processor time of a process so far (ms), as the kernel counts it.
double processorTime(qint64 a_iProcess)
{
    constexpr qsizetype iUserTime = 11; // counted from behind the program's name
    QFile file(QStringLiteral("/proc/%1/stat").arg(a_iProcess));
    if (!file.open(QIODevice::ReadOnly)) {
        return -1.0;
    }
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    const double dTicks = fields.value(iUserTime).toDouble() + fields.value(iUserTime + 1).toDouble();
    return dTicks * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

void runFor(int a_iMilliseconds)
{
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(a_iMilliseconds);
    loop.exec();
}

/// The port that the service tells; 0 when it does not start.
quint16 startService(QProcess& a_service)
{
    a_service.setProcessChannelMode(QProcess::SeparateChannels);
    a_service.setStandardErrorFile(QProcess::nullDevice());
    a_service.start(QStringLiteral(SIMULATIONTOOL_PATH),
                    {QStringLiteral("service"), QStringLiteral("--port"), QStringLiteral("0")});
    while (!a_service.canReadLine() && a_service.waitForReadyRead(s_iTimeoutMs)) {
    }
    return a_service.readLine().trimmed().split(' ').last().toUShort();
}

struct Device
{
    QTcpSocket socket;
    SimulationServiceCommunication communication{&socket};
};

/// Registers all devices and waits until each is accepted. False on a timeout.
bool registerDevices(std::vector<std::unique_ptr<Device>>& a_devices, quint16 a_uiPort)
{
    QEventLoop loop;
    int iAccepted = 0;
    for (int i = 0; i < s_iDevices; ++i) {
        auto device = std::make_unique<Device>();
        SimulationServiceCommunication* const pService = &device->communication;
        QObject::connect(pService, &SimulationServiceCommunication::acceptSimulationDevice, &loop, [&] {
            if (++iAccepted == s_iDevices) {
                loop.quit();
            }
        });
        QObject::connect(&device->socket, &QTcpSocket::connected, &loop, [pService, i] {
            SimulationDeviceConfiguration configuration;
            configuration.setId(QString::number(i));
            pService->sendRegisterSimulationDevice(configuration.id(), configuration);
        });
        device->socket.connectToHost(QStringLiteral("127.0.0.1"), a_uiPort);
        a_devices.push_back(std::move(device));
    }
    QTimer timeout;
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(s_iTimeoutMs);
    loop.exec();
    return iAccepted == s_iDevices;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    ErrorHandler::Instance().setTraceMask(0); // every command that was processed is traced as an error
    QProcess service;
    const quint16 uiPort = startService(service);
    std::vector<std::unique_ptr<Device>> devices;
    if (uiPort == 0 || !registerDevices(devices, uiPort)) {
        std::fputs("bench_service: the service does not accept the devices\n", stderr);
        return 1;
    }
    const double dRegistered = processorTime(service.processId());
    runFor(s_iIdleMs);
    const double dIdle = processorTime(service.processId()) - dRegistered;
    std::printf("service with %d idle devices: %.0f ms of processor time in %d ms; starting and registering "
                "them: %.0f ms\n",
                s_iDevices, dIdle, s_iIdleMs, dRegistered);
    service.terminate();
    service.waitForFinished();
    return 0;
}

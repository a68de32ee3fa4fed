#ifndef BENCHMARKS_BENCHEDSERVICE_H
#define BENCHMARKS_BENCHEDSERVICE_H

#include "simulationdata/simulationservicecommunication.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpSocket>

#include <memory>
#include <optional>
#include <vector>

/// Runs the event loop for a time (ms).
void runFor(int a_iMilliseconds);

/// A service in a process of its own, on a port of the loopback address. The process
/// ends with the object.
class BenchedService
{
public:
    BenchedService();
    ~BenchedService();
    BenchedService(const BenchedService&) = delete;
    BenchedService& operator=(const BenchedService&) = delete;

    /// The port of the service; 0 when the service did not start.
    [[nodiscard]] quint16 port() const { return m_uiPort; }

    /// Processor time of the service so far (ms); -1 when it is not known.
    [[nodiscard]] double processorTime() const;

    /// Peak of the service's resident memory so far (MiB); -1 when it is not known.
    [[nodiscard]] double peakMemory() const;

private:
    QProcess m_process;
    quint16 m_uiPort = 0;
};

/// Conforming devices of a service, and a program that controls the service. Devices and
/// program run in the caller's event loop.
class BenchedPeers
{
public:
    static constexpr int s_iDevices = 200;

    /// Connects and registers the devices. Check isReady() afterwards.
    explicit BenchedPeers(quint16 a_uiPort);

    /// Whether each device was accepted.
    [[nodiscard]] bool isReady() const { return m_iAccepted == s_iDevices; }

    /// Acquires the service, starts the scenario and waits until each device has
    /// received the start. Returns the time (ms); no value after 5 s.
    [[nodiscard]] std::optional<double> start();

    /// Lets a device report another state and waits until the controller has received
    /// that state. Returns the time (ms); no value after 5 s.
    [[nodiscard]] std::optional<double> news();

    /// How often the service has dropped the controller. start() connects the controller
    /// again.
    [[nodiscard]] int evictions() const { return m_iEvictions; }

private:
    struct Device
    {
        QTcpSocket socket;
        Simulation::SimulationServiceCommunication communication{&socket};
        quint64 start = 0; ///< number of the newest received start
    };

    void addDevice(int a_iIndex);
    void noteStart(Device& a_device, quint64 a_uiStart);
    void noteNews();

    const quint16 m_uiPort;
    std::vector<std::unique_ptr<Device>> m_devices;
    QTcpSocket m_controller;
    QByteArray m_received; ///< last bytes that the controller received
    int m_iReported = 0;   ///< the last state that the first device reported
    int m_iKnown = 0;      ///< the newest state that the controller received
    quint64 m_uiStart = 0; ///< the number of the newest start
    QElapsedTimer m_sinceStart;
    double m_dLastArrival = 0.0; ///< ms after the start
    int m_iAccepted = 0;
    int m_iStarted = 0; ///< devices that have received the newest start
    int m_iEvictions = 0;
};

#endif

#ifndef SIMULATIONTOOL_DEMOROAD_H
#define SIMULATIONTOOL_DEMOROAD_H

#include "console/interruptibleloop.h"
#include "repositorypackages.h"
#include "servicecontroller.h"
#include "simulationdevice.h"
#include "simulationservice.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace SimulationTool {

class Report;
class Sink;

/// The demo: an editor sends a scenario through a service to two devices, which play it.
/// All these programs run in this process and communicate over the loopback interface.
/// They share a clock that the demo sets, so that no step waits for real time to pass.
///
/// The object replaces the clock of the process (VelaOS) while it exists. Used on the
/// main thread.
class DemoRoad : public QObject
{
    Q_OBJECT

public:
    explicit DemoRoad(Report& a_report);
    ~DemoRoad() override;

    /// The steps, to be called in this order. Each reports its events and returns
    /// false when its result is not the expected one.
    [[nodiscard]] bool makeRepository();
    [[nodiscard]] bool startService();
    [[nodiscard]] bool startDevices();
    [[nodiscard]] bool acquire();
    [[nodiscard]] bool deploy();
    [[nodiscard]] bool loadScenario();
    [[nodiscard]] bool play();
    [[nodiscard]] bool pauseAndStop();
    [[nodiscard]] bool unload();

    /// The error text of a failed step; empty when no details are known.
    [[nodiscard]] QString problem() const { return m_sError.isEmpty() ? m_controller.problem() : m_sError; }

private:
    struct Device
    {
        QString id;
        RepositoryPackages packages;
        std::unique_ptr<SimulationDevice> device;
        QStringList steps; ///< all played values, one text per step
    };

    void log(const QString& a_sWho, const QString& a_sLine);
    void addDevice(Device& a_device);
    void notePlayed(Device& a_device, std::uint32_t a_uiTime);
    [[nodiscard]] bool waitFor(const std::function<bool(const SimulationDevice&)>& a_isDone);

    Report& m_report;
    std::atomic<std::uint64_t> m_uiClock; ///< us since 1970
    QTemporaryDir m_folder;               ///< holds the repository
    InterruptibleLoop m_loop;
    SimulationService m_service;
    ServerAddress m_address;
    std::array<Device, 2> m_devices;
    ServiceController m_controller;
    QString m_sError;             ///< errors other than the controller's
    std::unique_ptr<Sink> m_sink; ///< for the rows of the first device
};

} // namespace SimulationTool

#endif

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

/// The road of a scenario from an editor to the devices, with all programs in
/// this process: they talk over connections of the loopback device, and share a
/// clock that is moved by hand, so that nobody waits for the scenario's time.
///
/// The clock of the process belongs to the object as long as it lives.
class DemoRoad : public QObject
{
    Q_OBJECT

public:
    explicit DemoRoad(Report& a_report);
    ~DemoRoad() override;

    /// The steps of the road, in this order; each tells what happens, and is
    /// false when something is not as it should be.
    [[nodiscard]] bool makeRepository();
    [[nodiscard]] bool startService();
    [[nodiscard]] bool startDevices();
    [[nodiscard]] bool acquire();
    [[nodiscard]] bool deploy();
    [[nodiscard]] bool loadScenario();
    [[nodiscard]] bool play();
    [[nodiscard]] bool pauseAndStop();
    [[nodiscard]] bool unload();

    /// What went wrong, where more is known than that it did.
    [[nodiscard]] QString problem() const
    {
        return m_sProblem.isEmpty() ? m_controller.problem() : m_sProblem;
    }

private:
    struct Device
    {
        QString id;
        RepositoryPackages packages;
        std::unique_ptr<SimulationDevice> device;
        QStringList steps; ///< what was played, all values of one step in one text
    };

    void tell(const QString& a_sWho, const QString& a_sLine);
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
    QString m_sProblem;           ///< what the controller does not know
    std::unique_ptr<Sink> m_sink; ///< for rows of the first device
};

} // namespace SimulationTool

#endif

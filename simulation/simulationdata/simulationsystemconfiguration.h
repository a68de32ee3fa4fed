#ifndef SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H
#define SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>

class ICfg;

namespace Simulation {

/// The settings of an installation: where the repository and the cache lie and
/// where the services listen. Copies share the settings, which are not owned and
/// stay valid until the process ends. To be used by one thread at a time.
///
/// Before loadConfiguation() every value is the default, and there are no stores.
/// The settings stand in "Simulation.ini", for which CfgCenter::CreateCfg() names
/// the places:
///
///     SimulationServer=127.0.0.1
///     SimulationCache=/var/cache/simulation
///     [Ports]
///     SimulationServer=57401
///     SimulationService=57400
///     SimulationEditor=57409
///     [SimulationRepository]
///     FileSystem\Repository=/srv/simulation
class SIMULATIONDATA_EXPORT SimulationSystemConfiguration
{
public:
    /// Takes the settings as they are now. The spelling is part of the interface.
    void loadConfiguation();

    /// TCP ports, 1 to 65535. Any other value in the settings gives the default,
    /// 57401, 57400 and 57409, after one trace. The supervisor's is set under
    /// the name "SimulationEditor".
    [[nodiscard]] std::uint16_t simulationServerPort() const;
    [[nodiscard]] std::uint16_t simulationServicePort() const;
    [[nodiscard]] std::uint16_t simulationSupervisorPort() const;

    /// By default "127.0.0.1".
    [[nodiscard]] QString simulationServerAddress() const;

    /// By default the system's temporary folder.
    [[nodiscard]] QString simulationCacheDirectory() const;

    /// What the operations of DataStoreFactory give for these settings.
    [[nodiscard]] QString signalPackageStoreDir() const;
    [[nodiscard]] QString fileStoreDir() const;
    [[nodiscard]] QString iconStoreDir() const;
    [[nodiscard]] QString radarStoreDir() const;
    [[nodiscard]] QString defaultSignalPackage() const;
    [[nodiscard]] QString defaultScenario() const;
    [[nodiscard]] bool initializeDataStore() const;

    /// Latitude and longitude (degrees, north and east positive) of a text, in
    /// the first form that fits; always finite:
    /// - "Coord 48.1 11.5", decimal degrees, latitude first. The values are set,
    ///   but the result is false, on purpose: callers tell the form by it.
    /// - a letter and a number, twice: completed by degree signs and read as
    ///   Units::Position reads its decimal form, at fixed places. The decimal
    ///   mark is a point or a comma, whatever the default locale.
    /// - degrees, minutes and seconds at fixed places; the latitude has three
    ///   places for degrees and the longitude two. What is no number there is 0.
    static bool coordsFromConfigurationString(const QString& a_sText, double& a_dLatitude,
                                              double& a_dLongitude);

private:
    ICfg* m_pCfg = nullptr;
    ICfg* m_pRepositoryCfg = nullptr;
    ICfg* m_pPortsCfg = nullptr;
};

} // namespace Simulation

#endif

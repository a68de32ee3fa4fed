#ifndef SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H
#define SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>

class ICfg;

namespace Simulation {

/// The settings of an installation: the folders of repository and cache, and the
/// ports of the services. Copies share the settings, which are not owned and stay
/// valid until the process ends. May be used by one thread at a time.
///
/// Before loadConfiguation() every value is the default, and there are no stores.
/// The settings are in "Simulation.ini"; CfgCenter::CreateCfg() lists the folders
/// that are searched for it:
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
    /// Reads the current settings. The spelling is part of the interface.
    void loadConfiguation();

    /// TCP ports, 1 to 65535. Any other value in the settings gives the default,
    /// 57401, 57400 and 57409, after one trace. The name of the supervisor's port
    /// in the settings is "SimulationEditor".
    [[nodiscard]] std::uint16_t simulationServerPort() const;
    [[nodiscard]] std::uint16_t simulationServicePort() const;
    [[nodiscard]] std::uint16_t simulationSupervisorPort() const;

    /// By default "127.0.0.1".
    [[nodiscard]] QString simulationServerAddress() const;

    /// By default the system's temporary folder.
    [[nodiscard]] QString simulationCacheDirectory() const;

    /// The results of the same operations of DataStoreFactory for these settings.
    [[nodiscard]] QString signalPackageStoreDir() const;
    [[nodiscard]] QString fileStoreDir() const;
    [[nodiscard]] QString iconStoreDir() const;
    [[nodiscard]] QString radarStoreDir() const;
    [[nodiscard]] QString defaultSignalPackage() const;
    [[nodiscard]] QString defaultScenario() const;
    [[nodiscard]] bool initializeDataStore() const;

    /// Reads latitude and longitude (degrees, north and east positive) from a text, in
    /// the first form that matches; the values are always finite:
    /// - "Coord 48.1 11.5": decimal degrees, latitude first. The values are set, but
    ///   the result is false, deliberately: callers recognise this form by it.
    /// - "E011.500000 N48.100000": a letter and a number, twice, longitude first.
    ///   Degree signs are added, and the text is read like the decimal form of
    ///   Units::Position, at fixed places. The decimal mark is a point or a comma,
    ///   whatever the default locale.
    /// - "N048 30 36.00 E11 15 18.00": degrees, minutes and seconds at fixed
    ///   places, latitude first, with three places for its degrees and two for those
    ///   of the longitude. Fractions of a second are dropped. A part that is not a
    ///   number is 0.
    static bool coordsFromConfigurationString(const QString& a_sText, double& a_dLatitude,
                                              double& a_dLongitude);

private:
    ICfg* m_pCfg = nullptr;
    ICfg* m_pRepositoryCfg = nullptr;
    ICfg* m_pPortsCfg = nullptr;
};

} // namespace Simulation

#endif

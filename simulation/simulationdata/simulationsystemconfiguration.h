#ifndef SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H
#define SIMULATIONDATA_SIMULATIONSYSTEMCONFIGURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>

class ICfg;

namespace Simulation {

/// The settings of an installation: the folders of repository and cache, and the
/// ports of the services. Copies share the settings. The settings are not owned and
/// stay valid until the process ends. May be used by one thread at a time.
///
/// Before loadConfiguation() every value is the default, and there are no stores.
/// CfgCenter::CreateCfg() describes the folders in which the settings file
/// "Simulation.ini" is searched. An example of the file:
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

    /// TCP ports, 1 to 65535. The defaults are 57401, 57400 and 57409. Any other
    /// value in the settings gives the default, after one trace. In the settings,
    /// the supervisor's port has the name "SimulationEditor".
    [[nodiscard]] std::uint16_t simulationServerPort() const;
    [[nodiscard]] std::uint16_t simulationServicePort() const;
    [[nodiscard]] std::uint16_t simulationSupervisorPort() const;

    /// By default "127.0.0.1".
    [[nodiscard]] QString simulationServerAddress() const;

    /// By default the system's temporary folder.
    [[nodiscard]] QString simulationCacheDirectory() const;

    /// Return the results of the DataStoreFactory operations of the same name for
    /// these settings.
    [[nodiscard]] QString signalPackageStoreDir() const;
    [[nodiscard]] QString fileStoreDir() const;
    [[nodiscard]] QString iconStoreDir() const;
    [[nodiscard]] QString radarStoreDir() const;
    [[nodiscard]] QString defaultSignalPackage() const;
    [[nodiscard]] QString defaultScenario() const;
    [[nodiscard]] bool initializeDataStore() const;

    /// Reads latitude and longitude (degrees, north and east positive) from a text. The
    /// values are always finite. The first of these forms that matches is used:
    /// - "Coord 48.1 11.5": decimal degrees, latitude first. The values are set, but
    ///   the result is false, deliberately: callers recognise this form by that result.
    /// - "E011.500000 N48.100000": a letter and a number, twice, longitude first.
    ///   Degree signs are added. The text is then read at fixed places, like the
    ///   decimal form of Units::Position. The decimal mark is a point or a comma,
    ///   whatever the default locale.
    /// - "N048 30 36.00 E11 15 18.00": degrees, minutes and seconds at fixed places,
    ///   latitude first. The degrees of the latitude have three places, those of the
    ///   longitude two. Fractions of a second are dropped. A part that is not a number
    ///   is 0.
    static bool coordsFromConfigurationString(const QString& a_sText, double& a_dLatitude,
                                              double& a_dLongitude);

private:
    ICfg* m_pCfg = nullptr;
    ICfg* m_pRepositoryCfg = nullptr;
    ICfg* m_pPortsCfg = nullptr;
};

} // namespace Simulation

#endif

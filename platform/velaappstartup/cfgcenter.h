#ifndef VELAAPPSTARTUP_CFGCENTER_H
#define VELAAPPSTARTUP_CFGCENTER_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

class ICfg;

/// The identity of this machine and the settings of its programs. Static operations
/// only; any thread may call them.
class SIMULATIONDATA_EXPORT CfgCenter
{
public:
    CfgCenter() = delete;

    /// Returns a text that identifies this machine: the operating system's unique
    /// id, else the host name, else "localhost". It is stable across restarts and
    /// never empty.
    [[nodiscard]] static QString GetMachineId();

    /// Returns the current settings of that name, from the file "<name>.ini". The
    /// file's folder is the one set by SetFolder(), else the one in the environment
    /// variable SIMULATION_CONFIG_DIR. Without these, the file is searched in the
    /// sub-folder "simulation" of the platform's settings folders, the user's folder
    /// first.
    ///
    /// The file is UTF-8 in the INI form of QSettings with two exceptions, because
    /// people type these files. A value with commas is one text. A Windows path
    /// needs neither quotes nor doubled backslashes. A missing file has no settings.
    /// A file that cannot be read or is larger than 1 MiB is traced and has no
    /// settings, either.
    ///
    /// The result is never null. CfgCenter owns the object, which stays valid until the
    /// process ends. Its values never change. `a_iView` and `a_sText` have no effect: the
    /// name alone selects the settings.
    [[nodiscard]] static ICfg* CreateCfg(const QString& a_sName, int a_iView, const QString& a_sText);

    /// Sets the folder of the settings files for later calls of CreateCfg(). An
    /// empty folder restores the default folders.
    static void SetFolder(const QString& a_sFolder);
};

#endif

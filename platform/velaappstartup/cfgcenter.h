#ifndef VELAAPPSTARTUP_CFGCENTER_H
#define VELAAPPSTARTUP_CFGCENTER_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

class ICfg;

/// What the start-up library knows of the machine and its settings. Static
/// operations only; any thread may call.
class SIMULATIONDATA_EXPORT CfgCenter
{
public:
    CfgCenter() = delete;

    /// A text that identifies this machine: its unique id as the operating
    /// system gives it, or the host name where there is none. Stable across
    /// restarts, never empty.
    [[nodiscard]] static QString GetMachineId();

    /// The settings of that name as they are now, from the file "<name>.ini" in
    /// the folder that SetFolder() or else the environment variable
    /// SIMULATION_CONFIG_DIR names, or else in sub-folder "simulation" of the
    /// platform's places for settings, the user's first.
    ///
    /// The file is UTF-8 in the INI form of QSettings, with what people type
    /// besides: text with commas is one text, and a Windows path needs neither
    /// quotes nor doubled backslashes. A missing file has no settings. Neither
    /// has one that cannot be read or is larger than 1 MiB, after one trace.
    ///
    /// Never null. The object is the centre's and stays valid, with what it
    /// says, until the process ends. `a_iView` and `a_sText` select among stores
    /// of which there is only this one.
    [[nodiscard]] static ICfg* CreateCfg(const QString& a_sName, int a_iView, const QString& a_sText);

    /// Looks for settings in this folder from now on; empty: in the usual place.
    static void SetFolder(const QString& a_sFolder);
};

#endif

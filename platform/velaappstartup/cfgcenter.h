#ifndef VELAAPPSTARTUP_CFGCENTER_H
#define VELAAPPSTARTUP_CFGCENTER_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

/// What the start-up library knows of the machine. Static operations only; any
/// thread may call.
class SIMULATIONDATA_EXPORT CfgCenter
{
public:
    CfgCenter() = delete;

    /// A text that identifies this machine: its unique id as the operating
    /// system gives it, or the host name where there is none. Stable across
    /// restarts, never empty.
    [[nodiscard]] static QString GetMachineId();
};

#endif

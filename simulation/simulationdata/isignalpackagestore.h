#ifndef SIMULATIONDATA_ISIGNALPACKAGESTORE_H
#define SIMULATIONDATA_ISIGNALPACKAGESTORE_H

#include "simulationdata/simulationdata_export.h"

namespace Simulation {

/// A store of signal packages other than a folder. Packages are read through
/// ISignalPackageProvider; no operation has been needed here yet.
class SIMULATIONDATA_EXPORT ISignalPackageStore
{
public:
    virtual ~ISignalPackageStore() = default;

    ISignalPackageStore(const ISignalPackageStore&) = delete;
    ISignalPackageStore& operator=(const ISignalPackageStore&) = delete;

protected:
    ISignalPackageStore() = default;
};

} // namespace Simulation

#endif

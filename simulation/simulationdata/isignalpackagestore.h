#ifndef SIMULATIONDATA_ISIGNALPACKAGESTORE_H
#define SIMULATIONDATA_ISIGNALPACKAGESTORE_H

#include "simulationdata/simulationdata_export.h"

namespace Simulation {

/// A store of signal packages that is not a folder. Packages are read through
/// ISignalPackageProvider, so this interface has no operations.
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

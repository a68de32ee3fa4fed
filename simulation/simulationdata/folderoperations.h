#ifndef SIMULATIONDATA_FOLDEROPERATIONS_H
#define SIMULATIONDATA_FOLDEROPERATIONS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Simulation {

// Both accept paths as the getters of DataStoreFactory return them.

/// Removes a folder with all its content. True when there is no such folder
/// afterwards; so also for an empty path. A link, to a file or a folder, is removed
/// itself and its target stays. False after one trace at the first entry that
/// cannot be removed; entries removed before stay removed. Any thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool removeDir(const QString& a_sFolder);

/// Copies the content of a folder into another, which is created with its parents
/// when it is missing. A missing source is treated as empty. Links below the source
/// are copied as links. Files of the target are never replaced. False after one
/// trace when a file of that name exists already or an entry cannot be copied;
/// entries copied before stay. False, with nothing copied, when a path is empty or
/// the target is the source or lies inside it. Any thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool copyDir(const QString& a_sFrom, const QString& a_sTo);

} // namespace Simulation

#endif

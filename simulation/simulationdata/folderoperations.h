#ifndef SIMULATIONDATA_FOLDEROPERATIONS_H
#define SIMULATIONDATA_FOLDEROPERATIONS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Simulation {

// Both functions accept paths as the getters of DataStoreFactory return them.

/// Removes a folder with all its content. Returns true when the folder does not
/// exist afterwards, and for an empty path. A link to a file or a folder is removed;
/// its target stays. Returns false after one trace at the first entry that cannot be
/// removed. Entries removed before stay removed. Any thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool removeDir(const QString& a_sFolder);

/// Copies the content of a folder into a target folder. A missing target is created
/// with its parents. A missing source is treated as empty. Links below the source
/// are copied as links. Files of the target are never replaced.
///
/// Returns false after one trace when the target has a file of the same name or an
/// entry cannot be copied. Entries copied before stay. Returns false without copying
/// when a path is empty, or when the target is the source or lies inside it. Any
/// thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool copyDir(const QString& a_sFrom, const QString& a_sTo);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_FOLDEROPERATIONS_H
#define SIMULATIONDATA_FOLDEROPERATIONS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Simulation {

// Both take paths as the getters of DataStoreFactory join them.

/// Removes a folder with all it holds. True when there is no such folder
/// afterwards; an empty path names none. A link, to a file or a folder, is
/// removed as a link and what it points to stays. False after one trace at the
/// first entry that cannot be removed; what was removed stays removed. Any
/// thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool removeDir(const QString& a_sFolder);

/// Copies what a folder holds into another, which is made with its parents when
/// it is missing. A source that is missing holds nothing. Links below the source
/// are copied as links. Files of the target are never replaced.
/// False after one trace, and what was copied stays: when a file of that name is
/// there already or an entry cannot be copied, and, with nothing done, when a
/// path is empty or the target is the source or lies inside it. Any thread may
/// call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool copyDir(const QString& a_sFrom, const QString& a_sTo);

} // namespace Simulation

#endif

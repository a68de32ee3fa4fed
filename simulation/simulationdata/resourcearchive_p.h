#ifndef SIMULATIONDATA_RESOURCEARCHIVE_P_H
#define SIMULATIONDATA_RESOURCEARCHIVE_P_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Simulation {

/// Unpacks a folder of a zip archive that the program carries into a folder
/// that is there, over what it holds: "/" is the whole archive, "/name" what
/// lies below "name".
///
/// The archive is copied beside `a_sTemporary` and unpacked there under names
/// that no other process uses, which are removed in every case, and then every
/// file is moved to its place: a crash leaves only what removeAbandonedFiles()
/// removes. The file `a_sTemporary` itself, which programs that unpacked under
/// this fixed name may have left behind, is removed, too. What the archive may
/// unpack to is bounded by Limits::ArchiveBytes and Limits::ArchiveEntries.
/// False after one trace. Any thread may call.
[[nodiscard]] SIMULATIONDATA_EXPORT bool unpackResource(const QString& a_sResource,
                                                        const QString& a_sTemporary, const QString& a_sFolder,
                                                        const QString& a_sTarget);

} // namespace Simulation

#endif

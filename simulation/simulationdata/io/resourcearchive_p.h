#ifndef SIMULATIONDATA_RESOURCEARCHIVE_P_H
#define SIMULATIONDATA_RESOURCEARCHIVE_P_H

#include <QString>

namespace Simulation {

/// Unpacks a folder of a zip archive that the program carries into a folder
/// that is there, over what it holds: "/" is the whole archive, "/name" what
/// lies below "name".
///
/// The archive is copied into the work folder and unpacked there, both under
/// names that no other process uses and that are removed in every case; then
/// every file is moved to its place, which must lie on the same file system. A
/// crash leaves only what removeAbandonedFiles() removes. What the archive may
/// unpack to is bounded by Limits::ArchiveBytes and Limits::ArchiveEntries.
/// False after a trace and with a reason; what can be moved is moved all the same.
/// Any thread may call.
[[nodiscard]] bool unpackResource(const QString& a_sResource, const QString& a_sWorkFolder,
                                  const QString& a_sFolder, const QString& a_sTarget,
                                  QString* a_pReason = nullptr);

/// Whether the file is a copy of what the program carries, or the first part of
/// one that was cut off.
[[nodiscard]] bool isCopyOfResource(const QString& a_sFile, const QString& a_sResource);

} // namespace Simulation

#endif

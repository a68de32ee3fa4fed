#ifndef SIMULATIONDATA_RESOURCEARCHIVE_P_H
#define SIMULATIONDATA_RESOURCEARCHIVE_P_H

#include <QString>

namespace Simulation {

/// Unpacks a folder of a zip archive in the program's resources into a target folder and
/// replaces files of the same name. Missing target folders are created. `a_sFolder` is
/// "/" for the whole archive, or "/name" for the content of the archive's folder "name".
///
/// The archive is copied into the work folder and unpacked there, under names that no
/// other process uses. Every file is then moved to its place, which must be on the same
/// file system. The work files are always removed; those that remain after a crash are
/// removed by removeAbandonedFiles(). Limits::ArchiveBytes and Limits::ArchiveEntries
/// limit the unpacked data. On failure returns false after a trace and with a reason;
/// when some files cannot be moved, the others are still moved. Any thread may call.
[[nodiscard]] bool unpackResource(const QString& a_sResource, const QString& a_sWorkFolder,
                                  const QString& a_sFolder, const QString& a_sTarget,
                                  QString* a_pReason = nullptr);

/// Whether the file is a copy of the resource, or the beginning of a copy that was cut
/// off. False for an empty file.
[[nodiscard]] bool isCopyOfResource(const QString& a_sFile, const QString& a_sResource);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_WHOLEFILE_P_H
#define SIMULATIONDATA_WHOLEFILE_P_H

#include <QFile>
#include <QString>

#include <filesystem>

namespace Simulation {

/// Operations that put files into folders that several processes fill: each file is
/// written under a temporary name and then renamed. Neither a process that dies nor a
/// full disk leaves a partial file under a final name. Any thread may call.

/// A new path in the folder of `a_sFile`. No other call and no other process uses or has
/// used the name: it contains the id of this process, a random number that the process
/// draws once, and the number of the call.
[[nodiscard]] QString temporaryName(const QString& a_sFile);

/// Removes temporary files and folders that dead processes of this machine left directly
/// in the folder. Only files and folders with a name of temporaryName() are removed. The
/// random number in the name distinguishes this process from a dead process with the
/// same id.
void removeAbandonedFiles(const QString& a_sFolder);

/// Copies a regular file or a resource, whole or not at all, and waits until the data
/// is on the disk. The copy has the permissions of a new file. On failure returns false
/// with a reason, after a trace. An existing file is never replaced. The result is then
/// false with a reason, but without a trace, because another process may just have made
/// the file.
[[nodiscard]] bool copyFileWhole(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason = nullptr);

/// Renames a complete file to its final name on the same file system and replaces a
/// file of that name. On failure returns false with a reason.
[[nodiscard]] bool replaceByRename(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason);

/// Copies a file as copyFileWhole() does, but replaces an existing file. A process that
/// has the old file open can still read the old content. On failure returns false with a
/// reason, after one trace.
[[nodiscard]] bool replaceByCopy(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason);

/// Makes a file or folder writable by its owner; on Windows sets the four write
/// flags and no others. False when that is not permitted.
bool makeWritable(const QString& a_sPath);

/// The path as the standard library's file operations take it. Unlike that
/// library's own conversion this function never throws, whatever the name contains.
[[nodiscard]] inline std::filesystem::path nativePath(const QString& a_sPath)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(a_sPath.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(a_sPath).toStdString());
#endif
}

} // namespace Simulation

#endif

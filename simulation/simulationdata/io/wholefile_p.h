#ifndef SIMULATIONDATA_WHOLEFILE_P_H
#define SIMULATIONDATA_WHOLEFILE_P_H

#include <QFile>
#include <QString>

#include <filesystem>

namespace Simulation {

/// Operations that put files into folders that several processes fill: each file is
/// written under a temporary name and then renamed. A process that dies or a full
/// disk leaves no partial file under a final name. Any thread may call.

/// A name in the same folder that no other call and no other process uses or has
/// used: it contains the id of this process and a random number that the process
/// draws once.
[[nodiscard]] QString temporaryName(const QString& a_sFile);

/// Removes abandoned temporary files and folders directly in the folder: those with a
/// name that temporaryName() returned in a process of this machine that no longer
/// runs. This process recognises them also when it has the same id as that process.
void removeAbandonedFiles(const QString& a_sFolder);

/// Copies a regular file or a resource, whole or not at all, and waits until the
/// data is on the disk. The copy has the permissions of a new file. False with a
/// reason, and after a trace unless a file of that name exists already: that file
/// is never replaced, and this is not traced because another process may just have
/// made it.
[[nodiscard]] bool copyFileWhole(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason = nullptr);

/// Renames a complete file to its final name on the same file system and replaces a
/// file of that name. False with a reason.
[[nodiscard]] bool replaceByRename(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason);

/// Copies a file as copyFileWhole() does, but replaces an existing file. A process
/// that has the old file open keeps it. False with a reason and after one trace.
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

#ifndef SIMULATIONDATA_WHOLEFILE_P_H
#define SIMULATIONDATA_WHOLEFILE_P_H

#include <QFile>
#include <QString>

#include <filesystem>

namespace Simulation {

/// How files come into folders that several processes fill: under a temporary
/// name first, then all at once. A process that dies or a full disk leaves no half file
/// under a final name. Any thread may call.

/// A name beside the file that no other call and no other process uses, nor has
/// used: it holds the id of this process and a random number that it chose.
[[nodiscard]] QString temporaryName(const QString& a_sFile);

/// Removes the files and folders in the folder, not below, whose names
/// temporaryName() gave to processes of this machine that are gone, also when this
/// process has the id of one of them.
void removeAbandonedFiles(const QString& a_sFolder);

/// Copies a regular file, or one that the program carries, whole or not at all, and
/// waits until the disk holds it. The copy has the permissions of a new file. False
/// with a reason, and after a trace, unless a file of that name is there already:
/// that is never replaced and not traced, for another process may just have made it.
[[nodiscard]] bool copyFileWhole(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason = nullptr);

/// Gives a finished file, which lies on the same file system, its final name in
/// place of what has it. False with a reason.
[[nodiscard]] bool replaceByRename(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason);

/// Copies a file as copyFileWhole() does, in place of what is there. Who has that
/// open keeps it. False with a reason and after one trace.
[[nodiscard]] bool replaceByCopy(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason);

/// Lets the owner write to a file or folder; on Windows all four write flags
/// are set, and they alone. False when that is not permitted.
bool makeWritable(const QString& a_sPath);

/// The path for the file operations of the standard library. Unlike that
/// library's own conversion this one never throws, whatever the name holds.
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

#include "folderoperations.h"

#include "datastorefactory_paths_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/io/wholefile_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/folderoperations";

/// All entries of a folder, folders first. QDir counts broken links as system
/// entries.
QFileInfoList entriesOf(const QString& a_sFolder)
{
    return QDir(a_sFolder).entryInfoList(
        QDir::NoDotAndDotDot | QDir::AllDirs | QDir::Files | QDir::Hidden | QDir::System, QDir::DirsFirst);
}

bool isLink(const QFileInfo& a_info)
{
    return a_info.isSymLink() || a_info.isJunction();
}

bool fail(const char* a_szWhat, const QString& a_sPath, const QString& a_sReason)
{
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot %1 \"%2\": %3").arg(QLatin1String(a_szWhat), a_sPath, a_sReason);
    });
    return false;
}

/// Whether the folder contains a name that is not valid in the system's encoding:
/// QDir would not list it.
bool hasForeignNames(const QString& a_sFolder)
{
    std::error_code error;
    std::filesystem::directory_iterator entry(nativePath(a_sFolder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (nativePath(QFile::decodeName(entry->path().c_str())) != entry->path()) {
            return true;
        }
    }
    return false;
}

/// Whether the path lies in the folder or is that folder, after following links. The
/// last parts of both paths need not exist. Also true when a path cannot be resolved.
bool isInside(const QString& a_sPath, const QString& a_sFolder)
{
    const auto canonical = [](const QString& a_sOne, std::error_code& a_error) {
        return std::filesystem::weakly_canonical(nativePath(QDir(a_sOne).absolutePath()), a_error);
    };
    std::error_code pathError;
    std::error_code folderError;
    const std::filesystem::path path = canonical(a_sPath, pathError);
    const std::filesystem::path folder = canonical(a_sFolder, folderError);
    const auto difference = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return pathError || folderError || difference.first == folder.end();
}

/// Copies a link with its target text. A relative target is then relative to the new
/// place.
bool copyLink(const QFileInfo& a_link, const QString& a_sTo)
{
    std::error_code error;
    std::filesystem::copy_symlink(nativePath(a_link.filePath()), nativePath(a_sTo), error);
    return !error || fail("copy link to", a_sTo, QString::fromLocal8Bit(error.message().c_str()));
}

bool copyFile(const QFileInfo& a_file, const QString& a_sTo)
{
    if (const QFileInfo target(a_sTo); target.exists() || isLink(target)) {
        return fail("copy to", a_sTo, QStringLiteral("already exists"));
    }
    return copyFileWhole(a_file.filePath(), a_sTo);
}

bool copyEntries(const QString& a_sFrom, const QString& a_sTo)
{
    if (!QDir().mkpath(a_sTo)) {
        return fail("make folder", a_sTo, QStringLiteral("a file is in the way or a folder is not writable"));
    }
    if (!QDir(a_sFrom).exists()) {
        return true;
    }
    // Without read permission the folder would look empty.
    if (!QDir(a_sFrom).isReadable()) {
        return fail("read folder", a_sFrom, QStringLiteral("not permitted"));
    }
    if (hasForeignNames(a_sFrom)) {
        return fail("copy", a_sFrom,
                    QStringLiteral("it contains a name that is not valid in the system's encoding"));
    }
    const QFileInfoList entries = entriesOf(a_sFrom);
    return std::all_of(entries.begin(), entries.end(), [&a_sTo](const QFileInfo& a_entry) {
        const QString sTo = QDir(a_sTo).filePath(a_entry.fileName());
        if (isLink(a_entry)) {
            return copyLink(a_entry, sTo);
        }
        if (!a_entry.isDir()) {
            return copyFile(a_entry, sTo);
        }
        return isLink(QFileInfo(sTo)) ? fail("copy into", sTo, QStringLiteral("is a link"))
                                      : copyEntries(a_entry.filePath(), sTo);
    });
}

} // namespace

bool removeDir(const QString& a_sFolder)
{
    // cleanPath() removes a slash at the end. A link whose path ends with a slash would
    // be followed.
    const QString sFolder = QDir::cleanPath(resolvedStorePath(a_sFolder));
    if (sFolder.isEmpty()) {
        return true;
    }
    const std::filesystem::path folder = nativePath(sFolder);
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::symlink_status(folder, error);
    const bool bHere = std::filesystem::is_directory(status) || std::filesystem::is_symlink(status);
    if (bHere) {
        // remove_all() removes a link itself, not the target of the link.
        std::filesystem::remove_all(folder, error);
    } else if (std::filesystem::exists(status) || status.type() == std::filesystem::file_type::not_found) {
        error.clear();
    }
    return !error || fail("remove", sFolder, QString::fromLocal8Bit(error.message().c_str()));
}

bool copyDir(const QString& a_sFrom, const QString& a_sTo)
{
    if (a_sFrom.isEmpty() || a_sTo.isEmpty()) {
        return fail("copy to", a_sTo, QStringLiteral("\"%1\" to \"%2\" names no folder").arg(a_sFrom, a_sTo));
    }
    const QString sFrom = QDir::cleanPath(resolvedStorePath(a_sFrom));
    const QString sTo = QDir::cleanPath(resolvedStorePath(a_sTo));
    if (isInside(sTo, sFrom)) {
        return fail("copy to", sTo, QStringLiteral("lies inside \"%1\"").arg(sFrom));
    }
    return copyEntries(sFrom, sTo);
}

} // namespace Simulation

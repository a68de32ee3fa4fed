#include "resourcearchive_p.h"

#include "simulationdata/folderoperations.h"
#include "simulationdata/simulationlimits.h"
#include "trace_p.h"
#include "wholefile_p.h"

#include "kpzip/archive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/resourcearchive";

bool unpack(const QString& a_sArchive, const QString& a_sFolder, const QString& a_sTarget, QString* a_pReason)
{
    KPZip::Archive archive(a_sArchive);
    archive.setBounds(Limits::value(Limits::ArchiveBytes), Limits::value(Limits::ArchiveEntries));
    const bool bUnpacked =
        archive.open(KPZip::Archive::ModeRead) && archive.extractToFolder(a_sFolder, a_sTarget);
    *a_pReason = archive.errorString();
    return bUnpacked;
}

bool moveFile(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    const QString sFolder = QFileInfo(a_sTo).path();
    if (!QDir().mkpath(sFolder)) {
        *a_pReason = QStringLiteral("cannot create the folder \"%1\"").arg(sFolder);
        return false;
    }
    return replaceByRename(a_sFrom, a_sTo, a_pReason);
}

/// Moves every file below a folder to the same place below another folder. A file
/// that cannot be moved does not stop the others.
bool moveFiles(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    const QDir from(a_sFrom);
    const QDir to(a_sTo);
    int iLeft = 0;
    QDirIterator files(a_sFrom, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString sFile = files.next();
        if (!moveFile(sFile, to.filePath(from.relativeFilePath(sFile)), a_pReason)) {
            ++iLeft;
        }
    }
    if (iLeft > 0) {
        traceError(s_szSource, [&] {
            return QStringLiteral("%1 files cannot be moved to \"%2\"; last error: %3")
                .arg(QString::number(iLeft), a_sTo, *a_pReason);
        });
    }
    return iLeft == 0;
}

} // namespace

bool unpackResource(const QString& a_sResource, const QString& a_sWorkFolder, const QString& a_sFolder,
                    const QString& a_sTarget, QString* a_pReason)
{
    const QDir workFolder(a_sWorkFolder);
    const QString sArchive = temporaryName(workFolder.filePath(QStringLiteral("archive")));
    const QString sUnpacked = temporaryName(workFolder.filePath(QStringLiteral("unpacked")));
    QString sReason;
    const bool bUnpacked = copyFileWhole(a_sResource, sArchive, &sReason) &&
                           unpack(sArchive, a_sFolder, sUnpacked, &sReason) &&
                           moveFiles(sUnpacked, a_sTarget, &sReason);
    QFile::remove(sArchive);
    static_cast<void>(removeDir(sUnpacked));
    if (!bUnpacked && a_pReason != nullptr) {
        *a_pReason = sReason;
    }
    return bUnpacked;
}

bool isCopyOfResource(const QString& a_sFile, const QString& a_sResource)
{
    QFile file(a_sFile);
    QFile resource(a_sResource);
    return QFileInfo(a_sFile).isFile() && file.open(QIODevice::ReadOnly) &&
           resource.open(QIODevice::ReadOnly) && file.size() > 0 && file.size() <= resource.size() &&
           resource.readAll().startsWith(file.readAll());
}

} // namespace Simulation

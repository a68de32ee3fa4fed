#include "resourcearchive_p.h"

#include "simulationdata/folderoperations.h"
#include "simulationdata/limits.h"
#include "wholefile_p.h"

#include "kpzip/archive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace Simulation {

namespace {

/// A file that may be read-only.
void removeStaleFile(const QString& a_sFile)
{
    if (QFile::exists(a_sFile)) {
        makeWritable(a_sFile);
        QFile::remove(a_sFile);
    }
}

bool unpack(const QString& a_sArchive, const QString& a_sFolder, const QString& a_sTarget)
{
    KPZip::Archive archive(a_sArchive);
    archive.setBounds(Limits::value(Limits::ArchiveBytes), Limits::value(Limits::ArchiveEntries));
    return archive.open(KPZip::Archive::ModeRead) && archive.extractToFolder(a_sFolder, a_sTarget);
}

/// Moves every file below a folder to its place below another one.
bool moveFiles(const QString& a_sFrom, const QString& a_sTo)
{
    const QDir from(a_sFrom);
    const QDir to(a_sTo);
    bool bMoved = true;
    QDirIterator files(a_sFrom, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString sFile = files.next();
        const QString sTarget = to.filePath(from.relativeFilePath(sFile));
        bMoved = QDir().mkpath(QFileInfo(sTarget).path()) && replaceByRename(sFile, sTarget) && bMoved;
    }
    return bMoved;
}

} // namespace

bool unpackResource(const QString& a_sResource, const QString& a_sTemporary, const QString& a_sFolder,
                    const QString& a_sTarget)
{
    removeStaleFile(a_sTemporary);
    const QString sArchive = temporaryName(a_sTemporary);
    const QString sUnpacked = temporaryName(a_sTemporary);
    const bool bUnpacked = copyFileWhole(a_sResource, sArchive) && unpack(sArchive, a_sFolder, sUnpacked) &&
                           moveFiles(sUnpacked, a_sTarget);
    removeStaleFile(sArchive);
    static_cast<void>(removeDir(sUnpacked));
    return bUnpacked;
}

} // namespace Simulation

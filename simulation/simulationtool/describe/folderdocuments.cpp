#include "folderdocuments.h"

#include "console/inputfile.h"
#include "console/interruption.h"
#include "documentkind.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

namespace SimulationTool {

namespace {

/// The entries of one folder, sorted. Takes their number from `a_iLeft`, which is negative
/// when not all of them are listed.
QStringList entriesOf(const QString& a_sFolder, QDir::Filters a_filters, qsizetype& a_iLeft)
{
    QStringList entries;
    QDirIterator iterator(a_sFolder, a_filters | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    while (a_iLeft >= 0 && iterator.hasNext()) {
        const QString sEntry = iterator.next();
        if (--a_iLeft >= 0) {
            entries.append(sEntry);
        }
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

} // namespace

FolderDocuments documentsIn(const QString& a_sFolder)
{
    FolderDocuments documents;
    QStringList folders{a_sFolder}; // still to be visited; the last one is next
    qsizetype iLeft = s_iMostEntries;
    while (!folders.isEmpty() && iLeft >= 0 && !isInterrupted()) {
        const QString sFolder = folders.takeLast();
        const QFileInfo folder(sFolder);
        if (!folder.isReadable() || !folder.isExecutable()) {
            documents.unreadable.append(sFolder);
            continue;
        }
        const QStringList files = entriesOf(sFolder, QDir::Files, iLeft);
        std::copy_if(files.cbegin(), files.cend(), std::back_inserter(documents.files),
                     [](const QString& a_sFile) { return recognisedKind(InputFile(a_sFile)).has_value(); });
        const QStringList subFolders = entriesOf(sFolder, QDir::Dirs, iLeft);
        std::copy(subFolders.crbegin(), subFolders.crend(), std::back_inserter(folders));
    }
    documents.isCut = iLeft < 0;
    return documents;
}

} // namespace SimulationTool

#ifndef SIMULATIONTOOL_FOLDERDOCUMENTS_H
#define SIMULATIONTOOL_FOLDERDOCUMENTS_H

#include <QString>
#include <QStringList>

namespace SimulationTool {

/// The documents below a folder.
struct FolderDocuments
{
    QStringList files;      ///< the folder's name is their beginning; sorted within each folder
    QStringList unreadable; ///< folders whose files are not listed
    bool isCut = false;     ///< the search ended at the limit of s_iMostEntries
};

/// The most files and folders that one search looks at.
constexpr qsizetype s_iMostEntries = 100'000;

/// Finds the documents of all kinds (see recognisedKind()) in a folder and in the folders
/// below it. Skips links, hidden files and whatever is no regular file. Ends early when
/// interrupted; see interruption.h.
[[nodiscard]] FolderDocuments documentsIn(const QString& a_sFolder);

} // namespace SimulationTool

#endif

#include "repositoryfolder.h"

#include <QDir>
#include <QFileInfo>

namespace SimulationTool {

QString folderError(const QString& a_sFolder)
{
    const QFileInfo folder(a_sFolder);
    if (!folder.exists()) {
        return QStringLiteral("No such folder");
    }
    if (!folder.isDir()) {
        return QStringLiteral("is not a folder");
    }
    return folder.isReadable() && folder.isExecutable() ? QString() : QStringLiteral("Permission denied");
}

QString packageStoreOf(const QString& a_sFolder)
{
    const QString sStore = QDir(a_sFolder).absoluteFilePath(QStringLiteral("SignalPackages"));
    return QFileInfo(sStore).isDir() ? sStore : QDir(a_sFolder).absolutePath();
}

} // namespace SimulationTool

#include "datastorefactory_paths_p.h"

#include <QDir>
#include <QFileInfo>

namespace Simulation {

QString resolvedStorePath(const QString& a_sPath)
{
    if (QDir::separator() != u'/' || !a_sPath.contains(u'\\') || QFileInfo::exists(a_sPath)) {
        return a_sPath;
    }
    QString sPath = a_sPath;
    return sPath.replace(u'\\', u'/');
}

QString filePathIn(const QString& a_sFolder, const QString& a_sName)
{
    return a_sFolder.isEmpty() ? QString() : QDir(resolvedStorePath(a_sFolder)).absoluteFilePath(a_sName);
}

} // namespace Simulation

#include "signalpackagefolder.h"

#include "datastorefactory_paths_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/signalpackagefile.h"

#include <QDir>
#include <QFileInfo>

#include <iterator>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagefolder";

bool isFile(const QString& a_sFile)
{
    return !a_sFile.isEmpty() && QFileInfo(a_sFile).isFile();
}

/// The folder's name up to its first full stop.
QString nameOf(const QString& a_sFolder)
{
    // With a slash at the end the base name would be empty.
    const QString sFolder = QDir::cleanPath(QDir(resolvedStorePath(a_sFolder)).absolutePath());
    return a_sFolder.isEmpty() ? QString() : QFileInfo(sFolder).baseName();
}

} // namespace

bool SignalPackageFolder::isValid(const QString& a_sFolder)
{
    return isFile(signalFilePath(a_sFolder));
}

QStringList SignalPackageFolder::list(const QString& a_sFolder)
{
    QStringList packages;
    if (a_sFolder.isEmpty()) {
        return packages;
    }
    // Sub-folders still to be visited; the last one is next.
    std::vector<QString> folders;
    const auto addSubFolders = [&folders](const QString& a_sParent) {
        const QFileInfoList entries =
            QDir(a_sParent).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name);
        for (auto it = std::rbegin(entries); it != std::rend(entries); ++it) {
            if (!it->isJunction()) {
                folders.push_back(it->absoluteFilePath());
            }
        }
    };
    addSubFolders(resolvedStorePath(a_sFolder));
    while (!folders.empty()) {
        const QString sFolder = folders.back();
        folders.pop_back();
        if (isValid(sFolder)) {
            packages.append(sFolder);
        } else {
            addSubFolders(sFolder);
        }
    }
    return packages;
}

QString SignalPackageFolder::signalFilePath(const QString& a_sFolder)
{
    return filePathIn(a_sFolder, QStringLiteral("Signal.xml"));
}

QString SignalPackageFolder::signalShapeFilePath(const QString& a_sFolder)
{
    return filePathIn(a_sFolder, QStringLiteral("Signal.ssf"));
}

QString SignalPackageFolder::audioFilePath(const QString& a_sFolder)
{
    return filePathIn(a_sFolder, QStringLiteral("Signal.wav"));
}

QString SignalPackageFolder::symbolDataFilePath(const QString& a_sFolder)
{
    return filePathIn(a_sFolder, QStringLiteral("Signal.sdf"));
}

QString SignalPackageFolder::resultDataFilePath(const QString& a_sFolder)
{
    return filePathIn(a_sFolder, QStringLiteral("Signal.rdf"));
}

SignalPackage SignalPackageFolder::signalPackage(const QString& a_sFolder)
{
    SignalPackage package = SignalPackageFile::signalPackage(signalFilePath(a_sFolder));
    package.setName(nameOf(a_sFolder));
    package.setHasAudioContent(isFile(audioFilePath(a_sFolder)));
    package.setHasSymbolDataContent(isFile(symbolDataFilePath(a_sFolder)));
    package.setHasResultDataContent(isFile(resultDataFilePath(a_sFolder)));
    return package;
}

bool SignalPackageFolder::setSignalPackage(const QString& a_sFolder, const SignalPackage& a_package)
{
    if (a_sFolder.isEmpty()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot save package \"%1\": no folder is given").arg(a_package.id());
        });
        return false;
    }
    return SignalPackageFile::signalPackageFile(a_package, signalFilePath(a_sFolder));
}

} // namespace Simulation

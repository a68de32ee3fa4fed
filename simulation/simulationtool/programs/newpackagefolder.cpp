#include "newpackagefolder.h"

#include "simulationdata/signalpackagefolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>

namespace SimulationTool {

namespace {

// Inside the hidden folder, which only its owner may read.
const QString s_sNew = QStringLiteral("new"); ///< has the permissions of an ordinary folder
const QString s_sFormer = QStringLiteral("former");

/// The files that a package may have.
const QStringList s_packageFiles{QStringLiteral("Signal.xml"), QStringLiteral("Signal.ssf"),
                                 QStringLiteral("Signal.wav"), QStringLiteral("Signal.sdf"),
                                 QStringLiteral("Signal.rdf")};

/// Whether a folder holds a package and nothing that a package does not have.
bool isPlainPackage(const QString& a_sFolder)
{
    const QFileInfoList entries =
        QDir(a_sFolder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    return Simulation::SignalPackageFolder::isValid(a_sFolder) &&
           std::all_of(entries.begin(), entries.end(), [](const QFileInfo& a_entry) {
               return a_entry.isFile() && s_packageFiles.contains(a_entry.fileName());
           });
}

} // namespace

NewPackageFolder::NewPackageFolder(const QString& a_sFolder, bool a_bReplace)
    : m_sFolder(QDir::cleanPath(QFileInfo(a_sFolder).absoluteFilePath()))
    , m_bReplace(a_bReplace)
{}

NewPackageFolder::~NewPackageFolder() = default;

bool NewPackageFolder::fail(const QString& a_sReason)
{
    m_sError = a_sReason;
    return false;
}

/// Why the name cannot be used; empty when it can.
QString NewPackageFolder::takenError() const
{
    const QFileInfo info(m_sFolder);
    if (!info.exists() && !info.isSymLink()) {
        return {};
    }
    if (!m_bReplace) {
        return QStringLiteral("exists already: give another OUT, or --force to replace a package");
    }
    return info.isSymLink() || !info.isDir() || !isPlainPackage(m_sFolder)
               ? QStringLiteral("is not a folder with a signal package and nothing else, so --force does not "
                                "replace it: give another OUT")
               : QString();
}

bool NewPackageFolder::open()
{
    if (const QString sError = takenError(); !sError.isEmpty()) {
        return fail(sError);
    }
    const QFileInfo parent(QFileInfo(m_sFolder).path());
    if (!parent.isDir()) {
        return fail(QStringLiteral("cannot be made, because there is no folder %1: make it first")
                        .arg(parent.filePath()));
    }
    m_hidden = std::make_unique<QTemporaryDir>(parent.filePath() + QStringLiteral("/.new-package-XXXXXX"));
    return (m_hidden->isValid() && QDir(m_hidden->path()).mkdir(s_sNew)) ||
           fail(QStringLiteral("cannot be made: ") + m_hidden->errorString());
}

QString NewPackageFolder::path() const
{
    return m_hidden->filePath(s_sNew);
}

bool NewPackageFolder::commit()
{
    // What is there may have changed since open().
    if (const QString sError = takenError(); !sError.isEmpty()) {
        return fail(sError);
    }
    const QString sFormer = m_hidden->filePath(s_sFormer);
    const bool bReplaces = QFileInfo::exists(m_sFolder);
    QDir folders;
    if (bReplaces && !folders.rename(m_sFolder, sFormer)) {
        return fail(QStringLiteral("cannot be replaced: ") + qt_error_string());
    }
    if (folders.rename(path(), m_sFolder)) {
        return true;
    }
    const QString sReason = qt_error_string();
    if (bReplaces && !folders.rename(sFormer, m_sFolder)) {
        m_hidden->setAutoRemove(false); // it holds the former package
        return fail(QStringLiteral("cannot be made: %1; the former package is in %2").arg(sReason, sFormer));
    }
    return fail(QStringLiteral("cannot be made: ") + sReason);
}

} // namespace SimulationTool

#include "wholefile_p.h"

#include "simulationdata/folderoperations.h"
#include "trace_p.h"

#include "kpbase/replacedfile.h"
#include "velaappstartup/cfgcenter.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <csignal>

#include <cerrno>
#endif

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/wholefile";
constexpr qsizetype s_iMachineDigits = 8;
constexpr qsizetype s_iCopyBytes = qsizetype{128} * 1024;

/// Identifies this machine: when several machines share a folder, the process ids
/// of one mean nothing on another.
const QString& machineText()
{
    static const QString s_sMachine = QString::fromLatin1(
        QCryptographicHash::hash(CfgCenter::GetMachineId().toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(s_iMachineDigits));
    return s_sMachine;
}

bool isProcessAlive(qint64 a_iProcess)
{
#ifdef Q_OS_UNIX
    return ::kill(static_cast<pid_t>(a_iProcess), 0) == 0 || errno != ESRCH;
#else
    Q_UNUSED(a_iProcess)
    return true; // cannot be checked here, so the process's files stay
#endif
}

QString errorText(const std::error_code& a_error)
{
    return QString::fromLocal8Bit(a_error.message().c_str());
}

/// Distinguishes this process from earlier ones with the same id, which are common
/// in containers.
const QString& processText()
{
    static const QString s_sProcess =
        QStringLiteral("%1").arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
    return s_sProcess;
}

bool isAbandoned(const QString& a_sName)
{
    static const QRegularExpression s_pattern(
        QStringLiteral("^simulationdata\\.%1\\.([0-9]{1,9})\\.([0-9a-f]{16})\\.[0-9]+\\.tmp$")
            .arg(machineText()));
    const QRegularExpressionMatch match = s_pattern.match(a_sName);
    if (!match.hasMatch()) {
        return false;
    }
    const qint64 iProcess = match.captured(1).toLongLong();
    return iProcess == QCoreApplication::applicationPid() ? match.captured(2) != processText()
                                                          : !isProcessAlive(iProcess);
}

bool copyContents(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    const QFileInfo info(a_sFrom);
    if (!info.isFile()) {
        *a_pReason = QStringLiteral("is not a regular file");
        return false;
    }
    QFile from(a_sFrom);
    if (!from.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *a_pReason = from.errorString();
        return false;
    }
    QFile to(a_sTo);
    bool bOk = to.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
    QByteArray buffer(s_iCopyBytes, Qt::Uninitialized);
    // Bytes that are appended while the file is copied, perhaps without end, are
    // not copied.
    qint64 iLeft = info.size();
    qint64 iRead = 0;
    while (bOk && (iRead = from.read(buffer.data(), std::min<qint64>(buffer.size(), iLeft))) > 0) {
        iLeft -= iRead;
        bOk = writeAll(to, buffer.constData(), iRead);
    }
    if (!bOk || iRead < 0) {
        *a_pReason = iRead < 0 ? from.errorString() : to.errorString();
        return false;
    }
    return closeWritten(to, a_pReason);
}

void failToCopy(const QString& a_sReason, QString* a_pReason)
{
    traceError(s_szSource, [&] { return a_sReason; });
    if (a_pReason != nullptr) {
        *a_pReason = a_sReason;
    }
}

/// Renames a file to its final name unless that name is in use. Returns false with an
/// empty reason when the name is in use, and false with a reason after any other failure.
bool renameWithoutReplacing(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    const std::filesystem::path from = nativePath(a_sFrom);
    const std::filesystem::path to = nativePath(a_sTo);
    std::error_code error;
    std::filesystem::create_hard_link(from, to, error);
    if (!error) {
        std::filesystem::remove(from, error);
        return true;
    }
    if (error == std::errc::file_exists) {
        a_pReason->clear();
        return false;
    }
    // Not every file system supports hard links.
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(to, ignored))) {
        a_pReason->clear();
        return false;
    }
    std::filesystem::rename(from, to, error);
    *a_pReason = errorText(error);
    return !error;
}

} // namespace

QString temporaryName(const QString& a_sFile)
{
    static std::atomic<unsigned int> s_uiCount{0};
    // The temporary name does not contain the file's own name, because the own name may
    // already have the maximum length.
    return QFileInfo(a_sFile).dir().filePath(QStringLiteral("simulationdata.%1.%2.%3.%4.tmp")
                                                 .arg(machineText())
                                                 .arg(QCoreApplication::applicationPid())
                                                 .arg(processText())
                                                 .arg(s_uiCount.fetch_add(1)));
}

void removeAbandonedFiles(const QString& a_sFolder)
{
    const QDir folder(a_sFolder);
    const QStringList names = folder.entryList({QStringLiteral("simulationdata.*.tmp")},
                                               QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& sName : names) {
        if (isAbandoned(sName)) {
            const QString sPath = folder.filePath(sName);
            static_cast<void>(QFileInfo(sPath).isDir() ? removeDir(sPath) : QFile::remove(sPath));
        }
    }
}

bool copyFileWhole(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    QString sReason; // stays empty when the name is in use
    if (const QFileInfo target(a_sTo); !target.exists() && !target.isSymLink()) {
        const QString sTemporary = temporaryName(a_sTo);
        if (copyContents(a_sFrom, sTemporary, &sReason) &&
            renameWithoutReplacing(sTemporary, a_sTo, &sReason)) {
            return true;
        }
        QFile::remove(sTemporary);
    }
    const auto text = [&](const QString& a_sWhy) {
        return QStringLiteral("Cannot copy \"%1\" to \"%2\": %3").arg(a_sFrom, a_sTo, a_sWhy);
    };
    if (!sReason.isEmpty()) {
        failToCopy(text(sReason), a_pReason);
    } else if (a_pReason != nullptr) {
        *a_pReason = text(QStringLiteral("a file of this name already exists"));
    }
    return false;
}

bool replaceByRename(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    std::error_code error;
    std::filesystem::rename(nativePath(a_sFrom), nativePath(a_sTo), error);
    if (error) {
        *a_pReason = QStringLiteral("\"%1\" cannot be replaced: %2").arg(a_sTo, errorText(error));
    }
    return !error;
}

bool replaceByCopy(const QString& a_sFrom, const QString& a_sTo, QString* a_pReason)
{
    const QString sTemporary = temporaryName(a_sTo);
    if (!copyFileWhole(a_sFrom, sTemporary, a_pReason)) {
        return false;
    }
    QString sReason;
    if (replaceByRename(sTemporary, a_sTo, &sReason)) {
        return true;
    }
    QFile::remove(sTemporary);
    failToCopy(QStringLiteral("Cannot copy \"%1\": %2").arg(a_sFrom, sReason), a_pReason);
    return false;
}

bool makeWritable(const QString& a_sPath)
{
#ifdef Q_OS_WIN
    return QFile::setPermissions(a_sPath, QFileDevice::WriteOwner | QFileDevice::WriteUser |
                                              QFileDevice::WriteGroup | QFileDevice::WriteOther);
#else
    // Setting the write flags alone would take away everybody's read permission.
    const QFileDevice::Permissions permissions = QFile::permissions(a_sPath);
    return permissions.testFlag(QFileDevice::WriteOwner) ||
           QFile::setPermissions(a_sPath, permissions | QFileDevice::WriteOwner);
#endif
}

} // namespace Simulation

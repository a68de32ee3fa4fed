#include "folderlock_p.h"

#include "trace_p.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/folderlock";
constexpr QLatin1String s_sLockName("simulationdata.lock");
constexpr std::chrono::milliseconds s_pause{20}; ///< between two attempts
constexpr mode_t s_eEverybody = 0666;            ///< minus the process's umask

QString lockFile(const QString& a_sFolder)
{
    return QDir(a_sFolder).filePath(s_sLockName);
}

/// The descriptor of the lock file, or -1 with errno. A file that must not be written is
/// opened read-only: a file of another user, or a file in a folder that is not writable.
int openLockFile(const QByteArray& a_name)
{
    // Opening a pipe or a device of that name must not block the program.
    constexpr int iFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    int iFile = ::open(a_name.constData(), O_RDWR | iFlags);
    if (iFile < 0 && errno == ENOENT) {
        iFile = ::open(a_name.constData(), O_RDWR | O_CREAT | iFlags, s_eEverybody);
    }
    if (iFile < 0 && (errno == EACCES || errno == EROFS)) {
        iFile = ::open(a_name.constData(), O_RDONLY | iFlags);
    }
    return iFile;
}

bool isRegularFile(int a_iFile)
{
    struct stat status = {};
    return ::fstat(a_iFile, &status) == 0 && S_ISREG(status.st_mode);
}

/// 0 when the lock has been acquired, else errno: EWOULDBLOCK when another holder kept
/// the lock during the whole wait.
int waitForLock(int a_iFile, std::chrono::milliseconds a_timeout)
{
    const QDeadlineTimer deadline(a_timeout);
    while (::flock(a_iFile, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || deadline.hasExpired()) {
            return errno;
        }
        std::this_thread::sleep_for(s_pause);
    }
    return 0;
}

} // namespace

FolderLock::FolderLock(const QString& a_sFolder, std::chrono::milliseconds a_timeout)
{
    const QString sFile = lockFile(a_sFolder);
    m_iFile = openLockFile(QFile::encodeName(sFile));
    if (m_iFile < 0) {
        m_sError = qt_error_string(errno);
    } else if (!isRegularFile(m_iFile)) {
        m_sError = QStringLiteral("is not a regular file");
    } else if (const int iError = waitForLock(m_iFile, a_timeout); iError != 0) {
        m_sError = iError == EWOULDBLOCK ? QStringLiteral("another process holds it for more than %1 s")
                                               .arg(a_timeout / std::chrono::seconds(1))
                                         : qt_error_string(iError);
    }
    if (!m_sError.isEmpty()) {
        m_sError = QStringLiteral("cannot lock \"%1\": %2").arg(sFile, m_sError);
        traceError(s_szSource, [&] { return m_sError; });
    }
}

FolderLock::~FolderLock()
{
    if (m_iFile >= 0) {
        ::close(m_iFile); // releases the lock, too
    }
}

bool FolderLock::wasUsedIn(const QString& a_sFolder)
{
    return QFileInfo(lockFile(a_sFolder)).isFile();
}

} // namespace Simulation

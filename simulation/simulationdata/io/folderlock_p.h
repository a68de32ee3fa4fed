#ifndef SIMULATIONDATA_FOLDERLOCK_P_H
#define SIMULATIONDATA_FOLDERLOCK_P_H

#include <QString>

#include <chrono>

namespace Simulation {

/// Locks a folder while the object exists, so that no other process and no other object
/// in this process changes the folder. The lock is an advisory lock of the operating
/// system on a file in the folder: it excludes only code that also uses FolderLock. The
/// system releases the lock when the process ends, even after a crash; the content of
/// the file does not matter. The file is never removed: otherwise two processes could
/// lock two different files of the same name.
class FolderLock
{
public:
    static constexpr std::chrono::seconds s_timeout{30}; ///< much longer than it takes to fill a folder

    /// Waits for other holders, at most `a_timeout`. Traces when the lock cannot be
    /// acquired.
    explicit FolderLock(const QString& a_sFolder, std::chrono::milliseconds a_timeout = s_timeout);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    [[nodiscard]] bool isHeld() const { return m_sError.isEmpty(); }
    /// Why the lock is not held; empty when it is.
    [[nodiscard]] const QString& problem() const { return m_sError; }

    /// Whether the folder has ever been locked.
    [[nodiscard]] static bool wasUsedIn(const QString& a_sFolder);

private:
    int m_iFile = -1; ///< descriptor; -1 = not open
    QString m_sError;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_FOLDERLOCK_P_H
#define SIMULATIONDATA_FOLDERLOCK_P_H

#include <QString>

#include <chrono>

namespace Simulation {

/// Keeps other processes, and other objects of this one, from changing a folder
/// as long as it lives. The lock is an advisory one of the system on a file in
/// the folder: it ends with the process, however that ends, and what the file
/// holds does not matter. The file stays, since removing it would let two
/// processes lock two files of one name.
class FolderLock
{
public:
    static constexpr std::chrono::seconds s_timeout{30}; ///< far longer than filling a folder takes

    /// Waits for other processes, at most so long. Traces when the lock cannot
    /// be had.
    explicit FolderLock(const QString& a_sFolder, std::chrono::milliseconds a_timeout = s_timeout);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    [[nodiscard]] bool isHeld() const { return m_sProblem.isEmpty(); }
    /// Why the lock is not held; empty when it is.
    [[nodiscard]] const QString& problem() const { return m_sProblem; }

    /// Whether the folder has ever been locked.
    [[nodiscard]] static bool wasUsedIn(const QString& a_sFolder);

private:
    int m_iFile = -1; ///< descriptor; -1 = not open
    QString m_sProblem;
};

} // namespace Simulation

#endif

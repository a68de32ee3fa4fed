#ifndef SIMULATIONDATA_SIGNALPACKAGECACHE_FOLDER_P_H
#define SIMULATIONDATA_SIGNALPACKAGECACHE_FOLDER_P_H

#include "simulationdata/signalpackagecache.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

namespace Simulation {

class FolderLock;
class SignalPackage;
struct PackageSource;

/// The folder of a package cache. This class defines which files the folder contains
/// and their names, copies the files and removes them. It keeps nothing in memory.
/// Several processes may use one folder. An operation that changes the folder takes the
/// folder's lock. When the lock is not available, update() only copies missing files.
///
/// The built-in default package has files of its own, "Signal.*". Files that are
/// named after its id belong to a package of the repository with the same id.
class PackageCacheFolder
{
public:
    using CopyFailures = SignalPackageCache::CopyFailures;

    // File name extensions of a package's files.
    static constexpr const char* s_szDescriptor = "xml";
    static constexpr const char* s_szShape = "ssf";
    static constexpr const char* s_szAudio = "wav";
    static constexpr const char* s_szSymbols = "sdf";
    static constexpr const char* s_szResults = "rdf";

    /// An empty path is not a folder: it contains no files and nothing is copied
    /// into it.
    explicit PackageCacheFolder(const QString& a_sPath);

    [[nodiscard]] const QString& path() const { return m_sPath; }
    [[nodiscard]] bool exists() const;

    /// Whether a cache has used the folder: it was locked before, or contains the
    /// copies that older programs made.
    [[nodiscard]] bool wasPrepared() const;

    /// Creates the folder, removes partial files of processes that died, and
    /// unpacks the built-in package. Returns that package, or null after a trace.
    [[nodiscard]] std::shared_ptr<SignalPackage> prepare(CopyFailures* a_pFailures) const;

    struct Update
    {
        CopyFailures failures;
        /// Whether a built-in package was replaced. Packages read before may then be outdated.
        bool replaced = false;
    };

    /// Copies the files of the packages below a repository, except files that the
    /// folder already contains. With `a_bAnew` first removes all packages. A user's
    /// package replaces a built-in package when it has or supersedes the id of that
    /// package.
    [[nodiscard]] Update update(const QString& a_sRepository, bool a_bAnew) const;

    /// Removes all packages except the built-in one. Does nothing without the lock.
    void clear() const;

    /// The package of that id; null when the folder has no readable descriptor for
    /// it.
    [[nodiscard]] std::shared_ptr<SignalPackage> package(const QString& a_sId) const;
    /// Whether the folder holds a descriptor of that id.
    [[nodiscard]] bool holds(const QString& a_sId) const;
    /// The file of a package; empty when there is none.
    [[nodiscard]] QString fileOf(const QString& a_sId, const char* a_szEnding) const;
    /// The file of the built-in package; empty when there is none.
    [[nodiscard]] QString builtInFile(const char* a_szEnding) const;

private:
    /// For each package of a list, the reason for a missing file; empty when it has all
    /// files.
    using Reasons = std::vector<QString>;

    [[nodiscard]] QString file(const QString& a_sCleanId, const char* a_szEnding) const;
    void unpackBuiltInPackage(QString* a_pReason) const;
    void removePackages() const;
    [[nodiscard]] bool removeFiles(const QString& a_sCleanId) const;
    [[nodiscard]] bool removeData(const QString& a_sCleanId, QString* a_pReason) const;
    [[nodiscard]] bool replaceBuiltIns(const QList<PackageSource>& a_sources, const FolderLock& a_lock,
                                       Reasons& a_reasons) const;
    [[nodiscard]] QString replaceBuiltIn(const SignalPackage& a_package, const QString& a_sCleanId) const;
    void copyDescriptors(const QList<PackageSource>& a_sources, Reasons& a_reasons) const;
    [[nodiscard]] QString copyDescriptor(const SignalPackage& a_package, const QString& a_sCleanId) const;
    [[nodiscard]] QString copyData(const SignalPackage& a_package) const;
    [[nodiscard]] bool isComplete(const SignalPackage& a_package) const;
    [[nodiscard]] static bool isMissing(const QString& a_sFrom, const QString& a_sTo);
    [[nodiscard]] static QString copyMissing(const QString& a_sFrom, const QString& a_sTo);

    const QString m_sPath; ///< absolute; empty when none was given
};

} // namespace Simulation

#endif

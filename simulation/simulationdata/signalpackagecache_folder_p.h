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

/// The folder of a package cache: which files it holds under which names, and how
/// they are put there and removed. It keeps nothing in memory. Several processes
/// may use one folder; whoever changes it holds its lock.
///
/// The built-in default package has files of its own, "Signal.*". Files that are
/// named after its id belong to a package of the repository that has the same id.
class PackageCacheFolder
{
public:
    using CopyFailures = SignalPackageCache::CopyFailures;

    // How the files of a package end.
    static constexpr const char* s_szDescriptor = "xml";
    static constexpr const char* s_szShape = "ssf";
    static constexpr const char* s_szAudio = "wav";
    static constexpr const char* s_szSymbols = "sdf";
    static constexpr const char* s_szResults = "rdf";

    /// An empty path is no folder: nothing is found in it or put there.
    explicit PackageCacheFolder(const QString& a_sPath);

    [[nodiscard]] const QString& path() const { return m_sPath; }
    [[nodiscard]] bool exists() const;

    /// Whether a cache has used the folder: it was locked, or holds the copies that
    /// older programs made.
    [[nodiscard]] bool wasPrepared() const;

    /// Makes the folder, removes what processes that died left half done, and
    /// unpacks the built-in package. That package, or null after a trace.
    [[nodiscard]] std::shared_ptr<SignalPackage> prepare(CopyFailures* a_pFailures) const;

    struct Update
    {
        CopyFailures failures;
        bool replaced = false; ///< what was read of the folder before may not hold any more
    };

    /// Copies what the folder does not hold yet of the packages that lie below
    /// another folder; first removes what it holds when that is to be made anew.
    /// Files of a built-in package give way to a user's package that has its id or
    /// supersedes it.
    [[nodiscard]] Update update(const QString& a_sRepository, bool a_bAnew) const;

    /// Removes the packages, but not the built-in one. Nothing without the lock.
    void clear() const;

    /// What the folder holds of an id; null when that is nothing readable.
    [[nodiscard]] std::shared_ptr<SignalPackage> package(const QString& a_sId) const;
    /// Whether the folder holds a descriptor of that id.
    [[nodiscard]] bool holds(const QString& a_sId) const;
    /// The file of a package; empty when there is none.
    [[nodiscard]] QString fileOf(const QString& a_sId, const char* a_szEnding) const;
    /// The file of the built-in package; empty when there is none.
    [[nodiscard]] QString builtInFile(const char* a_szEnding) const;

private:
    /// Why a package lacks a file, empty when it has all, for each of a list.
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

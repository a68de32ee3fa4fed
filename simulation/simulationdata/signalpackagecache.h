#ifndef SIMULATIONDATA_SIGNALPACKAGECACHE_H
#define SIMULATIONDATA_SIGNALPACKAGECACHE_H

#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/simulationdata_export.h"

#include <QReadWriteLock>
#include <QString>

#include <map>
#include <memory>
#include <vector>

namespace Simulation {

class PackageCacheFolder;

/// The provider that resolves packages from disk. It keeps a flat cache folder
/// in which every known package stands as files named after its cleaned id
/// ("<id>.xml", ".ssf", ".wav", ".sdf", ".rdf"), fills that folder from a
/// repository, and hands out packages and opened data files.
///
/// Several caches, also of several processes, may share one folder: a file
/// appears there whole or not at all, and none but those of built-in packages are
/// ever replaced. A process that ends at any time leaves nothing that the next one must
/// wait for. Every operation may be called from any thread but none from inside
/// another; lookups wait for a running updateCache(). Of a data file that stands
/// open the folder's copy may go: the reader keeps what it has.
class SIMULATIONDATA_EXPORT SignalPackageCache : public ISignalPackageProvider
{
public:
    /// What could not be put into the cache folder.
    struct CopyFailures
    {
        /// How many lack a file there now. 0 with a reason: a folder is not there, or the cache
        /// could not be cleared.
        qsizetype packages = 0;
        QString firstReason; ///< with the system's reason; empty when nothing failed
    };

    /// Nothing is read or made yet. The second folder is kept as given.
    SignalPackageCache(const QString& a_sCacheDir, const QString& a_sSourceDir);
    /// Deletes the readers.
    ~SignalPackageCache() override;

    SignalPackageCache(const SignalPackageCache&) = delete;
    SignalPackageCache& operator=(const SignalPackageCache&) = delete;

    /// Absolute; empty when none was given.
    [[nodiscard]] QString cacheDir() const;
    [[nodiscard]] QString sourceDir() const { return m_sSourceDir; }

    /// Whether a cache has been prepared in that folder before, completely or not.
    [[nodiscard]] static bool isCacheFolder(const QString& a_sFolder);

    /// Makes the folder if it is missing, unpacks the built-in package into it,
    /// and removes what processes that died left half done. Call it once before
    /// any lookup. False after a trace when there is no default package then;
    /// lookups work without it. Waits up to 30 s for another process that changes
    /// the folder, as all operations do that change it.
    bool prepareCacheForUse();

    /// Copies all packages below a folder that are not in the cache folder yet,
    /// in background tasks on the global thread pool, and waits for them. With
    /// `a_bAnew` the cache is cleared first, so that packages which changed under
    /// their id are taken anew. What cannot be copied is passed over after a
    /// trace, see copyFailures(); a package without an id silently. A folder that
    /// is not there changes nothing. A package that has the id of a built-in one,
    /// or supersedes it, takes its place, also when the built-in one is in the cache
    /// already; then all packages are read anew.
    void updateCache(const QString& a_sFolder, bool a_bAnew);

    /// What the last prepareCacheForUse() or updateCache() could not put into the
    /// folder.
    [[nodiscard]] CopyFailures copyFailures();

    /// Removes the files of all packages from the cache folder and forgets the
    /// packages. The built-in package stays, and so does every file that the cache
    /// did not make. A package whose files cannot be removed stays after one
    /// trace. Readers that were handed out stay valid, and their files open,
    /// until deleteAllSignalpackages(), but the next lookup opens the file anew.
    void clearCache();

    /// Forgets all packages and deletes all readers that were handed out. (The
    /// spelling is part of the interface.)
    void deleteAllSignalpackages();

    /// Whether the id is that of a package in memory or in the folder, of the
    /// default package, or one that a package in the folder supersedes.
    bool validSignalPackageId(const QString& a_sId) override;

    /// From memory in O(log n), otherwise from the folder. The default package
    /// where the id is not known or its descriptor cannot be read.
    std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) override;

    /// The built-in package, or the package of the repository that has its id. Null
    /// before prepareCacheForUse().
    std::shared_ptr<SignalPackage> defaultSignalPackage() override;

    /// The same reader for every caller, until the cache is cleared. Null for a
    /// null package and without a file. A file that cannot be read gives a
    /// reader that is not open. Every reader keeps its file open. Its package
    /// duration is that of the descriptor in the folder, whatever the record holds.
    SignalShapeFile* signalShapeFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    AudioFile* audioFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    SymbolDataFile* symbolDataFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    ResultDataFile* resultDataFile(std::shared_ptr<SignalPackage> a_pPackage) override;

private:
    template<typename Reader>
    struct Readers
    {
        std::map<QString, std::unique_ptr<Reader>> current; ///< by package id
        std::vector<std::unique_ptr<Reader>> retired;       ///< opened before the cache was cleared

        void retire();
        void retire(const QString& a_sId);
    };

    template<typename Reader>
    Reader* reader(Readers<Reader>& a_readers, const SignalPackage* a_pPackage, const char* a_szEnding);

    template<typename Reader>
    std::unique_ptr<Reader> makeReader(const SignalPackage& a_package, const char* a_szEnding) const;

    void forget();
    void resolveDefault();

    const std::unique_ptr<PackageCacheFolder> m_folder;
    const QString m_sSourceDir;
    std::shared_ptr<SignalPackage> m_builtIn; ///< null until the folder is prepared
    std::shared_ptr<SignalPackage> m_defaultPackage;
    CopyFailures m_failures;
    std::map<QString, std::shared_ptr<SignalPackage>> m_packages; ///< by the id that was asked for
    Readers<SignalShapeFile> m_shapeFiles;
    Readers<AudioFile> m_audioFiles;
    Readers<SymbolDataFile> m_symbolFiles;
    Readers<ResultDataFile> m_resultFiles;
    QReadWriteLock m_lock; ///< recursive; guards all of the above
};

} // namespace Simulation

#endif

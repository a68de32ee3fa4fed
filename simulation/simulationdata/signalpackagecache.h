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

/// The provider that reads packages from disk. It fills a flat cache folder from a
/// repository and returns packages and open data files. In the cache folder the files of
/// every package are named after its cleaned id ("<id>.xml", ".ssf", ".wav", ".sdf",
/// ".rdf").
///
/// Several caches, also in several processes, may share one folder. Each file
/// appears there complete or not at all. Only files of built-in packages and empty files
/// are ever replaced. A process that dies at any time does not block the next one. Any
/// thread may call any operation, but no operation may be called from within
/// another. Lookups wait for a running updateCache(). A data file may be removed
/// from the folder while it is open: its reader keeps the content.
class SIMULATIONDATA_EXPORT SignalPackageCache : public ISignalPackageProvider
{
public:
    /// Packages that could not be copied into the cache folder.
    struct CopyFailures
    {
        /// Number of packages that now lack a file. 0 with a reason means that a
        /// folder does not exist or that the cache could not be cleared.
        qsizetype packages = 0;
        QString firstReason; ///< first error text, with the system's reason; empty without failure
    };

    /// Does not access the file system. The source folder is stored unchanged.
    SignalPackageCache(const QString& a_sCacheDir, const QString& a_sSourceDir);
    /// Deletes the readers.
    ~SignalPackageCache() override;

    SignalPackageCache(const SignalPackageCache&) = delete;
    SignalPackageCache& operator=(const SignalPackageCache&) = delete;

    /// The absolute path of the cache folder; empty for an empty path.
    [[nodiscard]] QString cacheDir() const;
    [[nodiscard]] QString sourceDir() const { return m_sSourceDir; }

    /// Whether a cache was prepared in the folder before, completely or not.
    [[nodiscard]] static bool isCacheFolder(const QString& a_sFolder);

    /// Creates the folder if it is missing, unpacks the built-in package into it,
    /// and removes partial files of processes that died. Call it once before any
    /// lookup. Returns false after a trace when there is no default package
    /// afterwards; lookups work without it.
    ///
    /// Waits up to 30 s for another process that changes the folder. All operations that
    /// change the folder do this.
    bool prepareCacheForUse();

    /// Copies all packages below a folder, except those that the cache folder already
    /// contains. Copies in background tasks on the global thread pool and waits for
    /// them.
    /// With `a_bAnew` the cache is first cleared, so that packages with a changed
    /// content under the same id are copied again. A package that cannot be copied
    /// is skipped after a trace, see copyFailures(). A package without an id is
    /// skipped silently. When the folder does not exist, the cache does not change.
    ///
    /// A package with the id of a built-in package replaces it, also when the cache
    /// already contains the built-in one. The same applies to a package that
    /// supersedes a built-in one. All packages are then read again.
    void updateCache(const QString& a_sFolder, bool a_bAnew);

    /// The packages that the last prepareCacheForUse() or updateCache() could not
    /// copy.
    [[nodiscard]] CopyFailures copyFailures();

    /// Removes the files of all packages from the cache folder, and the packages
    /// from memory. The built-in package stays, and so does every file that a cache
    /// did not make. A package with files that cannot be removed stays, after one
    /// trace. Readers returned before stay valid and open until
    /// deleteAllSignalpackages(). The next lookup opens the file again.
    void clearCache();

    /// Removes all packages from memory and deletes all readers that were returned.
    /// The spelling of the name is part of the interface.
    void deleteAllSignalpackages();

    /// Whether the id belongs to a package in memory or in the folder, or to the
    /// default package, or is superseded by a package in the folder.
    bool validSignalPackageId(const QString& a_sId) override;

    /// Returns the package from memory in O(log n), otherwise from the folder.
    /// Returns the default package when the id is unknown or its descriptor cannot
    /// be read.
    std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) override;

    /// The built-in package, or the package of the repository with the same id.
    /// Null before prepareCacheForUse().
    std::shared_ptr<SignalPackage> defaultSignalPackage() override;

    /// Returns the same reader to every caller until the cache is cleared. Null for
    /// a null package and when there is no file. The reader of a file that cannot be
    /// read is not open. Every open reader keeps its file open. The package duration
    /// of the reader is that of the descriptor in the folder, not that of
    /// `a_pPackage`.
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
    std::map<QString, std::shared_ptr<SignalPackage>> m_packages; ///< by requested id
    Readers<SignalShapeFile> m_shapeFiles;
    Readers<AudioFile> m_audioFiles;
    Readers<SymbolDataFile> m_symbolFiles;
    Readers<ResultDataFile> m_resultFiles;
    QReadWriteLock m_lock; ///< recursive; guards all of the above
};

} // namespace Simulation

#endif

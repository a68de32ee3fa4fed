#ifndef SIMULATIONDATA_PACKAGECACHEFOLDER_P_H
#define SIMULATIONDATA_PACKAGECACHEFOLDER_P_H

#include <QList>
#include <QString>

#include <memory>

namespace Simulation {

class SignalPackage;
struct PackageSource;

/// The folder behind a package cache: what stands in it under which name, and
/// how it gets there and leaves. It keeps nothing in memory. Several processes
/// may use one folder; what changes it holds the folder's lock file.
class PackageCacheFolder
{
public:
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

    /// Makes the folder, removes what processes that died left half done, and
    /// unpacks the default package. The default package, or null after a trace.
    [[nodiscard]] std::shared_ptr<SignalPackage> prepare() const;

    /// Copies what the folder does not hold yet of the packages that lie below
    /// another folder; first removes what it holds when that is to be made anew.
    void update(const QString& a_sRepository, bool a_bAnew) const;

    /// Removes the packages, but for the default package's own files.
    void clear() const;

    /// What the folder holds of an id; null when that is nothing readable.
    [[nodiscard]] std::shared_ptr<SignalPackage> package(const QString& a_sId) const;
    /// Whether the folder holds a descriptor of that id.
    [[nodiscard]] bool holds(const QString& a_sId) const;
    /// The file of a package; empty when there is none.
    [[nodiscard]] QString fileOf(const QString& a_sId, const char* a_szEnding) const;

private:
    [[nodiscard]] QString file(const QString& a_sCleanId, const char* a_szEnding) const;
    void unpackDefaultPackage() const;
    void removePackages() const;
    [[nodiscard]] bool removeFiles(const QString& a_sCleanId, bool a_bDefault) const;
    void copyDescriptors(const QList<PackageSource>& a_sources) const;
    void copyDescriptor(const SignalPackage& a_package, const QString& a_sCleanId) const;
    void copyData(const SignalPackage& a_package) const;
    [[nodiscard]] bool isComplete(const SignalPackage& a_package) const;
    [[nodiscard]] static bool isMissing(const QString& a_sFrom, const QString& a_sTo);
    static void copyMissing(const QString& a_sFrom, const QString& a_sTo);

    const QString m_sPath; ///< absolute; empty when none was given
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SIGNALPACKAGECACHE_SOURCES_P_H
#define SIMULATIONDATA_SIGNALPACKAGECACHE_SOURCES_P_H

#include "simulationdata/signalpackage.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

namespace Simulation {

/// A package in a repository that can be copied into a cache.
struct PackageSource
{
    SignalPackage package; ///< with its path
    bool cached = false;   ///< the cache has all its files
    bool builtIn = false;  ///< the program unpacked it into the repository
};

/// The packages below a folder that a cache copies: the users' packages, newest first,
/// then the built-in ones, so that a user's package takes precedence. They are read in
/// background tasks, which also call `a_isCached`. Packages without an id are left out
/// without a trace. A package is left out after one trace when its files would replace
/// those of an earlier package in the list or of the default package.
[[nodiscard]] QList<PackageSource>
readPackagesBelow(const QString& a_sFolder, const std::function<bool(const SignalPackage&)>& a_isCached);

/// Determines which ids the packages of a repository supersede.
class SupersededIds
{
public:
    explicit SupersededIds(const QList<PackageSource>& a_sources);

    /// The cleaned ids that shall resolve to a package. Ids of newer packages are left
    /// out. The result has at most Limits::UpdateIds ids. The copies of the descriptor
    /// for all these ids are together at most Limits::DocumentBytes long.
    [[nodiscard]] QStringList of(const SignalPackage& a_package) const;

private:
    QHash<QString, std::uint32_t> m_timestamps; ///< by cleaned id
};

} // namespace Simulation

#endif

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

/// A package in a folder, as a cache takes it.
struct PackageSource
{
    SignalPackage package; ///< with its path
    bool cached = false;   ///< nothing of it is missing in the cache
    bool builtIn = false;  ///< the program unpacked it into the repository
};

/// The packages that a cache takes from the folders below another one, the newest
/// first and the built-in ones last: those of a user win. They are read in background tasks, which also ask
/// whether they are cached. Left out are, silently, those without an id and, after a trace each, those whose
/// files would take the place of a newer package's or of the default package's.
[[nodiscard]] QList<PackageSource>
readPackagesBelow(const QString& a_sFolder, const std::function<bool(const SignalPackage&)>& a_isCached);

/// Tells what ids the packages of a repository supersede.
class SupersededIds
{
public:
    explicit SupersededIds(const QList<PackageSource>& a_sources);

    /// The cleaned ids that are to resolve to a package. Not that of a package
    /// which is newer; not more than Limits::UpdateIds, and not more than whose
    /// copies of the descriptor stay within Limits::DocumentBytes.
    [[nodiscard]] QStringList of(const SignalPackage& a_package) const;

private:
    QHash<QString, std::uint32_t> m_timestamps; ///< by cleaned id
};

} // namespace Simulation

#endif

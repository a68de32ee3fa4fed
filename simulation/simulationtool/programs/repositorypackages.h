#ifndef SIMULATIONTOOL_REPOSITORYPACKAGES_H
#define SIMULATIONTOOL_REPOSITORYPACKAGES_H

#include "console/exitcode.h"
#include "describe/forwardingpackages.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace Simulation {
class SignalPackageCache;
} // namespace Simulation

namespace SimulationTool {

/// The packages of a repository for a play or a check, in a cache that is filled from
/// the repository. Each requested package or level that is missing is reported once
/// on standard error; validSignalPackageId() reports nothing.
///
/// open() must succeed before any other function is called. Used on one thread.
class RepositoryPackages : public ForwardingPackages
{
public:
    RepositoryPackages();
    ~RepositoryPackages() override;
    RepositoryPackages(const RepositoryPackages&) = delete;
    RepositoryPackages& operator=(const RepositoryPackages&) = delete;

    /// Fills the cache from a repository. When `a_sCache` is empty, uses a temporary
    /// folder, which is removed with this object. False after one line on standard
    /// error. Packages that could not be copied are reported, but are not an error; see
    /// isComplete().
    [[nodiscard]] bool open(const QString& a_sRepository, const QString& a_sCache);

    /// Whether every package of the repository is in the cache.
    [[nodiscard]] bool isComplete() const { return m_bComplete; }

    /// Replaces standard error as the target of the messages about packages.
    void setLog(std::function<void(const QString&)> a_log) { m_log = std::move(a_log); }

    /// The signal level of a package at a time (ms) since its emission began; no
    /// value when the package has no usable signal shape, or for a negative time.
    [[nodiscard]] std::optional<float> levelAt(const std::shared_ptr<Simulation::SignalPackage>& a_package,
                                               std::int64_t a_iTime);

    /// The first 20 messages reported so far.
    [[nodiscard]] QStringList messages() const { return m_messages; }

    /// Returns Findings when there were messages. Reports the number of messages
    /// beyond the limit of 20 on standard error.
    [[nodiscard]] ExitCode finish();

    std::shared_ptr<Simulation::SignalPackage> signalPackage(const QString& a_sId) override;

private:
    [[nodiscard]] bool fillCache();
    void updateCache();
    void reportCopyFailures(const QString& a_sWhat);
    void log(const QString& a_sMessage);
    void checkShape(const Simulation::SignalPackage& a_package, const Simulation::SignalShapeFile& a_reader);

    std::unique_ptr<QTemporaryDir> m_temporary; ///< contains the cache's files, so it outlives the cache
    std::unique_ptr<Simulation::SignalPackageCache> m_cache;
    QSet<QString> m_unknownIds;
    QSet<QString> m_checkedIds; ///< packages whose shape was checked
    QStringList m_messages;
    std::uint64_t m_uiLogged = 0;
    bool m_bComplete = true;
    std::function<void(const QString&)> m_log;
};

} // namespace SimulationTool

#endif

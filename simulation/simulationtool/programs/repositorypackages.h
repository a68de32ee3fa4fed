#ifndef SIMULATIONTOOL_REPOSITORYPACKAGES_H
#define SIMULATIONTOOL_REPOSITORYPACKAGES_H

#include "console/exitcode.h"
#include "describe/forwardingpackages.h"

#include <QHash>
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

/// The packages of a repository, as a play and a check need them: resolved by a
/// cache that is filled from the repository. A package or a level that is asked
/// for and not there is told on standard error, once for each; whether an id is
/// known may be asked quietly.
///
/// Must be opened before it is asked.
class RepositoryPackages : public ForwardingPackages
{
public:
    RepositoryPackages();
    ~RepositoryPackages() override;
    RepositoryPackages(const RepositoryPackages&) = delete;
    RepositoryPackages& operator=(const RepositoryPackages&) = delete;

    /// Fills the cache from a repository. Without a cache folder a temporary one
    /// is used, which ends with this object. False after one line on standard
    /// error. Packages that could not be copied are a finding, see isComplete().
    [[nodiscard]] bool open(const QString& a_sRepository, const QString& a_sCache);

    /// Whether every package of the repository is in the cache.
    [[nodiscard]] bool isComplete() const { return m_bComplete; }

    /// Takes the messages of the packages over, which else go to standard error.
    void setLog(std::function<void(const QString&)> a_log) { m_log = std::move(a_log); }

    /// The signal level of a package at a time (ms) since its emission began;
    /// none when the package has no usable signal shape.
    [[nodiscard]] std::optional<float> levelAt(const std::shared_ptr<Simulation::SignalPackage>& a_package,
                                               std::int64_t a_iTime);

    /// What is wrong with the package of the repository that has the id, by the
    /// verdict that the list of packages shows; empty when it is in order. The
    /// first call reads the headers of all packages.
    [[nodiscard]] QStringList problemsOf(const QString& a_sId);

    /// What was told so far; of very much the first lines.
    [[nodiscard]] QStringList messages() const { return m_messages; }

    /// Findings when something was told. Tells how much was not, when there was
    /// too much.
    [[nodiscard]] ExitCode finish();

    std::shared_ptr<Simulation::SignalPackage> signalPackage(const QString& a_sId) override;

private:
    [[nodiscard]] bool fillCache();
    void updateCache();
    void tellCopyFailures(const QString& a_sWhat);
    void tell(const QString& a_sMessage);
    void checkShape(const Simulation::SignalPackage& a_package, const Simulation::SignalShapeFile& a_reader);

    std::unique_ptr<QTemporaryDir> m_temporary; ///< outlives the cache, whose files lie there
    std::unique_ptr<Simulation::SignalPackageCache> m_cache;
    QSet<QString> m_unknownIds;
    QSet<QString> m_checkedIds;                            ///< of packages whose shape was looked at
    std::optional<QHash<QString, QStringList>> m_problems; ///< by cleaned id; none before they are asked for
    QStringList m_messages;
    std::uint64_t m_uiTold = 0;
    bool m_bComplete = true;
    std::function<void(const QString&)> m_log;
};

} // namespace SimulationTool

#endif

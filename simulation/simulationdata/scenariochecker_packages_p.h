#ifndef SIMULATIONDATA_SCENARIOCHECKER_PACKAGES_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_PACKAGES_P_H

#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenariochecker.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>

namespace Simulation {

class ISignalPackageProvider;
class SignalPackage;

/// Gives emissions that have no package, or one that the provider does not
/// know, the provider's default package, and all others the provider's own record
/// of their package. Remembers what the provider answered: one object serves one
/// run over a scenario.
class PackageRule
{
public:
    /// Emissions that lack a usable package for the same reason.
    struct Tally
    {
        qsizetype count = 0;
        std::int64_t first = std::numeric_limits<std::int64_t>::max(); ///< earliest start, ms
    };
    /// By package id; no package and one without an id are the same in a document.
    using Tallies = std::map<QString, Tally>;

    explicit PackageRule(ISignalPackageProvider& a_provider)
        : m_provider(a_provider)
    {}

    /// Repairs what it can and adds what it found to the tallies. An emission
    /// that was found before is not counted again.
    void check(const EmissionSettings& a_schedule, Tallies& a_tallies);

    /// What is to be said of one tally; the object is left empty.
    [[nodiscard]] ScenarioFinding finding(const QString& a_sId, const Tally& a_tally) const;

private:
    std::shared_ptr<SignalPackage> ownRecord(const QString& a_sId);
    void takeOwnRecord(std::shared_ptr<SignalPackage>& a_package);
    bool isUsable(const SignalPackage& a_package);
    void askForDefault();

    ISignalPackageProvider& m_provider;
    QHash<QString, std::shared_ptr<SignalPackage>> m_answers; ///< own records of the provider, by id
    bool m_bAskedForDefault = false;
    std::shared_ptr<SignalPackage> m_default;
    QSet<const EmissionSettings::Emission*> m_unrepaired; ///< counted already
};

} // namespace Simulation

#endif

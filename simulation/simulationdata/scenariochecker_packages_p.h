#ifndef SIMULATIONDATA_SCENARIOCHECKER_PACKAGES_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_PACKAGES_P_H

#include "scenariochecker_rules_p.h"
#include "simulationdata/emissionsettings.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <map>
#include <memory>

namespace Simulation {

class ISignalPackageProvider;
class SignalPackage;

/// The rule about packages. Emissions without a package, or with one that the provider
/// does not know, get the provider's default package. All others get the provider's own
/// record of their package. The provider's results are cached, so one object is used
/// for one run over a scenario.
class PackageRule
{
public:
    /// Emissions that lack a usable package, by the package id. Documents do not
    /// distinguish a missing package from a package without an id, so both are listed
    /// under the empty id.
    using Tallies = std::map<QString, EmissionTally>;

    explicit PackageRule(ISignalPackageProvider& a_provider)
        : m_provider(a_provider)
    {}

    /// Repairs the emissions of a schedule and adds the findings to the tallies. An
    /// emission that was found before is not counted again.
    void check(const EmissionSettings& a_schedule, Tallies& a_tallies);

    /// The finding for one tally; the caller sets the object.
    [[nodiscard]] ScenarioFinding finding(const QString& a_sId, const EmissionTally& a_tally) const;

private:
    std::shared_ptr<SignalPackage> ownRecord(const QString& a_sId);
    void takeOwnRecord(std::shared_ptr<SignalPackage>& a_package);
    bool isUsable(const SignalPackage& a_package);
    void askForDefault();

    ISignalPackageProvider& m_provider;
    QHash<QString, std::shared_ptr<SignalPackage>> m_answers; ///< the provider's records, by id
    bool m_bAskedForDefault = false;
    std::shared_ptr<SignalPackage> m_default;
    QSet<const EmissionSettings::Emission*> m_unrepaired; ///< counted but not repaired
};

} // namespace Simulation

#endif

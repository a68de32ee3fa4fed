#include "scenariochecker_packages_p.h"

#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/signalpackage.h"

#include <utility>

namespace Simulation {

namespace {

/// Whether the record contains only an id, as in a document that was loaded without
/// packages.
bool isBare(const SignalPackage& a_package)
{
    return a_package.duration() == 0 && a_package.timestamp() == 0 && a_package.name().isEmpty() &&
           !a_package.hasAudioContent() && !a_package.hasSymbolDataContent() &&
           !a_package.hasResultDataContent();
}

} // namespace

/// The provider's own record of the id; null when it has none. The provider may return
/// its default package for an id that the default package does not supersede. Then the
/// provider could not read the package, and the result is null.
std::shared_ptr<SignalPackage> PackageRule::ownRecord(const QString& a_sId)
{
    const auto answer = m_answers.constFind(a_sId);
    if (answer != m_answers.cend()) {
        return *answer;
    }
    std::shared_ptr<SignalPackage> own;
    if (m_provider.validSignalPackageId(a_sId)) {
        own = m_provider.signalPackage(a_sId);
        askForDefault();
        if (own && own == m_default && own->id() != a_sId && !own->updateIds().contains(a_sId)) {
            own.reset();
        }
    }
    return *m_answers.insert(a_sId, own);
}

/// The default package is always usable, even when the provider does not know its id.
/// Otherwise the next run would find the repaired emissions again.
bool PackageRule::isUsable(const SignalPackage& a_package)
{
    if (ownRecord(a_package.id())) {
        return true;
    }
    askForDefault();
    return m_default && m_default->id() == a_package.id();
}

/// Replaces the package by the provider's record, because only that record has duration
/// and content. A record that contains only an id is not used.
void PackageRule::takeOwnRecord(std::shared_ptr<SignalPackage>& a_package)
{
    const std::shared_ptr<SignalPackage> own = ownRecord(a_package->id());
    if (const auto& record = own ? own : m_default; !isBare(*record)) {
        a_package = record;
    }
}

void PackageRule::askForDefault()
{
    if (!std::exchange(m_bAskedForDefault, true)) {
        m_default = m_provider.defaultSignalPackage();
    }
}

void PackageRule::check(const EmissionSettings& a_schedule, Tallies& a_tallies)
{
    for (const boost::shared_ptr<EmissionSettings::Emission>& emission : a_schedule.emissions()) {
        std::shared_ptr<SignalPackage>& package = emission->signalPackage;
        if (package && isUsable(*package)) {
            takeOwnRecord(package);
            continue;
        }
        const QString sId = package ? package->id() : QString();
        askForDefault();
        if (m_default) {
            emission->signalPackage = m_default;
        } else if (m_unrepaired.contains(emission.get())) {
            continue;
        } else {
            m_unrepaired.insert(emission.get());
        }
        a_tallies[sId].add(emission->start);
    }
}

ScenarioFinding PackageRule::finding(const QString& a_sId, const EmissionTally& a_tally) const
{
    QString sText = a_tally.subject();
    if (a_sId.isEmpty()) {
        sText += a_tally.form("has", "have") + QStringLiteral(" no signal package: ");
    } else {
        sText += a_tally.form("uses", "use") + QStringLiteral(" the signal package \"") + a_sId +
                 QStringLiteral("\", which the provider does not know: ");
    }
    if (m_default) {
        sText += a_tally.form("it gets", "they get") + QStringLiteral(" the default package \"") +
                 m_default->id() + QStringLiteral("\".");
    } else {
        sText += a_tally.form("it is", "they are") +
                 QStringLiteral(" not changed, because the provider has no default package.");
    }
    return ruleFinding(ScenarioChecker::s_sInvalidSignalPackage, sText, m_default != nullptr);
}

} // namespace Simulation

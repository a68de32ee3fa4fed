#ifndef SIMULATIONDATA_SCENARIODATAXML_REFERENCES_P_H
#define SIMULATIONDATA_SCENARIODATAXML_REFERENCES_P_H

#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenarioobject.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

namespace Simulation {

class ISignalPackageProvider;
class ScenarioNetwork;
class SignalPackage;
class SzenarioEmitter;

/// The element kinds that describe an emitter.
enum class EmitterType {
    Emitter = 0,
    ElintEmitter = 1,
};

/// The references among the objects of a document while it is read. An element
/// may name an emitter whose own element comes later, so references wait until
/// all elements are read; then an id that no element defined gets a plain
/// emitter. Every step costs O(1).
class ScenarioReferences
{
public:
    using Emission = boost::shared_ptr<EmissionSettings::Emission>;

    /// New objects are entered in `a_objects`. The provider may be null.
    ScenarioReferences(QSet<std::shared_ptr<ScenarioObject>>& a_objects, ISignalPackageProvider* a_pProvider);

    /// The emitter of an id, created as the kind when there is none yet; null
    /// when the scenario is full.
    std::shared_ptr<SzenarioEmitter> emitterForId(const QString& a_sId, EmitterType a_eType);

    /// Whether there is an emitter of that id: while elements are read, whether
    /// one of them has defined it.
    [[nodiscard]] bool hasEmitter(const QString& a_sId) const { return m_emitters.contains(a_sId); }

    /// Whether packages can be resolved at all.
    [[nodiscard]] bool hasProvider() const { return m_pProvider != nullptr; }
    /// The package that the provider gives for an id; null without a provider.
    [[nodiscard]] std::shared_ptr<SignalPackage> packageForId(const QString& a_sId) const;

    /// Notes what waits. Empty ids refer to nothing.
    void link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const QString& a_sTargetId);
    void setEmitter(const Emission& a_emission, const QString& a_sEmitterId);
    void addMember(const std::shared_ptr<ScenarioNetwork>& a_network, const QString& a_sEmitterId,
                   bool a_bHead);
    void setHeadEmitter(const Emission& a_emission, const std::shared_ptr<ScenarioNetwork>& a_network);

    /// Whether the scenario holds as many objects as it may
    /// (Limits::ScenarioObjects).
    [[nodiscard]] bool isFull() const;

    /// The element kinds that describe a schedule.
    enum class ScheduleForm { EmissionSettings, Manual };

    /// Whether this is the first element of its kind for the schedule: it adds
    /// to it, a later one replaces what is there.
    bool isFirst(ScheduleForm a_eForm, const EmissionSettings& a_settings);

    /// Makes all references that wait. False when emitters that are only named
    /// found no room in the scenario: what refers to them stays without.
    bool resolve();

private:
    struct Link
    {
        std::shared_ptr<SzenarioEmitter> emitter;
        QString targetId;
    };
    struct EmissionEmitter
    {
        Emission emission;
        QString emitterId;
    };
    struct EmissionHead
    {
        Emission emission;
        std::shared_ptr<ScenarioNetwork> network;
    };
    struct Member
    {
        QString emitterId;
        bool isHead = false;
    };
    struct Membership
    {
        std::shared_ptr<ScenarioNetwork> network;
        std::vector<Member> members;
    };

    void resolveMembers(const Membership& a_membership);

    QSet<std::shared_ptr<ScenarioObject>>& m_objects;
    ISignalPackageProvider* m_pProvider;
    QHash<QString, std::shared_ptr<SzenarioEmitter>> m_emitters;
    QSet<std::pair<const EmissionSettings*, int>> m_schedules; ///< with their ScheduleForm
    bool m_bDropped = false;
    std::vector<Link> m_links;
    std::vector<EmissionEmitter> m_emissionEmitters;
    std::vector<EmissionHead> m_emissionHeads;
    std::vector<Membership> m_memberships;
};

} // namespace Simulation

#endif

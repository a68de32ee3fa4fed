#include "scenariodataxml_references_p.h"

#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"

namespace Simulation {

ScenarioReferences::ScenarioReferences(QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                                       ISignalPackageProvider* a_pProvider)
    : m_objects(a_objects)
    , m_pProvider(a_pProvider)
{}

std::shared_ptr<SzenarioEmitter> ScenarioReferences::emitterForId(const QString& a_sId, EmitterType a_eType)
{
    const auto found = m_emitters.constFind(a_sId);
    if (found != m_emitters.constEnd()) {
        return *found;
    }
    std::shared_ptr<SzenarioEmitter> emitter;
    if (!isFull()) {
        if (a_eType == EmitterType::ElintEmitter) {
            emitter = std::make_shared<ElintScenarioEmitter>(a_sId, QString());
        } else {
            emitter = std::make_shared<SzenarioEmitter>(a_sId, QString());
        }
        m_emitters.insert(a_sId, emitter);
        m_objects.insert(emitter);
    }
    m_bDropped = m_bDropped || !emitter;
    return emitter;
}

bool ScenarioReferences::isFull() const
{
    return static_cast<std::uint64_t>(m_objects.size()) >= Limits::value(Limits::ScenarioObjects);
}

bool ScenarioReferences::isFirst(ScheduleForm a_eForm, const EmissionSettings& a_settings)
{
    const std::pair key(&a_settings, static_cast<int>(a_eForm));
    const bool bFirst = !m_schedules.contains(key);
    m_schedules.insert(key);
    return bFirst;
}

std::shared_ptr<SignalPackage> ScenarioReferences::packageForId(const QString& a_sId) const
{
    return m_pProvider != nullptr ? m_pProvider->signalPackage(a_sId) : nullptr;
}

void ScenarioReferences::link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const QString& a_sTargetId)
{
    if (!a_sTargetId.isEmpty()) {
        m_links.push_back({a_emitter, a_sTargetId});
    }
}

void ScenarioReferences::setEmitter(const Emission& a_emission, const QString& a_sEmitterId)
{
    if (a_sEmitterId.isEmpty()) {
        return;
    }
    // An existing emitter was defined by its own element. Only references to emitters
    // that do not exist yet must wait.
    const auto found = m_emitters.constFind(a_sEmitterId);
    if (found != m_emitters.constEnd()) {
        a_emission->emitter = *found;
    } else {
        m_emissionEmitters.push_back({a_emission, a_sEmitterId});
    }
}

void ScenarioReferences::addMember(const std::shared_ptr<ScenarioNetwork>& a_network,
                                   const QString& a_sEmitterId, bool a_bHead)
{
    if (a_sEmitterId.isEmpty()) {
        return;
    }
    if (m_memberships.empty() || m_memberships.back().network != a_network) {
        m_memberships.push_back({a_network, {}});
    }
    m_memberships.back().members.push_back({a_sEmitterId, a_bHead});
}

void ScenarioReferences::setHeadEmitter(const Emission& a_emission,
                                        const std::shared_ptr<ScenarioNetwork>& a_network)
{
    m_emissionHeads.push_back({a_emission, a_network});
}

bool ScenarioReferences::resolve()
{
    for (const Link& link : m_links) {
        const auto target = emitterForId(link.targetId, EmitterType::Emitter);
        if (!target) {
            continue;
        }
        // Two elements of one id may name two targets: the last one is kept.
        if (const auto former = link.emitter->linkTargetEmitter()) {
            former->removeLinkedEmitter(link.emitter);
        }
        link.emitter->setLinkTargetEmitter(target);
        target->addLinkedEmitter(link.emitter);
    }
    for (const Membership& membership : m_memberships) {
        resolveMembers(membership);
    }
    for (const EmissionEmitter& reference : m_emissionEmitters) {
        // An emission that only this reference holds belongs to a replaced schedule.
        if (reference.emission.use_count() > 1) {
            reference.emission->emitter = emitterForId(reference.emitterId, EmitterType::Emitter);
        }
    }
    for (const EmissionHead& reference : m_emissionHeads) {
        reference.emission->emitter = reference.network->headEmitter();
    }
    return !m_bDropped;
}

void ScenarioReferences::resolveMembers(const Membership& a_membership)
{
    // The last head becomes the first member, as if each head were moved to the front
    // when it is read. Moving them one by one would cost O(n^2), so the heads are added
    // in reverse order instead.
    QSet<QString> heads;
    const auto join = [&](const Member& a_member) {
        const auto emitter = emitterForId(a_member.emitterId, EmitterType::Emitter);
        if (!emitter) {
            return;
        }
        a_membership.network->addEmitter(emitter);
        emitter->setScenarioNetwork(a_membership.network);
    };
    for (auto member = a_membership.members.crbegin(); member != a_membership.members.crend(); ++member) {
        if (member->isHead && !heads.contains(member->emitterId)) {
            heads.insert(member->emitterId);
            join(*member);
        }
    }
    for (const Member& member : a_membership.members) {
        join(member);
    }
}

} // namespace Simulation

#include "scenariodataxml_references_p.h"

#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
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

std::shared_ptr<SignalPackage> ScenarioReferences::packageForId(XmlReader& a_reader,
                                                                const XmlText& a_id) const
{
    const QString sId = a_id.string();
    std::shared_ptr<SignalPackage> package =
        m_pProvider != nullptr ? m_pProvider->signalPackage(sId) : nullptr;
    const bool bFound =
        package ? package->id() == sId || m_pProvider->validSignalPackageId(sId) : sId.isEmpty();
    if (!bFound && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sReplacedPackage, a_id.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_id.bytes);
                a_entry.message =
                    package ? QStringLiteral(
                                  "The signal package is not known: the default package \"%1\" is used.")
                                  .arg(shownText(package->id().toUtf8()))
                            : QStringLiteral("The signal package is not known: the emission has none.");
            });
    }
    return package;
}

void ScenarioReferences::link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const XmlText& a_targetId)
{
    if (!a_targetId.bytes.isEmpty()) {
        m_links.push_back({a_emitter, Reference(a_targetId)});
    }
}

void ScenarioReferences::setEmitter(const Emission& a_emission, const XmlText& a_emitterId)
{
    if (a_emitterId.bytes.isEmpty()) {
        return;
    }
    // An existing emitter was defined by its own element. Only references to emitters
    // that do not exist yet must wait.
    Reference reference(a_emitterId);
    const auto found = m_emitters.constFind(reference.id);
    if (found != m_emitters.constEnd()) {
        a_emission->emitter = *found;
    } else {
        m_emissionEmitters.push_back({a_emission, std::move(reference)});
    }
}

void ScenarioReferences::addMember(const std::shared_ptr<ScenarioNetwork>& a_network,
                                   const XmlText& a_emitterId, bool a_bHead)
{
    if (a_emitterId.bytes.isEmpty()) {
        return;
    }
    if (m_memberships.empty() || m_memberships.back().network != a_network) {
        m_memberships.push_back({a_network, {}});
    }
    m_memberships.back().members.push_back({Reference(a_emitterId), a_bHead});
}

void ScenarioReferences::setHeadEmitter(const Emission& a_emission,
                                        const std::shared_ptr<ScenarioNetwork>& a_network)
{
    m_emissionHeads.push_back({a_emission, a_network});
}

/// Reports an emitter that no element describes.
void ScenarioReferences::reportInvented(const Reference& a_reference)
{
    // Comparing with all ids costs O(n) for each unknown one.
    constexpr qsizetype iMostIds = 20'000;
    constexpr int iMostSuggestions = 20;
    m_pDeviations->add(ReadingReport::s_sInventedObject, a_reference.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_reference.id.toUtf8());
        a_entry.message = QStringLiteral("No element describes this emitter: one without data is created, at "
                                         "latitude 0 and longitude 0.");
        if (m_iSuggestions == 0) {
            m_describedIds = m_emitters.keys();
            m_describedIds.sort(); // a hash has another order in every run
            m_describedIds.resize(std::min(m_describedIds.size(), iMostIds));
        }
        if (++m_iSuggestions <= iMostSuggestions) {
            a_entry.suggestion = similarName(a_entry.found.trimmed(), m_describedIds);
        }
    });
}

/// The emitter of an id that the document names. One that no element describes is
/// created.
std::shared_ptr<SzenarioEmitter> ScenarioReferences::referredEmitter(const Reference& a_reference)
{
    if (m_pDeviations != nullptr && !m_emitters.contains(a_reference.id)) {
        reportInvented(a_reference);
    }
    return emitterForId(a_reference.id, EmitterType::Emitter);
}

bool ScenarioReferences::resolve(XmlDeviations* a_pDeviations)
{
    m_pDeviations = a_pDeviations;
    for (const Link& link : m_links) {
        const auto target = referredEmitter(link.target);
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
            reference.emission->emitter = referredEmitter(reference.emitter);
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
        const auto emitter = referredEmitter(a_member.emitter);
        if (!emitter) {
            return;
        }
        a_membership.network->addEmitter(emitter);
        emitter->setScenarioNetwork(a_membership.network);
    };
    for (auto member = a_membership.members.crbegin(); member != a_membership.members.crend(); ++member) {
        if (member->isHead && !heads.contains(member->emitter.id)) {
            heads.insert(member->emitter.id);
            join(*member);
        }
    }
    for (const Member& member : a_membership.members) {
        join(member);
    }
}

} // namespace Simulation

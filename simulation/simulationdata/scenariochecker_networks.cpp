#include "scenariochecker_networks_p.h"

#include "scenariochecker_rules_p.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"

namespace Simulation {

namespace {

using Members = QSet<const SzenarioEmitter*>;

/// The members that also refer to the network. Only these send by its schedule. An
/// emitter that several networks list refers to one of them.
Members sendingMembers(const ScenarioNetwork& a_network)
{
    Members members;
    const auto listed = a_network.emitterList();
    for (const std::shared_ptr<SzenarioEmitter>& emitter : listed) {
        if (emitter->network().get() == &a_network) {
            members.insert(emitter.get());
        }
    }
    return members;
}

void checkHead(const ScenarioNetwork& a_network, const Members& a_members, Findings& a_findings)
{
    const auto head = a_network.headEmitter();
    if (a_members.isEmpty()) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sNetworkWithoutMembers,
            head ? QStringLiteral("No member of the network refers to it, so nothing is sent: add "
                                  "emitters that are in no other network.")
                 : QStringLiteral("The network has no members and no head, so nothing is sent: "
                                  "add emitters or remove the network.")));
    } else if (!a_members.contains(head.get())) {
        a_findings.append(ruleFinding(ScenarioChecker::s_sNetworkWithoutHead,
                                      QStringLiteral("The head of the network, \"%1\", refers to another "
                                                     "network or to none: make a member the head.")
                                          .arg(head->id())));
    }
}

/// A network without members has a finding already, and a schedule in broadcast mode is
/// not played.
void checkEmitters(const EmissionSettings& a_schedule, const Members& a_members, Findings& a_findings)
{
    if (a_schedule.isBroadcast() || a_members.isEmpty()) {
        return;
    }
    EmissionTally tally;
    for (const auto& emission : a_schedule.emissions()) {
        if (!a_members.contains(emission->emitter.get())) {
            tally.add(emission->start);
        }
    }
    if (tally.count != 0) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sForeignEmission,
            tally.subject() + tally.form("names", "name") + QStringLiteral(" no member of the network and ") +
                tally.form("is", "are") + QStringLiteral(" never sent: name a member.")));
    }
}

} // namespace

void checkNetwork(const ScenarioNetwork& a_network, Findings& a_findings)
{
    const Members members = sendingMembers(a_network);
    checkHead(a_network, members, a_findings);
    checkEmitters(*a_network.emissionSettings(), members, a_findings);
}

bool LinkRule::isInScenario(const SzenarioEmitter& a_emitter)
{
    if (m_known.isEmpty()) { // most scenarios have no links
        for (const std::shared_ptr<ScenarioObject>& object : m_objects) {
            m_known.insert(object.get());
        }
    }
    return m_known.contains(&a_emitter);
}

/// Follows the chain to its end, or to an emitter whose chain was followed before. All
/// emitters on the way get the result, so that every emitter is visited once.
LinkRule::Chain LinkRule::chainOf(const SzenarioEmitter& a_emitter)
{
    QList<const SzenarioEmitter*> way;
    Chain eChain = Chain::Whole;
    for (const SzenarioEmitter* pEmitter = &a_emitter; pEmitter != nullptr;
         pEmitter = pEmitter->linkTargetEmitter().get()) {
        if (!isInScenario(*pEmitter)) {
            eChain = Chain::Leaves;
            break;
        }
        if (const auto known = m_chains.constFind(pEmitter); known != m_chains.cend()) {
            eChain = *known;
            break;
        }
        m_chains.insert(pEmitter, Chain::Circle); // true if this walk meets the emitter again
        way.append(pEmitter);
    }
    for (const SzenarioEmitter* const pEmitter : way) {
        m_chains.insert(pEmitter, eChain);
    }
    return eChain;
}

void LinkRule::check(const SzenarioEmitter& a_emitter, Findings& a_findings)
{
    const auto target = a_emitter.linkTargetEmitter();
    const Chain eChain = target ? chainOf(a_emitter) : Chain::Whole;
    if (eChain == Chain::Circle) {
        a_findings.append(
            ruleFinding(ScenarioChecker::s_sCutLink,
                        QStringLiteral("The link to \"%1\" leads into a circle, so the emitter "
                                       "stays at its own position: remove a link of the circle.")
                            .arg(target->id())));
    } else if (eChain == Chain::Leaves) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sCutLink,
            QStringLiteral("The link to \"%1\" leads to an emitter that is not in the scenario and "
                           "that a saved document lacks: add that emitter or remove the link.")
                .arg(target->id())));
    }
}

} // namespace Simulation

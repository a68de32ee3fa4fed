#include "szenarioemitter.h"

#include "ifrequencysettings_p.h"
#include "objectreleaser_p.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/transmittersettings.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/szenarioemitter";

/// Counts the changes of all links and positions. The stored result of a chain is
/// valid until the next change.
std::atomic<std::uint64_t> s_uiLinkEpoch{1};

void linksChanged()
{
    s_uiLinkEpoch.fetch_add(1, std::memory_order_relaxed);
}

/// The part of an activity in [from, to) ms. Its duration is 0 when the activity lies
/// outside.
HRActivity clipped(const HRActivity& a_activity, std::uint64_t a_uiFrom, std::uint64_t a_uiTo)
{
    HRActivity result = a_activity;
    result.start = std::max(a_activity.start, a_uiFrom);
    const std::uint64_t uiEnd = std::min(a_activity.start + a_activity.duration, a_uiTo);
    result.duration = uiEnd > result.start ? uiEnd - result.start : 0;
    return result;
}

} // namespace

SzenarioEmitter::SzenarioEmitter(const QString& a_sId, const QString& a_sName)
    : SzenarioEmitter(a_sId, a_sName, nullptr)
{}

SzenarioEmitter::SzenarioEmitter(const QString& a_sId, const QString& a_sName,
                                 const std::shared_ptr<SzenarioEmitter>& a_source)
    : ScenarioObject(a_sId, a_sName, a_source)
    , m_pTransmitterSettings(std::make_unique<TransmitterSettings>())
    , m_pPositionSettings(std::make_unique<PositionSettingsFixed>(TPos{}))
{
    if (a_source) {
        takeFrom(*a_source);
    }
}

SzenarioEmitter::~SzenarioEmitter()
{
    linksChanged();
    if (!m_linkedEmitters.isEmpty()) {
        std::vector<std::shared_ptr<const void>> linked(m_linkedEmitters.cbegin(), m_linkedEmitters.cend());
        m_linkedEmitters.clear();
        ObjectReleaser::dropInTurn(std::move(linked));
    }
}

ScenarioObject::ScenarioObjectType SzenarioEmitter::type() const
{
    return ScenarioObjectType::Emitter;
}

EmissionSettings* SzenarioEmitter::emissionSettings() const
{
    const std::shared_ptr<ScenarioNetwork> network = m_network.lock();
    return network ? network->emissionSettings() : ScenarioObject::emissionSettings();
}

void SzenarioEmitter::copy(std::shared_ptr<ScenarioObject> a_source)
{
    const auto* pEmitter = dynamic_cast<const SzenarioEmitter*>(a_source.get());
    if (pEmitter == this) {
        return;
    }
    if (pEmitter != nullptr) {
        copyFrom(*pEmitter);
    } else {
        ScenarioObject::copy(a_source);
    }
}

void SzenarioEmitter::copyFrom(const SzenarioEmitter& a_source)
{
    ScenarioObject::copyFrom(a_source);
    takeFrom(a_source);
}

void SzenarioEmitter::takeFrom(const SzenarioEmitter& a_source)
{
    m_sClass = a_source.m_sClass;
    m_pTransmitterSettings = a_source.m_pTransmitterSettings
                                 ? std::make_unique<TransmitterSettings>(*a_source.m_pTransmitterSettings)
                                 : nullptr;
    m_pPositionSettings.reset(a_source.m_pPositionSettings ? a_source.m_pPositionSettings->clone() : nullptr);
    // The source may be linked to this emitter. This emitter must not become linked to
    // itself.
    const bool bSelf = a_source.m_linkTarget.lock().get() == this;
    m_linkTarget = bSelf ? std::weak_ptr<SzenarioEmitter>() : a_source.m_linkTarget;
    m_linkedEmitters = a_source.m_linkedEmitters;
    m_linkedEmitters.removeIf([this](const auto& a_linked) { return a_linked.get() == this; });
    linksChanged();
    // The linked emitters of the source may contain this emitter, which must not hold
    // itself.
    m_linkedEmitters.remove(std::static_pointer_cast<SzenarioEmitter>(weak_from_this().lock()));
}

std::shared_ptr<ScenarioObject> SzenarioEmitter::clone()
{
    const auto clone = std::make_shared<SzenarioEmitter>(id(), name());
    clone->copyFrom(*this);
    return clone;
}

bool SzenarioEmitter::isReadyAt(unsigned int a_uiTime) const
{
    const IFrequencySettings* pFrequency = getFrequencySettings();
    const IPositionSettings* pPosition = positionSettings();
    return isActive() && pFrequency != nullptr && pFrequency->isActiveAt(a_uiTime) && pPosition != nullptr &&
           pPosition->isActiveAt(a_uiTime);
}

/// Whether the emitter may send at a time, apart from its schedule.
bool SzenarioEmitter::isOnAt(unsigned int a_uiTime) const
{
    const std::shared_ptr<ScenarioNetwork> network = m_network.lock();
    return (!network || network->isActive()) && isReadyAt(a_uiTime);
}

bool SzenarioEmitter::isActiveAt(unsigned int a_uiTime) const
{
    return isOnAt(a_uiTime) && (emissionSettings()->isBroadcast() || ownEmissionAt(a_uiTime));
}

/// The emission at a time; null when there is none. In a network only an emission that
/// names this emitter counts.
boost::shared_ptr<EmissionSettings::Emission> SzenarioEmitter::ownEmissionAt(unsigned int a_uiTime) const
{
    auto emission = emissionSettings()->emissionAt(a_uiTime);
    if (emission && hasNetwork() && emission->emitter.get() != this) {
        emission.reset();
    }
    return emission;
}

void SzenarioEmitter::addLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter)
{
    if (a_emitter && a_emitter.get() != this) {
        m_linkedEmitters.insert(a_emitter);
    }
}

void SzenarioEmitter::removeLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter)
{
    m_linkedEmitters.remove(a_emitter);
}

QSet<std::shared_ptr<SzenarioEmitter>> SzenarioEmitter::affectedLinkedEmitter() const
{
    QSet<std::shared_ptr<SzenarioEmitter>> affected;
    std::vector<const SzenarioEmitter*> pending{this};
    while (!pending.empty()) {
        const SzenarioEmitter* pEmitter = pending.back();
        pending.pop_back();
        for (const std::shared_ptr<SzenarioEmitter>& linked : pEmitter->m_linkedEmitters) {
            if (linked.get() != this && !affected.contains(linked)) {
                affected.insert(linked);
                pending.push_back(linked.get());
            }
        }
    }
    return affected;
}

void SzenarioEmitter::setTransmitterSettings(TransmitterSettings* a_pSettings)
{
    if (a_pSettings != m_pTransmitterSettings.get()) {
        m_pTransmitterSettings.reset(a_pSettings);
    }
}

void SzenarioEmitter::setPositionSettings(IPositionSettings* a_pSettings)
{
    if (a_pSettings != m_pPositionSettings.get()) {
        m_pPositionSettings.reset(a_pSettings);
        linksChanged();
    }
}

void SzenarioEmitter::setLinkTargetEmitter(const std::shared_ptr<SzenarioEmitter>& a_target)
{
    m_linkTarget = a_target;
    linksChanged();
}

IFrequencySettings* SzenarioEmitter::getFrequencySettings() const
{
    const std::shared_ptr<ScenarioNetwork> network = m_network.lock();
    return network ? network->frequencySettings() : frequencySettings();
}

IPositionSettings* SzenarioEmitter::positionSettings() const
{
    if (m_linkTarget.expired()) {
        return m_pPositionSettings.get();
    }
    followChain();
    return m_chain.isCircle ? m_pPositionSettings.get() : m_chain.end;
}

/// Follows the link targets and stores the result in every emitter on the way. Ends at
/// the end of the chain, at an emitter whose result is up to date, or after one round
/// in a circle. Without stored results the queries for all emitters of a chain would
/// take quadratic time.
void SzenarioEmitter::followChain() const
{
    const std::uint64_t uiEpoch = s_uiLinkEpoch.load(std::memory_order_relaxed);
    if (m_chain.epoch == uiEpoch) {
        return;
    }
    // Brent's cycle detection (R. P. Brent, "An improved Monte Carlo factorization
    // algorithm", BIT 20, 1980): the marker moves to the current emitter after 1, 2,
    // 4, ... further steps, and a chain that runs in a circle reaches it again.
    Chain chain{uiEpoch, nullptr, false};
    const SzenarioEmitter* pMarker = this;
    std::uint64_t uiSteps = 0;
    std::uint64_t uiPower = 1;
    for (const SzenarioEmitter* pEmitter = this;;) {
        const SzenarioEmitter* pTarget = pEmitter->m_linkTarget.lock().get();
        if (pTarget == nullptr) {
            chain.end = pEmitter->m_pPositionSettings.get();
            break;
        }
        if (pTarget->m_chain.epoch == uiEpoch) {
            chain = pTarget->m_chain;
            break;
        }
        if (pTarget == pMarker) {
            chain.isCircle = true;
            break;
        }
        if (++uiSteps == uiPower) {
            pMarker = pTarget;
            uiPower *= 2;
            uiSteps = 0;
        }
        pEmitter = pTarget;
    }
    for (const SzenarioEmitter* pEmitter = this; pEmitter != nullptr && pEmitter->m_chain.epoch != uiEpoch;
         pEmitter = pEmitter->m_linkTarget.lock().get()) {
        pEmitter->m_chain = chain;
    }
}

double SzenarioEmitter::getFrequencyAt(unsigned int a_uiTime) const
{
    const IFrequencySettings* pSettings = getFrequencySettings();
    return pSettings != nullptr ? pSettings->getFrequencyAt(a_uiTime) : 0.0;
}

TPos SzenarioEmitter::getPositionAt(unsigned int a_uiTime) const
{
    IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->getPositionAt(a_uiTime) : TPos{};
}

double SzenarioEmitter::headingAt(unsigned int a_uiTime) const
{
    const IPositionSettings* pSettings = positionSettings();
    return pSettings != nullptr ? pSettings->headingAt(a_uiTime) : 0.0;
}

long long SzenarioEmitter::timeActiveAt(unsigned int a_uiTime) const
{
    const auto emission = ownEmissionAt(a_uiTime);
    return emission ? emissionSettings()->timeActiveAt(a_uiTime, *emission) : -1;
}

std::shared_ptr<SignalPackage> SzenarioEmitter::signalPackageAt(unsigned int a_uiTime) const
{
    const auto emission = ownEmissionAt(a_uiTime);
    return emission ? emission->signalPackage : nullptr;
}

SzenarioEmitter::Transmission SzenarioEmitter::transmissionAt(unsigned int a_uiTime) const
{
    const EmissionSettings& schedule = *emissionSettings();
    const auto emission = ownEmissionAt(a_uiTime);
    Transmission transmission;
    transmission.isActive = isOnAt(a_uiTime) && (schedule.isBroadcast() || emission);
    if (emission) {
        transmission.timeActive = schedule.timeActiveAt(a_uiTime, *emission);
        transmission.signalPackage = emission->signalPackage;
    }
    return transmission;
}

QList<HRActivity> SzenarioEmitter::calculateBursts(unsigned int a_uiStart, unsigned int a_uiEnd,
                                                   double a_dFactor) const
{
    const IFrequencySettings* pFrequency = getFrequencySettings();
    if (pFrequency == nullptr || a_uiEnd <= a_uiStart) {
        return {};
    }
    // Cuts each on-time to the window and each frequency activity to its on-time.
    ActivityAnswer bursts(s_szSource);
    const QList<HRActivity> onTimes = emissionSettings()->calculateHRActivities(
        hasNetwork() ? this : nullptr, a_uiStart, a_uiEnd - a_uiStart);
    for (const HRActivity& onTime : onTimes) {
        const HRActivity inside = clipped(onTime, a_uiStart, a_uiEnd);
        if (inside.duration == 0) {
            continue;
        }
        const QList<HRActivity> activities = pFrequency->calculateHRActivities(
            static_cast<unsigned int>(inside.start), static_cast<unsigned int>(inside.duration), a_dFactor);
        for (const HRActivity& activity : activities) {
            if (!bursts.append(clipped(activity, inside.start, inside.start + inside.duration), false)) {
                return bursts.take();
            }
        }
    }
    return bursts.take();
}

} // namespace Simulation

#include "emissionsettings.h"

#include "emissionsettings_walk_p.h"
#include "ifrequencysettings_p.h"
#include "objectreleaser_p.h"
#include "simulationdata/szenarioemitter.h"

#include <boost/make_shared.hpp>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace Simulation {

namespace {

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;
using GroupPtr = boost::shared_ptr<EmissionSettings::Group>;

bool startsBefore(const EmissionPtr& a_emission, std::int64_t a_iStart)
{
    return a_emission->start < a_iStart;
}

/// Whether an emission that started before `a_iTime` is still active at that time.
/// Documents may contain any start, so the difference is calculated unsigned: a signed
/// one could overflow.
bool lastsUntil(const EmissionSettings::Emission& a_emission, std::int64_t a_iTime)
{
    if (a_emission.duration < 0) {
        return false;
    }
    const std::uint64_t uiElapsed =
        static_cast<std::uint64_t>(a_iTime) - static_cast<std::uint64_t>(a_emission.start);
    return uiElapsed <= static_cast<std::uint64_t>(a_emission.duration);
}

/// Takes both pointers by value: they may be members of an emission that is changed
/// here.
template<typename Pointer>
void replaceIn(const QList<EmissionPtr>& a_emissions, Pointer EmissionSettings::Emission::*a_pMember,
               const Pointer a_old, const Pointer a_replacement)
{
    for (const EmissionPtr& emission : a_emissions) {
        if ((*emission).*a_pMember == a_old) {
            (*emission).*a_pMember = a_replacement;
        }
    }
}

/// The emissions of an emitter.
QSet<const EmissionSettings::Emission*> emissionsOf(const QList<EmissionPtr>& a_emissions,
                                                    const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    QSet<const EmissionSettings::Emission*> found;
    for (const EmissionPtr& emission : a_emissions) {
        if (emission->emitter == a_emitter) {
            found.insert(emission.get());
        }
    }
    return found;
}

} // namespace

EmissionSettings::Emission::~Emission()
{
    if (emitter.use_count() == 1) {
        // An initializer list would keep a copy of the pointer until after dropInTurn().
        std::vector<std::shared_ptr<const void>> pointers;
        pointers.push_back(std::move(emitter));
        ObjectReleaser::dropInTurn(std::move(pointers));
    }
}

EmissionSettings::Group::~Group()
{
    // A loop frees chains of groups: nested destructors could overflow the stack.
    QList<GroupPtr> pending = std::move(groups);
    while (!pending.isEmpty()) {
        const GroupPtr group = pending.takeLast();
        if (group && group.use_count() == 1) {
            pending.append(std::exchange(group->groups, {}));
        }
    }
}

EmissionSettings::EmissionSettings(const EmissionSettings& a_other)
    : m_emissions(a_other.m_emissions)
    , m_groups(a_other.m_groups)
    , m_iDuration(a_other.m_iDuration)
    , m_bBroadcast(a_other.m_bBroadcast)
{
    if (!a_other.m_pSharing) {
        a_other.m_pSharing = std::make_shared<const int>();
    }
    m_pSharing = a_other.m_pSharing;
}

EmissionSettings& EmissionSettings::operator=(const EmissionSettings& a_other)
{
    EmissionSettings copy(a_other);
    std::swap(m_emissions, copy.m_emissions);
    std::swap(m_groups, copy.m_groups);
    std::swap(m_pSharing, copy.m_pSharing);
    std::swap(m_iDuration, copy.m_iDuration);
    std::swap(m_bBroadcast, copy.m_bBroadcast);
    return *this;
}

EmissionSettings::~EmissionSettings()
{
    ObjectReleaser::releaseGroups(m_groups);
}

EmissionPtr EmissionSettings::createEmission()
{
    return boost::make_shared<Emission>();
}

GroupPtr EmissionSettings::createGroup()
{
    return boost::make_shared<Group>();
}

qsizetype EmissionSettings::lowerBound(std::int64_t a_iStart) const
{
    const auto found = std::lower_bound(m_emissions.cbegin(), m_emissions.cend(), a_iStart, startsBefore);
    return std::distance(m_emissions.cbegin(), found);
}

void EmissionSettings::addEmission(const EmissionPtr& a_emission)
{
    if (a_emission) {
        const EmissionPtr emission = a_emission; // a_emission may refer to an element of the list
        m_emissions.insert(lowerBound(emission->start), emission);
    }
}

void EmissionSettings::addEmissions(const QList<EmissionPtr>& a_emissions)
{
    QList<EmissionPtr> merged;
    merged.reserve(a_emissions.size() + m_emissions.size());
    std::copy_if(a_emissions.cbegin(), a_emissions.cend(), std::back_inserter(merged),
                 [](const EmissionPtr& a_emission) { return a_emission != nullptr; });
    merged.append(m_emissions);
    const auto byStart = [](const EmissionPtr& a_first, const EmissionPtr& a_second) {
        return a_first->start < a_second->start;
    };
    if (!std::is_sorted(merged.cbegin(), merged.cend(), byStart)) {
        std::stable_sort(merged.begin(), merged.end(), byStart);
    }
    m_emissions = std::move(merged);
}

void EmissionSettings::updateEmission(const EmissionPtr& a_emission)
{
    const EmissionPtr emission = a_emission;
    m_emissions.removeAll(emission);
    addEmission(emission);
}

void EmissionSettings::removeEmission(const EmissionPtr& a_emission)
{
    const EmissionPtr emission = a_emission;
    m_emissions.removeAll(emission);
    for (const GroupPtr& group : std::as_const(m_groups)) {
        group->emissions.removeAll(emission);
    }
    clearEmptyGroups();
}

bool EmissionSettings::removalChangesGroups(const std::shared_ptr<SzenarioEmitter>& a_emitter) const
{
    const QSet<const Emission*> removed = emissionsOf(m_emissions, a_emitter);
    const auto isRemoved = [&removed](const EmissionPtr& a_emission) {
        return removed.contains(a_emission.get());
    };
    const auto isEmpty = [](const GroupPtr& a_group) {
        return a_group && a_group->emissions.isEmpty() && a_group->groups.isEmpty();
    };
    return !removed.isEmpty() &&
           std::any_of(m_groups.cbegin(), m_groups.cend(), [&](const GroupPtr& a_group) {
               return std::any_of(a_group->emissions.cbegin(), a_group->emissions.cend(), isRemoved) ||
                      std::any_of(a_group->groups.cbegin(), a_group->groups.cend(), isEmpty);
           });
}

void EmissionSettings::removeEmissions(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    // `a_emitter` may be the member of an emission that is removed.
    const std::shared_ptr<SzenarioEmitter> emitter = a_emitter;
    const QSet<const Emission*> removed = emissionsOf(m_emissions, emitter);
    if (removed.isEmpty()) {
        return;
    }
    const auto isRemoved = [&removed](const EmissionPtr& a_emission) {
        return removed.contains(a_emission.get());
    };
    for (const GroupPtr& group : std::as_const(m_groups)) {
        group->emissions.removeIf(isRemoved);
    }
    m_emissions.removeIf(isRemoved);
    clearEmptyGroups();
}

void EmissionSettings::replaceEmitter(const std::shared_ptr<SzenarioEmitter>& a_old,
                                      const std::shared_ptr<SzenarioEmitter>& a_replacement)
{
    replaceIn(m_emissions, &Emission::emitter, a_old, a_replacement);
}

void EmissionSettings::replaceSignalPackage(const std::shared_ptr<SignalPackage>& a_old,
                                            const std::shared_ptr<SignalPackage>& a_replacement)
{
    replaceIn(m_emissions, &Emission::signalPackage, a_old, a_replacement);
}

void EmissionSettings::addGroup(const GroupPtr& a_group)
{
    if (a_group) {
        m_groups.append(a_group);
    }
}

void EmissionSettings::removeGroup(const GroupPtr& a_group)
{
    const GroupPtr removed = a_group;
    for (const GroupPtr& group : std::as_const(m_groups)) {
        group->groups.removeAll(removed); // also from its own list: a group that holds itself is never freed
    }
    m_groups.removeAll(removed);
}

void EmissionSettings::clearEmptyGroups()
{
    // A group is checked again only when it loses a member. At first the members are
    // counted; they are removed from the lists at the end. So the time is linear in the
    // number of groups and memberships, even when the groups of a chain become empty one
    // after the other.
    QHash<const Group*, QList<const Group*>> holders;
    QHash<const Group*, qsizetype> membersLeft;
    QSet<const Group*> empty;
    QList<const Group*> pending;
    const auto dropIfEmpty = [&](const Group* a_pGroup) {
        if (a_pGroup->emissions.isEmpty() && membersLeft.value(a_pGroup) == 0) {
            empty.insert(a_pGroup);
            pending.append(a_pGroup);
        }
    };
    for (const GroupPtr& group : std::as_const(m_groups)) {
        if (membersLeft.contains(group.get())) {
            continue;
        }
        membersLeft.insert(group.get(), group->groups.size());
        for (const GroupPtr& member : std::as_const(group->groups)) {
            holders[member.get()].append(group.get());
        }
        dropIfEmpty(group.get());
    }
    while (!pending.isEmpty()) {
        const QList<const Group*> parents = holders.take(pending.takeLast());
        for (const Group* pParent : parents) {
            --membersLeft[pParent];
            dropIfEmpty(pParent);
        }
    }
    if (empty.isEmpty()) {
        return;
    }
    const auto isEmpty = [&empty](const GroupPtr& a_group) { return empty.contains(a_group.get()); };
    for (const GroupPtr& group : std::as_const(m_groups)) {
        group->groups.removeIf(isEmpty);
    }
    m_groups.removeIf(isEmpty);
}

void EmissionSettings::partGroups()
{
    if (m_pSharing.use_count() < 2) {
        return;
    }
    QList<GroupPtr> groups = m_groups;
    QHash<const Group*, GroupPtr> own;
    for (GroupPtr& group : groups) {
        GroupPtr& copy = own[group.get()];
        if (!copy) {
            copy = createGroup();
            copy->id = group->id;
            copy->name = group->name;
            copy->groups = group->groups;
            copy->emissions = group->emissions;
        }
        group = copy;
    }
    for (const GroupPtr& group : std::as_const(own)) {
        for (GroupPtr& member : group->groups) {
            member = own.value(member.get(), member);
        }
    }
    ObjectReleaser::releaseGroups(m_groups);
    m_groups = groups;
    m_pSharing.reset();
}

void EmissionSettings::clearAll()
{
    ObjectReleaser::releaseGroups(m_groups);
    m_pSharing.reset();
    m_emissions.clear();
}

void EmissionSettings::setDuration(long long a_iDuration)
{
    m_iDuration = a_iDuration < 1 ? s_iUnlimited : a_iDuration;
}

void EmissionSettings::makeContinousActive(const std::shared_ptr<SzenarioEmitter>& a_emitter,
                                           const std::shared_ptr<SignalPackage>& a_package)
{
    const EmissionPtr emission = createEmission();
    emission->duration = m_iDuration;
    emission->emitter = a_emitter;
    emission->signalPackage = a_package;
    if (!a_package && !m_emissions.isEmpty()) {
        emission->signalPackage = m_emissions.constFirst()->signalPackage;
    }
    clearAll();
    addEmission(emission);
}

EmissionPtr EmissionSettings::emissionAt(unsigned int a_uiTime) const
{
    // Finds the last emission with start < time, where the time counts from the beginning
    // of the period. An emission is therefore active on (start, start + duration].
    const std::int64_t iTime = std::int64_t{a_uiTime} % m_iDuration;
    const qsizetype iNext = lowerBound(iTime);
    if (iNext == 0) {
        return {};
    }
    const EmissionPtr& latest = m_emissions.at(iNext - 1);
    return lastsUntil(*latest, iTime) ? latest : EmissionPtr();
}

bool EmissionSettings::isActiveAt(unsigned int a_uiTime) const
{
    return emissionAt(a_uiTime) != nullptr;
}

std::shared_ptr<SzenarioEmitter> EmissionSettings::activeEmitterAt(unsigned int a_uiTime) const
{
    const EmissionPtr emission = emissionAt(a_uiTime);
    return emission ? emission->emitter : nullptr;
}

std::shared_ptr<SignalPackage> EmissionSettings::signalPackageAt(unsigned int a_uiTime) const
{
    const EmissionPtr emission = emissionAt(a_uiTime);
    return emission ? emission->signalPackage : nullptr;
}

long long EmissionSettings::timeActiveAt(unsigned int a_uiTime) const
{
    const EmissionPtr emission = emissionAt(a_uiTime);
    return emission ? timeActiveAt(a_uiTime, *emission) : -1;
}

long long EmissionSettings::timeActiveAt(unsigned int a_uiTime, const Emission& a_emission) const
{
    // An active emission started at most its own duration ago, so the difference fits
    // into 64 bits.
    return std::int64_t{a_uiTime} % m_iDuration - a_emission.start;
}

unsigned int EmissionSettings::activeUntil() const
{
    return std::numeric_limits<unsigned int>::max();
}

QList<HRActivity> EmissionSettings::calculateHRActivities(const SzenarioEmitter* a_pEmitter,
                                                          unsigned int a_uiStart,
                                                          unsigned int a_uiLength) const
{
    if (m_emissions.isEmpty()) {
        return {};
    }
    if (m_bBroadcast) {
        return {HRActivity{a_uiStart, a_uiLength, 0.0}};
    }
    // The walk begins in the period that contains the window's start. In this period it
    // begins with the last emission that started before the window, because this
    // emission may still be active.
    const std::int64_t iBase = a_uiStart - std::int64_t{a_uiStart} % m_iDuration;
    const qsizetype iNext = lowerBound(a_uiStart - iBase);
    return walkSchedule(m_emissions, a_pEmitter, std::max<qsizetype>(iNext - 1, 0), m_iDuration, iBase,
                        static_cast<std::int64_t>(windowEnd(a_uiStart, a_uiLength)));
}

} // namespace Simulation

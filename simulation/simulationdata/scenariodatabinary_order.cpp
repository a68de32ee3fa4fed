#include "scenariodatabinary_p.h"

#include <QHash>
#include <QStringView>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <queue>
#include <tuple>
#include <utility>

namespace Simulation {

namespace {

/// The position of an emitter in the order by id, without regard to links.
using Rank = std::size_t;
constexpr Rank s_uiNone = std::numeric_limits<Rank>::max();

using Emitters = std::vector<const CompactEmitter*>;

constexpr qsizetype s_iPrefixUnits = 4; ///< UTF-16 units in 64 bits
constexpr int s_iUnitBits = 16;

auto keyOf(const CompactEmitter& a_emitter)
{
    const CompactRecord& record = a_emitter.record;
    return std::tuple(QStringView(record.id), QStringView(record.name), QStringView(record.emitterClass),
                      QStringView(record.description), !record.isDefault,
                      a_emitter.target != nullptr ? QStringView(record.linkTarget) : QStringView(),
                      record.active);
}

/// The number of units at which all ids begin alike.
qsizetype commonUnits(const std::vector<CompactEmitter>& a_emitters)
{
    const QStringView first = a_emitters.empty() ? QStringView() : a_emitters.front().record.id;
    qsizetype iUnits = first.size();
    for (const CompactEmitter& emitter : a_emitters) {
        const QStringView id = emitter.record.id;
        const auto end = first.cbegin() + std::min(iUnits, id.size());
        iUnits = std::distance(first.cbegin(), std::mismatch(first.cbegin(), end, id.cbegin()).first);
    }
    return iUnits;
}

/// The units of an id from a position on as a number that sorts like them.
std::uint64_t prefixOf(const QString& a_sId, qsizetype a_iFrom)
{
    std::uint64_t uiPrefix = 0;
    for (qsizetype i = a_iFrom; i < a_iFrom + s_iPrefixUnits; ++i) {
        uiPrefix = uiPrefix << s_iUnitBits | (i < a_sId.size() ? a_sId[i].unicode() : 0);
    }
    return uiPrefix;
}

/// Sorts by the first units in which the ids differ, because comparing whole texts is
/// slow. Compares all keys only where these units are equal.
Emitters inIdOrder(const std::vector<CompactEmitter>& a_emitters)
{
    struct Entry
    {
        std::uint64_t prefix;
        const CompactEmitter* emitter;

        bool operator<(const Entry& a_other) const
        {
            return prefix != a_other.prefix ? prefix < a_other.prefix
                                            : keyOf(*emitter) < keyOf(*a_other.emitter);
        }
    };
    const qsizetype iCommon = commonUnits(a_emitters);
    std::vector<Entry> entries;
    entries.reserve(a_emitters.size());
    for (const CompactEmitter& emitter : a_emitters) {
        entries.push_back({prefixOf(emitter.record.id, iCommon), &emitter});
    }
    std::sort(entries.begin(), entries.end());
    Emitters emitters;
    emitters.reserve(entries.size());
    std::transform(entries.cbegin(), entries.cend(), std::back_inserter(emitters),
                   [](const Entry& a_entry) { return a_entry.emitter; });
    return emitters;
}

/// The rank of each emitter's link target; s_uiNone for an emitter without a target
/// among the emitters.
std::vector<Rank> targetsOf(const Emitters& a_emitters)
{
    QHash<const SzenarioEmitter*, Rank> ranks; ///< of the link targets
    for (const CompactEmitter* pEmitter : a_emitters) {
        if (pEmitter->target != nullptr) {
            ranks.insert(pEmitter->target, s_uiNone);
        }
    }
    for (Rank rank = 0; rank < a_emitters.size(); ++rank) {
        if (const auto found = ranks.find(a_emitters[rank]->emitter); found != ranks.end()) {
            *found = rank;
        }
    }
    std::vector<Rank> targets;
    targets.reserve(a_emitters.size());
    std::transform(a_emitters.cbegin(), a_emitters.cend(), std::back_inserter(targets),
                   [&](const CompactEmitter* a_pEmitter) {
                       return a_pEmitter->target != nullptr ? ranks.value(a_pEmitter->target) : s_uiNone;
                   });
    return targets;
}

/// Removes the link of the smallest emitter in every circle. Each emitter has at most
/// one target, so a walk along the targets has three possible ends: an emitter without
/// target, one that an earlier walk visited, or one that this walk visited. Only the
/// last case is a new circle. O(n): every emitter is visited by one walk, and at most
/// once more along its circle.
void breakCircles(std::vector<Rank>& a_targets)
{
    std::vector<Rank> walks(a_targets.size(), s_uiNone); ///< start of the walk that visited the emitter
    for (Rank start = 0; start < a_targets.size(); ++start) {
        Rank rank = start;
        while (rank != s_uiNone && walks[rank] == s_uiNone) {
            walks[rank] = start;
            rank = a_targets[rank];
        }
        if (rank == s_uiNone || walks[rank] != start) {
            continue;
        }
        Rank smallest = rank;
        for (Rank next = a_targets[rank]; next != rank; next = a_targets[next]) {
            smallest = std::min(smallest, next);
        }
        a_targets[smallest] = s_uiNone;
    }
}

/// Orders the ranks so that every target comes before the ranks that wait for it, the
/// smallest possible rank first. Topological sorting (Kahn 1962).
std::vector<Rank> targetsFirst(const std::vector<Rank>& a_targets)
{
    // The ranks that wait for a target form a linked list in two arrays.
    std::vector<Rank> firstWaiters(a_targets.size(), s_uiNone);
    std::vector<Rank> nextWaiters(a_targets.size(), s_uiNone);
    for (Rank rank = 0; rank < a_targets.size(); ++rank) {
        if (a_targets[rank] != s_uiNone) {
            nextWaiters[rank] = std::exchange(firstWaiters[a_targets[rank]], rank);
        }
    }
    std::priority_queue<Rank, std::vector<Rank>, std::greater<>> released; ///< the target is placed
    Rank free = 0;                                                         ///< next rank without target
    std::vector<Rank> ordered;
    ordered.reserve(a_targets.size());
    while (ordered.size() < a_targets.size()) {
        while (free < a_targets.size() && a_targets[free] != s_uiNone) {
            ++free;
        }
        if (!released.empty() && released.top() < free) {
            ordered.push_back(released.top());
            released.pop();
        } else {
            ordered.push_back(free++);
        }
        for (Rank waiter = firstWaiters[ordered.back()]; waiter != s_uiNone; waiter = nextWaiters[waiter]) {
            released.push(waiter);
        }
    }
    return ordered;
}

} // namespace

std::vector<const CompactRecord*> inLinkOrder(const std::vector<CompactEmitter>& a_emitters)
{
    const Emitters emitters = inIdOrder(a_emitters);
    std::vector<Rank> targets = targetsOf(emitters);
    breakCircles(targets);
    const std::vector<Rank> order = targetsFirst(targets);
    std::vector<const CompactRecord*> records;
    records.reserve(order.size());
    std::transform(order.cbegin(), order.cend(), std::back_inserter(records),
                   [&](Rank a_rank) { return &emitters[a_rank]->record; });
    return records;
}

} // namespace Simulation

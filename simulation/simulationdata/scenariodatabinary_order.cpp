#include "scenariodatabinary_p.h"

#include "simulationdata/szenarioemitter.h"

#include <QHash>

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

using Emitters = std::vector<std::shared_ptr<SzenarioEmitter>>;

QString targetIdOf(const SzenarioEmitter& a_emitter)
{
    const auto target = a_emitter.linkTargetEmitter();
    return target ? target->id() : QString();
}

Emitters inIdOrder(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters, const SzenarioEmitter* a_pFirst)
{
    struct Entry
    {
        std::tuple<QString, QString, QString, QString, bool, QString, bool> key;
        std::shared_ptr<SzenarioEmitter> emitter;
    };
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(a_emitters.size()));
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_emitters) {
        entries.push_back({{emitter->id(), emitter->name(), emitter->getClass(), emitter->description(),
                            emitter.get() != a_pFirst, targetIdOf(*emitter), emitter->isActive()},
                           emitter});
    }
    // Sorts pointers, because moving the texts would be slower.
    std::vector<Entry*> order(entries.size());
    std::transform(entries.begin(), entries.end(), order.begin(), [](Entry& a_entry) { return &a_entry; });
    std::sort(order.begin(), order.end(),
              [](const Entry* a_pLeft, const Entry* a_pRight) { return a_pLeft->key < a_pRight->key; });
    Emitters emitters;
    emitters.reserve(order.size());
    std::transform(order.cbegin(), order.cend(), std::back_inserter(emitters),
                   [](Entry* a_pEntry) { return std::move(a_pEntry->emitter); });
    return emitters;
}

/// The rank of each emitter's link target; s_uiNone for an emitter without a target in
/// the set.
std::vector<Rank> targetsOf(const Emitters& a_emitters)
{
    QHash<const SzenarioEmitter*, Rank> ranks;
    ranks.reserve(static_cast<qsizetype>(a_emitters.size()));
    for (Rank rank = 0; rank < a_emitters.size(); ++rank) {
        ranks.insert(a_emitters[rank].get(), rank);
    }
    std::vector<Rank> targets;
    targets.reserve(a_emitters.size());
    std::transform(
        a_emitters.cbegin(), a_emitters.cend(), std::back_inserter(targets),
        [&](const auto& a_emitter) { return ranks.value(a_emitter->linkTargetEmitter().get(), s_uiNone); });
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

} // namespace

std::vector<std::shared_ptr<SzenarioEmitter>>
inLinkOrder(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters, const SzenarioEmitter* a_pFirst)
{
    const Emitters emitters = inIdOrder(a_emitters, a_pFirst);
    std::vector<Rank> targets = targetsOf(emitters);
    breakCircles(targets);

    // Topological sorting (Kahn 1962). The emitters that wait for a target form a
    // linked list in two arrays.
    std::vector<Rank> firstWaiters(emitters.size(), s_uiNone);
    std::vector<Rank> nextWaiters(emitters.size(), s_uiNone);
    std::priority_queue<Rank, std::vector<Rank>, std::greater<>> ready;
    for (Rank rank = 0; rank < emitters.size(); ++rank) {
        if (targets[rank] == s_uiNone) {
            ready.push(rank);
        } else {
            nextWaiters[rank] = std::exchange(firstWaiters[targets[rank]], rank);
        }
    }
    Emitters ordered;
    ordered.reserve(emitters.size());
    while (!ready.empty()) {
        const Rank rank = ready.top();
        ready.pop();
        ordered.push_back(emitters[rank]);
        for (Rank waiter = firstWaiters[rank]; waiter != s_uiNone; waiter = nextWaiters[waiter]) {
            ready.push(waiter);
        }
    }
    return ordered;
}

} // namespace Simulation

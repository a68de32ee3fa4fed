#include "referencegraph_p.h"

namespace Simulation {

namespace {

/// The references sorted by their origin, so that those of one node stand
/// together: node n's are targets[first[n]] to targets[first[n + 1]].
struct Adjacency
{
    std::vector<std::size_t> first;
    std::vector<ReferenceGraph::Node> targets;
};

Adjacency adjacencyOf(const std::vector<std::pair<ReferenceGraph::Node, ReferenceGraph::Node>>& a_references,
                      std::size_t a_uiNodes)
{
    Adjacency adjacency;
    adjacency.first.assign(a_uiNodes + 1, 0);
    for (const auto& reference : a_references) {
        ++adjacency.first[reference.first + 1];
    }
    for (std::size_t i = 0; i < a_uiNodes; ++i) {
        adjacency.first[i + 1] += adjacency.first[i];
    }
    adjacency.targets.resize(a_references.size());
    std::vector<std::size_t> next = adjacency.first;
    for (const auto& reference : a_references) {
        adjacency.targets[next[reference.first]++] = reference.second;
    }
    return adjacency;
}

} // namespace

std::pair<ReferenceGraph::Node, bool> ReferenceGraph::add(const void* a_pObject)
{
    const auto inserted = m_nodes.try_emplace(a_pObject, m_insideCounts.size());
    if (inserted.second) {
        m_insideCounts.push_back(0);
    }
    return {inserted.first->second, inserted.second};
}

void ReferenceGraph::addReference(Node a_from, Node a_to)
{
    ++m_insideCounts[a_to];
    m_references.emplace_back(a_from, a_to);
}

std::vector<bool> ReferenceGraph::unreachable(const std::vector<long>& a_useCounts) const
{
    std::vector<bool> result(size(), true);
    std::vector<Node> pending;
    for (Node node = 0; node < size(); ++node) {
        if (a_useCounts[node] > m_insideCounts[node]) {
            result[node] = false;
            pending.push_back(node);
        }
    }
    if (pending.empty()) {
        return result;
    }
    const Adjacency adjacency = adjacencyOf(m_references, size());
    while (!pending.empty()) {
        const Node node = pending.back();
        pending.pop_back();
        for (std::size_t i = adjacency.first[node]; i < adjacency.first[node + 1]; ++i) {
            const Node target = adjacency.targets[i];
            if (result[target]) {
                result[target] = false;
                pending.push_back(target);
            }
        }
    }
    return result;
}

} // namespace Simulation

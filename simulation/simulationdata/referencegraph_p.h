#ifndef SIMULATIONDATA_REFERENCEGRAPH_P_H
#define SIMULATIONDATA_REFERENCEGRAPH_P_H

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Simulation {

/// Tells which objects of a graph of shared pointers are held by nothing but
/// each other, so that their owner can take them apart. This is trial deletion
/// (Lins 1992): references from inside are subtracted from the use counts; an
/// object with some left is held from outside, and so is all it reaches.
///
/// Nothing is owned here and the objects are never touched. Time and memory are
/// linear in objects and references.
class ReferenceGraph
{
public:
    using Node = std::size_t;

    /// The node of an object, and whether it is new.
    std::pair<Node, bool> add(const void* a_pObject);

    /// Records that the one object holds a shared pointer to the other; called
    /// once for every pointer.
    void addReference(Node a_from, Node a_to);

    [[nodiscard]] std::size_t size() const { return m_insideCounts.size(); }

    /// Per node, whether nothing outside the graph reaches it. `a_useCounts`
    /// holds the use count of each, without the pointers that the caller holds
    /// for this purpose alone.
    [[nodiscard]] std::vector<bool> unreachable(const std::vector<long>& a_useCounts) const;

private:
    std::unordered_map<const void*, Node> m_nodes;
    std::vector<long> m_insideCounts;
    std::vector<std::pair<Node, Node>> m_references;
};

} // namespace Simulation

#endif

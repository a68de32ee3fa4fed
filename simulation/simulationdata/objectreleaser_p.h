#ifndef SIMULATIONDATA_OBJECTRELEASER_P_H
#define SIMULATIONDATA_OBJECTRELEASER_P_H

#include "simulationdata/emissionsettings.h"

#include <boost/shared_ptr.hpp>
#include <QList>
#include <QMap>
#include <QSet>

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Simulation {

class ScenarioObject;

/// Drops the objects of a document and takes apart those that then only hold each
/// other: an emitter that its own schedule names would never be freed. Objects
/// that a caller still holds, also in a copy of a set or list, stay whole, and so
/// do all objects that these reach.
///
/// This is trial deletion (Lins 1992). The references among the objects that are
/// reached are subtracted from their use counts. An object with a rest is held
/// from outside. Members of the others are emptied. Time and memory are linear in
/// objects and references. Nothing recurses from object to object. Instances live
/// during one release, on the thread that the objects belong to.
class ObjectReleaser
{
public:
    /// Empties the owners and releases their objects in one traversal. An owner
    /// is a shared pointer or a set, list or map of shared pointers; null is
    /// skipped.
    template<typename... Owners>
    static void release(Owners&... a_owners)
    {
        ObjectReleaser releaser;
        (releaser.take(a_owners), ...);
        releaser.takeApart();
    }

    /// Gives an owner its new objects and releases the former ones. A set leaves
    /// null out.
    template<typename Owner>
    static void replace(Owner& a_owner, Owner a_objects)
    {
        std::swap(a_owner, a_objects);
        release(a_objects);
    }
    template<typename Object>
    static void replace(QSet<Object>& a_owner, QSet<Object> a_objects)
    {
        a_objects.remove(nullptr);
        std::swap(a_owner, a_objects);
        release(a_objects);
    }

    /// Releases groups, which hold each other in circles. What their emissions
    /// hold is not looked at.
    static void releaseGroups(QList<boost::shared_ptr<EmissionSettings::Group>>& a_groups);

    /// Drops pointers one after another: an emitter whose destructor drops the last
    /// pointer to the next one, and so on a million times, would overflow the
    /// stack. Pointers that are dropped during another drop on the same thread
    /// wait until it ends.
    static void dropInTurn(std::vector<std::shared_ptr<const void>> a_pointers);

    /// An object calls this for each of its members that hold objects: a shared
    /// pointer or a container of shared pointers. The member is counted or emptied.
    template<typename Object>
    void visit(std::shared_ptr<Object>& a_member)
    {
        if (m_bEmptying) {
            a_member.reset();
        } else {
            count(a_member);
        }
    }
    template<typename Container>
    void visit(Container& a_member)
    {
        if (m_bEmptying) {
            a_member.clear();
            return;
        }
        // Copies share their elements: without parting, they would count as one holder.
        a_member.detach();
        for (const auto& pointer : std::as_const(a_member)) {
            count(pointer);
        }
    }

private:
    using Node = std::size_t;

    /// An object that was reached. It lives at least as long as this.
    struct Held
    {
        std::shared_ptr<void> object;
        boost::shared_ptr<void> record; ///< an emission or a group, which are held instead
        void (ObjectReleaser::*visitMembers)(void*) = nullptr;
        long inside = 0;             ///< references from objects that were reached
        std::size_t firstTarget = 0; ///< its own references begin here and end before the next node's
        bool isKept = false;         ///< reached from outside

        [[nodiscard]] void* address() const { return object ? object.get() : record.get(); }
        [[nodiscard]] bool isHeldOutside() const
        {
            return object.use_count() + record.use_count() - 1 > inside;
        }
    };

    template<typename Object>
    void take(std::shared_ptr<Object>& a_owner)
    {
        if (a_owner) {
            add(a_owner);
            a_owner.reset();
        }
    }
    template<typename Container>
    void take(Container& a_owner)
    {
        for (const auto& pointer : std::as_const(a_owner)) {
            if (pointer) {
                add(pointer);
            }
        }
        a_owner.clear();
    }
    /// Copies of a document share its maps: what another copy holds stays whole.
    template<typename Key, typename Object>
    void take(QMap<Key, Object>& a_owner)
    {
        QMap<Key, Object> owner;
        owner.swap(a_owner);
        if (owner.isDetached()) {
            for (const Object& pointer : std::as_const(owner)) {
                add(pointer);
            }
        }
    }

    template<typename Pointer>
    void count(const Pointer& a_pointer)
    {
        if (a_pointer) {
            const Node target = add(a_pointer);
            ++m_held[target].inside;
            m_targets.push_back(target);
        }
    }

    template<typename Object>
    Node add(const std::shared_ptr<Object>& a_object)
    {
        // One address for an object, whatever class the pointer names: that of the
        // base class that makes the object known to shared pointers.
        using Base = typename decltype(a_object->shared_from_this())::element_type;
        Base* const pBase = a_object.get();
        const auto [found, bNew] = m_nodes.try_emplace(pBase, m_held.size());
        if (bNew) {
            m_held.push_back({a_object, {}, &ObjectReleaser::visitMembersOf<Base>});
        }
        return found->second;
    }
    template<typename Record>
    Node add(const boost::shared_ptr<Record>& a_record)
    {
        const auto [found, bNew] = m_nodes.try_emplace(a_record.get(), m_held.size());
        if (bNew) {
            m_held.push_back({{}, a_record, &ObjectReleaser::visitMembersOf<Record>});
        }
        return found->second;
    }

    template<typename Object>
    void visitMembersOf(void* a_pObject)
    {
        visitMembers(*static_cast<Object*>(a_pObject));
    }
    template<typename Object>
    void visitMembers(Object& a_object)
    {
        a_object.visitMembers(*this);
    }
    void visitMembers(ScenarioObject& a_object);
    void visitMembers(EmissionSettings::Emission& a_emission);
    void visitMembers(EmissionSettings::Group& a_group);

    void takeApart();
    void markKept();

    std::vector<Held> m_held; ///< by node
    std::unordered_map<const void*, Node> m_nodes;
    std::vector<Node> m_targets; ///< of all references, in the order of the nodes that hold them
    bool m_bGroupsOnly = false;
    bool m_bEmptying = false;
};

} // namespace Simulation

#endif

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

/// Drops the objects of a document and frees those that then hold only each other.
/// Shared pointers alone would never free an emitter that its own schedule names.
/// Objects that a caller still holds, also in a copy of a set or list, keep their
/// members. So do all objects that are reached from those objects.
///
/// This is trial deletion (Lins 1992). For every object that is reached, the references
/// from all reached objects are subtracted from its use count. When the difference is
/// not 0, the object is held from outside, and it is kept with all objects that it
/// reaches. The members of the other objects are emptied, which frees these objects.
/// Time and memory are linear in the number of objects and references. No function
/// recurses from object to object. An instance exists for one release, on the thread
/// that the objects belong to.
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

    /// Gives an owner its new objects and releases the former ones. Null is not put
    /// into a set.
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

    /// Releases groups, which may hold each other in circles. The emissions of the
    /// groups, and the objects that these emissions hold, are not visited.
    static void releaseGroups(QList<boost::shared_ptr<EmissionSettings::Group>>& a_groups);

    /// Drops pointers one after another. Destructors of objects call this function.
    /// Otherwise, nested destructors would overflow the stack in a chain of a million
    /// emitters where each emitter holds the last pointer to the next. A call inside
    /// another call on the same thread only appends its pointers to the pending
    /// pointers of the outer call.
    static void dropInTurn(std::vector<std::shared_ptr<const void>> a_pointers);

    /// An object calls this function for each of its members that hold objects. Such a
    /// member is a shared pointer or a container of shared pointers. Counts the
    /// references of the member, or empties the member while m_bEmptying is set.
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
        // Copies of a container share one set of pointers, so all copies together are
        // one holder. detach() gives the member pointers of its own.
        a_member.detach();
        for (const auto& pointer : std::as_const(a_member)) {
            count(pointer);
        }
    }

private:
    using Node = std::size_t;

    /// An object that was reached. The entry keeps it alive.
    struct Held
    {
        std::shared_ptr<void> object;
        boost::shared_ptr<void> record; ///< used instead of `object` for an emission or a group
        void (ObjectReleaser::*visitMembers)(void*) = nullptr;
        long inside = 0;             ///< references from objects that were reached
        std::size_t firstTarget = 0; ///< index of its first reference in m_targets
        bool isKept = false;         ///< held from outside, or reached from such an object

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
    /// Copies of a document share its maps. The objects of a map that another copy uses
    /// are not released.
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
        // An object is identified by the address of its base class that declares
        // shared_from_this(): the address is the same whatever class the pointer has.
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

    std::vector<Held> m_held; ///< indexed by node
    std::unordered_map<const void*, Node> m_nodes;
    std::vector<Node> m_targets; ///< targets of all references, grouped by the node that holds them
    bool m_bGroupsOnly = false;
    bool m_bEmptying = false;
};

} // namespace Simulation

#endif

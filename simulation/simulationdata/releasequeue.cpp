#include "releasequeue_p.h"

#include <iterator>

namespace Simulation {

namespace {

/// The queue of the outermost release on this thread. A plain pointer: objects
/// may die after the thread's own variables have been destroyed.
thread_local std::vector<std::shared_ptr<const void>>* t_pQueue = nullptr;

} // namespace

void ReleaseQueue::release(std::vector<std::shared_ptr<const void>> a_references)
{
    if (t_pQueue != nullptr) {
        t_pQueue->insert(t_pQueue->end(), std::make_move_iterator(a_references.begin()),
                         std::make_move_iterator(a_references.end()));
        return;
    }
    t_pQueue = &a_references;
    while (!a_references.empty()) {
        const std::shared_ptr<const void> reference = std::move(a_references.back());
        a_references.pop_back();
    }
    t_pQueue = nullptr;
}

} // namespace Simulation

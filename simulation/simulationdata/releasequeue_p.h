#ifndef SIMULATIONDATA_RELEASEQUEUE_P_H
#define SIMULATIONDATA_RELEASEQUEUE_P_H

#include <memory>
#include <vector>

namespace Simulation {

/// Drops references one after another instead of one inside the other: an
/// emitter whose destructor drops the last reference to the next one, and so on
/// a million times, would overflow the stack. Drops that happen while others
/// are being dropped on the same thread wait for their turn.
class ReleaseQueue
{
public:
    ReleaseQueue() = delete;

    static void release(std::vector<std::shared_ptr<const void>> a_references);
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_LINKORDER_P_H
#define SIMULATIONDATA_LINKORDER_P_H

#include <QSet>

#include <memory>
#include <vector>

namespace Simulation {

class SzenarioEmitter;

/// The emitters in an order in which every link target comes before those that
/// are linked to it and, among those that may come next, always the one of the
/// smallest id; equal ids by name, class and description, of twins `a_pFirst`
/// first and then by link target and active flag. Where links run in a
/// circle its smallest emitter does not wait for its target. Targets outside
/// the set are waited for by nobody. O(n log n), null is not allowed.
[[nodiscard]] std::vector<std::shared_ptr<SzenarioEmitter>>
inLinkOrder(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters, const SzenarioEmitter* a_pFirst);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_EMISSIONSETTINGS_WALK_P_H
#define SIMULATIONDATA_EMISSIONSETTINGS_WALK_P_H

#include "simulationdata/emissionsettings.h"

namespace Simulation {

/// Returns the on-times of one emitter, or of all emitters when `a_pEmitter` is null, up
/// to `a_iEnd` (ms, at most 2^32). The schedule is sorted by start and repeats every
/// `a_iPeriod` ms. The walk begins with the emission of index `a_iFirst` in the
/// period that starts at `a_iBase` (ms).
[[nodiscard]] QList<HRActivity>
walkSchedule(const QList<boost::shared_ptr<EmissionSettings::Emission>>& a_emissions,
             const SzenarioEmitter* a_pEmitter, qsizetype a_iFirst, std::int64_t a_iPeriod,
             std::int64_t a_iBase, std::int64_t a_iEnd);

} // namespace Simulation

#endif

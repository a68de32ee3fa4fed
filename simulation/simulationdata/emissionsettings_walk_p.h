#ifndef SIMULATIONDATA_EMISSIONSETTINGS_WALK_P_H
#define SIMULATIONDATA_EMISSIONSETTINGS_WALK_P_H

#include "simulationdata/emissionsettings.h"

namespace Simulation {

/// Walks a schedule that repeats every `a_iPeriod` ms from the emission
/// `a_iFirst` of the period that begins at `a_iBase`, up to the window's end
/// (all ms, at most 2^32), and gives the on-times of one emitter or of all.
[[nodiscard]] QList<HRActivity>
walkSchedule(const QList<boost::shared_ptr<EmissionSettings::Emission>>& a_emissions,
             const SzenarioEmitter* a_pEmitter, qsizetype a_iFirst, std::int64_t a_iPeriod,
             std::int64_t a_iBase, std::int64_t a_iEnd);

} // namespace Simulation

#endif

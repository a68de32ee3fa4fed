#include "emissionsettings_walk_p.h"

#include "ifrequencysettings_p.h"
#include "simulationdata/szenarioemitter.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/emissionsettings_walk";

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;

/// The emissions that a walk visits, in the schedule's order. When the period repeats
/// within the window, the emissions of the emitter are selected once. Without this
/// selection, the walk would visit the emissions of all emitters in each of perhaps
/// millions of periods. When the period does not repeat, the walk visits all emissions
/// and skips those of other emitters.
class Selection
{
public:
    Selection(const QList<EmissionPtr>& a_emissions, const SzenarioEmitter* a_pEmitter, qsizetype a_iFirst,
              bool a_bRepeats)
        : m_all(a_emissions)
        , m_bAll(a_pEmitter == nullptr || !a_bRepeats)
        , m_iFirst(a_iFirst)
    {
        if (m_bAll) {
            return;
        }
        for (qsizetype i = 0; i < a_emissions.size(); ++i) {
            if (i == a_iFirst) {
                m_iFirst = static_cast<qsizetype>(m_picked.size());
            }
            if (a_emissions.at(i)->emitter.get() == a_pEmitter) {
                m_picked.push_back(a_emissions.at(i).get());
            }
        }
    }

    /// Index of the emission with which the walk begins.
    [[nodiscard]] qsizetype first() const { return m_iFirst; }
    [[nodiscard]] qsizetype size() const
    {
        return m_bAll ? m_all.size() : static_cast<qsizetype>(m_picked.size());
    }
    [[nodiscard]] const EmissionSettings::Emission& at(qsizetype a_iIndex) const
    {
        return m_bAll ? *m_all.at(a_iIndex) : *m_picked[static_cast<std::size_t>(a_iIndex)];
    }

private:
    const QList<EmissionPtr>& m_all;
    std::vector<const EmissionSettings::Emission*> m_picked;
    bool m_bAll;
    qsizetype m_iFirst;
};

/// The part of an emission in [0, a_iEnd) ms of scenario time. The emission starts at
/// the scenario time start + base. A negative duration counts as 0.
HRActivity clipped(const EmissionSettings::Emission& a_emission, std::int64_t a_iBase, std::int64_t a_iEnd)
{
    // The caller ensures start + base < end. A document may set the start as low as
    // -2^63, whose negation does not fit. The milliseconds before 0 are therefore
    // counted in unsigned arithmetic.
    const bool bBeforeZero = a_emission.start < -a_iBase;
    const std::int64_t iFrom = bBeforeZero ? 0 : a_emission.start + a_iBase;
    std::int64_t iDuration = std::max<std::int64_t>(a_emission.duration, 0);
    if (bBeforeZero) {
        const std::uint64_t uiBefore = std::uint64_t{0} - static_cast<std::uint64_t>(a_emission.start) -
                                       static_cast<std::uint64_t>(a_iBase);
        iDuration = uiBefore >= static_cast<std::uint64_t>(iDuration)
                        ? 0
                        : iDuration - static_cast<std::int64_t>(uiBefore);
    }
    HRActivity activity;
    activity.start = static_cast<std::uint64_t>(iFrom);
    activity.duration = static_cast<std::uint64_t>(std::min(iDuration, a_iEnd - iFrom));
    return activity;
}

} // namespace

QList<HRActivity> walkSchedule(const QList<EmissionPtr>& a_emissions, const SzenarioEmitter* a_pEmitter,
                               qsizetype a_iFirst, std::int64_t a_iPeriod, std::int64_t a_iBase,
                               std::int64_t a_iEnd)
{
    ActivityAnswer answer(s_szSource);
    // When this is true, at least two periods lie between the base and the window's end.
    const bool bRepeats = a_iPeriod < (a_iEnd - a_iBase) / 2;
    const Selection selection(a_emissions, a_pEmitter, a_iFirst, bRepeats);
    if (selection.size() == 0) {
        return {};
    }
    // The walk continues in the next period only when two times lie before the window's
    // end: the start of the schedule's last emission and the start of the next period.
    // All comparisons have the form start >= end - base, because the sum start + base
    // could overflow.
    const std::int64_t iLastStart = a_emissions.constLast()->start;
    std::int64_t iBase = a_iBase;
    qsizetype i = selection.first();
    while (true) {
        for (; i < selection.size(); ++i) {
            const EmissionSettings::Emission& emission = selection.at(i);
            if (emission.start >= a_iEnd - iBase) {
                return answer.take();
            }
            if (a_pEmitter != nullptr && emission.emitter.get() != a_pEmitter) {
                continue;
            }
            if (!answer.append(clipped(emission, iBase, a_iEnd))) {
                return answer.take();
            }
        }
        if (iLastStart >= a_iEnd - iBase || a_iPeriod >= a_iEnd - iBase) {
            return answer.take();
        }
        iBase += a_iPeriod;
        i = 0;
    }
}

} // namespace Simulation

#ifndef SIMULATIONDATA_IFREQUENCYSETTINGS_P_H
#define SIMULATIONDATA_IFREQUENCYSETTINGS_P_H

#include "crt/crt.h"
#include "simulationdata/hractivity.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <QList>

namespace Simulation {

/// The end of the time window [a_uiStart, a_uiStart + a_uiLength) (ms), at most 2^32,
/// because no scenario time is later. The result has 64 bits, because a 32-bit sum would
/// wrap.
[[nodiscard]] inline std::uint64_t windowEnd(std::uint32_t a_uiStart, std::uint32_t a_uiLength)
{
    constexpr std::uint64_t uiTimeEnd = std::uint64_t{1} << 32;
    return std::min(std::uint64_t{a_uiStart} + a_uiLength, uiTimeEnd);
}

/// Collects the activities of one answer, up to Limits::AnswerActivities.
/// `a_szSource` and `a_iLine` are the source file and line that traces name.
/// `a_szSource` must outlive this object.
class ActivityAnswer
{
public:
    explicit ActivityAnswer(const char* a_szSource, int a_iLine = __builtin_LINE())
        : m_szSource(a_szSource)
        , m_iLine(a_iLine)
    {}

    /// Counts an activity. Also appends the activity, unless its duration is 0 and
    /// `a_bKeepEmpty` is false. False when the limit is exceeded: the activity is
    /// dropped, one trace names the limit, and the caller must stop.
    [[nodiscard]] bool append(const HRActivity& a_activity, bool a_bKeepEmpty = true)
    {
        if (m_uiCalculated >= m_uiLimit) {
            traceError(
                m_szSource,
                [] {
                    return QStringLiteral("Answer cut off: ") + Limits::exceeded(Limits::AnswerActivities);
                },
                m_iLine);
            return false;
        }
        ++m_uiCalculated;
        if (a_bKeepEmpty || a_activity.duration != 0) {
            m_activities.append(a_activity);
        }
        return true;
    }

    [[nodiscard]] QList<HRActivity> take() { return std::move(m_activities); }

private:
    QList<HRActivity> m_activities;
    std::uint64_t m_uiCalculated = 0;
    std::uint64_t m_uiLimit = Limits::value(Limits::AnswerActivities);
    const char* m_szSource;
    int m_iLine;
};

/// The time-slot offset of a new object: a random value of 0.00, 0.01, ..., 0.99. The
/// offsets prevent emitters that are made one after the other from sweeping or hopping
/// in step. Draws one number from this thread's random sequence.
[[nodiscard]] inline float randomTimeslotOffset()
{
    constexpr int iSlots = 100;
    return static_cast<float>((Crt::rand() % iSlots) / static_cast<double>(iSlots));
}

} // namespace Simulation

#endif

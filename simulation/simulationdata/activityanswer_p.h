#ifndef SIMULATIONDATA_ACTIVITYANSWER_P_H
#define SIMULATIONDATA_ACTIVITYANSWER_P_H

#include "simulationdata/hractivity.h"
#include "simulationdata/limits.h"
#include "trace_p.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <QList>

namespace Simulation {

/// The end of the time window [a_uiStart, a_uiStart + a_uiLength), at most 2^32:
/// no scenario time lies beyond, and 32-bit sums would wrap.
[[nodiscard]] inline std::uint64_t windowEnd(std::uint32_t a_uiStart, std::uint32_t a_uiLength)
{
    constexpr std::uint64_t uiTimeEnd = std::uint64_t{1} << 32;
    return std::min(std::uint64_t{a_uiStart} + a_uiLength, uiTimeEnd);
}

/// Collects the activities of one answer, up to Limits::AnswerActivities.
/// `a_szSource` names the asking source in the trace, `a_iLine` the line there;
/// the text must outlive this.
class ActivityAnswer
{
public:
    explicit ActivityAnswer(const char* a_szSource, int a_iLine = __builtin_LINE())
        : m_szSource(a_szSource)
        , m_iLine(a_iLine)
    {}

    /// False when the answer is full already: the activity is dropped, one
    /// trace names the limit, and the caller stops its walk.
    [[nodiscard]] bool append(std::uint64_t a_uiStart, std::uint64_t a_uiDuration, double a_dFrequency)
    {
        if (static_cast<std::uint64_t>(m_activities.size()) >= m_uiLimit) {
            traceError(
                m_szSource,
                [this] {
                    return QStringLiteral("Answer cut off: %1 limit of %2 exceeded")
                        .arg(QLatin1String(Limits::name(Limits::AnswerActivities)),
                             QString::number(m_uiLimit));
                },
                m_iLine);
            return false;
        }
        m_activities.append({a_uiStart, a_uiDuration, a_dFrequency});
        return true;
    }

    [[nodiscard]] QList<HRActivity> take() { return std::move(m_activities); }

private:
    QList<HRActivity> m_activities;
    std::uint64_t m_uiLimit = Limits::value(Limits::AnswerActivities);
    const char* m_szSource;
    int m_iLine;
};

} // namespace Simulation

#endif

#include "stallwatch.h"

namespace SimulationTool {

StallWatch::StallWatch(std::chrono::milliseconds a_limit)
    : m_limit(a_limit)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &StallWatch::check);
}

void StallWatch::note(bool a_bWaiting)
{
    m_bWaiting = a_bWaiting;
    if (a_bWaiting) {
        m_sinceProgress.start();
        if (!m_timer.isActive()) {
            m_timer.start(m_limit);
        }
    }
}

void StallWatch::check()
{
    if (!m_bWaiting) {
        return;
    }
    const std::chrono::milliseconds elapsed(m_sinceProgress.elapsed());
    if (elapsed < m_limit) {
        m_timer.start(m_limit - elapsed);
    } else {
        Q_EMIT stalled();
    }
}

} // namespace SimulationTool

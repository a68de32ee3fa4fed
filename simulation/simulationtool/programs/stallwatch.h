#ifndef SIMULATIONTOOL_STALLWATCH_H
#define SIMULATIONTOOL_STALLWATCH_H

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace SimulationTool {

/// Detects a wait without progress that lasts for a time limit. note() is cheap: it does
/// not restart a running timer. Used on the thread to which the object belongs.
class StallWatch : public QObject
{
    Q_OBJECT

public:
    explicit StallWatch(std::chrono::milliseconds a_limit);

    [[nodiscard]] bool isWaiting() const { return m_bWaiting; }

    /// Call with true when a wait begins and after progress, and with false when the wait
    /// ends.
    void note(bool a_bWaiting);

Q_SIGNALS:
    /// There was no progress for the time limit.
    void stalled();

private:
    void check();

    const std::chrono::milliseconds m_limit;
    QTimer m_timer;
    QElapsedTimer m_sinceProgress;
    bool m_bWaiting = false;
};

} // namespace SimulationTool

#endif

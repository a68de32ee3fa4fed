#ifndef SIMULATIONTOOL_STALLWATCH_H
#define SIMULATIONTOOL_STALLWATCH_H

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace SimulationTool {

/// Notices that something waits and makes no progress for some time. Noting
/// progress is cheap: the timer that runs is not touched.
class StallWatch : public QObject
{
    Q_OBJECT

public:
    explicit StallWatch(std::chrono::milliseconds a_limit);

    [[nodiscard]] bool isWaiting() const { return m_bWaiting; }

    /// Progress was made just now, or the waiting begins; nothing waits any more
    /// when `a_bWaiting` is false.
    void note(bool a_bWaiting);

Q_SIGNALS:
    /// No progress for the whole time.
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

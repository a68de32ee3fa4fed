#ifndef SIMULATIONTOOL_STALLWATCH_H
#define SIMULATIONTOOL_STALLWATCH_H

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace SimulationTool {

/// Detects that something waits without progress for a time. note() is cheap: it does
/// not restart a running timer. Used on its own thread.
class StallWatch : public QObject
{
    Q_OBJECT

public:
    explicit StallWatch(std::chrono::milliseconds a_limit);

    [[nodiscard]] bool isWaiting() const { return m_bWaiting; }

    /// Reports progress, or the begin of a wait; with false, the end of the wait.
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

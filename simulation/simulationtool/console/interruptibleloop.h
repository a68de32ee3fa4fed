#ifndef SIMULATIONTOOL_INTERRUPTIBLELOOP_H
#define SIMULATIONTOOL_INTERRUPTIBLELOOP_H

#include <QEventLoop>

#include <memory>

class QSocketNotifier;

namespace SimulationTool {

/// An event loop that also ends when the process is interrupted (see interruption.h).
/// Waits without polling.
class InterruptibleLoop
{
public:
    InterruptibleLoop();
    ~InterruptibleLoop();
    InterruptibleLoop(const InterruptibleLoop&) = delete;
    InterruptibleLoop& operator=(const InterruptibleLoop&) = delete;

    /// Returns at once after an earlier interruption.
    void run();
    void quit() { m_loop.quit(); }

private:
    QEventLoop m_loop;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace SimulationTool

#endif

#include "interruptibleloop.h"

#include "interruption.h"

#include <QObject>
#include <QSocketNotifier>

namespace SimulationTool {

InterruptibleLoop::InterruptibleLoop()
{
    catchInterruptions();
    if (interruptionDescriptor() < 0) {
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(interruptionDescriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &m_loop, [this] {
        // The descriptor stays readable and would activate the notifier again.
        m_notifier->setEnabled(false);
        m_loop.quit();
    });
}

InterruptibleLoop::~InterruptibleLoop() = default;

void InterruptibleLoop::run()
{
    if (!isInterrupted()) {
        m_loop.exec();
    }
}

} // namespace SimulationTool

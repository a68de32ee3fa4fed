#include "kpbase/errorhandler.h"

#include <QMessageLogger>

Q_LOGGING_CATEGORY(lcSimulationTrace, "simulation.trace")

ErrorHandler& ErrorHandler::Instance()
{
    static ErrorHandler s_instance;
    return s_instance;
}

// NOLINTNEXTLINE(bugprone-reserved-identifier)
void _Q_Trace(const QString& a_sMessage, const char* a_szSource, int a_iLine)
{
    if (!lcSimulationTrace().isWarningEnabled()) {
        return;
    }
    QMessageLogger(a_szSource, a_iLine, nullptr, lcSimulationTrace().categoryName())
            .warning()
            .noquote()
            .nospace()
        << a_sMessage << " (" << a_szSource << ':' << a_iLine << ')';
}

#include "kpbase/errorhandler.h"

#include <QMessageLogger>

#include <algorithm>

Q_LOGGING_CATEGORY(lcSimulationTrace, "simulation.trace")

ErrorHandler& ErrorHandler::Instance()
{
    static ErrorHandler s_instance;
    return s_instance;
}

namespace {

/// Returns a message as one line. Control characters, for example from file names,
/// become blanks.
QString oneLine(QString a_sMessage)
{
    std::replace_if(
        a_sMessage.begin(), a_sMessage.end(),
        [](QChar a_cUnit) { return a_cUnit.category() == QChar::Other_Control; }, QChar(QChar::Space));
    return a_sMessage;
}

} // namespace

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
        << oneLine(a_sMessage) << " (" << a_szSource << ':' << a_iLine << ')';
}

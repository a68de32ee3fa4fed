#ifndef SIMULATIONDATA_TRACE_P_H
#define SIMULATIONDATA_TRACE_P_H

#include "kpbase/errorhandler.h"

#include <QString>

namespace Simulation {

/// When the trace mask has the category, calls `a_message` and traces the QString that it
/// returns. Otherwise `a_message` is not called, so a masked trace formats nothing.
template<typename Message>
void trace(ErrorHandler::TraceCategory a_eCategory, const char* a_szSource, const Message& a_message,
           int a_iLine = __builtin_LINE())
{
    if (ErrorHandler::Instance().traces(a_eCategory)) {
        _Q_Trace(a_message(), a_szSource, a_iLine);
    }
}

/// Traces refused input or a failed operation.
template<typename Message>
void traceError(const char* a_szSource, const Message& a_message, int a_iLine = __builtin_LINE())
{
    trace(ErrorHandler::TraceError, a_szSource, a_message, a_iLine);
}

} // namespace Simulation

#endif

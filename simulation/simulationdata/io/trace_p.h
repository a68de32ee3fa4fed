#ifndef SIMULATIONDATA_TRACE_P_H
#define SIMULATIONDATA_TRACE_P_H

#include "kpbase/errorhandler.h"

#include <QString>

namespace Simulation {

/// Traces what `a_message` returns, a QString, when the mask asks for the
/// category. The function is called only then, so a trace that nobody wants
/// formats nothing.
template<typename Message>
void trace(ErrorHandler::TraceCategory a_eCategory, const char* a_szSource, const Message& a_message,
           int a_iLine = __builtin_LINE())
{
    if (ErrorHandler::Instance().traces(a_eCategory)) {
        _Q_Trace(a_message(), a_szSource, a_iLine);
    }
}

/// Traces a refusal or a failure.
template<typename Message>
void traceError(const char* a_szSource, const Message& a_message, int a_iLine = __builtin_LINE())
{
    trace(ErrorHandler::TraceError, a_szSource, a_message, a_iLine);
}

} // namespace Simulation

#endif

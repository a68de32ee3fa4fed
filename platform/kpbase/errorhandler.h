#ifndef KPBASE_ERRORHANDLER_H
#define KPBASE_ERRORHANDLER_H

#include "simulationdata/simulationdata_export.h"

#include <QLoggingCategory>
#include <QString>

#include <atomic>

/// The logging category "simulation.trace", to which all traces are written.
SIMULATIONDATA_EXPORT const QLoggingCategory& lcSimulationTrace();

/// Holds the trace mask, which selects the categories of traced diagnostics.
///
/// One object per process, usable until the process ends. Any thread may call every
/// operation. By default errors are traced and progress messages are not.
class SIMULATIONDATA_EXPORT ErrorHandler
{
public:
    /// Bits of the trace mask.
    enum TraceCategory : unsigned int {
        TraceProgress = 0x20, ///< progress messages: what the library does
        TraceError = 0x40,    ///< errors: refused input and failed operations
    };

    static ErrorHandler& Instance();

    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;

    /// The traced categories, a sum of TraceCategory bits.
    [[nodiscard]] unsigned int traceMask() const { return m_uiTraceMask.load(std::memory_order_relaxed); }
    void setTraceMask(unsigned int a_uiMask) { m_uiTraceMask.store(a_uiMask, std::memory_order_relaxed); }

    /// Whether messages of this category are traced. Check this before formatting a
    /// message, so that an untraced message costs nothing.
    [[nodiscard]] bool traces(TraceCategory a_eCategory) const { return (traceMask() & a_eCategory) != 0; }

private:
    ErrorHandler() = default;
    ~ErrorHandler() = default;

    std::atomic<unsigned int> m_uiTraceMask{TraceError};
};

/// Writes one trace line to the logging category "simulation.trace", with the source
/// name and line as its place. Does not check the trace mask: the caller does.
/// Control characters are written as blanks. `a_szSource` must outlive the call. It
/// names the source file by folder and base name, for example
/// "simulation/simulationdata/position".
// The name is part of the base library's interface.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
SIMULATIONDATA_EXPORT void _Q_Trace(const QString& a_sMessage, const char* a_szSource, int a_iLine);

#endif

#ifndef KPBASE_ERRORHANDLER_H
#define KPBASE_ERRORHANDLER_H

#include "simulationdata/simulationdata_export.h"

#include <QLoggingCategory>
#include <QString>

#include <atomic>

/// The logging category "simulation.trace", which every trace ends in.
SIMULATIONDATA_EXPORT const QLoggingCategory& lcSimulationTrace();

/// Holds the trace mask, which says what categories of diagnostics are written.
///
/// One object per process, never destroyed before the last trace. Every
/// operation may be called from any thread. By default errors are traced and
/// progress messages are not.
class SIMULATIONDATA_EXPORT ErrorHandler
{
public:
    /// Bits of the trace mask.
    enum TraceCategory : unsigned int {
        TraceProgress = 0x20, ///< what the library is doing
        TraceError = 0x40,    ///< what it refused or could not do
    };

    static ErrorHandler& Instance();

    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;

    /// The categories that are traced, a sum of TraceCategory bits.
    [[nodiscard]] unsigned int traceMask() const { return m_uiTraceMask.load(std::memory_order_relaxed); }
    void setTraceMask(unsigned int a_uiMask) { m_uiTraceMask.store(a_uiMask, std::memory_order_relaxed); }

    /// Whether a message of this category is to be traced. Ask before a
    /// message is put together: an unwanted trace must cost nothing.
    [[nodiscard]] bool traces(TraceCategory a_eCategory) const { return (traceMask() & a_eCategory) != 0; }

private:
    ErrorHandler() = default;
    ~ErrorHandler() = default;

    std::atomic<unsigned int> m_uiTraceMask{TraceError};
};

/// Writes one trace line to the logging category "simulation.trace", with the
/// source name and line as its place. The mask is the caller's to ask: what is
/// handed over here is written, control characters as blanks. `a_szSource` must outlive the call and name the
/// source file as "simulation/simulationdata/" and its base name.
// The name is part of the base library's interface.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
SIMULATIONDATA_EXPORT void _Q_Trace(const QString& a_sMessage, const char* a_szSource, int a_iLine);

#endif

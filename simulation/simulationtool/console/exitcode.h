#ifndef SIMULATIONTOOL_EXITCODE_H
#define SIMULATIONTOOL_EXITCODE_H

namespace SimulationTool {

/// The program's exit status. Scripts rely on the values. A higher value is more
/// severe.
enum class ExitCode : int {
    Ok = 0,
    Findings = 1, ///< done, but something is broken, missing or inconsistent
    Unusable = 2, ///< wrong usage, refused input or request, or an unreadable or unwritable file
};

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_EXITCODE_H
#define SIMULATIONTOOL_EXITCODE_H

namespace SimulationTool {

/// The program's exit status. Scripts rely on the values. The higher value is the
/// more severe one.
enum class ExitCode : int {
    Ok = 0,
    Findings = 1, ///< done, but something is broken, missing or inconsistent
    Unusable = 2, ///< wrong usage, or input or a request was refused, or a file could not be read or written
};

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_EXITCODE_H
#define SIMULATIONTOOL_EXITCODE_H

namespace SimulationTool {

/// What the program tells the shell. Scripts rely on the values; the higher one
/// is the graver.
enum class ExitCode : int {
    Ok = 0,
    Findings = 1, ///< done, but something is broken, missing or inconsistent
    Unusable = 2, ///< wrong usage, or something was refused or could not be read or written
};

} // namespace SimulationTool

#endif

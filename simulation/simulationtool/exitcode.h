#ifndef SIMULATIONTOOL_EXITCODE_H
#define SIMULATIONTOOL_EXITCODE_H

namespace SimulationTool {

/// What the program tells the shell. Scripts rely on the values.
enum class ExitCode : int {
    Ok = 0,
    Findings = 1, ///< done, but the scenario broke off and was shown up to there
    Unusable = 2, ///< wrong usage, or something could not be read or written
};

} // namespace SimulationTool

#endif

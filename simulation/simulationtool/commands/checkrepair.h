#ifndef SIMULATIONTOOL_CHECKREPAIR_H
#define SIMULATIONTOOL_CHECKREPAIR_H

#include "console/exitcode.h"

namespace SimulationTool {

class CheckOutput;
class InputFile;
struct CheckedDocument;
struct CheckOptions;

/// Writes the repaired scenario to the file of the options. Replaces the input file only
/// when nothing is lost, or with --force, after its former content was saved. Returns
/// Unusable after one line on standard error.
[[nodiscard]] ExitCode writeRepaired(const InputFile& a_file, const CheckedDocument& a_checked,
                                     const CheckOptions& a_options, CheckOutput& a_output);

} // namespace SimulationTool

#endif

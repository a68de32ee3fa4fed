#ifndef SIMULATIONTOOL_PULSEFILEDETAILS_H
#define SIMULATIONTOOL_PULSEFILEDETAILS_H

#include "verdict.h"

#include <QString>

namespace SimulationTool {

class InputFile;
class Report;

/// Describes a file of pulse descriptor words. A file with block headers, recognised
/// by its first word, is read block by block. The caller writes the returned verdict.
[[nodiscard]] Verdict describePulseFile(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

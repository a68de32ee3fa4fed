#ifndef SIMULATIONTOOL_PULSEFILEDETAILS_H
#define SIMULATIONTOOL_PULSEFILEDETAILS_H

#include "verdict.h"

#include <QString>

namespace SimulationTool {

class InputFile;
class Report;

/// What a file of pulse descriptor words holds. One with block headers, which
/// is told by its first word, is walked through from block to block. The
/// verdict that is returned is not written.
[[nodiscard]] Verdict describePulseFile(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_ARCHIVEDETAILS_H
#define SIMULATIONTOOL_ARCHIVEDETAILS_H

#include "verdict.h"

#include <QString>

namespace SimulationTool {

class InputFile;
class Report;

/// Describes the files of a zip archive and the signal packages among them. Checks the
/// files by unpacking them into a temporary folder. The caller writes the returned
/// verdict.
[[nodiscard]] Verdict describeArchive(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

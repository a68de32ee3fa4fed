#ifndef SIMULATIONTOOL_ARCHIVEDETAILS_H
#define SIMULATIONTOOL_ARCHIVEDETAILS_H

#include "verdict.h"

#include <QString>

namespace SimulationTool {

class InputFile;
class Report;

/// Describes the files of a zip archive and the signal packages among them. Unpacks
/// everything into a temporary folder, which checks it. The caller writes the
/// returned verdict.
[[nodiscard]] Verdict describeArchive(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

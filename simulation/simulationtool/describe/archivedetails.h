#ifndef SIMULATIONTOOL_ARCHIVEDETAILS_H
#define SIMULATIONTOOL_ARCHIVEDETAILS_H

#include "verdict.h"

#include <QString>

namespace SimulationTool {

class InputFile;
class Report;

/// The files of a zip archive, and the signal packages among them. Everything is
/// unpacked into a temporary folder, which checks it. The verdict that is
/// returned is not written.
[[nodiscard]] Verdict describeArchive(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

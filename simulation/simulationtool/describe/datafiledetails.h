#ifndef SIMULATIONTOOL_DATAFILEDETAILS_H
#define SIMULATIONTOOL_DATAFILEDETAILS_H

#include "verdict.h"

#include <QString>

#include <array>

namespace Simulation {
class SignalShapeFile;
} // namespace Simulation

namespace SimulationTool {

class InputFile;
class Report;

/// A data file of a package: its header in one line, and the verdict on the file. The
/// data themselves are not read.
struct DataFileSummary
{
    QString text; ///< empty when the file is refused
    Verdict verdict;
};

/// A kind of data file that a package may contain.
struct PackageDataFile
{
    const char* name; ///< in the package folder
    const char* kind; ///< the file name ending, as shown in lists
    QString (*path)(const QString& a_sPackageFolder);
    DataFileSummary (*summary)(const QString& a_sFile);
};
extern const std::array<PackageDataFile, 4> s_packageDataFiles;

/// The verdict on a signal shape file. Call after the reader's open(), successful or
/// not.
[[nodiscard]] Verdict shapeVerdict(const Simulation::SignalShapeFile& a_reader);

/// Describe the header of one file, under a heading of its own. The caller writes the
/// returned verdict.
[[nodiscard]] Verdict describeShapeFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeSymbolFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeResultFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeWaveFile(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

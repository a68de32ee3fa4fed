#ifndef SIMULATIONTOOL_DATAFILEDETAILS_H
#define SIMULATIONTOOL_DATAFILEDETAILS_H

#include "verdict.h"

#include <QString>

#include <array>

namespace SimulationTool {

class InputFile;
class Report;

/// A kind of data file that a package may contain.
struct PackageDataFile
{
    const char* name; ///< in the package folder
    const char* kind; ///< the file name ending, as shown in lists
    QString (*path)(const QString& a_sPackageFolder);
    QString (*holds)(const QString& a_sFile); ///< its header in one line; empty when it cannot be read
};
extern const std::array<PackageDataFile, 4> s_packageDataFiles;

/// Describe the header of one file, under a heading of its own. The caller writes the
/// returned verdict.
[[nodiscard]] Verdict describeShapeFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeSymbolFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeResultFile(Report& a_report, const InputFile& a_file);
[[nodiscard]] Verdict describeWaveFile(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

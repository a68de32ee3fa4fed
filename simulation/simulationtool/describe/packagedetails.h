#ifndef SIMULATIONTOOL_PACKAGEDETAILS_H
#define SIMULATIONTOOL_PACKAGEDETAILS_H

#include "verdict.h"

#include <QString>

namespace Simulation {
class SignalPackage;
} // namespace Simulation

namespace SimulationTool {

class InputFile;
class Report;

/// The name of the digital modulation, if the package has one; otherwise the name of
/// the analogue modulation.
[[nodiscard]] QString modulationText(const Simulation::SignalPackage& a_package);

/// Describes a signal package in a folder: its descriptor, then its data files. The
/// caller writes a heading before and the returned verdict after. `a_sTitle` is shown
/// as the folder.
[[nodiscard]] Verdict describePackageFolder(Report& a_report, const QString& a_sFolder,
                                            const QString& a_sTitle);

/// Describes a descriptor file outside a package folder.
[[nodiscard]] Verdict describeDescriptor(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

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

/// The modulation as people call it: the digital one by its name.
[[nodiscard]] QString modulationText(const Simulation::SignalPackage& a_package);

/// A signal package that lies in a folder, below a heading that the caller
/// wrote: its descriptor, then its data files. People know the folder by the
/// title. The verdict that is returned is not written.
[[nodiscard]] Verdict describePackageFolder(Report& a_report, const QString& a_sFolder,
                                            const QString& a_sTitle);

/// A descriptor that lies by itself.
[[nodiscard]] Verdict describeDescriptor(Report& a_report, const InputFile& a_file);

} // namespace SimulationTool

#endif

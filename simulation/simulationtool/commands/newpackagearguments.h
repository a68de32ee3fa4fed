#ifndef SIMULATIONTOOL_NEWPACKAGEARGUMENTS_H
#define SIMULATIONTOOL_NEWPACKAGEARGUMENTS_H

#include "console/exitcode.h"
#include "console/report.h"
#include "programs/recording.h"
#include "programs/spectrumlayout.h"

#include "simulationdata/enumerations.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace SimulationTool {

class Output;

/// What "new package" is to make.
struct NewPackageArguments
{
    QString out;  ///< the folder
    QString name; ///< of the package
    QString author;
    Simulation::AnalogModulations modulation = Simulation::AnalogModulations::CW;
    QString wave; ///< the recording; at most one of both is set
    QString iq;
    IqFormat iqFormat = IqFormat::Signed16;
    std::uint32_t iqRate = 0; ///< frames per second
    SpectrumSettings spectra; ///< the bandwidth also without a recording
    bool force = false;
    ReportForm form = ReportForm::Text;
};

/// Reads the arguments, the kind's name first. Returns an exit code when the command ends
/// here: the help was shown, or the usage was wrong, which was reported.
[[nodiscard]] std::optional<ExitCode> parseNewPackage(const QStringList& a_list, Output& a_output,
                                                      NewPackageArguments& a_arguments);

} // namespace SimulationTool

#endif

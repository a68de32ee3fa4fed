#ifndef SIMULATIONTOOL_CHECKCOMMAND_H
#define SIMULATIONTOOL_CHECKCOMMAND_H

#include "console/exitcode.h"
#include "console/report.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace SimulationTool {

class Output;

/// What to check and against what.
struct CheckOptions
{
    QStringList files;     ///< scenarios and deployments, "-" = standard input; one with a repair file
    QString repository;    ///< folder whose packages emissions may name; empty = packages are not checked
    QString repairFile;    ///< where the repaired scenario goes; empty = nowhere
    bool force = false;    ///< replace the file itself also when that loses something
    QSet<QString> classes; ///< that emitters may have; empty = all
    ReportForm form = ReportForm::Text;
};

/// Checks scenarios and deployments one after another and writes one line per finding, and one
/// at the end. Findings tells that there were some, repaired or not; Unusable
/// that a file could not be read or the repaired one not be written, which keeps
/// no other from being checked. With a repository a check that is interrupted
/// cleans up and returns; see interruption.h.
[[nodiscard]] ExitCode runCheck(const CheckOptions& a_options, Output& a_output);

} // namespace SimulationTool

#endif

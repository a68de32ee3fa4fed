#ifndef SIMULATIONTOOL_CHECKCOMMAND_H
#define SIMULATIONTOOL_CHECKCOMMAND_H

#include "checkoutput.h"
#include "checkrules.h"
#include "console/exitcode.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace SimulationTool {

class Output;

/// The options of a check.
struct CheckOptions
{
    QStringList paths;     ///< documents and folders, "-" = standard input; one if repairFile is set
    QString repository;    ///< folder with the packages that emissions may name; empty = packages are not
                           ///< checked
    QString deployment;    ///< deployment that receives the scenarios; empty = none
    QString repairFile;    ///< file for the repaired scenario; empty = none
    bool force = false;    ///< replace the input file even when content is lost
    QSet<QString> classes; ///< classes that emitters may have; empty = all
    RuleSelection rules;
    CheckForm form = CheckForm::Text;
};

/// Checks documents one after another, those of a folder sorted by name. Writes one line
/// per finding, and a summary at the end. Returns Findings when there were errors or
/// warnings, repaired or not; notes do not count.
/// Returns Unusable when a file could not be read or the repaired file not written;
/// the other files are still checked. When interrupted, removes its temporary files
/// and returns Unusable; see interruption.h.
[[nodiscard]] ExitCode runCheck(const CheckOptions& a_options, Output& a_output);

} // namespace SimulationTool

#endif

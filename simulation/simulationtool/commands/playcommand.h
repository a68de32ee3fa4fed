#ifndef SIMULATIONTOOL_PLAYCOMMAND_H
#define SIMULATIONTOOL_PLAYCOMMAND_H

#include "console/exitcode.h"
#include "console/report.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace SimulationTool {

class Output;

/// What to play and how. Times are ms since scenario start.
struct PlayOptions
{
    QString scenario = QStringLiteral(
        ":/DefaultData/Default.sce.exp"); ///< file, "-" = standard input; default: the built-in one
    std::uint32_t from = 0;
    std::optional<std::uint32_t> to; ///< none = the scenario's duration, at most ten seconds
    std::uint32_t step = 100;        ///< at least 1
    QString csvFile;                 ///< empty = a table on the output, "-" = the output
    QString repository;              ///< folder to resolve packages from; empty = none, and no levels
    QString cache;                   ///< folder that is kept; empty = a temporary one
    QStringList emitters;            ///< ids or names of those to play; empty = all
    ReportForm form = ReportForm::Text;
};

/// Plays a scenario over [from, to) and writes one row per time and emitter,
/// emitters in the order of their ids. Rows are written as they come: memory
/// does not grow with the window. With a repository a play that is interrupted
/// cleans up and returns; see interruption.h.
[[nodiscard]] ExitCode runPlay(const PlayOptions& a_options, Output& a_output);

} // namespace SimulationTool

#endif

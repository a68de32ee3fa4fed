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

/// The options of a play. Times are ms since scenario start.
struct PlayOptions
{
    QString scenario = QStringLiteral(
        ":/DefaultData/Default.sce.exp"); ///< file, "-" = standard input; default: the built-in one
    std::uint32_t from = 0;
    std::optional<std::uint32_t> to; ///< no value = the scenario's duration, at most 10 s
    std::uint32_t step = 100;        ///< at least 1
    QString csvFile;                 ///< empty = a table on the output, "-" = the output
    QString repository;              ///< folder with packages; empty = no packages and no levels
    QString cache;                   ///< kept folder of copied packages; empty = a temporary one
    QStringList emitters;            ///< ids or names of the emitters to play; empty = all
    bool strict = false;             ///< refuse a scenario with errors or warnings
    ReportForm form = ReportForm::Text;
};

/// Plays a scenario over [from, to) and writes one row per time and emitter. The
/// emitters are ordered by id. Each row is written immediately, so memory does not grow
/// with the window. A refused strict play returns Findings. When interrupted, removes its temporary files and
/// returns Unusable; see interruption.h.
[[nodiscard]] ExitCode runPlay(const PlayOptions& a_options, Output& a_output);

} // namespace SimulationTool

#endif

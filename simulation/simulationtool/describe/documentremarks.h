#ifndef SIMULATIONTOOL_DOCUMENTREMARKS_H
#define SIMULATIONTOOL_DOCUMENTREMARKS_H

#include <QString>

class QCommandLineParser;

namespace Simulation {
class ReadingReport;
} // namespace Simulation

namespace SimulationTool {

/// Adds the option --strict to a command that loads a document.
void addStrictOption(QCommandLineParser& a_parser);
/// Whether the parsed arguments have the option.
[[nodiscard]] bool isStrict(const QCommandLineParser& a_parser);

/// "2 errors, 1 warning", with notes if there are any.
[[nodiscard]] QString countsText(quint64 a_uiErrors, quint64 a_uiWarnings, quint64 a_uiNotes = 0);

/// Writes one line to standard error when a document was read with errors or warnings:
/// their number, and the command that lists them. Returns whether there are any. Signal
/// packages that are not known do not count, because every command reports them itself.
/// `a_sFile` is the command's argument.
[[nodiscard]] bool complainAbout(const Simulation::ReadingReport& a_report, const QString& a_sFile);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_COMMANDPARSER_H
#define SIMULATIONTOOL_COMMANDPARSER_H

#include "exitcode.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace SimulationTool {

/// The names of options that several commands have.
inline const QString s_sRepository = QStringLiteral("repository");
inline const QString s_sStep = QStringLiteral("step");

class Output;

/// The argument parser of one command, or of the program itself, with the options
/// --help and --trace that all of them share. Does not use the toolkit's help option,
/// which adds options of its own.
class CommandParser
{
public:
    /// `a_sCommand` is empty for the program itself. `a_sUsage` follows the command in
    /// the first line of the help. `a_szExamples` must live as long as the parser.
    CommandParser(const QString& a_sCommand, const QString& a_sUsage, const char* a_szDescription,
                  const char* a_szExamples);

    [[nodiscard]] QCommandLineParser& get() { return m_parser; }

    /// Reads the arguments; the first one is the command's name. Returns an exit code
    /// when the command ends here: the help was shown, or the usage was wrong. No
    /// value when the command may run.
    [[nodiscard]] std::optional<ExitCode> parse(const QStringList& a_arguments, Output& a_output);
    /// Reads the arguments of a command with subcommands: like parse(), but stops at the
    /// first positional argument, and leaves the rest to the subcommand.
    [[nodiscard]] std::optional<ExitCode> parseBefore(const QStringList& a_arguments, Output& a_output);

    /// Reports wrong usage as one line on standard error and returns Unusable.
    [[nodiscard]] ExitCode refuse(const QString& a_sReason) const;

private:
    QString m_sCommand;
    QString m_sUsage;
    const char* m_szExamples;
    QCommandLineParser m_parser;
};

} // namespace SimulationTool

#endif

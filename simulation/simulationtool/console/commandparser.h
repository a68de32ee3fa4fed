#ifndef SIMULATIONTOOL_COMMANDPARSER_H
#define SIMULATIONTOOL_COMMANDPARSER_H

#include "exitcode.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace SimulationTool {

class Output;

/// The arguments of one command, or of the program, with what all of them have
/// in common. The toolkit's own help option would bring options of its own
/// along.
class CommandParser
{
public:
    /// `a_sCommand` is empty for the program itself; `a_sUsage` is what follows
    /// it in the first line of the help.
    CommandParser(const QString& a_sCommand, const QString& a_sUsage, const char* a_szDescription,
                  const char* a_szExamples);

    [[nodiscard]] QCommandLineParser& get() { return m_parser; }

    /// Reads the arguments, the command's name first. What is to be told the
    /// shell when that is all: the help was shown, or the usage was wrong.
    [[nodiscard]] std::optional<ExitCode> parse(const QStringList& a_arguments, Output& a_output);
    /// The same for a command that names others: the rest is theirs.
    [[nodiscard]] std::optional<ExitCode> parseBefore(const QStringList& a_arguments, Output& a_output);

    /// Answers wrong usage by one line on standard error.
    [[nodiscard]] ExitCode refuse(const QString& a_sReason) const;

private:
    QString m_sCommand;
    QString m_sUsage;
    const char* m_szExamples;
    QCommandLineParser m_parser;
};

} // namespace SimulationTool

#endif

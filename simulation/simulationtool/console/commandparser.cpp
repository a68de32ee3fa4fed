#include "commandparser.h"

#include "output.h"

#include "kpbase/errorhandler.h"

namespace SimulationTool {

namespace {

const QString s_sHelp = QStringLiteral("help");
const QString s_sTrace = QStringLiteral("trace");

QString joined(const QString& a_sFirst, const QString& a_sSecond)
{
    return a_sFirst.isEmpty() ? a_sSecond : a_sFirst + u' ' + a_sSecond;
}

} // namespace

CommandParser::CommandParser(const QString& a_sCommand, const QString& a_sUsage, const char* a_szDescription,
                             const char* a_szExamples)
    : m_sCommand(a_sCommand)
    , m_sUsage(a_sUsage)
    , m_szExamples(a_szExamples)
{
    m_parser.setApplicationDescription(QString::fromUtf8(a_szDescription));
    m_parser.addOption({{QStringLiteral("h"), s_sHelp}, QStringLiteral("Show this help.")});
    m_parser.addOption({s_sTrace, QStringLiteral("Write the library's own messages to standard error.")});
}

std::optional<ExitCode> CommandParser::parse(const QStringList& a_arguments, Output& a_output)
{
    const bool bParsed = m_parser.parse(a_arguments);
    if (m_parser.isSet(s_sHelp)) {
        // Replaces the toolkit's first line, which shows the path of the executable.
        const QString sText = m_parser.helpText();
        a_output.write(QStringLiteral("Usage: simulationtool %1\n").arg(joined(m_sCommand, m_sUsage)) +
                       sText.mid(sText.indexOf(u'\n')) + QString::fromUtf8(m_szExamples));
        return ExitCode::Ok;
    }
    if (!bParsed) {
        return refuse(m_parser.errorText());
    }
    if (m_parser.isSet(s_sTrace)) {
        ErrorHandler::Instance().setTraceMask(ErrorHandler::TraceProgress | ErrorHandler::TraceError);
    }
    return std::nullopt;
}

std::optional<ExitCode> CommandParser::parseBefore(const QStringList& a_arguments, Output& a_output)
{
    m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    return parse(a_arguments, a_output);
}

ExitCode CommandParser::refuse(const QString& a_sReason) const
{
    QString sReason = a_sReason;
    while (sReason.endsWith(u'.')) {
        sReason.chop(1); // the toolkit ends its error texts with a full stop
    }
    const QString sPrefix = m_sCommand.isEmpty() ? QString() : m_sCommand + QStringLiteral(": ");
    complain(sPrefix + sReason + QStringLiteral(" (see simulationtool ") +
             joined(m_sCommand, QStringLiteral("--help)")));
    return ExitCode::Unusable;
}

} // namespace SimulationTool

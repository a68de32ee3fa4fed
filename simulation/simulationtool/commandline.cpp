#include "commandline.h"

#include "inspectcommand.h"
#include "output.h"
#include "playcommand.h"

#include "kpbase/errorhandler.h"

#include <QCommandLineParser>

#include <algorithm>
#include <limits>

namespace SimulationTool {

namespace {

constexpr std::uint32_t s_uiMaxTime = std::numeric_limits<std::uint32_t>::max(); ///< ms

const char s_szOverview[] = "Looks into the scenarios of the radio-signal simulation and plays them.\n"
                            "\n"
                            "Commands:\n"
                            "  inspect  Show what a scenario holds: header, noise, emitters, networks.\n"
                            "  play     Show where every emitter is and what it sends, step by step.\n"
                            "\n"
                            "Every command explains itself: simulationtool COMMAND --help";

const char s_szOverviewExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool play                      (the built-in scenario, ten seconds)\n"
    "  simulationtool inspect harbour.sce.exp\n"
    "  simulationtool play harbour.sce.exp --to 60000 --csv harbour.csv\n"
    "\n"
    "Exit codes:\n"
    "  0  Done.\n"
    "  1  The scenario broke off; what could be read was shown.\n"
    "  2  Wrong usage, or something could not be read or written.\n";

const char s_szInspect[] = "Shows what a scenario holds: its header and noise, an overview of emitters\n"
                           "and networks, then each of them with all settings and relations. Times are\n"
                           "milliseconds since scenario start, positions degrees (east and north\n"
                           "positive).";

const char s_szInspectExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool inspect harbour.sce.exp\n"
    "  simulationtool inspect :/DefaultData/Default.sce.exp    (the built-in scenario)\n";

const char s_szPlay[] = "Plays a scenario over the times from FROM up to, but not including, TO and\n"
                        "shows for each time and emitter whether it sends, on what frequency, where it\n"
                        "is (degrees, east and north positive), its heading (degrees clockwise from\n"
                        "north) and speed, and the id of the signal package it sends. An emission is\n"
                        "on after the instant of its start up to and including that of its end. Until\n"
                        "its first leg is done a moving emitter has no speed: \"-\", or -1 in a CSV\n"
                        "file.";

const char s_szPlayExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool play                                     (the built-in scenario)\n"
    "  simulationtool play harbour.sce.exp --from 5000 --to 6000 --step 10\n"
    "  simulationtool play harbour.sce.exp --to 60000 --csv harbour.csv\n";

const QString s_sHelp = QStringLiteral("help");
const QString s_sTrace = QStringLiteral("trace");

/// A parser with what all commands have in common. Its own help option would
/// bring options of the toolkit along.
class Parser
{
public:
    Parser(const QString& a_sUsage, const char* a_szDescription)
        : m_sUsage(a_sUsage)
    {
        m_parser.setApplicationDescription(QString::fromUtf8(a_szDescription));
        m_parser.addOption({{QStringLiteral("h"), s_sHelp}, QStringLiteral("Show this help.")});
        m_parser.addOption({s_sTrace, QStringLiteral("Write the library's own messages to standard error.")});
    }

    [[nodiscard]] QCommandLineParser& get() { return m_parser; }

    [[nodiscard]] QString helpText(const char* a_szAfterwards) const
    {
        // The toolkit's first line shows the path by which the program was
        // called.
        const QString sText = m_parser.helpText();
        return QStringLiteral("Usage: simulationtool %1").arg(m_sUsage) + u'\n' +
               sText.mid(sText.indexOf(u'\n')) + QString::fromUtf8(a_szAfterwards);
    }

    /// Applies what all commands have in common.
    void applyTrace() const
    {
        if (m_parser.isSet(s_sTrace)) {
            ErrorHandler::Instance().setTraceMask(ErrorHandler::TraceProgress | ErrorHandler::TraceError);
        }
    }

private:
    QString m_sUsage;
    QCommandLineParser m_parser;
};

/// Answers wrong usage of a command, or of the program when that is empty, by
/// one line.
ExitCode refuseUsage(const QString& a_sCommand, const QString& a_sReason)
{
    QString sReason = a_sReason;
    while (sReason.endsWith(u'.')) {
        sReason.chop(1); // the toolkit writes whole sentences
    }
    const QString sPrefix = a_sCommand.isEmpty() ? QString() : a_sCommand + QStringLiteral(": ");
    const QString sHelp = a_sCommand.isEmpty() ? QString() : a_sCommand + u' ';
    complain(sPrefix + sReason + QStringLiteral(" (see simulationtool ") + sHelp + QStringLiteral("--help)"));
    return ExitCode::Unusable;
}

/// The value of an option as a time (ms) from a minimum on; nothing, with a
/// reason, when it is none. Without the option the time stays as it is.
bool readTime(const QCommandLineParser& a_parser, const QString& a_sOption, std::uint32_t a_uiMin,
              std::optional<std::uint32_t>& a_time, QString& a_sReason)
{
    if (!a_parser.isSet(a_sOption)) {
        return true;
    }
    const QString sValue = a_parser.value(a_sOption);
    const bool bDigits = std::all_of(sValue.cbegin(), sValue.cend(),
                                     [](QChar a_cUnit) { return a_cUnit >= u'0' && a_cUnit <= u'9'; });
    bool bNumber = false;
    const std::uint32_t uiValue = sValue.toUInt(&bNumber);
    if (bDigits && bNumber && uiValue >= a_uiMin) {
        a_time = uiValue;
        return true;
    }
    a_sReason = QStringLiteral("--%1 needs a whole number of milliseconds from %2 to %3, not \"")
                    .arg(a_sOption, QString::number(a_uiMin), QString::number(s_uiMaxTime)) +
                sValue + u'"';
    return false;
}

ExitCode inspect(const QStringList& a_arguments, Output& a_output)
{
    const QString sCommand = QStringLiteral("inspect");
    Parser parser(QStringLiteral("inspect FILE"), s_szInspect);
    parser.get().addPositionalArgument(QStringLiteral("FILE"),
                                       QStringLiteral("The scenario document to look into."));
    const bool bParsed = parser.get().parse(a_arguments);
    if (parser.get().isSet(s_sHelp)) {
        a_output.write(parser.helpText(s_szInspectExamples));
        return ExitCode::Ok;
    }
    if (!bParsed) {
        return refuseUsage(sCommand, parser.get().errorText());
    }
    const QStringList files = parser.get().positionalArguments();
    if (files.size() != 1) {
        return refuseUsage(sCommand, QStringLiteral("one FILE is needed, %1 given").arg(files.size()));
    }
    parser.applyTrace();
    return runInspect(files.constFirst(), a_output);
}

const QString s_sFrom = QStringLiteral("from");
const QString s_sTo = QStringLiteral("to");
const QString s_sStep = QStringLiteral("step");
const QString s_sCsv = QStringLiteral("csv");

void addPlayOptions(QCommandLineParser& a_parser)
{
    const QString sMilliseconds = QStringLiteral("MS");
    a_parser.addOption({s_sFrom, QStringLiteral("First time in ms. Default: 0."), sMilliseconds});
    a_parser.addOption({s_sTo,
                        QStringLiteral("End of the window in ms, itself not played. Default: the scenario's "
                                       "duration, but at most 10000."),
                        sMilliseconds});
    a_parser.addOption(
        {s_sStep, QStringLiteral("Time between two steps in ms. Default: 100."), sMilliseconds});
    a_parser.addOption(
        {s_sCsv,
         QStringLiteral("Write comma-separated values with all digits to FILE instead of a table. "
                        "FILE is replaced only when all went well."),
         QStringLiteral("FILE")});
    a_parser.addPositionalArgument(
        QStringLiteral("SCENARIO"),
        QStringLiteral("The scenario document to play. Default: the built-in one."));
}

/// What the parsed arguments ask for; nothing, with a reason, when they are
/// wrong.
std::optional<PlayOptions> readPlayOptions(const QCommandLineParser& a_parser, QString& a_sReason)
{
    const QStringList files = a_parser.positionalArguments();
    if (files.size() > 1) {
        a_sReason = QStringLiteral("at most one SCENARIO can be played, %1 given").arg(files.size());
        return std::nullopt;
    }
    PlayOptions play;
    std::optional<std::uint32_t> from;
    std::optional<std::uint32_t> step;
    if (!readTime(a_parser, s_sFrom, 0, from, a_sReason) ||
        !readTime(a_parser, s_sTo, 1, play.to, a_sReason) ||
        !readTime(a_parser, s_sStep, 1, step, a_sReason)) {
        return std::nullopt;
    }
    play.scenario = files.value(0, play.scenario);
    play.from = from.value_or(play.from);
    play.step = step.value_or(play.step);
    play.csvFile = a_parser.value(s_sCsv);
    if (play.to && *play.to <= play.from) {
        a_sReason = QStringLiteral("--to (%1) must be later than --from (%2)")
                        .arg(QString::number(*play.to), QString::number(play.from));
        return std::nullopt;
    }
    if (a_parser.isSet(s_sCsv) && play.csvFile.isEmpty()) {
        a_sReason = QStringLiteral("--csv needs the name of a file");
        return std::nullopt;
    }
    return play;
}

ExitCode play(const QStringList& a_arguments, Output& a_output)
{
    const QString sCommand = QStringLiteral("play");
    Parser parser(QStringLiteral("play [SCENARIO] [--from MS] [--to MS] [--step MS] [--csv FILE]"), s_szPlay);
    addPlayOptions(parser.get());
    const bool bParsed = parser.get().parse(a_arguments);
    if (parser.get().isSet(s_sHelp)) {
        a_output.write(parser.helpText(s_szPlayExamples));
        return ExitCode::Ok;
    }
    if (!bParsed) {
        return refuseUsage(sCommand, parser.get().errorText());
    }
    QString sReason;
    const std::optional<PlayOptions> options = readPlayOptions(parser.get(), sReason);
    if (!options) {
        return refuseUsage(sCommand, sReason);
    }
    parser.applyTrace();
    return runPlay(*options, a_output);
}

} // namespace

ExitCode runCommandLine(const QStringList& a_arguments, Output& a_output)
{
    // What stands before the command is the program's, what follows is the
    // command's.
    Parser parser(QStringLiteral("COMMAND [OPTIONS]"), s_szOverview);
    QCommandLineParser& options = parser.get();
    options.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    options.addOption(
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")});
    options.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("inspect or play."));
    const bool bParsed = options.parse(a_arguments);
    if (options.isSet(s_sHelp)) {
        a_output.write(parser.helpText(s_szOverviewExamples));
        return ExitCode::Ok;
    }
    if (options.isSet(QStringLiteral("version"))) {
        a_output.write(QStringLiteral("simulationtool " SIMULATIONTOOL_VERSION "\n"));
        return ExitCode::Ok;
    }
    if (!bParsed) {
        return refuseUsage({}, options.errorText());
    }
    const QStringList rest = options.positionalArguments();
    if (rest.isEmpty()) {
        return refuseUsage({}, QStringLiteral("a command is needed: inspect or play"));
    }
    parser.applyTrace();
    // The command takes the program's place as the first argument.
    if (rest.constFirst() == u"inspect") {
        return inspect(rest, a_output);
    }
    if (rest.constFirst() == u"play") {
        return play(rest, a_output);
    }
    return refuseUsage({}, QStringLiteral("there is no command \"") + rest.constFirst() + u'"');
}

} // namespace SimulationTool

#include "playarguments.h"

#include "console/commandparser.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/timetext.h"
#include "describe/documentremarks.h"
#include "playcommand.h"

namespace SimulationTool {

namespace {

const char s_szPlay[] = "Plays a scenario over the times from FROM up to, but not including, TO and\n"
                        "shows for each time and emitter whether it sends, on what frequency, where it\n"
                        "is (degrees, east and north positive), its heading (degrees clockwise from\n"
                        "north) and speed, and the id of the signal package it sends. An emission is\n"
                        "on after the instant of its start up to and including that of its end. Until\n"
                        "its first leg is done a moving emitter has no speed: \"-\", or -1 in a CSV\n"
                        "file.\n"
                        "\n"
                        "A TIME is a number of milliseconds, or has a unit: 1500, 1500ms, 1.5s, 2min, 1h.\n"
                        "\n"
                        "With a repository the packages are read from there, and each row ends with the\n"
                        "signal level of the package at the time since its emission began. A package\n"
                        "that the repository does not have is played as the default package: one line\n"
                        "reports it, and the exit code is 1, as it is when a signal shape file is broken.\n"
                        "\n"
                        "When the reader of the scenario skips or replaces anything, one line on standard\n"
                        "error counts the errors and warnings; --strict refuses such a scenario.";

const char s_szPlayExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool play                                     (the built-in scenario)\n"
    "  simulationtool play harbour.sce.exp --from 5s --to 1min --step 10ms\n"
    "  simulationtool play harbour.sce.exp --emitter ferry --csv - | less\n"
    "  simulationtool play harbour.sce.exp --to 60000 --csv harbour.csv\n"
    "  simulationtool play harbour.sce.exp --repository packages\n"
    "\n"
    "Exit codes:\n"
    "  0  Played.\n"
    "  1  Played, but the scenario broke off, or a package is missing or broken or\n"
    "     could not be copied to the cache folder. With --strict: not played, because\n"
    "     the scenario has errors or warnings.\n"
    "  2  Wrong usage, or something could not be read or written.\n";

/// Reads an option as a time (ms) of at least `a_uiMin`. Without the option the time
/// stays unchanged. False, with an error text, for a wrong time.
bool readTime(const QCommandLineParser& a_parser, const QString& a_sOption, std::uint32_t a_uiMin,
              std::optional<std::uint32_t>& a_time, QString& a_sReason)
{
    if (!a_parser.isSet(a_sOption)) {
        return true;
    }
    a_time = timeOf(a_parser.value(a_sOption), QStringLiteral("--") + a_sOption, a_uiMin, a_sReason);
    return a_time.has_value();
}

const QString s_sFrom = QStringLiteral("from");
const QString s_sTo = QStringLiteral("to");
const QString s_sEmitter = QStringLiteral("emitter");
const QString s_sCsv = QStringLiteral("csv");
const QString s_sCache = QStringLiteral("cache");

void addPlayOptions(QCommandLineParser& a_parser)
{
    const QString sTime = QStringLiteral("TIME");
    a_parser.addOption({s_sFrom, QStringLiteral("First time. Default: 0."), sTime});
    a_parser.addOption({s_sTo,
                        QStringLiteral("End of the window, itself not played. Default: the scenario's "
                                       "duration, but at most 10s."),
                        sTime});
    a_parser.addOption({s_sStep, QStringLiteral("Time between two steps. Default: 100ms."), sTime});
    a_parser.addOption({s_sEmitter,
                        QStringLiteral("Play only the emitter with this id or, where no id is so, name; "
                                       "give it once for each. Default: all emitters."),
                        QStringLiteral("NAME")});
    a_parser.addOption(
        {s_sCsv,
         QStringLiteral("Write comma-separated values with all digits to FILE instead of a table. "
                        "FILE is replaced only when all went well; - is standard output, which then gets "
                        "nothing else."),
         QStringLiteral("FILE")});
    a_parser.addOption({s_sRepository,
                        QStringLiteral("Read the signal packages from this repository, or from any folder "
                                       "with packages, and show signal levels."),
                        QStringLiteral("DIR")});
    a_parser.addOption({s_sCache,
                        QStringLiteral("Copy the packages into FOLDER and leave them there: the next play "
                                       "finds them. Those that are there are not copied again. Default: a "
                                       "temporary folder, which is removed at the end."),
                        QStringLiteral("FOLDER")});
    a_parser.addPositionalArgument(
        QStringLiteral("SCENARIO"),
        QStringLiteral("The scenario document to play; - is standard input. Default: the built-in one."));
    addStrictOption(a_parser);
    addJsonOption(a_parser);
}

/// The options from the parsed arguments; no value, with an error text, when they are
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
    play.emitters = a_parser.values(s_sEmitter);
    play.strict = isStrict(a_parser);
    play.form = reportForm(a_parser);
    play.repository = a_parser.value(s_sRepository);
    play.cache = a_parser.value(s_sCache);
    if (play.to && *play.to <= play.from) {
        a_sReason = QStringLiteral("--to (%1 ms) must be later than --from (%2 ms)")
                        .arg(QString::number(*play.to), QString::number(play.from));
        return std::nullopt;
    }
    for (const QString& sOption : {s_sCsv, s_sRepository, s_sCache}) {
        if (a_parser.isSet(sOption) && a_parser.value(sOption).isEmpty()) {
            a_sReason = QStringLiteral("--%1 needs a name").arg(sOption);
            return std::nullopt;
        }
    }
    if (!play.cache.isEmpty() && play.repository.isEmpty()) {
        a_sReason = QStringLiteral("--cache is filled from a --repository");
        return std::nullopt;
    }
    if (isStandardStreamName(play.csvFile) && play.form == ReportForm::Json) {
        a_sReason = QStringLiteral("--csv - and --json both write to standard output: give one of them");
        return std::nullopt;
    }
    return play;
}

} // namespace

ExitCode play(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(
        QStringLiteral("play"),
        QStringLiteral("[SCENARIO|-] [--from TIME] [--to TIME] [--step TIME]\n"
                       "                           [--emitter NAME]... [--csv FILE|-] [--json] [--strict]\n"
                       "                           [--repository DIR [--cache FOLDER]]"),
        s_szPlay, s_szPlayExamples);
    addPlayOptions(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    QString sReason;
    const std::optional<PlayOptions> options = readPlayOptions(parser.get(), sReason);
    return options ? runPlay(*options, a_output) : parser.refuse(sReason);
}

} // namespace SimulationTool

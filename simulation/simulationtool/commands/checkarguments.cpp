#include "checkarguments.h"

#include "checkcommand.h"
#include "checkfinding.h"
#include "console/commandparser.h"
#include "console/inputfile.h"

#include "simulationdata/scenariochecker.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iHelpWidth = 80; ///< columns

const char s_szCheck[] = "Checks scenario and deployment documents and writes one line for everything it\n"
                         "finds: the file, the object's id and name, the finding and its repair, and the\n"
                         "rule. Notes are marked as such; nothing is wrong with what they name. Rules for\n"
                         "documents:\n"
                         "\n"
                         "  broken-off (error)\n"
                         "      The document is cut off, malformed or beyond a limit; what came before is\n"
                         "      checked.\n"
                         "  newer-version (error)\n"
                         "      The format of a deployment is newer than the tool.\n"
                         "  not-read (error)\n"
                         "      Elements or attributes, such as misspelt ones, are not in the format at\n"
                         "      their place and have no effect. Not looked for after broken-off,\n"
                         "      newer-version or duplicate-id.\n"
                         "\n"
                         "Rules for what they hold; those about signal packages need --repository, and\n"
                         "invalid-class needs --class:\n"
                         "\n";

const char s_szCheckFiles[] =
    "\n"
    "invalid-signal-package and missing-settings are repaired. Files stay as they are,\n"
    "unless --repair names one. A repaired scenario is written in the current format:\n"
    "ids without a finding are kept, numbers are rounded to the format's digits,\n"
    "comments and unknown elements are left out.";

const char s_szCheckExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool check harbour.sce.exp --repository packages\n"
    "  simulationtool check *.sce.exp --class Boat --class \"Coast station\"\n"
    "  simulationtool check harbour.sce.exp --repository packages --repair repaired.sce.exp\n"
    "\n"
    "Exit codes:\n"
    "  0  No findings in any file, or notes only.\n"
    "  1  Findings, repaired or not.\n"
    "  2  Wrong usage, or a file could not be read or written; the others are checked.\n";

const QString s_sRepair = QStringLiteral("repair");
const QString s_sForce = QStringLiteral("force");
const QString s_sClass = QStringLiteral("class");

/// A rule and its summary, wrapped at spaces.
QString ruleText(const Simulation::CheckRule& a_rule)
{
    const QString sIndent(6, u' ');
    QString sText =
        QStringLiteral("  ") + a_rule.id + QStringLiteral(" (") + severityName(a_rule.severity) + u')';
    QString sLine;
    const QStringList words = QString(a_rule.summary).split(u' ');
    for (const QString& sWord : words) {
        if (sLine.isEmpty() || sLine.size() + 1 + sWord.size() > s_iHelpWidth) {
            sText += sLine + u'\n';
            sLine = sIndent + sWord;
        } else {
            sLine += u' ' + sWord;
        }
    }
    return sText + sLine + u'\n';
}

QByteArray description()
{
    QString sText = QLatin1String(s_szCheck);
    for (const Simulation::CheckRule& rule : Simulation::ScenarioChecker::rules()) {
        // Scenarios and deployments are checked alone, so this rule cannot fire.
        if (rule.id != Simulation::ScenarioChecker::s_sUnreachedStation) {
            sText += ruleText(rule);
        }
    }
    return (sText + QLatin1String(s_szCheckFiles)).toUtf8();
}

void addCheckOptions(QCommandLineParser& a_parser)
{
    a_parser.addOption({s_sRepository,
                        QStringLiteral("Check that the signal packages are in this repository, or in any "
                                       "folder with packages. Default: packages are not checked."),
                        QStringLiteral("DIR")});
    a_parser.addOption(
        {s_sRepair,
         QStringLiteral("Write the scenario, with all that can be repaired, to OUT, also when nothing was "
                        "found. OUT may be the one FILE itself, unless that holds anything which the "
                        "repaired scenario lacks: it broke off, or holds a duplicate-id, comments, or "
                        "elements that are not the format's."),
         QStringLiteral("OUT")});
    a_parser.addOption({s_sForce, QStringLiteral("Let --repair replace FILE even when content is lost; the "
                                                 "former file is kept as FILE~, which must not exist.")});
    a_parser.addOption(
        {s_sClass,
         QStringLiteral("A class that emitters may have, \"\" for none; give it once for each. "
                        "Default: every class."),
         QStringLiteral("NAME")});
    a_parser.addPositionalArgument(QStringLiteral("FILE"),
                                   QStringLiteral("The documents; - is standard input."));
    addJsonOption(a_parser);
}

/// The error text for wrong arguments; empty when they are right.
QString errorOf(const QCommandLineParser& a_parser)
{
    const QStringList files = a_parser.positionalArguments();
    if (files.isEmpty() || files.contains(QString())) {
        return QStringLiteral("a FILE is needed");
    }
    for (const QString& sOption : {s_sRepository, s_sRepair}) {
        if (a_parser.isSet(sOption) && a_parser.value(sOption).isEmpty()) {
            return QStringLiteral("--%1 needs a name").arg(sOption);
        }
    }
    if (files.count(QStringLiteral("-")) > 1) {
        return QStringLiteral("standard input (-) can be checked once");
    }
    if (isStandardStreamName(a_parser.value(s_sRepair))) {
        return QStringLiteral("--repair needs a file, not \"-\" (./- is a file of that name)");
    }
    if (a_parser.isSet(s_sForce) && !a_parser.isSet(s_sRepair)) {
        return QStringLiteral("--force belongs to --repair");
    }
    return a_parser.isSet(s_sRepair) && files.size() != 1
               ? QStringLiteral("--repair needs one FILE, %1 given").arg(files.size())
               : QString();
}

} // namespace

ExitCode check(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("check"),
                         QStringLiteral("FILE|-... [--repository DIR] [--class NAME]... [--json]\n"
                                        "                            [--repair OUT [--force]]"),
                         description().constData(), s_szCheckExamples);
    addCheckOptions(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    if (const QString sError = errorOf(parser.get()); !sError.isEmpty()) {
        return parser.refuse(sError);
    }
    CheckOptions options;
    options.files = parser.get().positionalArguments();
    options.repository = parser.get().value(s_sRepository);
    options.repairFile = parser.get().value(s_sRepair);
    options.force = parser.get().isSet(s_sForce);
    options.form = reportForm(parser.get());
    const QStringList classes = parser.get().values(s_sClass);
    options.classes = QSet<QString>(classes.cbegin(), classes.cend());
    return runCheck(options, a_output);
}

} // namespace SimulationTool

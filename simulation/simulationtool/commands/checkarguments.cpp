#include "checkarguments.h"

#include "checkcommand.h"
#include "console/commandparser.h"
#include "console/inputfile.h"

namespace SimulationTool {

namespace {

const char s_szCheck[] =
    "Checks scenario and deployment documents and writes one line for everything it\n"
    "finds: the file, the object's id and name, the finding and its repair, and the\n"
    "rule. Rules for scenarios:\n"
    "\n"
    "  invalid-signal-package  an emission names no package, or one that the\n"
    "                          repository does not have; only with --repository.\n"
    "                          Repaired: it gets the default package.\n"
    "  damaged-package         an emission uses a package of the repository that\n"
    "                          \"repository list\" shows with a problem; only with\n"
    "                          --repository; never repaired\n"
    "  duplicate-id            several emitters have one id, so that they are read\n"
    "                          as one; never repaired\n"
    "  invalid-class           an emitter is of none of the classes that --class\n"
    "                          names; never repaired\n"
    "  missing-settings        an object has no frequency, position or transmitter\n"
    "                          settings. Repaired: it gets those of a new object.\n"
    "  broken-off              the document is cut off, malformed or beyond a\n"
    "                          limit; what came before is checked\n"
    "  position-out-of-range   a latitude is not in [-90, 90] or a longitude not in\n"
    "                          [-180, 180] degrees\n"
    "  not-read                elements or attributes that the format does not have\n"
    "                          at their place, such as misspelt ones, and that have\n"
    "                          no effect; not looked for after broken-off or\n"
    "                          duplicate-id; never repaired\n"
    "\n"
    "Rules for deployments: broken-off, duplicate-id, position-out-of-range, not-read, and\n"
    "\n"
    "  newer-version           the format is newer than the tool\n"
    "  device-without-station  a device has neither a station nor a position of its\n"
    "                          own, or names a station that the deployment does not\n"
    "                          describe\n"
    "\n"
    "Files stay as they are, unless --repair names one. A repaired scenario is\n"
    "written in the current format: ids without a finding are kept, numbers are rounded\n"
    "to the format's digits, comments and unknown elements are left out.";

const char s_szCheckExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool check harbour.sce.exp --repository packages\n"
    "  simulationtool check *.sce.exp --class Boat --class \"Coast station\"\n"
    "  simulationtool check harbour.sce.exp --repository packages --repair repaired.sce.exp\n"
    "\n"
    "Exit codes:\n"
    "  0  No findings in any file.\n"
    "  1  Findings, repaired or not.\n"
    "  2  Wrong usage, or a file could not be read or written; the others are checked.\n";

const QString s_sRepair = QStringLiteral("repair");
const QString s_sForce = QStringLiteral("force");
const QString s_sClass = QStringLiteral("class");

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
                         s_szCheck, s_szCheckExamples);
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

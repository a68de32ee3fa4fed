#include "checkarguments.h"

#include "checkcommand.h"
#include "checkrules.h"
#include "console/commandparser.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/report.h"

#include <QFileInfo>

namespace SimulationTool {

namespace {

const char s_szCheck[] =
    "Checks scenarios, deployments, descriptors of signal packages (Signal.xml) and compact\n"
    "forms, and writes one line for everything it finds, like a compiler:\n"
    "\n"
    "  harbour.sce.exp:12:9: error: [unknown-element] what is wrong, and what to do\n"
    "\n"
    "On a terminal the line of the document follows. An error means that a part of the\n"
    "document is lost, changed or cannot be played; a warning, that something was probably\n"
    "not meant; nothing is wrong with what a note names. --rules describes the rules. Those\n"
    "about the packages of emissions need --repository, invalid-class needs --class, and\n"
    "unreached-station needs --deployment.\n"
    "\n"
    "Of a folder all documents in it and below it are checked, and the data files beside a\n"
    "Signal.xml; hidden files and links are skipped. At most 1000 findings of a document and\n"
    "25000 of all are listed; the others are counted.\n"
    "\n"
    "invalid-signal-package and missing-settings are repaired. Files stay as they are,\n"
    "unless --repair names one. A repaired scenario is written in the current format:\n"
    "ids without a finding are kept, numbers are rounded to the format's digits,\n"
    "comments and unknown elements are left out.";

const char s_szCheckExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool check harbour.sce.exp --repository packages\n"
    "  simulationtool check scenarios packages/SignalPackages\n"
    "  simulationtool check *.sce.exp --class Boat --class \"Coast station\"\n"
    "  simulationtool check harbour.sce.exp --deployment pier.deployment\n"
    "  simulationtool check . --no-rule older-version --sarif > findings.sarif\n"
    "  simulationtool check harbour.sce.exp --repository packages --repair repaired.sce.exp\n"
    "\n"
    "Exit codes:\n"
    "  0  No findings in any document, or notes only.\n"
    "  1  Errors or warnings, repaired or not.\n"
    "  2  Wrong usage, or a file could not be read or written; the others are checked.\n";

const QString s_sRepair = QStringLiteral("repair");
const QString s_sForce = QStringLiteral("force");
const QString s_sClass = QStringLiteral("class");
const QString s_sDeployment = QStringLiteral("deployment");
const QString s_sSarif = QStringLiteral("sarif");
const QString s_sRule = QStringLiteral("rule");
const QString s_sNoRule = QStringLiteral("no-rule");
const QString s_sRules = QStringLiteral("rules");
const QString s_sMarkdown = QStringLiteral("markdown");

void addRuleOptions(QCommandLineParser& a_parser)
{
    const QString sId = QStringLiteral("ID");
    a_parser.addOption(
        {s_sRule, QStringLiteral("Report findings of this rule only; give it once for each."), sId});
    a_parser.addOption(
        {s_sNoRule, QStringLiteral("Do not report findings of this rule; give it once for each."), sId});
    a_parser.addOption({s_sRules, QStringLiteral("List the rules, and check nothing.")});
    a_parser.addOption({s_sMarkdown, QStringLiteral("Let --rules write the page docs/rules.md.")});
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
                        "found. OUT may be the one PATH itself, unless that holds anything which the "
                        "repaired scenario lacks: it broke off, or holds a duplicate-id, comments, or "
                        "elements that are not the format's."),
         QStringLiteral("OUT")});
    a_parser.addOption({s_sForce, QStringLiteral("Let --repair replace PATH even when content is lost; the "
                                                 "former file is kept as PATH~, which must not exist.")});
    a_parser.addOption(
        {s_sClass,
         QStringLiteral("A class that emitters may have, \"\" for none; give it once for each. "
                        "Default: every class."),
         QStringLiteral("NAME")});
    a_parser.addOption({s_sDeployment,
                        QStringLiteral("Check FILE, and whether the emitters of the scenarios reach its "
                                       "stations."),
                        QStringLiteral("FILE")});
    addRuleOptions(a_parser);
    a_parser.addOption({s_sSarif, QStringLiteral("Report in SARIF 2.1.0 on standard output, for code-review "
                                                 "systems; errors stay on standard error.")});
    a_parser.addPositionalArgument(
        QStringLiteral("PATH"), QStringLiteral("The documents, and folders of them; - is standard input."));
    addJsonOption(a_parser);
}

/// The error text for wrong arguments about the form and the rules; empty when they are
/// right.
QString formErrorOf(const QCommandLineParser& a_parser)
{
    if (a_parser.isSet(s_sSarif) && reportForm(a_parser) == ReportForm::Json) {
        return QStringLiteral("--json and --sarif are two forms of the report: give one of them");
    }
    if (a_parser.isSet(s_sMarkdown) && !a_parser.isSet(s_sRules)) {
        return QStringLiteral("--markdown belongs to --rules");
    }
    return unknownRulesText(a_parser.values(s_sRule) + a_parser.values(s_sNoRule));
}

/// The error text for wrong arguments about the repair; empty when they are right.
QString repairErrorOf(const QCommandLineParser& a_parser)
{
    const QStringList paths = a_parser.positionalArguments();
    if (a_parser.isSet(s_sForce) && !a_parser.isSet(s_sRepair)) {
        return QStringLiteral("--force belongs to --repair");
    }
    if (!a_parser.isSet(s_sRepair)) {
        return {};
    }
    if (isStandardStreamName(a_parser.value(s_sRepair))) {
        return QStringLiteral("--repair needs a file, not \"-\" (./- is a file of that name)");
    }
    if (paths.size() != 1) {
        return QStringLiteral("--repair needs one PATH, %1 given").arg(paths.size());
    }
    return QFileInfo(paths.constFirst()).isDir() ? QStringLiteral("--repair needs a file, not a folder")
                                                 : QString();
}

/// The error text for wrong arguments; empty when they are right.
QString errorOf(const QCommandLineParser& a_parser)
{
    const QStringList paths = a_parser.positionalArguments();
    if (paths.isEmpty() || paths.contains(QString())) {
        return QStringLiteral("a PATH is needed");
    }
    for (const QString& sOption : {s_sRepository, s_sRepair, s_sDeployment}) {
        if (a_parser.isSet(sOption) && a_parser.value(sOption).isEmpty()) {
            return QStringLiteral("--%1 needs a name").arg(sOption);
        }
    }
    const QStringList inputs = paths + a_parser.values(s_sDeployment);
    if (inputs.count(QStringLiteral("-")) > 1) {
        return QStringLiteral("standard input (-) can be checked once");
    }
    return repairErrorOf(a_parser);
}

CheckOptions readCheckOptions(const QCommandLineParser& a_parser)
{
    const auto setOf = [&](const QString& a_sOption) {
        const QStringList values = a_parser.values(a_sOption);
        return QSet<QString>(values.cbegin(), values.cend());
    };
    CheckOptions options;
    options.paths = a_parser.positionalArguments();
    options.repository = a_parser.value(s_sRepository);
    options.deployment = a_parser.value(s_sDeployment);
    options.repairFile = a_parser.value(s_sRepair);
    options.force = a_parser.isSet(s_sForce);
    options.classes = setOf(s_sClass);
    options.rules = {setOf(s_sRule), setOf(s_sNoRule)};
    if (a_parser.isSet(s_sSarif)) {
        options.form = CheckForm::Sarif;
    } else if (reportForm(a_parser) == ReportForm::Json) {
        options.form = CheckForm::Json;
    }
    return options;
}

} // namespace

ExitCode check(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("check"),
                         QStringLiteral("PATH|-... [--repository DIR] [--deployment FILE] [--class NAME]...\n"
                                        "                            [--rule ID]... [--no-rule ID]... "
                                        "[--json|--sarif]\n"
                                        "                            [--repair OUT [--force]]\n"
                                        "       simulationtool check --rules [--markdown]"),
                         s_szCheck, s_szCheckExamples);
    addCheckOptions(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    if (const QString sError = formErrorOf(parser.get()); !sError.isEmpty()) {
        return parser.refuse(sError);
    }
    if (parser.get().isSet(s_sRules)) {
        a_output.write(parser.get().isSet(s_sMarkdown) ? rulesPage() : rulesText());
        return ExitCode::Ok;
    }
    if (const QString sError = errorOf(parser.get()); !sError.isEmpty()) {
        return parser.refuse(sError);
    }
    return runCheck(readCheckOptions(parser.get()), a_output);
}

} // namespace SimulationTool

#include "newcommand.h"

#include "console/commandparser.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/outputfile.h"
#include "newpackagecommand.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

const char s_szNew[] = "Writes a template of a document, or makes a signal package of a recording.\n"
                       "\n"
                       "Kinds:\n"
                       "  scenario    A scenario to edit: every element is explained.\n"
                       "  deployment  A deployment to edit: every element is explained.\n"
                       "  package     A signal package, with the spectra and audio of a recording.\n"
                       "\n"
                       "Every kind explains itself, with its options and exit codes:\n"
                       "simulationtool new KIND --help";

const char s_szNewExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool new scenario harbour.sce.exp\n"
    "  simulationtool new deployment harbour.deployment\n"
    "  simulationtool new package packages/SignalPackages/Voice --wave voice.wav\n";

const char s_szScenario[] =
    "Writes the template of a scenario to OUT. Comments explain every element and\n"
    "attribute with its unit, range and default. The example has every form of a\n"
    "frequency and of a position, and sends the default signal packages of a repository.\n"
    "It is complete: check finds nothing, and play plays it. Every template has an id of\n"
    "its own. Change the values, and remove what you do not need.";

const char s_szScenarioExamples[] = "\n"
                                    "Examples:\n"
                                    "  simulationtool new scenario harbour.sce.exp\n"
                                    "  simulationtool check harbour.sce.exp\n"
                                    "  simulationtool schema scenario    (the exact rules)\n"
                                    "\n"
                                    "Exit codes:\n"
                                    "  0  Written.\n"
                                    "  2  Wrong usage, or OUT exists or could not be written.\n";

const char s_szDeployment[] =
    "Writes the template of a deployment to OUT. Comments explain every element and\n"
    "attribute with its unit, range and default. The example has standing and moving\n"
    "stations, and devices with and without a station. It is complete: check finds\n"
    "nothing. Every template has an id of its own. Change the values, and remove what\n"
    "you do not need.";

const char s_szDeploymentExamples[] = "\n"
                                      "Examples:\n"
                                      "  simulationtool new deployment harbour.deployment\n"
                                      "  simulationtool check harbour.deployment\n"
                                      "  simulationtool schema deployment    (the exact rules)\n"
                                      "\n"
                                      "Exit codes:\n"
                                      "  0  Written.\n"
                                      "  2  Wrong usage, or OUT exists or could not be written.\n";

/// A document of which there is a template.
struct Template
{
    const char* kind; ///< also the name of the resource
    const char* description;
    const char* examples;
};

constexpr std::array<Template, 2> s_templates{{
    {"scenario", s_szScenario, s_szScenarioExamples},
    {"deployment", s_szDeployment, s_szDeploymentExamples},
}};

/// The template of that kind, with a new id in the place of its mark.
QByteArray templateText(const char* a_szKind)
{
    QFile file(QStringLiteral(":/Templates/%1.xml").arg(QLatin1String(a_szKind)));
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return QByteArray(text).replace("@ID@", QUuid::createUuid().toByteArray(QUuid::WithoutBraces));
}

ExitCode newDocument(const Template& a_template, const QStringList& a_arguments, Output& a_output)
{
    const QString sForce = QStringLiteral("force");
    CommandParser parser(QStringLiteral("new ") + QLatin1String(a_template.kind),
                         QStringLiteral("OUT [--force]"), a_template.description, a_template.examples);
    parser.get().addPositionalArgument(QStringLiteral("OUT"),
                                       QStringLiteral("The file to write; - is standard output."));
    parser.get().addOption({sForce, QStringLiteral("Replace OUT if it exists.")});
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    const QStringList files = parser.get().positionalArguments();
    if (files.size() != 1 || files.constFirst().isEmpty()) {
        return parser.refuse(QStringLiteral("one OUT is needed, %1 given").arg(files.size()));
    }
    const QString& sOut = files.constFirst();
    const QByteArray text = templateText(a_template.kind);
    if (isStandardStreamName(sOut)) {
        a_output.write(QString::fromUtf8(text));
        return ExitCode::Ok;
    }
    if (QFileInfo::exists(sOut) && !parser.get().isSet(sForce)) {
        complain(QStringLiteral("%1: exists already: give another OUT, or --force to replace it").arg(sOut));
        return ExitCode::Unusable;
    }
    return replaceFile(sOut, text);
}

} // namespace

ExitCode newCommand(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("new"), QStringLiteral("KIND OUT [OPTIONS]"), s_szNew,
                         s_szNewExamples);
    parser.get().addPositionalArgument(QStringLiteral("KIND"),
                                       QStringLiteral("scenario, deployment or package."));
    parser.get().addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The file or folder to make."));
    if (const auto done = parser.parseBefore(a_arguments, a_output)) {
        return *done;
    }
    const QStringList rest = parser.get().positionalArguments();
    if (rest.isEmpty()) {
        return parser.refuse(QStringLiteral("a kind is needed: scenario, deployment or package"));
    }
    // The arguments of a kind begin with its name, as those of a command do.
    if (rest.constFirst() == u"package") {
        return newPackage(rest, a_output);
    }
    const auto* const pTemplate =
        std::find_if(s_templates.begin(), s_templates.end(), [&](const Template& a_template) {
            return rest.constFirst() == QLatin1String(a_template.kind);
        });
    return pTemplate != s_templates.end()
               ? newDocument(*pTemplate, rest, a_output)
               : parser.refuse(QStringLiteral("there is no kind \"%1\": give scenario, deployment or package")
                                   .arg(rest.constFirst()));
}

} // namespace SimulationTool

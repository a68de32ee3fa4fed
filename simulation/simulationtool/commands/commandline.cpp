#include "commandline.h"

#include "checkarguments.h"
#include "console/commandparser.h"
#include "console/output.h"
#include "console/report.h"
#include "controlcommand.h"
#include "convertcommand.h"
#include "democommand.h"
#include "devicecommand.h"
#include "inspectcommand.h"
#include "newcommand.h"
#include "playarguments.h"
#include "repositoryarguments.h"
#include "schemacommand.h"
#include "servicecommand.h"

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

const char s_szOverview[] =
    "Inspects scenarios, deployments and signal packages of the radio-signal simulation,\n"
    "plays scenarios, and runs the network programs of the simulation.\n"
    "\n"
    "Commands:\n"
    "  inspect     Show what a scenario, deployment, package or data file holds.\n"
    "  play        Show where every emitter is and what it sends, step by step.\n"
    "  check       Check documents and folders of them, and repair scenarios.\n"
    "  convert     Write the compact form of a scenario, or a document of one.\n"
    "  repository  Prepare a folder for signal packages, or list its packages.\n"
    "  schema      Write the XML schema of a format.\n"
    "  new         Write a template of a document, or make a package of a recording.\n"
    "  service     Run the service that devices register with and editors control.\n"
    "  device      Run a device: load the scenarios that it receives and play them.\n"
    "  control     Send a scenario or an order to the devices of a service.\n"
    "  demo        Run service, devices and editor in one process with the built-in scenario.\n"
    "\n"
    "Help for a command: simulationtool COMMAND --help";

const char s_szOverviewExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool play                      (the built-in scenario, ten seconds)\n"
    "  simulationtool inspect harbour.sce.exp\n"
    "  simulationtool play harbour.sce.exp --to 60000 --csv harbour.csv\n"
    "  simulationtool check harbour.sce.exp --repository packages\n"
    "  simulationtool convert harbour.sce.exp harbour.compact\n"
    "  simulationtool repository init packages\n"
    "  simulationtool new scenario harbour.sce.exp\n"
    "  simulationtool play --repository packages\n"
    "  simulationtool demo\n"
    "\n"
    "Exit codes:\n"
    "  0  Done, without findings.\n"
    "  1  Done, but with findings: a scenario broke off, a file is truncated or\n"
    "     inconsistent, a package is missing or has a problem.\n"
    "  2  Wrong usage, or something was refused or could not be read or written.\n";

const char s_szInspect[] =
    "Shows the content of a file or package folder. The kind is recognised by the content,\n"
    "otherwise by the ending of the file name.\n"
    "\n"
    "  scenario        header and noise, an overview of emitters and networks, then\n"
    "                  each with all settings; times in ms since scenario start,\n"
    "                  positions in degrees (east and north positive)\n"
    "  compact form    the emitters of a scenario, and unresolved links\n"
    "  deployment      header, stations, and devices with station and position\n"
    "  package folder  descriptor (Signal.xml by itself, too) and data files\n"
    "  .zip            files, and the packages among them; everything is unpacked\n"
    "                  into a temporary folder to check it\n"
    "  .ssf            header, levels; every record is read\n"
    "  .sdf .rdf .wav  header\n"
    "  .pdw            records; with block headers every block is checked\n"
    "\n"
    "The last line is the verdict: whole, truncated, more than the header declares,\n"
    "inconsistent, broken off, or refused with the reason.";

const char s_szInspectExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool inspect harbour.sce.exp\n"
    "  simulationtool inspect :/DefaultData/Default.sce.exp    (the built-in scenario)\n"
    "  simulationtool inspect packages/SignalPackages/TuK-Default/Default\n"
    "  simulationtool inspect --json - < harbour.sce.exp\n"
    "\n"
    "Exit codes:\n"
    "  0  Whole.\n"
    "  1  Truncated, too long or inconsistent, or the document broke off.\n"
    "  2  Wrong usage, or the file was refused or could not be read.\n";

ExitCode inspect(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("inspect"), QStringLiteral("FILE|FOLDER|- [--json]"), s_szInspect,
                         s_szInspectExamples);
    parser.get().addPositionalArgument(QStringLiteral("FILE"),
                                       QStringLiteral("The file or package folder to look into; - is "
                                                      "standard input."));
    addJsonOption(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    const QStringList files = parser.get().positionalArguments();
    return files.size() == 1
               ? runInspect(files.constFirst(), reportForm(parser.get()), a_output)
               : parser.refuse(QStringLiteral("one FILE is needed, %1 given").arg(files.size()));
}

struct Command
{
    const char* name;
    ExitCode (*run)(const QStringList& a_arguments, Output& a_output);
};

constexpr std::array<Command, 11> s_commands{{
    {"inspect", &inspect},
    {"play", &play},
    {"check", &check},
    {"convert", &convert},
    {"repository", &repository},
    {"schema", &schema},
    {"new", &newCommand},
    {"service", &service},
    {"device", &device},
    {"control", &control},
    {"demo", &demo},
}};

} // namespace

ExitCode runCommandLine(const QStringList& a_arguments, Output& a_output)
{
    // Options before the command are the program's, those after it are the command's.
    const QString sVersion = QStringLiteral("version");
    CommandParser parser({}, QStringLiteral("COMMAND [OPTIONS]"), s_szOverview, s_szOverviewExamples);
    parser.get().addOption({{QStringLiteral("v"), sVersion}, QStringLiteral("Show the version.")});
    parser.get().addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("One of those above."));
    if (const auto done = parser.parseBefore(a_arguments, a_output)) {
        return *done;
    }
    if (parser.get().isSet(sVersion)) {
        a_output.write(QStringLiteral("simulationtool " SIMULATIONTOOL_VERSION "\n"));
        return ExitCode::Ok;
    }
    const QStringList rest = parser.get().positionalArguments();
    if (rest.isEmpty()) {
        return parser.refuse(QStringLiteral("a command is needed"));
    }
    const auto* const pCommand =
        std::find_if(s_commands.begin(), s_commands.end(), [&](const Command& a_command) {
            return rest.constFirst() == QLatin1String(a_command.name);
        });
    // The arguments of a command begin with its name, as those of the program do.
    return pCommand != s_commands.end()
               ? pCommand->run(rest, a_output)
               : parser.refuse(QStringLiteral("there is no command \"") + rest.constFirst() + u'"');
}

} // namespace SimulationTool

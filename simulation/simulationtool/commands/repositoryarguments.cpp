#include "repositoryarguments.h"

#include "console/commandparser.h"
#include "console/output.h"
#include "console/report.h"
#include "repositorycommand.h"

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

const char s_szRepository[] =
    "Prepares and lists repositories: folders that hold signal packages, files and\n"
    "icons.\n"
    "\n"
    "Actions:\n"
    "  init  Make a folder a repository, with the default packages.\n"
    "  list  Show the packages of a repository and what is wrong with them.\n"
    "\n"
    "Every action explains itself, with its options and exit codes:\n"
    "simulationtool repository ACTION --help";

const char s_szRepositoryExamples[] = "\n"
                                      "Examples:\n"
                                      "  simulationtool repository init packages\n"
                                      "  simulationtool repository list packages\n";

const char s_szInit[] = "Makes DIR a repository: makes what is missing of it, puts the default packages\n"
                        "there, over what they replace, and the default scenario unless there is one.\n"
                        "In a folder that is a repository already the scratch space of sessions is\n"
                        "emptied; everything else stays.";

const char s_szInitExamples[] = "\n"
                                "Examples:\n"
                                "  simulationtool repository init packages\n"
                                "\n"
                                "Exit codes:\n"
                                "  0  DIR is a repository.\n"
                                "  2  Wrong usage, or something could not be made or written.\n";

const char s_szList[] = "Lists the packages of the repository DIR, or of any folder, at any depth: id,\n"
                        "name, modulation, bandwidth and duration as their descriptors have them, the\n"
                        "data files that are there, and what is wrong. Of every file only the header is\n"
                        "read.";

const char s_szListExamples[] = "\n"
                                "Examples:\n"
                                "  simulationtool repository list packages\n"
                                "\n"
                                "Exit codes:\n"
                                "  0  All packages are in order.\n"
                                "  1  At least one has a problem.\n"
                                "  2  Wrong usage, or DIR cannot be read.\n";

/// One action on a repository.
struct Action
{
    const char* name;
    const char* description;
    const char* examples;
    ExitCode (*run)(const QString& a_sFolder, ReportForm a_eForm, Output& a_output);
};

constexpr std::array<Action, 2> s_actions{{
    {"init", s_szInit, s_szInitExamples, &runRepositoryInit},
    {"list", s_szList, s_szListExamples, &runRepositoryList},
}};

ExitCode runAction(const Action& a_action, const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("repository ") + QLatin1String(a_action.name),
                         QStringLiteral("DIR [--json]"), a_action.description, a_action.examples);
    parser.get().addPositionalArgument(QStringLiteral("DIR"), QStringLiteral("The folder."));
    addJsonOption(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    const QStringList folders = parser.get().positionalArguments();
    if (folders.size() != 1 || folders.constFirst().isEmpty()) {
        return parser.refuse(QStringLiteral("one DIR is needed, %1 given").arg(folders.size()));
    }
    return a_action.run(folders.constFirst(), reportForm(parser.get()), a_output);
}

} // namespace

ExitCode repository(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("repository"), QStringLiteral("ACTION DIR"), s_szRepository,
                         s_szRepositoryExamples);
    parser.get().addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("init or list."));
    parser.get().addPositionalArgument(QStringLiteral("DIR"), QStringLiteral("The folder."));
    if (const auto done = parser.parseBefore(a_arguments, a_output)) {
        return *done;
    }
    const QStringList rest = parser.get().positionalArguments();
    if (rest.isEmpty()) {
        return parser.refuse(QStringLiteral("an action is needed: init or list"));
    }
    const auto* const pAction = std::find_if(s_actions.begin(), s_actions.end(), [&](const Action& a_action) {
        return rest.constFirst() == QLatin1String(a_action.name);
    });
    // The arguments of an action begin with its name, as those of a command do.
    return pAction != s_actions.end()
               ? runAction(*pAction, rest, a_output)
               : parser.refuse(QStringLiteral("there is no action \"") + rest.constFirst() + u'"');
}

} // namespace SimulationTool

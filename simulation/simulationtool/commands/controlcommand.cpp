#include "controlcommand.h"

#include "console/commandparser.h"
#include "console/interruption.h"
#include "console/output.h"
#include "console/report.h"
#include "console/timetext.h"
#include "console/wholenumber.h"
#include "controlactions.h"
#include "describe/documentremarks.h"
#include "programs/servicecontroller.h"

#include <algorithm>

namespace SimulationTool {

namespace {

const char s_szControl[] =
    "Controls the devices of a simulation service: acquires it, sends one order, waits\n"
    "for the answers, and releases it again.\n"
    "\n"
    "Actions:\n"
    "  load FILE    Send a scenario and wait until each device has loaded it or failed.\n"
    "  deploy FILE  Send a deployment, and report where it places each device.\n"
    "  start [TIME] Start the scenario, at that scenario time. Default: the time of\n"
    "               the pause, or else 0.\n"
    "  pause [TIME] Show that scenario time from now on. Default: the present one.\n"
    "  stop         Stop the scenario.\n"
    "  unload       Unload the scenario from the devices.\n"
    "  devices      List the devices that are registered.\n"
    "  status       Show the scenario, its time, and what each device reports.\n"
    "  watch        Show the same, and every change with its time, until interrupted\n"
    "               (Ctrl-C).\n"
    "\n"
    "A TIME is a number of milliseconds, or has a unit: 1500, 1500ms, 1.5s, 2min, 1h.\n"
    "\n"
    "The last three are read-only: they do not acquire the service, so its controller keeps\n"
    "it. watch requests the state once a second and shows the latest change. A service of\n"
    "another maker may report states to its controller only; they are \"unknown\" then.\n"
    "\n"
    "Devices of this program confirm start and deploy, and report after load which packages\n"
    "they had to replace. A device without such an answer within 2 s \"did not confirm\": it\n"
    "may have followed the order, but control cannot know. The other orders are not\n"
    "confirmed; status shows their effect.\n"
    "\n"
    "An invalid file is refused before anything is sent. When its reader skips or replaces\n"
    "anything, one line on standard error counts the errors and warnings; --strict refuses\n"
    "such a file. A started scenario continues after the command has ended.";

const char s_szControlExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool control devices --server sim.example:57400\n"
    "  simulationtool control load harbour.sce.exp && simulationtool control start\n"
    "  simulationtool control load :/DefaultData/Default.sce.exp    (the built-in scenario)\n"
    "  simulationtool control watch --json    (one JSON object per line)\n"
    "\n"
    "Exit codes:\n"
    "  0  Done; of load, start and deploy: by every device. A watch was interrupted.\n"
    "  1  An order was sent and no device is registered, or one failed, did not confirm\n"
    "     the order, took longer than the timeout, had to replace packages, or has no\n"
    "     place in the deployment. With --strict: nothing was sent, because the file has\n"
    "     errors or warnings.\n"
    "  2  Wrong usage, the file was refused, nothing can be paused, the connection was\n"
    "     lost, or nobody answered within the timeout: then it is not known whether the\n"
    "     order was received.\n";

constexpr std::uint32_t s_uiDefaultTimeout = 10;    ///< s
constexpr std::uint32_t s_uiMaxTimeout = 24 * 3600; ///< s

const QString s_sTimeout = QStringLiteral("timeout");

ExitCode runControl(const ControlAction& a_action, const OrderArgument& a_argument,
                    const ServerAddress& a_server, std::chrono::seconds a_timeout, Report& a_report)
{
    ServiceController controller(a_timeout);
    ExitCode eCode = ExitCode::Unusable;
    if (controller.connectToService(a_server)) {
        if (a_action.acquires) {
            controller.acquire();
        }
        // A new controller receives the states and the run of the scenario before the
        // answer that synchronize() waits for.
        if (controller.synchronize()) {
            eCode = a_action.run(controller, a_argument, a_report);
        }
    }
    if (!controller.problem().isEmpty()) {
        complain(QStringLiteral("control: ") + controller.problem());
        return ExitCode::Unusable;
    }
    controller.leave();
    if (eCode != ExitCode::Unusable) {
        a_report.finish();
    }
    return eCode;
}

/// Reads the action's argument. Another code than Ok has an error text for wrong usage. It
/// has none when a file was refused; that error is reported already.
ExitCode readArgument(const ControlAction& a_action, const QStringList& a_rest, bool a_bStrict,
                      OrderArgument& a_argument, QString& a_sReason)
{
    using Takes = ControlAction::Takes;
    const bool bFile = a_action.takes == Takes::Scenario || a_action.takes == Takes::Deployment;
    const qsizetype iMost = a_action.takes == Takes::Nothing ? 0 : 1;
    if (a_rest.size() > iMost || (bFile && a_rest.isEmpty())) {
        a_sReason =
            QStringLiteral("%1 takes %2, %3 given")
                .arg(QLatin1String(a_action.name),
                     bFile ? QStringLiteral("one FILE")
                           : (iMost == 1 ? QStringLiteral("at most one TIME") : QStringLiteral("nothing")),
                     QString::number(a_rest.size()));
        return ExitCode::Unusable;
    }
    if (a_bStrict && !bFile) {
        a_sReason = QStringLiteral("--strict belongs to load and deploy");
        return ExitCode::Unusable;
    }
    if (bFile) {
        a_argument.file = a_rest.constFirst();
        return readOrderFile(a_action.takes, a_argument, a_bStrict);
    }
    if (!a_rest.isEmpty()) {
        a_argument.time = timeOf(a_rest.constFirst(), QLatin1String(a_action.name), 0, a_sReason);
        return a_argument.time ? ExitCode::Ok : ExitCode::Unusable;
    }
    return ExitCode::Ok;
}

std::optional<std::chrono::seconds> readTimeout(const QCommandLineParser& a_parser, QString& a_sReason)
{
    if (!a_parser.isSet(s_sTimeout)) {
        return std::chrono::seconds(s_uiDefaultTimeout);
    }
    const auto seconds =
        wholeNumber(a_parser.value(s_sTimeout),
                    {QStringLiteral("--timeout"), " of seconds", 1, s_uiMaxTimeout}, a_sReason);
    return seconds ? std::make_optional(std::chrono::seconds(*seconds)) : std::nullopt;
}

} // namespace

ExitCode control(const QStringList& a_arguments, Output& a_output)
{
    ignoreClosedPipes();
    CommandParser parser(
        QStringLiteral("control"),
        QStringLiteral("ACTION [FILE|TIME] [--server HOST:PORT] [--timeout SECONDS] [--strict] [--json]"),
        s_szControl, s_szControlExamples);
    parser.get().addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("What to do."));
    addServerOption(parser.get());
    parser.get().addOption(
        {s_sTimeout, QStringLiteral("Give up after so long without an answer or any progress. Default: 10."),
         QStringLiteral("SECONDS")});
    addStrictOption(parser.get());
    addJsonOption(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    QStringList rest = parser.get().positionalArguments();
    if (rest.isEmpty()) {
        return parser.refuse(QStringLiteral("an action is needed"));
    }
    const QString sAction = rest.takeFirst();
    const auto* const pAction =
        std::find_if(s_controlActions.begin(), s_controlActions.end(),
                     [&](const ControlAction& a_action) { return sAction == QLatin1String(a_action.name); });
    if (pAction == s_controlActions.end()) {
        return parser.refuse(QStringLiteral("there is no action \"") + sAction + u'"');
    }
    QString sReason;
    const auto server = readServerOption(parser.get(), sReason);
    const auto timeout = server ? readTimeout(parser.get(), sReason) : std::nullopt;
    OrderArgument argument;
    const ExitCode eRead = timeout ? readArgument(*pAction, rest, isStrict(parser.get()), argument, sReason)
                                   : ExitCode::Unusable;
    if (eRead != ExitCode::Ok) {
        return sReason.isEmpty() ? eRead : parser.refuse(sReason);
    }
    Report report(a_output, reportForm(parser.get()));
    return runControl(*pAction, argument, *server, *timeout, report);
}

} // namespace SimulationTool

#include "democommand.h"

#include "console/commandparser.h"
#include "console/interruption.h"
#include "console/output.h"
#include "console/report.h"
#include "programs/demoroad.h"

#include <QElapsedTimer>

namespace SimulationTool {

namespace {

const char s_szDemo[] = "Runs a service and two devices in this process, connected through ports of this\n"
                        "machine that the system chooses. An editor sends them a deployment and the\n"
                        "built-in scenario, and they play ten seconds of it. The demo sets the clock of the\n"
                        "devices, so it needs no real time.";

const char s_szDemoExamples[] = "\n"
                                "Exit codes:\n"
                                "  0  Every step was done.\n"
                                "  1  A step failed; standard error names it.\n"
                                "  2  Wrong usage, or the output could not be written.\n";

struct RoadStep
{
    const char* name;
    bool (DemoRoad::*run)();
};

constexpr RoadStep s_steps[] = {
    {"make a repository", &DemoRoad::makeRepository},
    {"start the service", &DemoRoad::startService},
    {"start the devices", &DemoRoad::startDevices},
    {"acquire the service", &DemoRoad::acquire},
    {"deploy the devices", &DemoRoad::deploy},
    {"load the scenario", &DemoRoad::loadScenario},
    {"play it", &DemoRoad::play},
    {"pause and stop it", &DemoRoad::pauseAndStop},
    {"unload it", &DemoRoad::unload},
};

ExitCode runDemo(ReportForm a_eForm, Output& a_output)
{
    QElapsedTimer timer;
    timer.start();
    Report report(a_output, a_eForm);
    ExitCode eCode = ExitCode::Ok;
    DemoRoad road(report);
    for (const RoadStep& step : s_steps) {
        const bool bDone = (road.*step.run)();
        report.record("steps",
                      {{QStringLiteral("name"), QLatin1String(step.name)}, {QStringLiteral("done"), bDone}});
        if (!a_output.finish() || isInterrupted()) {
            return ExitCode::Unusable;
        }
        if (!bDone) {
            complain(QStringLiteral("demo: could not %1 %2").arg(QLatin1String(step.name), road.problem()));
            eCode = ExitCode::Findings;
            break;
        }
    }
    report.value("elapsed_ms", timer.elapsed());
    if (eCode == ExitCode::Ok) {
        report.line(QStringLiteral("All %1 steps of the demo done in %2 ms")
                        .arg(std::size(s_steps))
                        .arg(timer.elapsed()));
    }
    report.finish();
    return eCode;
}

} // namespace

ExitCode demo(const QStringList& a_arguments, Output& a_output)
{
    ignoreClosedPipes();
    CommandParser parser(QStringLiteral("demo"), QStringLiteral("[--json]"), s_szDemo, s_szDemoExamples);
    addJsonOption(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    return parser.get().positionalArguments().isEmpty() ? runDemo(reportForm(parser.get()), a_output)
                                                        : parser.refuse(QStringLiteral("takes no arguments"));
}

} // namespace SimulationTool

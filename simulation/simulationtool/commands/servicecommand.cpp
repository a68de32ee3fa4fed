#include "servicecommand.h"

#include "console/commandparser.h"
#include "console/interruptibleloop.h"
#include "console/interruption.h"
#include "console/output.h"
#include "console/wholenumber.h"
#include "programs/serveraddress.h"
#include "programs/simulationservice.h"

#include "simulationdata/simulationlimits.h"
#include "simulationdata/simulationsystemconfiguration.h"

#include <QHostAddress>

#include <chrono>

namespace SimulationTool {

namespace {

const char s_szService[] =
    "Runs the simulation service: devices register with it, and the program that\n"
    "acquired it last has its scenarios, deployments and orders passed on to all of\n"
    "them and is sent their states. A device that registers late is sent the deployment,\n"
    "the scenario and the start that hold. What happens is logged on standard error,\n"
    "each line with its time.\n"
    "\n"
    "A program that leaves a command unfinished, or does not read its pending data, for the\n"
    "time of --timeout is dropped. When the unfinished and pending commands of all programs\n"
    "exceed 96 MiB together, the program with the most of them is dropped.\n"
    "\n"
    "The service ends when it is interrupted (SIGINT, SIGTERM).\n"
    "\n"
    "There is no authentication: every program that reaches the port can control the\n"
    "devices. Use the service in a trusted network only, or limit it to this machine with\n"
    "--address 127.0.0.1.";

const char s_szServiceExamples[] = "\n"
                                   "Examples:\n"
                                   "  simulationtool service\n"
                                   "  simulationtool service --port 0 --address 127.0.0.1\n"
                                   "\n"
                                   "Exit codes:\n"
                                   "  0  It was interrupted.\n"
                                   "  2  Wrong usage, or it cannot listen there.\n";

const QString s_sPort = QStringLiteral("port");
const QString s_sAddress = QStringLiteral("address");
const QString s_sTimeout = QStringLiteral("timeout");

constexpr std::uint32_t s_uiMaxTimeout = 24 * 3600; ///< s

ExitCode runService(const QHostAddress& a_address, std::uint16_t a_uiPort, std::chrono::seconds a_timeout,
                    Output& a_output)
{
    using Simulation::Limits;
    // Refuses compressed documents that would exceed the devices' document limit when
    // decompressed.
    Limits::setValue(Limits::InflatedBytes, Limits::value(Limits::DocumentBytes));
    InterruptibleLoop loop;
    SimulationService simulationService(a_timeout);
    QObject::connect(&simulationService, &SimulationService::logged, &writeLog);
    if (!simulationService.listen(a_address, a_uiPort)) {
        complain(QStringLiteral("service: cannot listen on %1: %2")
                     .arg(addressText(a_address, a_uiPort), simulationService.errorString()));
        return ExitCode::Unusable;
    }
    // The process that started the service may wait for this line.
    a_output.write(QStringLiteral("Listening on port %1\n").arg(simulationService.port()));
    if (!a_output.finish()) {
        return ExitCode::Unusable;
    }
    loop.run();
    acceptInterruption();
    writeLog(QStringLiteral("service ends"));
    return ExitCode::Ok;
}

} // namespace

ExitCode service(const QStringList& a_arguments, Output& a_output)
{
    ignoreClosedPipes();
    CommandParser parser(QStringLiteral("service"),
                         QStringLiteral("[--port N] [--address ADDRESS] [--timeout SECONDS]"), s_szService,
                         s_szServiceExamples);
    parser.get().addOption(
        {s_sPort,
         QStringLiteral("TCP port to listen on; 0 = chosen by the system. Default: from the "
                        "settings of this machine, otherwise 57400."),
         QStringLiteral("N")});
    parser.get().addOption({s_sAddress,
                            QStringLiteral("Listen on this address of the machine only. Default: on all."),
                            QStringLiteral("ADDRESS")});
    parser.get().addOption({s_sTimeout,
                            QStringLiteral("Drop a program that makes no progress for so long. Default: %1.")
                                .arg(SimulationService::s_timeout.count()),
                            QStringLiteral("SECONDS")});
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    if (!parser.get().positionalArguments().isEmpty()) {
        return parser.refuse(QStringLiteral("takes options only"));
    }
    Simulation::SimulationSystemConfiguration configuration;
    configuration.loadConfiguation();
    std::uint16_t uiPort = configuration.simulationServicePort();
    if (parser.get().isSet(s_sPort)) {
        QString sReason;
        const auto port =
            wholeNumber(parser.get().value(s_sPort), {QStringLiteral("--port"), "", 0, UINT16_MAX}, sReason);
        if (!port) {
            return parser.refuse(sReason);
        }
        uiPort = static_cast<std::uint16_t>(*port);
    }
    std::chrono::seconds timeout = SimulationService::s_timeout;
    if (parser.get().isSet(s_sTimeout)) {
        QString sReason;
        const auto seconds =
            wholeNumber(parser.get().value(s_sTimeout),
                        {QStringLiteral("--timeout"), " of seconds", 1, s_uiMaxTimeout}, sReason);
        if (!seconds) {
            return parser.refuse(sReason);
        }
        timeout = std::chrono::seconds(*seconds);
    }
    const QString sAddress = parser.get().value(s_sAddress);
    const QHostAddress address =
        parser.get().isSet(s_sAddress) ? QHostAddress(sAddress) : QHostAddress(QHostAddress::Any);
    if (address.isNull()) {
        return parser.refuse(QStringLiteral("--address needs an IP address, not \"") + sAddress + u'"');
    }
    return runService(address, uiPort, timeout, a_output);
}

} // namespace SimulationTool

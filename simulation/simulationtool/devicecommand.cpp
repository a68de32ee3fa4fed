#include "devicecommand.h"

#include "commandparser.h"
#include "deviceplay.h"
#include "interruptibleloop.h"
#include "interruption.h"
#include "output.h"
#include "repositorypackages.h"
#include "serveraddress.h"
#include "simulationdevice.h"
#include "terminaltext.h"
#include "wholenumber.h"

#include "simulationdata/simulationsystemconfiguration.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace SimulationTool {

namespace {

const char s_szDevice[] =
    "Runs a simulation device: registers with the simulation service, loads the\n"
    "scenarios that come from there, reports how far it is (loading, loaded, failed),\n"
    "and plays them when they are started. The rows of each step are those of play,\n"
    "levels included; what else happens is told on standard error.\n"
    "\n"
    "A lost connection is taken up again at once. While no service listens, the device\n"
    "tries again at least every 2 s. A scenario that runs goes on.\n"
    "The device ends when it is interrupted (SIGINT, SIGTERM).";

const char s_szDeviceExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool device --id rx-1\n"
    "  simulationtool device --id rx-2 --name \"North tower\" --server sim.example:57400 \\\n"
    "    --repository packages --step 100\n"
    "\n"
    "Exit codes:\n"
    "  0  It was interrupted.\n"
    "  2  Wrong usage, or something could not be read or written.\n";

constexpr std::uint32_t s_uiDefaultStep = 1000; ///< ms
constexpr qsizetype s_iMaxName = 255;           ///< characters

const QString s_sId = QStringLiteral("id");
const QString s_sName = QStringLiteral("name");
const QString s_sRepository = QStringLiteral("repository");
const QString s_sStep = QStringLiteral("step");

struct DeviceOptions
{
    QString id;
    QString name;
    ServerAddress server;
    QString repository;
    std::uint32_t step = s_uiDefaultStep; ///< ms
};

/// Where the packages are if nobody says: in the configured repository, if there
/// is one.
QString configuredStore()
{
    Simulation::SimulationSystemConfiguration configuration;
    configuration.loadConfiguation();
    QString sStore = configuration.signalPackageStoreDir();
    sStore.replace(u'\\', u'/');
    return QFileInfo(sStore).isDir() ? sStore : QString();
}

bool openPackages(RepositoryPackages& a_packages, const QString& a_sRepository)
{
    const QString sRepository = a_sRepository.isEmpty() ? configuredStore() : a_sRepository;
    if (!sRepository.isEmpty()) {
        return a_packages.open(sRepository, QString());
    }
    complain(QStringLiteral("device: no repository is configured: every package is the default one"));
    const QTemporaryDir empty;
    return empty.isValid() && a_packages.open(empty.path(), QString());
}

ExitCode runDevice(const DeviceOptions& a_options, Output& a_output)
{
    InterruptibleLoop loop;
    RepositoryPackages packages;
    if (!openPackages(packages, a_options.repository)) {
        return ExitCode::Unusable;
    }
    SimulationDevice simulationDevice(localDevice(a_options.id, a_options.name), packages, a_options.step);
    DevicePlay devicePlay(simulationDevice, &packages, a_output);
    const auto endUnless = [&](bool a_bWritten) {
        if (!a_bWritten) {
            loop.quit();
        }
    };
    QObject::connect(&simulationDevice, &SimulationDevice::told, [&](const QString& a_sLine) {
        complain(a_options.id + QStringLiteral(": ") + a_sLine);
    });
    QObject::connect(&simulationDevice, &SimulationDevice::playBegins,
                     [&] { endUnless(devicePlay.begin()); });
    QObject::connect(&simulationDevice, &SimulationDevice::stepDue,
                     [&](quint32 a_uiTime) { endUnless(devicePlay.add(a_uiTime)); });
    simulationDevice.connectToService(a_options.server);
    loop.run();
    if (!a_output.isOk()) {
        return ExitCode::Unusable;
    }
    acceptInterruption();
    complain(a_options.id + QStringLiteral(": device ends"));
    return ExitCode::Ok;
}

/// Why a text cannot identify a device: it must come back from the service as it
/// was sent, and be told from others in a log.
QString nameProblem(const QString& a_sOption, const QString& a_sText)
{
    if (a_sText.trimmed().isEmpty()) {
        return QStringLiteral("--%1 is needed, and not empty").arg(a_sOption);
    }
    return a_sText.size() <= s_iMaxName && a_sText == a_sText.trimmed() && a_sText == terminalText(a_sText)
               ? QString()
               : QStringLiteral("--%1 needs at most %2 characters, all printable, no blanks at its ends")
                     .arg(a_sOption, QString::number(s_iMaxName));
}

std::optional<DeviceOptions> readDeviceOptions(const QCommandLineParser& a_parser, QString& a_sReason)
{
    DeviceOptions options;
    options.id = a_parser.value(s_sId);
    options.name = a_parser.value(s_sName);
    options.repository = a_parser.value(s_sRepository);
    a_sReason = nameProblem(s_sId, options.id);
    if (a_sReason.isEmpty() && a_parser.isSet(s_sName)) {
        a_sReason = nameProblem(s_sName, options.name);
    }
    if (a_sReason.isEmpty() && a_parser.isSet(s_sRepository) && options.repository.isEmpty()) {
        a_sReason = QStringLiteral("--repository needs a name");
    }
    if (a_sReason.isEmpty() && !a_parser.positionalArguments().isEmpty()) {
        a_sReason = QStringLiteral("there are no arguments but options");
    }
    if (!a_sReason.isEmpty()) {
        return std::nullopt;
    }
    if (a_parser.isSet(s_sStep)) {
        const auto step = wholeNumber(a_parser.value(s_sStep),
                                      {QStringLiteral("--step"), " of milliseconds", 1}, a_sReason);
        if (!step) {
            return std::nullopt;
        }
        options.step = *step;
    }
    const auto server = readServerOption(a_parser, a_sReason);
    if (!server) {
        return std::nullopt;
    }
    options.server = *server;
    return options;
}

} // namespace

ExitCode device(const QStringList& a_arguments, Output& a_output)
{
    ignoreClosedPipes();
    CommandParser parser(QStringLiteral("device"),
                         QStringLiteral("--id ID [--name NAME] [--server HOST:PORT]\n"
                                        "                             [--repository DIR] [--step MS]"),
                         s_szDevice, s_szDeviceExamples);
    parser.get().addOption(
        {s_sId, QStringLiteral("The id that the device registers by."), QStringLiteral("ID")});
    parser.get().addOption(
        {s_sName, QStringLiteral("Its name for people. Default: its id."), QStringLiteral("NAME")});
    addServerOption(parser.get());
    parser.get().addOption(
        {s_sRepository,
         QStringLiteral("Read the signal packages from this repository. Default: the one that "
                        "the settings of this machine name."),
         QStringLiteral("DIR")});
    parser.get().addOption(
        {s_sStep, QStringLiteral("Time between two steps in ms. Default: 1000."), QStringLiteral("MS")});
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    QString sReason;
    const auto options = readDeviceOptions(parser.get(), sReason);
    return options ? runDevice(*options, a_output) : parser.refuse(sReason);
}

} // namespace SimulationTool

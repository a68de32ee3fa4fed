#include "devicecommand.h"

#include "console/commandparser.h"
#include "console/interruptibleloop.h"
#include "console/interruption.h"
#include "console/output.h"
#include "console/terminaltext.h"
#include "console/timetext.h"
#include "console/valuetexts.h"
#include "programs/deviceplay.h"
#include "programs/repositorypackages.h"
#include "programs/serveraddress.h"
#include "programs/simulationdevice.h"

#include "simulationdata/simulationsystemconfiguration.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>

namespace SimulationTool {

namespace {

const char s_szDevice[] =
    "Runs a simulation device: registers with the simulation service, loads the\n"
    "scenarios that the service sends, reports its state (loading, loaded, failed), and\n"
    "plays them when they are started. It writes the rows of \"play\" for each step, levels\n"
    "included, and logs events with their time to standard error.\n"
    "\n"
    "A deployment with a device of this id, or else of this name, sets the station and the\n"
    "position (at scenario time 0). The device then registers with them.\n"
    "\n"
    "The device reconnects at once after a lost connection. While no service listens, it\n"
    "tries at least every 2 s. A running scenario continues meanwhile.\n"
    "The device ends when it is interrupted (SIGINT, SIGTERM).";

const char s_szDeviceExamples[] =
    "\n"
    "Examples:\n"
    "  simulationtool device --id rx-1\n"
    "  simulationtool device --id df-1 --type \"Direction finder\" --station pier \\\n"
    "    --longitude 9.95 --latitude 53.54\n"
    "  simulationtool device --id rx-2 --name \"North tower\" --server sim.example:57400 \\\n"
    "    --repository packages --step 100\n"
    "\n"
    "Exit codes:\n"
    "  0  It was interrupted.\n"
    "  1  It was interrupted, but packages of its repository could not be copied; the\n"
    "     log names the reason.\n"
    "  2  Wrong usage, or something could not be read or written.\n";

constexpr std::uint32_t s_uiDefaultStep = 1000; ///< ms
constexpr qsizetype s_iMaxName = 255;           ///< characters
constexpr double s_dMaxLongitude = 180.0;       ///< degrees
constexpr double s_dMaxLatitude = 90.0;         ///< degrees

const QString s_sId = QStringLiteral("id");
const QString s_sName = QStringLiteral("name");
const QString s_sStation = QStringLiteral("station");
const QString s_sType = QStringLiteral("type");
const QString s_sLongitude = QStringLiteral("longitude");
const QString s_sLatitude = QStringLiteral("latitude");

struct DeviceOptions
{
    Simulation::SimulationDeviceConfiguration record;
    ServerAddress server;
    QString repository;
    std::uint32_t step = s_uiDefaultStep; ///< ms
};

/// The default repository: the configured one, if its folder exists; otherwise empty.
QString configuredStore()
{
    Simulation::SimulationSystemConfiguration configuration;
    configuration.loadConfiguation();
    QString sStore = configuration.signalPackageStoreDir();
    sStore.replace(u'\\', u'/'); // the library separates the last folder by a backslash
    return QFileInfo(sStore).isDir() ? sStore : QString();
}

/// Opens the repository. Without a repository, opens an empty folder, so that only the
/// default package is available.
bool openPackages(RepositoryPackages& a_packages, const QString& a_sRepository)
{
    if (!a_sRepository.isEmpty()) {
        return a_packages.open(a_sRepository, QString());
    }
    const QTemporaryDir empty;
    return empty.isValid() && a_packages.open(empty.path(), QString());
}

ExitCode runDevice(const DeviceOptions& a_options, Output& a_output)
{
    InterruptibleLoop loop;
    RepositoryPackages packages;
    const QString sId = a_options.record.id();
    const auto log = [&](const QString& a_sLine) { writeLog(sId + QStringLiteral(": ") + a_sLine); };
    packages.setLog(log);
    const QString sRepository = a_options.repository.isEmpty() ? configuredStore() : a_options.repository;
    if (!openPackages(packages, sRepository)) {
        return ExitCode::Unusable;
    }
    SimulationDevice simulationDevice(a_options.record, packages, a_options.step);
    if (sRepository.isEmpty()) {
        log(QStringLiteral("no repository is configured: the default package replaces all others"));
        simulationDevice.setPackageRemark(QStringLiteral("no repository is configured"));
    }
    if (!packages.isComplete()) {
        // A device with missing packages still runs.
        simulationDevice.setPackageError(QStringLiteral("some packages could not be copied to the cache"));
    }
    DevicePlay devicePlay(simulationDevice, &packages, a_output);
    const auto endUnless = [&](bool a_bWritten) {
        if (!a_bWritten) {
            loop.quit();
        }
    };
    QObject::connect(&simulationDevice, &SimulationDevice::logged, log);
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
    log(QStringLiteral("device ends"));
    return packages.isComplete() ? ExitCode::Ok : ExitCode::Findings;
}

/// The error text for an option whose text cannot identify a device; empty for a
/// suitable text. The service must return the text unchanged, and different texts must
/// look different in a log.
QString nameError(const QString& a_sOption, const QString& a_sText)
{
    if (a_sText.trimmed().isEmpty()) {
        return QStringLiteral("--%1 must be given and must not be empty").arg(a_sOption);
    }
    return a_sText.size() <= s_iMaxName && a_sText == a_sText.trimmed() && a_sText == terminalText(a_sText)
               ? QString()
               : QStringLiteral("--%1 needs at most %2 characters, all printable, no blanks at its ends")
                     .arg(a_sOption, QString::number(s_iMaxName));
}

/// Reads degrees in [-a_dMax, a_dMax]; without the option `a_dDegrees` stays unchanged.
/// False, with an error text, for any other text.
bool readDegrees(const QCommandLineParser& a_parser, const QString& a_sOption, double a_dMax,
                 double& a_dDegrees, QString& a_sReason)
{
    if (!a_parser.isSet(a_sOption)) {
        return true;
    }
    bool bNumber = false;
    const double dDegrees = a_parser.value(a_sOption).toDouble(&bNumber);
    if (!bNumber || !(std::abs(dDegrees) <= a_dMax)) {
        a_sReason = QStringLiteral("--%1 needs a number of degrees from %2 to %3, not \"%4\"")
                        .arg(a_sOption, plainNumber(-a_dMax), plainNumber(a_dMax), a_parser.value(a_sOption));
        return false;
    }
    a_dDegrees = dDegrees;
    return true;
}

/// Reads the record that the device registers with. False, with an error text, when an
/// option is wrong.
bool readRecord(const QCommandLineParser& a_parser, Simulation::SimulationDeviceConfiguration& a_record,
                QString& a_sReason)
{
    a_sReason = nameError(s_sId, a_parser.value(s_sId));
    for (const QString& sOption : {s_sName, s_sStation, s_sType}) {
        if (a_sReason.isEmpty() && a_parser.isSet(sOption)) {
            a_sReason = nameError(sOption, a_parser.value(sOption));
        }
    }
    a_record = localDevice(a_parser.value(s_sId), a_parser.value(s_sName));
    double dLongitude = a_record.positionLongitude();
    double dLatitude = a_record.positionLatitude();
    if (!a_sReason.isEmpty() ||
        !readDegrees(a_parser, s_sLongitude, s_dMaxLongitude, dLongitude, a_sReason) ||
        !readDegrees(a_parser, s_sLatitude, s_dMaxLatitude, dLatitude, a_sReason)) {
        return false;
    }
    a_record.setPositionLongitude(dLongitude);
    a_record.setPositionLatitude(dLatitude);
    a_record.setStationId(a_parser.value(s_sStation));
    a_record.setStationName(a_parser.value(s_sStation)); // the station's id is also its name
    if (a_parser.isSet(s_sType)) {
        a_record.setDeviceType(a_parser.value(s_sType));
    }
    return true;
}

std::optional<DeviceOptions> readDeviceOptions(const QCommandLineParser& a_parser, QString& a_sReason)
{
    DeviceOptions options;
    options.repository = a_parser.value(s_sRepository);
    if (!readRecord(a_parser, options.record, a_sReason)) {
        return std::nullopt;
    }
    if (a_parser.isSet(s_sRepository) && options.repository.isEmpty()) {
        a_sReason = QStringLiteral("--repository needs a name");
    }
    if (a_sReason.isEmpty() && !a_parser.positionalArguments().isEmpty()) {
        a_sReason = QStringLiteral("takes options only");
    }
    if (!a_sReason.isEmpty()) {
        return std::nullopt;
    }
    if (a_parser.isSet(s_sStep)) {
        const auto step = timeOf(a_parser.value(s_sStep), QStringLiteral("--step"), 1, a_sReason);
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

/// Adds the options that describe the device itself.
void addRecordOptions(QCommandLineParser& a_parser)
{
    a_parser.addOptions({
        {s_sId, QStringLiteral("The id that the device registers by."), QStringLiteral("ID")},
        {s_sName, QStringLiteral("Its name for people. Default: its id."), QStringLiteral("NAME")},
        {s_sType, QStringLiteral("The kind of device. Default: simulationtool."), QStringLiteral("TYPE")},
        {s_sStation, QStringLiteral("The id of its station. Default: none."), QStringLiteral("STATION")},
        {s_sLongitude, QStringLiteral("Its longitude in degrees, east positive. Default: 0."),
         QStringLiteral("DEGREES")},
        {s_sLatitude, QStringLiteral("Its latitude in degrees, north positive. Default: 0."),
         QStringLiteral("DEGREES")},
    });
}

} // namespace

ExitCode device(const QStringList& a_arguments, Output& a_output)
{
    ignoreClosedPipes();
    CommandParser parser(
        QStringLiteral("device"),
        QStringLiteral("--id ID [--name NAME] [--type TYPE] [--station STATION]\n"
                       "                             [--longitude DEGREES] [--latitude DEGREES]\n"
                       "                             [--server HOST:PORT] [--repository DIR]\n"
                       "                             [--step TIME]"),
        s_szDevice, s_szDeviceExamples);
    addRecordOptions(parser.get());
    addServerOption(parser.get());
    parser.get().addOption(
        {s_sRepository,
         QStringLiteral("Read the signal packages from this repository. Default: the one that "
                        "the settings of this machine name."),
         QStringLiteral("DIR")});
    parser.get().addOption({s_sStep,
                            QStringLiteral("Time between two steps, such as 500, 500ms or 2s. Default: 1s."),
                            QStringLiteral("TIME")});
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    QString sReason;
    const auto options = readDeviceOptions(parser.get(), sReason);
    return options ? runDevice(*options, a_output) : parser.refuse(sReason);
}

} // namespace SimulationTool

#include "monitorwindow.h"
#include "windowpicture.h"

#include <simulationdata/simulationsystemconfiguration.h>

#include <kpbase/errorhandler.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QPalette>
#include <QStyleFactory>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

// Exit codes
constexpr int s_iWrongUsage = 2;
constexpr int s_iNoDisplay = 2;

struct Server
{
    QString host;
    std::uint16_t port = 0;
};

/// The server that the text names. A null text means the server in this machine's
/// settings. No value for an invalid text.
std::optional<Server> serverOf(const QString& a_sText)
{
    if (a_sText.isNull()) {
        Simulation::SimulationSystemConfiguration configuration;
        configuration.loadConfiguation();
        return Server{configuration.simulationServerAddress(), configuration.simulationServicePort()};
    }
    // Splits at the last colon, because IPv6 addresses contain colons.
    const qsizetype iColon = a_sText.lastIndexOf(u':');
    Server server{a_sText.left(iColon), a_sText.mid(iColon + 1).toUShort()};
    if (server.host.startsWith(u'[') && server.host.endsWith(u']')) {
        server.host = server.host.mid(1, server.host.size() - 2);
    }
    return iColon > 0 && server.port != 0 ? std::make_optional(server) : std::nullopt;
}

void setDark()
{
    const QColor ground(45, 45, 48);
    const QColor text(225, 225, 225);
    const QColor grey(128, 128, 128);
    QPalette palette(QColor(60, 60, 64), ground);
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::AlternateBase, QColor(38, 38, 41));
    palette.setColor(QPalette::ToolTipBase, ground);
    palette.setColor(QPalette::Highlight, QColor(60, 130, 220));
    for (const auto eRole :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(eRole, text);
        palette.setColor(QPalette::Disabled, eRole, grey);
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(palette);
}

void addOptions(QCommandLineParser& a_parser)
{
    a_parser.setApplicationDescription(
        QStringLiteral("Shows the devices that are registered with a simulation service.\n\n"
                       "The monitor is read-only by default and shows no states of devices. With --states\n"
                       "it acquires the service, which sends every change of a state to the program that\n"
                       "controls it. An editor that controlled the service before cannot give orders\n"
                       "then. \"simulationtool control watch\" shows the states without acquiring the\n"
                       "service."));
    a_parser.addHelpOption();
    a_parser.addOptions({
        {QStringLiteral("server"),
         QStringLiteral("Address of the service. Default: from the settings of this machine."),
         QStringLiteral("HOST:PORT")},
        {QStringLiteral("states"), QStringLiteral("Acquire the service to show the states.")},
        {QStringLiteral("dark"), QStringLiteral("Light texts on a dark ground.")},
        {QStringLiteral("picture"),
         QStringLiteral("Write a picture of the window into this file (PNG) when the devices are listed or "
                        "no service has answered for a while, and exit."),
         QStringLiteral("FILE")},
    });
}

/// Writes the help if an argument requests it. Called before the GUI application
/// exists, because a GUI application needs a display.
bool showHelp(int a_iArguments, char* a_arguments[])
{
    const QCoreApplication application(a_iArguments, a_arguments);
    const QStringList arguments = QCoreApplication::arguments();
    const QStringList wanted{QStringLiteral("-h"), QStringLiteral("--help"), QStringLiteral("--help-all")};
    const bool bHelp = std::any_of(wanted.cbegin(), wanted.cend(),
                                   [&](const QString& a_sOption) { return arguments.contains(a_sOption); });
    if (bHelp) {
        QCommandLineParser parser;
        addOptions(parser);
        QTextStream(stdout) << parser.helpText();
    }
    return bHelp;
}

/// The message handler while the application opens the display. Without a display the
/// toolkit would write several lines and abort the process. This handler writes one
/// line and exits.
void reportNoDisplay(QtMsgType a_eType, const QMessageLogContext& /*a_context*/,
                     const QString& /*a_sMessage*/)
{
    if (a_eType == QtFatalMsg) {
        static_cast<void>(
            std::fputs("monitor: no display can be opened: set DISPLAY or WAYLAND_DISPLAY to one that "
                       "works, or QT_QPA_PLATFORM=offscreen to write a picture only\n",
                       stderr));
        std::_Exit(s_iNoDisplay);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (showHelp(argc, argv)) {
        return 0;
    }
    ErrorHandler::Instance().setTraceMask(0); // otherwise every command is traced
    const QtMessageHandler pHandler = qInstallMessageHandler(reportNoDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(pHandler);
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(application);
    const auto server = serverOf(parser.value(QStringLiteral("server")));
    if (!server || !parser.positionalArguments().isEmpty()) {
        QTextStream(stderr) << "monitor: --server needs HOST:PORT, and there are no other arguments\n";
        return s_iWrongUsage;
    }
    if (parser.isSet(QStringLiteral("dark"))) {
        setDark();
    }
    Monitor::MonitorWindow window(server->host, server->port);
    std::unique_ptr<Monitor::WindowPicture> picture;
    if (parser.isSet(QStringLiteral("picture"))) {
        picture = std::make_unique<Monitor::WindowPicture>(window, parser.value(QStringLiteral("picture")));
    }
    window.setFollowingStates(parser.isSet(QStringLiteral("states")));
    window.show();
    window.connectToService();
    return QApplication::exec();
}

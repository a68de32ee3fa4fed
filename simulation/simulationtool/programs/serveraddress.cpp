#include "serveraddress.h"

#include "console/wholenumber.h"

#include "simulationdata/simulationsystemconfiguration.h"

#include <QCommandLineParser>
#include <QHostAddress>

namespace SimulationTool {

namespace {

const QString s_sServer = QStringLiteral("server");

/// Splits a text into host and port. The port is null when it is missing. An IPv6
/// address with a port must be in brackets. The host is empty for an invalid text.
std::pair<QString, QString> dividedAddress(const QString& a_sText)
{
    const qsizetype iBracket = a_sText.indexOf(u']');
    if (a_sText.startsWith(u'[')) {
        const QString sRest = a_sText.mid(iBracket + 1);
        if (iBracket > 0 && (sRest.isEmpty() || sRest.startsWith(u':'))) {
            return {a_sText.mid(1, iBracket - 1), sRest.isEmpty() ? QString() : sRest.mid(1)};
        }
        return {};
    }
    const qsizetype iColon = a_sText.indexOf(u':');
    const bool bSeveral = iColon >= 0 && a_sText.indexOf(u':', iColon + 1) >= 0;
    if (bSeveral && QHostAddress(a_sText).isNull()) {
        return {};
    }
    if (iColon < 0 || bSeveral) {
        return {a_sText, QString()};
    }
    return {a_sText.left(iColon), a_sText.mid(iColon + 1)};
}

} // namespace

QString ServerAddress::text() const
{
    const QString sHost = host.contains(u':') ? u'[' + host + u']' : host;
    return QStringLiteral("%1:%2").arg(sHost).arg(port);
}

void addServerOption(QCommandLineParser& a_parser)
{
    a_parser.addOption({s_sServer,
                        QStringLiteral("Where the service listens. Default: as the settings of this "
                                       "machine say, or else 127.0.0.1:57400."),
                        QStringLiteral("HOST:PORT")});
}

std::optional<ServerAddress> readServerOption(const QCommandLineParser& a_parser, QString& a_sReason)
{
    Simulation::SimulationSystemConfiguration configuration;
    configuration.loadConfiguation();
    ServerAddress server{configuration.simulationServerAddress(), configuration.simulationServicePort()};
    if (!a_parser.isSet(s_sServer)) {
        return server;
    }
    const auto [sHost, sPort] = dividedAddress(a_parser.value(s_sServer));
    if (sHost.isEmpty()) {
        a_sReason = QStringLiteral("--server needs HOST:PORT, not \"") + a_parser.value(s_sServer) + u'"';
        return std::nullopt;
    }
    server.host = sHost;
    if (!sPort.isNull()) {
        const auto port =
            wholeNumber(sPort, {QStringLiteral("the port of --server"), "", 1, UINT16_MAX}, a_sReason);
        if (!port) {
            return std::nullopt;
        }
        server.port = static_cast<std::uint16_t>(*port);
    }
    return server;
}

QString addressText(const QHostAddress& a_address, std::uint16_t a_uiPort)
{
    bool bIsOlderKind = false;
    const quint32 uiAddress = a_address.toIPv4Address(&bIsOlderKind);
    return ServerAddress{bIsOlderKind ? QHostAddress(uiAddress).toString() : a_address.toString(), a_uiPort}
        .text();
}

} // namespace SimulationTool

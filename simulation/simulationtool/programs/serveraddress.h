#ifndef SIMULATIONTOOL_SERVERADDRESS_H
#define SIMULATIONTOOL_SERVERADDRESS_H

#include <QString>

#include <cstdint>
#include <optional>

class QCommandLineParser;
class QHostAddress;

namespace SimulationTool {

/// The address of a simulation service.
struct ServerAddress
{
    QString host; ///< name or address
    std::uint16_t port = 0;

    /// The address as one text: "localhost:57400", "[::1]:57400".
    [[nodiscard]] QString text() const;
};

/// Adds the option --server.
void addServerOption(QCommandLineParser& a_parser);

/// The address of the option --server. The option, or its port, defaults to the
/// settings of this machine. No value, with an error text, when the option is wrong.
[[nodiscard]] std::optional<ServerAddress> readServerOption(const QCommandLineParser& a_parser,
                                                            QString& a_sReason);

/// The usual text of an address and port. A socket for both protocols returns IPv4
/// addresses in IPv6 form; they are written as IPv4.
[[nodiscard]] QString addressText(const QHostAddress& a_address, std::uint16_t a_uiPort);

} // namespace SimulationTool

#endif

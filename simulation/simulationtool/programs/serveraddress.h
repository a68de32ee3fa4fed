#ifndef SIMULATIONTOOL_SERVERADDRESS_H
#define SIMULATIONTOOL_SERVERADDRESS_H

#include <QString>

#include <cstdint>
#include <optional>

class QCommandLineParser;
class QHostAddress;

namespace SimulationTool {

/// Where a simulation service listens.
struct ServerAddress
{
    QString host; ///< name or address
    std::uint16_t port = 0;

    /// "localhost:57400", "[::1]:57400"
    [[nodiscard]] QString text() const;
};

/// Adds the option --server.
void addServerOption(QCommandLineParser& a_parser);

/// What --server says; without it, or without a port there, what the settings of
/// the machine say. Nothing, with a reason, when it is wrong.
[[nodiscard]] std::optional<ServerAddress> readServerOption(const QCommandLineParser& a_parser,
                                                            QString& a_sReason);

/// An address as people write it: one of the older kind stays so also where both
/// kinds are served together.
[[nodiscard]] QString addressText(const QHostAddress& a_address, std::uint16_t a_uiPort);

} // namespace SimulationTool

#endif

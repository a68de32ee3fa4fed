#ifndef SIMULATIONTOOL_ENCODEDCOMMAND_H
#define SIMULATIONTOOL_ENCODEDCOMMAND_H

#include <QByteArray>

#include <functional>

namespace Simulation {
class SimulationServiceCommunication;
} // namespace Simulation

namespace SimulationTool {

/// Sends one command.
using CommandSender = std::function<void(Simulation::SimulationServiceCommunication&)>;

/// The bytes of a command as they go over a connection. Sockets that are given
/// the same bytes share them, so a scenario is compressed and held once, however
/// many devices it goes to. Empty when the command is larger than any peer
/// accepts.
[[nodiscard]] QByteArray encodedCommand(const CommandSender& a_send);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_COMMANDKIND_H
#define SIMULATIONTOOL_COMMANDKIND_H

#include <QString>

namespace SimulationTool {

/// How the service handles a command.
enum class CommandKind {
    Useless,         ///< ignored
    Request,         ///< served for every peer
    Order,           ///< passed on to the devices; accepted from the controller only
    OrderWithPayload ///< an order that may be as large as a document
};

/// The kind of a command, from its name in the protocol.
[[nodiscard]] CommandKind commandKind(const QString& a_sCommand);

} // namespace SimulationTool

#endif

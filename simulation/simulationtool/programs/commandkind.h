#ifndef SIMULATIONTOOL_COMMANDKIND_H
#define SIMULATIONTOOL_COMMANDKIND_H

#include <QString>

namespace SimulationTool {

/// What the service does with a command.
enum class CommandKind {
    Useless,         ///< nothing
    Request,         ///< it serves whoever sends it
    Order,           ///< it passes it on for the one that controls
    OrderWithPayload ///< the same, and the command may be as large as a document
};

/// By the command's name on the wire.
[[nodiscard]] CommandKind commandKind(const QString& a_sCommand);

} // namespace SimulationTool

#endif

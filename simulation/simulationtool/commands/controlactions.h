#ifndef SIMULATIONTOOL_CONTROLACTIONS_H
#define SIMULATIONTOOL_CONTROLACTIONS_H

#include "console/exitcode.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace SimulationTool {

class Report;
class ServiceController;

/// The argument of an order.
struct OrderArgument
{
    QString file;
    QByteArray content;                ///< the file's content
    std::optional<std::uint32_t> time; ///< scenario time (ms)
};

/// One action of "control".
struct ControlAction
{
    enum class Takes {
        Nothing,
        Scenario,
        Deployment,
        Time, ///< optional
    };

    const char* name;
    Takes takes;
    bool acquires; ///< needs the control of the service
    /// Returns Unusable after an error. The error text is either on standard error
    /// already, or is the controller's problem().
    ExitCode (*run)(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report);
};

extern const std::array<ControlAction, 9> s_controlActions;

/// Reads the file of the argument, and checks that the file is a complete document of
/// the kind. Unusable after one line on standard error. Errors and warnings of the reader
/// are counted on standard error; they give Findings if the document must be free of them.
[[nodiscard]] ExitCode readOrderFile(ControlAction::Takes a_eKind, OrderArgument& a_argument, bool a_bStrict);

} // namespace SimulationTool

#endif

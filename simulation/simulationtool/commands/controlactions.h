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

/// What an order takes along.
struct OrderArgument
{
    QString file;
    QByteArray content;                ///< of the file
    std::optional<std::uint32_t> time; ///< scenario time (ms)
};

/// One thing that "control" can do.
struct ControlAction
{
    enum class Takes {
        Nothing,
        Scenario,
        Deployment,
        Time, ///< or nothing
    };

    const char* name;
    Takes takes;
    bool acquires; ///< only the controller of the service may do it
    /// What goes wrong without being told is the controller's problem(): the
    /// result is Unusable then.
    ExitCode (*run)(ServiceController& a_controller, const OrderArgument& a_argument, Report& a_report);
};

extern const std::array<ControlAction, 9> s_controlActions;

/// Reads the file of the argument and looks whether it is what the action takes.
/// False after one line on standard error.
[[nodiscard]] bool readOrderFile(ControlAction::Takes a_eKind, OrderArgument& a_argument);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONTOOL_DEVICEREPORT_H
#define SIMULATIONTOOL_DEVICEREPORT_H

#include <QString>

#include <cstdint>

namespace SimulationTool {

/// The message that a device of this program reports with its state. It has up to
/// three parts, separated by "; ":
///
///   the last event      the result of the last order, see the functions below
///   the scenario        scenario "Harbour", 13 emitters
///   a warning           warning: 2 of 5 packages replaced by the default: ...
///
/// A controlling program derives the order's outcome from the beginning of the event.
/// Devices of other makers report any text or none, and then the outcome is unknown.
struct DeviceReport
{
    QString event;
    QString scenario;
    QString warning;

    [[nodiscard]] QString message() const;

    // The events that confirm or refuse orders
    [[nodiscard]] static QString plays(std::uint32_t a_uiTime); ///< scenario time of the first step (ms)
    [[nodiscard]] static QString notStarted(const QString& a_sReason);
    [[nodiscard]] static QString deployed(const QString& a_sWhere); ///< the place in the deployment
    [[nodiscard]] static QString notDeployed(const QString& a_sReason);

    [[nodiscard]] static QString scenarioText(const QString& a_sName, qsizetype a_iEmitters);
};

/// The outcome of an order, derived from a device's message.
enum class OrderOutcome {
    Unknown, ///< the message is not an answer to the order
    Done,
    Refused,
};

[[nodiscard]] OrderOutcome startOutcome(const QString& a_sMessage, std::uint32_t a_uiTime);
[[nodiscard]] OrderOutcome deployOutcome(const QString& a_sMessage);

/// Whether the message reports a play, running or planned.
[[nodiscard]] bool reportsPlay(const QString& a_sMessage);

/// The parts of a received message; a missing part is empty.
[[nodiscard]] QString eventOf(const QString& a_sMessage);
[[nodiscard]] QString warningOf(const QString& a_sMessage);
/// The name of the scenario, without the number of emitters.
[[nodiscard]] QString scenarioNameOf(const QString& a_sMessage);

} // namespace SimulationTool

#endif

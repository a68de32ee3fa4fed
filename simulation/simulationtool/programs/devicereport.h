#ifndef SIMULATIONTOOL_DEVICEREPORT_H
#define SIMULATIONTOOL_DEVICEREPORT_H

#include <QString>

#include <cstdint>

namespace SimulationTool {

/// What a device of this program reports in words with its state. The message has
/// up to three parts, divided by "; ":
///
///   the last event      what became of the last order, see the functions below
///   the scenario        scenario "Harbour", 13 emitters
///   a warning           warning: 2 of 5 packages replaced by the default: ...
///
/// A controlling program takes the order's outcome from how the event begins.
/// Devices of other makers write what they like, or nothing: then the outcome is
/// unknown.
struct DeviceReport
{
    QString event;
    QString scenario;
    QString warning;

    [[nodiscard]] QString message() const;

    // The events that answer orders
    [[nodiscard]] static QString plays(std::uint32_t a_uiTime); ///< (ms), from which it plays
    [[nodiscard]] static QString notStarted(const QString& a_sReason);
    [[nodiscard]] static QString deployed(const QString& a_sWhere); ///< in the deployment, and there
    [[nodiscard]] static QString notDeployed(const QString& a_sReason);

    [[nodiscard]] static QString scenarioText(const QString& a_sName, qsizetype a_iEmitters);
};

/// The outcome of an order, as a message of a device gives it.
enum class OrderOutcome {
    Unknown, ///< the message is about something else
    Done,
    Refused,
};

[[nodiscard]] OrderOutcome startOutcome(const QString& a_sMessage, std::uint32_t a_uiTime);
[[nodiscard]] OrderOutcome deployOutcome(const QString& a_sMessage);

/// Whether a device reports that it plays, or will.
[[nodiscard]] bool reportsPlay(const QString& a_sMessage);

/// The parts of a message that came from a device; each is empty where it is
/// missing.
[[nodiscard]] QString eventOf(const QString& a_sMessage);
[[nodiscard]] QString warningOf(const QString& a_sMessage);
/// The name only.
[[nodiscard]] QString scenarioNameOf(const QString& a_sMessage);

} // namespace SimulationTool

#endif

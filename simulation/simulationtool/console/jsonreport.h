#ifndef SIMULATIONTOOL_JSONREPORT_H
#define SIMULATIONTOOL_JSONREPORT_H

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <cstdint>

namespace SimulationTool {

/// Building blocks of the JSON reports (option --json, see report.h). A command
/// writes one JSON document, or one object per line while it follows events. Keys
/// name the units ("duration_ms"); docs/json.md lists all keys. Errors are still
/// reported as one line on standard error.

/// The object as one line without a line end. Characters that can control a terminal
/// are escaped, so the line is safe to show anywhere.
[[nodiscard]] QString jsonLine(const QJsonObject& a_object);
/// The object indented over several lines, with a final line end. Characters that can
/// control a terminal are escaped.
[[nodiscard]] QString jsonDocument(const QJsonObject& a_object);

/// The number; null when it is not finite, which JSON cannot express.
[[nodiscard]] QJsonValue jsonNumber(double a_dValue);
/// The number, with the fewest digits that read back as the same single-precision
/// number; null when it is not finite.
[[nodiscard]] QJsonValue jsonNumber(float a_fValue);
/// A count or an id, exact up to 2^63 - 1; larger values are rounded.
[[nodiscard]] QJsonValue jsonCount(std::uint64_t a_uiCount);
/// The text; null for an empty one.
[[nodiscard]] QJsonValue jsonText(const QString& a_sText);

} // namespace SimulationTool

#endif

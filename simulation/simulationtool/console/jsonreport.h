#ifndef SIMULATIONTOOL_JSONREPORT_H
#define SIMULATIONTOOL_JSONREPORT_H

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <cstdint>

namespace SimulationTool {

/// How commands report to programs (option --json, see report.h). Every command writes one
/// JSON document, or one object per line while it follows something; the keys
/// name the units ("duration_ms"), and docs/json.md lists them. Errors stay one
/// line on standard error.

/// The object as one line without its end. What could steer a terminal is
/// escaped, so the line is harmless wherever it is shown.
[[nodiscard]] QString jsonLine(const QJsonObject& a_object);
/// The same, indented over several lines, with the last line's end.
[[nodiscard]] QString jsonDocument(const QJsonObject& a_object);

/// The number; null when it is not finite, which JSON cannot express.
[[nodiscard]] QJsonValue jsonNumber(double a_dValue);
/// The same in the fewest digits that read back as the same single-precision
/// number.
[[nodiscard]] QJsonValue jsonNumber(float a_fValue);
/// A count or an id with all its digits up to 2^63 - 1; larger ones are rounded.
[[nodiscard]] QJsonValue jsonCount(std::uint64_t a_uiCount);
/// A text; null for an empty one.
[[nodiscard]] QJsonValue jsonText(const QString& a_sText);

} // namespace SimulationTool

#endif

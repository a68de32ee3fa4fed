#ifndef SIMULATIONDATA_XMLTEXT_P_H
#define SIMULATIONDATA_XMLTEXT_P_H

#include <QString>
#include <QStringView>

#include <cstdint>

class QXmlStreamWriter;

namespace Simulation {

/// The text without the characters that XML 1.0 forbids: controls but tab, line
/// feed and carriage return, U+FFFE, U+FFFF and lone surrogates. A document
/// that held one could not be read back. A clean text is returned as it is.
[[nodiscard]] QString cleanXmlText(const QString& a_sText);

/// A coordinate as text: 14 significant digits, general format, "." as point.
/// What is not finite is written as it would be read: 0.
[[nodiscard]] QString coordinateText(double a_dDegrees);

/// Any other real number as text in the same way: 6 significant digits.
[[nodiscard]] QString numberText(double a_dValue);

/// A truth value as text.
[[nodiscard]] const QString& boolText(bool a_bValue);

/// Locale-independent readings. What is no number, is not finite or does not
/// fit the type gives 0.
[[nodiscard]] double readDouble(QStringView a_sText);
[[nodiscard]] std::uint32_t readUInt32(QStringView a_sText);
[[nodiscard]] std::int64_t readInt64(QStringView a_sText);

/// Write what the writer's own operations write, with the text cleaned and a
/// carriage return in element text kept as a character reference: a reader
/// turns a bare one into a line feed.
void writeXmlAttribute(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sValue);
void writeXmlCharacters(QXmlStreamWriter& a_writer, const QString& a_sText);
void writeXmlTextElement(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sText);

} // namespace Simulation

#endif

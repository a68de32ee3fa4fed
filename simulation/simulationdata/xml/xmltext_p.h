#ifndef SIMULATIONDATA_XMLTEXT_P_H
#define SIMULATIONDATA_XMLTEXT_P_H

#include <QString>
#include <QStringView>

#include <cstdint>

class QXmlStreamWriter;

namespace Simulation {

/// The text without the characters that XML 1.0 forbids: control characters except
/// tab, line feed and carriage return, U+FFFE, U+FFFF and lone surrogates. A
/// document that contained such a character could not be read back. A clean text is
/// returned unchanged.
[[nodiscard]] QString cleanXmlText(const QString& a_sText);

/// A coordinate (degrees) as text: 14 significant digits, general format, "." as
/// decimal point. A value that is not finite becomes "0", because a reader would read
/// 0.
[[nodiscard]] QString coordinateText(double a_dDegrees);

/// Any other real number as text, like coordinateText() but with 6 significant digits.
[[nodiscard]] QString numberText(double a_dValue);

/// "true" or "false".
[[nodiscard]] const QString& boolText(bool a_bValue);

/// Numbers from text, independent of the locale. A text that is not a number, is
/// not finite or does not fit the type gives 0.
[[nodiscard]] double readDouble(QStringView a_sText);
[[nodiscard]] std::uint32_t readUInt32(QStringView a_sText);
[[nodiscard]] std::int64_t readInt64(QStringView a_sText);

/// These functions write like the operations of QXmlStreamWriter, but clean the text
/// first. A carriage return in element text is written as a character reference, because
/// a reader turns a bare carriage return into a line feed.
void writeXmlAttribute(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sValue);
void writeXmlCharacters(QXmlStreamWriter& a_writer, const QString& a_sText);
void writeXmlTextElement(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sText);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_XMLTEXT_P_H
#define SIMULATIONDATA_XMLTEXT_P_H

#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>

namespace Simulation {

/// The text without the characters that XML 1.0 forbids: control characters except
/// tab, line feed and carriage return, U+FFFE, U+FFFF and lone surrogates. A
/// document that contained such a character could not be read back. A clean text is
/// returned unchanged.
[[nodiscard]] QString cleanXmlText(const QString& a_sText);

/// A coordinate (degrees) as text: 14 significant digits, general format, "." as
/// decimal point. A value that is not finite becomes "0", because a reader would take its own text ("nan",
/// "inf") as 0 anyway.
[[nodiscard]] QString coordinateText(double a_dDegrees);

/// Any other real number as text, like coordinateText() but with 6 significant digits.
[[nodiscard]] QString numberText(double a_dValue);

/// "true" or "false".
[[nodiscard]] const QString& boolText(bool a_bValue);

/// The significant digits of coordinates and of other real numbers.
constexpr int s_iCoordinateDigits = 14;
constexpr int s_iNumberDigits = 6;

/// Room for any number as text.
using NumberBuffer = std::array<char, 32>;

/// Writes a real number in that form and returns the number of bytes. The bytes are those
/// of QString::number(), at a fraction of its cost.
qsizetype writeNumber(double a_dValue, int a_iDigits, NumberBuffer& a_buffer);

/// Numbers from UTF-8 text, independent of the locale. A text that is not a number, is
/// not finite or does not fit the type gives 0, and sets `*a_pOk` (may be null) to false.
[[nodiscard]] double readDouble(QByteArrayView a_text, bool* a_pOk = nullptr);
[[nodiscard]] std::uint32_t readUInt32(QByteArrayView a_text, bool* a_pOk = nullptr);
[[nodiscard]] std::int64_t readInt64(QByteArrayView a_text, bool* a_pOk = nullptr);

/// Whether the text contains "true" in any letter case.
[[nodiscard]] bool containsTrue(QStringView a_sText);

} // namespace Simulation

#endif

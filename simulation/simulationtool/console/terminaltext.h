#ifndef SIMULATIONTOOL_TERMINALTEXT_H
#define SIMULATIONTOOL_TERMINALTEXT_H

#include <QString>
#include <QStringView>

namespace SimulationTool {

/// The text with every character that can control a terminal spelled out: control,
/// format, line-breaking and other unprintable characters become "\n", "\t", "\r" or
/// "\u{1b}". A text without such characters is returned unchanged.
[[nodiscard]] QString terminalText(const QString& a_sText);

/// The number of UTF-16 units of the code point at an index; a lone surrogate counts
/// as one.
[[nodiscard]] qsizetype codePointUnits(QStringView a_sText, qsizetype a_iIndex);
/// Whether this one code point is printable and cannot control a terminal.
[[nodiscard]] bool isHarmlessText(QStringView a_sCodePoint);

/// The number of columns that a text takes: one for each code point.
[[nodiscard]] qsizetype terminalWidth(QStringView a_sText);

/// The text, shortened to a width (columns, at least 1); a shortened text ends in an
/// ellipsis.
[[nodiscard]] QString shortened(const QString& a_sText, qsizetype a_iWidth);

} // namespace SimulationTool

#endif

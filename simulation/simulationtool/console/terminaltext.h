#ifndef SIMULATIONTOOL_TERMINALTEXT_H
#define SIMULATIONTOOL_TERMINALTEXT_H

#include <QString>
#include <QStringView>

namespace SimulationTool {

/// The text with everything that could steer a terminal spelled out: control,
/// format, line-breaking and other unprintable characters become "\n", "\t", "\r" or
/// "\u{1b}". A harmless text is returned as it is.
[[nodiscard]] QString terminalText(const QString& a_sText);

/// The code units of the code point at an index; a lone surrogate is one.
[[nodiscard]] qsizetype codePointUnits(QStringView a_sText, qsizetype a_iIndex);
/// Whether a terminal only shows this one code point.
[[nodiscard]] bool isHarmlessText(QStringView a_sCodePoint);

/// How many columns a text takes: one for each code point.
[[nodiscard]] qsizetype terminalWidth(QStringView a_sText);

/// The text, cut to a width (at least 1) and then ending in an ellipsis.
[[nodiscard]] QString shortened(const QString& a_sText, qsizetype a_iWidth);

} // namespace SimulationTool

#endif

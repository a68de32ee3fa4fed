#include "terminaltext.h"

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr char16_t s_cEllipsis = 0x2026;
constexpr char16_t s_cFirstPrintable = 0x20;
constexpr char16_t s_cDelete = 0x7F;
constexpr int s_iHexadecimal = 16;

QString spelledOut(char32_t a_cCodePoint)
{
    switch (a_cCodePoint) {
    case U'\n':
        return QStringLiteral("\\n");
    case U'\r':
        return QStringLiteral("\\r");
    case U'\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u{%1}").arg(static_cast<uint>(a_cCodePoint), 0, s_iHexadecimal);
    }
}

bool isPlain(QChar a_cUnit)
{
    return a_cUnit >= QChar(s_cFirstPrintable) && a_cUnit < QChar(s_cDelete);
}

/// Whether the character is printable and keeps the line whole. Line and paragraph
/// separators are printable, but break lines.
bool isHarmless(char32_t a_cCodePoint)
{
    const QChar::Category eCategory = QChar::category(a_cCodePoint);
    return QChar::isPrint(a_cCodePoint) && eCategory != QChar::Separator_Line &&
           eCategory != QChar::Separator_Paragraph;
}

char32_t codePointOf(QStringView a_sUnits)
{
    return a_sUnits.size() == 2 ? QChar::surrogateToUcs4(a_sUnits[0], a_sUnits[1])
                                : static_cast<char32_t>(a_sUnits[0].unicode());
}

} // namespace

qsizetype codePointUnits(QStringView a_sText, qsizetype a_iIndex)
{
    const bool bPair = a_sText[a_iIndex].isHighSurrogate() && a_iIndex + 1 < a_sText.size() &&
                       a_sText[a_iIndex + 1].isLowSurrogate();
    return bPair ? 2 : 1;
}

bool isHarmlessText(QStringView a_sCodePoint)
{
    return isHarmless(codePointOf(a_sCodePoint));
}

QString terminalText(const QString& a_sText)
{
    if (std::all_of(a_sText.cbegin(), a_sText.cend(), isPlain)) {
        return a_sText;
    }
    QString sSafe;
    sSafe.reserve(a_sText.size());
    for (qsizetype i = 0; i < a_sText.size();) {
        const qsizetype iUnits = codePointUnits(a_sText, i);
        const QStringView sPoint = QStringView(a_sText).mid(i, iUnits);
        if (isHarmlessText(sPoint)) {
            sSafe.append(sPoint);
        } else {
            sSafe.append(spelledOut(codePointOf(sPoint)));
        }
        i += iUnits;
    }
    return sSafe;
}

qsizetype terminalWidth(QStringView a_sText)
{
    qsizetype iWidth = 0;
    for (qsizetype i = 0; i < a_sText.size(); i += codePointUnits(a_sText, i)) {
        ++iWidth;
    }
    return iWidth;
}

QString shortened(const QString& a_sText, qsizetype a_iWidth)
{
    qsizetype iWidth = 0;
    qsizetype iKept = 0;
    for (qsizetype i = 0; i < a_sText.size(); i += codePointUnits(a_sText, i)) {
        if (iWidth == a_iWidth - 1) {
            iKept = i; // the place of the ellipsis
        }
        if (++iWidth > a_iWidth) {
            return a_sText.left(iKept) + QChar(s_cEllipsis);
        }
    }
    return a_sText;
}

} // namespace SimulationTool

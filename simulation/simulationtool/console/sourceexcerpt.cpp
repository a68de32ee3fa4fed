#include "sourceexcerpt.h"

#include "terminaltext.h"

#include <QStringDecoder>
#include <QXmlStreamReader>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iBefore = 40;        ///< characters shown before the place
constexpr qsizetype s_iAfter = 60;         ///< characters shown from the place on
constexpr qsizetype s_iHeadBytes = 256;    ///< contain an XML declaration
constexpr qsizetype s_iCharacterBytes = 4; ///< the longest UTF-8 character
constexpr int s_iHexadecimal = 16;
constexpr char16_t s_cEllipsis = 0x2026;

bool isContinuation(char a_cByte)
{
    constexpr int iLeadMask = 0xC0;
    constexpr int iContinuation = 0x80;
    return (a_cByte & iLeadMask) == iContinuation;
}

/// The offset of the character after the one at an offset. Bytes that are not UTF-8 count
/// as characters of at most four bytes.
qsizetype following(const QByteArray& a_text, qsizetype a_iOffset)
{
    const qsizetype iMost = std::min(a_text.size(), a_iOffset + s_iCharacterBytes);
    do {
        ++a_iOffset;
    } while (a_iOffset < iMost && isContinuation(a_text[a_iOffset]));
    return a_iOffset;
}

/// The offset of the character before an offset, which is not 0.
qsizetype preceding(const QByteArray& a_text, qsizetype a_iOffset)
{
    const qsizetype iLeast = std::max<qsizetype>(0, a_iOffset - s_iCharacterBytes);
    do {
        --a_iOffset;
    } while (a_iOffset > iLeast && isContinuation(a_text[a_iOffset]));
    return a_iOffset;
}

/// The text of bytes that may be invalid, safe for a terminal.
QString shownText(const QByteArray& a_bytes)
{
    QString sText;
    for (qsizetype i = 0; i < a_bytes.size();) {
        const qsizetype iEnd = following(a_bytes, i);
        const QByteArray bytes = a_bytes.mid(i, iEnd - i);
        const QString sCharacter = QString::fromUtf8(bytes);
        if (sCharacter.toUtf8() == bytes) {
            sText += sCharacter == u"\t" ? QStringLiteral(" ") : terminalText(sCharacter);
        } else {
            for (const char cByte : bytes) {
                sText += QStringLiteral("\\x{%1}").arg(static_cast<uchar>(cByte), 0, s_iHexadecimal);
            }
        }
        i = iEnd;
    }
    return sText;
}

} // namespace

QByteArray utf8Document(const QByteArray& a_document)
{
    QStringDecoder decoder;
    if (const auto encoding = QStringConverter::encodingForData(a_document, u'<')) {
        decoder = QStringDecoder(*encoding);
    } else {
        QXmlStreamReader head(a_document.left(s_iHeadBytes));
        head.readNext();
        decoder = QStringDecoder(head.documentEncoding().toLatin1().constData());
    }
    const bool bConvert = decoder.isValid() && qstrcmp(decoder.name(), "UTF-8") != 0;
    QByteArray text = bConvert ? QString(decoder.decode(a_document)).toUtf8() : a_document;
    if (text.startsWith("\xEF\xBB\xBF")) {
        text.remove(0, 3);
    }
    return text;
}

SourceExcerpts::SourceExcerpts(const QByteArray& a_document)
    : m_text(utf8Document(a_document))
{}

/// Sets m_iOffset to the place. False when the document has no such line.
bool SourceExcerpts::moveTo(qint64 a_iLine, qint64 a_iColumn)
{
    if (a_iLine < m_iLine || (a_iLine == m_iLine && a_iColumn < m_iColumn)) {
        m_iOffset = 0;
        m_iLine = 1;
        m_iColumn = 1;
    }
    while (m_iLine < a_iLine) {
        const qsizetype iBreak = m_text.indexOf('\n', m_iOffset);
        if (iBreak < 0) {
            return false;
        }
        m_iOffset = iBreak + 1;
        ++m_iLine;
        m_iColumn = 1;
    }
    while (m_iColumn < a_iColumn && m_iOffset < m_text.size() && m_text[m_iOffset] != '\n') {
        m_iOffset = following(m_text, m_iOffset);
        ++m_iColumn;
    }
    return m_iLine == a_iLine;
}

std::optional<Excerpt> SourceExcerpts::at(qint64 a_iLine, qint64 a_iColumn)
{
    if (!moveTo(a_iLine, std::max<qint64>(a_iColumn, 1))) {
        return std::nullopt;
    }
    qsizetype iStart = m_iOffset;
    for (qsizetype i = 0; i < s_iBefore && iStart > 0 && m_text[iStart - 1] != '\n'; ++i) {
        iStart = preceding(m_text, iStart);
    }
    qsizetype iEnd = m_iOffset;
    for (qsizetype i = 0; i < s_iAfter && iEnd < m_text.size() && m_text[iEnd] != '\n'; ++i) {
        iEnd = following(m_text, iEnd);
    }
    QByteArray after = m_text.mid(m_iOffset, iEnd - m_iOffset);
    const bool bCut = iEnd < m_text.size() && m_text[iEnd] != '\n' && m_text[iEnd] != '\r';
    if (!bCut && after.endsWith('\r')) {
        after.chop(1);
    }
    const QString sBefore = (iStart > 0 && m_text[iStart - 1] != '\n' ? QString(s_cEllipsis) : QString()) +
                            shownText(m_text.mid(iStart, m_iOffset - iStart));
    return Excerpt{sBefore + shownText(after) + (bCut ? QString(s_cEllipsis) : QString()),
                   QString(terminalWidth(sBefore), u' ') + u'^'};
}

} // namespace SimulationTool

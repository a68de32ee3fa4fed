#ifndef SIMULATIONDATA_XMLENCODING_P_H
#define SIMULATIONDATA_XMLENCODING_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>

namespace Simulation {

/// A decoded character; length 0 (bytes) when the bytes are no UTF-8.
struct Utf8Character
{
    char32_t code = 0;
    int length = 0;
};

/// The character at the start of the bytes.
[[nodiscard]] Utf8Character firstUtf8Character(QByteArrayView a_bytes);

/// Whether XML 1.0 allows the character.
[[nodiscard]] bool isXmlCharacter(char32_t a_cCode);

/// The bytes of the UTF-8 byte-order mark at the start: 3 or 0.
[[nodiscard]] qsizetype utf8MarkBytes(QByteArrayView a_bytes);

/// The XML text as UTF-8, which its byte-order mark and its declaration name.
/// A mark wins over the declaration.
///
/// A text that is UTF-8 already is given back as it is, its mark included and
/// sharing its bytes. Otherwise it is decoded, without a mark, and the encoding
/// in its declaration is replaced by blanks, so that a parser believes neither
/// and columns stay.
///
/// `*a_pError` is empty when all is well. Otherwise it says why and where
/// ("line 3, column 7: ..."), and only the text before the fault is given:
/// nothing at all when the encoding is unknown or wide. Bytes of a character
/// that the end of the text cuts off are not judged: a document that breaks off
/// is the parser's to report.
[[nodiscard]] QByteArray toUtf8Xml(const QByteArray& a_bytes, QString* a_pError);

/// The bytes of the UTF-8 text that make a name of XML 1.0, colons included,
/// 0 when there is none. `a_bFirst`: the first character must be one that may
/// begin a name.
[[nodiscard]] qsizetype xmlNameLength(QByteArrayView a_bytes, bool a_bFirst = true);

/// Whether the whole text is a name.
[[nodiscard]] bool isXmlName(QByteArrayView a_text);

/// A place in an XML text as people count it: both from 1, the column in
/// characters of UTF-8.
struct XmlPosition
{
    qint64 line = 1;
    qint64 column = 1;
};

/// The place behind the bytes that follow `a_start`.
[[nodiscard]] inline XmlPosition advanced(XmlPosition a_start, QByteArrayView a_bytes)
{
    constexpr int iLeadMask = 0xC0;
    constexpr int iContinuation = 0x80;
    const qsizetype iLastBreak = a_bytes.lastIndexOf('\n');
    const QByteArrayView tail = a_bytes.sliced(iLastBreak + 1);
    const auto iCharacters = std::count_if(
        tail.begin(), tail.end(), [](char a_cByte) { return (a_cByte & iLeadMask) != iContinuation; });
    return {a_start.line + std::count(a_bytes.begin(), a_bytes.end(), '\n'),
            (iLastBreak < 0 ? a_start.column : 1) + iCharacters};
}

/// "line 3, column 7: reason".
[[nodiscard]] inline QString xmlErrorText(XmlPosition a_position, const QString& a_sReason)
{
    return QStringLiteral("line %1, column %2: %3")
        .arg(QString::number(a_position.line), QString::number(a_position.column), a_sReason);
}

} // namespace Simulation

#endif

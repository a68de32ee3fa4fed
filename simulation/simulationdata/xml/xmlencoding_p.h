#ifndef SIMULATIONDATA_XMLENCODING_P_H
#define SIMULATIONDATA_XMLENCODING_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>

namespace Simulation {

/// A decoded character; length (bytes) is 0 when the bytes are not UTF-8.
struct Utf8Character
{
    char32_t code = 0;
    int length = 0;
};

/// The character at the start of the bytes.
[[nodiscard]] Utf8Character firstUtf8Character(QByteArrayView a_bytes);

/// Whether XML 1.0 allows the character.
[[nodiscard]] bool isXmlCharacter(char32_t a_cCode);

/// The number of bytes at the start that are ASCII characters allowed by XML.
[[nodiscard]] qsizetype xmlAsciiBytes(QByteArrayView a_bytes);

/// The size (bytes) of a UTF-8 byte-order mark at the start: 3, or 0 when there is
/// none.
[[nodiscard]] qsizetype utf8MarkBytes(QByteArrayView a_bytes);

/// Decodes an XML text to UTF-8. The encoding is that of its byte-order mark or of
/// the pattern of zero bytes at its start, else the declared one, else UTF-8.
///
/// A text that is UTF-8 already is returned unchanged, sharing its bytes and
/// including its mark. Any other text is returned without a mark. In both cases a
/// declared encoding other than UTF-8 is replaced by blanks. A parser then reads the text
/// as UTF-8, and columns do not shift.
///
/// `*a_pError` is empty on success. Otherwise it is the error text with its place
/// ("line 3, column 7: ..."), and only the text before the error is returned: none
/// when the encoding is unknown or its characters are wider than one byte. A
/// character that the end of the text cuts off is not an error here, because the
/// parser reports a document that breaks off.
[[nodiscard]] QByteArray toUtf8Xml(const QByteArray& a_bytes, QString* a_pError);

/// The length (bytes) of the XML 1.0 name, colons included, at the start of the
/// UTF-8 text; 0 when there is none. `a_bFirst` is whether the first character must be
/// one that may begin a name.
[[nodiscard]] qsizetype xmlNameLength(QByteArrayView a_bytes, bool a_bFirst = true);

/// Whether the whole text is one XML 1.0 name.
[[nodiscard]] bool isXmlName(QByteArrayView a_text);

/// A piece of a UTF-8 text as a string. A byte-order mark at its start is a character of
/// the text; only at the start of a document it is none.
[[nodiscard]] QString utf8String(QByteArrayView a_bytes);

/// The character that a reference stands for; the argument is the text between '&' and
/// ';', such as "amp", "#10" or "#xA". 0 when it is none of the five known entities and no
/// number; a number may stand for a character that XML forbids.
[[nodiscard]] char32_t xmlReferencedCharacter(QByteArrayView a_reference);

/// A place in an XML text. Both numbers count from 1, the column in UTF-8
/// characters.
struct XmlPosition
{
    qint64 line = 1;
    qint64 column = 1;
};

/// The place after `a_bytes` when their first byte is at `a_start`.
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

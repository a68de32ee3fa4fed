#ifndef SIMULATIONDATA_XMLENCODING_P_H
#define SIMULATIONDATA_XMLENCODING_P_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

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
[[nodiscard]] SIMULATIONDATA_EXPORT qsizetype utf8MarkBytes(QByteArrayView a_bytes);

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
[[nodiscard]] SIMULATIONDATA_EXPORT QByteArray toUtf8Xml(const QByteArray& a_bytes, QString* a_pError);

} // namespace Simulation

#endif

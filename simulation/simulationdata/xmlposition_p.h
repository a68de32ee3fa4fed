#ifndef SIMULATIONDATA_XMLPOSITION_P_H
#define SIMULATIONDATA_XMLPOSITION_P_H

#include <QByteArrayView>
#include <QString>

#include <algorithm>

namespace Simulation {

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

#include "xmltext_p.h"

#include "simulationdata/io/numbers_p.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace Simulation {

namespace {

constexpr int s_iCoordinateDigits = 14;
constexpr int s_iNumberDigits = 6;
constexpr char16_t s_cFirstPrintable = 0x20;
constexpr char16_t s_cFirstSurrogate = 0xD800;
constexpr char16_t s_cFirstNonCharacter = 0xFFFE;

/// Whether XML 1.0 forbids the code unit, or allows it only as half of a surrogate
/// pair.
bool isSuspicious(QChar a_cUnit)
{
    const char16_t c = a_cUnit.unicode();
    if (c < s_cFirstPrintable) {
        return c != u'\t' && c != u'\n' && c != u'\r';
    }
    return c >= s_cFirstSurrogate && (QChar::isSurrogate(c) || c >= s_cFirstNonCharacter);
}

QString withoutForbidden(const QString& a_sText)
{
    QString sClean;
    sClean.reserve(a_sText.size());
    for (qsizetype i = 0; i < a_sText.size(); ++i) {
        const QChar c = a_sText.at(i);
        if (c.isHighSurrogate() && i + 1 < a_sText.size() && a_sText.at(i + 1).isLowSurrogate()) {
            sClean.append(c);
            sClean.append(a_sText.at(++i));
        } else if (!isSuspicious(c)) {
            sClean.append(c);
        }
    }
    return sClean;
}

} // namespace

QString cleanXmlText(const QString& a_sText)
{
    const bool bClean = std::none_of(a_sText.cbegin(), a_sText.cend(), isSuspicious);
    return bClean ? a_sText : withoutForbidden(a_sText);
}

QString coordinateText(double a_dDegrees)
{
    return QString::number(finiteOrZero(a_dDegrees), 'g', s_iCoordinateDigits);
}

QString numberText(double a_dValue)
{
    return QString::number(finiteOrZero(a_dValue), 'g', s_iNumberDigits);
}

const QString& boolText(bool a_bValue)
{
    static const QString s_sTrue = QStringLiteral("true");
    static const QString s_sFalse = QStringLiteral("false");
    return a_bValue ? s_sTrue : s_sFalse;
}

double readDouble(QStringView a_sText)
{
    return finiteOrZero(a_sText.toDouble());
}

std::uint32_t readUInt32(QStringView a_sText)
{
    return a_sText.toUInt();
}

std::int64_t readInt64(QStringView a_sText)
{
    return a_sText.toLongLong();
}

void writeXmlAttribute(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sValue)
{
    a_writer.writeAttribute(a_sName, cleanXmlText(a_sValue));
}

void writeXmlCharacters(QXmlStreamWriter& a_writer, const QString& a_sText)
{
    const QString sClean = cleanXmlText(a_sText);
    qsizetype iStart = 0;
    for (qsizetype iReturn = sClean.indexOf(u'\r'); iReturn >= 0; iReturn = sClean.indexOf(u'\r', iStart)) {
        a_writer.writeCharacters(sClean.mid(iStart, iReturn - iStart));
        a_writer.writeEntityReference(QStringLiteral("#13"));
        iStart = iReturn + 1;
    }
    a_writer.writeCharacters(iStart == 0 ? sClean : sClean.mid(iStart));
}

void writeXmlTextElement(QXmlStreamWriter& a_writer, const QString& a_sName, const QString& a_sText)
{
    a_writer.writeStartElement(a_sName);
    writeXmlCharacters(a_writer, a_sText);
    a_writer.writeEndElement();
}

} // namespace Simulation

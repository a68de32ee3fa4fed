#include "xmlstreamadapter_p.h"

#include "xmltext_p.h"
#include "xmltextreader_p.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Simulation {

XmlStreamReader::XmlStreamReader(QXmlStreamReader& a_stream, QByteArrayView a_text,
                                 XmlDeviations* a_pDeviations)
    : XmlReader(a_pDeviations)
    , m_stream(a_stream)
    , m_text(a_text)
{
    if (a_stream.isStartElement()) {
        startElement();
    }
}

bool XmlStreamReader::hasError() const
{
    return m_stream.hasError();
}

void XmlStreamReader::raiseError(const QString& a_sReason)
{
    m_stream.raiseError(a_sReason);
}

qsizetype XmlStreamReader::position()
{
    constexpr int iLeadMask = 0xC0;
    constexpr int iContinuation = 0x80;
    constexpr unsigned char cFourBytes = 0xF0; // such a character has two UTF-16 units
    if (m_text.isEmpty()) {
        return -1;
    }
    const auto isInside = [&] { return (m_text[m_iBytes] & iLeadMask) == iContinuation; };
    while (m_iBytes < m_text.size() && (m_iUnits < m_stream.characterOffset() || isInside())) {
        if (!isInside()) {
            m_iUnits += static_cast<unsigned char>(m_text[m_iBytes]) >= cFourBytes ? 2 : 1;
        }
        ++m_iBytes;
    }
    return m_iBytes;
}

QByteArrayView XmlStreamReader::kept(QByteArray a_bytes)
{
    return m_copies.emplace_back(std::move(a_bytes));
}

void XmlStreamReader::startElement()
{
    m_copies.clear();
    m_attributes.clear();
    m_name = kept(m_stream.qualifiedName().toUtf8());
    const qsizetype iEnd = position();
    // A value contains no '<', so the last one is that of the tag.
    m_iOffset = iEnd < 0 ? -1 : m_text.first(iEnd).lastIndexOf('<');
    const QXmlStreamAttributes attributes = m_stream.attributes();
    // The same tag, read where it is, has the attributes in the same order.
    XmlTextReader places(m_iOffset < 0 ? QByteArrayView() : m_text.first(iEnd), nullptr,
                         std::max<qsizetype>(m_iOffset, 0));
    const bool bPlaced =
        m_iOffset >= 0 && places.nextChild() && std::ssize(places.attributes()) >= attributes.size();
    for (qsizetype i = 0; i < attributes.size(); ++i) {
        const qsizetype iPlace =
            bPlaced ? places.attributes()[static_cast<std::size_t>(i)].value.offset : m_iOffset;
        m_attributes.push_back(
            {kept(attributes[i].qualifiedName().toUtf8()), {kept(attributes[i].value().toUtf8()), iPlace}});
    }
    tagRead();
}

bool XmlStreamReader::nextChild()
{
    leaveTag();
    for (qsizetype iText = position(); m_stream.readNext() != QXmlStreamReader::Invalid; iText = position()) {
        if (m_stream.isStartElement()) {
            startElement();
            return true;
        }
        if (m_stream.isEndElement() || m_stream.isEndDocument()) {
            return false;
        }
        if (m_stream.isCharacters() && deviations() != nullptr) {
            reportText(m_stream.text().toUtf8(), iText);
        }
    }
    return false;
}

std::optional<XmlText> XmlStreamReader::text()
{
    leaveTag();
    QString sText;
    const qsizetype iEnd = position();
    // After "<name/>" there is no text: the element itself is its place.
    const bool bEmpty = iEnd >= 2 && m_text.first(iEnd).endsWith("/>");
    const qsizetype iOffset = bEmpty ? m_iOffset : iEnd;
    for (;;) {
        switch (m_stream.readNext()) {
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference: // declared in an external document type: has no text
            sText += m_stream.text();
            break;
        case QXmlStreamReader::StartElement:
            startElement();
            reportChildOfText();
            skip();
            break;
        case QXmlStreamReader::EndElement:
            return XmlText{kept(sText.toUtf8()), iOffset};
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            break;
        default:
            return std::nullopt;
        }
    }
}

void XmlStreamWriter::startElement(QLatin1String a_sName)
{
    m_stream.writeStartElement(a_sName);
}

void XmlStreamWriter::endElement()
{
    m_stream.writeEndElement();
}

void XmlStreamWriter::attribute(QLatin1String a_sName, QStringView a_sValue)
{
    m_stream.writeAttribute(a_sName, cleanXmlText(a_sValue.toString()));
}

void XmlStreamWriter::text(QStringView a_sText)
{
    const QString sClean = cleanXmlText(a_sText.toString());
    qsizetype iStart = 0;
    for (qsizetype iReturn = sClean.indexOf(u'\r'); iReturn >= 0; iReturn = sClean.indexOf(u'\r', iStart)) {
        m_stream.writeCharacters(sClean.mid(iStart, iReturn - iStart));
        m_stream.writeEntityReference(QStringLiteral("#13"));
        iStart = iReturn + 1;
    }
    m_stream.writeCharacters(sClean.mid(iStart));
}

void XmlStreamWriter::plainAttribute(QLatin1String a_sName, QLatin1String a_sValue)
{
    m_stream.writeAttribute(a_sName, a_sValue);
}

void XmlStreamWriter::plainText(QLatin1String a_sText)
{
    m_stream.writeCharacters(a_sText);
}

} // namespace Simulation

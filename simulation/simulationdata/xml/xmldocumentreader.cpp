#include "xmldocumentreader_p.h"

#include "simulationdata/io/documentfile_p.h"
#include "xmlencoding_p.h"
#include "xmlscanner_p.h"

namespace Simulation {

XmlDocumentReader::XmlDocumentReader(const QString& a_sText)
    : XmlDocumentReader(QByteArrayLiteral("\xEF\xBB\xBF") + a_sText.toUtf8())
{}

XmlDocumentReader::XmlDocumentReader(const QByteArray& a_data)
{
    // Our names have no prefixes. Resolving a prefix takes time in proportion to
    // the number of namespace declarations, which the document chooses.
    m_stream.setNamespaceProcessing(false);

    if (!checkDocumentBytes(a_data.size(), &m_sRefusal)) {
        m_stream.raiseError(m_sRefusal);
        return;
    }
    QByteArray text = toUtf8Xml(a_data, &m_sRefusal);
    XmlScanner scanner;
    scanner.feed(text);
    if (scanner.hasOffence()) {
        const XmlScanner::Offence& offence = scanner.offence();
        m_sRefusal = xmlErrorText({offence.line, offence.column}, offence.reason);
        text.truncate(static_cast<qsizetype>(offence.offset));
    }
    m_stream.addData(text);
}

void XmlDocumentReader::readToEnd()
{
    while (!m_stream.atEnd()) {
        m_stream.readNext();
    }
}

QString XmlDocumentReader::errorString() const
{
    if (!m_stream.hasError()) {
        // The text that was cut off may have followed the root element.
        return m_stream.atEnd() ? m_sRefusal : QString();
    }
    const bool bCutShort = m_stream.error() == QXmlStreamReader::PrematureEndOfDocumentError;
    if (!m_sRefusal.isEmpty() && (bCutShort || m_stream.errorString() == m_sRefusal)) {
        return m_sRefusal;
    }
    return xmlErrorText({m_stream.lineNumber(), m_stream.columnNumber()}, m_stream.errorString());
}

} // namespace Simulation

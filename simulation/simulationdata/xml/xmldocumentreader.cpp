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
    // Names in our documents have no prefixes. Resolving a prefix takes time in
    // proportion to the number of namespace declarations. A hostile document could
    // contain many of them.
    m_stream.setNamespaceProcessing(false);

    if (!checkDocumentBytes(a_data.size(), &m_sError)) {
        m_stream.raiseError(m_sError);
        return;
    }
    QByteArray text = toUtf8Xml(a_data, &m_sError);
    XmlScanner scanner;
    scanner.feed(text);
    if (scanner.hasError()) {
        const XmlScanner::Error& error = scanner.error();
        m_sError = xmlErrorText({error.line, error.column}, error.reason);
        text.truncate(static_cast<qsizetype>(error.offset));
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
        // The text may have been cut off after the root element.
        return m_stream.atEnd() ? m_sError : QString();
    }
    const bool bCutShort = m_stream.error() == QXmlStreamReader::PrematureEndOfDocumentError;
    if (!m_sError.isEmpty() && (bCutShort || m_stream.errorString() == m_sError)) {
        return m_sError;
    }
    return xmlErrorText({m_stream.lineNumber(), m_stream.columnNumber()}, m_stream.errorString());
}

} // namespace Simulation

#include "xmldocumentreader_p.h"

#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/simulationlimits.h"
#include "xmlencoding_p.h"
#include "xmlscanner_p.h"
#include "xmlvalidator_p.h"

#include <algorithm>

namespace Simulation {

XmlDocumentReader::XmlDocumentReader(const QString& a_sText)
    : XmlDocumentReader(QByteArrayLiteral("\xEF\xBB\xBF") + a_sText.toUtf8())
{}

XmlDocumentReader::XmlDocumentReader(const QByteArray& a_data, XmlDeviations* a_pDeviations)
{
    if (!checkDocumentBytes(a_data.size(), &m_sError)) {
        m_stream.raiseError(m_sError);
        m_streamReader.emplace(m_stream);
        return;
    }
    m_bytes = toUtf8Xml(a_data, &m_sError);
    m_text = QByteArrayView(m_bytes).sliced(utf8MarkBytes(m_bytes));
    if (m_sError.isEmpty()) {
        XmlValidator validator(m_text, XmlValidator::AnyNumberOfElements);
        if (validator.validate() && validator.isUnambiguous()) {
            m_textReader.emplace(m_text, a_pDeviations);
            return;
        }
    }
    readFromStream(a_pDeviations);
}

/// Lets a stream reader read the text up to the first exceeded limit.
void XmlDocumentReader::readFromStream(XmlDeviations* a_pDeviations)
{
    // Our names have no prefixes. Resolving a prefix takes time in proportion to
    // the number of namespace declarations, which the document chooses.
    m_stream.setNamespaceProcessing(false);
    XmlScanner scanner;
    scanner.feed(m_bytes);
    if (scanner.hasError()) {
        const XmlScanner::Error& error = scanner.error();
        m_sError = xmlErrorText({error.line, error.column}, error.reason);
        m_bytes.truncate(static_cast<qsizetype>(error.offset));
        m_text = QByteArrayView(m_bytes).sliced(utf8MarkBytes(m_bytes));
    }
    m_stream.addData(m_bytes);
    m_streamReader.emplace(m_stream, m_text, a_pDeviations);
}

XmlReader& XmlDocumentReader::reader()
{
    if (m_textReader) {
        return *m_textReader;
    }
    return *m_streamReader;
}

void XmlDocumentReader::readToEnd()
{
    // A valid text has nothing after its root element that could be wrong.
    while (m_streamReader && !m_stream.atEnd()) {
        m_stream.readNext();
    }
}

qsizetype XmlDocumentReader::errorOffset()
{
    if (m_text.isNull()) {
        return -1;
    }
    return m_textReader ? m_textReader->position() : std::max<qsizetype>(m_streamReader->position(), 0);
}

QString XmlDocumentReader::errorTextHere(const QString& a_sReason)
{
    const XmlPosition position = m_textReader ? streamPosition(m_text.first(m_textReader->position()))
                                              : XmlPosition{m_stream.lineNumber(), m_stream.columnNumber()};
    return xmlErrorText(position, a_sReason);
}

QString XmlDocumentReader::errorString() const
{
    if (m_textReader) {
        return m_textReader->errorString();
    }
    if (!m_stream.hasError()) {
        // The cut-off text may have followed the root element.
        return m_stream.atEnd() ? m_sError : QString();
    }
    const bool bCutShort = m_stream.error() == QXmlStreamReader::PrematureEndOfDocumentError;
    if (!m_sError.isEmpty() && (bCutShort || m_stream.errorString() == m_sError)) {
        return m_sError;
    }
    return xmlErrorText({m_stream.lineNumber(), m_stream.columnNumber()}, m_stream.errorString());
}

} // namespace Simulation

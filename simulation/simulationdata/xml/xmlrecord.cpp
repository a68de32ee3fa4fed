#include "xmlrecord_p.h"

#include "simulationdata/io/documentfile_p.h"
#include "xmlencoding_p.h"
#include "xmlscanner_p.h"
#include "xmlvalidator_p.h"

namespace Simulation {

XmlRecord::XmlRecord(const QByteArray& a_bytes, QString* a_pError)
{
    if (!checkDocumentBytes(a_bytes.size(), a_pError)) {
        return;
    }
    m_bytes = toUtf8Xml(a_bytes, a_pError);
    m_text = QByteArrayView(m_bytes).sliced(utf8MarkBytes(m_bytes));
    m_iError = m_text.size(); // an error of the decoding cuts the text off
    if (a_pError->isEmpty()) {
        validate(a_pError);
    }
}

void XmlRecord::validate(QString* a_pError)
{
    XmlValidator validator(m_text);
    const bool bValid = validator.validate();
    if (!bValid || !validator.isPlain()) {
        // An exceeded limit is reported before any other error, and only the scanner
        // checks the limits of document types.
        XmlScanner scanner;
        scanner.feed(m_text);
        if (scanner.hasError()) {
            const XmlScanner::Error& error = scanner.error();
            m_iError = error.offset;
            *a_pError = xmlErrorText({error.line, error.column}, error.reason);
            return;
        }
    }
    if (bValid) {
        m_root = validator.root();
    } else {
        m_iError = validator.errorOffset();
        *a_pError = xmlErrorText(advanced({}, m_text.first(m_iError)), validator.reason());
    }
}

} // namespace Simulation

#ifndef SIMULATIONDATA_XMLDOCUMENTREADER_P_H
#define SIMULATIONDATA_XMLDOCUMENTREADER_P_H

#include "xmldeviations_p.h"
#include "xmlstreamadapter_p.h"
#include "xmltextreader_p.h"

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

#include <optional>

namespace Simulation {

/// A reader over one whole document from an untrusted source. The text is decoded and
/// checked first. A valid text that all parsers read alike (see
/// XmlValidator::isUnambiguous()) is read in place. Every other text, for example one with an
/// error or a document type, goes through a stream reader, which reads up to the first
/// error. A text that exceeds a limit is cut off at the limit, as if the document ended
/// there. One object is used by one thread at a time.
class XmlDocumentReader
{
public:
    explicit XmlDocumentReader(const QByteArray& a_data, XmlDeviations* a_pDeviations = nullptr);
    /// Reads text that is already decoded; an encoding in its declaration is
    /// ignored.
    explicit XmlDocumentReader(const QString& a_sText);

    /// Moves to the root element. False, with an error, when there is none.
    [[nodiscard]] bool readRoot() { return reader().nextChild(); }

    [[nodiscard]] XmlReader& reader();

    /// Reads what follows the root element, where only comments and processing
    /// instructions are allowed.
    void readToEnd();

    /// Where and why the document broke off, "line 3, column 7: reason"; empty when
    /// everything read so far is valid.
    [[nodiscard]] QString errorString() const;

    /// That form of an error text for the place that is reached.
    [[nodiscard]] QString errorTextHere(const QString& a_sReason);

    /// The bytes before the error; all that are read when there is none. -1 when the
    /// document was refused for its size.
    [[nodiscard]] qsizetype errorOffset();

    /// The text of the document as UTF-8, to which offsets refer.
    [[nodiscard]] QByteArrayView text() const { return m_text; }

private:
    void readFromStream(XmlDeviations* a_pDeviations);

    QByteArray m_bytes;    ///< decoded
    QByteArrayView m_text; ///< m_bytes without a byte-order mark
    QString m_sError;      ///< why the text was cut off, with its place
    std::optional<XmlTextReader> m_textReader;
    QXmlStreamReader m_stream;
    std::optional<XmlStreamReader> m_streamReader; ///< when m_textReader is not used
};

} // namespace Simulation

#endif

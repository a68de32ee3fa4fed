#ifndef SIMULATIONDATA_XMLDOCUMENTREADER_P_H
#define SIMULATIONDATA_XMLDOCUMENTREADER_P_H

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

namespace Simulation {

/// A stream reader over one whole document from an untrusted source. The text is
/// decoded and checked against the limits first. A text that exceeds a limit is cut off
/// at that place, as if the document ended. One object is used by one thread at a time.
class XmlDocumentReader
{
public:
    explicit XmlDocumentReader(const QByteArray& a_data);
    /// Reads text that is already decoded; an encoding in its declaration is
    /// ignored.
    explicit XmlDocumentReader(const QString& a_sText);

    [[nodiscard]] QXmlStreamReader& stream() { return m_stream; }

    /// Reads the text after the root element, where only comments and processing
    /// instructions are allowed.
    void readToEnd();

    /// Where and why the document broke off, "line 3, column 7: reason"; empty when
    /// everything read so far is valid.
    [[nodiscard]] QString errorString() const;

private:
    QString m_sError; ///< why the text was cut off, with its place
    QXmlStreamReader m_stream;
};

} // namespace Simulation

#endif

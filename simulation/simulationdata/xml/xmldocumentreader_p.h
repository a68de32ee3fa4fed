#ifndef SIMULATIONDATA_XMLDOCUMENTREADER_P_H
#define SIMULATIONDATA_XMLDOCUMENTREADER_P_H

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

namespace Simulation {

/// A stream reader over one whole document whose bytes nobody has checked. The
/// text is decoded and measured against the limits first; beyond one of them
/// the document breaks off, just as if it had ended there.
class XmlDocumentReader
{
public:
    explicit XmlDocumentReader(const QByteArray& a_data);
    /// Of a text that is decoded already, whatever encoding it declares.
    explicit XmlDocumentReader(const QString& a_sText);

    [[nodiscard]] QXmlStreamReader& stream() { return m_stream; }

    /// Reads what follows the root element: nothing but comments may.
    void readToEnd();

    /// Where and why the document broke off, "line 3, column 7: reason"; empty
    /// when all that was read so far is well.
    [[nodiscard]] QString errorString() const;

private:
    QString m_sRefusal; ///< what made the text end early, with its place
    QXmlStreamReader m_stream;
};

} // namespace Simulation

#endif

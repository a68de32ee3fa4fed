#ifndef SIMULATIONDATA_XMLDOCUMENTSPLITTER_P_H
#define SIMULATIONDATA_XMLDOCUMENTSPLITTER_P_H

#include "simulationdata/io/receivebuffer_p.h"
#include "simulationdata/simulationlimits.h"
#include "xmlscanner_p.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <QXmlStreamReader>

#include <memory>
#include <optional>

namespace Simulation {

/// Splits a stream of XML documents that follow each other with nothing but
/// blanks between them. A document ends with the tag that closes its outermost
/// element; a scanner that runs ahead finds that tag, so a stream reader can be
/// given many tags at once and none of the next document. The reader judges
/// whether a document is well formed.
///
/// The documents and the fault do not depend on the pieces that the bytes come
/// in, and the time is linear in the bytes. Documents are UTF-8, with or without
/// a mark, or declare Latin-1 or US-ASCII. One that goes beyond a limit
/// (DocumentBytes, NestingDepth, ElementAttributes, RecordElements and those of
/// document types) is a fault.
class XmlDocumentSplitter
{
public:
    XmlDocumentSplitter() { startDocument(); }

    void append(const QByteArray& a_bytes) { m_buffer.append(a_bytes); }

    /// The next document, without the blanks before it. Nothing when its end has
    /// not come yet, or at a fault.
    [[nodiscard]] std::optional<QByteArray> takeDocument();

    /// What is held of the document at hand (bytes).
    [[nodiscard]] qsizetype bytes() const { return m_document.size() + m_buffer.size(); }

    /// Why no document can be read any more: the stream reader's words, or the
    /// limit. Empty while there is no fault.
    [[nodiscard]] const QString& fault() const { return m_sFault; }

    /// Forgets everything.
    void clear() { *this = XmlDocumentSplitter(); }

private:
    bool scan();
    void skipBlanks();
    bool parse(qsizetype a_iBytes);
    [[nodiscard]] QString readerFault(QByteArray a_piece);
    bool adoptEncoding(QStringView a_sDeclared);
    void startDocument();
    bool fail(QString a_sFault);

    XmlScanner m_scanner{Limits::RecordElements};
    std::unique_ptr<QXmlStreamReader> m_reader;
    ReceiveBuffer m_buffer;      ///< what the reader was not given yet
    QByteArray m_document;       ///< what it was given of the document at hand
    bool m_bDeclared = false;    ///< the document at hand names its encoding
    bool m_bLatin1 = false;      ///< it is this one
    bool m_bInReference = false; ///< the reader may wait for the end of one
    QString m_sFault;
};

} // namespace Simulation

#endif

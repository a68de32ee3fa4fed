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

/// Splits a stream of XML documents that follow each other with only blanks between
/// them. A document ends with the tag that closes its outermost element. A scanner
/// finds that tag first, so that a stream reader can be given many tags at once but
/// none of the next document. The reader checks whether a document is well formed.
/// A short plain document that has arrived whole needs neither scanner nor reader: a
/// validator recognises and checks it in one step.
///
/// The documents and the error do not depend on the pieces in which the bytes are
/// received, and the time is linear in the bytes. Documents are UTF-8, with or
/// without a byte-order mark, or declare Latin-1 or US-ASCII. A document that
/// exceeds a limit (DocumentBytes, NestingDepth, ElementAttributes, RecordElements
/// and those of document types) is an error. One object may be used by one thread
/// at a time.
class XmlDocumentSplitter
{
public:
    XmlDocumentSplitter() { startDocument(); }

    void append(const QByteArray& a_bytes) { m_buffer.append(a_bytes); }

    /// The next document, without the blanks before it. No value when it is not
    /// complete yet, or after an error.
    [[nodiscard]] std::optional<QByteArray> takeDocument();

    /// Whether the document that takeDocument() returned last is plain (see
    /// XmlValidator::plainDocumentBytes()). A long document never counts as plain.
    [[nodiscard]] bool isPlain() const { return m_bPlain; }

    /// Number of stored bytes of the current, incomplete document.
    [[nodiscard]] qsizetype bytes() const { return m_document.size() + m_buffer.size(); }

    /// The error of the stream reader or the exceeded limit; empty without an error.
    /// After an error no document can be read any more.
    [[nodiscard]] const QString& error() const { return m_sError; }

    /// Drops all bytes and the error.
    void clear() { *this = XmlDocumentSplitter(); }

private:
    qsizetype plainDocumentBytes();
    bool scan();
    void skipBlanks();
    bool parse(qsizetype a_iBytes);
    [[nodiscard]] QString readerError(QByteArray a_piece);
    bool adoptEncoding(QStringView a_sDeclared);
    void startDocument();
    bool fail(QString a_sError);

    XmlScanner m_scanner{Limits::RecordElements};
    std::unique_ptr<QXmlStreamReader> m_reader;
    ReceiveBuffer m_buffer;      ///< bytes not yet passed to the reader
    QByteArray m_document;       ///< bytes of the current document taken from m_buffer
    bool m_bDeclared = false;    ///< the current document declares its encoding
    bool m_bLatin1 = false;      ///< the current document declares Latin-1
    bool m_bInReference = false; ///< the reader may be inside an unfinished reference
    bool m_bPlain = false;       ///< the document returned last is plain
    QString m_sError;
};

} // namespace Simulation

#endif

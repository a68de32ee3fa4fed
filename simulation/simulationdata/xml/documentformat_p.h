#ifndef SIMULATIONDATA_DOCUMENTFORMAT_P_H
#define SIMULATIONDATA_DOCUMENTFORMAT_P_H

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

class QIODevice;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class XmlDocumentReader;

/// One kind of document: how it is recognised, and what is the same for all
/// kinds when one is read or written. What a reading operation takes as
/// `a_pError` is the document's error text: set with false after one trace,
/// "line 3, column 7: reason" where there is a place.
class DocumentKind
{
public:
    /// Whether what has been written so far is still short enough to be read
    /// back; false after one trace.
    using StillReadable = std::function<bool()>;

    /// `a_szSource` and `a_sName` ("Scenario") stand in traces.
    DocumentKind(const char* a_szSource, const QString& a_sName, const QString& a_sRoot);

    /// Everything that a file or an open device holds; nothing when it is refused.
    [[nodiscard]] std::optional<QByteArray> load(const QString& a_sFile, QString* a_pError) const;
    [[nodiscard]] std::optional<QByteArray> load(QIODevice* a_pDevice, QString* a_pError) const;

    /// Calls `a_readRoot` with the reader on the start of the root element, once
    /// that is known to be the right one; what it returns, if anything, kept it
    /// from reading everything. False, without the call, when there is no such
    /// root. The error text is empty when the document was read whole.
    [[nodiscard]] bool read(const QByteArray& a_xml, QString* a_pError,
                            const std::function<QString(QXmlStreamReader&)>& a_readRoot) const;

    /// Sets the error text, and returns false.
    bool refuse(const QString& a_sReason, QString* a_pError) const;

    /// The document whose root element holds what `a_writeRoot` writes, which
    /// asks between objects whether to go on. Empty, after one trace, when that
    /// is more than a reader accepts.
    [[nodiscard]] QByteArray
    text(const std::function<bool(QXmlStreamWriter&, const StillReadable&)>& a_writeRoot) const;

    /// The document as it is, with the error text of its writing: that it is too
    /// long when it is empty, else the text of SharedIds, after one trace when
    /// there is one.
    [[nodiscard]] QByteArray finished(const QByteArray& a_xml, const QString& a_sSharedIds,
                                      QString* a_pError) const;

    /// Writes the bytes to the device; a failure is traced and sets the error text.
    void write(QIODevice* a_pDevice, const QByteArray& a_xml, QString* a_pError) const;

    /// Whether a reader accepts a text of that size; false after one trace.
    [[nodiscard]] bool isReadable(qint64 a_iBytes) const;

private:
    void traceUnwritten(const QString& a_sReason) const;

    const char* m_szSource;
    QString m_sName;
    QString m_sRoot;
};

/// Reads what follows the root; tells what kept the document from being read
/// whole, the document's own fault before that of what it was read into. Empty
/// when nothing did.
[[nodiscard]] QString faultOf(XmlDocumentReader& a_document, const QString& a_sFault);

} // namespace Simulation

#endif

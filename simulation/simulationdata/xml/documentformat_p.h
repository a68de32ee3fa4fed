#ifndef SIMULATIONDATA_DOCUMENTFORMAT_P_H
#define SIMULATIONDATA_DOCUMENTFORMAT_P_H

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <functional>
#include <optional>

class QIODevice;

namespace Simulation {

class ReadingReport;
class XmlDocumentReader;
class XmlReader;
class XmlWriter;

/// One kind of document, recognised by its root element. The class contains the steps of
/// reading and writing that all kinds have in common. An operation that fails returns
/// false or no value, writes one trace and sets `*a_pError` to the error text: "line 3,
/// column 7: reason" when the place is known. An object never changes, so any thread may
/// use it.
class DocumentKind
{
public:
    /// Returns whether the text written so far is still within Limits::DocumentBytes,
    /// so that it can be read back. Otherwise writes one trace and returns false.
    using StillReadable = std::function<bool()>;

    /// `a_szSource` and `a_sName` ("Scenario") are shown in traces; `a_sRoot` is
    /// the name of the root element.
    DocumentKind(const char* a_szSource, const QString& a_sName, QLatin1String a_sRoot);

    /// The whole content of a file or of an open device. When it is refused: no value, and
    /// `*a_pReport` is replaced.
    [[nodiscard]] std::optional<QByteArray> load(const QString& a_sFile, QString* a_pError,
                                                 ReadingReport* a_pReport) const;
    [[nodiscard]] std::optional<QByteArray> load(QIODevice* a_pDevice, QString* a_pError,
                                                 ReadingReport* a_pReport) const;

    /// Checks the name of the root element and calls `a_readRoot` with the reader on
    /// the start of that element. `a_readRoot` returns the error that stopped its
    /// reading, or an empty string.
    ///
    /// Returns false, without calling `a_readRoot`, when there is no root element of
    /// that name. Returns true otherwise, even when the document breaks off. The error
    /// text is then set, after one trace. When the whole document was read, the error
    /// text is empty.
    /// `*a_pReport` is replaced by the report about the document.
    [[nodiscard]] bool read(const QByteArray& a_xml, QString* a_pError, ReadingReport* a_pReport,
                            const std::function<QString(XmlReader&)>& a_readRoot) const;

    /// Writes one trace, sets the error text and returns false.
    bool refuse(const QString& a_sReason, QString* a_pError) const;

    /// Returns the document. `a_writeRoot` writes the content of the root element.
    /// Between objects `a_writeRoot` calls its second argument to check whether the
    /// text is still short enough, and returns false when the text is too long. The
    /// document is empty, after one trace, when the text exceeds
    /// Limits::DocumentBytes.
    [[nodiscard]] QByteArray
    text(const std::function<bool(XmlWriter&, const StillReadable&)>& a_writeRoot) const;

    /// Returns the document unchanged and sets the error text of writing. An empty
    /// document exceeded a limit, and that limit is its error text. The error text of any
    /// other document is `a_sSharedIds`, the ids that several objects share (may be
    /// empty); it is traced unless it is empty.
    [[nodiscard]] QByteArray finished(const QByteArray& a_xml, const QString& a_sSharedIds,
                                      QString* a_pError) const;

    /// Writes the bytes to the device. A failure is traced and sets the error text;
    /// success leaves the error text unchanged.
    void write(QIODevice* a_pDevice, const QByteArray& a_xml, QString* a_pError) const;

    /// Whether a document of that size can be read back. Writes one trace when it
    /// cannot.
    [[nodiscard]] bool isReadable(qint64 a_iBytes) const;

private:
    void traceUnwritten(const QString& a_sReason) const;

    const char* m_szSource;
    QString m_sName;
    QLatin1String m_sRoot;
};

/// Reads the text after the root element. Returns the error because of which the
/// document is not read whole; empty when there is none. An error of the XML text takes
/// precedence over `a_sError`, the error of the content that was read.
[[nodiscard]] QString errorOf(XmlDocumentReader& a_document, const QString& a_sError);

} // namespace Simulation

#endif

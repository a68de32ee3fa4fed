#include "documentformat_p.h"

#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"
#include "xmldocumentreader_p.h"
#include "xmlwriter_p.h"

#include "kpbase/replacedfile.h"

#include <QIODevice>

namespace Simulation {

namespace {

constexpr qsizetype s_iShownCharacters = 40; ///< characters of a wrong root name in an error text

/// The report about a document that could not be opened.
ReadingReport reportOf(const QString& a_sReason)
{
    XmlDeviations deviations;
    deviations.add(ReadingReport::s_sBrokenOff, -1, [&](ReadingEntry& a_entry) {
        a_entry.message = QStringLiteral("Nothing is read: %1").arg(errorSentence(a_sReason));
    });
    return deviations.report({});
}

void reportBrokenOff(XmlDeviations& a_deviations, XmlDocumentReader& a_document, const QString& a_sError,
                     bool a_bKept)
{
    a_deviations.add(ReadingReport::s_sBrokenOff, a_document.errorOffset(), [&](ReadingEntry& a_entry) {
        a_entry.message = (a_bKept ? QStringLiteral("The document breaks off; what stands before is kept: %1")
                                   : QStringLiteral("Nothing is read: %1"))
                              .arg(errorSentence(a_sError));
    });
}

} // namespace

DocumentKind::DocumentKind(const char* a_szSource, const QString& a_sName, QLatin1String a_sRoot)
    : m_szSource(a_szSource)
    , m_sName(a_sName)
    , m_sRoot(a_sRoot)
{}

bool DocumentKind::refuse(const QString& a_sReason, QString* a_pError) const
{
    *a_pError = a_sReason;
    traceError(m_szSource, [&] { return QStringLiteral("%1 refused: %2").arg(m_sName, a_sReason); });
    return false;
}

std::optional<QByteArray> DocumentKind::load(const QString& a_sFile, QString* a_pError,
                                             ReadingReport* a_pReport) const
{
    QString sReason;
    std::optional<QByteArray> xml = loadDocument(a_sFile, &sReason);
    if (!xml) {
        refuse(sReason, a_pError);
        *a_pReport = reportOf(sReason);
    }
    return xml;
}

std::optional<QByteArray> DocumentKind::load(QIODevice* a_pDevice, QString* a_pError,
                                             ReadingReport* a_pReport) const
{
    QString sReason = QStringLiteral("no device to read from was given");
    std::optional<QByteArray> xml;
    if (a_pDevice != nullptr) {
        xml = readDocument(a_pDevice, &sReason);
    }
    if (!xml) {
        refuse(sReason, a_pError);
        *a_pReport = reportOf(sReason);
    }
    return xml;
}

bool DocumentKind::read(const QByteArray& a_xml, QString* a_pError, ReadingReport* a_pReport,
                        const std::function<QString(XmlReader&)>& a_readRoot) const
{
    XmlDeviations deviations;
    XmlDocumentReader document(a_xml, &deviations);
    if (!document.readRoot()) {
        reportBrokenOff(deviations, document, document.errorString(), false);
        *a_pReport = deviations.report(document.text());
        return refuse(document.errorString(), a_pError);
    }
    XmlReader& reader = document.reader();
    if (!isName(reader.name(), m_sRoot)) {
        const QString sRoot = QString::fromUtf8(reader.name()).left(s_iShownCharacters);
        const QString sReason = QStringLiteral("the root element is \"%1\", not \"%2\"").arg(sRoot, m_sRoot);
        deviations.add(ReadingReport::s_sOtherRoot, reader.offset(), [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(reader.name());
            a_entry.message = QStringLiteral("The root element is not \"%1\": nothing is read.").arg(m_sRoot);
        });
        *a_pReport = deviations.report(document.text());
        return refuse(document.errorTextHere(sReason), a_pError);
    }
    const QString sReadError = a_readRoot(reader);
    *a_pError = errorOf(document, sReadError);
    if (!a_pError->isEmpty()) {
        traceError(m_szSource, [&] { return QStringLiteral("%1 broke off: %2").arg(m_sName, *a_pError); });
        reportBrokenOff(deviations, document, *a_pError, true);
    }
    *a_pReport = deviations.report(document.text());
    return true;
}

QByteArray DocumentKind::text(const std::function<bool(XmlWriter&, const StillReadable&)>& a_writeRoot) const
{
    QByteArray xml;
    XmlTextWriter writer(xml);
    writer.startDocument();
    writer.startElement(m_sRoot);
    if (!a_writeRoot(writer, [&] { return isReadable(xml.size()); })) {
        return {};
    }
    writer.endElement();
    writer.endDocument();
    return isReadable(xml.size()) ? xml : QByteArray();
}

QByteArray DocumentKind::finished(const QByteArray& a_xml, const QString& a_sSharedIds,
                                  QString* a_pError) const
{
    *a_pError = a_xml.isEmpty() ? Limits::exceeded(Limits::DocumentBytes) : a_sSharedIds;
    if (!a_xml.isEmpty() && !a_sSharedIds.isEmpty()) {
        traceError(m_szSource, [&] { return QStringLiteral("%1 written: %2").arg(m_sName, a_sSharedIds); });
    }
    return a_xml;
}

void DocumentKind::write(QIODevice* a_pDevice, const QByteArray& a_xml, QString* a_pError) const
{
    const bool bWritten = a_pDevice != nullptr && writeThrough(*a_pDevice, a_xml);
    if (!bWritten) {
        *a_pError = a_pDevice != nullptr ? a_pDevice->errorString() : QStringLiteral("no device was given");
        traceUnwritten(*a_pError);
    }
}

bool DocumentKind::isReadable(qint64 a_iBytes) const
{
    QString sReason;
    const bool bReadable = checkDocumentBytes(a_iBytes, &sReason);
    if (!bReadable) {
        traceUnwritten(sReason);
    }
    return bReadable;
}

void DocumentKind::traceUnwritten(const QString& a_sReason) const
{
    traceError(m_szSource,
               [&] { return QStringLiteral("Cannot write a %1: %2").arg(m_sName.toLower(), a_sReason); });
}

QString errorOf(XmlDocumentReader& a_document, const QString& a_sError)
{
    a_document.readToEnd();
    const QString sError = a_document.errorString();
    return sError.isEmpty() ? a_sError : sError;
}

} // namespace Simulation

#include "documentformat_p.h"

#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"
#include "xmldocumentreader_p.h"
#include "xmlencoding_p.h"

#include "kpbase/replacedfile.h"

#include <QIODevice>
#include <QXmlStreamWriter>

namespace Simulation {

namespace {

constexpr qsizetype s_iShownCharacters = 40; ///< characters of a wrong root name in an error text

} // namespace

DocumentKind::DocumentKind(const char* a_szSource, const QString& a_sName, const QString& a_sRoot)
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

std::optional<QByteArray> DocumentKind::load(const QString& a_sFile, QString* a_pError) const
{
    QString sReason;
    std::optional<QByteArray> xml = loadDocument(a_sFile, &sReason);
    if (!xml) {
        refuse(sReason, a_pError);
    }
    return xml;
}

std::optional<QByteArray> DocumentKind::load(QIODevice* a_pDevice, QString* a_pError) const
{
    QString sReason = QStringLiteral("no device to read from was given");
    std::optional<QByteArray> xml;
    if (a_pDevice != nullptr) {
        xml = readDocument(a_pDevice, &sReason);
    }
    if (!xml) {
        refuse(sReason, a_pError);
    }
    return xml;
}

bool DocumentKind::read(const QByteArray& a_xml, QString* a_pError,
                        const std::function<QString(QXmlStreamReader&)>& a_readRoot) const
{
    XmlDocumentReader document(a_xml);
    QXmlStreamReader& reader = document.stream();
    if (!reader.readNextStartElement()) {
        return refuse(document.errorString(), a_pError);
    }
    if (reader.qualifiedName() != m_sRoot) {
        const QString sRoot = reader.qualifiedName().left(s_iShownCharacters).toString();
        return refuse(
            xmlErrorText({reader.lineNumber(), reader.columnNumber()},
                         QStringLiteral("the root element is \"%1\", not \"%2\"").arg(sRoot, m_sRoot)),
            a_pError);
    }
    const QString sReadError = a_readRoot(reader);
    *a_pError = errorOf(document, sReadError);
    if (!a_pError->isEmpty()) {
        traceError(m_szSource, [&] { return QStringLiteral("%1 broke off: %2").arg(m_sName, *a_pError); });
    }
    return true;
}

QByteArray
DocumentKind::text(const std::function<bool(QXmlStreamWriter&, const StillReadable&)>& a_writeRoot) const
{
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(m_sRoot);
    if (!a_writeRoot(writer, [&] { return isReadable(xml.size()); })) {
        return {};
    }
    writer.writeEndElement();
    writer.writeEndDocument();
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

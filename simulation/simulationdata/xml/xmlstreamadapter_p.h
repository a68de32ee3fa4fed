#ifndef SIMULATIONDATA_XMLSTREAMADAPTER_P_H
#define SIMULATIONDATA_XMLSTREAMADAPTER_P_H

#include "xmlreader_p.h"
#include "xmlwriter_p.h"

#include <QByteArray>
#include <QByteArrayView>

#include <deque>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

/// Reads from a stream reader: for callers that bring their own, and for documents that
/// XmlTextReader does not read, because they are not valid or have a document type. Unlike
/// XmlTextReader, it converts every name and value.
class XmlStreamReader : public XmlReader
{
public:
    /// The stream reader is not owned. It is on the start of an element or before the
    /// root. `a_text` is the text that it reads, to find places in it; empty when it is
    /// not known. It must outlive the reader.
    explicit XmlStreamReader(QXmlStreamReader& a_stream, QByteArrayView a_text = {},
                             XmlDeviations* a_pDeviations = nullptr);

    [[nodiscard]] bool nextChild() override;
    [[nodiscard]] std::optional<XmlText> text() override;
    void raiseError(const QString& a_sReason) override;
    [[nodiscard]] bool hasError() const override;

    /// The bytes of the text that the stream reader has read; -1 without a text.
    [[nodiscard]] qsizetype position();

private:
    void startElement();
    QByteArrayView kept(QByteArray a_bytes);

    QXmlStreamReader& m_stream;
    QByteArrayView m_text;
    std::deque<QByteArray> m_copies; ///< name, attributes and text of the current element
    qsizetype m_iBytes = 0;          ///< of the text up to m_iUnits
    qint64 m_iUnits = 0;             ///< UTF-16 units, as the stream reader counts them
};

/// Writes to a stream writer, which is not owned.
class XmlStreamWriter : public XmlWriter
{
public:
    explicit XmlStreamWriter(QXmlStreamWriter& a_stream)
        : m_stream(a_stream)
    {}

    void startElement(QLatin1String a_sName) override;
    void endElement() override;
    void attribute(QLatin1String a_sName, QStringView a_sValue) override;
    void text(QStringView a_sText) override;
    void plainAttribute(QLatin1String a_sName, QLatin1String a_sValue) override;
    void plainText(QLatin1String a_sText) override;

private:
    QXmlStreamWriter& m_stream;
};

} // namespace Simulation

#endif

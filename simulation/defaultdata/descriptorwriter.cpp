#include "descriptorwriter.h"

#include <QXmlStreamWriter>

#include <zlib.h>

namespace DefaultData {

namespace {

constexpr int s_iIndent = 4;

// The same creation time in two forms. It is fixed, so that every build gives the
// same bytes.
constexpr std::uint32_t s_uiTimestamp = 1'704'067'200; // seconds since 1970
const QString s_sCreated = QStringLiteral("2024-01-01T00:00:00Z");

const QString s_sAuthor = QStringLiteral("Simulation System");
const QString s_sLibrary = QStringLiteral("TuK-Default");
const QString s_sSource = QStringLiteral("makedefaultdata");

QString checksum(const QByteArray& a_bytes)
{
    const uLong uiStart = crc32(0, nullptr, 0);
    return QString::number(crc32(uiStart, reinterpret_cast<const Bytef*>(a_bytes.constData()),
                                 static_cast<uInt>(a_bytes.size())));
}

void writeContent(QXmlStreamWriter& a_writer, const QString& a_sBlock, const Content& a_content)
{
    a_writer.writeStartElement(a_sBlock);
    a_writer.writeTextElement(QStringLiteral("Name"), a_content.file);
    a_writer.writeTextElement(QStringLiteral("SourceName"), s_sSource);
    a_writer.writeTextElement(QStringLiteral("Checksum"), checksum(a_content.bytes));
    a_writer.writeTextElement(QStringLiteral("Format"), a_content.format);
    a_writer.writeTextElement(QStringLiteral("Duration"), QString::number(a_content.duration));
    a_writer.writeEndElement();
}

} // namespace

QByteArray writeDescriptor(const Descriptor& a_descriptor)
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(s_iIndent);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("SignalPackage"));
    writer.writeAttribute(QStringLiteral("FileFormatVersion"), QStringLiteral("0"));
    writer.writeAttribute(QStringLiteral("Timestamp"), QString::number(s_uiTimestamp));
    writer.writeAttribute(QStringLiteral("UID"), a_descriptor.id);
    writer.writeAttribute(QStringLiteral("Version"), QStringLiteral("0"));
    writer.writeStartElement(QStringLiteral("MetaData"));
    writer.writeTextElement(QStringLiteral("Name"), a_descriptor.name);
    writer.writeTextElement(QStringLiteral("Author"), s_sAuthor);
    writer.writeTextElement(QStringLiteral("Library"), s_sLibrary);
    writer.writeTextElement(QStringLiteral("Created"), s_sCreated);
    writer.writeTextElement(QStringLiteral("UserEditable"), QStringLiteral("false"));
    writer.writeEndElement();
    writer.writeTextElement(QStringLiteral("Bandwidth"), QString::number(a_descriptor.bandwidth));
    writer.writeTextElement(QStringLiteral("AnalogModulation"), QStringLiteral("None"));
    writer.writeTextElement(QStringLiteral("Duration"), QString::number(a_descriptor.duration));
    writer.writeEmptyElement(QStringLiteral("DigitalModulation"));
    writeContent(writer, QStringLiteral("SignalShape"), a_descriptor.signalShape);
    writeContent(writer, QStringLiteral("Audio"), a_descriptor.audio);
    writer.writeEndDocument();
    return bytes;
}

} // namespace DefaultData

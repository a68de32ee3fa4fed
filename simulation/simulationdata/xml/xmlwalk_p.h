#ifndef SIMULATIONDATA_XMLWALK_P_H
#define SIMULATIONDATA_XMLWALK_P_H

#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>

#include "xmltext_p.h"

namespace Simulation {

/// Skips an unknown element and its content.
void skipElement(QXmlStreamReader& a_reader);

/// Calls `a_handler` for each child element of the current element, up to that
/// element's end. At each call the reader is on the child's start. The argument is the
/// child's name, valid until the reader moves. The handler either reads the child to
/// its end and returns true, or does not move the reader and returns false. In the
/// second case the child is skipped.
template<typename Handler>
void forEachChild(QXmlStreamReader& a_reader, const Handler& a_handler)
{
    while (a_reader.readNextStartElement()) {
        if (!a_handler(a_reader.qualifiedName())) {
            skipElement(a_reader);
        }
    }
}

/// Skips all children of an element that has only attributes.
inline void skipChildren(QXmlStreamReader& a_reader)
{
    forEachChild(a_reader, [](QStringView) { return false; });
}

/// The text of the current element, up to its end. Child elements are skipped, so
/// that an unexpected child does not make the rest of the document unreadable. No
/// value when the document breaks off inside the element: half of a number would be
/// read as a different number.
[[nodiscard]] std::optional<QString> elementText(QXmlStreamReader& a_reader);

/// One value of a record, stored as a child element with text. An array of these
/// defines the record's format for both reading and writing.
template<typename Record>
struct XmlField
{
    QString name;
    QString (*text)(const Record& a_record);
    void (*read)(Record& a_record, QStringView a_sText);
};

/// Reads the current child element into the field of its name. Returns false, and does
/// not move the reader, when there is no such field.
template<typename Record, typename Fields>
bool readXmlField(QXmlStreamReader& a_reader, QStringView a_sName, const Fields& a_fields, Record& a_record)
{
    for (const XmlField<Record>& field : a_fields) {
        if (a_sName == field.name) {
            if (const auto sText = elementText(a_reader)) {
                field.read(a_record, *sText);
            }
            return true;
        }
    }
    return false;
}

/// Writes all fields in the order of the array.
template<typename Record, typename Fields>
void writeXmlFields(QXmlStreamWriter& a_writer, const Fields& a_fields, const Record& a_record)
{
    for (const XmlField<Record>& field : a_fields) {
        writeXmlTextElement(a_writer, field.name, field.text(a_record));
    }
}

} // namespace Simulation

#endif

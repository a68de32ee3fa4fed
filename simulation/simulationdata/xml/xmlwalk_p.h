#ifndef SIMULATIONDATA_XMLWALK_P_H
#define SIMULATIONDATA_XMLWALK_P_H

#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>

#include "xmltext_p.h"

namespace Simulation {

/// Sees every element that no reader wanted and skips it with all it holds.
void skipElement(QXmlStreamReader& a_reader);

/// Walks the child elements of the element on which the reader stands, up to
/// its end. `a_handler` is called with the reader on each child's start and
/// the child's name (valid until the reader moves); it either consumes the
/// element whole and returns true, or leaves it alone and returns false.
template<typename Handler>
void forEachChild(QXmlStreamReader& a_reader, const Handler& a_handler)
{
    while (a_reader.readNextStartElement()) {
        if (!a_handler(a_reader.qualifiedName())) {
            skipElement(a_reader);
        }
    }
}

/// Passes over the children of an element whose attributes are all it has.
inline void skipChildren(QXmlStreamReader& a_reader)
{
    forEachChild(a_reader, [](QStringView) { return false; });
}

/// The text of the element on which the reader stands, up to its end. Children
/// are skipped: a stray one must not cost the rest of the document. Nothing
/// when the document breaks off inside: half a number is another number.
[[nodiscard]] std::optional<QString> elementText(QXmlStreamReader& a_reader);

/// One value of a record that is a child element with text. An array of these
/// is the record's format in both directions.
template<typename Record>
struct XmlField
{
    QString name;
    QString (*text)(const Record& a_record);
    void (*read)(Record& a_record, QStringView a_sText);
};

/// Reads the child element on which the reader stands into the field of its
/// name; false, with the reader unmoved, when there is no such field.
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

/// Writes all fields in their order.
template<typename Record, typename Fields>
void writeXmlFields(QXmlStreamWriter& a_writer, const Fields& a_fields, const Record& a_record)
{
    for (const XmlField<Record>& field : a_fields) {
        writeXmlTextElement(a_writer, field.name, field.text(a_record));
    }
}

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_XMLFIELD_P_H
#define SIMULATIONDATA_XMLFIELD_P_H

#include "xmltext_p.h"
#include "xmlwalk_p.h"

#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Simulation {

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

#ifndef SIMULATIONDATA_XMLWALK_P_H
#define SIMULATIONDATA_XMLWALK_P_H

#include <QString>
#include <QXmlStreamReader>

#include <optional>

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

} // namespace Simulation

#endif

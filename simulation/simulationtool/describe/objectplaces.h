#ifndef SIMULATIONTOOL_OBJECTPLACES_H
#define SIMULATIONTOOL_OBJECTPLACES_H

#include <QByteArray>
#include <QHash>
#include <QString>

#include <tuple>

namespace SimulationTool {

/// A place in a text, both numbers counted from 1. A line of 0 means that it is not known.
struct TextPlace
{
    [[nodiscard]] bool isKnown() const { return line > 0; }
    friend bool operator<(const TextPlace& a_first, const TextPlace& a_second)
    {
        return std::tie(a_first.line, a_first.column) < std::tie(a_second.line, a_second.column);
    }

    qint64 line = 0;
    qint64 column = 0; ///< characters
};

/// The text of one object: from its start tag up to the end of its end tag.
struct ObjectRange
{
    TextPlace begin;
    TextPlace end;
};

/// The objects of a document by their ids; of several objects with one id the first.
using ObjectPlaces = QHash<QString, ObjectRange>;

/// Finds the objects of a scenario or deployment: the children of the root element that
/// have an id. A document that breaks off gives those before that place.
[[nodiscard]] ObjectPlaces objectPlaces(const QByteArray& a_document);

} // namespace SimulationTool

#endif

#ifndef SIMULATIONDATA_COMMONDATAXML_P_H
#define SIMULATIONDATA_COMMONDATAXML_P_H

#include "simulationdata/tpos.h"
#include "simulationdata/xml/xmltext_p.h"

#include <QHash>
#include <QString>

class QXmlStreamReader;

namespace Simulation {

/// Reads a coordinate (degrees) from two child elements of the given names, in any order;
/// a missing or unreadable one is 0. The reader is positioned as for the operations of
/// CommonDataXml.
[[nodiscard]] TPos readCoordinate(QXmlStreamReader& a_reader, const QString& a_sLongitude,
                                  const QString& a_sLatitude);

/// A new persistent id for a document: its name, the time in whole seconds since
/// 1970-01-01 UTC and the machine's id, joined by "-". Characters that XML forbids are
/// removed from the name, so that the id is read back as it was written.
[[nodiscard]] QString createPersistentId(const QString& a_sName);

/// Counts objects by their ids, to report ids that several objects share. A document
/// identifies objects by their ids, so its reader gets only one object for each id.
class SharedIds
{
public:
    /// Counts the id as it is written, without the characters that XML forbids.
    void add(const QString& a_sId) { ++m_counts[cleanXmlText(a_sId)]; }

    /// An error text for up to three shared ids; empty if no id is shared. It names
    /// each id, shortened if it is long, the number of objects that share it, and what
    /// to do. `a_szNoun` names the objects ("emitters").
    [[nodiscard]] QString text(const char* a_szNoun) const;

private:
    QHash<QString, qsizetype> m_counts;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_COMMONDATAXML_P_H
#define SIMULATIONDATA_COMMONDATAXML_P_H

#include "simulationdata/tpos.h"

#include <QHash>
#include <QString>

class QXmlStreamReader;

namespace Simulation {

/// Two child elements in any order, degrees; a missing or unreadable one is 0.
/// Called and left as the operations of CommonDataXml, which share it with
/// documents that call the elements otherwise.
[[nodiscard]] TPos readCoordinate(QXmlStreamReader& a_reader, const QString& a_sLongitude,
                                  const QString& a_sLatitude);

/// A new identity for a document: its name, the time in whole seconds since
/// 1970-01-01 UTC and the machine's id, joined by "-". The name is cleaned, so
/// that the document is read back with the id that its writer keeps.
[[nodiscard]] QString createPersistentId(const QString& a_sName);

/// Counts objects by their ids, to report the ids that several of them have. A
/// document names its objects by their ids, so its reader gets one object for
/// each id.
class SharedIds
{
public:
    void add(const QString& a_sId) { ++m_counts[a_sId]; }

    /// Which ids are shared, by how many, and what to do about it: at most three
    /// ids are named, shortened where they are long. Empty when none is shared.
    /// `a_szNoun` names the objects ("emitters").
    [[nodiscard]] QString text(const char* a_szNoun) const;

private:
    QHash<QString, qsizetype> m_counts;
};

} // namespace Simulation

#endif

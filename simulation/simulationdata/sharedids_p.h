#ifndef SIMULATIONDATA_SHAREDIDS_P_H
#define SIMULATIONDATA_SHAREDIDS_P_H

#include <QHash>
#include <QString>

namespace Simulation {

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

#ifndef SIMULATIONDATA_SCENARIOCHECKER_OBJECTS_P_H
#define SIMULATIONDATA_SCENARIOCHECKER_OBJECTS_P_H

#include "simulationdata/scenariochecker.h"
#include "simulationdata/szenarioemitter.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>

namespace Simulation {

/// The rule about ids that several emitters share. Each id is listed once.
class IdRule
{
public:
    /// `a_mergedIds`: see ScenarioDataXml::mergedIds().
    explicit IdRule(const QMap<QString, qsizetype>& a_mergedIds)
        : m_mergedIds(a_mergedIds)
    {}

    void add(const QString& a_sId) { ++m_counts[a_sId]; }
    void check(const QString& a_sId, QList<ScenarioFinding>& a_findings);

private:
    QHash<QString, qsizetype> m_counts; ///< emitters of the scenario, by id
    QMap<QString, qsizetype> m_mergedIds;
};

/// The rule about missing settings: sets those of a new object, with a finding for
/// each.
class SettingsRule
{
public:
    /// `a_pEmitter`: the object as an emitter; null when it is not one.
    void check(ScenarioObject& a_object, SzenarioEmitter* a_pEmitter, QList<ScenarioFinding>& a_findings);

private:
    SzenarioEmitter m_fresh{{}, {}}; ///< source of the settings of a new object
};

/// The rule about classes. An empty set knows every class.
void checkClass(const SzenarioEmitter& a_emitter, const QSet<QString>& a_knownClasses,
                QList<ScenarioFinding>& a_findings);

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SCENARIONETWORK_H
#define SIMULATIONDATA_SCENARIONETWORK_H

#include "simulationdata/enumerations.h"
#include "simulationdata/scenarioobject.h"

#include <QColor>
#include <QList>
#include <QSet>

namespace Simulation {

class SzenarioEmitter;

/// A network of emitters that share one frequency behaviour and take turns by
/// one schedule. Holds its members strongly, once as a set and once as a list
/// in order, whose first emitter is the head.
///
/// A member learns of its network only through its own setScenarioNetwork(),
/// which is the caller's. A default object is black, hierarchical and empty.
class SIMULATIONDATA_EXPORT ScenarioNetwork : public ScenarioObject
{
public:
    explicit ScenarioNetwork(const QString& a_sId);
    /// With the source's name, all that the base class takes, colour, type and
    /// the same members.
    ScenarioNetwork(const QString& a_sId, const std::shared_ptr<ScenarioNetwork>& a_source);
    ~ScenarioNetwork() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// Also takes colour, type and the same members when the source is a network.
    void copy(std::shared_ptr<ScenarioObject> a_source) override;
    [[nodiscard]] std::shared_ptr<ScenarioObject> clone() override;

    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor& a_color) { m_color = a_color; }

    [[nodiscard]] NetworkType networkType() const { return m_eNetworkType; }
    void setNetworkType(NetworkType a_eType) { m_eNetworkType = a_eType; }

    /// The members, without order.
    [[nodiscard]] QSet<std::shared_ptr<SzenarioEmitter>> emitter() const { return m_emitterSet; }
    /// The members in order, the head first.
    [[nodiscard]] QList<std::shared_ptr<SzenarioEmitter>> emitterList() const { return m_emitterList; }
    [[nodiscard]] bool containsEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter) const;
    /// The place in the list, or -1.
    [[nodiscard]] int indexForEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter) const;
    /// The member at a place, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> emitterForIndex(int a_iIndex) const;

    /// Appends a member; false for null and for one that is a member already.
    bool addEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// Removes a member and the emissions that name it; false when it is none.
    /// Networks that are copies of each other keep theirs: the groups of this one
    /// become its own.
    bool removeEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    /// Puts an emitter first; one that is no member becomes one. Null is ignored.
    void setHeadEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// The first member, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> headEmitter() const;

    /// Whom the schedule lets speak at a time (ms), or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> emitterActiveAt(unsigned int a_uiTime) const;

private:
    friend class ScenarioGraph;

    void takeFrom(const ScenarioNetwork& a_source);

    QSet<std::shared_ptr<SzenarioEmitter>> m_emitterSet;
    QColor m_color = Qt::black;
    NetworkType m_eNetworkType = NetworkType::Hierarchical;
    QList<std::shared_ptr<SzenarioEmitter>> m_emitterList;
};

} // namespace Simulation

#endif

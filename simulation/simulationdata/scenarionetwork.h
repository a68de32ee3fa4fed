#ifndef SIMULATIONDATA_SCENARIONETWORK_H
#define SIMULATIONDATA_SCENARIONETWORK_H

#include "simulationdata/enumerations.h"
#include "simulationdata/scenarioobject.h"

#include <QColor>
#include <QList>
#include <QSet>

namespace Simulation {

class SzenarioEmitter;

/// A network of emitters that share one frequency behaviour and take turns by one
/// schedule. Holds its members strongly, as a set and as a list in order. The first
/// emitter of the list is the head.
///
/// The network does not set the reference of a member to its network: the caller
/// does, with SzenarioEmitter::setScenarioNetwork(). A default object is black,
/// hierarchical and empty.
class SIMULATIONDATA_EXPORT ScenarioNetwork : public ScenarioObject
{
public:
    explicit ScenarioNetwork(const QString& a_sId);
    /// Copies the source: its name, all that the base class copies, its colour and
    /// type, and the same members. A null source adds nothing.
    ScenarioNetwork(const QString& a_sId, const std::shared_ptr<ScenarioNetwork>& a_source);
    ~ScenarioNetwork() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// Also copies colour, type and the same members when the source is a network.
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

    /// Appends a member; false for null and for an emitter that is a member already.
    bool addEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// Removes a member and the emissions that name it; false when it is not a
    /// member. When copies of this network share its groups, it gets groups of its
    /// own first, so that the copies keep theirs.
    bool removeEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    /// Makes an emitter the first member, also one that was not a member. Null is
    /// ignored.
    void setHeadEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// The first member, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> headEmitter() const;

    /// The emitter of the schedule's emission at a time (ms), or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> emitterActiveAt(unsigned int a_uiTime) const;

private:
    friend class ObjectReleaser;

    void takeFrom(const ScenarioNetwork& a_source);

    QSet<std::shared_ptr<SzenarioEmitter>> m_emitterSet;
    QColor m_color = Qt::black;
    NetworkType m_eNetworkType = NetworkType::Hierarchical;
    QList<std::shared_ptr<SzenarioEmitter>> m_emitterList;
};

} // namespace Simulation

#endif

#ifndef SIMULATIONDATA_SCENARIONETWORK_H
#define SIMULATIONDATA_SCENARIONETWORK_H

#include "simulationdata/enumerations.h"
#include "simulationdata/scenarioobject.h"

#include <QColor>
#include <QList>
#include <QSet>

namespace Simulation {

class SzenarioEmitter;

/// A network of emitters that share one frequency behaviour and send in turn by one
/// schedule. It holds its members strongly, as a set and as a list in order. The
/// first emitter of the list is the head.
///
/// Adding a member does not set the network of that emitter: the caller does this
/// with SzenarioEmitter::setScenarioNetwork(). A default object is black,
/// hierarchical and empty.
class SIMULATIONDATA_EXPORT ScenarioNetwork : public ScenarioObject
{
public:
    explicit ScenarioNetwork(const QString& a_sId);
    /// Copies name, colour, type and members of the source, and all that the base
    /// class copies. With a null source no field is copied.
    ScenarioNetwork(const QString& a_sId, const std::shared_ptr<ScenarioNetwork>& a_source);
    ~ScenarioNetwork() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// Also copies colour, type and members when the source is a network.
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

    /// Appends a member. Returns false for null and for an emitter that already is a
    /// member.
    bool addEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// Removes a member and its emissions. Returns false when the emitter is not a
    /// member. Copies of this network may share its groups. Then this network first
    /// gets its own groups, so that the groups of the copies do not change.
    bool removeEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    /// Makes an emitter the first member. An emitter that was not a member becomes
    /// one. Null is ignored.
    void setHeadEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// The first member, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> headEmitter() const;

    /// The emitter that the schedule names at a time (ms), or null.
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

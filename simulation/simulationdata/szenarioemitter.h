#ifndef SIMULATIONDATA_SZENARIOEMITTER_H
#define SIMULATIONDATA_SZENARIOEMITTER_H

#include "simulationdata/emissionsettings.h"
#include "simulationdata/hractivity.h"
#include "simulationdata/scenarioobject.h"
#include "simulationdata/tpos.h"

#include <QList>
#include <QSet>

#include <cstdint>

namespace Simulation {

class IPositionSettings;
class ScenarioNetwork;
class SignalPackage;
class TransmitterSettings;

/// One emitter of a scenario: a scenario object with a class, a transmitter and a
/// position. It may belong to one network, whose frequency behaviour and schedule
/// then apply to it, and it may be linked to another emitter, whose position it then
/// follows.
///
/// The caller sets both sides of a membership or link: the emitter's network and the
/// network's members, the link target and the target's linked emitters. Network and
/// link target are held weakly, linked emitters strongly. The class name's spelling
/// is part of the interface.
class SIMULATIONDATA_EXPORT SzenarioEmitter : public ScenarioObject
{
public:
    /// At (0, 0), not moving, with default transmitter settings and no relation.
    SzenarioEmitter(const QString& a_sId, const QString& a_sName);
    /// Copies all that the base class copies from a source, and its class,
    /// transmitter, position, link target and linked emitters.
    SzenarioEmitter(const QString& a_sId, const QString& a_sName,
                    const std::shared_ptr<SzenarioEmitter>& a_source);
    ~SzenarioEmitter() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// The network's schedule while the emitter belongs to one, otherwise its own.
    /// ScenarioObject::emissionSettings() always returns its own.
    [[nodiscard]] EmissionSettings* emissionSettings() const override;

    /// Also copies class, transmitter, position, link target and linked emitters when
    /// the source is an emitter. The file of an ELINT emitter is not copied.
    void copy(std::shared_ptr<ScenarioObject> a_source) override;
    [[nodiscard]] std::shared_ptr<ScenarioObject> clone() override;

    /// Whether the emitter sends at a time (ms): its flag and its network's are set,
    /// its frequency and position are active, and there is broadcast mode or an
    /// emission, which in a network must name this emitter.
    [[nodiscard]] virtual bool isActiveAt(unsigned int a_uiTime) const;

    /// The emitters that take their position from this one.
    [[nodiscard]] virtual QSet<std::shared_ptr<SzenarioEmitter>> linkedEmitter() const
    {
        return m_linkedEmitters;
    }
    /// Null and the emitter itself are ignored.
    virtual void addLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter);
    virtual void removeLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter);

    /// All emitters that move with this one, directly or through others,
    /// without itself.
    [[nodiscard]] QSet<std::shared_ptr<SzenarioEmitter>> affectedLinkedEmitter() const;

    [[nodiscard]] QString getId() const { return id(); }
    [[nodiscard]] QString getName() const { return name(); }
    [[nodiscard]] QString getDescription() const { return description(); }

    [[nodiscard]] QString getClass() const { return m_sClass; }
    void setClass(const QString& a_sClass) { m_sClass = a_sClass; }

    /// Owned by the emitter; null only after it was set to null. The spelling is part
    /// of the interface.
    [[nodiscard]] TransmitterSettings* getTranmitterSettings() const { return m_pTransmitterSettings.get(); }
    /// Takes ownership and deletes the former settings, unless they are the same.
    void setTransmitterSettings(TransmitterSettings* a_pSettings);

    /// The frequency behaviour of the network while the emitter belongs to one,
    /// otherwise its own.
    [[nodiscard]] IFrequencySettings* getFrequencySettings() const;

    /// The position of the last emitter in the chain of link targets; its own
    /// position without a link, and when the chain is a circle. The result is kept
    /// for all emitters of the chain until any link or position is set.
    [[nodiscard]] IPositionSettings* positionSettings() const;
    [[nodiscard]] IPositionSettings* getPositionSettings() const { return positionSettings(); }
    /// The emitter's own position, whatever it is linked to; null only after it was
    /// set to null.
    [[nodiscard]] IPositionSettings* ownPositionSettings() const { return m_pPositionSettings.get(); }
    /// Takes ownership of the emitter's own position and deletes the former one,
    /// unless they are the same. With null the emitter is never active unless it is
    /// linked.
    void setPositionSettings(IPositionSettings* a_pSettings);

    [[nodiscard]] std::shared_ptr<ScenarioNetwork> network() const { return m_network.lock(); }
    /// Held weakly: once the network is destroyed, the emitter uses its own settings
    /// again.
    void setScenarioNetwork(const std::shared_ptr<ScenarioNetwork>& a_network) { m_network = a_network; }
    [[nodiscard]] bool hasNetwork() const { return !m_network.expired(); }

    [[nodiscard]] std::shared_ptr<SzenarioEmitter> linkTargetEmitter() const { return m_linkTarget.lock(); }
    /// Held weakly: once the target is destroyed, the emitter uses its own position
    /// again.
    void setLinkTargetEmitter(const std::shared_ptr<SzenarioEmitter>& a_target);
    [[nodiscard]] bool isLinked() const { return !m_linkTarget.expired(); }

    /// Queries at a time (ms since scenario start), which follow network and link.
    /// Without settings the frequency is 0 Hz, the position (0, 0) and the heading 0
    /// degrees.
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const;
    [[nodiscard]] TPos getPositionAt(unsigned int a_uiTime) const;
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const;
    /// How long the emitter has been sending (ms), or -1; in a network only
    /// while the emission names this emitter.
    [[nodiscard]] long long timeActiveAt(unsigned int a_uiTime) const;
    /// The signal package that the emitter sends, or null; in a network only while
    /// the emission names this emitter.
    [[nodiscard]] std::shared_ptr<SignalPackage> signalPackageAt(unsigned int a_uiTime) const;

    /// The answers of isActiveAt(), timeActiveAt() and signalPackageAt() at one time.
    struct Transmission
    {
        bool isActive = false;
        long long timeActive = -1; ///< ms, or -1
        std::shared_ptr<SignalPackage> signalPackage;
    };
    /// Returns all three with one search in the schedule. A class that overrides
    /// isActiveAt() overrides this as well.
    [[nodiscard]] virtual Transmission transmissionAt(unsigned int a_uiTime) const;

    /// The on-times of the schedule inside [start, end) ms, each filled with the
    /// frequency activities of resolution `a_dFactor` (Hz, for a chirp); no activity
    /// lies outside the window or its on-time. The answer stops at
    /// Limits::AnswerActivities.
    [[nodiscard]] QList<HRActivity> calculateBursts(unsigned int a_uiStart, unsigned int a_uiEnd,
                                                    double a_dFactor) const;

protected:
    /// Whether flag, frequency and position are active at a time (ms).
    [[nodiscard]] bool isReadyAt(unsigned int a_uiTime) const;

    /// Copies all that copy() copies from another emitter.
    void copyFrom(const SzenarioEmitter& a_source);

private:
    friend class ObjectReleaser;

    /// The result of following the chain of link targets.
    struct Chain
    {
        std::uint64_t epoch = 0; ///< count of link changes when it was followed; 0 = never
        IPositionSettings* end = nullptr;
        bool isCircle = false;
    };

    void takeFrom(const SzenarioEmitter& a_source);
    void followChain() const;
    [[nodiscard]] bool isOnAt(unsigned int a_uiTime) const;
    [[nodiscard]] boost::shared_ptr<EmissionSettings::Emission> ownEmissionAt(unsigned int a_uiTime) const;

    QString m_sClass;
    std::unique_ptr<TransmitterSettings> m_pTransmitterSettings;
    std::unique_ptr<IPositionSettings> m_pPositionSettings;
    std::weak_ptr<ScenarioNetwork> m_network;
    QSet<std::shared_ptr<SzenarioEmitter>> m_linkedEmitters;
    std::weak_ptr<SzenarioEmitter> m_linkTarget;
    mutable Chain m_chain;
};

} // namespace Simulation

#endif

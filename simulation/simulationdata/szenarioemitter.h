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
/// position. It may belong to one network; the network's frequency behaviour and
/// schedule then apply to it. It may be linked to another emitter; it then follows
/// that emitter's position.
///
/// The caller sets both sides of a membership: the emitter's network and the
/// network's members. The caller also sets both sides of a link: the link target and
/// the target's linked emitters. Network and link target are held weakly, linked
/// emitters strongly. The spelling of the class name is part of the interface.
class SIMULATIONDATA_EXPORT SzenarioEmitter : public ScenarioObject
{
public:
    /// The new emitter is at (0, 0), not moving, with default transmitter settings
    /// and no network or link.
    SzenarioEmitter(const QString& a_sId, const QString& a_sName);
    /// Copies all that the base class copies, and the source's class, transmitter,
    /// position, link target and linked emitters.
    SzenarioEmitter(const QString& a_sId, const QString& a_sName,
                    const std::shared_ptr<SzenarioEmitter>& a_source);
    ~SzenarioEmitter() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// The network's schedule while the emitter belongs to a network, otherwise its
    /// own. ScenarioObject::emissionSettings() always returns the emitter's own
    /// schedule.
    [[nodiscard]] EmissionSettings* emissionSettings() const override;

    /// Also copies class, transmitter, position, link target and linked emitters when
    /// the source is an emitter. The file of an ELINT emitter is not copied.
    void copy(std::shared_ptr<ScenarioObject> a_source) override;
    [[nodiscard]] std::shared_ptr<ScenarioObject> clone() override;

    /// Whether the emitter sends at a time (ms). The active flags of the emitter and
    /// its network must be set, and frequency and position must be active. The
    /// schedule must be in broadcast mode or have an emission at that time. In a
    /// network, this emission must name this emitter.
    [[nodiscard]] virtual bool isActiveAt(unsigned int a_uiTime) const;

    /// The emitters that take their position from this one.
    [[nodiscard]] virtual QSet<std::shared_ptr<SzenarioEmitter>> linkedEmitter() const
    {
        return m_linkedEmitters;
    }
    /// Null and the emitter itself are ignored.
    virtual void addLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter);
    virtual void removeLinkedEmitter(std::shared_ptr<SzenarioEmitter> a_emitter);

    /// All emitters that move with this one, directly or through others. The emitter
    /// itself is not included.
    [[nodiscard]] QSet<std::shared_ptr<SzenarioEmitter>> affectedLinkedEmitter() const;

    [[nodiscard]] QString getId() const { return id(); }
    [[nodiscard]] QString getName() const { return name(); }
    [[nodiscard]] QString getDescription() const { return description(); }

    [[nodiscard]] QString getClass() const { return m_sClass; }
    void setClass(const QString& a_sClass) { m_sClass = a_sClass; }

    /// The transmitter settings, owned by the emitter. Null only after null was set.
    /// The spelling is part of the interface.
    [[nodiscard]] TransmitterSettings* getTranmitterSettings() const { return m_pTransmitterSettings.get(); }
    /// Takes ownership and deletes the former settings, unless both are the same
    /// object.
    void setTransmitterSettings(TransmitterSettings* a_pSettings);

    /// The network's frequency behaviour while the emitter belongs to a network,
    /// otherwise its own.
    [[nodiscard]] IFrequencySettings* getFrequencySettings() const;

    /// The position settings of the last emitter in the chain of link targets. The
    /// emitter's own settings without a link, and when the chain is a circle. The
    /// result is kept for all emitters of the chain until any link or position is
    /// set.
    [[nodiscard]] IPositionSettings* positionSettings() const;
    [[nodiscard]] IPositionSettings* getPositionSettings() const { return positionSettings(); }
    /// The emitter's own position settings, also while it is linked. Null only after
    /// null was set.
    [[nodiscard]] IPositionSettings* ownPositionSettings() const { return m_pPositionSettings.get(); }
    /// Takes ownership of the emitter's own position settings and deletes the former
    /// ones, unless both are the same object. With null the emitter can be active
    /// only while it is linked.
    void setPositionSettings(IPositionSettings* a_pSettings);

    [[nodiscard]] std::shared_ptr<ScenarioNetwork> network() const { return m_network.lock(); }
    /// The network is held weakly. When it is destroyed, the emitter uses its own
    /// settings again.
    void setScenarioNetwork(const std::shared_ptr<ScenarioNetwork>& a_network) { m_network = a_network; }
    [[nodiscard]] bool hasNetwork() const { return !m_network.expired(); }

    [[nodiscard]] std::shared_ptr<SzenarioEmitter> linkTargetEmitter() const { return m_linkTarget.lock(); }
    /// The target is held weakly. When it is destroyed, the emitter uses its own
    /// position again.
    void setLinkTargetEmitter(const std::shared_ptr<SzenarioEmitter>& a_target);
    [[nodiscard]] bool isLinked() const { return !m_linkTarget.expired(); }

    /// The values at a time (ms since scenario start), according to network and
    /// link. Without settings the frequency is 0 Hz, the position (0, 0) and the
    /// heading 0 degrees.
    [[nodiscard]] double getFrequencyAt(unsigned int a_uiTime) const;
    [[nodiscard]] TPos getPositionAt(unsigned int a_uiTime) const;
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const;
    /// How long the emitter has been sending (ms); -1 without an emission at the
    /// time. In a network, the emission must name this emitter.
    [[nodiscard]] long long timeActiveAt(unsigned int a_uiTime) const;
    /// The signal package that the emitter sends, or null. In a network, the
    /// emission must name this emitter.
    [[nodiscard]] std::shared_ptr<SignalPackage> signalPackageAt(unsigned int a_uiTime) const;

    /// The results of isActiveAt(), timeActiveAt() and signalPackageAt() at one
    /// time.
    struct Transmission
    {
        bool isActive = false;
        long long timeActive = -1; ///< ms; -1 without an emission
        std::shared_ptr<SignalPackage> signalPackage;
    };
    /// Returns the three values of Transmission with one search in the schedule. A
    /// class that overrides isActiveAt() overrides transmissionAt() as well.
    [[nodiscard]] virtual Transmission transmissionAt(unsigned int a_uiTime) const;

    /// The on-times of the schedule in [start, end) (ms), divided into frequency
    /// activities. `a_dFactor` (Hz) is the resolution of a chirp. No activity lies
    /// outside the window or its on-time. The answer has at most
    /// Limits::AnswerActivities activities.
    [[nodiscard]] QList<HRActivity> calculateBursts(unsigned int a_uiStart, unsigned int a_uiEnd,
                                                    double a_dFactor) const;

protected:
    /// Whether the active flag is set, and frequency and position are active at a time
    /// (ms).
    [[nodiscard]] bool isReadyAt(unsigned int a_uiTime) const;

    /// Copies from another emitter all that copy() copies.
    void copyFrom(const SzenarioEmitter& a_source);

private:
    friend class ObjectReleaser;

    /// The result of following the chain of link targets.
    struct Chain
    {
        std::uint64_t epoch = 0; ///< number of link changes when the chain was followed; 0 = never
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

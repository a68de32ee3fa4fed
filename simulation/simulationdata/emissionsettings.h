#ifndef SIMULATIONDATA_EMISSIONSETTINGS_H
#define SIMULATIONDATA_EMISSIONSETTINGS_H

#include "simulationdata/hractivity.h"
#include "simulationdata/simulationdata_export.h"

#include <boost/shared_ptr.hpp>
#include <QList>
#include <QString>

#include <cstdint>
#include <memory>

namespace Simulation {

class SignalPackage;
class SzenarioEmitter;

/// The transmission schedule of an emitter or of a network of emitters. An emission
/// defines which emitter sends which signal package, when and for how long. Named
/// groups bundle emissions and other groups. The schedule repeats with a period. In
/// broadcast mode the schedule is ignored and the transmitter is always on.
///
/// A value class. Copies share the emissions and groups, so a change of an emission or
/// a group shows in all copies. partGroups() ends the sharing of groups. Used from one
/// thread. A default object has no emission, an unlimited period and no broadcast.
/// Times are milliseconds since scenario start.
class SIMULATIONDATA_EXPORT EmissionSettings
{
public:
    /// The value of an unlimited period: the schedule does not repeat.
    static constexpr std::int64_t s_iUnlimited = 0x7FFFFFFFFFFFFFFF;

    /// One entry of the schedule. It is active on (start, start + duration]: not yet
    /// at its start, but still at its end.
    struct SIMULATIONDATA_EXPORT Emission
    {
        Emission() = default;
        Emission(const Emission&) = delete;
        Emission& operator=(const Emission&) = delete;
        ~Emission();

        std::uint32_t id = 0;                         ///< groups of a document refer to this number
        std::int64_t start = 0;                       ///< ms since the beginning of the period
        std::int64_t duration = 0;                    ///< ms; never active when negative
        std::shared_ptr<SzenarioEmitter> emitter;     ///< the sender; may be null
        std::shared_ptr<SignalPackage> signalPackage; ///< the signal; may be null
    };

    /// A named bundle of emissions and other groups.
    struct SIMULATIONDATA_EXPORT Group
    {
        Group() = default;
        Group(const Group&) = delete;
        Group& operator=(const Group&) = delete;
        ~Group();

        std::uint32_t id = 0; ///< other groups of a document refer to this number
        QString name;
        QList<boost::shared_ptr<Group>> groups;
        QList<boost::shared_ptr<Emission>> emissions;
    };

    EmissionSettings() = default;
    EmissionSettings(const EmissionSettings& a_other);
    EmissionSettings& operator=(const EmissionSettings& a_other);

    /// Also frees groups that hold each other in a circle, unless another object
    /// holds them.
    ~EmissionSettings();

    /// Returns a new emission with the default values. It is not added to the
    /// schedule.
    [[nodiscard]] static boost::shared_ptr<Emission> createEmission();
    [[nodiscard]] static boost::shared_ptr<Group> createGroup();

    /// The emissions in ascending order of their starts.
    [[nodiscard]] const QList<boost::shared_ptr<Emission>>& emissions() const { return m_emissions; }
    [[nodiscard]] const QList<boost::shared_ptr<Group>>& groups() const { return m_groups; }

    /// Inserts an emission by its start, before emissions with the same start. Null
    /// is ignored.
    void addEmission(const boost::shared_ptr<Emission>& a_emission);

    /// Inserts many emissions in O(n log n). Emissions with the same start
    /// keep the given order. The result equals adding them one by one from the last
    /// to the first.
    void addEmissions(const QList<boost::shared_ptr<Emission>>& a_emissions);

    /// Moves an emission to its place in the order after its start was changed. Adds
    /// an emission that the schedule does not contain.
    void updateEmission(const boost::shared_ptr<Emission>& a_emission);

    /// Removes an emission from the schedule and from every group. Then removes the
    /// groups that are empty.
    void removeEmission(const boost::shared_ptr<Emission>& a_emission);

    /// Removes all emissions of an emitter as removeEmission() does. Changes nothing
    /// when the emitter has no emission.
    void removeEmissions(const std::shared_ptr<SzenarioEmitter>& a_emitter);
    /// Whether removeEmissions() for this emitter would remove an emission or an
    /// empty group from a group.
    [[nodiscard]] bool removalChangesGroups(const std::shared_ptr<SzenarioEmitter>& a_emitter) const;

    void replaceEmitter(const std::shared_ptr<SzenarioEmitter>& a_old,
                        const std::shared_ptr<SzenarioEmitter>& a_replacement);
    void replaceSignalPackage(const std::shared_ptr<SignalPackage>& a_old,
                              const std::shared_ptr<SignalPackage>& a_replacement);

    void addGroup(const boost::shared_ptr<Group>& a_group);
    /// Removes a group from the list and from every group that holds it.
    void removeGroup(const boost::shared_ptr<Group>& a_group);
    /// Removes groups without members. Repeats this for groups that lose their last
    /// member, until every group has a member.
    void clearEmptyGroups();
    /// Gives this schedule its own groups when copies of the schedule share the
    /// groups. The new groups have the same members. Removing a member from a new
    /// group does not change the groups of the copies. The emissions stay shared.
    /// Changes nothing when no copy shares the groups.
    void partGroups();
    /// Drops all emissions and groups.
    void clearAll();

    [[nodiscard]] bool isBroadcast() const { return m_bBroadcast; }
    void setBroadcast(bool a_bBroadcast) { m_bBroadcast = a_bBroadcast; }

    /// The period in ms; s_iUnlimited when the schedule does not repeat.
    [[nodiscard]] long long duration() const { return m_iDuration; }
    /// A value below 1 makes the period unlimited.
    void setDuration(long long a_iDuration);

    /// Replaces the schedule by one emission that covers the period. When the
    /// package is null, the package of the first emission is used. The spelling is
    /// part of the interface.
    void makeContinousActive(const std::shared_ptr<SzenarioEmitter>& a_emitter,
                             const std::shared_ptr<SignalPackage>& a_package);

    /// The latest emission that started before a time (ms). Null when there is none, or
    /// when this emission has ended. The time is taken modulo the period. O(log n).
    [[nodiscard]] boost::shared_ptr<Emission> emissionAt(unsigned int a_uiTime) const;
    /// Whether emissionAt() returns an emission for a time (ms). Broadcast mode is
    /// ignored.
    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const;
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> activeEmitterAt(unsigned int a_uiTime) const;
    [[nodiscard]] std::shared_ptr<SignalPackage> signalPackageAt(unsigned int a_uiTime) const;
    /// How long the emission at a time (ms) has been on (ms); -1 when there is none.
    [[nodiscard]] long long timeActiveAt(unsigned int a_uiTime) const;
    /// Like the overload above, for the emission that emissionAt() returned for that
    /// time.
    [[nodiscard]] long long timeActiveAt(unsigned int a_uiTime, const Emission& a_emission) const;
    /// Always 0xFFFFFFFF, because a schedule never ends.
    [[nodiscard]] unsigned int activeUntil() const;

    /// The on-times in the window [start, start + length) (ms) of one emitter, or of
    /// all emitters when `a_pEmitter` is null. The frequency of an on-time is 0. The
    /// first on-time may begin, and even end, before the window. No on-time ends after
    /// the window. In broadcast mode the result is the window itself, or empty when
    /// the schedule is empty. The result has at most
    /// Limits::AnswerActivities on-times.
    [[nodiscard]] QList<HRActivity> calculateHRActivities(const SzenarioEmitter* a_pEmitter,
                                                          unsigned int a_uiStart,
                                                          unsigned int a_uiLength) const;

private:
    friend class ObjectReleaser;

    [[nodiscard]] qsizetype lowerBound(std::int64_t a_iStart) const;

    QList<boost::shared_ptr<Emission>> m_emissions;
    QList<boost::shared_ptr<Group>> m_groups;
    /// Every schedule that shares these groups holds this object, so the use count is
    /// the number of such schedules. Null when no copy has shared these groups.
    mutable std::shared_ptr<const int> m_pSharing;
    std::int64_t m_iDuration = s_iUnlimited;
    bool m_bBroadcast = false;
};

} // namespace Simulation

#endif

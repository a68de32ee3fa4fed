#ifndef SIMULATIONDATA_SCENARIODATABINARY_H
#define SIMULATIONDATA_SCENARIODATABINARY_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <cstdint>
#include <memory>

class QDataStream;
class QIODevice;

namespace Simulation {

class ISignalPackageProvider;
class ScenarioNetwork;
class SzenarioEmitter;

/// The compact form of a scenario: a count and one record per emitter, with its
/// id, name, description, active flag, default mark, link target and class.
/// Frequency, position, transmitter and emissions of the emitters, the networks
/// and the header below are not part of it; an ELINT emitter comes back as a
/// plain one.
///
/// The object holds its emitters and networks strongly and, when they are
/// replaced or it is destroyed, takes apart those that nothing else holds. Used
/// from one thread. A new object is empty.
class SIMULATIONDATA_EXPORT ScenarioDataBinary
{
public:
    /// An emitter that was read without the link that its record names.
    struct UnresolvedLink
    {
        QString emitterId;
        QString targetId;
    };

    /// The provider is only kept for whoever asks: no record names a package.
    /// It is not owned and may be null.
    explicit ScenarioDataBinary(ISignalPackageProvider* a_pProvider);
    ~ScenarioDataBinary();

    [[nodiscard]] ISignalPackageProvider* signalPackageProvider() const { return m_pProvider; }

    [[nodiscard]] QSet<std::shared_ptr<SzenarioEmitter>> scenarioEmitter() const { return m_emitters; }
    /// Replaces the emitters; null is left out. A default emitter that is not
    /// among the new ones is forgotten.
    void setScenarioEmitter(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters);
    [[nodiscard]] QSet<std::shared_ptr<ScenarioNetwork>> scenarioNetworks() const { return m_networks; }
    /// Replaces the networks; null is left out.
    void setScenarioNetworks(const QSet<std::shared_ptr<ScenarioNetwork>>& a_networks);

    [[nodiscard]] QString name() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] QString author() const { return m_sAuthor; }
    void setAuthor(const QString& a_sAuthor) { m_sAuthor = a_sAuthor; }
    [[nodiscard]] QString description() const { return m_sDescription; }
    void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }
    /// How long the scenario lasts (ms); 0 when it says nothing.
    [[nodiscard]] unsigned int duration() const { return m_uiDuration; }
    void setDuration(unsigned int a_uiDuration) { m_uiDuration = a_uiDuration; }
    /// The spelling is part of the interface.
    [[nodiscard]] QString persistantId() const { return m_sPersistantId; }
    void setPersistantId(const QString& a_sId) { m_sPersistantId = a_sId; }
    /// The emitter that applications offer first, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> defaultEmitter() const { return m_defaultEmitter; }
    /// One that is not among the emitters is kept, but not written.
    void setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    /// Writes the emitters: those that others are linked to before these,
    /// otherwise in the order of their ids, so equal scenarios give equal bytes
    /// and a reader, which resolves links among what it has read, finds them.
    /// Where links run in a circle the emitter of the smallest id on it comes
    /// first; its own link is written, but leads a reader nowhere.
    ///
    /// False, after one trace, when there is no device open for writing or it
    /// takes not all; also when a reader would refuse the scenario
    /// (Limits::DocumentBytes, Limits::ScenarioObjects), and nothing is written
    /// then.
    bool toBinary(QIODevice* a_pDevice) const;
    /// Empty when a reader would refuse it. A scenario without emitters takes
    /// four bytes.
    [[nodiscard]] QByteArray toBinary() const;

    /// Reads a stream from where the device stands and leaves what follows it
    /// there. A device that has nothing to give at the moment has ended: nothing
    /// is waited for. The emitters are added to those that are held; the first
    /// that is marked as default becomes the default emitter, without one it
    /// stays. A link is made to the emitter that has the id and was read last, or
    /// else to one that was there before; the emitter's own id makes none.
    ///
    /// True when all was read that the count promises. Otherwise false, after
    /// one trace, with errorString(): the records that came whole are kept.
    /// Whatever a stream claims, memory follows what it holds.
    bool fromBinary(QIODevice* a_pDevice);
    bool fromBinary(const QByteArray& a_data);

    /// Where and why the last reading broke off, "record 3 of 10, name: the
    /// stream ends"; empty when all was well.
    [[nodiscard]] QString errorString() const { return m_sErrorString; }
    /// The links of the last reading that led to no emitter read before.
    [[nodiscard]] QList<UnresolvedLink> unresolvedLinks() const { return m_unresolvedLinks; }

private:
    ScenarioDataBinary(const ScenarioDataBinary& a_other) = delete;
    ScenarioDataBinary& operator=(const ScenarioDataBinary& a_other) = delete;

    [[nodiscard]] bool fitsReader(QString* a_pReason) const;
    void writeEmitter(QDataStream& a_stream, std::shared_ptr<SzenarioEmitter> a_emitter) const;
    bool readEmitters(QDataStream& a_stream);
    /// The emitter of the next record, which is entered; null, with
    /// errorString(), when the record is not whole.
    std::shared_ptr<SzenarioEmitter> readEmitter(QDataStream& a_stream);
    void link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const QString& a_sTargetId);
    /// While reading: the emitter of the set that has the id, the last one read
    /// when there are several, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> emitterForId(const QString& a_sId) const;

    ISignalPackageProvider* m_pProvider;
    QSet<std::shared_ptr<SzenarioEmitter>> m_emitters;
    QSet<std::shared_ptr<ScenarioNetwork>> m_networks;
    QString m_sName;
    QString m_sAuthor;
    QString m_sDescription;
    QString m_sPersistantId;
    unsigned int m_uiDuration = 0; ///< ms
    std::shared_ptr<SzenarioEmitter> m_defaultEmitter;

    // Of one reading
    QHash<QString, std::shared_ptr<SzenarioEmitter>> m_emittersById;
    std::int64_t m_iStreamBytes = 0; ///< taken from the device
    bool m_bDefaultRead = false;
    QString m_sErrorString;
    QList<UnresolvedLink> m_unresolvedLinks;
};

} // namespace Simulation

#endif

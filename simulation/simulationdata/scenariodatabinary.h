#ifndef SIMULATIONDATA_SCENARIODATABINARY_H
#define SIMULATIONDATA_SCENARIODATABINARY_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <memory>

class QIODevice;

namespace Simulation {

class CompactReader;
class ISignalPackageProvider;
class ScenarioNetwork;
class SzenarioEmitter;

/// The compact form of a scenario: the number of emitters and one record for each. A
/// record holds id, name, description, active flag, default mark, link target and
/// class. The format does not contain the emitters' frequency, position, transmitter
/// and emissions, the networks, or the header fields below. An ELINT emitter is read
/// back as a plain emitter.
///
/// The object shares the ownership of its emitters and networks. When they are
/// replaced or the object is destroyed, emitters and networks without another owner
/// are freed, even when they refer to each other in circles. Used from one thread. A
/// new object is empty.
class SIMULATIONDATA_EXPORT ScenarioDataBinary
{
public:
    /// An emitter whose link target was not found when the emitter was read.
    struct UnresolvedLink
    {
        QString emitterId;
        QString targetId;
    };

    /// The provider is only stored and returned by signalPackageProvider(), because
    /// records contain no packages. It is not owned and may be null.
    explicit ScenarioDataBinary(ISignalPackageProvider* a_pProvider);
    ~ScenarioDataBinary();

    [[nodiscard]] ISignalPackageProvider* signalPackageProvider() const { return m_pProvider; }

    [[nodiscard]] QSet<std::shared_ptr<SzenarioEmitter>> scenarioEmitter() const { return m_emitters; }
    /// Replaces the emitters; null is left out. A default emitter that is not among
    /// the new ones is reset.
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
    /// The duration of the scenario (ms); 0 when it is not set.
    [[nodiscard]] unsigned int duration() const { return m_uiDuration; }
    void setDuration(unsigned int a_uiDuration) { m_uiDuration = a_uiDuration; }
    /// The spelling is part of the interface.
    [[nodiscard]] QString persistantId() const { return m_sPersistantId; }
    void setPersistantId(const QString& a_sId) { m_sPersistantId = a_sId; }
    /// The emitter that applications offer first, or null.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> defaultEmitter() const { return m_defaultEmitter; }
    /// A default emitter that is not among the emitters is stored, but not written.
    void setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    /// Writes the emitters. A link target is written before the emitters that are
    /// linked to it, because a reader resolves links only to emitters that it has
    /// read. Otherwise the emitters are in the order of their ids, so equal
    /// scenarios give equal bytes. In a circle of links the emitter with the
    /// smallest id comes first. Its own link is written, but a reader cannot resolve
    /// it.
    ///
    /// Returns false, after one trace, when no device is open for writing or the
    /// device does not accept all bytes. Also returns false when the scenario
    /// exceeds a limit of the reader (Limits::DocumentBytes,
    /// Limits::ScenarioObjects). In this case no byte is written.
    bool toBinary(QIODevice* a_pDevice) const;
    /// Returns the bytes. Empty, after one trace, when the scenario exceeds a limit
    /// of the reader. A scenario without emitters takes four bytes.
    [[nodiscard]] QByteArray toBinary() const;

    /// Reads a stream from the current position of the device, but no bytes after
    /// the stream. The function does not wait: when the device has no bytes available,
    /// the stream counts as ended. The emitters are added to the present ones. The
    /// first emitter with a default mark becomes the default emitter. Without such
    /// an emitter, the present default emitter stays.
    ///
    /// A link refers to its target by id. Among the emitters read so far, the last
    /// one with this id becomes the target. If there is none, an emitter with this id
    /// that was present before becomes the target. An emitter is never linked to
    /// itself.
    ///
    /// Returns true when all announced records were read. Otherwise returns false
    /// after one trace, with errorString(); complete records are kept. Memory grows
    /// with the bytes read, not with the sizes that the stream claims.
    bool fromBinary(QIODevice* a_pDevice);
    bool fromBinary(const QByteArray& a_data);

    /// The record and the reason at which the last reading stopped, for example
    /// "record 3 of 10, name: the stream ends". Empty on success.
    [[nodiscard]] QString errorString() const { return m_sErrorString; }
    /// The links of the last reading whose target was not found.
    [[nodiscard]] QList<UnresolvedLink> unresolvedLinks() const { return m_unresolvedLinks; }

private:
    ScenarioDataBinary(const ScenarioDataBinary& a_other) = delete;
    ScenarioDataBinary& operator=(const ScenarioDataBinary& a_other) = delete;

    /// Reads a stream. Null when no device is open for reading, which is an error.
    bool readFrom(CompactReader* a_pReader);
    bool readEmitters(CompactReader& a_reader);
    /// Reads the next record and adds its emitter. Returns null, with errorString(),
    /// when the record is not complete.
    std::shared_ptr<SzenarioEmitter> readEmitter(CompactReader& a_reader);
    void link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const QString& a_sTargetId);
    /// While reading: the emitter with that id, or the last one read when several
    /// emitters have the id. Null when there is no such emitter.
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

    // State of one reading
    QHash<QString, std::shared_ptr<SzenarioEmitter>> m_emittersById;
    bool m_bDefaultRead = false;
    QString m_sErrorString;
    QList<UnresolvedLink> m_unresolvedLinks;
};

} // namespace Simulation

#endif

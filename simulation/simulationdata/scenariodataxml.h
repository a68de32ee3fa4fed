#ifndef SIMULATIONDATA_SCENARIODATAXML_H
#define SIMULATIONDATA_SCENARIODATAXML_H

#include "simulationdata/enumerations.h"
#include "simulationdata/readingreport.h"
#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

class QIODevice;

namespace Simulation {

class ISignalPackageProvider;
class ScenarioNetwork;
class ScenarioObject;
class ScenarioReferences;
class SzenarioEmitter;
class XmlDeviations;
class XmlReader;
class XmlWriter;
enum class EmitterType;

/// The scenario document: the objects of one scenario, its header and its noise. It
/// is read from and written to XML (root "Scenario", format version 4).
///
/// Signal packages are resolved through the provider. The document does not own the
/// provider, and the provider must outlive the document. Without a provider,
/// references to packages are dropped. The document holds its objects strongly. It
/// releases them when it is cleared, read again or destroyed. Objects without
/// another holder are then freed, even when they hold each other. Used from one
/// thread. A new document is empty and of the current version.
class SIMULATIONDATA_EXPORT ScenarioDataXml
{
public:
    /// The format version that is written.
    static constexpr std::uint32_t s_uiFileFormatVersion = 4;

    explicit ScenarioDataXml(ISignalPackageProvider* a_pProvider);
    ~ScenarioDataXml();

    /// Reads a document. The former objects are released after the root "Scenario"
    /// was read. Returns false when there is no root, the root has another name, or
    /// the file cannot be read. In this case only errorString() and report() change.
    ///
    /// Reading stops where a document ends early, is malformed or exceeds a limit.
    /// The result is then true, errorString() is set, and the part read before is
    /// kept. Only true with an empty errorString() means that the whole document was
    /// read.
    bool fromXml(const QByteArray& a_xml);
    bool fromXml(QIODevice* a_pDevice);
    bool fromXmlFile(const QString& a_sFile);

    /// The error text of the last reading or writing; empty without an error. Errors
    /// in a document have the form "line 3, column 7: reason". Errors of the file
    /// have no line and column.
    [[nodiscard]] QString errorString() const { return m_sErrorString; }

    /// What the last reading skipped, replaced or doubted in the document, with places.
    /// Empty when the document was taken as it is written.
    [[nodiscard]] const ReadingReport& report() const { return m_report; }

    /// The ids that occur in several emitter elements of the document last read, each
    /// with the number of its elements. Elements with the same id are read as one
    /// emitter: later elements overwrite earlier ones. The map is empty after other
    /// objects are set.
    [[nodiscard]] QMap<QString, qsizetype> mergedIds() const { return m_mergedIds; }

    /// Writes the document. An empty persistent id is first built from the name, the
    /// time and the machine, and kept. Objects are in the order of their ids,
    /// emitters before networks, so equal scenarios give equal bytes.
    ///
    /// The result is empty, after one trace, when it would exceed
    /// Limits::DocumentBytes: a reader would refuse such a document. Every emitter
    /// element contains the whole path of the emitter, also when this is the path of
    /// its link target. This adds to the size.
    ///
    /// Emitters that share an id are all written, but a reader merges them into one
    /// emitter. errorString() and one trace report this.
    [[nodiscard]] QByteArray toXml();
    /// Writes to a device that is open for writing. A failure is traced.
    void toXml(QIODevice* a_pDevice);
    /// Replaces the file as a whole. On failure, returns false and leaves the file
    /// unchanged. A reader gets back all objects only when the result is true and
    /// errorString() is empty.
    [[nodiscard]] bool toXmlFile(const QString& a_sFile);

    [[nodiscard]] QSet<std::shared_ptr<ScenarioObject>> scenarioObjects() const { return m_objects; }
    /// Replaces the objects; null is left out. A default emitter that is not among
    /// the new objects is reset.
    ///
    /// Before you leave out an emitter, remove all references to it:
    /// ScenarioNetwork::removeEmitter(), SzenarioEmitter::removeLinkedEmitter(),
    /// EmissionSettings::removeEmissions(). Otherwise, reading the saved document
    /// creates an emitter with the same id but without data.
    void setScenarioObjects(const QSet<std::shared_ptr<ScenarioObject>>& a_objects);

    /// The emitter that applications offer first, or null. When a document marks
    /// several default emitters, this is the first of them.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> getDefaultEmitter() const;
    /// Makes the emitter the only default emitter; null leaves none.
    void setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    [[nodiscard]] QString getName() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] QString getAuthor() const { return m_sAuthor; }
    void setAuthor(const QString& a_sAuthor) { m_sAuthor = a_sAuthor; }
    [[nodiscard]] QString getDescription() const { return m_sDescription; }
    void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }
    /// The identity of the scenario, which does not change with the name. The
    /// spelling is part of the interface.
    [[nodiscard]] QString getPersistantId() const { return m_sPersistantId; }
    void setPersistantId(const QString& a_sId) { m_sPersistantId = a_sId; }
    /// The duration of the scenario (ms); 0 when it is not set.
    [[nodiscard]] std::uint32_t getDuration() const { return m_uiDuration; }
    void setDuration(std::uint32_t a_uiDuration) { m_uiDuration = a_uiDuration; }
    [[nodiscard]] const ScenarioNoiseSettings& getNoiseSettings() const { return m_noiseSettings; }
    void setNoiseSettings(const ScenarioNoiseSettings& a_settings) { m_noiseSettings = a_settings; }

    /// Whether the document that was read is older than the current version.
    [[nodiscard]] bool isOlderFileVersion() const { return m_uiFileVersion < s_uiFileFormatVersion; }

    /// Convert objects to text with the root "ScenarioObjects" and back, for copying
    /// between scenarios. Reading accepts any root. For an id that occurs only in
    /// references, a plain emitter with that id is created. Default marks are not
    /// written. Writing needs no provider. Emitters that share an id are reported by
    /// one trace. The text is empty, after one trace, when it would exceed
    /// Limits::DocumentBytes.
    ///
    /// The caller owns the objects read: put them into a document or pass them to
    /// releaseObjects().
    [[nodiscard]] static QString xmlForObjects(const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                                               ISignalPackageProvider* a_pProvider);
    [[nodiscard]] static QSet<std::shared_ptr<ScenarioObject>>
    objectsForXml(const QString& a_sXml, ISignalPackageProvider* a_pProvider);

    /// Drops objects that no document holds. Frees objects that only hold each
    /// other, for example an emitter that its own schedule refers to. Objects that
    /// the caller still holds elsewhere stay complete.
    static void releaseObjects(QSet<std::shared_ptr<ScenarioObject>>&& a_objects);
    /// The same for one object: releaseObject(std::move(object)).
    static void releaseObject(std::shared_ptr<ScenarioObject> a_object);

    /// Returns "Hierarchical" for Hierarchical, otherwise "Star".
    [[nodiscard]] static QString networkTypeToString(NetworkType a_eType);
    /// Returns Star for "Star", otherwise Hierarchical.
    [[nodiscard]] static NetworkType stringToNetworkType(const QString& a_sText);

private:
    ScenarioDataXml(const ScenarioDataXml& a_other) = delete;
    ScenarioDataXml& operator=(const ScenarioDataXml& a_other) = delete;

    // The document as a whole (scenariodataxml.cpp)
    void clear();
    void readHeader(XmlReader& a_reader);
    QString readChildren(XmlReader& a_reader);
    void writeHeader(XmlWriter& a_writer) const;
    static bool writeObjects(XmlWriter& a_writer, const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                             const QList<std::shared_ptr<SzenarioEmitter>>& a_defaults,
                             const std::function<bool()>& a_stillReadable);

    // The objects of the document (scenariodataxml_objects.cpp)
    void readScenarioEmitter(XmlReader& a_reader, EmitterType a_eType, ScenarioReferences& a_references);
    static void writeScenarioEmitter(XmlWriter& a_writer, const SzenarioEmitter& a_emitter, bool a_bDefault);
    void readScenarioNetwork(XmlReader& a_reader, ScenarioReferences& a_references);
    static void writeScenarioNetwork(XmlWriter& a_writer, const ScenarioNetwork& a_network);

    ISignalPackageProvider* m_pProvider;
    QList<std::shared_ptr<SzenarioEmitter>> m_defaultEmitters;
    QSet<std::shared_ptr<ScenarioObject>> m_objects;
    QString m_sName;
    QString m_sAuthor;
    QString m_sDescription;
    QString m_sPersistantId;
    std::uint32_t m_uiDuration = 0; ///< ms
    std::uint32_t m_uiFileVersion = s_uiFileFormatVersion;
    ScenarioNoiseSettings m_noiseSettings;
    QString m_sErrorString;
    ReadingReport m_report;
    QMap<QString, qsizetype> m_mergedIds;
};

} // namespace Simulation

#endif
